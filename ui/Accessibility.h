#pragma once

namespace vellmora {

/// Describes the window's own views to assistive tools such as screen readers. The library is a list; each
/// tile and each row is one list item with the entry's name, its selected state and the actions select,
/// insert and (tiles only) delete; entries of the library out of sight are there as well. Buttons tell the
/// keys that do the same. Called once, by `VellmoraApp`, before the first window is made.
void installAccessibility();

}  // namespace vellmora
