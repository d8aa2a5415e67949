#include "platform/files/AtomicFile.h"

#include "platform/files/FileError.h"
#include "platform/files/Files.h"
#include "platform/files/TemporaryItems.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>

namespace vellmora {

AtomicFile::AtomicFile(const QString& path) : m_target(files::resolved(path)) {
    files::requireWritable(m_target);
    const QString folder = QFileInfo(m_target).path();
    removeStaleTemporaryItems(folder);
    try {
        TemporaryFile temporary = createTemporaryFile(folder);
        m_temporary = temporary.path;
        m_file = std::move(temporary.file);
    } catch (const Error& error) {
        throw fileError(FileAction::create, m_target, error.code());
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

void AtomicFile::commit(Durability durability) {
    const bool isSynced = durability == Durability::synced;
    // A file system without permissions (FAT) may refuse; the file is private then, or as open as all its
    // files.
    [[maybe_unused]] const int ignored = ::fchmod(m_file.get(), files::permissionsForNewFile(m_target));
    // Closing may report a failed write. The lock stays with the second descriptor until the file has its
    // name.
    const FileDescriptor lock(::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 0));
    if ((isSynced && ::fsync(m_file.get()) != 0) || m_file.close() != 0)
        throw fileError(FileAction::write, m_target, errno);
    files::rename(m_temporary, m_target, durability);
    m_temporary.clear();
}

}  // namespace vellmora
