#pragma once

#include "engine/appearance/FieldFonts.h"
#include "engine/appearance/FieldOptions.h"
#include "engine/appearance/ShownText.h"

namespace vellmora {

/// What the appearances of one output are drawn with, and what was read for them already. The sources must
/// live as long.
struct AppearanceTools {
    explicit AppearanceTools(ObjectCopier& objectCopier) : copier(objectCopier), fonts(objectCopier) {}

    ObjectCopier& copier;
    FieldFonts fonts;
    OptionLists options;
    ShownText shownText;
};

}  // namespace vellmora
