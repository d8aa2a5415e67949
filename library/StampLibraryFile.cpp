#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"
#include "platform/error/Error.h"
#include "platform/files/Files.h"

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

/// Ids are unique within the library. An entry that repeats one gets a new one, so that none is lost.
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
    if (!files::exists(metadataPath()))
        return {};
    std::optional<QList<StampPreset>> presets = decodePresets(files::read(metadataPath()));
    if (!presets) {
        throw Error(Error::vellmoraDomain, 2,
                    QStringLiteral("Die Stempelbibliothek konnte nicht gelesen werden."));
    }
    presets->removeIf([this](const StampPreset& p) { return !files::exists(filePath(p)); });
    makeIDsUnique(*presets);
    return *presets;
}

void StampLibrary::loadLibrary() {
    try {
        m_presets = loadPresets();
        sortPresets();
        restoreSelection();
    } catch (const Error&) {
        m_hasUnreadableMetadata = files::exists(metadataPath());
        m_presets.clear();
        setSelectedPresetID(std::nullopt);
    }
}

/// Puts a copy of a metadata file that could not be read beside it, once, before it is overwritten.
void StampLibrary::keepUnreadableMetadata() {
    if (!m_hasUnreadableMetadata)
        return;
    const QString time = m_environment.clock().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    files::copy(metadataPath(), libraryRoot() + QStringLiteral("/stamp-library.unlesbar-%1.json").arg(time));
    m_hasUnreadableMetadata = false;
}

void StampLibrary::persistMetadata() {
    ensureLibraryDirectories();
    keepUnreadableMetadata();
    files::writeAtomically(metadataPath(), encodePresets(m_presets));
}

}  // namespace vellmora
