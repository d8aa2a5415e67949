#include "base/Error.h"
#include "base/Files.h"
#include "base/TemporaryFile.h"
#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"

#include <optional>

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

/// Makes all ids different. An entry with the id of an earlier one gets a new id, so that both are kept.
void makeIDsUnique(QList<StampPreset>& presets) {
    QSet<QUuid> seen;
    for (StampPreset& preset : presets) {
        if (seen.contains(preset.id))
            preset.id = QUuid::createUuid();
        seen.insert(preset.id);
    }
}

}  // namespace

QString StampLibrary::libraryRoot() const {
    const Folders& folders = m_environment.folders;
    const QString base =
        folders.applicationSupport.isEmpty() ? folders.temporary : folders.applicationSupport;
    return base + QLatin1Char('/') + libraryFolderName;
}

QString StampLibrary::stampsDirectory() const {
    return libraryRoot() + QLatin1Char('/') + imageFolderName;
}

QString StampLibrary::metadataPath() const {
    return libraryRoot() + QLatin1Char('/') + metadataFileName;
}

QString StampLibrary::filePath(const StampPreset& preset) const {
    if (!isPlainFileName(preset.fileName))
        return {};
    return stampsDirectory() + QLatin1Char('/') + preset.fileName;
}

void StampLibrary::ensureLibraryDirectories() const {
    files::createDirectory(libraryRoot());
    files::createDirectory(stampsDirectory());
}

QList<StampPreset> StampLibrary::loadPresets() const {
    ensureLibraryDirectories();
    removeStaleTemporaryFiles(libraryRoot());
    if (!files::exists(metadataPath()))
        return {};
    std::optional<QList<StampPreset>> presets = decodePresets(files::read(metadataPath()));
    if (!presets) {
        throw Error(Error::vellmoraDomain, 2,
                    QStringLiteral("Die Stempelbibliothek konnte nicht gelesen werden."));
    }
    const QSet<QString> names = files::regularFileNames(stampsDirectory());
    presets->removeIf(
        [&](const StampPreset& p) { return !names.contains(p.fileName) && files::isGone(filePath(p)); });
    makeIDsUnique(*presets);
    return *presets;
}

void StampLibrary::loadLibrary() {
    try {
        m_presets = loadPresets();
        sortPresets();
        restoreSelection();
    } catch (const Error&) {
        // Set even where no file is seen: it may lie on a volume that cannot be reached at the moment.
        m_hasUnreadableMetadata = true;
        m_presets.clear();
        setSelectedPresetID(std::nullopt);
    }
}

/// A path beside the metadata file that no file has yet.
QString StampLibrary::unusedAsidePath() const {
    const QString time = m_environment.clock().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString stem = libraryRoot() + QStringLiteral("/stamp-library.unlesbar-") + time;
    QString path = stem + QStringLiteral(".json");
    for (int number = 2; files::exists(path); ++number)
        path = stem + QStringLiteral("-%1.json").arg(number);
    return path;
}

/// Keeps a metadata file that could not be loaded, once, before it is overwritten. Where its bytes can be
/// read a copy is written beside it, else the file itself is renamed.
void StampLibrary::keepUnreadableMetadata() {
    if (!m_hasUnreadableMetadata || !files::exists(metadataPath()))
        return;
    std::optional<QByteArray> bytes;
    try {
        bytes = files::read(metadataPath());
    } catch (const Error&) {
        files::rename(metadataPath(), unusedAsidePath());
    }
    if (bytes)
        files::writeAtomically(unusedAsidePath(), *bytes);
    m_hasUnreadableMetadata = false;
}

void StampLibrary::persistMetadata() {
    ensureLibraryDirectories();
    keepUnreadableMetadata();
    files::writeAtomically(metadataPath(), encodePresets(m_presets));
    m_hasUnreadableMetadata = false;
}

}  // namespace vellmora
