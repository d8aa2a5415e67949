#include "base/SnapshotMemory.h"

#include <cerrno>
#include <fcntl.h>
#include <new>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace vellmora {

namespace {

bool seal(const FileDescriptor& file, int seals) {
    return ::fcntl(file.get(), F_ADD_SEALS, seals) == 0;
}

/// The same memory opened once more, since rights belong to how a file was opened.
FileDescriptor openedForReading(const FileDescriptor& file) {
    const std::string path = "/proc/self/fd/" + std::to_string(file.get());
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

}  // namespace

SnapshotMemory::SnapshotMemory(size_t size)
    : m_size(size), m_file(::memfd_create("vellmora", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    const auto length = static_cast<off_t>(snapshotContentOffset + size);
    if (!m_file.isValid() || ::ftruncate(m_file.get(), length) != 0 ||
        !seal(m_file, F_SEAL_SHRINK | F_SEAL_GROW))
        throw std::bad_alloc();
    m_forReaders = openedForReading(m_file);
    if (!m_forReaders.isValid())
        throw std::bad_alloc();
    if (size == 0)
        sealContent();
}

SnapshotMemory::~SnapshotMemory() {
    if (const char* content = m_mapped)
        ::munmap(const_cast<char*>(content), m_size);
}

void SnapshotMemory::map() {
    if (m_size == 0 || m_mapped || copied() < m_size)
        return;
    void* content = ::mmap(nullptr, m_size, PROT_READ, MAP_SHARED, m_forReaders.get(), snapshotContentOffset);
    if (content == MAP_FAILED)
        return;
    // All pages at once: they would cost a fault each when they are read.
    if (::madvise(content, m_size, MADV_POPULATE_READ) == 0)
        m_mapped.store(static_cast<const char*>(content), std::memory_order_release);
    else
        ::munmap(content, m_size);
}

void SnapshotMemory::append(std::string_view bytes) {
    if (bytes.empty())
        return;
    const size_t copied = m_copied.load(std::memory_order_relaxed);
    write(snapshotContentOffset + copied, bytes.data(), bytes.size());
    // Readers who see the new number see the bytes: the system writes one after the other.
    const SnapshotHeader header{copied + bytes.size()};
    write(0, &header, sizeof header);
    m_copied.store(copied + bytes.size(), std::memory_order_release);
    if (copied + bytes.size() == m_size)
        sealContent();
}

void SnapshotMemory::sealContent() {
    // Memory that is mapped for writing already would stay so, but none is.
    if (!seal(m_file, F_SEAL_FUTURE_WRITE | F_SEAL_SEAL))
        throw std::bad_alloc();
}

void SnapshotMemory::write(size_t offset, const void* bytes, size_t length) {
    const char* source = static_cast<const char*>(bytes);
    while (length > 0) {
        const ssize_t count = ::pwrite(m_file.get(), source, length, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            throw std::bad_alloc();
        source += count;
        offset += static_cast<size_t>(count);
        length -= static_cast<size_t>(count);
    }
}

void SnapshotMemory::read(size_t offset, char* target, size_t length) const {
    offset += snapshotContentOffset;
    while (length > 0) {
        const ssize_t count = ::pread(m_forReaders.get(), target, length, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            throw std::bad_alloc();
        target += count;
        offset += static_cast<size_t>(count);
        length -= static_cast<size_t>(count);
    }
}

}  // namespace vellmora
