#pragma once

#include "platform/pdf/Qpdf.h"

#include <array>
#include <map>
#include <string>

#include <QString>

namespace vellmora {

/// The dictionary of a font of the standard 14 that every reader has, by its name there (/Helvetica,
/// /ZapfDingbats).
QPDFObjectHandle standardFont(const std::string& name);

/// A font to write a field's text with: one byte a character.
class TextFont {
public:
    /// The named font of the resources; Helvetica where there is none, or one whose encoding takes more than
    /// one byte a character.
    TextFont(const QPDFObjectHandle& resources, const std::string& name);

    /// The font dictionary, of the source or a new one.
    const QPDFObjectHandle& dictionary() const { return m_dictionary; }
    /// The text in the font's own encoding; what it cannot write becomes a question mark.
    std::string encoded(const QString& text) const;
    /// Of encoded text, in ems.
    double width(const std::string& bytes) const;

private:
    void readEncoding();
    void readWidths();

    QPDFObjectHandle m_dictionary;
    std::map<std::string, char> m_codesByGlyph;
    std::array<double, 256> m_widths{};  ///< in thousandths of an em
};

}  // namespace vellmora
