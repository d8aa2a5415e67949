#include "library/LibraryFolder.h"

#include "base/Files.h"

#include <algorithm>
#include <utility>

#include <QSet>

namespace vellmora {

namespace {

const QString libraryFolderName = QStringLiteral("Vellmora");
const QString imageFolderName = QStringLiteral("Stamps");

/// A file name that cannot lead out of the folder that it is appended to.
bool isPlainFileName(const QString& name) {
    return !name.isEmpty() && name != QStringLiteral(".") && name != QStringLiteral("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar::Null);
}

}  // namespace

const QString LibraryFolder::metadataFileName = QStringLiteral("stamp-library.json");

LibraryFolder::LibraryFolder(Folders folders) : m_folders(std::move(folders)) {}

QString LibraryFolder::root() const {
    const QString base =
        m_folders.applicationSupport.isEmpty() ? m_folders.temporary : m_folders.applicationSupport;
    return base + QLatin1Char('/') + libraryFolderName;
}

QString LibraryFolder::stampsDirectory() const {
    return root() + QLatin1Char('/') + imageFolderName;
}

QString LibraryFolder::metadataPath() const {
    return root() + QLatin1Char('/') + metadataFileName;
}

QString LibraryFolder::lockPath() const {
    return root() + QStringLiteral("/.") + metadataFileName + QStringLiteral(".lock");
}

QString LibraryFolder::decodingDirectory() const {
    return root() + QStringLiteral("/.decoding");
}

QString LibraryFolder::unusedAsidePath(const QDateTime& now) const {
    const QString time = now.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString stem = root() + QStringLiteral("/stamp-library.unlesbar-") + time;
    QString path = stem + QStringLiteral(".json");
    for (int number = 2; files::exists(path); ++number)
        path = stem + QStringLiteral("-%1.json").arg(number);
    return path;
}

QString LibraryFolder::filePath(const StampPreset& preset) const {
    if (!isPlainFileName(preset.fileName))
        return {};
    return stampsDirectory() + QLatin1Char('/') + preset.fileName;
}

void LibraryFolder::ensureDirectories() const {
    files::createDirectory(root());
    files::createDirectory(stampsDirectory());
}

QList<StampPreset> LibraryFolder::withPictures(QList<StampPreset> presets) const {
    const QSet<QString> names = files::regularFileNames(stampsDirectory());
    const auto isGone = [&](const StampPreset& p) {
        return !names.contains(p.fileName) && files::isGone(filePath(p));
    };
    // The list is not copied where it stays as it is.
    if (std::any_of(presets.cbegin(), presets.cend(), isGone))
        presets.removeIf(isGone);
    return presets;
}

}  // namespace vellmora
