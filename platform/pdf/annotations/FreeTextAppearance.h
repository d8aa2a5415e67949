#pragma once

#include "platform/pdf/annotations/Annotation.h"
#include "platform/pdf/reading/PDFSource.h"
#include "platform/pdf/writing/ObjectCopier.h"

#include <optional>

namespace vellmora {

/// A text note that is written on the page itself: background, border and text.
std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const PDFSource& source,
                                             ObjectCopier& copier);

}  // namespace vellmora
