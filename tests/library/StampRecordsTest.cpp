#include "library/StampItem.h"
#include "library/StampPresetJson.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// A metadata file of one entry, in which one piece of text is replaced.
QByteArray entryWith(const QByteArray& from = {}, const QByteArray& to = {}) {
    QByteArray json = R"([{
        "id": "6BA7B810-9DAD-11D1-80B4-00C04FD430C8",
        "displayName": "Unterschrift",
        "fileName": "a.png",
        "createdAt": "2024-05-17T08:30:00Z",
        "lastUsedAt": "2024-05-18T08:30:00Z",
        "builtinKey": "erledigt"
    }])";
    return from.isEmpty() ? json : json.replace(from, to);
}

}  // namespace

TEST(StampPresetJsonTest, DecodesAllFields) {
    const auto presets = decodePresets(entryWith());
    ASSERT_TRUE(presets);
    const StampPreset& preset = presets->first();
    EXPECT_EQ(preset.id, QUuid::fromString(QStringLiteral("6ba7b810-9dad-11d1-80b4-00c04fd430c8")));
    EXPECT_EQ(preset.displayName, QStringLiteral("Unterschrift"));
    EXPECT_EQ(preset.fileName, QStringLiteral("a.png"));
    EXPECT_EQ(preset.createdAt, QDateTime(QDate(2024, 5, 17), QTime(8, 30), Qt::UTC));
    EXPECT_EQ(preset.lastUsedAt, QDateTime(QDate(2024, 5, 18), QTime(8, 30), Qt::UTC));
    EXPECT_EQ(preset.builtinKey, QStringLiteral("erledigt"));
}

TEST(StampPresetJsonTest, OptionalKeysMayBeAbsentOrNullAndAreLeftOutWhenWritten) {
    const QByteArray withNull = entryWith("\"2024-05-18T08:30:00Z\"", "null").replace("\"erledigt\"", "null");
    const auto presets = decodePresets(withNull);
    ASSERT_TRUE(presets);
    EXPECT_FALSE(presets->first().lastUsedAt);
    EXPECT_FALSE(presets->first().isBuiltin());
    const QByteArray written = encodePresets(*presets);
    EXPECT_FALSE(written.contains("lastUsedAt") || written.contains("builtinKey"));
    EXPECT_EQ(decodePresets(written), presets);
}

TEST(StampPresetJsonTest, AnyWrongEntryFailsTheWholeFile) {
    EXPECT_FALSE(decodePresets(entryWith("\"Unterschrift\"", "7")));
    EXPECT_FALSE(decodePresets(entryWith("\"Unterschrift\"", "null")));
    EXPECT_FALSE(decodePresets(entryWith("\"fileName\"", "\"filename\"")));
    EXPECT_FALSE(decodePresets(entryWith("6BA7B810-9", "6BA7B8109")));
    EXPECT_FALSE(decodePresets(entryWith("17T08:30:00Z", "17T08:30:00.25Z")));
    EXPECT_FALSE(decodePresets(entryWith("18T08:30:00Z", "18T08:30:00")));
    EXPECT_FALSE(decodePresets(entryWith("\"erledigt\"", "true")));
    EXPECT_FALSE(decodePresets(entryWith("}]", "}, 3]")));
    EXPECT_FALSE(decodePresets("{}"));
    EXPECT_FALSE(decodePresets("[{"));
    EXPECT_FALSE(decodePresets(""));
}

TEST(StampPresetJsonTest, IgnoresUnknownKeysAndWritesSortedIndentedLines) {
    const auto presets = decodePresets(entryWith("{", "{ \"colour\": [1],"));
    ASSERT_TRUE(presets);
    EXPECT_EQ(encodePresets(*presets),
              "[\n    {\n"
              "        \"builtinKey\": \"erledigt\",\n"
              "        \"createdAt\": \"2024-05-17T08:30:00Z\",\n"
              "        \"displayName\": \"Unterschrift\",\n"
              "        \"fileName\": \"a.png\",\n"
              "        \"id\": \"6BA7B810-9DAD-11D1-80B4-00C04FD430C8\",\n"
              "        \"lastUsedAt\": \"2024-05-18T08:30:00Z\"\n"
              "    }\n]\n");
}

TEST(StampPresetJsonTest, FractionsOfASecondAreCutOff) {
    StampPreset preset = decodePresets(entryWith())->first();
    preset.createdAt = preset.createdAt.addMSecs(999);
    const StampPreset read = decodePresets(encodePresets({preset}))->first();
    EXPECT_EQ(read.createdAt, preset.createdAt.addMSecs(-999));
    EXPECT_NE(read, preset);
}

TEST(StampItemTest, ImageIsDecodedFromTheDataOrAbsent) {
    StampItem item;
    EXPECT_FALSE(item.image());
    item.imageData = plainPng(7, 4, Qt::red);
    ASSERT_TRUE(item.image());
    EXPECT_EQ(item.image()->pixels().size(), QSize(7, 4));
}
