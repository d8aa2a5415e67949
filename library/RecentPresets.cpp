#include "library/RecentPresets.h"

#include "base/Text.h"

namespace vellmora {

namespace {

QList<QUuid> parsed(const QStringList& texts) {
    QList<QUuid> ids;
    for (const QString& text : texts) {
        if (const auto id = parseIdentifier(text))
            ids.append(*id);
    }
    return ids;
}

QStringList texts(const QList<QUuid>& ids) {
    QStringList list;
    for (const QUuid& id : ids)
        list.append(identifierText(id));
    return list;
}

}  // namespace

const QString RecentPresets::defaultsKey = QStringLiteral("Vellmora.recentPresetIDs");

QList<QUuid> RecentPresets::ids() const {
    return parsed(m_defaults.stringList(defaultsKey).value_or(QStringList()));
}

void RecentPresets::prepend(const QUuid& id) {
    m_defaults.changeStringList(defaultsKey, [&](const QStringList& stored) {
        QList<QUuid> ids = parsed(stored);
        ids.removeAll(id);
        ids.prepend(id);
        return texts(ids.mid(0, maxStored));
    });
}

void RecentPresets::remove(const QUuid& id) {
    m_defaults.changeStringList(defaultsKey, [&](const QStringList& stored) {
        QList<QUuid> ids = parsed(stored);
        ids.removeAll(id);
        return texts(ids);
    });
}

}  // namespace vellmora
