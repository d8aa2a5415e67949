#include "editor/EditorHostView.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr auto shift = Qt::ShiftModifier;
constexpr auto control = Qt::ControlModifier;

/// An editor in a window of its own, whose reports are written back at once.
class StampKeysTest : public testing::Test {
protected:
    StampKeysTest() {
        host.resize(616, 858);
        host.stampsByPage = [this] { return stamps; };
        host.onStampChanged = [this](const StampItem& changed) {
            for (StampItem& stamp : stamps[changed.pageIndex]) {
                if (stamp.id == changed.id)
                    stamp = changed;
            }
            host.syncStampViews();
        };
        host.onStampSelected = [this](const std::optional<QUuid>& id) {
            selected = id;
            host.setSelectedStampID(id);
        };
        host.onStampDeleted = [this](const QUuid& id) { deleted.append(id); };
        host.setDocument(pages(2).document());
        host.show();
        host.activateWindow();
        if (!QTest::qWaitForWindowActive(&host))
            qFatal("the window does not become active");
        host.focusPage(Qt::OtherFocusReason);
    }
    void place(const QList<StampItem>& items) {
        stamps = {{0, items}};
        host.syncStampViews();
    }
    /// One stamp, which has the focus.
    void placeOne(const Rect& rect) {
        place({stampAt(rect)});
        press(Qt::Key_Tab);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, int times = 1) {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(host.focusWidget(), key, modifiers);
    }
    const StampItem& stamp(int index = 0) { return stamps[0][index]; }
    InteractiveStampView& view(int index = 0) { return *host.stampView(stamp(index).id); }
    bool isInSight() {
        return host.overlayContainer().rect().adjusted(-1, -1, 1, 1).contains(view().geometry());
    }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    EditorHostView host{renderer, nullptr};
    StampsByPage stamps;
    std::optional<QUuid> selected;
    QList<QUuid> deleted;
};

const Rect middle{200.25, 300.5, 100, 50};

}  // namespace

TEST_F(StampKeysTest, ArrowsMoveByPointsOfThePageInTheDirectionThatIsSeen) {
    for (const char* turn : {"/Rotate 0", "/Rotate 90", "/Rotate 180"}) {
        host.setDocument(PdfBuilder().page(std::string("/MediaBox [0 0 842 842] ") + turn).document());
        placeOne(middle);
        const Rect before = view().place();
        press(Qt::Key_Right);
        EXPECT_EQ(stamp().rect, middle.translated(1, 0)) << turn;
        EXPECT_GT(view().place().x, before.x);
        press(Qt::Key_Up, shift);
        EXPECT_EQ(stamp().rect, middle.translated(1, 10));
        EXPECT_GT(view().place().y, before.y) << "upwards on the screen";
        press(Qt::Key_Left, shift);
        press(Qt::Key_Down);
        EXPECT_EQ(stamp().rect, middle.translated(-9, 9));
        EXPECT_EQ(view().place(), host.pdfView().convertFromPage(stamp().rect));
    }
}

TEST_F(StampKeysTest, TheyLeadAStampAsFarAsTheMouseDoes) {
    const QList<std::pair<Qt::Key, Point>> ways{{Qt::Key_Left, {-5000, 0}},
                                                {Qt::Key_Right, {5000, 0}},
                                                {Qt::Key_Up, {0, 5000}},
                                                {Qt::Key_Down, {0, -5000}}};
    for (const auto& [key, way] : ways) {
        placeOne(middle);
        drag(view(), {20, 20}, way.x, way.y);
        const Rect byMouse = stamp().rect;
        placeOne(middle);
        press(key, shift, 100);
        EXPECT_TRUE(isNear(stamp().rect, byMouse, 1e-9)) << key;
    }
}

TEST_F(StampKeysTest, OnAZoomedPageTheyLeadItAnywhereAndItStaysInSight) {
    placeOne(middle);
    host.pdfView().setScaleFactor(host.pdfView().scaleFactor() * 4);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down}) {
        for (int i = 0; i < 90; ++i) {
            press(key, shift);
            ASSERT_TRUE(isInSight());
        }
    }
    EXPECT_NEAR(stamp().rect.maxX(), 595, 10) << "from side to side";
    EXPECT_NEAR(stamp().rect.y, 0, 10);
    EXPECT_EQ(stamp().rect.width, 100);
}

TEST_F(StampKeysTest, WithControlTheyResizeAndKeepRatioAndLowerLeftCorner) {
    placeOne(middle);
    press(Qt::Key_Right, control);
    EXPECT_EQ(stamp().rect, (Rect{200.25, 300.5, 101, 50.5}));
    press(Qt::Key_Up, control | shift);
    EXPECT_EQ(stamp().rect, (Rect{200.25, 300.5, 111, 55.5}));
    press(Qt::Key_Left, control);
    press(Qt::Key_Down, control | shift);
    EXPECT_EQ(stamp().rect, (Rect{200.25, 300.5, 100, 50}));
    press(Qt::Key_Left, control | shift, 20);
    EXPECT_NEAR(view().place().width, 28, 1e-9) << "as narrow as the mouse can make it";
    press(Qt::Key_Right, control | shift, 200);
    EXPECT_EQ(stamp().rect.width / stamp().rect.height, 2);
    EXPECT_LE(view().place().maxX(), host.width() + 1e-9);
}

