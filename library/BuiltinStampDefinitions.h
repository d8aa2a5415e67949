#pragma once

#include <optional>

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QString>

namespace vellmora {

/// One of the stamps that the program draws itself.
struct BuiltinStampDefinition {
    QString key;  ///< never changes: names the picture's file, and marks the stamp's preset
    QString displayName;
    QString title;
    std::optional<QString> subtitle;
    QColor tint;
};

/// The five office stamps, in the order in which they are made. Two of them carry the date of `now`.
QList<BuiltinStampDefinition> builtinDefinitions(const QDateTime& now);

}  // namespace vellmora
