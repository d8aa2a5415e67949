#pragma once

namespace vellmora {

/// Describes placed stamps to assistive tools such as screen readers: each is one item with its name, its
/// place on the page and its selected state. Called once, by `VellmoraApp`, before the first editor is made.
void installStampViewAccessibility();

}  // namespace vellmora
