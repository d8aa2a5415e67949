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
        view->setPlace({100, 100, 100, 50});
        view->onSelect = [this](const auto& id) { selections.append(*id); };
        view->onPlaceChanged = [this](const QUuid&, const Rect& place) { places.append(place); };
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
    QList<Rect> places;
};

constexpr QPointF middle{50, 25};
constexpr QPointF handle{95, 45};

}  // namespace

TEST_F(InteractiveStampViewTest, TheWidgetLiesOnTheWholePointsAroundItsPlace) {
    EXPECT_EQ(view->geometry(), QRect(100, 150, 100, 50));
    view->setPlace({10.5, 10.5, 20, 20});
    EXPECT_EQ(view->place(), (Rect{10.5, 10.5, 20, 20}));
    EXPECT_EQ(view->frame(), (Rect{10, 10, 21, 21}));
    EXPECT_EQ(view->geometry(), QRect(10, 269, 21, 21));
}

TEST_F(InteractiveStampViewTest, ThePictureLiesAtItsPlaceAndNotAtTheWholePointsAround) {
    // Where the picture is red, it takes the green from a white ground; the line over it leaves a quarter.
    for (const double fraction : {0.0, 0.25, 0.75}) {
        view->setPlace({100 + fraction, 100, 200, 100});
        EXPECT_NEAR(pixel(100, 150).green() / 255.0, 0.75 + 0.25 * fraction, 0.02);
        EXPECT_EQ(pixel(99, 150), QColor(Qt::black));
    }
}

TEST_F(InteractiveStampViewTest, OnWhitePaperTheHandleOfAStampThatIsNotSelectedHasAnEdge) {
    const QColor inside = pixel(view->x() + 92, view->y() + 42);
    const QColor edge = pixel(view->x() + 92, view->y() + 34);
    EXPECT_GT(inside.lightness(), 225) << "it is white";
    EXPECT_LT(edge.lightness(), 150) << "and no hole";
    view->setSelectedStamp(true);
    EXPECT_EQ(pixel(view->x() + 92, view->y() + 42), colors::systemBlue);
}

TEST_F(InteractiveStampViewTest, ADragMovesItAndReportsEveryStepAndTheEnd) {
    drag(*view, middle, 30, 20);
    EXPECT_EQ(view->place(), (Rect{130, 120, 100, 50}));
    EXPECT_EQ(selections, QList<QUuid>{view->stamp().id});
    EXPECT_EQ(places, (QList<Rect>{{130, 120, 100, 50}, {130, 120, 100, 50}}));
    EXPECT_FALSE(view->isDraggingInteractively());
}

TEST_F(InteractiveStampViewTest, AClickReportsTheUnchangedPlace) {
    sendMouse(*view, QEvent::MouseButtonPress, middle);
    EXPECT_TRUE(view->isDraggingInteractively());
    EXPECT_TRUE(places.isEmpty());
    sendMouse(*view, QEvent::MouseButtonRelease, middle);
    EXPECT_EQ(places, QList<Rect>{view->frame()});
}

TEST_F(InteractiveStampViewTest, TheHandleResizesByTheWidthAloneAndTheTopEdgeRises) {
    drag(*view, handle, 40, -70);
    EXPECT_EQ(view->place(), (Rect{100, 100, 140, 70}));
    EXPECT_EQ(view->geometry(), QRect(100, 130, 140, 70));
    drag(*view, QPointF(135, 65), -500, 0);
    EXPECT_EQ(view->place(), (Rect{100, 100, 28, 14}));
}

TEST_F(InteractiveStampViewTest, ItStopsAtTheEdgesOfTheOverlay) {
    drag(*view, middle, 1000, -1000);
    EXPECT_EQ(view->place(), (Rect{300, 0, 100, 50}));
}

TEST_F(InteractiveStampViewTest, ADragWhoseEndWasLostDoesNotGoOnWithoutTheButton) {
    sendMouse(*view, QEvent::MouseButtonPress, middle);
    sendMouse(*view, QEvent::MouseMove, middle + QPointF(20, 0));
    const Rect dragged = view->place();
    EXPECT_EQ(dragged, (Rect{120, 100, 100, 50}));
    sendMouse(*view, QEvent::MouseMove, middle, Qt::NoButton);
    EXPECT_EQ(view->place(), dragged);
    EXPECT_FALSE(view->isDraggingInteractively());
}

TEST_F(InteractiveStampViewTest, OtherButtonsDoNothing) {
    sendMouse(*view, QEvent::MouseButtonPress, middle, Qt::RightButton);
    EXPECT_FALSE(view->isDraggingInteractively());
    sendMouse(*view, QEvent::MouseButtonRelease, middle, Qt::RightButton);
    EXPECT_TRUE(selections.isEmpty() && places.isEmpty());
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
