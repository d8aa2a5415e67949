#pragma once

#include "engine/appearance/AppearanceTools.h"
#include "engine/appearance/FormField.h"

namespace vellmora {

/// What a text or choice field is to show.
QString displayedText(const FormField& field, AppearanceTools& tools);

/// Whether an appearance plainly shows another text than the field's: its letters can be read, and they are
/// others. Of a list box, the chosen entry is looked for among all. A field that brings a script for the
/// format of its value may show the same digits in another way.
bool showsAnotherText(const FormField& field, const QPDFObjectHandle& appearance, AppearanceTools& tools);

}  // namespace vellmora
