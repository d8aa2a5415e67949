#pragma once

#include <optional>

#include <QDateTime>
#include <QString>
#include <QUuid>

namespace vellmora {

/// Order of two names for a German reader, without regard to case: negative, zero or positive.
int compareNames(const QString& a, const QString& b);

/// Internet date-time in UTC with whole seconds, for example 2024-05-17T08:30:00Z (RFC 3339, section 5.6).
QString internetDateTimeText(const QDateTime& date);

/// Reads an internet date-time. A zone ("Z" or an offset such as +02:00) is required, a fraction of a second
/// is refused, and so is a date that no calendar has.
std::optional<QDateTime> parseInternetDateTime(const QString& text);

/// Two-digit day, two-digit month and four-digit year in the user's time zone, for example 07.03.2025.
QString germanDateText(const QDateTime& date);

/// Day, abbreviated month and year in the user's time zone, for example "17. Mai 2024".
QString germanAbbreviatedDateText(const QDateTime& date);

/// Canonical 8-4-4-4-12 form in upper case, without braces.
QString identifierText(const QUuid& id);

/// Reads the canonical form in either case and nothing else (no braces, no missing hyphens).
std::optional<QUuid> parseIdentifier(const QString& text);

}  // namespace vellmora
