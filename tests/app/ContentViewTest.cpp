#include "app/ContentView.h"
#include "app/StampPlacement.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <QDir>
#include <QMimeData>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class ContentViewTest : public testing::Test {
protected:
    QString status() const { return content.statusText; }
    StampLibrary& library() { return content.stampLibrary(); }
    QUrl writePdf(const char* name, int pageCount = 3) {
        writeFile(workspace.path(QString::fromUtf8(name)), pages(pageCount).bytes());
        return workspace.url(QString::fromUtf8(name));
    }
    StampPreset import(const char* name, const QByteArray& png = plainPng(400, 100, Qt::red)) {
        writeFile(workspace.path(QString::fromUtf8(name)), png);
        return library().importPreset(workspace.url(QString::fromUtf8(name)));
    }
    void drop(const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        EXPECT_TRUE(content.handlePDFDrop(itemProviders(data)));
        settle();
    }
    QList<StampItem> stampsOn(qsizetype page) const { return content.stampsByPage.value().value(page); }

    TestWorkspace workspace;
    ContentView content{workspace.makeLibrary(), workspace.panels};
};

/// Delivers from another thread, as a platform may; or fails.
class ThreadedProvider : public ItemProvider {
public:
    ThreadedProvider(std::optional<QByteArray> data, std::optional<ItemLoadError> error)
        : m_data(std::move(data)), m_error(std::move(error)) {}
    ~ThreadedProvider() override { m_thread.join(); }
    bool hasItemConforming(const QString&) const override { return true; }
    void loadDataRepresentation(const QString&, Completion completion) override {
        m_thread = std::thread([this, completion] { completion(m_data, m_error); });
    }

private:
    std::optional<QByteArray> m_data;
    std::optional<ItemLoadError> m_error;
    std::thread m_thread;
};

}  // namespace

TEST_F(ContentViewTest, StartsEmpty) {
    EXPECT_EQ(status(), QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen."));
    EXPECT_EQ(content.pageDisplayText(), QStringLiteral("–"));
    EXPECT_EQ(content.totalStampCount(), 0);
    EXPECT_EQ(ContentView::actionLabel(ContentView::SaveMode::saveAs),
              QStringLiteral("Speichern unter\u2026"));
}

TEST_F(ContentViewTest, OpensThePdfOfThePanel) {
    content.openPDF();
    EXPECT_EQ(status(), QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen.")) << "cancelled";
    EXPECT_EQ(workspace.panels.opened.last().title, QStringLiteral("PDF auswählen"));
    EXPECT_EQ(workspace.panels.opened.last().contentType, ContentType::pdf);
    workspace.panels.answer = writePdf("Vertrag ü.PDF");
    content.openPDF();
    EXPECT_EQ(status(), QStringLiteral("PDF geladen: Vertrag ü.PDF"));
    EXPECT_EQ(content.pageDisplayText(), QStringLiteral("1 / 3"));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.panels.answer);
}

TEST_F(ContentViewTest, ALoadResetsTheWorkspaceAndAFailedOneLeavesIt) {
    content.loadPDF(writePdf("a.pdf"));
    content.currentPageIndex = 2;
    content.addStampToCurrentPage(library().selectedPreset());
    const auto document = content.pdfDocument.value();
    writeFile(workspace.path(QStringLiteral("kaputt.pdf")), "no pdf");
    content.loadPDF(workspace.url(QStringLiteral("kaputt.pdf")));
    EXPECT_EQ(status(), QStringLiteral("PDF konnte nicht geladen werden."));
    EXPECT_EQ(content.pdfDocument.value(), document);
    EXPECT_EQ(content.totalStampCount(), 1);
    EXPECT_EQ(content.currentPageIndex.value(), 2);
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("a.pdf")));

    content.loadPDF(workspace.url(QStringLiteral("a.pdf")));
    EXPECT_NE(content.pdfDocument.value(), document);
    EXPECT_EQ(content.totalStampCount(), 0);
    EXPECT_EQ(content.currentPageIndex.value(), 0);
    EXPECT_FALSE(content.selectedStampID.value());
}

TEST_F(ContentViewTest, ADropLoadsItsFirstFileLater) {
    QMimeData data;
    data.setUrls({writePdf("A.PDF"), writePdf("b.pdf")});
    EXPECT_TRUE(content.handlePDFDrop(itemProviders(data)));
    EXPECT_FALSE(content.pdfDocument.value()) << "the data has not arrived";
    settle();
    EXPECT_EQ(status(), QStringLiteral("PDF geladen: A.PDF"));
}

