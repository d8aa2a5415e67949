#pragma once

namespace vellmora {

/// Has the C library keep little of the memory that is free. To be called first in `main`, while there is one
/// thread.
///
/// Of itself the library lets each thread have a heap of its own, and takes what was freed most recently for
/// the size of what it should keep. After a picture of megabytes was drawn on a thread, those megabytes stay.
void keepLittleFreeMemory();

}  // namespace vellmora
