#include "library/BuiltinFiles.h"

#include "library/BuiltinStampImage.h"
#include "platform/files/Files.h"
#include "platform/image/Image.h"

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

BuiltinFilesOutcome writeBuiltinFiles(const QList<BuiltinFile>& files, const SystemFonts& fonts) {
    BuiltinFilesOutcome outcome;
    try {
        for (const BuiltinFile& file : files) {
            const QByteArray png = pngOf(file.definition, fonts);
            const bool isKnown = files::exists(file.path) && files::read(file.path) == png;
            files::writeAtomically(file.path, png, file.durability);
            outcome.haveChanged = outcome.haveChanged || !isKnown;
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
