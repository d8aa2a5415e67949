#include "app/ContentView.h"
#include "library/StampPresetJson.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <csignal>

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The program is killed in the middle of a job, over and over; what it leaves behind is looked at each time.
class KillTest : public testing::Test {
protected:
    KillTest() {
        QDir().mkpath(workspace.path(QStringLiteral("Akten")));
        writeFile(workspace.path(QStringLiteral("Kanzlei.png")), pngOf(noise(1500)));
    }

    /// A document that takes many blocks to write.
    static QByteArray largeDocument() {
        QByteArray block(300000, Qt::Uninitialized);
        PdfBuilder document = pages(pageCount - 1);
        std::string names;
        for (int i = 0; i < 40; ++i) {
            QRandomGenerator(quint32(i))
                .fillRange(reinterpret_cast<quint32*>(block.data()), block.size() / 4);
            document.stream("/Type /Filler", block.toStdString());
            names +=
                " /F" + std::to_string(i) + " " + std::to_string(PdfBuilder::firstExtraObject + i) + " 0 R";
        }
        return document.page("/Resources <<" + names + " >>").bytes();
    }
    static QImage noise(int size) {
        QImage image(size, size, QImage::Format_RGB32);
        QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(image.bits()), image.sizeInBytes() / 4);
        return image;
    }

    /// Runs the job until it is killed. The number of calls that it made where it was not.
    int run(const char* job, int nth, bool isAfter) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(VELLMORA_STAMP_JOB),
                      {QString::fromLatin1(job), workspace.path(QString()), QString::number(nth),
                       QString::number(int(isAfter))});
        EXPECT_TRUE(process.waitForFinished(60000));
        if (nth == 0) {
            EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
            return process.readAllStandardOutput().trimmed().split('\n').last().toInt();
        }
        if (process.exitStatus() == QProcess::CrashExit) {
            EXPECT_EQ(process.exitCode(), SIGKILL);
            ++killed;
        }
        return 0;
    }

    /// Kills the job at `points` places that are spread over all of its calls that change files.
    template <typename Prepare, typename Check>
    void killEverywhere(const char* job, int points, Prepare prepare, Check check) {
        prepare();
        const int calls = run(job, 0, false);
        ASSERT_GT(calls, 10);
        for (int i = 0; i < points && !HasFailure(); ++i) {
            const int place = static_cast<int>(qint64(i) * (calls * 2 - 1) / (points - 1));
            SCOPED_TRACE("killed " + std::string(place % 2 ? "after" : "before") + " call " +
                         std::to_string(place / 2 + 1) + " of " + std::to_string(calls));
            prepare();
            run(job, place / 2 + 1, place % 2 != 0);
            check();
        }
        std::printf("killed at %d places of %d calls\n", killed, calls);
        EXPECT_EQ(killed, points);
    }

    /// What the next start finds; its own leftovers are gone then.
    std::unique_ptr<StampLibrary> restart() {
        EXPECT_TRUE(decodePresets(readFile(workspace.metadataFile())));
        auto library = workspace.makeLibrary();
        for (const StampPreset& preset : library->presets())
            EXPECT_TRUE(library->image(preset)) << preset.displayName.toStdString();
        EXPECT_GE(library->presets().size(), 5);
        EXPECT_EQ(leftovers(workspace.path(QStringLiteral("data"))), QStringList());
        EXPECT_TRUE(QDir(workspace.storeFolder()).entryList({QStringLiteral("*unlesbar*")}).isEmpty());
        return library;
    }

    static constexpr int pageCount = 3;
    int killed = 0;
    TestWorkspace workspace;
};

}  // namespace

TEST_F(KillTest, ASaveOverTheOriginalLeavesTheOldFileOrTheNewOne) {
    const QString contract = workspace.path(QStringLiteral("Akten/Vertrag.pdf"));
    const QByteArray source = largeDocument();
    int old = 0;
    int replaced = 0;
    killEverywhere(
        "save", isLongRun() ? 120 : 10, [&] { writeFile(contract, source); },
        [&] {
            const QByteArray now = readFile(contract);
            if (now == source) {
                ++old;
            } else {
                EXPECT_TRUE(isWholePdf(now, pageCount));
                EXPECT_TRUE(now.contains("/Subtype/Image")) << "without its stamp";
                ++replaced;
            }
            ContentView content(restart(), workspace.panels, documentProcesses());
            content.loadPDF(QUrl::fromLocalFile(contract));
            content.beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
            EXPECT_EQ(content.statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
            EXPECT_EQ(leftovers(workspace.path(QString())), QStringList());
        });
    std::printf("%d old, %d new\n", old, replaced);
    EXPECT_GT(old, 0);
    EXPECT_GT(replaced, 0);
}

TEST_F(KillTest, AnImportLeavesALibraryThatLoads) {
    writeFile(workspace.path(QStringLiteral("Akten/Vertrag.pdf")), pages(pageCount).bytes());
    int without = 0;
    int with = 0;
    qsizetype before = 0;
    killEverywhere(
        "import", isLongRun() ? 100 : 10, [&] { before = workspace.makeLibrary()->presets().size(); },
        [&] {
            auto library = restart();
            const qsizetype added = library->presets().size() - before;
            EXPECT_TRUE(added == 0 || added == 1) << "an entry was lost";
            ++(added == 0 ? without : with);
            if (added == 1)
                library->removePreset(named(*library, QStringLiteral("Kanzlei")).id);
        });
    std::printf("%d without the new entry, %d with it\n", without, with);
    EXPECT_GT(without, 0);
    EXPECT_GT(with, 0);
}
