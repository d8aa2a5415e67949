#include "library/BuiltinPictures.h"
#include "library/StampLibrary.h"
#include "platform/error/Error.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vellmora {

void StampLibrary::ensureBuiltinPresets(const BuiltinPictures& pictures) {
    try {
        ensureLibraryDirectories();
        const QList<BuiltinStampDefinition>& definitions = pictures.definitions();
        const std::vector<QByteArray>& pngFiles = pictures.pngFiles();
        bool changed = false;
        for (qsizetype i = 0; i < definitions.size(); ++i)
            changed = ensureBuiltinPreset(definitions[i], pngFiles[static_cast<size_t>(i)]) || changed;
        sortPresets();
        if (!m_selectedPresetID)
            selectFirstPreset();
        if (changed)
            persistMetadata();
    } catch (const Error& error) {
        std::printf("Builtin stamp setup failed: %s\n", error.what());
        std::fflush(stdout);
    }
}

/// Writes the stamp's picture and sees to its preset; true where the metadata changed.
bool StampLibrary::ensureBuiltinPreset(const BuiltinStampDefinition& definition, const QByteArray& png) {
    const auto known = std::find_if(m_presets.begin(), m_presets.end(),
                                    [&](const StampPreset& p) { return p.builtinKey == definition.key; });
    if (known != m_presets.end()) {
        // Nothing is lost with it: it is drawn anew at each start.
        writeBuiltinImage(png, filePath(*known), Durability::untilPowerLoss);
        const bool renamed = known->displayName != definition.displayName;
        known->displayName = definition.displayName;
        return renamed;
    }
    StampPreset preset;
    preset.displayName = definition.displayName;
    preset.fileName = QStringLiteral("builtin-%1.png").arg(definition.key);
    preset.createdAt = m_environment.clock();
    preset.builtinKey = definition.key;
    writeBuiltinImage(png, filePath(preset), Durability::synced);
    m_presets.append(preset);
    return true;
}

void StampLibrary::writeBuiltinImage(const QByteArray& png, const QString& path, Durability durability) {
    if (png.isEmpty()) {
        throw Error(Error::vellmoraDomain, 41,
                    QStringLiteral("Builtin-Stempel konnte nicht erzeugt werden."));
    }
    files::writeAtomically(path, png, durability);
}

}  // namespace vellmora
