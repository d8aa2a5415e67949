#include "app/ContentView.h"
#include "base/FileError.h"
#include "library/StampPresetJson.h"
#include "tests/faults/FaultShim.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <cerrno>

#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// One way in which a disk fails: the calls, what they answer, and whether it stays so.
struct Trouble {
    unsigned kinds;
    int error;
    bool stays;
};

/// Every combination in the long tests; otherwise a full disk and quota, a disk that fails once, a lost
/// permission and a volume that becomes read-only.
QList<Trouble> troubles() {
    using namespace faults;
    QList<Trouble> all{{removeCall, EACCES, false},
                       {anyCall, EIO, true},
                       {anyButRemove, EACCES, false},
                       {writeCall, EDQUOT, true},
                       {openCall, EROFS, true}};
    const QList<unsigned> kinds{openCall, writeCall, syncCall, closeCall, renameCall, anyButRemove};
    for (const unsigned kind : kinds) {
        all.append({kind, ENOSPC, true});
        all.append({kind, EIO, false});
    }
    if (!isLongRun())
        return all;
    for (const unsigned kind : kinds) {
        for (const int error : {ENOSPC, EIO, EACCES, EDQUOT, EROFS})
            all += {{kind, error, false}, {kind, error, true}};
    }
    return all;
}

/// Lets every file call of an action fail once, or from then on, in every way.
class FaultWalkTest : public testing::Test {
protected:
    static constexpr int pageCount = 3;

    FaultWalkTest() {
        QDir().mkpath(workspace.path(QStringLiteral("Akten")));
        writeFile(contract(), source);
        writeFile(workspace.path(QStringLiteral("Kanzlei.png")), plainPng(40, 20, Qt::red));
        content =
            std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses());
        content->loadPDF(QUrl::fromLocalFile(contract()));
        content->addStampToCurrentPage(library().selectedPreset());
        library().finishSaving();
    }

    QString contract() const { return workspace.path(QStringLiteral("Akten/Vertrag.pdf")); }
    QString copy() const { return workspace.path(QStringLiteral("Akten/Kopie.pdf")); }
    StampLibrary& library() { return content->stampLibrary(); }
    QString status() const { return content->statusText; }
    QStringList litter() const { return leftovers(workspace.path(QStringLiteral("."))); }

    /// Calls `act` with the first, the second, … call failing until there is none left that could fail, and
    /// `check` after each; `prepare` before each.
    template <typename Prepare, typename Act, typename Check>
    void walk(Prepare prepare, Act act, Check check) {
        int tried = 0;
        for (const Trouble& trouble : troubles()) {
            for (int nth = 1;; ++nth) {
                prepare();
                SCOPED_TRACE(QStringLiteral("call %1 of kinds %2 fails with %3%4")
                                 .arg(QString::number(nth), QString::number(trouble.kinds),
                                      QString::number(trouble.error),
                                      trouble.stays ? QStringLiteral(", stays") : QString())
                                 .toStdString());
                faults::arm({workspace.path(QString()).toStdString(), trouble.kinds, nth, trouble.error,
                             trouble.stays});
                act();
                const bool hasFailed = faults::disarm() >= nth;
                check(trouble);
                if (!hasFailed) {
                    EXPECT_TRUE(nth > 1 || trouble.kinds == faults::removeCall)
                        << "the action makes no such call";
                    break;
                }
                ++tried;
                if (testing::Test::HasFailure())
                    return;
            }
        }
        RecordProperty("faults", tried);
        std::printf("%d faults\n", tried);
    }

    /// True where the status line says that it worked; else it must say in German why not.
    bool succeeded(const QString& success, const QString& failure, const Trouble& trouble) {
        if (status() == success)
            return true;
        EXPECT_TRUE(status().startsWith(failure)) << status().toStdString();
        const QString reason = status().mid(failure.size());
        EXPECT_TRUE((reason.startsWith(QStringLiteral("PDF-Datei konnte nicht erstellt werden. ")) ||
                     reason.contains(QStringLiteral("“ konnte nicht "))) &&
                    reason.endsWith(errnoText(trouble.error)))
            << status().toStdString();
        return false;
    }

    /// A save to `target`, which holds `before` until then (nothing: there is no such file).
    void walkSave(ContentView::SaveMode mode, const QString& target, const QByteArray& before,
                  const QString& success, const QString& failure) {
        const StampsByPage stamps = content->stampsByPage;
        const auto document = content->pdfDocument.value();
        const auto selected = content->selectedStampID.value();
        walk(
            [&] {
                content->pdfSourceURL = QUrl::fromLocalFile(contract());
                QFile::remove(target);
                if (!before.isNull())
                    writeFile(target, before);
            },
            [&] { content->beginSaveFlow(mode); },
            [&](const Trouble& trouble) {
                const bool isNew = succeeded(success, failure, trouble);
                if (!isNew && mode == ContentView::SaveMode::saveAs) {
                    EXPECT_EQ(status(), failure + QStringLiteral("PDF-Datei konnte nicht erstellt werden. ") +
                                            errnoText(trouble.error));
                }
                const QByteArray now = readFile(target);
                const bool isOld = QFile::exists(target) == !before.isNull() && now == before;
                // Only the disk's word that it has the new name can be missing when the new file is in place.
                const bool mayBeNew = isNew || (trouble.kinds & faults::syncCall);
                EXPECT_TRUE((isOld && !isNew) || (mayBeNew && isWholePdf(now, pageCount)));
                EXPECT_EQ(content->stampsByPage.value(), stamps);
                EXPECT_EQ(content->pdfDocument.value(), document);
                EXPECT_EQ(content->selectedStampID.value(), selected);
                EXPECT_EQ(content->pdfSourceURL.value(), QUrl::fromLocalFile(isNew ? target : contract()));
                if (!(trouble.kinds & faults::removeCall)) {
                    EXPECT_EQ(litter(), QStringList());
                }
            });
        content->beginSaveFlow(mode);
        EXPECT_EQ(status(), success);
        EXPECT_EQ(litter(), QStringList()) << "the next save clears what could not be removed";
    }

    /// What a new start finds: a library that can be loaded, and the built-in stamps.
    void expectSoundLibrary() {
        ASSERT_TRUE(decodePresets(readFile(workspace.metadataFile())));
        if (++soundnessChecks % 8 != 0 && !isLongRun())  // a start takes its time
            return;
        const auto restarted = workspace.makeLibrary();
        EXPECT_EQ(QDir(workspace.storeFolder()).entryList({QStringLiteral("*unlesbar*")}), QStringList());
        for (const StampPreset& preset : restarted->presets())
            EXPECT_TRUE(restarted->image(preset)) << preset.displayName.toStdString();
        EXPECT_EQ(leftovers(workspace.path(QStringLiteral("data"))), QStringList());
        EXPECT_GE(restarted->presets().size(), 5);
    }

    const QByteArray source = pages(pageCount).bytes();
    int soundnessChecks = 0;
    TestWorkspace workspace;
    std::unique_ptr<ContentView> content;
};

}  // namespace

