#include "base/FreeMemory.h"

#include <malloc.h>

namespace vellmora {

/// In bytes. What is larger is asked of the system, and given back as soon as it is free.
static constexpr int largePiece = 128 << 10;

void keepLittleFreeMemory() {
    ::mallopt(M_ARENA_MAX, 1);
    ::mallopt(M_MMAP_THRESHOLD, largePiece);
    ::mallopt(M_TRIM_THRESHOLD, largePiece);
}

}  // namespace vellmora
