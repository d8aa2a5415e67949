#pragma once

#include "engine/appearance/Annotation.h"
#include "engine/appearance/AppearanceTools.h"
#include "engine/file/ParsedFile.h"

#include <optional>

namespace vellmora {

/// A text note that is written on the page itself: background, border and text.
std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const ParsedFile& source,
                                             AppearanceTools& tools);

}  // namespace vellmora