TEST_F(FaultWalkTest, SavingOverTheOriginal) {
    walkSave(ContentView::SaveMode::overwriteOriginal, contract(), source,
             QStringLiteral("Original überschrieben: Vertrag.pdf"),
             QStringLiteral("Fehler beim Überschreiben: "));
}

TEST_F(FaultWalkTest, SavingAsANewFile) {
    workspace.panels.answer = QUrl::fromLocalFile(copy());
    walkSave(ContentView::SaveMode::saveAs, copy(), {}, QStringLiteral("PDF gespeichert: Kopie.pdf"),
             QStringLiteral("Fehler beim Speichern unter: "));
}

TEST_F(FaultWalkTest, SavingAsOverAnotherFile) {
    workspace.panels.answer = QUrl::fromLocalFile(copy());
    walkSave(ContentView::SaveMode::saveAs, copy(), "somebody's other file",
             QStringLiteral("PDF gespeichert: Kopie.pdf"), QStringLiteral("Fehler beim Speichern unter: "));
}

TEST_F(FaultWalkTest, AFileIsOnTheDiskBeforeItHasItsNameAndItsNameIsThereafter) {
    workspace.panels.answer = QUrl::fromLocalFile(copy());
    for (int nth = 1; nth <= 4; ++nth) {
        QFile::remove(copy());
        faults::arm(
            {workspace.path(QString()).toStdString(), faults::syncCall | faults::renameCall, nth, EIO});
        content->beginSaveFlow(ContentView::SaveMode::saveAs);
        faults::disarm();
        // The calls are: sync the file, rename it, sync the folder.
        EXPECT_EQ(QFile::exists(copy()), nth >= 3) << nth;
        EXPECT_EQ(status() == QStringLiteral("PDF gespeichert: Kopie.pdf"), nth > 3) << nth;
    }
}

TEST_F(FaultWalkTest, ImportingAStamp) {
    workspace.panels.answer = workspace.url(QStringLiteral("Kanzlei.png"));
    const auto placed = content->stampsByPage.value();
    const auto userEntries = [](const QList<StampPreset>& presets) {
        return std::count_if(presets.begin(), presets.end(), [](const auto& p) { return !p.isBuiltin(); });
    };
    walk(
        [&] {
            while (userEntries(library().presets()) > 0)
                library().removePreset(named(library(), QStringLiteral("Kanzlei")).id);
        },
        [&] { content->importStampToLibrary(); },
        [&](const Trouble& trouble) {
            const bool isNew = succeeded(QStringLiteral("Stempel importiert: Kanzlei"),
                                         QStringLiteral("Stempel konnte nicht importiert werden: "), trouble);
            expectSoundLibrary();
            if (isNew) {
                EXPECT_EQ(userEntries(*decodePresets(readFile(workspace.metadataFile()))), 1);
            }
            EXPECT_EQ(content->stampsByPage.value(), placed);
        });
}

TEST_F(FaultWalkTest, RemovingAStamp) {
    const StampPreset kept = library().importPreset(workspace.url(QStringLiteral("Kanzlei.png")));
    writeFile(workspace.path(QStringLiteral("Weg.png")), plainPng(40, 20, Qt::blue));
    QUuid removed;
    walk(
        [&] {
            content->removePreset(removed);
            removed = library().importPreset(workspace.url(QStringLiteral("Weg.png"))).id;
        },
        [&] { content->removePreset(removed); },
        [&](const Trouble& trouble) {
            const bool isGone = succeeded(QStringLiteral("Stempel aus Bibliothek entfernt."),
                                          QStringLiteral("Stempel konnte nicht entfernt werden: "), trouble);
            expectSoundLibrary();
            const auto stored = *decodePresets(readFile(workspace.metadataFile()));
            const auto has = [&](const QUuid& id) {
                return std::any_of(stored.begin(), stored.end(), [&](const auto& p) { return p.id == id; });
            };
            EXPECT_TRUE(has(kept.id));
            EXPECT_FALSE(isGone && has(removed));
        });
}
