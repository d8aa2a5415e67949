#pragma once

#include "base/FileDescriptor.h"
#include "base/TemporaryFile.h"

#include <limits>

#include <QByteArray>
#include <QSet>
#include <QString>

namespace vellmora::files {

/// All functions throw `Error` (POSIX domain, German text). Paths are absolute.

/// Creates the folder and all missing ones above it; an existing folder is no error.
void createDirectory(const QString& path);

bool exists(const QString& path);

/// Names of the regular files in the folder, for those who would ask for thousands of them one by one. Links
/// are left out, and on some file systems all names; a folder that cannot be listed has none.
QSet<QString> regularFileNames(const QString& folder);

/// True where there is surely no such file; false where there is one, and where that cannot be told, since a
/// folder or the volume cannot be reached.
bool isGone(const QString& path);

struct OpenedFile {
    FileDescriptor file;
    qint64 size = 0;  ///< in bytes
};

/// Opens a regular file. Anything else (folder, pipe, device) is refused without blocking.
OpenedFile openForReading(const QString& path);

/// Whole content of a regular file, as of `openForReading`. A file of more bytes than `limit` is refused
/// (EFBIG) before any of it is read.
QByteArray read(const QString& path, qint64 limit = std::numeric_limits<qint64>::max());
/// The same of one that is open, from its beginning; `path` is what an error names.
QByteArray read(const OpenedFile& opened, const QString& path);

void remove(const QString& path);

/// Replaces the file's content as a whole: readers see the old bytes or the new ones.
/// The file is on the disk when the call returns, unless `durability` does without.
void writeAtomically(const QString& path, const QByteArray& bytes,
                     Durability durability = Durability::synced);

/// Puts a new file with these bytes into the place of whatever has the name. A link is replaced, and what it
/// leads to left alone; a file that may not be written is replaced, too; a folder is renamed, so that nothing
/// in it is lost.
void putInPlace(const QString& path, const QByteArray& bytes, Durability durability = Durability::synced);

/// Byte-for-byte copy of a regular file; the destination appears whole or not at all.
void copy(const QString& from, const QString& to);

/// The file that `path` stands for, by a path without symbolic links; also where the file does not exist yet.
/// Refused is a link that another user made in a folder in which all may make one (/tmp): it could lead to
/// files that this user may write, and that one may not.
QString resolved(const QString& path);

/// Refuses a target that exists and may not be written, or that is no regular file (folder, pipe, device).
void requireWritable(const QString& path);

/// Puts a file in the place of another, or under a new name, and brings the change onto the disk where
/// `durability` asks for it. Where it fails both are as they were, unless only the disk would not confirm the
/// change.
void rename(const QString& from, const QString& to, Durability durability = Durability::synced);

/// From now on, in the whole process, a file that grows beyond the limit for it (RLIMIT_FSIZE) is an error
/// like a full disk. Else the system's signal (SIGXFSZ) ends the program. Called once, at its start.
void makeFileSizeLimitAnError();

}  // namespace vellmora::files
