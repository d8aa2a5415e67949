#pragma once

namespace vellmora {

/// Describes the window's own views to assistive tools such as screen readers. The library is a list; each
/// tile and each row is one list item with the entry's name, its selected state and the actions select,
/// insert and (tiles only) delete. Called once, by `VellmoraApp`, before the first window is made.
void installAccessibility();

}  // namespace vellmora
