#include "base/SnapshotReader.h"

#include "base/FileError.h"
#include "base/SnapshotMemory.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

#include <QHashFunctions>

namespace vellmora {

namespace {

/// Small, since a document is opened with little from many places.
constexpr size_t blockSize = 1 << 13;
/// So often somebody hears that there is work.
constexpr unsigned reportInterval = 1 << 10;
constexpr size_t blocksUntilReport = 64;
/// So often the file that is shown is taken out of the process's memory: who goes through all of it needs
/// little of it at a time.
constexpr unsigned restInterval = 1 << 16;
static_assert(restInterval % reportInterval == 0);

/// Zero for none.
size_t checksum(const char* bytes, size_t length) {
    return qHashBits(bytes, length, length) | 1;
}

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
    m_shown = shown == MAP_FAILED ? nullptr : static_cast<char*>(shown);
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
        ::munmap(m_shown, m_size);
}

SnapshotReader::Block SnapshotReader::block(size_t index) const {
    const size_t offset = index * blockSize;
    return {offset, std::min(blockSize, m_size - offset)};
}

void SnapshotReader::tellOfWork() const {
    if (m_report)
        m_report();
    if (m_shown && m_rangeCount % restInterval == 0)
        ::madvise(m_shown, m_size, MADV_DONTNEED);
}

std::string_view SnapshotReader::range(size_t offset, size_t length) const {
    const size_t end = offset + length;
    if (++m_rangeCount % reportInterval == 0)
        tellOfWork();
    if (end <= m_copied || length == 0)
        return {m_bytes + offset, length};
    if (m_uncopied == UncopiedRange::isTold)
        return {m_shown + offset, length};
    if (m_uncopied == UncopiedRange::isShown) {
        check(offset / blockSize, (end - 1) / blockSize + 1);
        return {m_shown + offset, length};
    }
    m_copied = std::min<std::uint64_t>(
        static_cast<const SnapshotHeader*>(m_header)->copied.load(std::memory_order_acquire), m_size);
    if (end > m_copied)
        fetch(std::max<size_t>(offset, m_copied) / blockSize, (end - 1) / blockSize + 1);
    return {m_bytes + offset, length};
}

/// Gives whole pages of the content memory of their own. Without that the system would keep an empty page of
/// the snapshot beneath each that is written to, as it does where it gives none.
bool SnapshotReader::own(size_t begin, size_t end) const {
    const auto pageSize = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    if (begin % pageSize != 0 || (end % pageSize != 0 && end != m_size))
        return false;
    return ::mmap(m_bytes + begin, end - begin, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) != MAP_FAILED;
}

/// Has whole pages of the content, in one of the places where it lies, be those of the snapshot.
void SnapshotReader::showSnapshot(char* content, size_t begin, size_t end) const {
    if (::mmap(content + begin, end - begin, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE | MAP_FIXED,
               m_memory.get(), static_cast<off_t>(snapshotContentOffset + begin)) == MAP_FAILED)
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
        const bool isOwn = at < stop && own(at, stop);
        while (at < stop) {
            const ssize_t count = readAt(m_file, m_bytes + at, stop - at, at);
            if (count <= 0) {
                m_error = count < 0 ? errno : EIO;
                // Nobody may take what was not read for empty.
                if (isOwn)
                    showSnapshot(m_bytes, block * blockSize, stop);
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

/// Remembers what blocks hold when they are looked at for the first time.
void SnapshotReader::check(size_t begin, size_t end) const {
    if (m_checksums.empty())
        m_checksums.resize(m_fetched.size());
    for (size_t index = begin; index < end; ++index) {
        if (m_checksums[index] != 0)
            continue;
        const Block looked = block(index);
        m_checksums[index] = checksum(m_shown + looked.offset, looked.length);
        if (index % blocksUntilReport == 0 && m_report)
            m_report();
    }
}

void SnapshotReader::requireReadable() const {
    if (m_error != 0)
        throw fileError(FileAction::read, {}, m_error);
}

/// Whether the block was not taken from the file, or the snapshot has the same.
bool SnapshotReader::isInSnapshot(size_t index, std::vector<char>& buffer) const {
    const size_t looked = m_checksums.empty() ? 0 : m_checksums[index];
    if (!m_fetched[index] && looked == 0)
        return true;
    const Block taken = block(index);
    const ssize_t count = readAt(m_memory, buffer.data(), taken.length, snapshotContentOffset + taken.offset);
    return count == static_cast<ssize_t>(taken.length) &&
           (!m_fetched[index] || std::memcmp(buffer.data(), m_bytes + taken.offset, taken.length) == 0) &&
           (looked == 0 || checksum(buffer.data(), taken.length) == looked);
}

bool SnapshotReader::agreesWithSnapshot() {
    if (!m_file.isValid())
        return true;
    std::vector<char> buffer(blockSize);
    for (size_t index = 0; index < m_fetched.size(); ++index) {
        if (!isInSnapshot(index, buffer))
            return false;
    }
    // What was taken from the file goes; the same bytes show in its place, those that everybody shares.
    for (char* content : {m_bytes, m_shown}) {
        if (content)
            showSnapshot(content, 0, m_size);
    }
    m_copied = m_size;
    m_fetched = std::vector<bool>();
    m_checksums = std::vector<size_t>();
    m_file = FileDescriptor();
    return true;
}

}  // namespace vellmora
