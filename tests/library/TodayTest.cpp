#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"
#include "library/Today.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <QDir>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace vellmora;
using namespace vellmora::test;

namespace {

const QString received = QStringLiteral("eingegangen-heute");

/// A clock that goes, and shows this time now.
Clock clockFrom(const QDateTime& time) {
    const qint64 offset = QDateTime::currentDateTime().msecsTo(time);
    return [offset] { return QDateTime::currentDateTime().addMSecs(offset); };
}

class BuiltinsOfTodayTest : public testing::Test {
protected:
    /// Lets the window see that the day is another one, as it does when it is activated.
    void activate() {
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QThreadPool::globalInstance()->waitForDone();
        settle();
    }
    QImage pictureOf(const StampPreset& preset) {
        return QImage(workspace.stampsFolder() + QLatin1Char('/') + preset.fileName)
            .convertToFormat(QImage::Format_ARGB32);
    }
    static QImage pixels(const std::optional<Image>& image) {
        return image->pixels().convertToFormat(QImage::Format_ARGB32);
    }

    TestWorkspace workspace;
};

}  // namespace

TEST(TodayTest, MidnightIsAnnounced) {
    Today today(clockFrom(QDateTime(QDate(2025, 3, 7), QTime(23, 59, 59, 800))));
    QSignalSpy changes(&today, &Today::changed);
    EXPECT_EQ(today.date(), QDate(2025, 3, 7));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !changes.isEmpty(); }, 30000));
    EXPECT_EQ(today.date(), QDate(2025, 3, 8));
    EXPECT_EQ(changes.size(), 1);
}

TEST(TodayTest, AClockThatWasSetIsSeenOnceWhenTheWindowIsActivated) {
    QDateTime now(QDate(2025, 3, 7), QTime(9, 30));
    Today today([&] { return now; });
    QSignalSpy changes(&today, &Today::changed);
    for (const int days : {0, 1, 0, -3, 0}) {
        now = now.addDays(days);
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    }
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(BuiltinsOfTodayTest, AnOpenWindowShowsTheNewDay) {
    const auto library = workspace.makeLibrary();
    const StampPreset before = builtin(*library, received);
    library->recordUse(before.id);
    library->selectPreset(before.id);
    const QString version = library->deferredPicture(before).version;
    QSignalSpy changes(library.get(), &StampLibrary::objectWillChange);
    workspace.now = workspace.now.addDays(1);
    activate();
    EXPECT_GT(changes.size(), 0);
    const StampPreset after = builtin(*library, received);
    EXPECT_EQ(after.id, before.id);
    EXPECT_EQ(after.displayName, QStringLiteral("Eingegangen am: 08.03.2025"));
    EXPECT_EQ(library->selectedPreset(), after);
    EXPECT_EQ(library->recentPresets(), QList<StampPreset>{after});
    EXPECT_NE(library->deferredPicture(after).version, version);
    EXPECT_TRUE(readFile(workspace.metadataFile()).contains("Eingegangen am: 08.03.2025"));
}

TEST_F(BuiltinsOfTodayTest, WhatIsInsertedHasTheDateOfItsInsertionAlsoBeforeMidnightIsNoticed) {
    const auto library = workspace.makeLibrary();
    const StampPreset ofYesterday = builtin(*library, received);
    const QImage yesterday = pixels(library->image(ofYesterday));
    workspace.now = workspace.now.addDays(1);
    const QImage today = pixels(library->image(ofYesterday));
    EXPECT_NE(today, yesterday);
    EXPECT_EQ(library->current(ofYesterday).displayName, QStringLiteral("Eingegangen am: 08.03.2025"));
    EXPECT_EQ(today, pixels(workspace.makeLibrary()->image(ofYesterday)));
    workspace.now = workspace.now.addDays(1);
    library->redrawDueBuiltins();  // under way when the next day comes
    workspace.now = workspace.now.addDays(-2);
    EXPECT_EQ(pixels(library->image(ofYesterday)), yesterday);
}

TEST_F(BuiltinsOfTodayTest, ARemovedStampDoesNotComeBackAtMidnightButAtTheNextStart) {
    const auto library = workspace.makeLibrary();
    library->removePreset(builtin(*library, received).id);
    workspace.now = workspace.now.addDays(1);
    activate();
    EXPECT_EQ(library->presets().size(), 4);
    EXPECT_EQ(workspace.makeLibrary()->presets().size(), 5);
}

TEST_F(BuiltinsOfTodayTest, WhateverStandsInThePlaceOfAPictureIsReplacedAndNeverWrittenThrough) {
    const QList<StampPreset> presets = workspace.makeLibrary()->presets();
    const auto path = [&](int i) {
        return workspace.stampsFolder() + QLatin1Char('/') + presets[i].fileName;
    };
    const QString letter = workspace.path(QStringLiteral("Brief.txt"));
    writeFile(letter, "a letter");
    QFile::setPermissions(path(0), QFile::ReadOwner);
    QFile::remove(path(1));
    ASSERT_TRUE(QFile::link(letter, path(1)));
    QFile::remove(path(2));
    QDir().mkpath(path(2));
    writeFile(path(2) + QStringLiteral("/Notiz.txt"), "a note");
    workspace.now = workspace.now.addDays(1);
    const auto library = workspace.makeLibrary();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(QFileInfo(path(i)).isFile() && !QFileInfo(path(i)).isSymLink());
        EXPECT_FALSE(pictureOf(presets[i]).isNull());
        EXPECT_EQ(library->current(presets[i]).displayName.contains(QStringLiteral("08.03.2025")),
                  presets[i].displayName.contains(QStringLiteral("07.03.2025")));
    }
    EXPECT_EQ(readFile(letter), "a letter");
    EXPECT_EQ(readFile(path(2) + QStringLiteral(".beiseite/Notiz.txt")), "a note");
}

