#include "base/Rect.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::test;

TEST(RectTest, IntegralContainsTheRectangleAndForgivesRoundingErrors) {
    EXPECT_EQ(integral({1.2, 2.7, 3.1, 4.0}), (Rect{1, 2, 4, 5}));
    EXPECT_EQ(integral({-1.2, 0, 2.4, 1}), (Rect{-2, 0, 4, 1}));
    EXPECT_EQ(integral({3.0000001, 4.9999999, 10, 10}), (Rect{3, 5, 10, 10}));
}

TEST(RectTest, TurnsTheYAxisAtQtsBorder) {
    EXPECT_EQ(toQt({10, 20, 30, 40}, 100), QRectF(10, 40, 30, 40));
    EXPECT_EQ(fromQt({10, 40}, 100), (Point{10, 60}));
}

TEST(RectTest, IntersectionOfApartRectanglesIsEmpty) {
    EXPECT_EQ(intersection({0, 0, 10, 10}, {5, 5, 10, 10}), (Rect{5, 5, 5, 5}));
    EXPECT_TRUE(intersection({0, 0, 10, 10}, {10, 0, 5, 5}).isEmpty());
}
