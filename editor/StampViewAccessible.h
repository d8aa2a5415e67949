#pragma once

namespace vellmora {

/// Makes placed stamps known to assistive tools: each is one item with its name, its place on the page and
/// its selected state. To be called once, before the first editor is made.
void installStampViewAccessibility();

}  // namespace vellmora
