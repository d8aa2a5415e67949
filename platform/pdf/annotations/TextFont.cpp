#include "platform/pdf/annotations/TextFont.h"

#include "platform/pdf/PDFValues.h"

namespace vellmora {

namespace {

// Advance widths of Helvetica in WinAnsi encoding from the space on (the font's published metrics), in
// thousandths of an em. 128 to 159 hold what Windows puts there.
constexpr std::array<short, 224> helveticaWidths = {
    278, 278, 355, 556, 556, 889,  667,  191,  333, 333, 389,  584, 278, 333,  278,  278, 556, 556, 556,
    556, 556, 556, 556, 556, 556,  556,  278,  278, 584, 584,  584, 556, 1015, 667,  667, 722, 722, 667,
    611, 778, 722, 278, 500, 667,  556,  833,  722, 778, 667,  778, 722, 667,  611,  722, 667, 944, 667,
    667, 611, 278, 278, 278, 469,  556,  333,  556, 556, 500,  556, 556, 278,  556,  556, 222, 222, 500,
    222, 833, 556, 556, 556, 556,  333,  500,  278, 556, 500,  722, 500, 500,  500,  334, 260, 334, 584,
    350, 556, 350, 222, 556, 333,  1000, 556,  556, 333, 1000, 667, 333, 1000, 350,  611, 350, 350, 222,
    222, 333, 333, 350, 556, 1000, 333,  1000, 500, 333, 944,  350, 500, 667,  278,  333, 556, 556, 556,
    556, 260, 556, 333, 737, 370,  556,  584,  333, 737, 333,  400, 584, 333,  333,  333, 556, 537, 278,
    333, 333, 365, 556, 834, 834,  834,  611,  667, 667, 667,  667, 667, 667,  1000, 722, 667, 667, 667,
    667, 278, 278, 278, 278, 722,  722,  778,  778, 778, 778,  778, 584, 778,  722,  722, 722, 722, 667,
    667, 611, 556, 556, 556, 556,  556,  556,  889, 500, 556,  556, 556, 556,  278,  278, 278, 278, 556,
    556, 556, 556, 556, 556, 556,  584,  611,  556, 556, 556,  556, 500, 556,  500};

struct SpecialCharacter {
    char16_t unicode;
    unsigned char windowsCode;
    const char* glyph;
};

// The characters that single-byte encodings put in different places.
constexpr auto specialCharacters = std::to_array<SpecialCharacter>({
    {0x20AC, 0x80, "/Euro"},         {0x201A, 0x82, "/quotesinglbase"}, {0x0192, 0x83, "/florin"},
    {0x201E, 0x84, "/quotedblbase"}, {0x2026, 0x85, "/ellipsis"},       {0x2020, 0x86, "/dagger"},
    {0x2021, 0x87, "/daggerdbl"},    {0x02C6, 0x88, "/circumflex"},     {0x2030, 0x89, "/perthousand"},
    {0x0160, 0x8A, "/Scaron"},       {0x2039, 0x8B, "/guilsinglleft"},  {0x0152, 0x8C, "/OE"},
    {0x017D, 0x8E, "/Zcaron"},       {0x2018, 0x91, "/quoteleft"},      {0x2019, 0x92, "/quoteright"},
    {0x201C, 0x93, "/quotedblleft"}, {0x201D, 0x94, "/quotedblright"},  {0x2022, 0x95, "/bullet"},
    {0x2013, 0x96, "/endash"},       {0x2014, 0x97, "/emdash"},         {0x02DC, 0x98, "/tilde"},
    {0x2122, 0x99, "/trademark"},    {0x0161, 0x9A, "/scaron"},         {0x203A, 0x9B, "/guilsinglright"},
    {0x0153, 0x9C, "/oe"},           {0x017E, 0x9E, "/zcaron"},         {0x0178, 0x9F, "/Ydieresis"},
    {0x00E4, 0xE4, "/adieresis"},    {0x00F6, 0xF6, "/odieresis"},      {0x00FC, 0xFC, "/udieresis"},
    {0x00C4, 0xC4, "/Adieresis"},    {0x00D6, 0xD6, "/Odieresis"},      {0x00DC, 0xDC, "/Udieresis"},
    {0x00DF, 0xDF, "/germandbls"},   {0x00E9, 0xE9, "/eacute"},         {0x00A7, 0xA7, "/section"},
});

QPDFObjectHandle findFont(QPDFObjectHandle resources, const std::string& name) {
    QPDFObjectHandle fonts =
        resources.isDictionary() ? resources.getKey("/Font") : QPDFObjectHandle::newNull();
    QPDFObjectHandle font =
        fonts.isDictionary() && !name.empty() ? fonts.getKey(name) : QPDFObjectHandle::newNull();
    const bool isSimple = font.isDictionary() && !font.getKey("/Subtype").isNameAndEquals("/Type0");
    return isSimple ? font : standardFont("/Helvetica");
}

}  // namespace

QPDFObjectHandle standardFont(const std::string& name) {
    QPDFObjectHandle font = QPDFObjectHandle::newDictionary();
    font.replaceKey("/Type", QPDFObjectHandle::newName("/Font"));
    font.replaceKey("/Subtype", QPDFObjectHandle::newName("/Type1"));
    font.replaceKey("/BaseFont", QPDFObjectHandle::newName(name));
    if (name != "/ZapfDingbats")
        font.replaceKey("/Encoding", QPDFObjectHandle::newName("/WinAnsiEncoding"));
    return font;
}

TextFont::TextFont(const QPDFObjectHandle& resources, const std::string& name)
    : m_dictionary(findFont(resources, name)) {
    readEncoding();
    readWidths();
}

void TextFont::readEncoding() {
    QPDFObjectHandle encoding = m_dictionary.getKey("/Encoding");
    QPDFObjectHandle differences =
        encoding.isDictionary() ? encoding.getKey("/Differences") : QPDFObjectHandle::newNull();
    if (!differences.isArray())
        return;
    long long code = 0;
    for (QPDFObjectHandle item : differences.aitems()) {
        if (item.isInteger())
            code = item.getIntValue();
        else if (item.isName() && code >= 0 && code < 256)
            m_codesByGlyph.emplace(item.getName(), static_cast<char>(code++));
    }
}

void TextFont::readWidths() {
    QPDFObjectHandle baseFont = m_dictionary.getKey("/BaseFont");
    const bool isFixed = baseFont.isName() && baseFont.getName().find("Cour") != std::string::npos;
    for (size_t code = 32; code < m_widths.size(); ++code)
        m_widths[code] = isFixed ? 600 : helveticaWidths[code - 32];
    const std::vector<double> own = numbersOf(m_dictionary.getKey("/Widths"));
    const double first = numberOr(m_dictionary.getKey("/FirstChar"), 0);
    for (size_t i = 0; i < own.size(); ++i) {
        const double code = first + static_cast<double>(i);
        if (code >= 0 && code < static_cast<double>(m_widths.size()))
            m_widths[static_cast<size_t>(code)] = own[i];
    }
}

std::string TextFont::encoded(const QString& text) const {
    std::string bytes;
    for (const QChar character : text) {
        char code = character.unicode() < 256 ? static_cast<char>(character.unicode()) : '?';
        for (const SpecialCharacter& special : specialCharacters) {
            if (special.unicode != character.unicode())
                continue;
            const auto known = m_codesByGlyph.find(special.glyph);
            code = known != m_codesByGlyph.end() ? known->second : static_cast<char>(special.windowsCode);
        }
        bytes += code;
    }
    return bytes;
}

double TextFont::width(const std::string& bytes) const {
    double sum = 0;
    for (const char byte : bytes)
        sum += m_widths[static_cast<unsigned char>(byte)];
    return sum / 1000;
}

}  // namespace vellmora
