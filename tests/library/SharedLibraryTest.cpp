#include "base/Text.h"
#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <algorithm>
#include <cstdio>

#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// Two windows on one library, as two programs have them: they share nothing but the disk.
class SharedLibraryTest : public testing::Test {
protected:
    StampPreset import(StampLibrary& library, const char* name) {
        const QString fileName = QString::fromUtf8(name) + QStringLiteral(".png");
        writeFile(workspace.path(fileName), plainPng(20, 10, Qt::blue));
        return library.importPreset(workspace.url(fileName));
    }
    static bool has(const StampLibrary& library, const QUuid& id) {
        const auto& presets = library.presets();
        return std::any_of(presets.begin(), presets.end(), [&](const auto& p) { return p.id == id; });
    }
    QList<StampPreset> stored() const { return decodePresets(readFile(workspace.metadataFile())).value(); }
    /// Until the system has told the window what the other one did.
    template <typename Condition>
    static void await(Condition condition) {
        EXPECT_TRUE(QTest::qWaitFor(condition, 30000));
    }

    TestWorkspace workspace;
    std::unique_ptr<StampLibrary> one = workspace.makeLibrary();
    std::unique_ptr<StampLibrary> two = workspace.makeLibrary();
};

}  // namespace

TEST_F(SharedLibraryTest, AChangeTakesNothingThatAnotherWindowHasAdded) {
    // No event loop runs: neither window is told of what the other does.
    const StampPreset mine = import(*one, "mein");
    const StampPreset other = import(*two, "dein");
    one->recordUse(one->presets().first().id);
    two->removePreset(builtin(*two, QStringLiteral("geprueft")).id);
    one->recordUse(mine.id);
    one.reset();
    EXPECT_EQ(stored().size(), 6);
    const auto next = workspace.makeLibrary();
    EXPECT_TRUE(has(*next, mine.id) && has(*next, other.id));
    EXPECT_EQ(next->recentPresets().first().id, mine.id);
    EXPECT_EQ(next->presets().size(), 7) << "the built-in one comes back";
}

TEST_F(SharedLibraryTest, BothFirstStartsMakeEachBuiltinOnce) {
    EXPECT_EQ(one->presets().size(), 5);
    for (const StampPreset& preset : one->presets())
        EXPECT_TRUE(has(*two, preset.id));
}

TEST_F(SharedLibraryTest, AnotherWindowShowsTheNewEntryAndItsUse) {
    int refreshes = 0;
    QObject::connect(two.get(), &StampLibrary::objectWillChange, [&] { ++refreshes; });
    const QUuid chosen = two->presets().at(2).id;
    two->selectPreset(chosen);
    const StampPreset mine = import(*one, "mein");
    await([&] { return has(*two, mine.id) && !two->recentPresets().isEmpty(); });
    EXPECT_GT(refreshes, 0);
    EXPECT_EQ(two->recentPresets().first().id, mine.id);
    EXPECT_EQ(two->selectedPresetID(), chosen) << "the selection is each window's own";
    EXPECT_EQ(one->selectedPresetID(), mine.id);
}

TEST_F(SharedLibraryTest, ASelectionThatAnotherWindowRemovesIsHandedOnButNotStored) {
    const StampPreset mine = import(*one, "mein");
    await([&] { return has(*two, mine.id); });
    two->selectPreset(mine.id);
    const QUuid chosen = one->presets().at(3).id;
    QSignalSpy removedHere(one.get(), &StampLibrary::presetRemoved);
    QSignalSpy removedThere(two.get(), &StampLibrary::presetRemoved);
    one->removePreset(mine.id);
    one->selectPreset(chosen);
    await([&] { return !has(*two, mine.id); });
    EXPECT_EQ(two->selectedPresetID(), two->presets().first().id);
    EXPECT_EQ(workspace.makeLibrary()->selectedPresetID(), chosen) << "the last one that was chosen";
    EXPECT_EQ(removedHere.size(), 1);
    EXPECT_EQ(removedThere.size(), 1);
}

TEST_F(SharedLibraryTest, RecentsOfBothWindowsAreKept) {
    one->recordUse(one->presets().at(0).id);
    two->recordUse(two->presets().at(1).id);
    one->recordUse(one->presets().at(2).id);
    EXPECT_EQ(workspace.makeLibrary()->recentPresets().size(), 3);
}

TEST_F(SharedLibraryTest, ReplacedPicturesAreShownAnew) {
    const StampPreset mine = import(*one, "mein");
    await([&] { return has(*two, mine.id); });
    settle();
    const QString before = two->deferredPicture(mine).version;
    bool isTold = false;
    QObject::connect(two.get(), &StampLibrary::objectWillChange, [&] { isTold = true; });
    const QString path = workspace.stampsFolder() + QLatin1Char('/') + mine.fileName;
    writeFile(path + QStringLiteral(".new"), plainPng(9, 9, Qt::green));
    ASSERT_EQ(::rename(qPrintable(path + QStringLiteral(".new")), qPrintable(path)), 0);
    await([&] { return isTold && two->deferredPicture(mine).version != before; });
}

TEST_F(SharedLibraryTest, AFileThatIsDamagedOrDeletedWhileTheWindowIsOpenTakesNothing) {
    const StampPreset mine = import(*one, "mein");
    writeFile(workspace.metadataFile(), "damaged");
    settle();
    EXPECT_TRUE(has(*one, mine.id));
    const StampPreset second = import(*one, "zweiter");
    EXPECT_EQ(stored().size(), 7);
    QFile::remove(workspace.metadataFile());
    settle();
    one->recordUse(second.id);
    one.reset();
    EXPECT_EQ(stored().size(), 7);
    EXPECT_EQ(QDir(workspace.storeFolder()).entryList({QStringLiteral("*unlesbar*")}).size(), 1);
}

TEST_F(SharedLibraryTest, ALibraryFolderThatIsMadeAnewIsFollowed) {
    QDir(workspace.storeFolder()).removeRecursively();
    settle();
    const StampPreset mine = import(*one, "mein");
    const StampPreset other = import(*two, "dein");
    await([&] { return has(*one, other.id); });
    EXPECT_TRUE(has(*two, mine.id));
}

TEST_F(SharedLibraryTest, EntriesThatShareAnIDKeepTheirNewOne) {
    QList<StampPreset> presets = stored();
    StampPreset twin = presets.last();
    twin.builtinKey.reset();
    presets.append(twin);
    writeFile(workspace.metadataFile(), encodePresets(presets));
    QSet<QUuid> ids;
    for (int start = 0; start < 2; ++start) {
        const auto library = workspace.makeLibrary();
        for (const StampPreset& preset : library->presets())
            ids.insert(preset.id);
    }
    EXPECT_EQ(ids.size(), 6);
}
