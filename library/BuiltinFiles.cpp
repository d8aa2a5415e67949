#include "library/BuiltinFiles.h"

#include "base/Files.h"
#include "base/Image.h"
#include "library/BuiltinStampImage.h"

#include <cstdio>

namespace vellmora {

static QByteArray pngOf(const BuiltinStampDefinition& stamp, const SystemFonts& fonts) {
    const QImage image = makeBuiltinStampImage(fonts, stamp.title, stamp.subtitle, stamp.tint);
    QByteArray png = Image(image).pngRepresentation();
    if (png.isEmpty()) {
        throw Error(Error::vellmoraDomain, 41,
                    QStringLiteral("Builtin-Stempel konnte nicht erzeugt werden."));
    }
    return png;
}

static bool holds(const QString& path, const QByteArray& bytes) {
    try {
        return files::read(path) == bytes;
    } catch (const Error&) {
        return false;
    }
}

BuiltinFilesOutcome writeBuiltinFiles(const QList<BuiltinFile>& files, const SystemFonts& fonts) {
    BuiltinFilesOutcome outcome;
    try {
        for (const BuiltinFile& file : files) {
            const QByteArray png = pngOf(file.definition, fonts);
            outcome.haveChanged = outcome.haveChanged || !holds(file.path, png);
            files::writeAtomically(file.path, png, file.durability);
            ++outcome.written;
        }
    } catch (const Error& error) {
        reportBuiltinFailure(error);
    }
    return outcome;
}

void reportBuiltinFailure(const Error& error) {
    std::printf("Builtin stamp setup failed: %s\n", error.what());
    std::fflush(stdout);
}

}  // namespace vellmora
