#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>

namespace vellmora {

/// A stretch of memory that can be handed to another process as a file descriptor. Its size is sealed: the
/// other side cannot make it shrink under the reader's hands.
class SharedMemory {
public:
    /// Zeros. `size` is in bytes, and not 0. Not valid where the system gives no memory.
    explicit SharedMemory(size_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    bool isValid() const { return m_bytes != nullptr; }
    int descriptor() const { return m_file.get(); }
    unsigned char* bytes() { return m_bytes; }
    const unsigned char* bytes() const { return m_bytes; }

private:
    FileDescriptor m_file;
    size_t m_size;
    unsigned char* m_bytes = nullptr;
};

/// A file in memory with these bytes, which nobody can change any more. It takes none of this process's own
/// memory. Not valid where the system gives none.
FileDescriptor sealedFile(const void* bytes, size_t size);

}  // namespace vellmora
