#include "base/Error.h"
#include "base/Text.h"
#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <QDir>
#include <QSignalSpy>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class StampLibraryTest : public testing::Test {
protected:
    /// Imports a PNG that was saved under this name.
    StampPreset import(StampLibrary& library, const char* name) {
        const QString fileName = QString::fromUtf8(name);
        writeFile(workspace.path(fileName), plainPng(20, 10, Qt::blue));
        return library.importPreset(workspace.url(fileName));
    }
    QList<StampPreset> stored() const {
        return decodePresets(readFile(workspace.metadataFile())).value_or(QList<StampPreset>());
    }
    static QStringList userNames(const StampLibrary& library) {
        QStringList names;
        for (const StampPreset& preset : library.presets()) {
            if (!preset.isBuiltin())
                names.append(preset.displayName);
        }
        return names;
    }
    void writeMetadata(const QByteArray& json) {
        QDir().mkpath(workspace.stampsFolder());
        writeFile(workspace.metadataFile(), json);
    }
    static QByteArray entry(const char* id, const char* name, const char* file) {
        return QByteArray(R"({"id": ")") + id + R"(", "displayName": ")" + name + R"(", "fileName": ")" +
               file + R"(", "createdAt": "2024-01-01T00:00:00Z"})";
    }

    TestWorkspace workspace;
};

constexpr const char* firstID = "6BA7B810-9DAD-11D1-80B4-00C04FD430C1";
constexpr const char* secondID = "6BA7B810-9DAD-11D1-80B4-00C04FD430C2";

}  // namespace

TEST_F(StampLibraryTest, TheFirstStartMakesFoldersAndStoresTheBuiltins) {
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(library->presets().size(), 5);
    EXPECT_EQ(stored().size(), 5);
    EXPECT_EQ(QDir(workspace.stampsFolder()).entryList(QDir::Files).size(), 5);
    EXPECT_EQ(library->selectedPresetID(), library->presets().first().id);
}

TEST_F(StampLibraryTest, ImportCopiesTheFileAndPutsTheEntryFirstAmongTheUsersOwn) {
    const auto library = workspace.makeLibrary();
    import(*library, "alt.png");
    workspace.now = workspace.now.addSecs(60);
    QSignalSpy changes(library.get(), &StampLibrary::objectWillChange);
    const StampPreset preset = import(*library, "Sig.PNG");
    EXPECT_GT(changes.size(), 0);
    EXPECT_EQ(preset.displayName, QStringLiteral("Sig"));
    EXPECT_EQ(preset.fileName, identifierText(preset.id) + QStringLiteral(".png"));
    EXPECT_EQ(preset.createdAt, workspace.now);
    EXPECT_EQ(preset.lastUsedAt, workspace.now);
    EXPECT_EQ(readFile(workspace.stampsFolder() + QLatin1Char('/') + preset.fileName),
              readFile(workspace.path(QStringLiteral("Sig.PNG"))));
    EXPECT_EQ(userNames(*library), (QStringList{QStringLiteral("Sig"), QStringLiteral("alt")}));
    EXPECT_EQ(library->selectedPresetID(), preset.id);
    EXPECT_EQ(library->recentPresets().value(0), preset);
    EXPECT_EQ(stored().size(), 7);
}

TEST_F(StampLibraryTest, NamesTheNamelessAndKeepsInnerDots) {
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(import(*library, ".png").displayName, QStringLiteral("Stempel"));
    EXPECT_EQ(import(*library, "Meier.Unterschrift.png").displayName, QStringLiteral("Meier.Unterschrift"));
    EXPECT_NE(import(*library, "a.png").id, import(*library, "a.png").id);
}

TEST_F(StampLibraryTest, AFailedImportChangesNothing) {
    const auto library = workspace.makeLibrary();
    const auto before = library->presets();
    EXPECT_THROW(library->importPreset(workspace.url(QStringLiteral("fehlt.png"))), Error);
    EXPECT_EQ(library->presets(), before);
    EXPECT_EQ(QDir(workspace.stampsFolder()).entryList(QDir::Files | QDir::Hidden).size(), 5);
}

TEST_F(StampLibraryTest, SortsBuiltinsThenByDateThenByNameWithoutCase) {
    const auto library = workspace.makeLibrary();
    for (const char* name : {"Birne.png", "apfel.png", "Zebra.png"})
        import(*library, name);
    EXPECT_EQ(userNames(*library),
              (QStringList{QStringLiteral("apfel"), QStringLiteral("Birne"), QStringLiteral("Zebra")}));
    workspace.now = workspace.now.addSecs(1);
    library->recordUse(named(*library, QStringLiteral("Zebra")).id);
    EXPECT_EQ(userNames(*library).first(), QStringLiteral("Zebra"));
    EXPECT_TRUE(library->presets().first().isBuiltin());
}

TEST_F(StampLibraryTest, RemovalDeletesFileEntryAndPassesTheSelectionOn) {
    const auto library = workspace.makeLibrary();
    const StampPreset preset = import(*library, "a.png");
    library->removePreset(preset.id);
    EXPECT_FALSE(QFile::exists(workspace.stampsFolder() + QLatin1Char('/') + preset.fileName));
    EXPECT_EQ(stored().size(), 5);
    EXPECT_EQ(library->selectedPresetID(), library->presets().first().id);
    EXPECT_TRUE(library->recentPresets().isEmpty());
    library->removePreset(QUuid::createUuid());
    EXPECT_EQ(library->presets().size(), 5);
}

