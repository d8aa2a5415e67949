#pragma once

#include <optional>

#include <QDateTime>
#include <QString>

namespace vellmora {

/// Internet date-time in UTC with whole seconds, for example 2024-05-17T08:30:00Z (RFC 3339, section 5.6).
QString internetDateTimeText(const QDateTime& date);

/// Reads an internet date-time. A zone ("Z" or an offset such as +02:00) is required, a fraction of a second
/// is refused, and so is a date that no calendar has.
std::optional<QDateTime> parseInternetDateTime(const QString& text);

/// Two-digit day, two-digit month and four-digit year in the user's time zone, for example 07.03.2025.
QString germanDateText(const QDateTime& date);

/// Day, abbreviated month and year in the user's time zone, for example "17. Mai 2024".
QString germanAbbreviatedDateText(const QDateTime& date);

}  // namespace vellmora