TEST_F(ContentViewTest, DropsThatAreNoPdfFilesAreAnswered) {
    content.loadPDF(writePdf("a.pdf"));
    QMimeData text;
    text.setText(QStringLiteral("a.pdf"));
    EXPECT_FALSE(content.handlePDFDrop(itemProviders(text)));
    EXPECT_EQ(status(), QStringLiteral("Bitte eine PDF-Datei ablegen."));
    drop({workspace.url(QStringLiteral("notes.txt"))});
    EXPECT_EQ(status(), QStringLiteral("Nur PDF-Dateien werden unterstützt."));
    drop({workspace.url(QStringLiteral("fehlt.pdf"))});
    EXPECT_EQ(status(), QStringLiteral("PDF konnte nicht geladen werden."));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("a.pdf")));
}

TEST_F(ContentViewTest, DropsOfThingsThatAreNoFilesNeitherWaitNorHurt) {
    content.loadPDF(writePdf("a.pdf"));
    const auto path = [&](const char* name) { return workspace.path(QString::fromUtf8(name)); };
    QDir().mkdir(path("Ordner.pdf"));
    ASSERT_EQ(::mkfifo(qPrintable(path("Leitung.pdf")), 0600), 0);
    ASSERT_EQ(::symlink("/dev/zero", qPrintable(path("endlos.pdf"))), 0);
    ASSERT_EQ(::symlink("weg.pdf", qPrintable(path("verwaist.pdf"))), 0);
    for (const char* name : {"Ordner.pdf", "Leitung.pdf", "endlos.pdf", "verwaist.pdf"}) {
        content.statusText = QString();
        drop({workspace.url(QString::fromUtf8(name)), workspace.url(QStringLiteral("a.pdf"))});
        EXPECT_EQ(status(), QStringLiteral("PDF konnte nicht geladen werden.")) << name;
    }
    QMimeData remote;
    remote.setUrls(
        {QUrl(QStringLiteral("https://example.org/a.pdf")), QUrl(QStringLiteral("ftp://example.org/b.pdf"))});
    EXPECT_FALSE(content.handlePDFDrop(itemProviders(remote)));
    EXPECT_EQ(status(), QStringLiteral("Bitte eine PDF-Datei ablegen."));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("a.pdf")));
    EXPECT_EQ(content.pdfDocument.value()->pageCount(), 3);
}

TEST_F(ContentViewTest, ADropMayBeDeliveredOnAnyThreadAndMayFail) {
    const auto deliver = [&](const std::optional<QByteArray>& data,
                             const std::optional<ItemLoadError>& error) {
        EXPECT_TRUE(content.handlePDFDrop({std::make_shared<ThreadedProvider>(data, error)}));
        settle();
        return status();
    };
    EXPECT_EQ(deliver(writePdf("a.pdf").toEncoded(), {}), QStringLiteral("PDF geladen: a.pdf"));
    EXPECT_EQ(deliver({}, ItemLoadError{QStringLiteral("Zeit abgelaufen.")}),
              QStringLiteral("Drop fehlgeschlagen: Zeit abgelaufen."));
    EXPECT_EQ(deliver("no url", {}),
              QStringLiteral("Drop fehlgeschlagen: Datei konnte nicht gelesen werden."));
}

TEST(StampPlacementTest, IsCentredAndLimitedInWidth) {
    const StampPlacement onA4 = initialPlacement({0, 0, 595.28, 841.89}, {400, 100});
    EXPECT_EQ(onA4.aspectRatio, 4.0);
    EXPECT_TRUE(isNear(onA4.rect, {214.3008, 400.1102, 166.6784, 41.6696}, 1e-9));
    EXPECT_EQ(initialPlacement({0, 0, 1000, 500}, {100, 100}).rect.width, 190.0);
    EXPECT_NEAR(initialPlacement({0, 0, 600, 500}, {100, 100}).rect.width, 168.0, 1e-9);
    EXPECT_EQ(initialPlacement({100, -50, 600, 500}, {100, 100}).rect.midX(), 400.0);
    EXPECT_EQ(initialPlacement({0, 0, 600, 500}, {10, 0}).aspectRatio, 10.0);
    const StampPlacement narrow = initialPlacement({0, 0, 600, 500}, {5, 100});
    EXPECT_EQ(narrow.aspectRatio, 0.1);
    EXPECT_NEAR(narrow.rect.height, 1680, 1e-9);
}

