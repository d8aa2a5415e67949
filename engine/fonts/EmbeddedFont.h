#pragma once

#include "engine/fonts/FontFace.h"
#include "engine/objects/Qpdf.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include <QString>

namespace vellmora {

/// One of the program's fonts in an output, with the glyphs that the output shows. Its codes have two bytes;
/// each stands for a glyph and the text that the glyph means, so that what is copied is right.
class EmbeddedFont {
public:
    EmbeddedFont(QPDF& output, const FontFace& face);

    const QPDFObjectHandle& dictionary() const { return m_dictionary; }
    uint16_t code(hb_codepoint_t glyph, const QString& text);
    /// Rounded as the file has it, in thousandths of an em.
    double width(hb_codepoint_t glyph) const;

    /// To be called once, when no more text will come.
    void finish();

private:
    struct Subset;

    Subset makeSubset() const;
    QPDFObjectHandle descriptor(const Subset& subset) const;
    QPDFObjectHandle widths() const;
    std::string unicodeMap() const;
    std::string glyphMap(const Subset& subset) const;
    std::string name() const;

    QPDF& m_output;
    const FontFace& m_face;
    QPDFObjectHandle m_dictionary;
    std::map<std::pair<hb_codepoint_t, QString>, uint16_t> m_codes;
    std::vector<std::pair<hb_codepoint_t, QString>> m_glyphs;  ///< by their codes
};

}  // namespace vellmora
