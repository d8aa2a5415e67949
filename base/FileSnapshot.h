#pragma once

#include "base/Error.h"
#include "base/SnapshotMemory.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string_view>

#include <QByteArray>
#include <QString>

namespace vellmora {

class FileDescriptor;
class WorkProgress;
struct FileState;
namespace files {
struct OpenedFile;
}

/// The bytes of a file, in memory that this program alone can write to. A small file is there at once, a
/// large one is copied by whoever needs it, or has the time for it (`copyAll`). Once it is copied, the file
/// itself is not needed any more. A file that changed while it was copied is noticed: its bytes may be of two
/// versions.
///
/// Another process can read along (`SnapshotReader`). May be used by several threads at a time.
class FileSnapshot {
public:
    /// Throws `Error` as `files::read` does, also where a small file keeps changing.
    static std::shared_ptr<const FileSnapshot> open(const QString& path);

    /// Throws `std::bad_alloc`.
    explicit FileSnapshot(const QByteArray& bytes);
    ~FileSnapshot();
    FileSnapshot(const FileSnapshot&) = delete;
    FileSnapshot& operator=(const FileSnapshot&) = delete;

    size_t size() const { return m_memory.size(); }
    /// Copies a range of the content to `target`, which has room for it. Waits until it is there; throws the
    /// `Error` of what cannot be read.
    void read(size_t offset, char* target, size_t length) const;

    /// The same where it lies, without a copy. Empty where that would take longer: a large file can be looked
    /// at after `copyAll()`, another one never.
    std::string_view view(size_t offset, size_t length) const;

    /// Copies all that is left, unless it is cancelled. What cannot be read, or has changed, is told by
    /// `requireReadable` then.
    void copyAll(const WorkProgress& progress) const;

    /// Throws the `Error` of what could not be read so far, or of a file that is known to have changed.
    void requireReadable() const;
    /// Waits until all is copied, and throws where it is not the content that the file had at one time.
    void requireWhole() const;

    /// Reads the content for a save that does not wait until all is copied.
    class DirectReading;
    /// Nothing where all is copied already, and where it is better to wait: the system does not have most of
    /// the rest of the file in memory, or the file's times would not tell that somebody changes it.
    std::unique_ptr<const DirectReading> readDirectly() const;
    /// Whether `readDirectly` would answer something now.
    bool canBeReadDirectly() const;

    /// True where the open file holds these bytes and no others; `path` is what an error names.
    bool isHeldBy(const FileDescriptor& file, const QString& path) const;

    /// Whether another process may look at the file where it lies, for what is not copied yet: the system has
    /// most of that in memory, and the file is as long as it was.
    bool canBeShown() const;

    /// What to say of an error that another process met when it read along.
    Error readingError(int error) const;

    /// The header and the content; others cannot write to it.
    int memory() const { return m_memory.descriptor(); }
    /// The file, for who cannot wait for a part of it; negative where all is there.
    int file() const;

private:
    class Copying;
    explicit FileSnapshot(size_t size);
    static std::shared_ptr<const FileSnapshot> readAtOnce(const files::OpenedFile& opened,
                                                          const FileState& before, const QString& path);
    bool isContentOf(const FileDescriptor& file, const QString& path) const;

    SnapshotMemory m_memory;
    std::unique_ptr<Copying> m_copying;  ///< none where all is there
};

/// What is not copied yet is read from the file itself. Nothing is copied as long as the object lives. For
/// one thread; the snapshot must outlive it.
class FileSnapshot::DirectReading {
public:
    /// Copies a range of the content to `target`, as `FileSnapshot::read` does.
    void read(size_t offset, char* target, size_t length) const;
    /// Whether nobody has touched the file since it was opened. All that was read of it until now is the
    /// content that it had at one time then.
    bool isOfOneTime() const;

private:
    friend class FileSnapshot;
    explicit DirectReading(const FileSnapshot& content);

    const FileSnapshot& m_content;
    std::unique_lock<std::mutex> m_turn;
};

/// Hands the open file's bytes from its beginning to `take`, piece by piece with their offsets, until that
/// answers false. Throws `Error`.
void forEachPiece(const FileDescriptor& file, const QString& path,
                  const std::function<bool(std::string_view piece, size_t offset)>& take);

}  // namespace vellmora
