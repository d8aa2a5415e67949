#include "base/FileLock.h"
#include "base/Text.h"
#include "library/LibraryFolder.h"
#include "library/StampLibrary.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

// As they stand in users' settings.
const QString selectedKey = QStringLiteral("Vellmora.selectedPresetID");
const QString recentsKey = QStringLiteral("Vellmora.recentPresetIDs");

class StampSelectionTest : public testing::Test {
protected:
    UserDefaults defaults() const { return UserDefaults(workspace.folders().defaultsFile); }
    QStringList storedRecents() const { return defaults().stringList(recentsKey).value_or(QStringList()); }
    std::optional<QString> storedSelection() const { return defaults().string(selectedKey); }
    QList<StampPreset> importMany(StampLibrary& library, int count) {
        const QString file = workspace.path(QStringLiteral("a.png"));
        writeFile(file, plainPng(4, 4, Qt::red));
        QList<StampPreset> presets;
        for (int i = 0; i < count; ++i)
            presets.append(library.importPreset(QUrl::fromLocalFile(file)));
        return presets;
    }

    TestWorkspace workspace;
};

}  // namespace

TEST_F(StampSelectionTest, TheSelectionSurvivesARestart) {
    const QUuid id = builtin(*workspace.makeLibrary(), QStringLiteral("archiviert")).id;
    workspace.makeLibrary()->selectPreset(id);
    EXPECT_EQ(storedSelection(), identifierText(id));
    EXPECT_EQ(workspace.makeLibrary()->selectedPreset()->id, id);
}

TEST_F(StampSelectionTest, AStoredSelectionThatNamesNothingGivesTheFirstEntryAndIsRepaired) {
    workspace.makeLibrary();
    for (const QString& stale : {QStringLiteral("no id"), identifierText(QUuid::createUuid())}) {
        defaults().setString(selectedKey, stale);
        const auto library = workspace.makeLibrary();
        EXPECT_EQ(library->selectedPresetID(), library->presets().first().id);
        EXPECT_EQ(storedSelection(), identifierText(library->presets().first().id));
    }
}

TEST_F(StampSelectionTest, AnUnknownSelectionIsStoredAndStandsForTheFirstEntry) {
    const auto library = workspace.makeLibrary();
    const QUuid unknown = QUuid::createUuid();
    library->selectPreset(unknown);
    EXPECT_EQ(library->selectedPresetID(), unknown);
    EXPECT_EQ(storedSelection(), identifierText(unknown));
    EXPECT_EQ(library->selectedPreset(), library->presets().first());
}

TEST_F(StampSelectionTest, UseMovesAnEntryToTheFrontAndKeepsTheSelection) {
    auto library = workspace.makeLibrary();
    const QList<StampPreset> presets = importMany(*library, 3);
    workspace.now = workspace.now.addDays(1);
    library->selectPreset(presets[1].id);
    library->recordUse(presets[0].id);
    EXPECT_EQ(library->selectedPresetID(), presets[1].id);
    EXPECT_EQ(library->recentPresets().value(0).id, presets[0].id);
    EXPECT_EQ(library->recentPresets().size(), 3);
    EXPECT_EQ(library->recentPresets().value(0).lastUsedAt, workspace.now);
    library.reset();
    const StampPreset restarted = workspace.makeLibrary()->recentPresets().value(0);
    EXPECT_EQ(restarted.id, presets[0].id);
    EXPECT_EQ(restarted.lastUsedAt, workspace.now);
}

TEST_F(StampSelectionTest, UseWaitsForNobodyAndIsStoredAllTheSame) {
    auto library = workspace.makeLibrary();
    const QList<StampPreset> presets = importMany(*library, 2);
    workspace.now = workspace.now.addDays(1);
    const QByteArray before = readFile(workspace.metadataFile());
    {
        const FileLock heldByAnotherProgram(LibraryFolder(workspace.folders()).lockPath());
        library->recordUse(presets[0].id);
        library->recordUse(presets[1].id);
        EXPECT_EQ(readFile(workspace.metadataFile()), before);
    }
    library.reset();
    const QList<StampPreset> recents = workspace.makeLibrary()->recentPresets();
    ASSERT_EQ(recents.size(), 2);
    EXPECT_EQ(recents[0].id, presets[1].id);
    EXPECT_EQ(recents[0].lastUsedAt, workspace.now);
    EXPECT_EQ(recents[1].lastUsedAt, workspace.now);
}

TEST_F(StampSelectionTest, TwelveRecentsAreStoredAndEightShown) {
    const auto library = workspace.makeLibrary();
    const QList<StampPreset> presets = importMany(*library, 13);
    EXPECT_EQ(storedRecents().size(), 12);
    EXPECT_EQ(storedRecents().value(0), identifierText(presets[12].id));
    EXPECT_EQ(storedRecents().value(11), identifierText(presets[1].id));
    EXPECT_EQ(library->recentPresets().size(), 8);
    library->recordUse(presets[5].id);
    EXPECT_EQ(storedRecents().size(), 12);
    EXPECT_EQ(storedRecents().value(0), identifierText(presets[5].id));
}

TEST_F(StampSelectionTest, OddStoredRecentsAreToleratedAndUnknownUsesIgnored) {
    const auto library = workspace.makeLibrary();
    const StampPreset preset = library->presets().last();
    library->recordUse(QUuid::createUuid());
    EXPECT_TRUE(storedRecents().isEmpty());
    defaults().changeStringList(recentsKey, [&](const QStringList&) {
        return QStringList{QStringLiteral("junk"), identifierText(QUuid::createUuid()),
                           identifierText(preset.id)};
    });
    EXPECT_EQ(workspace.makeLibrary()->recentPresets(), QList<StampPreset>{preset});
    defaults().setString(recentsKey, QStringLiteral("not a list"));
    const auto next = workspace.makeLibrary();
    EXPECT_TRUE(next->recentPresets().isEmpty());
    next->recordUse(preset.id);
    EXPECT_EQ(storedRecents(), QStringList{identifierText(preset.id)});
}
