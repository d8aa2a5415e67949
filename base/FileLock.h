#pragma once

#include "base/FileDescriptor.h"

#include <QByteArray>
#include <QString>

namespace vellmora {

/// One program at a time changes what the lock stands for: from its construction to its end no other lock of
/// the same path exists, in this program or another one. It ends with the program, however that ends.
///
/// The lock is a small file, which stays, and which is locked (flock). On a file system without locks a
/// second file stands for the lock while it is held, with the name of the program in it. What a program that
/// is gone left of it is cleared by the next one on the same machine, or after a minute.
class FileLock {
public:
    /// Waits for its turn, but not for ever: a program that holds the lock may hang. Throws `Error` (POSIX
    /// domain) after five seconds, and where the folder takes no file.
    explicit FileLock(const QString& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    enum class Attempt { succeeded, isTaken, isUnsupported };
    Attempt tryLock();
    bool tryHoldingFile();
    void clearHoldingFile();

    QString m_path;
    QByteArray m_holdingFile;  ///< path of the second file
    FileDescriptor m_file;
    bool m_holdsFile = false;
};

}  // namespace vellmora
