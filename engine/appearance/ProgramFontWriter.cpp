#include "engine/appearance/ProgramFontWriter.h"

#include "engine/fonts/UnicodeMap.h"
#include "engine/objects/ContentText.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

double ProgramFontWriter::width(const QString& text) const {
    double sum = 0;
    for (const ShapedGlyph& glyph : shapeLine(text, text.isRightToLeft(), m_fonts.faces(), m_weight))
        sum += glyph.advance;
    return sum;
}

void ProgramFontWriter::show(const TextLine& line, Point at) {
    const Glyphs glyphs = shapeLine(line.text, line.isRightToLeft, m_fonts.faces(), m_weight);
    double pen = 0;
    for (auto from = glyphs.begin(); from != glyphs.end();) {
        const auto to = std::find_if(from, glyphs.end(), [&](const ShapedGlyph& glyph) {
            return glyph.face != from->face || glyph.yOffset != from->yOffset;
        });
        pen = showTogether(from, to, at, pen);
        from = to;
    }
}

void ProgramFontWriter::useFace(const FontFace& face) {
    const std::string name = '/' + face.name();
    m_drawing.addFont(name, m_fonts.embedded(face).dictionary());
    m_drawing.add(name + ' ' + pdfNumber(m_size) + " Tf");
}

double ProgramFontWriter::showTogether(Glyphs::const_iterator from, Glyphs::const_iterator to, Point at,
                                       double start) {
    EmbeddedFont& font = m_fonts.embedded(*from->face);
    useFace(*from->face);
    const double first = start + from->xOffset;
    m_drawing.add({1, 0, 0, 1, at.x + first * m_size / 1000, at.y + from->yOffset * m_size / 1000}, "Tm");
    double pen = start;      // where a glyph is to start
    double reached = first;  // where it would start by the widths of those before it
    std::string shown = "[<";
    for (auto glyph = from; glyph != to; ++glyph) {
        const double gap = pen + glyph->xOffset - reached;
        if (std::abs(gap) >= 1) {
            shown += "> " + pdfNumber(std::round(-gap)) + " <";
            reached += std::round(gap);
        }
        shown += hexadecimal(font.code(glyph->glyph, glyph->text));
        reached += font.width(glyph->glyph);
        pen += glyph->advance;
    }
    m_drawing.add(shown + ">] TJ");
    return pen;
}

}  // namespace vellmora
