#include "engine/file/PageOrientation.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::test;

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
