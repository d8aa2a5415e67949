#include "editor/StampPicture.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

QImage shown(const StampPicture& picture, QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.draw(painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}

}  // namespace

TEST(StampPictureTest, KeepsColoursAndEdgesInPlaceAtEverySize) {
    // Odd at every level; blue that nobody sees beside the red.
    QImage pixels = plainImage(1023, 515, QColor(0, 0, 255, 0));
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < 511; ++x)
            pixels.setPixelColor(x, y, (x + y) % 2 == 0 ? QColor(255, 0, 0) : QColor(155, 0, 0));
    }
    for (const auto format : {QImage::Format_ARGB32, QImage::Format_RGBA64}) {
        const StampPicture picture(pixels.convertToFormat(format));
        for (const int width : {1023, 512, 500, 200, 64, 20}) {
            const QImage image = shown(picture, {width, width / 2});
            const int middle = width / 2;
            for (const int y : {1, width / 4, width / 2 - 2}) {
                if (width <= 512) {
                    EXPECT_TRUE(isClose(image.pixelColor(1, y), QColor(205, 0, 0), 4)) << width;
                }
                EXPECT_EQ(image.pixelColor(middle - 4, y).alpha(), 255) << width;
                EXPECT_EQ(image.pixelColor(middle + 3, y).alpha(), 0) << width;
                EXPECT_EQ(image.pixelColor(middle, y).blue(), 0) << width;
            }
        }
    }
}

TEST(StampPictureTest, IsDecodedOnceForTheSameBytes) {
    StampPictures pictures;
    const QByteArray png = plainPng(100, 100, Qt::red);
    const auto picture = pictures.picture(png);
    ASSERT_TRUE(picture);
    EXPECT_EQ(pictures.picture(png), picture);
    const QByteArray inTheNextDocument(png.constData(), png.size());
    EXPECT_EQ(pictures.picture(inTheNextDocument), picture);
    EXPECT_FALSE(pictures.picture("no picture"));

    const QByteArray decodedElsewhere("no picture either");
    pictures.add(decodedElsewhere, Image(plainImage(100, 100, Qt::green)));
    ASSERT_TRUE(pictures.picture(decodedElsewhere));
    EXPECT_EQ(shown(*pictures.picture(decodedElsewhere), {10, 10}).pixelColor(5, 5), QColor(Qt::green));
}

TEST(StampPictureTest, TheBudgetHoldsTheOnesUsedLastAndThoseInSight) {
    const QImage pixels = plainImage(60, 60, Qt::red);
    StampPictures pictures(2 * StampPicture(pixels).size());
    const QByteArray inSight = pngOf(pixels);
    const auto held = pictures.picture(inSight);
    // Bytes that cannot be decoded: what is not kept is not there.
    const QByteArray old("old");
    const QByteArray recent("recent");
    pictures.add(old, Image(pixels));
    pictures.add(recent, Image(pixels));
    EXPECT_EQ(pictures.picture(inSight), held);
    EXPECT_TRUE(pictures.picture(recent));
    EXPECT_FALSE(pictures.picture(old));
}
