#pragma once

#include "base/Error.h"
#include "base/SystemFonts.h"
#include "base/TemporaryFile.h"
#include "library/BuiltinStampDefinitions.h"

#include <QList>
#include <QString>

namespace vellmora {

/// Where the picture of a built-in stamp belongs.
struct BuiltinFile {
    BuiltinStampDefinition definition;
    QString path;
    Durability durability;
};

struct BuiltinFilesOutcome {
    qsizetype written = 0;     ///< from the first on; those behind a failure are left as they are
    bool haveChanged = false;  ///< a file has other bytes than before
};

/// Draws the stamps and writes each into its file as a PNG. A failure is printed and ends it. To be called on
/// a thread of Qt's global pool: on any other Qt hands each shape to those in pieces and
/// waits for each.
BuiltinFilesOutcome writeBuiltinFiles(const QList<BuiltinFile>& files, const SystemFonts& fonts);

/// The one line that tells of a built-in stamp that could not be made.
void reportBuiltinFailure(const Error& error);

}  // namespace vellmora
