#pragma once

#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/TextWriter.h"
#include "engine/fonts/ProgramFonts.h"
#include "engine/fonts/TextShaping.h"

#include <map>

namespace vellmora {

/// Writes with the program's own fonts, which go into the output.
class ProgramFontWriter : public TextWriter {
public:
    /// Both must outlive the writer.
    ProgramFontWriter(FormBuilder& drawing, ProgramFonts& fonts, FontWeight weight)
        : m_drawing(drawing), m_fonts(fonts), m_weight(weight) {}

    double width(const QString& text) const override;
    void begin(double size) override { m_size = size; }
    void show(const TextLine& line, Point at) override;
    bool isSubstitute() const override { return true; }

private:
    using Glyphs = std::vector<ShapedGlyph>;

    /// Shows glyphs of one face and height; the first starts at `start`. Returns where the last ends. Both in
    /// thousandths of an em from `at`.
    double showTogether(Glyphs::const_iterator from, Glyphs::const_iterator to, Point at, double start);
    void useFace(const FontFace& face);

    FormBuilder& m_drawing;
    ProgramFonts& m_fonts;
    FontWeight m_weight;
    double m_size = 0;
};

}  // namespace vellmora
