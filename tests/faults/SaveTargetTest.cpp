#include "app/ContentView.h"
#include "tests/faults/OrdinaryUser.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <functional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

using enum ContentView::SaveMode;

/// Saves to where it is difficult, as a user whom permissions bind.
class SaveTargetTest : public testing::Test {
protected:
    static constexpr int pageCount = 3;

    SaveTargetTest() {
        QDir().mkpath(folder());
        open(QStringLiteral("Vertrag.pdf"));
    }
    void TearDown() override { ::chmod(qPrintable(folder()), 0755); }

    QString folder() const { return workspace.path(QStringLiteral("Akten")); }
    QString path(const QString& name) const { return folder() + QLatin1Char('/') + name; }

    /// Writes a document of this name, opens it and puts a stamp on its page.
    void open(const QString& fileName) {
        writeFile(path(fileName), source);
        content.loadPDF(QUrl::fromLocalFile(path(fileName)));
        ASSERT_EQ(status(), QStringLiteral("PDF geladen: ") + fileName);
        content.addStampToCurrentPage(content.stampLibrary().selectedPreset());
        content.stampLibrary().finishSaving();
        ASSERT_EQ(content.totalStampCount(), 1);
    }
    QString status() const { return content.statusText; }
    QString save(ContentView::SaveMode mode, const QString& target = {}) {
        workspace.panels.answer = QUrl::fromLocalFile(target);
        content.beginSaveFlow(mode);
        return status();
    }

    /// The save fails with this message; the workspace and the files are as before.
    void expectFailure(ContentView::SaveMode mode, const QString& message, const QString& target = {}) {
        SCOPED_TRACE(message.toStdString());
        const StampsByPage stamps = content.stampsByPage;
        const auto document = content.pdfDocument.value();
        const auto selected = content.selectedStampID.value();
        const auto url = content.pdfSourceURL.value();
        const QByteArray before = readFile(url->toLocalFile());
        {
            const OrdinaryUser user(workspace.path(QString()));
            EXPECT_EQ(save(mode, target), message);
        }
        EXPECT_EQ(content.stampsByPage.value(), stamps);
        EXPECT_EQ(content.pdfDocument.value(), document);
        EXPECT_EQ(content.selectedStampID.value(), selected);
        EXPECT_EQ(content.pdfSourceURL.value(), url);
        EXPECT_EQ(readFile(url->toLocalFile()), before);
        EXPECT_EQ(leftovers(workspace.path(QString())), QStringList());
    }
    void expectStamped(const QString& file) {
        const QByteArray now = readFile(file);
        EXPECT_TRUE(isWholePdf(now, pageCount)) << file.toStdString();
        EXPECT_TRUE(now.contains("/Subtype/Image")) << "without its stamp";
        EXPECT_EQ(leftovers(workspace.path(QString())), QStringList());
    }

    TestWorkspace workspace;
    const QByteArray source = pages(pageCount).bytes();
    ContentView content{workspace.makeLibrary(), workspace.panels, documentProcesses()};
};

unsigned permissions(const QString& path) {
    struct stat info {};
    ::stat(QFile::encodeName(path).constData(), &info);
    return info.st_mode & 0777;
}

}  // namespace

TEST_F(SaveTargetTest, SaysWhyTheOriginalCannotBeReplaced) {
    const auto expectReason = [this](const char* reason) {
        expectFailure(overwriteOriginal,
                      QStringLiteral("Fehler beim Überschreiben: „Vertrag.pdf“ konnte nicht ") +
                          QString::fromUtf8(reason));
    };
    const QString original = path(QStringLiteral("Vertrag.pdf"));
    ::chmod(qPrintable(original), 0444);
    expectReason("geschrieben werden. Die Berechtigung dafür fehlt.");
    ::chmod(qPrintable(original), 0644);

    ::chmod(qPrintable(folder()), 0555);  // no file can be made beside the original
    expectReason("ersetzt werden. Die Berechtigung dafür fehlt.");
    ::chmod(qPrintable(folder()), 0755);

    QFile::remove(original);
    QDir().mkdir(original);
    expectReason("geschrieben werden. Es handelt sich um einen Ordner.");
    QDir().rmdir(original);

    ASSERT_EQ(::symlink("Vertrag.pdf", qPrintable(original)), 0);
    expectReason("geschrieben werden. Die Verknüpfungen verweisen im Kreis aufeinander.");

    QDir(folder()).removeRecursively();
    expectReason("ersetzt werden. Die Datei oder der Ordner ist nicht vorhanden.");
    EXPECT_FALSE(QFile::exists(folder())) << "nobody asked for a new folder";
    writeFile(folder(), "a file where the folder was");
    expectReason("ersetzt werden. Ein Teil des Pfades ist kein Ordner.");
}

