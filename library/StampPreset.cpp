#include "library/StampPreset.h"

#include "base/Text.h"

namespace vellmora {

static const QString importedSuffix = QStringLiteral(".png");

QString builtinFileName(const QString& key) {
    return QStringLiteral("builtin-%1.png").arg(key);
}

QString importedFileName(const QUuid& id) {
    return identifierText(id) + importedSuffix;
}

bool isImportedFileName(const QString& name) {
    return name.endsWith(importedSuffix) && parseIdentifier(name.chopped(importedSuffix.size())).has_value();
}

}  // namespace vellmora
