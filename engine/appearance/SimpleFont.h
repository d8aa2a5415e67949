#pragma once

#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/TextWriter.h"
#include "engine/fonts/FontEncoding.h"

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

/// Writes with a font of the file, a byte a character.
class SimpleFontWriter : public TextWriter {
public:
    /// `name` is the font's in the drawing's resources. All must outlive the writer.
    SimpleFontWriter(FormBuilder& drawing, const SimpleFont& font, std::string name);

    double width(const QString& text) const override { return m_font.width(m_font.encoded(text)); }
    void begin(double size) override;
    void show(const TextLine& line, Point at) override;

private:
    FormBuilder& m_drawing;
    const SimpleFont& m_font;
    std::string m_name;
};

}  // namespace vellmora
