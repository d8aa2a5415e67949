#include "library/StampLibrary.h"

#include "base/Files.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

namespace vellmora {

const QString StampLibrary::metadataFileName = QStringLiteral("stamp-library.json");

StampLibrary::StampLibrary(Environment environment)
    : m_environment(std::move(environment)), m_defaults(m_environment.folders.defaultsFile) {
    loadLibrary();
    ensureBuiltinPresets();
}

StampLibrary::~StampLibrary() {
    finishRedrawing();
}

static bool comesBefore(const StampPreset& a, const StampPreset& b) {
    if (a.isBuiltin() != b.isBuiltin())
        return a.isBuiltin();
    const QDateTime dateOfA = a.lastUsedAt.value_or(a.createdAt);
    const QDateTime dateOfB = b.lastUsedAt.value_or(b.createdAt);
    if (dateOfA != dateOfB)
        return dateOfA > dateOfB;
    return compareNames(a.displayName, b.displayName) < 0;
}

void StampLibrary::sortPresets() {
    Q_EMIT objectWillChange();
    std::stable_sort(m_presets.begin(), m_presets.end(), comesBefore);
}

QList<StampPreset>::iterator StampLibrary::findPreset(const QUuid& id) {
    return std::find_if(m_presets.begin(), m_presets.end(), [&](const auto& p) { return p.id == id; });
}

QList<StampPreset>::const_iterator StampLibrary::findPreset(const QUuid& id) const {
    return std::find_if(m_presets.begin(), m_presets.end(), [&](const auto& p) { return p.id == id; });
}

std::optional<Image> StampLibrary::image(const StampPreset& preset) {
    if (preset.isBuiltin())
        finishRedrawing();
    return Image::fromFile(filePath(preset));
}

DeferredPicture StampLibrary::deferredPicture(const StampPreset& preset) const {
    const QString path = filePath(preset);
    const QFileInfo file(path);
    if (path.isEmpty() || !file.exists())
        return {};
    if (preset.isBuiltin())
        return {QStringLiteral("%1 %2").arg(path).arg(m_builtinVersion),
                [path] { return Image::fromFile(path); }};
    const QString version =
        QStringLiteral("%1 %2 %3").arg(path).arg(file.lastModified().toMSecsSinceEpoch()).arg(file.size());
    return {version, [path] { return Image::fromFile(path); }};
}

std::optional<QUrl> StampLibrary::openImportPanel() {
    return m_environment.panels.runModal(
        OpenPanel{QStringLiteral("PNG-Stempel zur Bibliothek hinzufügen"), ContentType::png});
}

static QString displayNameFor(const QUrl& url) {
    const QString name = QFileInfo(url.fileName()).completeBaseName();
    return name.isEmpty() ? QStringLiteral("Stempel") : name;
}

StampPreset StampLibrary::importPreset(const QUrl& url) {
    ensureLibraryDirectories();
    StampPreset preset;
    preset.displayName = displayNameFor(url);
    preset.fileName = identifierText(preset.id) + QStringLiteral(".png");
    files::copy(url.toLocalFile(), filePath(preset));
    preset.createdAt = m_environment.clock();
    preset.lastUsedAt = m_environment.clock();
    Q_EMIT objectWillChange();
    m_presets.append(preset);
    sortPresets();
    setSelectedPresetID(preset.id);
    prependRecent(preset.id);
    persistMetadata();
    return preset;
}

void StampLibrary::removePreset(const QUuid& id) {
    const auto preset = std::as_const(*this).findPreset(id);
    if (preset == m_presets.constEnd())
        return;
    if (preset->isBuiltin())
        finishRedrawing();
    const QString path = filePath(*preset);
    if (files::exists(path))
        files::remove(path);
    Q_EMIT objectWillChange();
    m_presets.removeIf([&](const StampPreset& p) { return p.id == id; });
    removeRecent(id);
    if (m_selectedPresetID == id)
        selectFirstPreset();
    persistMetadata();
}

}  // namespace vellmora
