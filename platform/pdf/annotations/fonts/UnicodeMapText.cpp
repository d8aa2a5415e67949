#include "platform/pdf/annotations/fonts/UnicodeMapText.h"

#include <algorithm>
#include <string_view>

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

}  // namespace vellmora
