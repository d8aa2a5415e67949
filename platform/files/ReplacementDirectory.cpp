#include "platform/files/ReplacementDirectory.h"

#include "platform/files/FileError.h"
#include "platform/files/Files.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vellmora {

ReplacementDirectory::ReplacementDirectory(const QString& original) : m_original(files::resolved(original)) {
    files::requireWritable(m_original);
    const QString folder = QFileInfo(m_original).path();
    removeStaleTemporaryItems(folder);
    m_directory = createTemporaryDirectory(folder);
}

ReplacementDirectory::~ReplacementDirectory() {
    QDir(m_directory.path).removeRecursively();
}

void ReplacementDirectory::replaceOriginal(const QString& replacement) {
    const QByteArray from = QFile::encodeName(replacement);
    const QByteArray to = QFile::encodeName(m_original);
    // A file system without permissions (FAT) may refuse; all its files are alike then.
    [[maybe_unused]] const int ignored = ::chmod(from.constData(), files::permissionsForNewFile(m_original));
    if (std::rename(from.constData(), to.constData()) != 0)
        throw fileError(FileAction::replace, m_original, errno);
    files::syncDirectory(QFileInfo(m_original).path());
}

}  // namespace vellmora
