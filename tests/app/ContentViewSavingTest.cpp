#include "tests/app/ContentViewFixture.h"

#include <functional>
#include <new>
#include <stdexcept>

using namespace vellmora;
using namespace vellmora::test;

namespace {

using enum ContentView::SaveMode;

const QString changedElsewhere = QStringLiteral(
    "Fehler beim Überschreiben: Die Datei wurde inzwischen anderswo geändert. Bitte „Speichern unter…“ "
    "wählen.");

class ContentViewSavingTest : public ContentViewTest {
protected:
    QString save(ContentView::SaveMode mode) {
        content.beginSaveFlow(mode);
        return status();
    }
    QString saveAs(const char* name) {
        workspace.panels.answer = workspace.url(QString::fromUtf8(name));
        return save(ContentView::SaveMode::saveAs);
    }
    QString path(const char* name) const { return workspace.path(QString::fromUtf8(name)); }
    void place() { content.addStampToCurrentPage(library().selectedPreset()); }
};

}  // namespace

TEST_F(ContentViewSavingTest, ANewerVersionOfSomebodyElseIsNotOverwritten) {
    content.loadPDF(writePdf("Vertrag.pdf"));
    place();
    const QByteArray theirs = pages(4).bytes();
    writeFile(path("Vertrag.pdf"), theirs);
    EXPECT_EQ(save(overwriteOriginal), changedElsewhere);
    EXPECT_EQ(readFile(path("Vertrag.pdf")), theirs);

    EXPECT_EQ(saveAs("Kopie.pdf"), QStringLiteral("PDF gespeichert: Kopie.pdf"));
    place();
    EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Kopie.pdf"));
    EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Kopie.pdf"));
    QByteArray ours = readFile(path("Kopie.pdf"));
    ours[100] = static_cast<char>(ours[100] + 1);
    writeFile(path("Kopie.pdf"), ours);
    EXPECT_EQ(save(overwriteOriginal), changedElsewhere) << "of the same size";
    EXPECT_EQ(readFile(path("Kopie.pdf")), ours);
    EXPECT_EQ(saveAs("Kopie.pdf"), QStringLiteral("PDF gespeichert: Kopie.pdf")) << "the user was asked";
    EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Kopie.pdf"));
}

TEST_F(ContentViewSavingTest, AnotherWindowIsSomebodyElse) {
    ContentView other(workspace.makeLibrary(), workspace.panels, documentProcesses());
    content.loadPDF(writePdf("Vertrag.pdf"));
    other.loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    place();
    EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Vertrag.pdf"));
    other.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(other.statusText.value(), changedElsewhere);
    other.loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    other.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(other.statusText.value(), QStringLiteral("Original überschrieben: Vertrag.pdf"));
}

TEST_F(ContentViewSavingTest, WhatIsGoneIsWrittenAnew) {
    content.loadPDF(writePdf("Vertrag.pdf"));
    for (int i = 0; i < 2; ++i) {
        QFile::remove(path("Vertrag.pdf"));
        EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Vertrag.pdf"));
        EXPECT_EQ(openDocument(workspace.url(QStringLiteral("Vertrag.pdf")))->pageCount(), 3);
    }
}

TEST_F(ContentViewSavingTest, AFileWithoutPagesReplacesNothingUnasked) {
    const QByteArray source = PdfBuilder().bytes();
    writeFile(path("leer.pdf"), source);
    content.loadPDF(workspace.url(QStringLiteral("leer.pdf")));
    EXPECT_EQ(save(overwriteOriginal),
              QStringLiteral("Fehler beim Überschreiben: Die neue Datei hätte keine Seiten. Bitte „Speichern "
                             "unter…“ wählen."));
    EXPECT_EQ(readFile(path("leer.pdf")), source);
    EXPECT_EQ(saveAs("Kopie.pdf"), QStringLiteral("PDF gespeichert: Kopie.pdf"));
    EXPECT_EQ(save(overwriteOriginal), QStringLiteral("Original überschrieben: Kopie.pdf"));
}

TEST_F(ContentViewSavingTest, WhatADocumentHasLostIsToldAndTheOriginalKept) {
    QByteArray source = pages(2).bytes();
    source.replace("3 0 R 5 0 R ] /Count 2", "3 0 R 99 0 R 5 0 R ] /Count 3");
    writeFile(path("Vertrag.pdf"), source);
    content.loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    EXPECT_TRUE(status().startsWith(QStringLiteral("PDF geladen: Vertrag.pdf – ")));
    EXPECT_TRUE(status().endsWith(QStringLiteral("Seite 2 fehlt und ist leer"))) << status().toStdString();
    EXPECT_EQ(
        save(overwriteOriginal),
        QStringLiteral("Fehler beim Überschreiben: Die neue Datei wäre unvollständig: Seite 2 fehlt und "
                       "ist leer. Bitte „Speichern unter…“ wählen."));
    EXPECT_EQ(readFile(path("Vertrag.pdf")), source);
    EXPECT_EQ(saveAs("Kopie.pdf"), QStringLiteral("PDF gespeichert: Kopie.pdf – Seite 2 fehlt und ist leer"));
    EXPECT_EQ(save(overwriteOriginal),
              QStringLiteral("Original überschrieben: Kopie.pdf – Seite 2 fehlt und ist leer"))
        << "there is nothing in it that could be lost";
}

TEST_F(ContentViewSavingTest, ContentThatOnlySavingFindsUnreadableIsToldAndTheOriginalKept) {
    const QByteArray source = pages(1)
                                  .page("/Contents [1000 0 R 1001 0 R]")
                                  .stream("", filledRect("1 0 0", "0 0 9 9"))
                                  .stream("/Filter /ASCIIHexDecode", "51 no digits >")
                                  .bytes();
    writeFile(path("Vertrag.pdf"), source);
    content.loadPDF(workspace.url(QStringLiteral("Vertrag.pdf")));
    EXPECT_EQ(status(), QStringLiteral("PDF geladen: Vertrag.pdf"));
    place();
    EXPECT_EQ(
        save(overwriteOriginal),
        QStringLiteral("Fehler beim Überschreiben: Die neue Datei wäre unvollständig: Inhalt von Seite 2 "
                       "fehlt. Bitte „Speichern unter…“ wählen."));
    EXPECT_EQ(readFile(path("Vertrag.pdf")), source);
    EXPECT_EQ(saveAs("Kopie.pdf"), QStringLiteral("PDF gespeichert: Kopie.pdf – Inhalt von Seite 2 fehlt"));
    EXPECT_EQ(openDocument(workspace.url(QStringLiteral("Kopie.pdf")))->pageCount(), 2);
    EXPECT_EQ(readFile(path("Vertrag.pdf")), source);
}

TEST_F(ContentViewSavingTest, NoExceptionLeavesACommand) {
    class ThrowingPanels : public FilePanels {
    public:
        std::optional<QUrl> runModal(const OpenPanel&) override { throw std::bad_alloc(); }
        std::optional<QUrl> runModal(const SavePanel&) override { throw std::runtime_error("odd"); }
    } panels;
    ContentView odd(workspace.makeLibrary(), panels, documentProcesses());
    odd.openPDF();
    EXPECT_EQ(odd.statusText.value(),
              QStringLiteral("PDF konnte nicht geladen werden. Der Arbeitsspeicher reicht nicht aus."));
    odd.loadPDF(writePdf("Vertrag.pdf"));
    odd.beginSaveFlow(ContentView::SaveMode::saveAs);
    EXPECT_EQ(odd.statusText.value(),
              QStringLiteral("Fehler beim Speichern unter: Ein unerwarteter Fehler ist aufgetreten."));
}
