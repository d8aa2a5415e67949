#pragma once

#include "base/FileDescriptor.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vellmora {

/// What lies at the beginning of a snapshot's memory, for those who read it from another process.
struct SnapshotHeader {
    /// So many bytes of the content are there, from its beginning on.
    std::atomic<std::uint64_t> copied;
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

/// The content lies behind the header, from here on: whole pages can be mapped.
inline constexpr size_t snapshotContentOffset = 1 << 12;

/// Memory that is filled once, from its beginning to its end. Other processes get a descriptor that can only
/// be read, and can read along. When all is there the memory is sealed: nobody can write to it any more.
///
/// It is written by system calls, since each page of a mapping would cost a fault: to copy a large file takes
/// half of the time. It is read by them too, until `map()` has been called. One thread writes; any may read
/// what is there.
class SnapshotMemory {
public:
    /// `size` of the content, in bytes. Throws `std::bad_alloc`.
    explicit SnapshotMemory(size_t size);

    ~SnapshotMemory();
    SnapshotMemory(const SnapshotMemory&) = delete;
    SnapshotMemory& operator=(const SnapshotMemory&) = delete;

    size_t size() const { return m_size; }
    /// So many bytes are there.
    size_t copied() const { return m_copied.load(std::memory_order_acquire); }
    /// The next bytes, no more than there is room for. Throws `std::bad_alloc`.
    void append(std::string_view bytes);
    /// A range of what is there. Throws `std::bad_alloc` where it cannot be read.
    void read(size_t offset, char* target, size_t length) const;

    /// Once all is there: has the content where it can be looked at. Takes some time, which is spared whoever
    /// reads much of it afterwards. Does nothing where the system cannot do that at once. For one thread.
    void map();
    /// The content, or nothing where it is not mapped.
    std::string_view mapped() const {
        const char* content = m_mapped.load(std::memory_order_acquire);
        return content ? std::string_view(content, m_size) : std::string_view();
    }

    /// For reading only.
    int descriptor() const { return m_forReaders.get(); }

private:
    void sealContent();
    void write(size_t offset, const void* bytes, size_t length);

    size_t m_size;
    std::atomic<size_t> m_copied = 0;
    std::atomic<const char*> m_mapped = nullptr;
    FileDescriptor m_file;
    FileDescriptor m_forReaders;
};

}  // namespace vellmora
