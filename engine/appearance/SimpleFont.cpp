#include "engine/appearance/SimpleFont.h"

#include "engine/fonts/StandardGlyphs.h"
#include "engine/objects/ContentText.h"
#include "engine/objects/PDFValues.h"

#include <algorithm>
#include <utility>

#include <QList>

namespace vellmora {

QPDFObjectHandle standardFont(const std::string& name) {
    QPDFObjectHandle font = QPDFObjectHandle::newDictionary();
    font.replaceKey("/Type", QPDFObjectHandle::newName("/Font"));
    font.replaceKey("/Subtype", QPDFObjectHandle::newName("/Type1"));
    font.replaceKey("/BaseFont", QPDFObjectHandle::newName(name));
    if (name != "/ZapfDingbats")
        font.replaceKey("/Encoding", QPDFObjectHandle::newName("/WinAnsiEncoding"));
    return font;
}

SimpleFont::SimpleFont(const QPDFObjectHandle& dictionary)
    : m_dictionary(dictionary), m_encoding(dictionary), m_isEmbedded(isEmbedded(dictionary)) {
    readWidths();
}

void SimpleFont::readWidths() {
    const StandardFace face = standardFace(baseFontName(m_dictionary));
    for (size_t i = 0; i < m_widths.size() && !m_isEmbedded; ++i) {
        const auto code = static_cast<unsigned char>(i);
        m_widths[i] = standardWidth(face, code, m_encoding.character(code));
    }
    QPDFObjectHandle own = m_dictionary.getKey("/Widths");
    const double first = numberOr(m_dictionary.getKey("/FirstChar"), 0);
    const int count = own.isArray() ? std::min(own.getArrayNItems(), static_cast<int>(m_widths.size())) : 0;
    for (int i = 0; i < count; ++i) {
        const double code = first + i;
        if (code >= 0 && code < static_cast<double>(m_widths.size()))
            m_widths[static_cast<size_t>(code)] = numberOr(own.getArrayItem(i), 0);
    }
}

/// A font that a file brings often has only the letters that the file shows; the others have no width. A
/// reader's own font has the standard characters, and signs for all codes.
bool SimpleFont::hasGlyph(unsigned char code) const {
    return m_widths[code] > 0;
}

bool SimpleFont::canWrite(const QString& text) const {
    const auto characters = text.toUcs4();
    return std::all_of(characters.begin(), characters.end(), [&](char32_t character) {
        const auto code = m_encoding.code(character);
        return code && hasGlyph(*code);
    });
}

std::string SimpleFont::encoded(const QString& text) const {
    std::string bytes;
    for (const char32_t character : text.toUcs4()) {
        if (const auto code = m_encoding.code(character))
            bytes += static_cast<char>(*code);
    }
    return bytes;
}

double SimpleFont::width(const std::string& bytes) const {
    double sum = 0;
    for (const char byte : bytes)
        sum += m_widths[static_cast<unsigned char>(byte)];
    return sum;
}

SimpleFontWriter::SimpleFontWriter(FormBuilder& drawing, const SimpleFont& font, std::string name)
    : m_drawing(drawing), m_font(font), m_name(std::move(name)) {}

void SimpleFontWriter::begin(double size) {
    m_drawing.add(m_name + ' ' + pdfNumber(size) + " Tf");
}

void SimpleFontWriter::show(const TextLine& line, Point at) {
    m_drawing.add({1, 0, 0, 1, at.x, at.y}, "Tm");
    m_drawing.add(QPDFObjectHandle::newString(m_font.encoded(line.text)).unparse() + " Tj");
}

}  // namespace vellmora
