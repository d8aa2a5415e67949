#include "base/Text.h"

#include <algorithm>
#include <array>

#include <QCollator>
#include <QLocale>

namespace vellmora {

namespace {

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// Of a hexadecimal digit; else negative.
int hexValue(char16_t c) {
    if (isDigit(c))
        return c - u'0';
    const char16_t letter = c | 0x20;
    return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10 : -1;
}

/// In the form a 9 stands for any digit, and all else for itself. (A library has thousands of such texts, for
/// which regular expressions would take a third of its reading.)
bool hasForm(QStringView text, QStringView form) {
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](QChar c, QChar expected) { return expected == u'9' ? isDigit(c) : c == expected; });
}

}  // namespace

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
    constexpr QStringView local = u"9999-99-99T99:99:99";
    const QStringView zone = QStringView(text).sliced(std::min(text.size(), local.size()));
    if (!hasForm(QStringView(text).chopped(zone.size()), local) ||
        !(zone == u"Z" || hasForm(zone, u"+99:99") || hasForm(zone, u"-99:99")))
        return std::nullopt;
    const auto number = [&text](qsizetype at, qsizetype digits) {
        int value = 0;
        for (const QChar digit : QStringView(text).sliced(at, digits))
            value = 10 * value + (digit.unicode() - u'0');
        return value;
    };
    const QDate day(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    const bool hasOffset = zone != u"Z";
    const int hours = hasOffset ? number(20, 2) : 0;
    const int minutes = hasOffset ? number(23, 2) : 0;
    if (!day.isValid() || !time.isValid() || hours > 23 || minutes > 59)
        return std::nullopt;
    const qint64 offset = qint64{60} * (hours * 60 + minutes) * (zone.front() == u'-' ? -1 : 1);
    const QDateTime date(day, time, Qt::UTC);
    return offset == 0 ? date : date.addSecs(-offset);
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
    constexpr QStringView form = u"FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF";
    if (text.size() != form.size())
        return std::nullopt;
    std::array<uchar, 16> bytes{};
    size_t digits = 0;
    for (qsizetype i = 0; i < form.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (form[i] == u'-') {
            if (c != u'-')
                return std::nullopt;
            continue;
        }
        const int value = hexValue(c);
        if (value < 0)
            return std::nullopt;
        bytes[digits / 2] = static_cast<uchar>(bytes[digits / 2] << 4 | value);
        ++digits;
    }
    return QUuid::fromRfc4122(QByteArrayView(bytes));
}

}  // namespace vellmora
