#pragma once

#include "platform/pdf/annotations/FormField.h"
#include "platform/pdf/annotations/TextFont.h"
#include "platform/pdf/annotations/TextStyle.h"
#include "platform/pdf/drawing/FormDrawing.h"

namespace vellmora {

/// What a choice field shows as its value.
QString chosenOption(const FormField& field);

/// The options of a list box from its first visible one on, those chosen on a coloured bar.
void drawListBox(FormDrawing& drawing, const FormField& field, const Rect& box, const TextFont& font,
                 const std::string& fontName, const TextStyle& style);

}  // namespace vellmora
