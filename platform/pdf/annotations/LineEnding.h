#pragma once

#include "platform/pdf/drawing/FormDrawing.h"

namespace vellmora {

/// Draws the ending of a line (ISO 32000-2, table 179) at `tip`, where the line comes from `from`; nothing
/// for endings that are not known. The size follows the line's width.
void drawLineEnding(FormDrawing& drawing, QPDFObjectHandle style, Point tip, Point from, double width,
                    bool fill);

}  // namespace vellmora
