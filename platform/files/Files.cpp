#include "platform/files/Files.h"

#include "platform/files/AtomicFile.h"
#include "platform/files/FileError.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include <QFile>
#include <QFileInfo>

namespace vellmora::files {

namespace {

constexpr int maxLinks = 40;  // what the kernel follows before it answers ELOOP

/// Reads up to `capacity` bytes; fewer only at the end of the file.
qint64 readFully(const FileDescriptor& fd, char* buffer, qint64 capacity, const QString& path) {
    qint64 done = 0;
    while (done < capacity) {
        const ssize_t n = ::read(fd.get(), buffer + done, static_cast<size_t>(capacity - done));
        if (n == 0)
            break;
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw fileError(FileAction::read, path, errno);
        done += n;
    }
    return done;
}

void requireRegular(mode_t mode, FileAction action, const QString& path) {
    if (!S_ISREG(mode))
        throw fileError(action, path, S_ISDIR(mode) ? EISDIR : EINVAL);
}

/// umask(2) tells it only by changing it: two threads that ask at once may leave it changed for good.
mode_t currentUmask() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        mode_t mask = 0;
        if (word == "Umask:" && status >> std::oct >> mask)
            return mask;
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

}  // namespace

OpenedFile openForReading(const QString& path) {
    // Non-blocking, since opening a pipe for reading would wait for a writer.
    FileDescriptor fd(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!fd.isValid() || ::fstat(fd.get(), &info) != 0)
        throw fileError(FileAction::read, path, errno);
    requireRegular(info.st_mode, FileAction::read, path);
    return {std::move(fd), info.st_size};
}

void createDirectory(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), 0777) == 0)
        return;
    if (errno == ENOENT) {
        const QString parent = QFileInfo(path).path();
        if (parent == path)
            throw fileError(FileAction::createFolder, path, ENOENT);
        createDirectory(parent);
        if (::mkdir(name.constData(), 0777) == 0)
            return;
    }
    const int error = errno;
    if (error == EEXIST && QFileInfo(path).isDir())
        return;
    throw fileError(FileAction::createFolder, path, error);
}

bool exists(const QString& path) {
    return QFileInfo::exists(path);
}

QSet<QString> regularFileNames(const QString& folder) {
    QSet<QString> names;
    if (DIR* entries = ::opendir(QFile::encodeName(folder).constData())) {
        while (const dirent* entry = ::readdir(entries)) {
            if (entry->d_type == DT_REG)
                names.insert(QFile::decodeName(entry->d_name));
        }
        ::closedir(entries);
    }
    return names;
}

bool isGone(const QString& path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) != 0 &&
           (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

QByteArray read(const QString& path) {
    return read(openForReading(path), path);
}

QByteArray read(const OpenedFile& opened, const QString& path) {
    try {
        QByteArray bytes(opened.size, Qt::Uninitialized);
        bytes.truncate(readFully(opened.file, bytes.data(), opened.size, path));
        return bytes;
    } catch (const std::bad_alloc&) {
        throw fileError(FileAction::read, path, ENOMEM);
    }
}

void remove(const QString& path) {
    if (::unlink(QFile::encodeName(path).constData()) != 0)
        throw fileError(FileAction::remove, path, errno);
}

void writeAtomically(const QString& path, const QByteArray& bytes, Durability durability) {
    AtomicFile file(path);
    file.write(bytes.constData(), bytes.size());
    file.commit(durability);
}

void copy(const QString& from, const QString& to) {
    const OpenedFile source = openForReading(from);
    AtomicFile destination(to);
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    while (const qint64 n = readFully(source.file, buffer.data(), buffer.size(), from))
        destination.write(buffer.constData(), n);
    destination.commit();
}

QString resolved(const QString& path) {
    std::filesystem::path current = QFile::encodeName(path).toStdString();
    for (int i = 0; i < maxLinks; ++i) {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(current, error);
        if (error)  // no link
            return QFile::decodeName(current.c_str());
        // Never tidied up: ".." in a linked folder leads to where that folder really lies.
        current = current.parent_path() / target;
    }
    throw fileError(FileAction::write, path, ELOOP);
}

void requireWritable(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    if (::access(name.constData(), F_OK) == 0 && ::access(name.constData(), W_OK) != 0)
        throw fileError(FileAction::write, path, errno);
    struct stat info {};
    if (::stat(name.constData(), &info) == 0)
        requireRegular(info.st_mode, FileAction::write, path);
}

unsigned permissionsForNewFile(const QString& path) {
    mode_t permissions = 0666U & ~currentUmask();
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) == 0)
        permissions &= info.st_mode;
    return permissions | S_IRUSR | S_IWUSR;
}

void rename(const QString& from, const QString& to, Durability durability) {
    // Opened first: were it not possible afterwards, the change would have been made already.
    const QByteArray folder = QFile::encodeName(QFileInfo(to).path());
    const FileDescriptor fd(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.isValid() && errno != EACCES)  // a folder that is not to be listed may be writable all the same
        throw fileError(FileAction::replace, to, errno);
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        throw fileError(FileAction::replace, to, errno);
    // Some file systems (FAT, network mounts) cannot sync a folder; the file itself is on the disk.
    const bool isSynced = durability == Durability::synced && fd.isValid();
    if (isSynced && ::fsync(fd.get()) != 0 && errno != EINVAL && errno != ENOTSUP)
        throw fileError(FileAction::write, to, errno);
}

}  // namespace vellmora::files
