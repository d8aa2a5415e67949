#include "base/Folders.h"

#include <QDir>
#include <QStandardPaths>

namespace vellmora {

Folders Folders::ofUser() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation), QDir::tempPath(),
            config + QStringLiteral("/Vellmora/settings.json"),
            cache.isEmpty() ? QString() : cache + QStringLiteral("/Vellmora/thumbnails")};
}

}  // namespace vellmora
