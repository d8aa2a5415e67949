#include "base/Error.h"
#include "base/Text.h"
#include "library/StampLibrary.h"

#include <QHash>

namespace vellmora {

const QString StampLibrary::selectedPresetDefaultsKey = QStringLiteral("Vellmora.selectedPresetID");
const QString StampLibrary::recentPresetDefaultsKey = QStringLiteral("Vellmora.recentPresetIDs");

void StampLibrary::setSelectedPresetID(const std::optional<QUuid>& id) {
    Q_EMIT objectWillChange();
    m_selectedPresetID = id;
    if (id)
        m_defaults.setString(selectedPresetDefaultsKey, identifierText(*id));
    else
        m_defaults.remove(selectedPresetDefaultsKey);
}

void StampLibrary::selectFirstPreset() {
    setSelectedPresetID(m_presets.isEmpty() ? std::nullopt : std::optional(m_presets.first().id));
}

void StampLibrary::restoreSelection() {
    const auto stored = m_defaults.string(selectedPresetDefaultsKey);
    const auto id = stored ? parseIdentifier(*stored) : std::nullopt;
    if (id && findPreset(*id) != m_presets.end())
        setSelectedPresetID(id);
    else
        selectFirstPreset();
}

std::optional<StampPreset> StampLibrary::selectedPreset() const {
    if (m_presets.isEmpty())
        return std::nullopt;
    const auto selected = m_selectedPresetID ? findPreset(*m_selectedPresetID) : m_presets.constEnd();
    return selected == m_presets.constEnd() ? m_presets.first() : *selected;
}

void StampLibrary::selectPreset(const QUuid& id) {
    setSelectedPresetID(id);
}

void StampLibrary::recordUse(const QUuid& id) {
    const auto preset = findPreset(id);
    if (preset == m_presets.end())
        return;
    Q_EMIT objectWillChange();
    preset->lastUsedAt = m_environment.clock();
    prependRecent(id);
    sortPresets();
    try {
        persistMetadata();
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch): saved with the next change that can be saved
    }
}

QList<QUuid> StampLibrary::recentPresetIDs() const {
    QList<QUuid> ids;
    for (const QString& text : m_defaults.stringList(recentPresetDefaultsKey).value_or(QStringList())) {
        if (const auto id = parseIdentifier(text))
            ids.append(*id);
    }
    return ids;
}

void StampLibrary::storeRecentPresetIDs(const QList<QUuid>& ids) {
    QStringList texts;
    for (const QUuid& id : ids)
        texts.append(identifierText(id));
    m_defaults.setStringList(recentPresetDefaultsKey, texts);
}

void StampLibrary::prependRecent(const QUuid& id) {
    QList<QUuid> ids = recentPresetIDs();
    ids.removeAll(id);
    ids.prepend(id);
    storeRecentPresetIDs(ids.mid(0, maxStoredRecents));
}

void StampLibrary::removeRecent(const QUuid& id) {
    QList<QUuid> ids = recentPresetIDs();
    ids.removeAll(id);
    storeRecentPresetIDs(ids);
}

QList<StampPreset> StampLibrary::recentPresets() const {
    QHash<QUuid, const StampPreset*> byID;
    for (const StampPreset& preset : m_presets)
        byID.insert(preset.id, &preset);
    Q_ASSERT(byID.size() == m_presets.size());
    QList<StampPreset> recents;
    for (const QUuid& id : recentPresetIDs()) {
        const StampPreset* preset = byID.value(id);
        if (preset && recents.size() < maxShownRecents)
            recents.append(*preset);
    }
    return recents;
}

}  // namespace vellmora
