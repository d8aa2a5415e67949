#include "tests/app/ContentViewFixture.h"

#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <QDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

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
