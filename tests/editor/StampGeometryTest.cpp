#include "editor/StampGeometry.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::stampgeometry;

namespace {

constexpr Rect view{0, 0, 400, 300};
constexpr Limits everywhere{view, view, handleSize};

}  // namespace

TEST(StampGeometryTest, TheHandleIsTheLowerRightSquare) {
    EXPECT_EQ(resizeHandleRect({0, 0, 100, 50}), (Rect{84, 0, 16, 16}));
    EXPECT_EQ(resizeHandleRect({5, 7, 10, 8}), (Rect{-1, 7, 16, 16}));
}

TEST(StampGeometryTest, ResizingKeepsTheLowerLeftCornerAndTheRatio) {
    EXPECT_EQ(resized({10, 20, 100, 50}, 60, 2, everywhere), (Rect{10, 20, 160, 80}));
    EXPECT_EQ(resized({10, 20, 100, 50}, -500, 2, everywhere), (Rect{10, 20, 28, 14}));
    EXPECT_EQ(resized({10, 20, 9, 4.5}, 0, 2, everywhere), (Rect{10, 20, 9, 4.5})) << "nobody changed it";
    EXPECT_EQ(resized({10, 20, 9, 4.5}, 1, 2, everywhere), (Rect{10, 20, 28, 14}));
}

TEST(StampGeometryTest, ResizingEndsAtTheEdgesOfWhatIsSeen) {
    EXPECT_EQ(resized({100, 0, 100, 50}, 500, 2, everywhere), (Rect{100, 0, 300, 150}));
    EXPECT_EQ(resized({100, 200, 100, 50}, 500, 2, everywhere), (Rect{100, 200, 200, 100}));
    EXPECT_EQ(resized({-300, 0, 500, 250}, 20, 2, everywhere), (Rect{-300, 0, 520, 260}));
    EXPECT_EQ(resized({100, 200, 300, 150}, 20, 2, everywhere), (Rect{100, 200, 300, 150}))
        << "what reaches out already may stay as large as it is";
    EXPECT_EQ(resized({390, 0, 8, 4}, 5, 2, everywhere), (Rect{390, 0, 10, 5}))
        << "in a small room narrower than the least width";
}

TEST(StampGeometryTest, AMoveStopsAtTheEdgesOfWhatIsSeen) {
    EXPECT_EQ(moved({50, 60, 100, 50}, 30, -20, everywhere), (Rect{80, 40, 100, 50}));
    EXPECT_EQ(moved({50, 60, 100, 50}, -70, 900, everywhere), (Rect{0, 250, 100, 50}));
    EXPECT_EQ(moved({50, 60, 100, 50}, 500, -500, everywhere), (Rect{300, 0, 100, 50}));
}

TEST(StampGeometryTest, AMoveOfWhatIsLargerThanTheViewKeepsItsSizeAndAGripInSight) {
    const Rect large{-100, 10, 800, 100};
    EXPECT_EQ(moved(large, 250, 5, everywhere), (Rect{150, 15, 800, 100}));
    EXPECT_EQ(moved(large, 900, 0, everywhere), (Rect{384, 10, 800, 100}));
    EXPECT_EQ(moved(large, -900, 0, everywhere), (Rect{-784, 10, 800, 100}));
}

TEST(StampGeometryTest, WhatWasFurtherOutMovesByWhatTheMouseMoves) {
    const Rect outside{-30, 100, 100, 50};
    EXPECT_EQ(moved(outside, 10, 0, everywhere), (Rect{-20, 100, 100, 50})) << "no jump to the edge";
    EXPECT_EQ(moved(outside, -10, 0, everywhere), outside) << "but no further";
}

TEST(StampGeometryTest, AGripStaysOverThePage) {
    const Limits limits{view, {100, 50, 200, 200}, handleSize};
    EXPECT_EQ(moved({150, 100, 100, 50}, -500, 0, limits).x, 16);
    EXPECT_EQ(moved({150, 100, 100, 50}, 500, 0, limits).x, 284);
    EXPECT_EQ(moved({150, 100, 100, 50}, 0, -500, limits).y, 16);
    EXPECT_EQ(moved({150, 100, 10, 5}, 500, 500, limits), (Rect{290, 245, 10, 5})) << "all of a small one";
    EXPECT_EQ(resized({20, 100, 120, 60}, -500, 2, limits).width, 96)
        << "the right end does not leave the page";
    EXPECT_EQ(resized({150, 20, 120, 60}, -500, 2, limits).height, 46);
}
