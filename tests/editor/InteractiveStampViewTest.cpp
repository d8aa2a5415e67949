#include "base/SystemColors.h"
#include "editor/InteractiveStampView.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/GTestQt.h"

#include <QPainter>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class InteractiveStampViewTest : public testing::Test {
protected:
    InteractiveStampViewTest() {
        overlay.resize(400, 300);
        view = new InteractiveStampView(stampAt({0, 0, 100, 50}), pictures, &overlay);
        view->setFrame({100, 100, 100, 50});
        view->onSelect = [this](const auto& id) { selections.append(*id); };
        view->onFrameChanged = [this](const QUuid&, const Rect& frame) { frames.append(frame); };
        overlay.show();
    }
    QColor pixel(int x, int y) const {
        QImage image(overlay.size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        view->render(&painter, view->pos());
        return image.pixelColor(x, y);
    }

    StampPictures pictures;
    QWidget overlay;
    InteractiveStampView* view;
    QList<QUuid> selections;
    QList<Rect> frames;
};

constexpr QPointF middle{50, 25};
constexpr QPointF handle{95, 45};

}  // namespace

TEST_F(InteractiveStampViewTest, TheWidgetLiesWhereTheFrameIs) {
    EXPECT_EQ(view->geometry(), QRect(100, 150, 100, 50));
    view->setFrame({10.5, 10.5, 20, 20});
    EXPECT_EQ(view->frame(), (Rect{10.5, 10.5, 20, 20}));
    EXPECT_EQ(view->geometry(), QRect(10, 269, 21, 21)) << "the widget covers the frame";
}

TEST_F(InteractiveStampViewTest, ADragMovesItAndReportsEveryStepAndTheEnd) {
    drag(*view, middle, 30, 20);
    EXPECT_EQ(view->frame(), (Rect{130, 120, 100, 50}));
    EXPECT_EQ(selections, QList<QUuid>{view->stamp().id});
    EXPECT_EQ(frames, (QList<Rect>{{130, 120, 100, 50}, {130, 120, 100, 50}}));
    EXPECT_FALSE(view->isDraggingInteractively());
}

TEST_F(InteractiveStampViewTest, AClickReportsTheUnchangedFrame) {
    sendMouse(*view, QEvent::MouseButtonPress, middle);
    EXPECT_TRUE(view->isDraggingInteractively());
    EXPECT_TRUE(frames.isEmpty());
    sendMouse(*view, QEvent::MouseButtonRelease, middle);
    EXPECT_EQ(frames, QList<Rect>{view->frame()});
}

TEST_F(InteractiveStampViewTest, TheHandleResizesByTheWidthAloneAndTheTopEdgeRises) {
    drag(*view, handle, 40, -70);
    EXPECT_EQ(view->frame(), (Rect{100, 100, 140, 70}));
    EXPECT_EQ(view->geometry(), QRect(100, 130, 140, 70));
    drag(*view, QPointF(135, 65), -500, 0);
    EXPECT_EQ(view->frame(), (Rect{100, 100, 28, 14}));
}

TEST_F(InteractiveStampViewTest, ItStopsAtTheEdgesOfTheOverlay) {
    drag(*view, middle, 1000, -1000);
    EXPECT_EQ(view->frame(), (Rect{300, 0, 100, 50}));
}

TEST_F(InteractiveStampViewTest, ADragWhoseEndWasLostDoesNotGoOnWithoutTheButton) {
    sendMouse(*view, QEvent::MouseButtonPress, middle);
    sendMouse(*view, QEvent::MouseMove, middle + QPointF(20, 0));
    const Rect dragged = view->frame();
    EXPECT_EQ(dragged, (Rect{120, 100, 100, 50}));
    sendMouse(*view, QEvent::MouseMove, middle, Qt::NoButton);
    EXPECT_EQ(view->frame(), dragged);
    EXPECT_FALSE(view->isDraggingInteractively());
}

TEST_F(InteractiveStampViewTest, OtherButtonsDoNothing) {
    sendMouse(*view, QEvent::MouseButtonPress, middle, Qt::RightButton);
    EXPECT_FALSE(view->isDraggingInteractively());
    sendMouse(*view, QEvent::MouseButtonRelease, middle, Qt::RightButton);
    EXPECT_TRUE(selections.isEmpty() && frames.isEmpty());
}

TEST_F(InteractiveStampViewTest, TheCursorTellsTheHandleFromTheRest) {
    sendMouse(*view, QEvent::MouseMove, middle, Qt::NoButton);
    EXPECT_EQ(view->cursor().shape(), Qt::OpenHandCursor);
    sendMouse(*view, QEvent::MouseMove, handle, Qt::NoButton);
    EXPECT_EQ(view->cursor().shape(), Qt::CrossCursor);
}

TEST_F(InteractiveStampViewTest, ShowsPictureBorderAndHandle) {
    EXPECT_TRUE(isClose(pixel(150, 170), Qt::red));
    EXPECT_TRUE(isClose(pixel(192, 192), QColor(255, 229, 229), 6)) << "a white handle over the red picture";
    view->setSelectedStamp(true);
    EXPECT_TRUE(isClose(pixel(192, 192), colors::systemBlue));
    EXPECT_TRUE(isClose(pixel(101, 170), QColor(89, 45, 96), 90)) << "a blue line";
    EXPECT_TRUE(isClose(pixel(150, 170), Qt::red));
}
