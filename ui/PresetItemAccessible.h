#pragma once

namespace vellmora {

/// Makes tiles and rows known to assistive tools: each is one list item with the entry's name, its selected
/// state and the actions select, insert and (for tiles) delete. To be called once, before the first window is
/// made.
void installPresetItemAccessibility();

}  // namespace vellmora
