#include "base/FileLock.h"

#include "base/FileError.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <QFile>
#include <QSysInfo>
#include <QUuid>

namespace vellmora {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 5s;
constexpr auto pause = 3ms;
constexpr time_t longestHold = 60;  ///< in seconds, of a program on another machine

bool isLockingUnsupported(int error) {
    return error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL || error == EBADF;
}

/// What stands where the lock's file should be cannot be opened as a file.
bool isNoFile(int error) {
    return error == ELOOP || error == EISDIR || error == ENXIO;
}

/// "machine process token": the token makes each holding another one.
QByteArray holder() {
    return QSysInfo::machineUniqueId() + ' ' + QByteArray::number(::getpid()) + ' ' +
           QUuid::createUuid().toRfc4122().toHex();
}

/// Nothing where there is no such file any more. One that must not be read counts as empty.
std::optional<QByteArray> contentOf(const QByteArray& path, struct stat& info) {
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const int found = file.isValid() ? ::fstat(file.get(), &info) : ::lstat(path.constData(), &info);
    if (found != 0)
        return std::nullopt;
    if (!file.isValid())
        return QByteArray();
    QByteArray content(256, '\0');
    content.truncate(
        std::max<qsizetype>(0, ::read(file.get(), content.data(), static_cast<size_t>(content.size()))));
    return content;
}

/// `now` by the clock of the file system, which may be another machine's.
bool isAbandoned(const QByteArray& content, time_t written, time_t now) {
    const QList<QByteArray> words = content.split(' ');
    const int process = words.size() == 3 ? words[1].toInt() : 0;
    if (process > 0 && words[0] == QSysInfo::machineUniqueId())
        return ::kill(process, 0) != 0 && errno == ESRCH;
    return now - written > longestHold;
}

time_t clockOfFileSystem(const FileDescriptor& file) {
    struct stat info {};
    if (::futimens(file.get(), nullptr) == 0 && ::fstat(file.get(), &info) == 0)
        return info.st_mtim.tv_sec;
    return ::time(nullptr);
}

}  // namespace

FileLock::FileLock(const QString& path)
    : m_path(path), m_holdingFile(QFile::encodeName(path) + QByteArrayLiteral(".held")) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const Attempt attempt = tryLock();
        if (attempt == Attempt::succeeded || (attempt == Attempt::isUnsupported && tryHoldingFile()))
            return;
        if (std::chrono::steady_clock::now() > end)
            throw fileError(FileAction::write, path, EBUSY);
        std::this_thread::sleep_for(pause);
    }
}

FileLock::~FileLock() {
    if (m_holdsFile)
        ::unlink(m_holdingFile.constData());
}

FileLock::Attempt FileLock::tryLock() {
    if (!m_file.isValid()) {
        const QByteArray name = QFile::encodeName(m_path);
        constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
        m_file = FileDescriptor(::open(name.constData(), O_RDWR | O_CREAT | flags, S_IRUSR | S_IWUSR));
        if (!m_file.isValid() && errno == EACCES)  // written by nobody: it may be read-only
            m_file = FileDescriptor(::open(name.constData(), O_RDONLY | flags));
        if (!m_file.isValid() && isNoFile(errno))
            return Attempt::isUnsupported;
        if (!m_file.isValid())
            throw fileError(FileAction::write, m_path, errno);
    }
    if (::flock(m_file.get(), LOCK_EX | LOCK_NB) == 0)
        return Attempt::succeeded;
    if (isLockingUnsupported(errno))
        return Attempt::isUnsupported;
    if (errno != EWOULDBLOCK && errno != EINTR)
        throw fileError(FileAction::write, m_path, errno);
    return Attempt::isTaken;
}

/// False where another program holds it.
bool FileLock::tryHoldingFile() {
    const FileDescriptor file(::open(m_holdingFile.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                     S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
    if (!file.isValid() && errno != EEXIST)
        throw fileError(FileAction::write, m_path, errno);
    if (!file.isValid()) {
        clearHoldingFile();
        return false;
    }
    m_holdsFile = true;
    const QByteArray words = holder();
    // Unnamed it counts as abandoned later than with a name, no more.
    [[maybe_unused]] const ssize_t ignored =
        ::write(file.get(), words.constData(), static_cast<size_t>(words.size()));
    return true;
}

/// Two programs may find the same one abandoned. The later one must not take away what the earlier one holds
/// by now: what it has taken is looked at again, and given back. One that is gone was given up by its holder,
/// and what stands there next is another one's.
void FileLock::clearHoldingFile() {
    struct stat info {};
    const std::optional<QByteArray> found = contentOf(m_holdingFile, info);
    if (!found || !isAbandoned(*found, info.st_mtim.tv_sec, clockOfFileSystem(m_file)))
        return;
    const QByteArray taken = m_holdingFile + '-' + QUuid::createUuid().toRfc4122().toHex();
    if (std::rename(m_holdingFile.constData(), taken.constData()) != 0)
        return;
    if (contentOf(taken, info) != found) [[maybe_unused]]
        const int ignored = ::link(taken.constData(), m_holdingFile.constData());
    ::unlink(taken.constData());
}

}  // namespace vellmora
