#include "library/BuiltinPictures.h"
#include "library/StampLibrary.h"
#include "platform/error/Error.h"
#include "platform/files/Files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vellmora {

static void reportFailure(const Error& error) {
    std::printf("Builtin stamp setup failed: %s\n", error.what());
    std::fflush(stdout);
}

/// How many of the files were written; those behind a failure are left as they are.
qsizetype StampLibrary::writeBuiltinFiles(BuiltinPictures& pictures, const QList<BuiltinFile>& files) {
    qsizetype written = 0;
    try {
        for (const auto& [path, durability] : files) {
            const QByteArray png = pictures.takePngFile(static_cast<size_t>(written));
            if (png.isEmpty()) {
                throw Error(Error::vellmoraDomain, 41,
                            QStringLiteral("Builtin-Stempel konnte nicht erzeugt werden."));
            }
            files::writeAtomically(path, png, durability);
            ++written;
        }
    } catch (const Error& error) {
        reportFailure(error);
    }
    return written;
}

void StampLibrary::waitForBuiltinFiles() const {
    if (m_builtinFiles.valid())
        m_builtinFiles.wait();
}

QList<StampPreset>::iterator StampLibrary::findBuiltin(const BuiltinStampDefinition& definition) {
    return std::find_if(m_presets.begin(), m_presets.end(),
                        [&](const StampPreset& p) { return p.builtinKey == definition.key; });
}

static QString builtinFileName(const BuiltinStampDefinition& definition) {
    return QStringLiteral("builtin-%1.png").arg(definition.key);
}

StampLibrary::BuiltinFile StampLibrary::builtinFile(const BuiltinStampDefinition& definition) {
    const auto known = findBuiltin(definition);
    if (known == m_presets.end())
        return {stampsDirectory() + QLatin1Char('/') + builtinFileName(definition), Durability::synced};
    // Nothing is lost with it: it is drawn anew at each start.
    return {filePath(*known), Durability::untilPowerLoss};
}

/// Whether there is a preset with the name of today, which may contain the date.
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

void StampLibrary::ensureBuiltinPresets(const QList<BuiltinStampDefinition>& definitions,
                                        std::unique_ptr<BuiltinPictures> pictures) {
    try {
        ensureLibraryDirectories();
        QList<BuiltinFile> files;
        for (const BuiltinStampDefinition& definition : definitions)
            files.append(builtinFile(definition));
        m_builtinFiles = std::async(std::launch::async, [pictures = std::move(pictures), files] {
            return writeBuiltinFiles(*pictures, files);
        });
        if (std::all_of(definitions.begin(), definitions.end(), [&](const auto& d) { return isCurrent(d); }))
            return;
        const qsizetype written = m_builtinFiles.get();
        const QDateTime now = m_environment.clock();
        std::for_each_n(definitions.begin(), written, [&](const auto& d) { adoptBuiltin(d, now); });
        if (written < definitions.size())
            return;
        sortPresets();
        if (!m_selectedPresetID)
            selectFirstPreset();
        persistMetadata();
    } catch (const Error& error) {
        reportFailure(error);
    }
}

}  // namespace vellmora
