#include "base/SystemColors.h"
#include "preview/PDFView.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class PageViewScrollTest : public testing::Test {
protected:
    PageViewScrollTest() {
        view.resize(600, 800);
        view.setAutoScales(true);
        view.setDocument(pages(2).document());
        view.show();
        view.activateWindow();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("the window does not become active");
    }
    void zoomIn() {
        view.setScaleFactor(view.scaleFactor() * 2);
        view.setScrollOffset({0, 0});
    }
    QScrollBar& bar(Qt::Orientation orientation) {
        for (auto* candidate : view.findChildren<QScrollBar*>()) {
            if (candidate->orientation() == orientation)
                return *candidate;
        }
        qFatal("no scroll bar");
    }
    void mouse(QEvent::Type type, QPointF at, Qt::MouseButtons held = Qt::LeftButton) {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, at, view.mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &event);
    }
    void wheel(QPoint angle, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event({10, 10}, {10, 10}, {}, angle, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&view, &event);
    }
    Qt::CursorShape cursor() const { return view.cursor().shape(); }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFView view{renderer, nullptr};
};

}  // namespace

TEST_F(PageViewScrollTest, ScrollBarsAreThereWhereThePageIsLargerThanTheViewAndLeadIt) {
    QScrollBar& across = bar(Qt::Horizontal);
    QScrollBar& up = bar(Qt::Vertical);
    EXPECT_FALSE(across.isVisible() || up.isVisible()) << "the page fits";
    zoomIn();
    ASSERT_TRUE(across.isVisible() && up.isVisible());
    EXPECT_EQ(across.geometry().bottom(), view.rect().bottom());
    EXPECT_EQ(up.geometry().right(), view.rect().right());
    up.setValue(0);
    across.setValue(across.maximum());
    const Rect page = view.geometryOfPage()->frame();
    EXPECT_NEAR(page.maxY(), view.height() - 8, 1) << "the top of the page";
    EXPECT_NEAR(page.maxX(), view.width() - 8, 1) << "its right side";
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(up.value(), 40) << "the bar follows the page";
    view.setDocument(PdfBuilder().page("/MediaBox [0 0 100 800]").document());
    EXPECT_FALSE(across.isVisible());
    EXPECT_TRUE(up.isVisible());
    QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
    EXPECT_FALSE(up.isVisible());
}

TEST_F(PageViewScrollTest, WhatIsMadeLaterOnTheViewDoesNotCoverTheScrollBars) {
    QWidget overlay(&view);
    overlay.setGeometry(view.rect());
    overlay.show();
    zoomIn();
    EXPECT_EQ(view.childAt(view.width() - 6, 300), &bar(Qt::Vertical));
    EXPECT_EQ(view.childAt(300, view.height() - 6), &bar(Qt::Horizontal));
    view.resize(700, 500);
    EXPECT_EQ(view.childAt(694, 300), &bar(Qt::Vertical));
}

TEST_F(PageViewScrollTest, TheHandDragsAPageThatIsLargerThanTheView) {
    EXPECT_EQ(cursor(), Qt::ArrowCursor);
    mouse(QEvent::MouseButtonPress, {300, 400});
    mouse(QEvent::MouseMove, {350, 370});
    EXPECT_EQ(view.scrollOffset(), (Point{0, 0})) << "a page that fits stays";
    mouse(QEvent::MouseButtonRelease, {350, 370}, Qt::NoButton);

    zoomIn();
    EXPECT_EQ(cursor(), Qt::OpenHandCursor);
    mouse(QEvent::MouseButtonPress, {300, 400});
    EXPECT_EQ(cursor(), Qt::ClosedHandCursor);
    mouse(QEvent::MouseMove, {350, 370});
    EXPECT_EQ(view.scrollOffset(), (Point{50, 30})) << "it follows the mouse";
    mouse(QEvent::MouseMove, {340, 370});
    EXPECT_EQ(view.scrollOffset(), (Point{40, 30}));
    mouse(QEvent::MouseButtonRelease, {340, 370}, Qt::NoButton);
    EXPECT_EQ(cursor(), Qt::OpenHandCursor);
    mouse(QEvent::MouseMove, {100, 100}, Qt::NoButton);
    EXPECT_EQ(view.scrollOffset(), (Point{40, 30}));

    mouse(QEvent::MouseButtonPress, {300, 400});
    QEnterEvent comesBack({200, 200}, {200, 200}, {200, 200});
    QCoreApplication::sendEvent(&view, &comesBack);
    EXPECT_EQ(cursor(), Qt::OpenHandCursor) << "the release was lost in a dialog";
    mouse(QEvent::MouseMove, {210, 210});
    EXPECT_EQ(view.scrollOffset(), (Point{40, 30}));
}

TEST_F(PageViewScrollTest, ShiftAndWheelScrollSidewaysAndTurnNoPage) {
    zoomIn();
    wheel({0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(view.scrollOffset(), (Point{-60, 0})) << "to what lies on the right";
    for (int i = 0; i < 40; ++i)
        wheel({0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(view.currentPageIndex(), 0);
    EXPECT_NEAR(view.geometryOfPage()->frame().maxX(), view.width() - 8, 1);
    wheel({120, 0}, Qt::ShiftModifier);
    EXPECT_GT(view.geometryOfPage()->frame().maxX(), view.width())
        << "where the desktop has turned it already";
}

TEST_F(PageViewScrollTest, ControlWithPlusMinusAndZeroZooms) {
    const double fitting = view.scaleFactor();
    QTest::keyClick(&view, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_NEAR(view.scaleFactor(), fitting * 1.25, 1e-9);
    QTest::keyClick(&view, Qt::Key_Plus, Qt::ControlModifier | Qt::KeypadModifier);
    QTest::keyClick(&view, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_NEAR(view.scaleFactor(), fitting * 1.25, 1e-9);
    QTest::keyClick(&view, Qt::Key_Minus);
    EXPECT_NEAR(view.scaleFactor(), fitting * 1.25, 1e-9) << "not without the Ctrl key";
    QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
    view.resize(300, 400);
    EXPECT_LT(view.scaleFactor(), fitting) << "it fits again, in any size";
}

TEST_F(PageViewScrollTest, ShowsTheFocusThatAKeyBrought) {
    const auto hasRing = [&] {
        return isClose(view.grab().toImage().pixelColor(1, 400), colors::systemBlue);
    };
    view.clearFocus();
    view.setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(hasRing());
    view.clearFocus();
    view.setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(hasRing());
    view.clearFocus();
    EXPECT_FALSE(hasRing());
}

TEST_F(PageViewScrollTest, ScrollsIntoSightByAsLittleAsIsNeeded) {
    zoomIn();
    view.scrollIntoSight({100, 100, 50, 50});
    EXPECT_EQ(view.scrollOffset(), (Point{0, 0})) << "it is in sight";
    view.scrollIntoSight({-30, 780, 50, 50});
    EXPECT_EQ(view.scrollOffset(), (Point{30, -30}));
    view.scrollIntoSight({-100, -200, 1000, 1100});
    EXPECT_EQ(view.scrollOffset(), (Point{30, -30})) << "it fills the view";
    view.scrollIntoSight({20, 0, 1000, 10});
    EXPECT_EQ(view.scrollOffset(), (Point{10, -30}));
}
