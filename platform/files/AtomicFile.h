#pragma once

#include "platform/files/Durability.h"
#include "platform/files/FileDescriptor.h"

#include <QString>

namespace vellmora {

/// Writes a file as a whole: into a hidden temporary file beside it, which takes its name only when all of it
/// is on the disk. Without `commit()` the target stays as it was and nothing is left behind.
///
/// A symbolic link is followed: the file behind it is replaced, the link stays. A target that exists but may
/// not be written, or that is no regular file, is refused. The new file has the permissions that the
/// process's umask gives, and where a file is replaced none that the old one did not have.
///
/// All operations throw `Error` (POSIX domain).
class AtomicFile {
public:
    explicit AtomicFile(const QString& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void write(const char* bytes, qint64 count);
    /// Syncs, renames over the target and syncs the folder, unless `durability` does without. Where it fails
    /// the target is as it was, or, where only the last step failed, it is the new file, whole, of which
    /// nobody knows whether it outlives a power failure.
    void commit(Durability durability = Durability::synced);

private:
    QString m_target;
    QString m_temporary;
    FileDescriptor m_file;
};

}  // namespace vellmora
