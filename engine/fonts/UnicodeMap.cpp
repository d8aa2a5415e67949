#include "engine/fonts/UnicodeMap.h"

#include "engine/fonts/StreamText.h"
#include "engine/objects/DecodedBytes.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vellmora {

namespace {

constexpr size_t mostInSection = 100;  // ISO 32000-2, 9.10.3, by way of the PostScript language

}  // namespace

std::string hexadecimal(unsigned value) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const unsigned shift : {12U, 8U, 4U, 0U})
        text += digits[value >> shift & 15];
    return text;
}

std::string unicodeMapText(const std::vector<QString>& texts) {
    std::vector<std::string> lines;
    for (size_t code = 0; code < texts.size(); ++code) {
        if (texts[code].isEmpty())
            continue;
        std::string line = '<' + hexadecimal(static_cast<unsigned>(code)) + "> <";
        for (const QChar unit : texts[code])
            line += hexadecimal(unit.unicode());
        lines.push_back(line + ">\n");
    }
    std::string map =
        "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
        "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
        "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
        "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    for (size_t i = 0; i < lines.size(); i += mostInSection) {
        const size_t count = std::min(mostInSection, lines.size() - i);
        map += std::to_string(count) + " beginbfchar\n";
        for (size_t j = 0; j < count; ++j)
            map += lines[i + j];
        map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

namespace {

constexpr size_t longestMap = size_t{4} << 20;

uint32_t codeOf(const std::string& bytes) {
    uint32_t code = 0;
    for (const char byte : bytes)
        code = code << 8 | static_cast<unsigned char>(byte);
    return code;
}

QString textOf(const std::string& utf16) {
    QString text;
    for (size_t i = 0; i + 1 < utf16.size(); i += 2)
        text += QChar(static_cast<char16_t>(codeOf(utf16.substr(i, 2))));
    return text;
}

}  // namespace

/// Follows the sections "beginbfchar … endbfchar" and "beginbfrange … endbfrange" (ISO 32000-2, 9.10.3).
class UnicodeMap::Reader {
public:
    explicit Reader(UnicodeMap& map) : m_map(map) {}

    void take(const QPDFTokenizer::Token& token) {
        switch (token.getType()) {
            case QPDFTokenizer::tt_word:
                m_codesBefore = token.getValue() == "beginbfchar"    ? 1
                                : token.getValue() == "beginbfrange" ? 2
                                                                     : 0;
                m_codes.clear();
                break;
            case QPDFTokenizer::tt_string:
                takeString(token.getValue());
                break;
            case QPDFTokenizer::tt_array_open:
                m_isInList = true;
                m_list.clear();
                break;
            case QPDFTokenizer::tt_array_close:
                m_isInList = false;
                add({}, std::move(m_list));
                break;
            default:
                break;
        }
    }

private:
    void takeString(const std::string& bytes) {
        if (m_isInList)
            m_list.push_back(textOf(bytes));
        else if (m_codes.size() < m_codesBefore)
            m_codes.push_back(codeOf(bytes));
        else
            add(textOf(bytes), {});
    }

    void add(const QString& text, std::vector<QString> list) {
        if (m_codesBefore > 0 && m_codes.size() == m_codesBefore)
            m_map.m_ranges[m_codes.front()] = {m_codes.back(), text, std::move(list)};
        m_codes.clear();
    }

    UnicodeMap& m_map;
    size_t m_codesBefore = 0;  ///< a text; 0 outside of the sections
    std::vector<uint32_t> m_codes;
    std::vector<QString> m_list;
    bool m_isInList = false;
};

UnicodeMap::UnicodeMap(const QPDFObjectHandle& stream) {
    Reader reader(*this);
    readTokens(decodedBytes(stream, longestMap).value_or(std::string()),
               [&](const QPDFTokenizer::Token& token) {
                   reader.take(token);
                   return true;
               });
}

std::optional<QString> UnicodeMap::text(uint32_t code) const {
    auto place = m_ranges.upper_bound(code);
    if (place == m_ranges.begin())
        return std::nullopt;
    const auto& [first, range] = *--place;
    const uint32_t step = code - first;
    if (code > range.last || (range.text.isEmpty() && step >= range.list.size()))
        return std::nullopt;
    if (range.text.isEmpty())
        return range.list[step];
    QString text = range.text;
    text.back() = QChar(static_cast<char16_t>(text.back().unicode() + step));
    return text;
}

}  // namespace vellmora
