#include "engine/fonts/FontReader.h"

namespace vellmora {

FontReader::FontReader(QPDFObjectHandle font) {
    m_map = UnicodeMap(font.getKey("/ToUnicode"));
    if (!font.getKey("/Subtype").isNameAndEquals("/Type0")) {
        m_encoding.emplace(font);
        return;
    }
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    const std::string name = encoding.isName() ? encoding.getName() : std::string();
    if (name == "/Identity-H" || name == "/Identity-V")
        m_codes = m_map.isEmpty() ? Codes::unknown : Codes::twoBytes;
    else if (name.find("-UTF16-") != std::string::npos || name.find("-UCS2-") != std::string::npos)
        m_codes = Codes::utf16;
    else
        m_codes = Codes::unknown;
}

/// Empty for a code whose meaning is not known.
QString FontReader::character(uint32_t code) const {
    if (m_codes == Codes::utf16)
        return QChar(static_cast<char16_t>(code));
    QString text = m_map.text(code).value_or(QString());
    if (text.isEmpty() && m_encoding) {
        const char32_t character = m_encoding->character(static_cast<unsigned char>(code));
        if (character != 0)
            text = QString::fromUcs4(&character, 1);
    }
    return text.contains(QChar(QChar::ReplacementCharacter)) || text.contains(QChar(QChar::Null)) ? QString()
                                                                                                  : text;
}

/// Line breaks and the like in a font whose other codes are known show nothing.
bool FontReader::isControl(uint32_t code) const {
    return m_encoding && code < U' ' && m_encoding->character(' ') == U' ';
}

std::optional<QString> FontReader::text(const std::string& bytes) const {
    if (m_codes == Codes::unknown)
        return std::nullopt;
    const size_t length = m_codes == Codes::oneByte ? 1 : 2;
    QString result;
    for (size_t i = 0; i + length <= bytes.size(); i += length) {
        uint32_t code = 0;
        for (size_t j = 0; j < length; ++j)
            code = code << 8 | static_cast<unsigned char>(bytes[i + j]);
        const QString next = character(code);
        if (next.isEmpty() && !isControl(code))
            return std::nullopt;
        result += next;
    }
    return result;
}

}  // namespace vellmora
