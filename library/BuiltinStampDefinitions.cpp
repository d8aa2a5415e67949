#include "library/BuiltinStampDefinitions.h"

#include "base/SystemColors.h"
#include "base/Text.h"

namespace vellmora {

QList<BuiltinStampDefinition> builtinDefinitions(const QDateTime& now) {
    const QString today = germanDateText(now);
    return {
        {QStringLiteral("eingegangen-heute"), QStringLiteral("Eingegangen am: ") + today,
         QStringLiteral("EINGEGANGEN AM"), today, colors::systemRed},
        {QStringLiteral("erledigt"), QStringLiteral("Erledigt"), QStringLiteral("ERLEDIGT"), std::nullopt,
         colors::systemGreen},
        {QStringLiteral("erledigt-heute"), QStringLiteral("Erledigt am: ") + today,
         QStringLiteral("ERLEDIGT AM"), today, colors::systemGreen},
        {QStringLiteral("archiviert"), QStringLiteral("Archiviert"), QStringLiteral("ARCHIVIERT"),
         std::nullopt, colors::systemBlue},
        {QStringLiteral("geprueft"), QStringLiteral("Geprüft"), QStringLiteral("GEPRÜFT"), std::nullopt,
         colors::systemOrange},
    };
}

}  // namespace vellmora
