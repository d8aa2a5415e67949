#include "base/Image.h"
#include "tests/base/PngChunk.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <sys/resource.h>
#include <utility>
#include <vector>

#include <QBuffer>
#include <QColorSpace>
#include <QImageWriter>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr qsizetype afterHeader = 33;  // of the file's bytes, before the next chunk

/// So many megabytes of text compressed, made without taking as much.
QByteArray packedText(int megabytes) {
    const QByteArray block(1 << 20, '0');
    QByteArray packed(2 << 20, Qt::Uninitialized);
    z_stream stream{};
    ::deflateInit(&stream, Z_BEST_SPEED);
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    for (int i = 1; i <= megabytes; ++i) {
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(block.constData()));
        stream.avail_in = static_cast<uInt>(block.size());
        ::deflate(&stream, i == megabytes ? Z_FINISH : Z_NO_FLUSH);
    }
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    ::deflateEnd(&stream);
    return packed;
}

auto peakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

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

TEST(ImageTest, RefusesWhatIsNoPicture) {
    EXPECT_FALSE(Image::fromData({}));
    EXPECT_FALSE(Image::fromData("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"));
    EXPECT_FALSE(Image::fromFile(QStringLiteral("/does/not/exist.png")));
}

TEST(ImageTest, RefusesAPictureWhosePixelsDoNotFitTheLimit) {
    // Small in the file and in its own form; its pixels take twice what is allowed.
    constexpr int side = 16000;
    static_assert(qint64{side} * side * 4 > qint64{Image::maxDecodedMegabytes} << 20);
    QImage lines(side, side, QImage::Format_Mono);
    lines.fill(0);
    EXPECT_FALSE(Image::fromData(pngOf(lines)));
}

TEST(ImageTest, NoChunkTakesMoreMemoryThanItsFileIsWorth) {
    const QByteArray picture = plainPng(16, 16, Qt::red);
    const auto peak = peakKilobytes();
    QByteArray claiming = picture;
    claiming.insert(afterHeader, QByteArray::fromHex("65000000") + "tEXtTitle");  // 1.7 GB of text
    EXPECT_FALSE(Image::fromData(claiming));
    const QByteArray packed = packedText(256);
    const std::vector<std::pair<const char*, QByteArray>> heads = {
        {"zTXt", QByteArray("Title\0\0", 7)},
        {"iCCP", QByteArray("Profile\0\0", 9)},
        {"iTXt", QByteArray("Title\0\1\0\0\0", 10)}};
    for (const auto& [type, head] : heads) {
        QByteArray png = picture;
        png.insert(afterHeader, pngChunk(type, head + packed));
        Image::fromData(png);  // with the text or without it
    }
    EXPECT_LT(peakKilobytes() - peak, 100000);
}

TEST(ImageTest, ManyPackedChunksTakeNoMoreMemoryThanOne) {
    // Each is unpacked and kept by the decoder where it gets them: 1,200 megabytes.
    const QByteArray chunk = pngChunk("zTXt", QByteArray("Title\0\0", 7) + packedText(6));
    QByteArray png = plainPng(16, 16, Qt::red);
    png.insert(afterHeader, chunk.repeated(200));
    const auto peak = peakKilobytes();
    EXPECT_TRUE(Image::fromData(png));
    EXPECT_LT(peakKilobytes() - peak, 100000);
}

TEST(ImageTest, APictureThatTakesTooLongIsGivenUp) {
    // One colour, and its last scan repeated: each takes a few bytes, and goes over the whole picture.
    QImage large(8000, 8000, QImage::Format_Grayscale8);
    large.fill(Qt::black);
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImageWriter writer(&buffer, "jpg");
    writer.setProgressiveScanWrite(true);
    ASSERT_TRUE(writer.write(large));
    const qsizetype scan = jpeg.lastIndexOf("\xff\xda");
    const qsizetype end = jpeg.size() - 2;
    jpeg.insert(end, jpeg.sliced(scan, end - scan).repeated(4000));
    EXPECT_FALSE(Image::fromData(jpeg, std::chrono::milliseconds(300)));
}

TEST(ImageTest, ShowsTheFirstFrameOfAnAnimation) {
    QByteArray png = plainPng(16, 8, Qt::red);
    png.insert(afterHeader, pngChunk("acTL", QByteArray::fromHex("0000000200000000")));
    png.insert(png.size() - 12, pngChunk("fdAT", QByteArray(4, 1) + "second frame"));
    const auto image = Image::fromData(png);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixels().size(), QSize(16, 8));
    EXPECT_EQ(image->pixels().pixelColor(3, 3), QColor(Qt::red));
}

TEST(ImageTest, RefusesPicturesCutOffAnywhereAndOnesWithoutPixels) {
    const QByteArray png = plainPng(30, 20, Qt::red);
    for (qsizetype length = 0; length < png.size(); ++length)
        EXPECT_FALSE(Image::fromData(png.left(length))) << length;
    QByteArray empty = png;
    empty.replace(16, 4, QByteArray(4, 0));
    EXPECT_FALSE(Image::fromData(empty));
    for (const char* other : {"GIF89a\1\0\1\0", "BM......", "RIFF....WEBPVP8 ", "%PDF-1.7", "<html>"})
        EXPECT_FALSE(Image::fromData(other)) << other;
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
