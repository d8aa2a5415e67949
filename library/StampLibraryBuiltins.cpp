#include "library/BuiltinStampImage.h"
#include "library/StampLibrary.h"
#include "platform/error/Error.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include <QThreadPool>

namespace vellmora {

/// The pictures as PNG files, in the order of the definitions; one that cannot be made is empty.
static std::vector<QByteArray> drawPictures(const QList<BuiltinStampDefinition>& definitions,
                                            const SystemFonts& fonts) {
    std::vector<QByteArray> pictures(static_cast<size_t>(definitions.size()));
    const auto draw = [&](const BuiltinStampDefinition& stamp) {
        return Image(makeBuiltinStampImage(fonts, stamp.title, stamp.subtitle, stamp.tint))
            .pngRepresentation();
    };
    // On the toolkit's own threads: on any other it hands each shape to them in pieces and waits for each.
    QThreadPool& threads = *QThreadPool::globalInstance();
    for (size_t i = 0; i < pictures.size(); ++i)
        threads.start([&, i] { pictures[i] = draw(definitions[static_cast<qsizetype>(i)]); });
    threads.waitForDone();
    return pictures;
}

void StampLibrary::ensureBuiltinPresets() {
    try {
        ensureLibraryDirectories();
        const QList<BuiltinStampDefinition> definitions = builtinDefinitions(m_environment.clock());
        const std::vector<QByteArray> pictures = drawPictures(definitions, m_environment.fonts);
        bool changed = false;
        for (qsizetype i = 0; i < definitions.size(); ++i)
            changed = ensureBuiltinPreset(definitions[i], pictures[static_cast<size_t>(i)]) || changed;
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
