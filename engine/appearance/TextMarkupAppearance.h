#pragma once

#include "engine/appearance/Annotation.h"

#include <optional>

namespace vellmora {

/// A highlight, underline, strike-out or squiggly line over the annotation's quadrilaterals; nothing for
/// other kinds.
std::optional<QPDFObjectHandle> drawTextMarkup(const Annotation& annotation, QPDF& output);

}  // namespace vellmora
