#pragma once

#include <future>

namespace vellmora {

/// Begins to read the system's font configuration on a thread of its own. The toolkit reads it with the first
/// font that it is asked for, or finds it read: so the time passes while the program connects to its display.
/// Wait for it before that; nobody may change the environment until then. Cannot fail.
std::future<void> readFontConfiguration();

}  // namespace vellmora
