#pragma once

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "base/TemporaryFile.h"

#include <QString>

namespace vellmora {

/// Writes a file as a whole: into a hidden temporary file beside it, which takes its name only when all of it
/// is on the disk. Without `commit()` the target stays as it was and nothing is left behind; what a killed
/// program left is cleared when the next file is written in that folder.
///
/// A symbolic link is followed: the file behind it is replaced, the link stays. A link that another user made
/// in a folder for all is refused, and so is a target that exists but may not be written, or that is no
/// regular file. Owner, group, permissions and attributes are kept (see `takeOverAttributes`).
///
/// All operations throw `Error` (POSIX domain).
class AtomicFile {
public:
    /// What stands under the name is kept in all but its content, or makes way for a file like a new one.
    enum class Place { kept, taken };

    /// With `taken` nothing of the above holds of a link, of what may not be written, and of attributes: the
    /// new file takes the name from whatever has it, but for a folder.
    AtomicFile(const QString& path, Place place);
    /// `action` is what the message of an error says was tried where no file can be made in the folder.
    explicit AtomicFile(const QString& path, FileAction action = FileAction::create);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void write(const char* bytes, qint64 count);
    /// Takes back all that was written. Before `finish()` only.
    void restart();
    /// Ends the writing and syncs the file, unless `durability` does without.
    void finish(Durability durability = Durability::synced);
    /// Finishes where that was not done, renames over the target and syncs the folder, unless `durability`
    /// does without. Where it fails the target is as it was, or, where only the last step failed, it is the
    /// new file, whole, of which nobody knows whether it outlives a power failure.
    void commit(Durability durability = Durability::synced);

private:
    void create(FileAction action);

    QString m_target;
    Place m_place = Place::kept;
    QString m_temporary;
    FileDescriptor m_file;
    FileDescriptor m_lock;  ///< keeps the file locked from the end of the writing until it has its name
};

}  // namespace vellmora
