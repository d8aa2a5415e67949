#include "platform/text/Dates.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTimeZone>

namespace vellmora {

QString internetDateTimeText(const QDateTime& date) {
    return date.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'"));
}

std::optional<QDateTime> parseInternetDateTime(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("\\A([0-9]{4}-[0-9]{2}-[0-9]{2})T([0-9]{2}:[0-9]{2}:[0-9]{2})"
                       "(?:Z|([+-])([0-9]{2}):([0-9]{2}))\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QDate day = QDate::fromString(match.captured(1), Qt::ISODate);
    const QTime time = QTime::fromString(match.captured(2), QStringLiteral("HH:mm:ss"));
    const int hours = match.captured(4).toInt();
    const int minutes = match.captured(5).toInt();
    if (!day.isValid() || !time.isValid() || hours > 23 || minutes > 59)
        return std::nullopt;
    const qint64 offset =
        qint64{60} * (hours * 60 + minutes) * (match.captured(3) == QStringLiteral("-") ? -1 : 1);
    return QDateTime(day, time, QTimeZone::utc()).addSecs(-offset);
}

QString germanDateText(const QDateTime& date) {
    return date.toLocalTime().toString(QStringLiteral("dd.MM.yyyy"));
}

QString germanAbbreviatedDateText(const QDateTime& date) {
    static const QLocale german(QLocale::German, QLocale::Germany);
    return german.toString(date.toLocalTime(), QStringLiteral("d. MMM yyyy"));
}

}  // namespace vellmora
