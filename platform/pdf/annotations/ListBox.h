#pragma once

#include "platform/pdf/annotations/FieldFonts.h"
#include "platform/pdf/annotations/FieldOptions.h"

#include <string>

namespace vellmora {

/// The options of a list box from its first visible one on, those chosen on a coloured bar.
void drawListBox(FormDrawing& drawing, const FormField& field, const Rect& box, const FieldOptions& options,
                 FieldFonts& fonts, const std::string& fontName);

}  // namespace vellmora
