#pragma once

#include "platform/pdf/annotations/Annotation.h"
#include "platform/pdf/reading/PDFSource.h"
#include "platform/pdf/writing/ObjectCopier.h"

#include <optional>

namespace vellmora {

/// Whether the form asks viewers to draw its fields anew, and the appearance that this one brings shows
/// another text than its value.
bool needsNewAppearance(const Annotation& widget, const QPDFObjectHandle& appearance,
                        const PDFSource& source);

/// The resources to use for an appearance that brings none; null where the form has none either.
QPDFObjectHandle formResources(const Annotation& widget, const PDFSource& source);

/// Border, background and value of a field as its dictionary describes them; nothing for signatures and
/// fields of an unknown kind.
std::optional<QPDFObjectHandle> drawField(const Annotation& widget, const PDFSource& source,
                                          ObjectCopier& copier);

}  // namespace vellmora
