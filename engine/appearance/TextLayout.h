#pragma once

#include "engine/appearance/FormBuilder.h"
#include "engine/appearance/TextStyle.h"
#include "engine/appearance/TextWriter.h"

namespace vellmora {

struct TextBlock {
    QString text;
    Rect box;           ///< the area inside border and padding
    int alignment = 0;  ///< 0 left, 1 centred, 2 right
    bool isMultiline = false;
    int combCells = 0;  ///< 0: no comb; else one character in the middle of each cell
};

/// Writes the text into the box: one line, centred vertically, or lines broken at words from the top on.
void drawText(FormBuilder& drawing, const TextBlock& block, TextWriter& writer, const TextStyle& style);

}  // namespace vellmora
