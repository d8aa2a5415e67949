#include "base/Folders.h"

#include <QDir>
#include <QStandardPaths>

namespace vellmora {

Folders Folders::ofUser() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation), QDir::tempPath(),
            config + QStringLiteral("/Vellmora/settings.json")};
}

}  // namespace vellmora
