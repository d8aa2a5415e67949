#pragma once

#include "engine/appearance/Annotation.h"
#include "engine/appearance/AppearanceTools.h"
#include "engine/file/ParsedFile.h"

#include <optional>

namespace vellmora {

/// Whether the form asks viewers to draw its fields anew, the appearance that this one brings plainly shows
/// another text than its value, and all letters of the value can be written.
bool needsNewAppearance(const Annotation& widget, const QPDFObjectHandle& appearance,
                        const ParsedFile& source, AppearanceTools& tools);

/// The resources to use for an appearance that brings none; null where the form has none either.
QPDFObjectHandle formResources(const Annotation& widget, const ParsedFile& source);

/// Border, background and value of a field as its dictionary describes them; nothing for signatures and
/// fields of an unknown kind.
std::optional<QPDFObjectHandle> drawField(const Annotation& widget, const ParsedFile& source,
                                          AppearanceTools& tools);

}  // namespace vellmora
