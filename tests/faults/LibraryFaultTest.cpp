#include "app/ContentWindow.h"
#include "base/Error.h"
#include "library/StampPresetJson.h"
#include "preview/ProcessRenderer.h"
#include "tests/faults/OrdinaryUser.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <algorithm>
#include <sys/stat.h>

#include <QDir>
#include <QProcess>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The library's folder in a bad state.
class LibraryFaultTest : public testing::Test {
protected:
    LibraryFaultTest() {
        writeFile(workspace.path(QStringLiteral("Kanzlei.png")), plainPng(40, 20, Qt::red));
    }
    void TearDown() override {
        for (const QString& path : {workspace.storeFolder(), workspace.stampsFolder()})
            setMode(path, 0755);
    }

    static void setMode(const QString& path, unsigned mode) { ::chmod(qPrintable(path), mode); }
    StampPreset import(StampLibrary& library) {
        return library.importPreset(workspace.url(QStringLiteral("Kanzlei.png")));
    }
    static qsizetype userEntries(const QByteArray& metadata) {
        const auto presets = decodePresets(metadata);
        return presets ? std::count_if(presets->begin(), presets->end(),
                                       [](const auto& preset) { return !preset.isBuiltin(); })
                       : -1;
    }
    /// The files that were kept beside a new one.
    QStringList keptAside() const {
        const QDir folder(workspace.storeFolder());
        QStringList paths;
        for (const QString& name : folder.entryList({QStringLiteral("*unlesbar*")}))
            paths.append(folder.filePath(name));
        return paths;
    }
    /// A library with one entry of the user's.
    QByteArray makeStoredLibrary() {
        import(*workspace.makeLibrary());
        return readFile(workspace.metadataFile());
    }

    /// A window opens, says what it cannot do, and does the rest.
    void expectWorkingWindow() {
        const OrdinaryUser user(workspace.path(QString()));
        writeFile(workspace.path(QStringLiteral("Vertrag.pdf")), pages(2).bytes());
        ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
        ContentWindow shown(
            std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
            renderer, Theme(SystemFonts::load()));
        shown.window().show();
        ContentView& content = shown.content();
        content.loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
        settle();
        workspace.panels.answer = workspace.url(QStringLiteral("Kanzlei.png"));
        content.importStampToLibrary();
        const QString failure = QStringLiteral("Stempel konnte nicht importiert werden: ");
        EXPECT_TRUE(content.statusText.value().startsWith(failure))
            << content.statusText.value().toStdString();
        EXPECT_TRUE(content.statusText.value().contains(QStringLiteral(" konnte nicht ")));
        content.addStampToCurrentPage(content.stampLibrary().selectedPreset());
        settle();
        content.beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
        EXPECT_EQ(content.statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    }

    TestWorkspace workspace;
};

}  // namespace

TEST_F(LibraryFaultTest, FaultsCanBeGivenToAProgramFromOutside) {
    const auto exitCodeWith = [&](const QString& faults) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("VELLMORA_FAULTS"), faults + workspace.path(QString()));
        program.setProcessEnvironment(environment);
        program.start(
            QStringLiteral(VELLMORA_STAMP_JOB),
            {QStringLiteral("library"), workspace.path(QString()), QStringLiteral("1"), QStringLiteral("0")});
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return program.exitCode();
    };
    EXPECT_EQ(exitCodeWith(QStringLiteral("2 0 28 1 0 ")), 0);
    EXPECT_EQ(exitCodeWith(QStringLiteral("2 1 28 1 0 ")), 1) << "the disk was full";
}

TEST_F(LibraryFaultTest, MetadataThatCannotBeReadIsKeptBeforeItIsReplaced) {
    const QByteArray stored = makeStoredLibrary();
    setMode(workspace.metadataFile(), 0);
    {
        const OrdinaryUser user(workspace.path(QString()));
        EXPECT_EQ(workspace.makeLibrary()->presets().size(), 5);
    }
    ASSERT_EQ(keptAside().size(), 1);
    setMode(keptAside().first(), 0600);
    EXPECT_EQ(readFile(keptAside().first()), stored);
    EXPECT_EQ(decodePresets(readFile(workspace.metadataFile()))->size(), 5);
}

