#pragma once

#include "platform/pdf/annotations/Annotation.h"

#include <optional>

namespace vellmora {

/// A square, circle, line, polygon, polyline or ink drawing in the annotation's colours; nothing for other
/// kinds and for those that have no points.
std::optional<QPDFObjectHandle> drawShape(const Annotation& annotation, QPDF& output);

}  // namespace vellmora
