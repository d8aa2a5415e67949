#include "base/SnapshotReader.h"

#include "base/FileError.h"
#include "base/SnapshotMemory.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace vellmora {

namespace {

/// Small, since a document is opened with little from many places.
constexpr size_t blockSize = 1 << 13;
constexpr unsigned rangesUntilReport = 1024;
/// From this size on a range is shown rather than read. Less is mostly looked at.
constexpr size_t largeRange = 1 << 14;

void* map(size_t length, int protection, int kind, const FileDescriptor& memory, size_t offset) {
    void* mapped = ::mmap(nullptr, length, protection, kind, memory.get(), static_cast<off_t>(offset));
    if (mapped == MAP_FAILED)
        throw std::bad_alloc();
    return mapped;
}

ssize_t readAt(const FileDescriptor& file, char* target, size_t length, size_t offset) {
    ssize_t count = 0;
    do
        count = ::pread(file.get(), target, length, static_cast<off_t>(offset));
    while (count < 0 && errno == EINTR);
    return count;
}

}  // namespace

SnapshotReader::SnapshotReader(FileDescriptor memory, FileDescriptor file, size_t size)
    : m_memory(std::move(memory)), m_file(std::move(file)), m_size(size) {
    m_header = map(snapshotContentOffset, PROT_READ, MAP_SHARED, m_memory, 0);
    if (size > 0)
        m_bytes = static_cast<char*>(
            map(size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE, m_memory, snapshotContentOffset));
    if (!m_file.isValid()) {
        m_copied = size;
        return;
    }
    m_fetched.resize((size + blockSize - 1) / blockSize);
    void* shown = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, m_file.get(), 0);
    m_shown = shown == MAP_FAILED ? nullptr : static_cast<const char*>(shown);
}

SnapshotReader::SnapshotReader(QByteArray bytes)
    : m_given(std::move(bytes)),
      m_size(static_cast<size_t>(m_given.size())),
      m_bytes(const_cast<char*>(m_given.constData())),
      m_copied(m_size) {}

SnapshotReader::~SnapshotReader() {
    if (!m_header)
        return;
    ::munmap(const_cast<void*>(m_header), snapshotContentOffset);
    if (m_bytes)
        ::munmap(m_bytes, m_size);
    if (m_shown)
        ::munmap(const_cast<char*>(m_shown), m_size);
}

std::string_view SnapshotReader::range(size_t offset, size_t length) const {
    const size_t end = offset + length;
    if (++m_unreported >= rangesUntilReport && m_report) {
        m_unreported = 0;
        m_report();
    }
    if (end > m_copied)
        m_copied = std::min<std::uint64_t>(
            static_cast<const SnapshotHeader*>(m_header)->copied.load(std::memory_order_acquire), m_size);
    if (end > m_copied && m_isFileShown && length >= largeRange)
        return {m_shown + offset, length};
    if (end > m_copied)
        fetch(std::max<size_t>(offset, m_copied) / blockSize, (end - 1) / blockSize + 1);
    return {m_bytes + offset, length};
}

/// Gives whole pages of the content memory of their own. Without that the system would keep an empty page of
/// the snapshot beneath each that is written to, as it does where it gives none.
void SnapshotReader::own(size_t begin, size_t end) const {
    const auto pageSize = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    if (begin % pageSize != 0 || (end % pageSize != 0 && end != m_size))
        return;
    static_cast<void>(::mmap(m_bytes + begin, end - begin, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0));
}

/// Has all of the content show the snapshot.
void SnapshotReader::disown() {
    if (::mmap(m_bytes, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE | MAP_FIXED,
               m_memory.get(), snapshotContentOffset) == MAP_FAILED)
        throw std::bad_alloc();
}

/// Reads what is missing of the blocks, as many as lie side by side at once.
void SnapshotReader::fetch(size_t begin, size_t end) const {
    for (size_t block = begin; block < end;) {
        size_t behind = block;
        while (behind < end && !m_fetched[behind])
            ++behind;
        size_t at = block * blockSize;
        const size_t stop = std::min(behind * blockSize, m_size);
        if (at < stop)
            own(at, stop);
        while (at < stop) {
            const ssize_t count = readAt(m_file, m_bytes + at, stop - at, at);
            if (count <= 0) {
                m_error = count < 0 ? errno : EIO;
                requireReadable();
            }
            at += static_cast<size_t>(count);
            if (m_report)
                m_report();  // a share may take long for each of them
        }
        std::fill(m_fetched.begin() + static_cast<ptrdiff_t>(block),
                  m_fetched.begin() + static_cast<ptrdiff_t>(behind), true);
        block = behind + 1;
    }
}

void SnapshotReader::requireReadable() const {
    if (m_error != 0)
        throw fileError(FileAction::read, {}, m_error);
}

bool SnapshotReader::agreesWithSnapshot() {
    std::vector<char> copied(blockSize);
    for (size_t block = 0; block < m_fetched.size(); ++block) {
        if (!m_fetched[block])
            continue;
        const size_t offset = block * blockSize;
        const size_t length = std::min(blockSize, m_size - offset);
        const ssize_t count = readAt(m_memory, copied.data(), length, snapshotContentOffset + offset);
        if (count != static_cast<ssize_t>(length) ||
            std::memcmp(copied.data(), m_bytes + offset, length) != 0)
            return false;
    }
    // What was read from the file goes; the same bytes show in its place, those that everybody shares.
    if (!m_fetched.empty())
        disown();
    m_fetched.clear();
    m_copied = m_size;
    return true;
}

}  // namespace vellmora
