#include "platform/geometry/Rect.h"
#include "platform/pdf/PageOrientation.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::test;

TEST(RectTest, IntegralContainsTheRectangleAndForgivesRoundingErrors) {
    EXPECT_EQ(integral({1.2, 2.7, 3.1, 4.0}), (Rect{1, 2, 4, 5}));
    EXPECT_EQ(integral({-1.2, 0, 2.4, 1}), (Rect{-2, 0, 4, 1}));
    EXPECT_EQ(integral({3.0000001, 4.9999999, 10, 10}), (Rect{3, 5, 10, 10}));
}

TEST(RectTest, TurnsTheYAxisAtTheToolkitsBorder) {
    EXPECT_EQ(toToolkit({10, 20, 30, 40}, 100), QRectF(10, 40, 30, 40));
    EXPECT_EQ(fromToolkit({10, 40}, 100), (Point{10, 60}));
}

TEST(RectTest, IntersectionOfApartRectanglesIsEmpty) {
    EXPECT_EQ(intersection({0, 0, 10, 10}, {5, 5, 10, 10}), (Rect{5, 5, 5, 5}));
    EXPECT_TRUE(intersection({0, 0, 10, 10}, {10, 0, 5, 5}).isEmpty());
}

/// A small square at the page's own lower left, as its reader sees it when the page is turned clockwise.
TEST(PageOrientationTest, PutsTheCornersWhereTheReaderSeesThem) {
    const Rect box{10, 20, 100, 200};
    const Rect corner{10, 20, 5, 5};
    const auto upright = [&](int degrees) {
        return mapRect(PageOrientation(box, degrees).toPageSpace(), corner);
    };
    EXPECT_EQ(upright(0), corner);
    EXPECT_EQ(upright(90), (Rect{10, 20 + 95, 5, 5}));         // upper left of 200 × 100
    EXPECT_EQ(upright(180), (Rect{10 + 95, 20 + 195, 5, 5}));  // upper right of 100 × 200
    EXPECT_EQ(upright(270), (Rect{10 + 195, 20, 5, 5}));       // lower right of 200 × 100
    EXPECT_EQ(PageOrientation(box, 90).uprightMediaBox(), (Rect{10, 20, 200, 100}));
}

TEST(PageOrientationTest, MapsTheBoxOntoTheUprightBoxAndBack) {
    for (const int degrees : {0, 90, 180, 270}) {
        const PageOrientation page({-30, 40, 100, 200}, degrees);
        EXPECT_TRUE(isNear(mapRect(page.toPageSpace(), page.mediaBox()), page.uprightMediaBox(), 1e-9))
            << degrees;
        const Rect stamp{5, 50, 20, 10};
        EXPECT_TRUE(isNear(mapRect(page.toPageSpace() * page.fromPageSpace(), stamp), stamp, 1e-9))
            << degrees;
    }
}
