#include "app/ContentWindow.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <QPropertyNotifier>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The real window, whose documents are read by a process that says what it is told to.
class FirstLookWindowTest : public testing::Test {
public:
    FirstLookWindowTest() {
        writeFile(path, pages(2).bytes());
        shown->window().show();
        settle();
    }
    ~FirstLookWindowTest() override { qunsetenv("VELLMORA_LIE"); }

protected:
    void load(const char* lie) {
        qputenv("VELLMORA_LIE", lie);
        processes.take();  // the spare one, which was told something else
        content().loadPDF(QUrl::fromLocalFile(path));
        settle();
    }
    ContentView& content() { return shown->content(); }

    TestWorkspace workspace;
    QString path = workspace.path(QStringLiteral("a.pdf"));
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    DocumentProcesses processes{QStringLiteral(VELLMORA_LYING_DOCUMENT)};
    std::unique_ptr<ContentWindow> shown = std::make_unique<ContentWindow>(
        std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, processes), renderer,
        Theme(SystemFonts::load()));
};

}  // namespace

TEST_F(FirstLookWindowTest, IsShownAloneUntilTheLoadIsCancelledAndLeavesEverythingAsItWas) {
    int looks = 0;
    const auto look = content().statusText.addNotifier([&] {
        const auto firstLook = content().firstLook.value();
        if (content().statusText.value() != QStringLiteral("PDF wird geladen…") || !firstLook)
            return;
        ++looks;
        settle();
        ASSERT_TRUE(shown->editor() && shown->editor()->isVisible());
        EXPECT_EQ(shown->editor()->pdfView().document(), firstLook);
        EXPECT_TRUE(shown->editor()->overlayContainer().findChildren<InteractiveStampView*>().isEmpty());
        content().cancelWork();
    });
    load("silent after the first page");
    EXPECT_EQ(content().statusText.value(), QStringLiteral("Laden abgebrochen."));
    EXPECT_EQ(looks, 1);
    EXPECT_FALSE(shown->editor()->isVisible());
    EXPECT_FALSE(shown->editor()->pdfView().document());

    load("");
    content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
    content().currentPageIndex = 1;
    content().addStampToCurrentPage(content().stampLibrary().selectedPreset());
    settle();
    const auto document = content().pdfDocument.value();
    const auto stamp = content().selectedStampID.value();
    load("silent after the first page");
    EXPECT_EQ(looks, 2);
    EXPECT_EQ(content().pdfDocument.value(), document);
    EXPECT_EQ(content().currentPageIndex.value(), 1);
    EXPECT_EQ(shown->editor()->pdfView().document(), document);
    EXPECT_EQ(shown->editor()->currentPageIndex(), 1);
    ASSERT_TRUE(shown->editor()->stampView(stamp.value()));
    EXPECT_TRUE(shown->editor()->stampView(*stamp)->isVisible());
}
