#include "editor/PDFEditorView.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <memory>

#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PDFEditorViewTest : public testing::Test {
protected:
    PDFEditorViewTest() : host(bridge.makeView(renderer, nullptr)) {
        host->resize(600, 800);
        host->show();
        pdfDocument = pages(3).document();
        bridge.updateView(*host);
        QCoreApplication::processEvents();
    }

    QProperty<std::shared_ptr<const PDFDocument>> pdfDocument;
    QProperty<StampsByPage> stampsByPage;
    QProperty<qsizetype> currentPageIndex{0};
    QProperty<std::optional<QUuid>> selectedStampID;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFEditorView bridge{pdfDocument, stampsByPage, currentPageIndex, selectedStampID};
    std::unique_ptr<EditorHostView> host;
};

}  // namespace

TEST_F(PDFEditorViewTest, APageTurnIsWrittenBackLaterAndDoesNotComeBack) {
    QTest::keyClick(&host->pdfView(), Qt::Key_PageDown);
    EXPECT_EQ(currentPageIndex.value(), 0) << "written on a later turn only";
    QCoreApplication::processEvents();
    EXPECT_EQ(currentPageIndex.value(), 1);
    bridge.updateView(*host);
    EXPECT_EQ(host->currentPageIndex(), 1);
    currentPageIndex = 2;
    bridge.updateView(*host);
    EXPECT_EQ(host->currentPageIndex(), 2);
}

TEST_F(PDFEditorViewTest, EveryDragStepReachesTheStampUnderItsOwnPage) {
    const StampItem other = stampAt({5, 5, 40, 20}, 2);
    const StampItem stamp = stampAt({100, 200, 50, 25});
    stampsByPage = StampsByPage{{0, {stamp}}, {2, {other}}};
    bridge.updateView(*host);
    const auto placeOfList = [&] { return stampsByPage.value().value(0).constData(); };
    const StampItem* place = placeOfList();
    sendMouse(*host->stampView(stamp.id), QEvent::MouseButtonPress, {5, 5});
    for (int step = 1; step <= 3; ++step) {
        sendMouse(*host->stampView(stamp.id), QEvent::MouseMove, {25, 5});
        QCoreApplication::processEvents();
        bridge.updateView(*host);
        const Rect rect = stampsByPage.value().value(0).first().rect;
        EXPECT_TRUE(isNear(host->pdfView().convertFromPage(rect), host->stampView(stamp.id)->place(), 1e-6));
    }
    EXPECT_EQ(placeOfList(), place) << "changed in place, not copied";
    EXPECT_EQ(selectedStampID.value(), stamp.id);
    EXPECT_EQ(stampsByPage.value().value(2), QList<StampItem>{other});
}

TEST_F(PDFEditorViewTest, AClickIsReportedAndStoresNothing) {
    const StampItem stamp = stampAt({100.3, 200.7, 50.2, 25.1});
    stampsByPage = StampsByPage{{0, {stamp}}};
    host->resize(500, 643);
    bridge.updateView(*host);
    int writes = 0;
    const auto watch = stampsByPage.onValueChanged([&] { ++writes; });
    for (int i = 0; i < 25; ++i) {
        QTest::mouseClick(host->stampView(stamp.id), Qt::LeftButton);
        QCoreApplication::processEvents();
        bridge.updateView(*host);
    }
    EXPECT_EQ(selectedStampID.value(), stamp.id);
    EXPECT_EQ(writes, 0);
    EXPECT_EQ(stampsByPage.value(), (StampsByPage{{0, {stamp}}}));
}

TEST_F(PDFEditorViewTest, AReportForADeletedStampIsDropped) {
    const StampItem stamp = stampAt({100, 200, 50, 25});
    stampsByPage = StampsByPage{{0, {stamp}}};
    bridge.updateView(*host);
    drag(*host->stampView(stamp.id), {5, 5}, 10, 10);
    stampsByPage = StampsByPage{{0, {}}};
    QCoreApplication::processEvents();
    EXPECT_EQ(stampsByPage.value(), (StampsByPage{{0, {}}}));
}
