#pragma once

#include "engine/appearance/Annotation.h"
#include "engine/appearance/FormBuilder.h"

#include <optional>

namespace vellmora {

/// Draws the ending of a line (ISO 32000-2, table 179) at `tip`, where the line comes from `from`; nothing
/// for endings that are not known. The size follows the line's width.
void drawLineEnding(FormBuilder& drawing, QPDFObjectHandle style, Point tip, Point from, double width,
                    bool fill);

/// A square, circle, line, polygon, polyline or ink drawing in the annotation's colours; nothing for other
/// kinds and for those that have no points.
std::optional<QPDFObjectHandle> drawShape(const Annotation& annotation, QPDF& output);

}  // namespace vellmora
