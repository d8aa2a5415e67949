#include "platform/files/ReplacementDirectory.h"

#include "platform/files/FileError.h"
#include "platform/files/Files.h"

#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>

namespace vellmora {

ReplacementDirectory::ReplacementDirectory(const QString& original) : m_original(files::resolved(original)) {
    files::requireWritable(m_original);
    const QString folder = QFileInfo(m_original).path();
    removeStaleTemporaryItems(folder);
    try {
        m_directory = createTemporaryDirectory(folder);
    } catch (const Error& error) {
        throw fileError(FileAction::replace, m_original, error.code());
    }
}

ReplacementDirectory::~ReplacementDirectory() {
    removeTemporaryDirectory(m_directory);
}

void ReplacementDirectory::replaceOriginal(const QString& replacement) {
    const QByteArray from = QFile::encodeName(replacement);
    // A file system without permissions (FAT) may refuse; all its files are alike then.
    [[maybe_unused]] const int ignored = ::chmod(from.constData(), files::permissionsForNewFile(m_original));
    files::rename(replacement, m_original);
}

}  // namespace vellmora
