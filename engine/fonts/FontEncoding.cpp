#include "engine/fonts/FontEncoding.h"

#include "engine/fonts/GlyphNames.h"
#include "engine/fonts/StandardGlyphs.h"
#include "engine/objects/PDFValues.h"

namespace vellmora {

namespace {

// The codes from 128 on (ISO 32000-2, annex D.2); below, they are those of ASCII.
constexpr std::array<char16_t, 128> standardCharacters = {
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0,      0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x0027, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0,      0x2013, 0x2020, 0x2021,
    0x00B7, 0,      0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0,      0x00BF, 0,
    0x0060, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0,      0x02DA, 0x00B8, 0,      0x02DD,
    0x02DB, 0x02C7, 0x2014, 0,      0,      0,      0,      0,      0,      0,      0,      0,      0,
    0,      0,      0,      0,      0,      0,      0x00C6, 0,      0x00AA, 0,      0,      0,      0,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0,      0,      0,      0,      0,      0x00E6, 0,      0,      0,
    0x0131, 0,      0,      0x0142, 0x00F8, 0x0153, 0x00DF, 0,      0,      0,      0};
constexpr std::array<char16_t, 128> macRomanCharacters = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0,      0x00C6, 0x00D8, 0,      0x00B1, 0,      0,
    0x00A5, 0x00B5, 0,      0,      0,      0,      0,      0x00AA, 0x00BA, 0,      0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0,      0x0192, 0,      0,      0x00AB, 0x00BB, 0x2026, 0x0020, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0,      0x00FF, 0x0178, 0x2044,
    0x00A4, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0,      0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};
// The codes from 128 to 159; all others are those of Latin-1.
constexpr std::array<char16_t, 32> windowsCharacters = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

QPDFObjectHandle baseEncoding(QPDFObjectHandle encoding) {
    return encoding.isDictionary() ? encoding.getKey("/BaseEncoding") : encoding;
}

bool isNonsymbolic(QPDFObjectHandle font) {
    constexpr long long nonsymbolicFlag = 1 << 5;
    QPDFObjectHandle descriptor = font.getKey("/FontDescriptor");
    QPDFObjectHandle flags =
        descriptor.isDictionary() ? descriptor.getKey("/Flags") : QPDFObjectHandle::newNull();
    return flags.isInteger() && (flags.getIntValue() & nonsymbolicFlag) != 0;
}

char32_t windowsCharacter(size_t code) {
    return code >= 128 && code < 160 ? windowsCharacters[code - 128] : static_cast<char32_t>(code);
}

char32_t asciiOr(const std::array<char16_t, 128>& characters, size_t code) {
    return code < 128 ? static_cast<char32_t>(code) : characters[code - 128];
}

char32_t standardCharacter(size_t code) {
    if (code == 0x27)
        return 0x2019;
    return code == 0x60 ? 0x2018 : asciiOr(standardCharacters, code);
}

}  // namespace

bool isEmbedded(QPDFObjectHandle font) {
    if (font.getKey("/Subtype").isNameAndEquals("/Type3"))
        return true;
    QPDFObjectHandle descriptor = font.getKey("/FontDescriptor");
    return descriptor.isDictionary() && (descriptor.hasKey("/FontFile") || descriptor.hasKey("/FontFile2") ||
                                         descriptor.hasKey("/FontFile3"));
}

bool isBold(QPDFObjectHandle font) {
    constexpr int forceBold = 1 << 18;  // ISO 32000-2, table 121
    constexpr double leastBoldWeight = 600;
    if (!font.isDictionary())
        return false;
    const std::string name = baseFontName(font);
    for (const char* word : {"Bold", "bold", "Black", "Heavy"}) {
        if (name.find(word) != std::string::npos)
            return true;
    }
    QPDFObjectHandle descriptor = font.getKey("/FontDescriptor");
    if (!descriptor.isDictionary())
        return false;
    QPDFObjectHandle flags = descriptor.getKey("/Flags");
    return (flags.isInteger() && (flags.getIntValue() & forceBold) != 0) ||
           numberOr(descriptor.getKey("/FontWeight"), 0) >= leastBoldWeight;
}

std::string baseFontName(QPDFObjectHandle font) {
    QPDFObjectHandle name = font.getKey("/BaseFont");
    return name.isName() ? name.getName().substr(1) : std::string();
}

FontEncoding::FontEncoding(QPDFObjectHandle font) {
    readBase(font);
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    if (encoding.isDictionary())
        readDifferences(encoding.getKey("/Differences"));
    for (size_t code = m_characters.size(); code-- > 0;) {
        const char32_t character = m_characters[code];
        const auto [known, isNew] = m_codes.try_emplace(character, static_cast<unsigned char>(code));
        if (!isNew && known->second != character)  // a character's own code is preferred, then the lowest
            known->second = static_cast<unsigned char>(code);
    }
    m_codes.erase(0);
}

/// Signs of pictures are named by the code that they have. The built-in encoding of a font that the file
/// brings is not known here.
void FontEncoding::readBase(QPDFObjectHandle font) {
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    QPDFObjectHandle base = baseEncoding(encoding);
    const StandardFace face = standardFace(baseFontName(font));
    const bool hasSigns = face == StandardFace::symbol || face == StandardFace::dingbats;
    const bool isTrueType = font.getKey("/Subtype").isNameAndEquals("/TrueType");
    const bool isBuiltIn =
        isEmbedded(font) && !base.isName() && !(isTrueType && encoding.isDictionary() && isNonsymbolic(font));
    if (isBuiltIn && !hasSigns)
        return;
    for (size_t code = 32; code < m_characters.size(); ++code) {
        if (hasSigns)
            m_characters[code] = static_cast<char32_t>(code);
        else if (base.isNameAndEquals("/WinAnsiEncoding") || (isTrueType && encoding.isNull()))
            m_characters[code] = windowsCharacter(code);
        else if (base.isNameAndEquals("/MacRomanEncoding"))
            m_characters[code] = asciiOr(macRomanCharacters, code);
        else
            m_characters[code] = standardCharacter(code);
    }
}

void FontEncoding::readDifferences(QPDFObjectHandle differences) {
    if (!differences.isArray())
        return;
    long long code = 0;
    for (QPDFObjectHandle item : differences.aitems()) {
        if (item.isInteger())
            code = item.getIntValue();
        else if (item.isName() && code >= 0 && code < static_cast<long long>(m_characters.size()))
            m_characters[static_cast<size_t>(code++)] = characterOfGlyph(item.getName().substr(1));
    }
}

std::optional<unsigned char> FontEncoding::code(char32_t character) const {
    const auto known = m_codes.find(character);
    return known != m_codes.end() ? std::optional(known->second) : std::nullopt;
}

}  // namespace vellmora