TEST_F(StampKeysTest, AStampThatIsTinyOnTheScreenDoesNotJumpToTheLeastWidth) {
    host.setDocument(PdfBuilder().page("/MediaBox [0 0 3000 3000]").document());
    placeOne({1000, 1000, 60, 30});
    ASSERT_LT(view().place().width, 28);
    press(Qt::Key_Left, control);
    EXPECT_EQ(stamp().rect.width, 60);
    press(Qt::Key_Right, control);
    EXPECT_EQ(stamp().rect.width, 61);
}

TEST_F(StampKeysTest, EscapeBreaksADragOffAndPutsTheStampBackExactly) {
    placeOne(middle);
    for (const double zoom : {1.0, 1.3}) {
        for (const QPointF grip : {QPointF(20, 20), QPointF(view().width() - 4, view().height() - 4)}) {
            sendMouse(view(), QEvent::MouseButtonPress, grip);
            sendMouse(view(), QEvent::MouseMove, grip + QPointF(33, 21));
            EXPECT_NE(stamp().rect, middle);
            host.pdfView().zoom(zoom, {300, 400});
            press(Qt::Key_Escape);
            EXPECT_EQ(stamp().rect, middle);
            EXPECT_EQ(view().place(), host.pdfView().convertFromPage(middle));
            sendMouse(view(), QEvent::MouseMove, grip + QPointF(50, 50));
            sendMouse(view(), QEvent::MouseButtonRelease, grip + QPointF(50, 50));
            EXPECT_EQ(stamp().rect, middle) << "the mouse goes on without it";
            EXPECT_EQ(selected, stamp().id);
        }
    }
}

TEST_F(StampKeysTest, ArrowsDoNothingDuringADrag) {
    placeOne(middle);
    sendMouse(view(), QEvent::MouseButtonPress, {20, 20});
    sendMouse(view(), QEvent::MouseMove, {50, 20});
    const Rect dragged = stamp().rect;
    press(Qt::Key_Right, shift);
    EXPECT_EQ(stamp().rect, dragged);
}

TEST_F(StampKeysTest, DeleteAndEscapeMeanTheStampThatIsSelected) {
    place({stampAt(middle), stampAt({10, 10, 40, 20})});
    press(Qt::Key_Delete);
    EXPECT_TRUE(deleted.isEmpty()) << "none is selected";
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Delete);
    press(Qt::Key_Backspace);
    press(Qt::Key_Delete, control);
    EXPECT_EQ(deleted, (QList<QUuid>{stamp(1).id, stamp(1).id}));
    host.pdfView().setFocus();
    press(Qt::Key_Delete);
    EXPECT_EQ(deleted.size(), 3) << "from the page as well";
    view(1).setFocus();
    press(Qt::Key_Escape);
    EXPECT_EQ(selected, std::nullopt);
    EXPECT_TRUE(host.pdfView().hasFocus());
    press(Qt::Key_Delete);
    EXPECT_EQ(deleted.size(), 3);
    // What is selected on another page is not in sight.
    view(1).setFocus();
    press(Qt::Key_PageDown);
    press(Qt::Key_Delete);
    EXPECT_EQ(deleted.size(), 3);
}

TEST_F(StampKeysTest, TabGoesFromThePageThroughItsStampsInTheirOrderAndSelectsThem) {
    place({stampAt(middle), stampAt({10, 10, 40, 20})});
    stamps[0].append(stampAt({100, 100, 40, 20}));
    host.syncStampViews();
    for (const int index : {0, 1, 2}) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(view(index).hasFocus());
        EXPECT_EQ(selected, stamp(index).id);
    }
    press(Qt::Key_Backtab);
    EXPECT_TRUE(view(1).hasFocus());
    host.displayPage(1);
    host.displayPage(0);
    EXPECT_TRUE(host.pdfView().hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(view(0).hasFocus());
    press(Qt::Key_PageDown);
    EXPECT_EQ(host.currentPageIndex(), 1);
    EXPECT_TRUE(host.pdfView().hasFocus()) << "the stamp is gone, the page is not";
}

TEST_F(StampKeysTest, AStampThatTabLeadsToIsScrolledIntoSightAndOneThatIsClickedStays) {
    place({stampAt({5, 5, 100, 50})});
    host.pdfView().setScaleFactor(host.pdfView().scaleFactor() * 3);
    ASSERT_FALSE(isInSight());
    press(Qt::Key_Tab);
    EXPECT_TRUE(isInSight());
    host.pdfView().setFocus();
    host.pdfView().setScrollOffset({10000, host.pdfView().scrollOffset().y - 100});
    const Point offset = host.pdfView().scrollOffset();
    ASSERT_FALSE(isInSight());
    QTest::mouseClick(&view(), Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(view().hasFocus());
    EXPECT_EQ(host.pdfView().scrollOffset(), offset);
}
