#pragma once

#include "platform/pdf/ObjectCopier.h"
#include "platform/pdf/PDFSource.h"
#include "platform/pdf/annotations/Annotation.h"

#include <optional>

namespace vellmora {

/// A text note that is written on the page itself: background, border and text.
std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const PDFSource& source,
                                             ObjectCopier& copier);

}  // namespace vellmora