/// Somebody waits at its other end: it is no document, and must neither be replaced nor be waited for.
TEST_F(SaveTargetTest, APipeStaysAPipe) {
    const QString pipe = path(QStringLiteral("Vertrag.pdf"));
    QFile::remove(pipe);
    ASSERT_EQ(::mkfifo(qPrintable(pipe), 0666), 0);
    ASSERT_EQ(::symlink("Vertrag.pdf", qPrintable(path(QStringLiteral("Verweis.pdf")))), 0);
    const auto expectRefused = [&](const QString& message) {
        struct stat info {};
        EXPECT_EQ(status(), message);
        EXPECT_TRUE(::lstat(qPrintable(pipe), &info) == 0 && S_ISFIFO(info.st_mode));
        EXPECT_EQ(leftovers(workspace.path(QString())), QStringList());
    };
    const OrdinaryUser user(workspace.path(QString()));
    save(overwriteOriginal);
    expectRefused(
        QStringLiteral("Fehler beim Überschreiben: „Vertrag.pdf“ konnte nicht geschrieben werden. "
                       "Der Dateiname oder der Datenträger lässt das nicht zu."));
    for (const QString& target : {pipe, path(QStringLiteral("Verweis.pdf"))}) {
        save(saveAs, target);
        expectRefused(
            QStringLiteral("Fehler beim Speichern unter: PDF-Datei konnte nicht erstellt werden. "
                           "Der Dateiname oder der Datenträger lässt das nicht zu."));
    }
}

TEST_F(SaveTargetTest, SaysWhyANewFileCannotBeMade) {
    const auto expectReason = [this](const char* reason, const QString& target) {
        expectFailure(
            saveAs,
            QStringLiteral("Fehler beim Speichern unter: PDF-Datei konnte nicht erstellt werden. ") +
                QString::fromUtf8(reason),
            target);
    };
    ::chmod(qPrintable(folder()), 0555);
    expectReason("Die Berechtigung dafür fehlt.", path(QStringLiteral("Kopie.pdf")));
    ::chmod(qPrintable(folder()), 0755);
    writeFile(path(QStringLiteral("fremd.pdf")), "somebody's");
    ::chmod(qPrintable(path(QStringLiteral("fremd.pdf"))), 0444);
    expectReason("Die Berechtigung dafür fehlt.", path(QStringLiteral("fremd.pdf")));
    EXPECT_EQ(readFile(path(QStringLiteral("fremd.pdf"))), "somebody's");
    expectReason("Die Datei oder der Ordner ist nicht vorhanden.", path(QStringLiteral("fehlt/Kopie.pdf")));
    expectReason("Der Dateiname ist zu lang.", path(QString(256, QLatin1Char('x'))));
    expectReason("Es handelt sich um einen Ordner.", folder());
    expectReason("Ein Teil des Pfades ist kein Ordner.", path(QStringLiteral("Vertrag.pdf/Kopie.pdf")));
}

TEST_F(SaveTargetTest, WritesFilesOfAnyName) {
    const QStringList names{
        QStringLiteral("-rf.pdf"),
        QStringLiteral("--help.PDF"),
        QStringLiteral("Ärger & Söhne – „%1“ 100%.pdf"),
        QStringLiteral("契約書 😀.pdf"),
        QStringLiteral("a#b?c;d'e\"f\\g*h.pdf"),
        QStringLiteral("zwei\nZeilen.pdf"),
        QStringLiteral(" .pdf"),
        QString(125, QChar(0xE4)) + QStringLiteral("x.pdf"),  // 255 bytes, as long as a name can be
    };
    for (const QString& fileName : names) {
        open(fileName);
        const OrdinaryUser user(workspace.path(QString()));
        EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: ") + fileName);
        expectStamped(path(fileName));
        QFile::remove(path(fileName));
        EXPECT_EQ(save(saveAs, path(fileName)), QStringLiteral("PDF gespeichert: ") + fileName);
        expectStamped(path(fileName));
    }
}

