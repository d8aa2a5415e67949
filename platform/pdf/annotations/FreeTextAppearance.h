#pragma once

#include "platform/pdf/annotations/Annotation.h"
#include "platform/pdf/annotations/AppearanceTools.h"
#include "platform/pdf/reading/PDFSource.h"

#include <optional>

namespace vellmora {

/// A text note that is written on the page itself: background, border and text.
std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const PDFSource& source,
                                             AppearanceTools& tools);

}  // namespace vellmora
