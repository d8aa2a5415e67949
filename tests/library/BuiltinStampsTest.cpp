#include "library/BuiltinStampImage.h"
#include "library/StampLibrary.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <utility>

#include <QFileInfo>
#include <QFontMetricsF>
#include <QThreadPool>

using namespace vellmora;
using namespace vellmora::test;

namespace {

const QColor ink(10, 20, 200);

/// Area of the pixels within the frame that carry text: they are opaque, unlike the ground.
QRect inkedArea(const QImage& image, int top, int bottom) {
    QRect area;
    for (int y = top; y < bottom; ++y) {
        for (int x = 60; x < image.width() - 60; ++x) {
            if (image.pixelColor(x, y).alpha() > 200)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

QImage draw(const QString& title, const std::optional<QString>& subtitle) {
    return makeBuiltinStampImage(SystemFonts::load(), title, subtitle, ink);
}

}  // namespace

TEST(BuiltinStampsTest, EachShowsItsTextsInItsColour) {
    struct Row {
        const char* key;
        const char* name;
        const char* title;
        std::optional<QString> subtitle;
        QColor tint;
    };
    const QString today = QStringLiteral("07.03.2025");
    const QList<Row> rows{
        {"eingegangen-heute", "Eingegangen am: 07.03.2025", "EINGEGANGEN AM", today,
         QColor(0xc6, 0x28, 0x28)},
        {"erledigt", "Erledigt", "ERLEDIGT", std::nullopt, QColor(0x2e, 0x7d, 0x32)},
        {"erledigt-heute", "Erledigt am: 07.03.2025", "ERLEDIGT AM", today, QColor(0x2e, 0x7d, 0x32)},
        {"archiviert", "Archiviert", "ARCHIVIERT", std::nullopt, QColor(0x15, 0x65, 0xc0)},
        {"geprueft", "Geprüft", "GEPRÜFT", std::nullopt, QColor(0xb8, 0x4a, 0x00)},
    };
    TestWorkspace workspace;
    const auto library = workspace.makeLibrary();
    ASSERT_EQ(library->presets().size(), qsizetype(std::size(rows)));
    for (const Row& row : rows) {
        // Libraries on users' disks name the stamps by their keys.
        const StampPreset preset = builtin(*library, QString::fromUtf8(row.key));
        EXPECT_EQ(preset.displayName, QString::fromUtf8(row.name));
        const QImage expected =
            makeBuiltinStampImage(SystemFonts::load(), QString::fromUtf8(row.title), row.subtitle, row.tint);
        const QImage shown = library->image(preset)->pixels().convertToFormat(QImage::Format_ARGB32);
        EXPECT_TRUE(shown == expected.convertToFormat(QImage::Format_ARGB32)) << row.key;
    }
}

TEST(BuiltinStampsTest, FrameAndGroundLieWhereTheyShould) {
    const QImage image = draw({}, std::nullopt);
    ASSERT_EQ(image.size(), QSize(1180, 260));
    EXPECT_EQ(image.pixelColor(5, 5).alpha(), 0);
    EXPECT_EQ(image.pixelColor(590, 14).alpha(), 0);
    EXPECT_EQ(image.pixelColor(590, 15), ink) << "9 points of the line lie outside of the frame at 24";
    EXPECT_EQ(image.pixelColor(590, 32), ink);
    EXPECT_NEAR(image.pixelColor(590, 34).alphaF(), 0.08, 0.01);
    EXPECT_EQ(image.pixelColor(17, 17).alpha(), 0) << "the corners are round";
}

TEST(BuiltinStampsTest, EveryTitleFitsItsBoxOnOneLine) {
    for (const BuiltinStampDefinition& row : builtinDefinitions(QDateTime::currentDateTime())) {
        const QImage image = draw(row.title, row.subtitle);
        const int height = row.subtitle ? 320 : 260;
        ASSERT_EQ(image.height(), height);
        const int top = row.subtitle ? 320 - 252 : 260 - 208;
        const QRect title = inkedArea(image, 40, row.subtitle ? 320 - 136 : height - 40);
        EXPECT_GE(title.left(), 61) << row.key.toStdString();
        EXPECT_LE(title.right(), 1180 - 61);
        EXPECT_GE(title.top(), top);
        EXPECT_LE(title.bottom(), top + 130);
        EXPECT_GT(title.height(), 70);
        EXPECT_LT(title.height(), 125) << "one line";
        EXPECT_NEAR(title.center().x(), 590, 4) << "centred";
    }
}

TEST(BuiltinStampsTest, LettersStandApart) {
    const auto spread = [](const char* text, double size, QFont::Weight weight, QRect inked) {
        const QString line = QString::fromUtf8(text);
        const QFont font = SystemFonts::load().font(size, weight);
        return (inked.width() - QFontMetricsF(font).tightBoundingRect(line).width()) /
               double(line.size() - 1);
    };
    const QImage image = draw(QStringLiteral("ERLEDIGT AM"), QStringLiteral("28.08.2028"));
    EXPECT_NEAR(spread("ERLEDIGT AM", 104, QFont::Black, inkedArea(image, 40, 320 - 136)), 3.5, 0.3);
    EXPECT_NEAR(spread("28.08.2028", 72, QFont::Bold, inkedArea(image, 320 - 130, 320 - 40)), 1.2, 0.3);
    const QImage single = draw(QStringLiteral("ERLEDIGT"), std::nullopt);
    EXPECT_NEAR(spread("ERLEDIGT", 120, QFont::Black, inkedArea(single, 40, 220)), 3.5, 0.4);
}

TEST(BuiltinStampsTest, AnEmptySubtitleRaisesTheTitleAndDrawsNoSecondLine) {
    const QImage image = draw(QStringLiteral("ERLEDIGT"), QString());
    ASSERT_EQ(image.height(), 320);
    EXPECT_TRUE(inkedArea(image, 320 - 130, 320 - 40).isEmpty());
    EXPECT_FALSE(
        inkedArea(draw(QStringLiteral("ERLEDIGT"), QStringLiteral("1")), 320 - 130, 320 - 40).isEmpty());
}

TEST(BuiltinStampsTest, TheNextDayRedrawsTheDatedStampsAndKeepsTheirIdentity) {
    TestWorkspace workspace;
    const QString key = QStringLiteral("eingegangen-heute");
    const StampPreset before = builtin(*workspace.makeLibrary(), key);
    const QByteArray picture = readFile(workspace.stampsFolder() + QLatin1Char('/') + before.fileName);
    EXPECT_EQ(before.fileName, QStringLiteral("builtin-eingegangen-heute.png"));
    EXPECT_FALSE(before.lastUsedAt);

    workspace.now = workspace.now.addDays(1);
    const StampPreset after = builtin(*workspace.makeLibrary(), key);
    EXPECT_EQ(after.id, before.id);
    EXPECT_EQ(after.createdAt, before.createdAt);
    EXPECT_EQ(after.displayName, QStringLiteral("Eingegangen am: 08.03.2025"));
    EXPECT_NE(readFile(workspace.stampsFolder() + QLatin1Char('/') + after.fileName), picture);
    EXPECT_TRUE(readFile(workspace.metadataFile()).contains("08.03.2025"));
}

TEST(BuiltinStampsTest, AStartOnTheSameDayRedrawsThePicturesButWritesNoMetadata) {
    TestWorkspace workspace;
    const StampPreset preset = workspace.makeLibrary()->presets().first();
    const QString picture = workspace.stampsFolder() + QLatin1Char('/') + preset.fileName;
    writeFile(picture, "spoilt");
    const QByteArray metadata = readFile(workspace.metadataFile()) + "\n";
    writeFile(workspace.metadataFile(), metadata);
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(readFile(picture), "spoilt") << "a start does not wait for what is shown later";
    library->redrawDueBuiltins();
    QThreadPool::globalInstance()->waitForDone();
    settle();
    EXPECT_NE(readFile(picture), "spoilt");
    writeFile(picture, "spoilt");
    EXPECT_TRUE(workspace.makeLibrary()->image(preset)) << "who asks for a picture gets the new one";
    EXPECT_EQ(readFile(workspace.metadataFile()), metadata);
}

TEST(BuiltinStampsTest, APictureThatIsDrawnOtherwiseThanBeforeIsShownAnew) {
    TestWorkspace workspace;
    const StampPreset preset = workspace.makeLibrary()->presets().first();
    const QString picture = workspace.stampsFolder() + QLatin1Char('/') + preset.fileName;
    const QByteArray drawn = readFile(picture);
    const auto versionWhenAtRest = [&] {
        const auto library = workspace.makeLibrary();
        const QString before = library->deferredPicture(preset).version;
        EXPECT_TRUE(library->image(preset));
        settle();
        return std::pair(before, library->deferredPicture(preset).version);
    };
    QFile::remove(picture);
    const auto [made, unchanged] = versionWhenAtRest();
    EXPECT_EQ(made, unchanged) << "what nobody has seen before is not loaded twice";
    const auto [before, same] = versionWhenAtRest();
    EXPECT_EQ(before, same) << "a thumbnail of equal bytes is not loaded again";
    writeFile(picture, "of another version");
    const auto [spoilt, mended] = versionWhenAtRest();
    EXPECT_NE(spoilt, mended);
    EXPECT_EQ(readFile(picture), drawn);
}

TEST(BuiltinStampsTest, ARemovedBuiltinComesBackWithANewID) {
    TestWorkspace workspace;
    const QString key = QStringLiteral("geprueft");
    const auto library = workspace.makeLibrary();
    const StampPreset removed = builtin(*library, key);
    library->removePreset(removed.id);
    EXPECT_EQ(library->presets().size(), 4);
    EXPECT_FALSE(QFileInfo::exists(workspace.stampsFolder() + QLatin1Char('/') + removed.fileName));
    workspace.now = workspace.now.addSecs(60);
    const auto next = workspace.makeLibrary();
    EXPECT_NE(builtin(*next, key).id, removed.id);
    EXPECT_EQ(next->presets().first().builtinKey, key) << "the newest comes first";
}
