#pragma once

#include "platform/pdf/annotations/fonts/FontEncoding.h"

#include <array>
#include <string>

#include <QString>

namespace vellmora {

/// The dictionary of a font of the standard 14 that every reader has, by its name there (/Helvetica,
/// /ZapfDingbats).
QPDFObjectHandle standardFont(const std::string& name);

/// A file's font of one byte a character, to write with.
class SimpleFont {
public:
    explicit SimpleFont(const QPDFObjectHandle& dictionary);

    const QPDFObjectHandle& dictionary() const { return m_dictionary; }
    /// Whether it has all characters of the text.
    bool canWrite(const QString& text) const;
    /// The text in the font's own encoding, without the characters that it cannot write.
    std::string encoded(const QString& text) const;
    /// Of encoded text, in thousandths of an em.
    double width(const std::string& bytes) const;

private:
    void readWidths();
    bool hasGlyph(unsigned char code) const;

    QPDFObjectHandle m_dictionary;
    FontEncoding m_encoding;
    bool m_isEmbedded;
    std::array<double, 256> m_widths{};  ///< in thousandths of an em
};

}  // namespace vellmora