TEST_F(BuiltinsOfTodayTest, AKeyOnAPictureOfTheUsersDoesNotHaveItDrawnOver) {
    StampPreset mine;
    {
        const auto library = workspace.makeLibrary();
        writeFile(workspace.path(QStringLiteral("mein.png")), plainPng(20, 10, Qt::blue));
        mine = library->importPreset(workspace.url(QStringLiteral("mein.png")));
    }
    QByteArray metadata = readFile(workspace.metadataFile());
    const QByteArray fileName = R"("fileName": ")" + mine.fileName.toUtf8() + "\"";
    metadata.replace(fileName, fileName + ",\n\"builtinKey\": \"geprueft\"");
    writeFile(workspace.metadataFile(), metadata);
    const QByteArray picture = readFile(workspace.stampsFolder() + QLatin1Char('/') + mine.fileName);
    workspace.now = workspace.now.addDays(1);
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(readFile(workspace.stampsFolder() + QLatin1Char('/') + mine.fileName), picture);
    EXPECT_EQ(library->presets().size(), 6);
    EXPECT_FALSE(named(*library, QStringLiteral("mein")).isBuiltin());
}

TEST_F(BuiltinsOfTodayTest, EveryEntryOfOneKeyHasTheDayOfToday) {
    StampPreset twin = builtin(*workspace.makeLibrary(), received);
    auto presets = *decodePresets(readFile(workspace.metadataFile()));
    twin.id = QUuid::createUuid();
    twin.fileName = QStringLiteral("zwilling.png");
    writeFile(workspace.stampsFolder() + QStringLiteral("/zwilling.png"), plainPng(9, 9, Qt::red));
    presets.append(twin);
    writeFile(workspace.metadataFile(), encodePresets(presets));
    workspace.now = workspace.now.addDays(1);
    const auto library = workspace.makeLibrary();
    for (const StampPreset& preset : library->presets())
        EXPECT_FALSE(preset.displayName.contains(QStringLiteral("07.03.2025")));
    EXPECT_EQ(pictureOf(twin).size(), QSize(1180, 320));
}
