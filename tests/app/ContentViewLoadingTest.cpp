#include "tests/app/ContentViewFixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

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

TEST_F(ContentViewTest, SaysThatADocumentIsExpectedWhileItIsBeingChosen) {
    int expected = 0;
    QObject::connect(&content, &ContentView::documentExpected, [&] {
        EXPECT_TRUE(workspace.panels.opened.isEmpty()) << "before the panel, which takes a while";
        ++expected;
    });
    content.openPDF();
    EXPECT_EQ(expected, 1);
    workspace.panels.opened.clear();
    content.isPDFDropTargeted = true;
    content.isPDFDropTargeted = false;
    EXPECT_EQ(expected, 2) << "not when it is dragged away";
    content.importStampToLibrary();
    workspace.panels.opened.clear();
    content.loadPDF(writePdf("a.pdf"));
    content.beginSaveFlow(ContentView::SaveMode::saveAs);
    EXPECT_EQ(expected, 2);
}

TEST_F(ContentViewTest, ALoadResetsTheWorkspaceAndAFailedOneLeavesIt) {
    content.loadPDF(writePdf("a.pdf"));
    content.currentPageIndex = 2;
    content.addStampToCurrentPage(library().selectedPreset());
    const auto document = content.pdfDocument.value();
    writeFile(workspace.path(QStringLiteral("kaputt.pdf")), "no pdf");
    content.loadPDF(workspace.url(QStringLiteral("kaputt.pdf")));
    EXPECT_EQ(status(), QStringLiteral("PDF konnte nicht geladen werden. Die Datei ist kein PDF."));
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
    EXPECT_TRUE(content.handlePDFDrop(
        {QUrl(QStringLiteral("https://example.org/a.pdf")), writePdf("A.PDF"), writePdf("b.pdf")}));
    EXPECT_FALSE(content.pdfDocument.value()) << "the drop is not over";
    settle();
    EXPECT_EQ(status(), QStringLiteral("PDF geladen: A.PDF"));
}

TEST_F(ContentViewTest, DropsThatAreNoPdfFilesAreAnswered) {
    content.loadPDF(writePdf("a.pdf"));
    EXPECT_FALSE(content.handlePDFDrop({})) << "a text";
    EXPECT_EQ(status(), QStringLiteral("Bitte eine PDF-Datei ablegen."));
    drop({workspace.url(QStringLiteral("notes.txt"))});
    EXPECT_EQ(status(), QStringLiteral("Nur PDF-Dateien werden unterstützt."));
    drop({QUrl(QStringLiteral("file://"))});
    EXPECT_EQ(status(), QStringLiteral("Drop fehlgeschlagen: Datei konnte nicht gelesen werden."));
    drop({workspace.url(QStringLiteral("fehlt.pdf"))});
    EXPECT_EQ(
        status(),
        QStringLiteral("PDF konnte nicht geladen werden. Die Datei oder der Ordner ist nicht vorhanden."));
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
        EXPECT_TRUE(status().startsWith(QStringLiteral("PDF konnte nicht geladen werden. "))) << name;
    }
    EXPECT_FALSE(content.handlePDFDrop({QUrl(QStringLiteral("https://example.org/a.pdf")),
                                        QUrl(QStringLiteral("ftp://example.org/b.pdf"))}));
    EXPECT_EQ(status(), QStringLiteral("Bitte eine PDF-Datei ablegen."));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("a.pdf")));
    EXPECT_EQ(content.pdfDocument.value()->pageCount(), 3);
}
