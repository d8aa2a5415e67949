#include "base/Text.h"
#include "tests/support/GTestQt.h"

#include <QTimeZone>

using namespace vellmora;

TEST(IdentifiersTest, ReadsTheCanonicalFormOnly) {
    const QString text = QStringLiteral("6BA7B810-9DAD-11D1-80B4-00C04FD430C8");
    ASSERT_TRUE(parseIdentifier(text));
    EXPECT_EQ(identifierText(*parseIdentifier(text.toLower())), text);
    for (const char* wrong : {"{6BA7B810-9DAD-11D1-80B4-00C04FD430C8}", "6BA7B8109DAD11D180B400C04FD430C8",
                              "6BA7B810-9DAD-11D1-80B4-00C04FD430C", "6BA7B810-9DAD-11D1-80B4-00C04FD430CG",
                              "6BA7B810-9DAD-11D1-80B4-00C04FD430C8\n", ""})
        EXPECT_FALSE(parseIdentifier(QString::fromLatin1(wrong))) << wrong;
}

TEST(DatesTest, ReadsWholeSecondsWithAZoneOnly) {
    const auto date = parseInternetDateTime(QStringLiteral("2024-05-17T10:30:00+02:00"));
    ASSERT_TRUE(date);
    EXPECT_EQ(internetDateTimeText(*date), QStringLiteral("2024-05-17T08:30:00Z"));
    for (const char* same : {"2024-05-17T08:30:00Z", "2024-05-17T04:00:00-04:30"})
        EXPECT_EQ(*date, *parseInternetDateTime(QString::fromLatin1(same))) << same;
    for (const char* wrong : {"2024-05-17T08:30:00", "2024-05-17T08:30:00.5Z", "2024-05-17 08:30:00Z",
                              "2024-05-17", "2024-02-30T08:30:00Z", "2024-05-17T25:30:00Z",
                              "2024-05-17T08:30Z", "2024-05-17T08:30:00z", "2024-05-17T08:30:00+2:00", ""})
        EXPECT_FALSE(parseInternetDateTime(QString::fromLatin1(wrong))) << wrong;
}

TEST(DatesTest, GermanDatesAreThoseOfTheUsersZone) {
    const QDateTime lateEvening(QDate(2025, 3, 7), QTime(23, 59), Qt::LocalTime);
    EXPECT_EQ(germanDateText(lateEvening.toUTC()), QStringLiteral("07.03.2025"));
}

TEST(CollationTest, OrdersNamesAsAGermanReaderDoes) {
    EXPECT_LT(compareNames(QStringLiteral("apfel"), QStringLiteral("Birne")), 0);
    EXPECT_LT(compareNames(QStringLiteral("Ärger"), QStringLiteral("Birne")), 0);
    EXPECT_EQ(compareNames(QStringLiteral("apfel"), QStringLiteral("APFEL")), 0);
}
