#include "platform/text/Identifiers.h"

#include <QRegularExpression>

namespace vellmora {

QString identifierText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> parseIdentifier(const QString& text) {
    static const QRegularExpression canonical(
        QStringLiteral("\\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\z"));
    if (!canonical.match(text).hasMatch())
        return std::nullopt;
    return QUuid::fromString(text);
}

}  // namespace vellmora