TEST_F(ContentViewTest, InsertsOnTheCurrentPageAndRecordsTheUse) {
    content.loadPDF(writePdf("a.pdf"));
    content.currentPageIndex = 1;
    const StampPreset preset = builtin(library(), QStringLiteral("erledigt"));
    content.addStampToCurrentPage(preset);
    content.addStampToCurrentPage(preset);
    EXPECT_EQ(status(), QStringLiteral("Stempel auf Seite 2 eingefügt: Erledigt"));
    const QList<StampItem> stamps = stampsOn(1);
    ASSERT_EQ(stamps.size(), 2);
    EXPECT_NE(stamps[0].id, stamps[1].id);
    EXPECT_EQ(stamps[0].rect, stamps[1].rect);
    EXPECT_EQ(stamps[0].pageIndex, 1);
    EXPECT_EQ(stamps[0].presetID, preset.id);
    EXPECT_EQ(stamps[0].imageData.constData(), stamps[1].imageData.constData()) << "the picture is kept once";
    EXPECT_EQ(content.selectedStampID.value(), stamps[1].id);
    EXPECT_EQ(content.totalStampCount(), 2);
    EXPECT_EQ(library().recentPresets().first().id, preset.id);
}

TEST_F(ContentViewTest, InsertsThatCannotBeMadeSayWhy) {
    const auto insert = [&](const std::optional<StampPreset>& preset) {
        content.addStampToCurrentPage(preset);
        EXPECT_EQ(content.totalStampCount(), 0);
        EXPECT_TRUE(library().recentPresets().isEmpty());
        return status();
    };
    EXPECT_EQ(insert(library().selectedPreset()), QStringLiteral("Stempel konnte nicht vorbereitet werden."));
    content.loadPDF(writePdf("a.pdf"));
    EXPECT_EQ(insert(std::nullopt), QStringLiteral("Kein aktiver Stempel gewählt."));
    StampPreset missing;
    missing.fileName = QStringLiteral("fehlt.png");
    EXPECT_EQ(insert(missing), QStringLiteral("Kein aktiver Stempel gewählt."));
    content.currentPageIndex = 7;
    EXPECT_EQ(insert(library().selectedPreset()), QStringLiteral("Stempel konnte nicht vorbereitet werden."));
}

TEST_F(ContentViewTest, DeletesTheSelectedStampAndKeepsTheEmptyList) {
    content.loadPDF(writePdf("a.pdf"));
    content.addStampToCurrentPage(library().selectedPreset());
    const QString before = status();
    const auto selected = content.selectedStampID.value();
    content.selectedStampID = std::nullopt;
    content.deleteSelectedStamp();
    EXPECT_EQ(status(), before) << "nothing selected";
    content.selectedStampID = selected;
    content.deleteSelectedStamp();
    EXPECT_EQ(status(), QStringLiteral("Ausgewählter Stempel gelöscht."));
    EXPECT_EQ(content.stampsByPage.value(), (StampsByPage{{0, {}}}));
    EXPECT_FALSE(content.selectedStampID.value());
    content.statusText = QString();
    content.selectedStampID = QUuid::createUuid();
    content.deleteSelectedStamp();
    EXPECT_EQ(status(), QStringLiteral("Ausgewählter Stempel gelöscht.")) << "also when it matched none";
}

TEST_F(ContentViewTest, RemovingAnEntryRemovesItsStampsFromAllPages) {
    content.loadPDF(writePdf("a.pdf"));
    const StampPreset mine = import("mein.png");
    const StampPreset other = builtin(library(), QStringLiteral("erledigt"));
    content.addStampToCurrentPage(mine);
    content.addStampToCurrentPage(other);
    content.currentPageIndex = 2;
    content.addStampToCurrentPage(mine);
    const auto selected = content.selectedStampID.value();
    content.removePreset(mine.id);
    EXPECT_EQ(status(), QStringLiteral("Stempel aus Bibliothek entfernt."));
    EXPECT_EQ(content.stampsByPage.value().keys(), QList<qsizetype>{0});
    ASSERT_EQ(stampsOn(0).size(), 1);
    EXPECT_EQ(stampsOn(0).first().presetID, other.id);
    EXPECT_EQ(content.selectedStampID.value(), selected)
        << "the selection stays, though it names nothing now";
}

