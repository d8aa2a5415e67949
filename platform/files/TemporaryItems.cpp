#include "platform/files/TemporaryItems.h"

#include "platform/files/FileError.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QFile>
#include <QList>

namespace vellmora {

namespace {

constexpr QByteArrayView prefix(".vellmora-");
constexpr QByteArrayView placeholders("XXXXXX");

QByteArray nameTemplate(const QString& folder) {
    return QFile::encodeName(folder) + '/' + prefix.toByteArray() + placeholders.toByteArray();
}

/// Locks a new item. False where another program's clearing got hold of it between its creation and now.
bool lockNewItem(int fd) {
    // A file system without locks is used all the same: nothing there is ever taken for stale.
    const bool taken = ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat info {};
    return !taken && ::fstat(fd, &info) == 0 && info.st_nlink > 0;
}

/// Removes the files in an open folder, and the folder. Names are looked up in the folder that is open, so
/// that nobody who puts a link in its place can lead the removal elsewhere. A temporary folder holds no other
/// folder.
void removeFolder(int fd, const char* path) {
    if (DIR* entries = ::fdopendir(::fcntl(fd, F_DUPFD_CLOEXEC, 0))) {
        while (const dirent* entry = ::readdir(entries))
            ::unlinkat(fd, entry->d_name, 0);
        ::closedir(entries);
    }
    ::rmdir(path);
}

/// Paths of the temporary items in the folder, which may hold thousands of other files.
QList<QByteArray> temporaryItems(const QByteArray& folder) {
    QList<QByteArray> paths;
    if (DIR* entries = ::opendir(folder.constData())) {
        while (const dirent* entry = ::readdir(entries)) {
            const QByteArrayView name(entry->d_name);
            if (name.size() == prefix.size() + placeholders.size() && name.startsWith(prefix))
                paths.append(folder + '/' + entry->d_name);
        }
        ::closedir(entries);
    }
    return paths;
}

bool isFolder(int fd) {
    struct stat info {};
    return ::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

TemporaryFile createTemporaryFile(const QString& folder) {
    for (;;) {
        QByteArray name = nameTemplate(folder);
        FileDescriptor fd(::mkostemp(name.data(), O_CLOEXEC));
        if (!fd.isValid())
            throw fileError(FileAction::create, folder, errno);
        if (lockNewItem(fd.get()))
            return {QFile::decodeName(name), std::move(fd)};
    }
}

TemporaryDirectory createTemporaryDirectory(const QString& folder) {
    for (;;) {
        QByteArray name = nameTemplate(folder);
        if (!::mkdtemp(name.data()))
            throw fileError(FileAction::createFolder, folder, errno);
        FileDescriptor fd(::open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        const int error = fd.isValid() ? 0 : errno;
        if (fd.isValid() && lockNewItem(fd.get()))
            return {QFile::decodeName(name), std::move(fd)};
        if (error != 0 && error != ENOENT) {  // ENOENT: another program's clearing was faster
            ::rmdir(name.constData());
            throw fileError(FileAction::createFolder, folder, error);
        }
    }
}

void removeTemporaryDirectory(const TemporaryDirectory& directory) {
    removeFolder(directory.lock.get(), QFile::encodeName(directory.path).constData());
}

void removeStaleTemporaryItems(const QString& folder) {
    for (const QByteArray& name : temporaryItems(QFile::encodeName(folder))) {
        const FileDescriptor fd(::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (!fd.isValid() || ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0)
            continue;
        if (isFolder(fd.get()))
            removeFolder(fd.get(), name.constData());
        else
            ::unlink(name.constData());
    }
}

}  // namespace vellmora
