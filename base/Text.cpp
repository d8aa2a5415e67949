#include "base/Text.h"

#include <QCollator>
#include <QLocale>
#include <QRegularExpression>

namespace vellmora {

int compareNames(const QString& a, const QString& b) {
    static const QCollator collator = [] {
        QCollator german(QLocale(QLocale::German, QLocale::Germany));
        german.setCaseSensitivity(Qt::CaseInsensitive);
        return german;
    }();
    return collator.compare(a, b);
}

QString internetDateTimeText(const QDateTime& date) {
    return date.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'"));
}

std::optional<QDateTime> parseInternetDateTime(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("\\A[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}"
                       "(Z|[+-][0-9]{2}:[0-9]{2})\\z"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    const auto number = [&](qsizetype at, qsizetype digits) {
        return QStringView(text).sliced(at, digits).toInt();
    };
    const QDate day(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    const bool hasOffset = !text.endsWith(QLatin1Char('Z'));
    const int hours = hasOffset ? number(20, 2) : 0;
    const int minutes = hasOffset ? number(23, 2) : 0;
    if (!day.isValid() || !time.isValid() || hours > 23 || minutes > 59)
        return std::nullopt;
    const qint64 offset = qint64{60} * (hours * 60 + minutes) * (text[19] == QLatin1Char('-') ? -1 : 1);
    return QDateTime(day, time, Qt::UTC).addSecs(-offset);
}

QString germanDateText(const QDateTime& date) {
    return date.toLocalTime().toString(QStringLiteral("dd.MM.yyyy"));
}

QString germanAbbreviatedDateText(const QDateTime& date) {
    static const QLocale german(QLocale::German, QLocale::Germany);
    return german.toString(date.toLocalTime(), QStringLiteral("d. MMM yyyy"));
}

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
