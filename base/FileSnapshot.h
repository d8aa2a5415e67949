#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include <QByteArray>
#include <QString>

namespace vellmora {

class FileDescriptor;

/// The bytes of a file, at hand before all of them are read: a large file is read by a thread of its own from
/// `readAhead()` on, and who needs a part of it earlier reads that part. Once it is read, the file itself is
/// not needed any more. A file that changed while it was read is noticed: its bytes may be of two versions.
///
/// May be used by several threads at a time.
class FileSnapshot {
public:
    /// Throws `Error` as `files::read` does, also where a small file keeps changing.
    static std::shared_ptr<const FileSnapshot> open(const QString& path);

    explicit FileSnapshot(QByteArray bytes);
    ~FileSnapshot();
    FileSnapshot(const FileSnapshot&) = delete;
    FileSnapshot& operator=(const FileSnapshot&) = delete;

    size_t size() const { return static_cast<size_t>(m_bytes.size()); }

    /// A range inside of the content, in memory that lives as long as it. Waits until it is read; throws
    /// `Error` where it cannot be, or is not there any more.
    std::string_view range(size_t offset, size_t length) const;
    std::string_view all() const { return range(0, size()); }

    /// Begins to read all that is left.
    void readAhead() const;

    /// Throws the `Error` of a range that could not be read, whoever asked for it, or of a file that is known
    /// to have changed.
    void requireReadable() const;
    /// Waits until all is read, and throws where it is not the content that the file had at one time.
    void requireWhole() const;

    /// True where the open file holds these bytes and no others; `path` is what an error names.
    bool isHeldBy(const FileDescriptor& file, const QString& path) const;

private:
    class Reading;
    FileSnapshot(QByteArray bytes, std::unique_ptr<Reading> reading);

    QByteArray m_bytes;
    std::unique_ptr<Reading> m_reading;  ///< none where all is there
};

/// Hands the open file's bytes from its beginning to `take`, piece by piece with their offsets, until that
/// answers false. Throws `Error`.
void forEachPiece(const FileDescriptor& file, const QString& path,
                  const std::function<bool(std::string_view piece, size_t offset)>& take);

}  // namespace vellmora
