#include "app/StampPlacement.h"
#include "tests/app/ContentViewFixture.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

StampPlacement placementOn(const Rect& mediaBox, Size imageSize) {
    return initialPlacement(PDFPage(mediaBox, mediaBox), imageSize);
}

}  // namespace

TEST(StampPlacementTest, IsCentredAndLimitedInWidth) {
    const StampPlacement onA4 = placementOn({0, 0, 595.28, 841.89}, {400, 100});
    EXPECT_EQ(onA4.aspectRatio, 4.0);
    EXPECT_TRUE(isNear(onA4.rect, {214.3008, 400.1102, 166.6784, 41.6696}, 1e-9));
    EXPECT_EQ(placementOn({0, 0, 1000, 500}, {100, 100}).rect.width, 190.0);
    EXPECT_NEAR(placementOn({0, 0, 600, 500}, {100, 100}).rect.width, 168.0, 1e-9);
    EXPECT_EQ(placementOn({100, -50, 600, 500}, {100, 100}).rect.midX(), 400.0);
    EXPECT_EQ(placementOn({0, 0, 600, 500}, {10, 0}).aspectRatio, 10.0);
    const StampPlacement narrow = placementOn({0, 0, 600, 500}, {5, 100});
    EXPECT_EQ(narrow.aspectRatio, 0.1);
    EXPECT_NEAR(narrow.rect.height, 1680, 1e-9);
}

TEST(StampPlacementTest, LiesInTheMiddleOfWhatIsShown) {
    const Rect mediaBox{0, 0, 600, 800};
    const auto placement = [&](const Rect& cropBox) {
        return initialPlacement(PDFPage(mediaBox, cropBox), {400, 100}).rect;
    };
    EXPECT_TRUE(isNear(placement({400, 500, 200, 300}), {416, 629, 168, 42}, 1e-9));
    EXPECT_TRUE(isNear(placement({500, 700, 40, 60}), {500, 725, 40, 10}, 1e-9))
        << "never wider than what is shown";
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
    EXPECT_EQ(library().recentPresets().value(0).id, preset.id);
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

TEST_F(ContentViewTest, DeletesTheSelectedStampAloneAndKeepsAnEmptyList) {
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
    for (const qsizetype page : {0, 0, 1}) {
        content.currentPageIndex = page;
        content.addStampToCurrentPage(library().selectedPreset());
    }
    const StampsByPage three = content.stampsByPage;
    content.selectedStampID = three[0][0].id;
    content.deleteSelectedStamp();
    EXPECT_EQ(content.stampsByPage.value(), (StampsByPage{{0, {three[0][1]}}, {1, three[1]}}));
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

TEST_F(ContentViewTest, AStampThatIsInsertedAfterMidnightHasTheNewDate) {
    content.loadPDF(writePdf("a.pdf"));
    const StampPreset shown = builtin(library(), QStringLiteral("eingegangen-heute"));
    content.addStampToCurrentPage(shown);
    workspace.now = workspace.now.addDays(1);
    content.addStampToCurrentPage(shown);  // a tile that was not refreshed yet
    EXPECT_EQ(status(), QStringLiteral("Stempel auf Seite 1 eingefügt: Eingegangen am: 08.03.2025"));
    const QList<StampItem> stamps = stampsOn(0);
    ASSERT_EQ(stamps.size(), 2);
    EXPECT_NE(stamps[0].imageData, stamps[1].imageData) << "the placed one stays as it is";
    EXPECT_EQ(stamps[1].imageData,
              readFile(workspace.stampsFolder() + QStringLiteral("/builtin-eingegangen-heute.png")));
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
    EXPECT_EQ(openDocument(url)->pageCount(), 3);
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
    EXPECT_EQ(workspace.panels.saved.last().source, workspace.url(QStringLiteral("Vertrag.pdf")));
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
              QStringLiteral("Fehler beim Speichern unter: PDF-Datei konnte nicht erstellt werden. Die Datei "
                             "oder der Ordner ist nicht vorhanden."));
    EXPECT_EQ(content.pdfSourceURL.value(), workspace.url(QStringLiteral("Vertrag.pdf")));
    content.pdfSourceURL = workspace.url(QStringLiteral("kein Ordner/Vertrag.pdf"));
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_TRUE(status().startsWith(QStringLiteral("Fehler beim Überschreiben: ")));
    content.pdfSourceURL = std::nullopt;
    content.beginSaveFlow(overwriteOriginal);
    EXPECT_EQ(status(), QStringLiteral("Keine originale PDF-Datei zum Überschreiben verfügbar."));
}
