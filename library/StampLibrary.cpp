#include "library/StampLibrary.h"

#include "base/Error.h"
#include "base/Files.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

#include <QCryptographicHash>
#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace vellmora {

const QString StampLibrary::metadataFileName = LibraryFolder::metadataFileName;
const QString StampLibrary::selectedPresetDefaultsKey = QStringLiteral("Vellmora.selectedPresetID");
const QString StampLibrary::recentPresetDefaultsKey = RecentPresets::defaultsKey;

StampLibrary::StampLibrary(Environment environment)
    : m_environment(std::move(environment)),
      m_folder(m_environment.folders),
      m_store(m_folder, m_environment.clock),
      m_defaults(m_environment.folders.defaultsFile),
      m_marks(m_folder.decodingDirectory()),
      m_today(m_environment.clock),
      m_builtins(m_folder, m_environment.fonts) {
    connect(&m_today, &Today::changed, this, &StampLibrary::redrawDueBuiltins);
    connect(&m_builtins, &BuiltinPictures::drawn, this, [this] {
        if (m_builtins.isDrawing())
            bringBuiltinsUpToDate(BuiltinPictures::Missing::isLeftOut);
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &StampLibrary::showOthersChanges);
    loadLibrary();
    ensureBuiltinPresets();
    watch();
}

StampLibrary::~StampLibrary() = default;

void StampLibrary::loadLibrary() {
    try {
        m_store.load();
        m_marks.sweep(m_folder.stampsDirectory());
        restoreSelection();
    } catch (const Error&) {
        setSelectedPresetID(std::nullopt);
    }
}

/// Folders that were made or made anew meanwhile are added.
void StampLibrary::watch() {
    const QString settings = QFileInfo(m_environment.folders.defaultsFile).path();
    for (const QString& folder : {m_folder.root(), m_folder.stampsDirectory(), settings}) {
        const QFileInfo info(folder);
        if (!m_watcher.directories().contains(folder) && info.isDir() && info.isReadable())
            m_watcher.addPath(folder);
    }
}

/// The program's own writing is told, too, and is no news.
void StampLibrary::showOthersChanges(const QString& folder) {
    watch();
    const QList<QUuid> recents = m_recents.ids();
    m_defaults.reload();
    const std::optional<QList<StampPreset>> news = m_store.news();
    if (!news && folder != m_folder.stampsDirectory() && recents == m_recents.ids())
        return;
    Q_EMIT objectWillChange();
    if (news)
        adopt(*news);
}

static QSet<QUuid> idsOf(const QList<StampPreset>& presets) {
    QSet<QUuid> ids;
    for (const StampPreset& preset : presets)
        ids.insert(preset.id);
    return ids;
}

/// A selection that another window has removed is handed on here, but not in the settings: they name what
/// somebody has chosen.
void StampLibrary::adopt(const QList<StampPreset>& presets) {
    QSet<QUuid> gone = idsOf(this->presets());
    gone.subtract(idsOf(presets));
    m_store.adopt(presets);
    if (!preset(m_selectedPresetID))
        m_selectedPresetID = firstPresetID();
    if (!gone.isEmpty())
        Q_EMIT presetRemoved();
}

void StampLibrary::add(const LibraryStore::Change& change) {
    Q_EMIT objectWillChange();
    m_store.add(change);
}

void StampLibrary::save() {
    finishSaving();
    Q_EMIT objectWillChange();
    m_store.save();
    watch();
}

std::optional<StampPreset> StampLibrary::preset(const std::optional<QUuid>& id) const {
    const auto found = std::find_if(presets().begin(), presets().end(),
                                    [&](const StampPreset& candidate) { return candidate.id == id; });
    return found == presets().end() ? std::nullopt : std::optional(*found);
}

StampPreset StampLibrary::current(const StampPreset& preset) const {
    return this->preset(preset.id).value_or(preset);
}

std::optional<QUrl> StampLibrary::openImportPanel() {
    return m_environment.panels.runModal(
        OpenPanel{QStringLiteral("PNG-Stempel zur Bibliothek hinzufügen"), ContentType::png});
}

static QString displayNameFor(const QUrl& url) {
    const QString name = QFileInfo(url.fileName()).completeBaseName();
    return name.isEmpty() ? QStringLiteral("Stempel") : name;
}

/// The file's bytes, which are a PNG that can be decoded.
static QByteArray readPng(const QString& path) {
    QByteArray bytes = files::read(path, Image::maxFileSize);
    const std::optional<Image> image = Image::fromData(bytes);
    if (image && image->isFromPng())
        return bytes;
    const QString reason = QStringLiteral("Die Datei ist kein lesbares PNG-Bild.");
    throw Error(Error::vellmoraDomain, 3,
                QStringLiteral("„%1“ konnte nicht gelesen werden. ").arg(QFileInfo(path).fileName()) + reason,
                reason);
}

StampPreset StampLibrary::importPreset(const QUrl& url) {
    m_folder.ensureDirectories();
    StampPreset preset;
    preset.displayName = displayNameFor(url);
    preset.fileName = importedFileName(preset.id);
    files::writeAtomically(m_folder.filePath(preset), readPng(url.toLocalFile()));
    preset.createdAt = m_environment.clock();
    preset.lastUsedAt = m_environment.clock();
    add([preset](QList<StampPreset>& presets) {
        const auto isOther = [&](const StampPreset& other) { return other.id != preset.id; };
        if (std::all_of(presets.begin(), presets.end(), isOther))
            presets.append(preset);
    });
    setSelectedPresetID(preset.id);
    m_recents.prepend(preset.id);
    save();
    return preset;
}

void StampLibrary::removePreset(const QUuid& id) {
    const std::optional<StampPreset> removed = preset(id);
    if (!removed)
        return;
    const QString path = m_folder.filePath(*removed);
    if (files::exists(path))
        files::remove(path);
    m_marks.sweep(m_folder.stampsDirectory());
    add([id](QList<StampPreset>& presets) {
        presets.removeIf([&](const StampPreset& p) { return p.id == id; });
    });
    m_recents.remove(id);
    if (m_selectedPresetID == id)
        setSelectedPresetID(firstPresetID());
    Q_EMIT presetRemoved();
    save();
}

void StampLibrary::recordUse(const QUuid& id) {
    if (!preset(id))
        return;
    const QDateTime now = m_environment.clock();
    add([id, now](QList<StampPreset>& presets) {
        for (StampPreset& preset : presets) {
            if (preset.id == id && (!preset.lastUsedAt || *preset.lastUsedAt < now))
                preset.lastUsedAt = now;
        }
    });
    m_recents.prepend(id);
    saveLater();
}

/// Nobody waits for the disk. What cannot be saved is saved with the next change that can be.
void StampLibrary::saveLater() {
    m_writer.run([this, copy = m_store.separateCopy()]() mutable {
        try {
            copy.save();
        } catch (const Error&) {
            return;
        }
        QMetaObject::invokeMethod(
            this,
            [this, saved = copy.savedChanges()] {
                m_store.forgetSaved(saved);
                showOthersChanges(m_folder.root());
            },
            Qt::QueuedConnection);
    });
}

void StampLibrary::finishSaving() {
    m_writer.run([] {}).wait();
}

void StampLibrary::setSelectedPresetID(const std::optional<QUuid>& id) {
    Q_EMIT objectWillChange();
    m_selectedPresetID = id;
    if (id)
        m_defaults.setString(selectedPresetDefaultsKey, identifierText(*id));
    else
        m_defaults.remove(selectedPresetDefaultsKey);
}

std::optional<QUuid> StampLibrary::firstPresetID() const {
    return presets().isEmpty() ? std::nullopt : std::optional(presets().first().id);
}

void StampLibrary::restoreSelection() {
    const auto stored = m_defaults.string(selectedPresetDefaultsKey);
    const auto id = stored ? parseIdentifier(*stored) : std::nullopt;
    setSelectedPresetID(preset(id) ? id : firstPresetID());
}

std::optional<StampPreset> StampLibrary::selectedPreset() const {
    if (presets().isEmpty())
        return std::nullopt;
    return preset(m_selectedPresetID).value_or(presets().first());
}

void StampLibrary::selectPreset(const QUuid& id) {
    setSelectedPresetID(id);
}

QList<StampPreset> StampLibrary::recentPresets() const {
    QHash<QUuid, const StampPreset*> byID;
    for (const StampPreset& preset : presets())
        byID.insert(preset.id, &preset);
    Q_ASSERT(byID.size() == presets().size());
    QList<StampPreset> recents;
    for (const QUuid& id : m_recents.ids()) {
        const StampPreset* preset = byID.value(id);
        if (preset && recents.size() < maxShownRecents)
            recents.append(*preset);
    }
    return recents;
}

std::optional<Image> StampLibrary::image(const StampPreset& preset) {
    if (preset.isBuiltin())
        bringBuiltinsUpToDate(BuiltinPictures::Missing::isLeftOut);
    if (const auto png = m_builtins.unplaced(preset))
        return Image::fromData(*png);
    return m_marks.decode(m_folder.filePath(preset), PictureMarks::Caution::dare);
}

/// Of a picture that is in no file.
static QString versionOf(const QByteArray& png) {
    return QString::fromLatin1(QCryptographicHash::hash(png, QCryptographicHash::Sha256).toHex());
}

DeferredPicture StampLibrary::deferredPicture(const StampPreset& preset) const {
    if (const auto png = m_builtins.unplaced(preset))
        return {versionOf(*png), [png] { return Image::fromData(*png); }};
    const QString path = m_folder.filePath(preset);
    const auto load = [path, marks = m_marks] { return marks.decode(path, PictureMarks::Caution::passOver); };
    return {PictureMarks::version(path), load};
}

void StampLibrary::ensureBuiltinPresets() {
    try {
        m_folder.ensureDirectories();
    } catch (const Error& error) {
        BuiltinPictures::reportFailure(error);
        return;
    }
    const auto isCurrent = [this](const BuiltinStampDefinition& definition) {
        return std::any_of(presets().begin(), presets().end(), [&](const StampPreset& p) {
            return p.builtinKey == definition.key && p.displayName == definition.displayName;
        });
    };
    const QList<BuiltinStampDefinition> definitions = builtinDefinitions(m_environment.clock());
    if (!std::all_of(definitions.begin(), definitions.end(), isCurrent))
        bringBuiltinsUpToDate(BuiltinPictures::Missing::isMade);
    if (!m_selectedPresetID)
        setSelectedPresetID(firstPresetID());
}

void StampLibrary::redrawDueBuiltins() {
    if (!m_builtins.areOf(m_today.date()) && !m_builtins.isDrawing())
        m_builtins.draw(m_environment.clock());
}

void StampLibrary::bringBuiltinsUpToDate(BuiltinPictures::Missing missing) {
    while (!m_builtins.areOf(m_today.date())) {
        redrawDueBuiltins();
        nameBuiltins(m_builtins.place(presets(), missing));
    }
}

void StampLibrary::nameBuiltins(const QList<BuiltinPictures::Placed>& placed) {
    QList<StampPreset> named = presets();
    BuiltinPictures::name(named, placed);
    if (named == presets())
        return;
    add([placed](QList<StampPreset>& presets) { BuiltinPictures::name(presets, placed); });
    try {
        save();
    } catch (const Error& error) {
        BuiltinPictures::reportFailure(error);
    }
}

}  // namespace vellmora