TEST_F(ContentViewTest, ARemovalThatFailsHasRemovedThePlacedStamps) {
    content.loadPDF(writePdf("a.pdf"));
    const StampPreset mine = import("mein.png");
    content.addStampToCurrentPage(mine);
    const QString file = workspace.stampsFolder() + QLatin1Char('/') + mine.fileName;
    QFile::remove(file);
    QDir().mkpath(file + QStringLiteral("/inner"));
    content.removePreset(mine.id);
    EXPECT_TRUE(status().startsWith(QStringLiteral("Stempel konnte nicht entfernt werden: „")));
    EXPECT_EQ(content.totalStampCount(), 0);
}

TEST_F(ContentViewTest, ImportsIntoTheLibraryWithoutTouchingThePage) {
    content.importStampToLibrary();
    EXPECT_EQ(status(), QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen.")) << "cancelled";
    workspace.panels.answer = workspace.url(QStringLiteral("Sig.png"));
    content.importStampToLibrary();
    EXPECT_EQ(status(),
              QStringLiteral("Stempel konnte nicht importiert werden: „Sig.png“ konnte nicht gelesen werden. "
                             "Die Datei oder der Ordner ist nicht vorhanden."));
    writeFile(workspace.path(QStringLiteral("Sig.png")), plainPng(4, 4, Qt::red));
    content.importStampToLibrary();
    EXPECT_EQ(status(), QStringLiteral("Stempel importiert: Sig"));
    EXPECT_EQ(library().selectedPreset()->displayName, QStringLiteral("Sig"));
    EXPECT_EQ(content.totalStampCount(), 0);
}

TEST_F(ContentViewTest, SavesOverTheOriginalAndKeepsTheWorkspace) {
    using enum ContentView::SaveMode;
    content.beginSaveFlow(overwriteOriginal);
    content.beginSaveFlow(saveAs);
    EXPECT_EQ(status(), QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen.")) << "no document";
    const QUrl url = writePdf("Vertrag.pdf");
    content.loadPDF(url);
    content.addStampToCurrentPage(library().selectedPreset());
    const auto document = content.pdfDocument.value();
    const auto stamps = content.stampsByPage.value();
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(status(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    EXPECT_EQ(PDFDocument::open(url)->pageCount(), 3);
    EXPECT_NE(readFile(url.toLocalFile()), pages(3).bytes());
    EXPECT_EQ(content.pdfDocument.value(), document);
    EXPECT_EQ(content.stampsByPage.value(), stamps);
    EXPECT_EQ(content.selectedStampID.value(), stamps.value(0).first().id);
}

TEST_F(ContentViewTest, SaveAsProposesTheSourcesNameAndMovesTheSource) {
    using enum ContentView::SaveMode;
    EXPECT_EQ(content.defaultSaveAsFilename(), QStringLiteral("gestempelt.pdf"));
    content.loadPDF(writePdf("Vertrag.pdf"));
    content.beginSaveFlow(saveAs);
    EXPECT_EQ(status(), QStringLiteral("Speichern unter abgebrochen."));
    EXPECT_EQ(workspace.panels.saved.last().title, QStringLiteral("PDF speichern unter"));
    EXPECT_EQ(workspace.panels.saved.last().nameFieldStringValue, QStringLiteral("Vertrag.pdf"));
    workspace.panels.answer = workspace.url(QStringLiteral("Kopie.pdf"));
    content.beginSaveFlow(saveAs);
    EXPECT_EQ(status(), QStringLiteral("PDF gespeichert: Kopie.pdf"));
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(status(), QStringLiteral("Original überschrieben: Kopie.pdf"));
    EXPECT_EQ(readFile(workspace.path(QStringLiteral("Vertrag.pdf"))), pages(3).bytes());
}

TEST_F(ContentViewTest, FailedSavesSayWhyAndKeepTheSource) {
    using enum ContentView::SaveMode;
    content.loadPDF(writePdf("Vertrag.pdf"));
    workspace.panels.answer = workspace.url(QStringLiteral("kein Ordner/Kopie.pdf"));
    content.beginSaveFlow(saveAs);
    EXPECT_EQ(status(),
              QStringLiteral("Fehler beim Speichern unter: PDF-Datei konnte nicht erstellt werden."));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("Vertrag.pdf")));
    content.pdfSourceURL = workspace.url(QStringLiteral("kein Ordner/Vertrag.pdf"));
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_TRUE(status().startsWith(QStringLiteral("Fehler beim Überschreiben: ")));
    content.pdfSourceURL = std::nullopt;
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(status(), QStringLiteral("Keine originale PDF-Datei zum Überschreiben verfügbar."));
}
