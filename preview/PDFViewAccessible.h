#pragma once

namespace vellmora {

/// Makes page views known to assistive tools: a document with the number of its page, a notice where the page
/// cannot be shown, and its menu while it is open. To be called once, before the first view is made.
void installPageViewAccessibility();

}  // namespace vellmora