TEST_F(SaveTargetTest, DoesNotNeedTheSourceAnyMore) {
    const QString original = path(QStringLiteral("Vertrag.pdf"));
    const std::vector<std::function<void()>> whatOthersDo{
        [&] { QFile::remove(original); },
        [&] { QFile::rename(original, path(QStringLiteral("verschoben.pdf"))); },
    };
    for (const auto& act : whatOthersDo) {
        open(QStringLiteral("Vertrag.pdf"));
        act();
        EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Vertrag.pdf"));
        expectStamped(original);
    }
    EXPECT_EQ(readFile(path(QStringLiteral("verschoben.pdf"))), source);
}

TEST_F(SaveTargetTest, KeepsWhatSomebodyElseMadeOfTheSource) {
    const QString original = path(QStringLiteral("Vertrag.pdf"));
    const std::vector<std::function<void()>> whatOthersDo{
        [&] { QFile::resize(original, 50); },
        [&] { writeFile(original, "overwritten"); },
        [&] {
            writeFile(path(QStringLiteral("neu.pdf")), pages(pageCount + 1).bytes());
            ASSERT_EQ(::rename(qPrintable(path(QStringLiteral("neu.pdf"))), qPrintable(original)), 0);
        },
    };
    for (const auto& act : whatOthersDo) {
        open(QStringLiteral("Vertrag.pdf"));
        act();
        expectFailure(
            overwriteOriginal,
            QStringLiteral("Fehler beim Überschreiben: Die Datei wurde inzwischen anderswo geändert. "
                           "Bitte „Speichern unter…“ wählen."));
        const QString copy = path(QStringLiteral("Kopie.pdf"));
        EXPECT_EQ(save(saveAs, copy), QStringLiteral("PDF gespeichert: Kopie.pdf"));
        expectStamped(copy);
    }
}

TEST_F(SaveTargetTest, MayBeTheOpenFileUnderAnyName) {
    const QString original = path(QStringLiteral("Vertrag.pdf"));
    ASSERT_EQ(::symlink("Vertrag.pdf", qPrintable(path(QStringLiteral("Verweis.pdf")))), 0);
    ASSERT_EQ(::symlink("../Akten", qPrintable(path(QStringLiteral("Ordner")))), 0);
    for (const QString& name : {QStringLiteral("Vertrag.pdf"), QStringLiteral("Verweis.pdf"),
                                QStringLiteral("Ordner/Vertrag.pdf"), QStringLiteral("./Vertrag.pdf")}) {
        for (const auto mode : {saveAs, overwriteOriginal}) {
            writeFile(original, source);
            ::chmod(qPrintable(original), 0640);
            save(mode, path(name));
            EXPECT_TRUE(status().contains(QFileInfo(name).fileName())) << status().toStdString();
            EXPECT_FALSE(status().startsWith(QStringLiteral("Fehler"))) << status().toStdString();
            expectStamped(original);
            EXPECT_EQ(permissions(original), 0640U);
        }
    }
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("Verweis.pdf"))).isSymbolicLink());
}

TEST_F(SaveTargetTest, MayLieOnAnotherVolumeThanTheTemporaryFolder) {
    const QTemporaryDir other(QStringLiteral("/dev/shm/vellmora-test-XXXXXX"));
    struct stat here {};
    struct stat there {};
    if (!other.isValid() || ::stat(qPrintable(folder()), &here) != 0 ||
        ::stat(qPrintable(other.path()), &there) != 0 || here.st_dev == there.st_dev)
        GTEST_SKIP() << "there is no other volume";
    const QString file = other.filePath(QStringLiteral("Kopie.pdf"));
    for (const auto mode : {saveAs, overwriteOriginal}) {
        save(mode, file);
        EXPECT_FALSE(status().startsWith(QStringLiteral("Fehler"))) << status().toStdString();
        expectStamped(file);
    }
    // A link there leads here.
    ASSERT_EQ(::symlink(qPrintable(path(QStringLiteral("Vertrag.pdf"))),
                        qPrintable(other.filePath(QStringLiteral("Verweis.pdf")))),
              0);
    EXPECT_EQ(save(saveAs, other.filePath(QStringLiteral("Verweis.pdf"))),
              QStringLiteral("PDF gespeichert: Verweis.pdf"));
    expectStamped(path(QStringLiteral("Vertrag.pdf")));
    EXPECT_EQ(QDir(other.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 2);
}
