#include "base/Error.h"
#include "base/Files.h"
#include "library/StampLibrary.h"

#include <algorithm>
#include <utility>

#include <QThreadPool>

namespace vellmora {

static QString builtinFileName(const BuiltinStampDefinition& definition) {
    return QStringLiteral("builtin-%1.png").arg(definition.key);
}

QList<StampPreset>::iterator StampLibrary::findBuiltin(const BuiltinStampDefinition& definition) {
    return std::find_if(m_presets.begin(), m_presets.end(),
                        [&](const StampPreset& p) { return p.builtinKey == definition.key; });
}

BuiltinFile StampLibrary::builtinFile(const BuiltinStampDefinition& definition) {
    const auto known = findBuiltin(definition);
    if (known == m_presets.end()) {
        return {definition, stampsDirectory() + QLatin1Char('/') + builtinFileName(definition),
                Durability::synced};
    }
    // Nothing is lost with it: it is drawn anew at each start.
    return {definition, filePath(*known), Durability::untilPowerLoss};
}

/// Whether there is a preset with the name of today, which may contain the date. Its file was written before
/// it got that name.
bool StampLibrary::isCurrent(const BuiltinStampDefinition& definition) {
    const auto known = findBuiltin(definition);
    return known != m_presets.end() && known->displayName == definition.displayName;
}

void StampLibrary::adoptBuiltin(const BuiltinStampDefinition& definition, const QDateTime& now) {
    if (const auto known = findBuiltin(definition); known != m_presets.end()) {
        known->displayName = definition.displayName;
        return;
    }
    StampPreset preset;
    preset.displayName = definition.displayName;
    preset.fileName = builtinFileName(definition);
    preset.createdAt = now;
    preset.builtinKey = definition.key;
    m_presets.append(preset);
}

void StampLibrary::ensureBuiltinPresets() {
    const QDateTime now = m_environment.clock();
    const QList<BuiltinStampDefinition> definitions = builtinDefinitions(now);
    try {
        ensureLibraryDirectories();
        for (const BuiltinStampDefinition& definition : definitions)
            m_dueBuiltins.append(builtinFile(definition));
        if (std::all_of(definitions.begin(), definitions.end(), [&](const auto& d) { return isCurrent(d); }))
            return;
        redrawBuiltins(Earlier::areNotShown);
        const qsizetype written = m_redrawing.get().written;
        std::for_each_n(definitions.begin(), written, [&](const auto& d) { adoptBuiltin(d, now); });
        if (written < definitions.size())
            return;
        sortPresets();
        if (!m_selectedPresetID)
            selectFirstPreset();
        persistMetadata();
    } catch (const Error& error) {
        reportBuiltinFailure(error);
    }
}

void StampLibrary::redrawBuiltins(Earlier pictures) {
    if (m_dueBuiltins.isEmpty())
        return;
    auto promise = std::make_shared<std::promise<BuiltinFilesOutcome>>();
    m_redrawing = promise->get_future();
    const auto redraw = [this, promise, pictures, files = std::exchange(m_dueBuiltins, {})] {
        const BuiltinFilesOutcome outcome = writeBuiltinFiles(files, m_environment.fonts);
        if (outcome.haveChanged && pictures == Earlier::mayBeShown)
            QMetaObject::invokeMethod(this, &StampLibrary::showRedrawnBuiltins, Qt::QueuedConnection);
        promise->set_value(outcome);
    };
    QThreadPool::globalInstance()->start(redraw);
}

void StampLibrary::redrawDueBuiltins() {
    redrawBuiltins(Earlier::mayBeShown);
}

void StampLibrary::finishRedrawing() {
    redrawDueBuiltins();
    if (m_redrawing.valid())
        m_redrawing.wait();
}

void StampLibrary::showRedrawnBuiltins() {
    Q_EMIT objectWillChange();
    ++m_builtinVersion;
}

}  // namespace vellmora