TEST_F(LibraryFaultTest, MetadataThatCouldNotBeReachedAtFirstLosesNothing) {
    makeStoredLibrary();
    const OrdinaryUser user(workspace.path(QString()));
    setMode(workspace.storeFolder(), 0);
    const auto library = workspace.makeLibrary();
    EXPECT_TRUE(library->presets().isEmpty());
    setMode(workspace.storeFolder(), 0755);  // the volume is there again
    import(*library);
    EXPECT_EQ(userEntries(readFile(workspace.metadataFile())), 2);
    EXPECT_EQ(keptAside(), QStringList());
}

TEST_F(LibraryFaultTest, EntriesWhosePicturesCannotBeReachedAreKept) {
    makeStoredLibrary();
    const OrdinaryUser user(workspace.path(QString()));
    setMode(workspace.stampsFolder(), 0);
    const auto library = workspace.makeLibrary();
    setMode(workspace.stampsFolder(), 0755);
    import(*library);
    EXPECT_EQ(userEntries(readFile(workspace.metadataFile())), 2);
}

TEST_F(LibraryFaultTest, MetadataThatCannotBeKeptIsNotReplaced) {
    makeStoredLibrary();
    writeFile(workspace.metadataFile(), "damaged, but perhaps to be rescued");
    const OrdinaryUser user(workspace.path(QString()));
    setMode(workspace.storeFolder(), 0555);
    const auto library = workspace.makeLibrary();
    EXPECT_THROW(import(*library), Error);
    EXPECT_EQ(readFile(workspace.metadataFile()), "damaged, but perhaps to be rescued");
}

TEST_F(LibraryFaultTest, WithoutAUsableFolderTheWindowStillWorks) {
    makeStoredLibrary();
    for (const unsigned mode : {0555U, 0000U}) {  // read-only, unreadable
        setMode(workspace.stampsFolder(), mode);
        setMode(workspace.storeFolder(), mode);
        expectWorkingWindow();
        setMode(workspace.storeFolder(), 0755);
        setMode(workspace.stampsFolder(), 0755);
        EXPECT_EQ(userEntries(readFile(workspace.metadataFile())), 1);
    }
    QDir(workspace.path(QStringLiteral("data"))).removeRecursively();
    writeFile(workspace.path(QStringLiteral("data")), "a file where the folder should be");
    expectWorkingWindow();
}

TEST_F(LibraryFaultTest, NoFileNameLeadsOutOfTheFolder) {
    makeStoredLibrary();
    writeFile(workspace.storeFolder() + QStringLiteral("/geheim.png"), plainPng(2, 2, Qt::red));
    writeFile(workspace.path(QStringLiteral("geheim.png")), plainPng(2, 2, Qt::red));
    const QString absolute = workspace.path(QStringLiteral("geheim.png"));
    QList<StampPreset> presets;
    for (const QString& name :
         {QStringLiteral("../geheim.png"), QStringLiteral("../../../geheim.png"), absolute,
          QStringLiteral("./../geheim.png"), QStringLiteral(".."), QStringLiteral("."),
          QStringLiteral("Stamps/../../geheim.png"), QString(QChar(QChar::Null))}) {
        StampPreset preset;
        preset.displayName = name;
        preset.fileName = name;
        preset.createdAt = workspace.now;
        presets.append(preset);
        preset.id = QUuid::createUuid();
        preset.builtinKey = QStringLiteral("geprueft");  // its picture is written at each start
        presets.append(preset);
    }
    writeFile(workspace.metadataFile(), encodePresets(presets));
    const QByteArray before = readFile(absolute);
    const auto library = workspace.makeLibrary();
    EXPECT_EQ(library->presets().size(), 5) << "the built-in ones";
    for (const StampPreset& preset : presets) {
        EXPECT_FALSE(library->image(preset));
        library->removePreset(preset.id);
    }
    EXPECT_EQ(readFile(absolute), before);
    EXPECT_EQ(readFile(workspace.storeFolder() + QStringLiteral("/geheim.png")), before);
}
