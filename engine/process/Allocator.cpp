#include "engine/process/Allocator.h"

#ifdef VELLMORA_JEMALLOC
#include <jemalloc/jemalloc.h>

/// Memory that is free goes back soon. A long document is saved in parts, and the next part is not to stand
/// beside what the last one has left.
extern "C" const char* malloc_conf;              // NOLINT(readability-identifier-naming)
const char* malloc_conf = "dirty_decay_ms:100";  // NOLINT(readability-identifier-naming): its own name
#endif

namespace vellmora {

void giveBackFreeMemory() {
#ifdef VELLMORA_JEMALLOC
    static_assert(MALLCTL_ARENAS_ALL == 4096);
    ::mallctl("thread.tcache.flush", nullptr, nullptr, nullptr, 0);
    ::mallctl("arena.4096.purge", nullptr, nullptr, nullptr, 0);
#endif
}

}  // namespace vellmora
