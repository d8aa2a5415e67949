#include "editor/StampGeometry.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::stampgeometry;

TEST(StampGeometryTest, TheHandleIsTheLowerRightSquare) {
    EXPECT_EQ(resizeHandleRect({0, 0, 100, 50}), (Rect{84, 0, 16, 16}));
    EXPECT_EQ(resizeHandleRect({5, 7, 10, 8}), (Rect{-1, 7, 16, 16}));
}

TEST(StampGeometryTest, ResizingKeepsTheLowerLeftCornerAndTheAspectRatio) {
    EXPECT_EQ(resizedFrame({10, 20, 100, 50}, 60, 2), (Rect{10, 20, 160, 80}));
    EXPECT_EQ(resizedFrame({10, 20, 100, 50}, -500, 2), (Rect{10, 20, 28, 14}));
    EXPECT_EQ(resizedFrame({10, 20, 100, 50}, 0, 0), (Rect{10, 20, 100, 1000}))
        << "a ratio of 0 counts as 0.1";
}

TEST(StampGeometryTest, AFrameStaysInsideItsContainer) {
    const Rect container{0, 0, 400, 300};
    EXPECT_EQ(constrainedFrame({-20, 280, 100, 50}, container, 2), (Rect{0, 250, 100, 50}));
    EXPECT_EQ(constrainedFrame({390, -5, 100, 50}, container, 2), (Rect{300, 0, 100, 50}));
    EXPECT_EQ(constrainedFrame({10, 10, 100, 50}, container, 2), (Rect{10, 10, 100, 50}));
}

TEST(StampGeometryTest, AFrameThatIsTooLargeShrinksByItsAspectRatio) {
    EXPECT_EQ(constrainedFrame({50, 10, 800, 100}, {0, 0, 400, 300}, 8), (Rect{0, 10, 400, 50}));
    EXPECT_EQ(constrainedFrame({10, 10, 200, 900}, {0, 0, 400, 300}, 0.5), (Rect{10, 0, 150, 300}));
    EXPECT_EQ(constrainedFrame({0, 0, 500, 500}, {0, 0, 20, 10}, 1), (Rect{0, 0, 10, 10}))
        << "both limits, one after "
           "the other";
    EXPECT_EQ(constrainedFrame({-5, -5, 500, 500}, {0, 0, 0, 10}, 1), (Rect{-5, -5, 500, 500}));
}
