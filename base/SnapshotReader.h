#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include <QByteArray>

namespace vellmora {

/// What becomes of a range of a file that is not copied yet.
enum class UncopiedRange {
    isRead,   ///< into memory of this process
    isShown,  ///< where it lies in the file, a checksum of it being kept: nothing is copied
    isTold,   ///< the same without a look at it, for who only says where it is: no comparison covers it
};

/// A snapshot's content as another process reads it, while it is still being copied: what is not there yet
/// is taken from the file. One thread only.
class SnapshotReader {
public:
    /// `memory` is a snapshot's of `size` bytes; `file` may be invalid where all is copied. Throws
    /// `std::bad_alloc` where it cannot be mapped.
    SnapshotReader(FileDescriptor memory, FileDescriptor file, size_t size);
    /// Bytes that are there.
    explicit SnapshotReader(QByteArray bytes);
    ~SnapshotReader();
    SnapshotReader(const SnapshotReader&) = delete;
    SnapshotReader& operator=(const SnapshotReader&) = delete;

    size_t size() const { return m_size; }
    /// A range inside of the content, in memory that lives as long as the object. Throws `Error` where it
    /// cannot be read.
    std::string_view range(size_t offset, size_t length) const;
    std::string_view all() const { return range(0, m_size); }

    /// From here on; at first, what is not copied yet is read. Where ranges are not read, the process ends
    /// when somebody has cut the file short and such a range is looked at. Does nothing where the system
    /// cannot show the file.
    void setUncopied(UncopiedRange use) { m_uncopied = m_shown ? use : UncopiedRange::isRead; }
    /// The memory that ranges are in. It may not hold yet what is not asked for by `range`.
    std::string_view memory() const { return {m_bytes, m_bytes ? m_size : 0}; }
    /// The same for ranges that lie in the file; empty where there are none.
    std::string_view shownFile() const { return {m_shown, m_shown ? m_size : 0}; }

    /// `report` is called every now and then while ranges are read, and for each read of the file.
    void whenRead(std::function<void()> report) { m_report = std::move(report); }

    /// Throws the `Error` of a range that could not be read, whoever asked for it.
    void requireReadable() const;
    /// Once all is copied: whether what was taken from the file is the same. Then it takes no memory of its
    /// own any more, and nothing is in the file; ranges that were given out stay. Where it is not, the file
    /// has changed in between.
    bool agreesWithSnapshot();

private:
    struct Block {
        size_t offset;
        size_t length;
    };
    Block block(size_t index) const;
    void tellOfWork() const;
    void fetch(size_t begin, size_t end) const;
    bool own(size_t begin, size_t end) const;
    void showSnapshot(char* content, size_t begin, size_t end) const;
    void check(size_t begin, size_t end) const;
    bool isInSnapshot(size_t index, std::vector<char>& buffer) const;

    QByteArray m_given;
    FileDescriptor m_memory;
    FileDescriptor m_file;
    size_t m_size;
    const void* m_header = nullptr;
    /// A page shows the snapshot until it is read from the file.
    char* m_bytes = nullptr;
    char* m_shown = nullptr;  ///< the file; none where all is copied, or it cannot be mapped
    UncopiedRange m_uncopied = UncopiedRange::isRead;
    mutable std::uint64_t m_copied = 0;  ///< as far as is known
    mutable std::vector<bool> m_fetched;
    mutable std::vector<size_t> m_checksums;  ///< of the blocks that were looked at in the file; else 0
    mutable int m_error = 0;
    std::function<void()> m_report;
    mutable unsigned m_rangeCount = 0;
};

}  // namespace vellmora
