#include "app/ContentWindow.h"
#include "preview/ProcessRenderer.h"
#include "tests/app/ContentViewFixture.h"
#include "tests/editor/EditorTestSupport.h"

#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// What the window says of its document: the name, and whether it is saved.
class DocumentTitleTest : public testing::Test {
protected:
    DocumentTitleTest() {
        writeFile(workspace.path(QStringLiteral("Vertrag [*].pdf")), pages(2).bytes());
        settle();
    }
    ContentView& content() { return shown.content(); }
    void load() { content().loadPDF(workspace.url(QStringLiteral("Vertrag [*].pdf"))); }
    void insert() { content().addStampToCurrentPage(content().stampLibrary().selectedPreset()); }
    bool isModified() {
        settle();
        return shown.window().isWindowModified();
    }
    /// As the desktop gets it.
    QString title() {
        settle();
        return shown.window().windowHandle()->title();
    }

    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    ContentWindow shown{
        std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
        renderer, Theme(SystemFonts::load())};
};

}  // namespace

TEST_F(DocumentTitleTest, NamesTheDocumentAndMarksWhatIsNotSaved) {
    shown.window().show();
    EXPECT_EQ(title(), QStringLiteral("Vellmora"));
    load();
    EXPECT_EQ(title(), QStringLiteral("Vertrag [*].pdf — Vellmora"));
    EXPECT_FALSE(isModified());
    insert();
    EXPECT_TRUE(isModified());
    EXPECT_EQ(title(), QStringLiteral("Vertrag [*].pdf* — Vellmora"));
    workspace.panels.answer = workspace.url(QStringLiteral("Kopie.pdf"));
    content().beginSaveFlow(ContentView::SaveMode::saveAs);
    EXPECT_EQ(title(), QStringLiteral("Kopie.pdf — Vellmora"));
}

TEST_F(DocumentTitleTest, KnowsWhatIsNotSavedYet) {
    load();
    insert();
    const QUuid id = *content().selectedStampID.value();
    content().deleteSelectedStamp();
    EXPECT_FALSE(isModified()) << "there is nothing to save";
    insert();
    content().beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
    ASSERT_EQ(content().statusText.value(), QStringLiteral("Original überschrieben: Vertrag [*].pdf"));
    EXPECT_FALSE(isModified());
    shown.window().show();
    settle();
    const StampItem placed = content().stampsByPage.value().value(0).first();
    EXPECT_NE(placed.id, id);
    InteractiveStampView& view = *shown.editor()->stampView(placed.id);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {20, 10});
    EXPECT_FALSE(isModified()) << "a click changes nothing";
    drag(view, {20, 10}, 30, 0);
    EXPECT_TRUE(isModified());
    content().beginSaveFlow(ContentView::SaveMode::overwriteOriginal);
    content().removePreset(*placed.presetID);
    EXPECT_TRUE(isModified()) << "the file has a stamp that the document has no more";
    load();
    EXPECT_FALSE(isModified());
}

TEST_F(DocumentTitleTest, AFailedSaveLeavesTheMark) {
    load();
    insert();
    workspace.panels.answer = workspace.url(QStringLiteral("fehlt/Kopie.pdf"));
    content().beginSaveFlow(ContentView::SaveMode::saveAs);
    EXPECT_TRUE(content().isStatusProblem.value());
    EXPECT_TRUE(isModified());
    workspace.panels.answer = std::nullopt;
    content().beginSaveFlow(ContentView::SaveMode::saveAs);
    EXPECT_FALSE(content().isStatusProblem.value()) << "cancelled by the user, that is no problem";
}

TEST_F(DocumentTitleTest, DeletesNothingUnseenOnAnotherPage) {
    shown.window().show();
    load();
    insert();
    settle();
    content().currentPageIndex = 1;
    settle();
    ASSERT_EQ(shown.editor()->currentPageIndex(), 1);
    EXPECT_EQ(content().pageOfSelectedStamp(), 0);
    for (auto* button : shown.window().commandBar().findChildren<Button*>()) {
        if (button->text() == QStringLiteral("Ausgewählten löschen"))
            button->click();
    }
    settle();
    EXPECT_EQ(shown.editor()->currentPageIndex(), 0);
    EXPECT_EQ(content().currentPageIndex.value(), 0);
    EXPECT_EQ(content().totalStampCount(), 0);
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Ausgewählter Stempel gelöscht."));
}
