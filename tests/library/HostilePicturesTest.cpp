#include "base/Error.h"
#include "library/StampLibrary.h"
#include "library/StampPresetJson.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// What strangers put into pictures, and what others may have done to the program's own files.
class HostilePicturesTest : public testing::Test {
protected:
    QString importError(const QByteArray& bytes) {
        writeFile(workspace.path(QStringLiteral("Bild.png")), bytes);
        try {
            library->importPreset(workspace.url(QStringLiteral("Bild.png")));
        } catch (const Error& error) {
            return error.localizedDescription();
        }
        return {};
    }
    static QByteArray jpeg() {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        plainImage(8, 8, Qt::white).convertToFormat(QImage::Format_RGB32).save(&buffer, "JPG");
        return bytes;
    }
    void makeSparse(const QString& path, off_t size) {
        QFile::remove(path);
        writeFile(path, {});
        ASSERT_EQ(::truncate(qPrintable(path), size), 0);
    }
    QString decodingFolder() const { return workspace.storeFolder() + QStringLiteral("/.decoding/"); }
    QStringList notes() const { return QDir(decodingFolder()).entryList(QDir::Files | QDir::Hidden); }
    QString noteOf(const StampPreset& preset) const {
        const QByteArray version = library->deferredPicture(preset).version.toUtf8();
        return QString::fromLatin1(QCryptographicHash::hash(version, QCryptographicHash::Sha256).toHex());
    }

    TestWorkspace workspace;
    std::unique_ptr<StampLibrary> library = workspace.makeLibrary();
};

constexpr off_t twentyGigabytes = off_t{20} << 30;

}  // namespace

TEST_F(HostilePicturesTest, WhatIsNoReadablePngIsRefusedWithAReason) {
    const QString reason =
        QStringLiteral("„Bild.png“ konnte nicht gelesen werden. Die Datei ist kein lesbares PNG-Bild.");
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("text"), jpeg(), plainPng(9, 9, Qt::red).chopped(20)})
        EXPECT_EQ(importError(bytes), reason);
    makeSparse(workspace.path(QStringLiteral("Bild.png")), twentyGigabytes);
    EXPECT_THROW(library->importPreset(workspace.url(QStringLiteral("Bild.png"))), Error);
    EXPECT_EQ(library->presets().size(), 5);
    EXPECT_EQ(QDir(workspace.stampsFolder()).entryList(QDir::Files | QDir::Hidden).size(), 5);
    EXPECT_EQ(importError(plainPng(9, 9, Qt::red)), QString());
}

TEST_F(HostilePicturesTest, APictureOverWhichTheProgramEndedIsPassedOverUntilTheUserWantsIt) {
    ASSERT_EQ(importError(plainPng(9, 9, Qt::red)), QString());
    const StampPreset mine = named(*library, QStringLiteral("Bild"));
    // The loader of a view is killed in the middle: it has noted what it decodes.
    const pid_t child = ::fork();
    if (child == 0) {
        rlimit limit{};
        limit.rlim_cur = limit.rlim_max = 0;
        ::setrlimit(RLIMIT_CORE, &limit);
        ::mkdir(qPrintable(decodingFolder()), 0755);
        const int note = ::open(qPrintable(decodingFolder() + noteOf(mine)), O_RDWR | O_CREAT, 0600);
        ::_exit(::flock(note, LOCK_EX | LOCK_NB));
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    const auto next = workspace.makeLibrary();
    EXPECT_FALSE(next->deferredPicture(mine).load());
    EXPECT_TRUE(next->image(mine)) << "the user inserts it";
    EXPECT_TRUE(next->deferredPicture(mine).load());
    EXPECT_EQ(notes(), QStringList());
}

TEST_F(HostilePicturesTest, NotesAboutPicturesThatAreGoneOrReplacedAreRemoved) {
    ASSERT_EQ(importError(plainPng(9, 9, Qt::red)), QString());
    ASSERT_EQ(importError(plainPng(9, 9, Qt::blue)), QString());
    const QList<StampPreset> mine{library->presets().at(5), library->presets().at(6)};
    QDir().mkpath(decodingFolder());
    for (const StampPreset& preset : mine)
        writeFile(decodingFolder() + noteOf(preset), {});
    library->removePreset(mine[0].id);
    EXPECT_EQ(notes(), QStringList{noteOf(mine[1])});
    EXPECT_FALSE(workspace.makeLibrary()->deferredPicture(mine[1]).load()) << "it still counts";
    writeFile(workspace.stampsFolder() + QLatin1Char('/') + mine[1].fileName, plainPng(7, 9, Qt::green));
    EXPECT_TRUE(workspace.makeLibrary()->deferredPicture(mine[1]).load());
    EXPECT_EQ(notes(), QStringList());
}

TEST_F(HostilePicturesTest, APictureThatAnotherWindowDecodesIsNotPassedOver) {
    ASSERT_EQ(importError(plainPng(9, 9, Qt::red)), QString());
    const StampPreset mine = named(*library, QStringLiteral("Bild"));
    ASSERT_TRUE(library->image(mine));
    const int held = ::open(qPrintable(decodingFolder() + noteOf(mine)), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    EXPECT_TRUE(library->deferredPicture(mine).load());
    ::close(held);
}

TEST_F(HostilePicturesTest, HugeFilesOfTheProgramsOwnAreNotRead) {
    makeSparse(workspace.metadataFile(), twentyGigabytes);
    makeSparse(workspace.folders().defaultsFile, twentyGigabytes);
    const auto next = workspace.makeLibrary();
    EXPECT_EQ(next->presets().size(), 5);
    EXPECT_TRUE(next->selectedPreset());
    EXPECT_EQ(decodePresets(readFile(workspace.metadataFile()))->size(), 5);
    EXPECT_EQ(QDir(workspace.storeFolder()).entryList({QStringLiteral("*unlesbar*")}).size(), 1);
    EXPECT_LT(QFileInfo(workspace.folders().defaultsFile).size(), 1000);
    makeSparse(workspace.stampsFolder() + QStringLiteral("/builtin-erledigt.png"), twentyGigabytes);
    EXPECT_TRUE(workspace.makeLibrary()->image(builtin(*next, QStringLiteral("erledigt"))));
}

TEST_F(HostilePicturesTest, ANameOfFiftyMegabytesIsCutOff) {
    QByteArray metadata = readFile(workspace.metadataFile());
    metadata.replace("\"Erledigt\"", '"' + QByteArray(50 << 20, 'x') + '"');
    metadata.replace(R"("builtinKey": "erledigt",)", "");
    writeFile(workspace.metadataFile(), metadata);
    const auto next = workspace.makeLibrary();
    EXPECT_EQ(next->presets().size(), 6) << "it belongs to nobody now, so the built-in one is made anew";
    for (const StampPreset& preset : next->presets())
        EXPECT_LE(preset.displayName.size(), 1000);
    EXPECT_LT(QFileInfo(workspace.metadataFile()).size(), 10000);
}
