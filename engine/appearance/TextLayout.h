#pragma once

#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/TextStyle.h"
#include "engine/appearance/TextWriter.h"

namespace vellmora {

// In font sizes.
constexpr double ascent = 0.8;        ///< room that letters need above the baseline
constexpr double lineHeight = 1.156;  ///< from one line to the next

struct TextBlock {
    QString text;
    Rect box;           ///< the area inside border and padding
    int alignment = 0;  ///< 0 left, 1 centred, 2 right
    bool isMultiline = false;
    /// Of several lines: how far below the box's top in font sizes, if that is tall enough.
    double firstBaseline = ascent;
    int combCells = 0;  ///< 0: no comb; else one character in the middle of each cell
};

/// Writes the text into the box: one line, centred vertically, or lines broken at words from the top on.
void drawText(FormBuilder& drawing, const TextBlock& block, TextWriter& writer, const TextStyle& style);

}  // namespace vellmora
