#pragma once

#include <optional>

#include <QDateTime>
#include <QString>
#include <QUuid>

namespace vellmora {

/// One entry of the stamp library: a picture file in the library's image folder, its name and its dates.
struct StampPreset {
    QUuid id = QUuid::createUuid();  ///< never changes after creation
    QString displayName;
    QString fileName;  ///< last path component only, in the library's image folder
    QDateTime createdAt;
    std::optional<QDateTime> lastUsedAt;  ///< absent for a built-in stamp that was never used
    std::optional<QString> builtinKey;    ///< present exactly for built-in stamps

    bool isBuiltin() const { return builtinKey.has_value(); }
    bool operator==(const StampPreset&) const = default;
};

/// Name of a built-in stamp's picture in the library's image folder.
QString builtinFileName(const QString& key);
/// Name of an imported picture in the library's image folder.
QString importedFileName(const QUuid& id);
/// Whether the name is one of those.
bool isImportedFileName(const QString& name);

}  // namespace vellmora
