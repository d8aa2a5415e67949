#pragma once

namespace vellmora {

/// Tells assistive tools what the window's own views are: the window, its titled groups, the library as a
/// list, and each tile and row as one list item with the entry's name, its selected state and the actions
/// select, insert and (for tiles) delete. To be called once, before the first window is made.
void installAccessibility();

}  // namespace vellmora
