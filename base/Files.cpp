#include "base/Files.h"

#include "base/AtomicFile.h"
#include "base/FileError.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <list>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
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

/// The rule that the kernel has too, where it is switched on (fs.protected_symlinks). It does not see the
/// links that are followed here.
bool isTrusted(const struct stat& link, const std::filesystem::path& folder) {
    constexpr mode_t forAll = S_ISVTX | S_IWOTH;
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0)
        return false;
    return (info.st_mode & forAll) != forAll || link.st_uid == ::geteuid() || link.st_uid == info.st_uid;
}

/// A folder under this name gets another one beside it.
void moveFolderAside(const QString& path) {
    struct stat info {};
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return;
    QString aside = path + QStringLiteral(".beiseite");
    for (int number = 2; exists(aside); ++number)
        aside = path + QStringLiteral(".beiseite-%1").arg(number);
    rename(path, aside);
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
    QStringList names;
    if (DIR* entries = ::opendir(QFile::encodeName(folder).constData())) {
        while (const dirent* entry = ::readdir(entries)) {
            if (entry->d_type == DT_REG)
                names.append(QFile::decodeName(entry->d_name));
        }
        ::closedir(entries);
    }
    return {names.cbegin(), names.cend()};
}

bool isGone(const QString& path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) != 0 &&
           (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

QByteArray read(const QString& path, qint64 limit) {
    const OpenedFile opened = openForReading(path);
    if (opened.size > limit)
        throw fileError(FileAction::read, path, EFBIG);
    return read(opened, path);
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

void putInPlace(const QString& path, const QByteArray& bytes, Durability durability) {
    AtomicFile file(path, AtomicFile::Place::taken);
    file.write(bytes.constData(), bytes.size());
    file.finish(durability);
    moveFolderAside(path);
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
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path whole = fs::absolute(QFile::encodeName(path).toStdString(), error);
    std::list<fs::path> rest(whole.begin(), whole.end());
    fs::path current;  // without links
    for (int links = 0; !rest.empty();) {
        const fs::path part = rest.front();
        rest.pop_front();
        if (part == ".." && fs::is_directory(current, error)) {
            current = current.parent_path();
            continue;
        }
        const fs::path next = current / part;
        struct stat info {};
        if (part.empty() || part == "." || ::lstat(next.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) {
            current = next;
            continue;
        }
        if (++links > maxLinks)
            throw fileError(FileAction::write, path, ELOOP);
        if (!isTrusted(info, current))
            throw foreignLinkError(path);
        const fs::path target = fs::read_symlink(next, error);
        if (error)
            throw fileError(FileAction::write, path, error.value());
        rest.insert(rest.begin(), target.begin(), target.end());
    }
    return QFile::decodeName(current.c_str());
}

void requireWritable(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    if (::access(name.constData(), F_OK) == 0 && ::access(name.constData(), W_OK) != 0)
        throw fileError(FileAction::write, path, errno);
    struct stat info {};
    if (::stat(name.constData(), &info) == 0)
        requireRegular(info.st_mode, FileAction::write, path);
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

void makeFileSizeLimitAnError() {
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace vellmora::files
