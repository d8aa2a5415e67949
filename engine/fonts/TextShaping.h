#pragma once

#include "engine/fonts/FontFace.h"

#include <vector>

#include <QString>

namespace vellmora {

/// One glyph of a line. Lengths in thousandths of an em.
struct ShapedGlyph {
    const FontFace* face;
    hb_codepoint_t glyph;
    QString text;    ///< that it stands for; empty where a glyph beside it stands for all
    double advance;  ///< to the start of the next
    double xOffset;  ///< of the glyph from where it starts
    double yOffset;  ///< upwards
};

/// The glyphs of a line from left to right: letters joined, scripts that run from right to left reversed.
std::vector<ShapedGlyph> shapeLine(const QString& line, bool isRightToLeft, const FontFaces& faces,
                                   FontWeight weight);

}  // namespace vellmora
