#include "library/BuiltinStampImage.h"
#include "library/StampLibrary.h"
#include "platform/error/Error.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vellmora {

void StampLibrary::ensureBuiltinPresets() {
    try {
        ensureLibraryDirectories();
        bool changed = false;
        for (const BuiltinStampDefinition& definition : builtinDefinitions(m_environment.clock()))
            changed = ensureBuiltinPreset(definition) || changed;
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

/// Draws the stamp's picture and sees to its preset; true where the metadata changed.
bool StampLibrary::ensureBuiltinPreset(const BuiltinStampDefinition& definition) {
    const auto known = std::find_if(m_presets.begin(), m_presets.end(),
                                    [&](const StampPreset& p) { return p.builtinKey == definition.key; });
    if (known != m_presets.end()) {
        // Nothing is lost with it: it is drawn anew at each start.
        writeBuiltinImage(definition, filePath(*known), Durability::untilPowerLoss);
        const bool renamed = known->displayName != definition.displayName;
        known->displayName = definition.displayName;
        return renamed;
    }
    StampPreset preset;
    preset.displayName = definition.displayName;
    preset.fileName = QStringLiteral("builtin-%1.png").arg(definition.key);
    preset.createdAt = m_environment.clock();
    preset.builtinKey = definition.key;
    writeBuiltinImage(definition, filePath(preset), Durability::synced);
    m_presets.append(preset);
    return true;
}

void StampLibrary::writeBuiltinImage(const BuiltinStampDefinition& definition, const QString& path,
                                     Durability durability) const {
    const Image image(
        makeBuiltinStampImage(m_environment.fonts, definition.title, definition.subtitle, definition.tint));
    const QByteArray png = image.pngRepresentation();
    if (png.isEmpty()) {
        throw Error(Error::vellmoraDomain, 41,
                    QStringLiteral("Builtin-Stempel konnte nicht erzeugt werden."));
    }
    files::writeAtomically(path, png, durability);
}

}  // namespace vellmora
