#include "base/AtomicFile.h"

#include "base/FileAttributes.h"
#include "base/Files.h"
#include "base/TemporaryFile.h"

#include <cerrno>
#include <fcntl.h>

#include <QFile>
#include <QFileInfo>

namespace vellmora {

AtomicFile::AtomicFile(const QString& path, FileAction action) : m_target(files::resolved(path)) {
    files::requireWritable(m_target);
    create(action);
}

AtomicFile::AtomicFile(const QString& path, Place place)
    : m_target(place == Place::kept ? files::resolved(path) : path), m_place(place) {
    if (place == Place::kept)
        files::requireWritable(m_target);
    create(FileAction::create);
}

void AtomicFile::create(FileAction action) {
    const QString folder = QFileInfo(m_target).path();
    removeStaleTemporaryFiles(folder);
    try {
        TemporaryFile temporary = createTemporaryFile(folder);
        m_temporary = temporary.path;
        m_file = std::move(temporary.file);
    } catch (const Error& error) {
        throw fileError(action, m_target, error.code());
    }
}

AtomicFile::~AtomicFile() {
    if (!m_temporary.isEmpty())
        ::unlink(QFile::encodeName(m_temporary).constData());
}

void AtomicFile::write(const char* bytes, qint64 count) {
    while (count > 0) {
        const ssize_t n = ::write(m_file.get(), bytes, static_cast<size_t>(count));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw fileError(FileAction::write, m_target, errno);
        bytes += n;
        count -= n;
    }
}

void AtomicFile::restart() {
    if (::ftruncate(m_file.get(), 0) != 0 || ::lseek(m_file.get(), 0, SEEK_SET) != 0)
        throw fileError(FileAction::write, m_target, errno);
}

void AtomicFile::finish(Durability durability) {
    if (m_place == Place::kept)
        takeOverAttributes(m_file.get(), m_target);
    else
        giveNewFileAttributes(m_file.get(), QFileInfo(m_target).path());
    m_lock = FileDescriptor(::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 0));
    const bool isSynced = durability == Durability::synced;
    // Closing may report a failed write.
    if ((isSynced && ::fsync(m_file.get()) != 0) || m_file.close() != 0)
        throw fileError(FileAction::write, m_target, errno);
}

void AtomicFile::commit(Durability durability) {
    if (m_file.isValid())
        finish(durability);
    files::rename(m_temporary, m_target, durability);
    m_temporary.clear();
    m_lock = FileDescriptor();
}

}  // namespace vellmora