TEST_F(StampLibraryTest, ARemovalThatFailsChangesNothing) {
    const auto library = workspace.makeLibrary();
    const StampPreset preset = import(*library, "a.png");
    const QString file = workspace.stampsFolder() + QLatin1Char('/') + preset.fileName;
    QFile::remove(file);
    QDir().mkpath(file + QStringLiteral("/inner"));  // a folder is not deleted as a file
    EXPECT_THROW(library->removePreset(preset.id), Error);
    EXPECT_EQ(userNames(*library), QStringList{QStringLiteral("a")});
    EXPECT_EQ(library->selectedPresetID(), preset.id);
}

TEST_F(StampLibraryTest, EntriesWhoseFileIsGoneAreDroppedAtTheNextStart) {
    StampPreset preset;
    {
        const auto library = workspace.makeLibrary();
        import(*library, "bleibt.png");
        preset = import(*library, "weg.png");
    }
    QFile::remove(workspace.stampsFolder() + QLatin1Char('/') + preset.fileName);
    EXPECT_EQ(userNames(*workspace.makeLibrary()), QStringList{QStringLiteral("bleibt")});
    EXPECT_EQ(stored().size(), 7) << "the file is not rewritten by loading";
}

TEST_F(StampLibraryTest, AnEntryWhoseFileIsALinkIsKept) {
    writeMetadata("[" + entry(firstID, "Link", "link.png") + "]");
    writeFile(workspace.path(QStringLiteral("Ziel.png")), plainPng(20, 10, Qt::blue));
    ASSERT_TRUE(QFile::link(workspace.path(QStringLiteral("Ziel.png")),
                            workspace.stampsFolder() + QStringLiteral("/link.png")));
    EXPECT_EQ(userNames(*workspace.makeLibrary()), QStringList{QStringLiteral("Link")});
}

TEST_F(StampLibraryTest, AnUnreadableFileYieldsTheBuiltinsAndIsKeptAsideOnce) {
    for (const QByteArray& content : {QByteArray("{}"), QByteArray(R"([{"id": "broken)")}) {
        writeMetadata(content);
        EXPECT_EQ(workspace.makeLibrary()->presets().size(), 5);
        EXPECT_EQ(stored().size(), 5);
        const QDir folder(workspace.storeFolder());
        const QStringList kept = folder.entryList({QStringLiteral("*.unlesbar-*.json")});
        ASSERT_EQ(kept.size(), 1);
        EXPECT_EQ(readFile(folder.filePath(kept.first())), content);
        QDir(workspace.storeFolder()).removeRecursively();
    }
}

TEST_F(StampLibraryTest, FileNamesThatLeaveTheFolderAreNeverFollowed) {
    writeMetadata("[" + entry(firstID, "Ausbruch", "../geheim.png") + ", " + entry(secondID, "Leer", "") +
                  "]");
    writeFile(workspace.storeFolder() + QStringLiteral("/geheim.png"), plainPng(2, 2, Qt::red));
    const auto library = workspace.makeLibrary();
    EXPECT_TRUE(userNames(*library).isEmpty());
    EXPECT_FALSE(library->image({QUuid::createUuid(), {}, QStringLiteral("../geheim.png"), {}, {}, {}}));
}

TEST_F(StampLibraryTest, EntriesThatShareAnIDAreBothKept) {
    writeMetadata("[" + entry(firstID, "Eins", "a.png") + ", " + entry(firstID, "Zwei", "a.png") + "]");
    writeFile(workspace.stampsFolder() + QStringLiteral("/a.png"), plainPng(2, 2, Qt::red));
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(userNames(*library).size(), 2);
    EXPECT_NE(named(*library, QStringLiteral("Eins")).id, named(*library, QStringLiteral("Zwei")).id);
}

TEST_F(StampLibraryTest, WithoutAFolderItStillStarts) {
    writeFile(workspace.path(QStringLiteral("data")), "a file where the folder should be");
    testing::internal::CaptureStdout();
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Builtin stamp setup failed: Der Ordner „Vellmora“ konnte nicht angelegt werden. "
              "Ein Teil des Pfades ist kein Ordner.\n");
    EXPECT_TRUE(library->presets().isEmpty());
    EXPECT_FALSE(library->selectedPreset());
}

TEST_F(StampLibraryTest, ImagesAreReadFromTheirFileOrAbsent) {
    const auto library = workspace.makeLibrary();
    StampPreset preset = import(*library, "a.png");
    EXPECT_EQ(library->image(preset)->pixels().size(), QSize(20, 10));
    writeFile(workspace.stampsFolder() + QLatin1Char('/') + preset.fileName, "no picture");
    EXPECT_FALSE(library->image(preset));
}

TEST_F(StampLibraryTest, TheImportPanelAsksForOnePng) {
    const auto library = workspace.makeLibrary();
    EXPECT_FALSE(library->openImportPanel());
    workspace.panels.answer = workspace.url(QStringLiteral("a.png"));
    EXPECT_EQ(library->openImportPanel(), workspace.panels.answer);
    EXPECT_EQ(workspace.panels.opened.last().title, QStringLiteral("PNG-Stempel zur Bibliothek hinzufügen"));
    EXPECT_EQ(workspace.panels.opened.last().contentType, ContentType::png);
}
