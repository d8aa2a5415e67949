#include "base/TemporaryFile.h"

#include "base/FileError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QFile>
#include <QList>
#include <QRandomGenerator>

namespace vellmora {

namespace {

// A name is ".vellmora-", 32 hexadecimal digits at random, ".tmp". Nobody gives a file such a name by chance.
constexpr QByteArrayView prefix(".vellmora-");
constexpr QByteArrayView suffix(".tmp");
constexpr qsizetype randomBytes = 16;
/// Another program's clearing gets hold of a new file once in a long while, not again and again.
constexpr int maxAttempts = 100;

QByteArray newName() {
    std::array<quint32, randomBytes / sizeof(quint32)> numbers{};
    QRandomGenerator::system()->fillRange(numbers.data(), numbers.size());
    const QByteArray bytes(reinterpret_cast<const char*>(numbers.data()), randomBytes);
    return prefix.toByteArray() + bytes.toHex() + suffix.toByteArray();
}

bool isTemporaryName(QByteArrayView name) {
    if (name.size() != prefix.size() + 2 * randomBytes + suffix.size() || !name.startsWith(prefix) ||
        !name.endsWith(suffix))
        return false;
    const QByteArrayView digits = name.sliced(prefix.size(), 2 * randomBytes);
    return std::all_of(digits.begin(), digits.end(), [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
    });
}

/// Locks a new file. False where another program's clearing got hold of it between its creation and now.
bool lockNewFile(int fd) {
    // A file system without locks is used all the same: nothing there is ever taken for stale.
    const bool taken = ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat info {};
    return !taken && ::fstat(fd, &info) == 0 && info.st_nlink > 0;
}

/// Paths of what has the name of a temporary file in the folder, which may hold thousands of other files.
QList<QByteArray> temporaryFiles(const QByteArray& folder) {
    QList<QByteArray> paths;
    if (DIR* entries = ::opendir(folder.constData())) {
        while (const dirent* entry = ::readdir(entries)) {
            if (isTemporaryName(entry->d_name))
                paths.append(folder + '/' + entry->d_name);
        }
        ::closedir(entries);
    }
    return paths;
}

/// A file of a second name was linked by somebody, and is not of our making.
bool isOwnFile(const struct stat& info) {
    return S_ISREG(info.st_mode) && info.st_uid == ::geteuid() && info.st_nlink == 1;
}

}  // namespace

TemporaryFile createTemporaryFile(const QString& folder) {
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const QByteArray path = QFile::encodeName(folder) + '/' + newName();
        FileDescriptor fd(
            ::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!fd.isValid())
            throw fileError(FileAction::create, folder, errno);
        if (lockNewFile(fd.get()))
            return {QFile::decodeName(path), std::move(fd)};
    }
    throw fileError(FileAction::create, folder, EBUSY);
}

void removeStaleTemporaryFiles(const QString& folder) {
    for (const QByteArray& path : temporaryFiles(QFile::encodeName(folder))) {
        struct stat info {};
        if (::lstat(path.constData(), &info) != 0 || !isOwnFile(info))
            continue;
        // Open for writing too, since network file systems lock nothing else.
        const FileDescriptor fd(::open(path.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (fd.isValid() && ::flock(fd.get(), LOCK_EX | LOCK_NB) == 0 && ::fstat(fd.get(), &info) == 0 &&
            isOwnFile(info))
            ::unlink(path.constData());
    }
}

}  // namespace vellmora
