#include "platform/image/Image.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <QBuffer>
#include <QColorSpace>
#include <QtEndian>

#include <zlib.h>

using namespace vellmora;
using namespace vellmora::test;

TEST(ImageTest, KeepsThePngBytesItCameFrom) {
    const QByteArray png = plainPng(40, 10, QColor(200, 30, 30, 128));
    const auto image = Image::fromData(png);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pngRepresentation(), png);
    EXPECT_EQ(image->size(), (Size{40, 10}));
    EXPECT_EQ(image->pixels().pixelColor(0, 0), QColor(200, 30, 30, 128));
}

TEST(ImageTest, EncodesWhatCameFromElsewhereAsPng) {
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    plainImage(8, 8, Qt::white).convertToFormat(QImage::Format_RGB32).save(&buffer, "JPG");
    const auto image = Image::fromData(jpeg);
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->pngRepresentation().startsWith("\x89PNG"));
}

TEST(ImageTest, RefusesWhatIsNoWholePicture) {
    const QByteArray png = pngOf(QImage(200, 200, QImage::Format_RGB32));
    EXPECT_FALSE(Image::fromData({}));
    EXPECT_FALSE(Image::fromData("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"));
    EXPECT_FALSE(Image::fromData(png.left(png.size() / 2)));
    EXPECT_FALSE(Image::fromFile(QStringLiteral("/does/not/exist.png")));
}

TEST(ImageTest, RefusesAPictureWhosePixelsDoNotFitTheLimit) {
    QByteArray png = plainPng(16, 16, Qt::red);
    // The header says 60,000 × 60,000; its checksum is right.
    for (const int offset : {16, 20})
        png.replace(offset, 4, QByteArray::fromHex("0000ea60"));
    const uLong checksum = ::crc32(0, reinterpret_cast<const Bytef*>(png.constData()) + 12, 17);
    qToBigEndian(static_cast<quint32>(checksum), png.data() + 29);
    EXPECT_FALSE(Image::fromData(png));
}

TEST(ImageTest, UnpacksPalettesSoThatTheyScaleSmoothly) {
    QImage palette(2, 1, QImage::Format_Mono);
    palette.setColorTable({qRgb(255, 0, 255), qRgba(0, 0, 0, 0)});
    palette.setPixel(0, 0, 0);
    palette.setPixel(1, 0, 1);
    const QImage pixels = Image::fromData(pngOf(palette))->pixels();
    EXPECT_EQ(pixels.depth(), 32);
    EXPECT_EQ(pixels.pixelColor(0, 0), QColor(255, 0, 255));
    EXPECT_EQ(pixels.pixelColor(1, 0).alpha(), 0);
}

TEST(ImageTest, ConvertsColoursToSRGB) {
    QImage wide = plainImage(4, 4, QColor(0, 255, 0));
    wide.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    const auto image = Image::fromData(pngOf(wide));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixels().colorSpace(), QColorSpace(QColorSpace::SRgb));

    QImage swapped = plainImage(4, 4, QColor(200, 100, 100));
    swapped.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    const QColor converted = Image::fromData(pngOf(swapped))->pixels().pixelColor(0, 0);
    EXPECT_GT(converted.red(), 215) << "the wider space's red is more than that of sRGB";
}

TEST(ImageTest, AFaxScanIsAsHighAsItLooks) {
    QImage fax = plainImage(200, 100, Qt::white);
    fax.setDotsPerMeterX(8031);  // 204 dots per inch across
    fax.setDotsPerMeterY(4016);  // 102 down
    EXPECT_NEAR(Image::fromData(pngOf(fax))->size().height, 200, 0.1);
}
