#include "base/Image.h"
#include "engine/output/PictureObject.h"
#include "picture/PictureEncoding.h"
#include "tests/base/PngChunk.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"

#include <array>
#include <functional>
#include <numeric>
#include <random>

#include <QColorSpace>

#include <zlib.h>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// The picture as a PDF reader unpacks it.
class Written {
public:
    explicit Written(const Image& image) {
        MemoryConsumer consumer;
        FileWriter file(consumer);
        const int number = file.numbers().reserve();
        const int catalog = file.numbers().reserve();
        const int pages = file.numbers().reserve();
        file.writeReserved(catalog, "<</Pages " + std::to_string(pages) + " 0 R/Type/Catalog>>");
        file.writeReserved(pages, "<</Count 0/Kids[]/Type/Pages>>");
        writePicture(file, number, encodePicture(image));
        file.finish(catalog);
        m_bytes = consumer.bytes();
        m_pdf.processMemoryFile("picture", m_bytes.constData(), static_cast<size_t>(m_bytes.size()));
        m_object = m_pdf.getObject(number, 0);
    }
    QPDFObjectHandle dictionary() const { return m_object.getDict(); }
    std::string raw() const { return text(m_object.getRawStreamData()); }
    bool hasMask() const { return dictionary().hasKey("/SMask"); }
    /// Bytes of the samples, compressed.
    size_t size() const { return raw().size() + (hasMask() ? text(mask().getRawStreamData()).size() : 0); }

    /// "gray 8", "rgb 8 png", "palette 4, mask 1".
    std::string form() const {
        return formOf(m_object) + (hasMask() ? ", mask" + formOf(mask()).substr(4) : "");
    }

    QImage pixels() const {
        QImage result(int(number("/Width")), int(number("/Height")), QImage::Format_ARGB32);
        const auto colors = samplesOf(m_object);
        const auto alphas = hasMask() ? samplesOf(mask()) : std::vector<int>();
        const std::string palette = paletteOf(m_object);
        const size_t components = formOf(m_object).starts_with("rgb") ? 3 : 1;
        for (size_t i = 0; i < colors.size() / components; ++i) {
            const size_t last = components - 1;
            std::array<int, 3> rgb = {colors[i * components], colors[i * components + last / 2],
                                      colors[i * components + last]};
            for (size_t c = 0; c < 3 && !palette.empty(); ++c)
                rgb[c] = static_cast<uchar>(palette.at(static_cast<size_t>(colors[i]) * 3 + c));
            const int width = result.width();
            result.setPixel(int(i) % width, int(i) / width,
                            qRgba(rgb[0], rgb[1], rgb[2], alphas.empty() ? 255 : alphas.at(i)));
        }
        return result;
    }

private:
    /// With a right checksum, which libqpdf does not look at.
    static bool isSoundStream(const std::string& raw, size_t maxSize) {
        std::string unpacked(maxSize, '\0');
        uLongf size = maxSize;
        return ::uncompress(reinterpret_cast<Bytef*>(unpacked.data()), &size,
                            reinterpret_cast<const Bytef*>(raw.data()), raw.size()) == Z_OK;
    }
    qint64 number(const char* key) const { return dictionary().getKey(key).getIntValue(); }
    QPDFObjectHandle mask() const { return dictionary().getKey("/SMask"); }

    static std::string paletteOf(QPDFObjectHandle object) {
        QPDFObjectHandle space = object.getDict().getKey("/ColorSpace");
        return space.isArray() ? space.getArrayItem(3).getStringValue() : "";
    }
    static std::string formOf(QPDFObjectHandle object) {
        QPDFObjectHandle space = object.getDict().getKey("/ColorSpace");
        const std::string colors = space.isArray()                        ? "palette "
                                   : space.isNameAndEquals("/DeviceGray") ? "gray "
                                                                          : "rgb ";
        const bool isFiltered = object.getDict().getKey("/DecodeParms").isDictionary();
        return colors + object.getDict().getKey("/BitsPerComponent").unparse() + (isFiltered ? " png" : "");
    }
    /// One number for each sample; what stands for brightness runs from 0 to 255.
    static std::vector<int> samplesOf(QPDFObjectHandle object) {
        const std::string bytes = text(object.getStreamData(qpdf_dl_generalized));
        const std::string form = formOf(object);
        const auto bits = size_t(object.getDict().getKey("/BitsPerComponent").getIntValue());
        const auto width = size_t(object.getDict().getKey("/Width").getIntValue()) * (form[0] == 'r' ? 3 : 1);
        const auto height = size_t(object.getDict().getKey("/Height").getIntValue());
        const size_t bytesPerRow = (width * bits + 7) / 8;
        EXPECT_EQ(bytes.size(), bytesPerRow * height);
        EXPECT_TRUE(isSoundStream(text(object.getRawStreamData()), bytes.size() + height));
        const int most = (1 << bits) - 1;
        std::vector<int> samples;
        for (size_t y = 0; y < height; ++y) {
            for (size_t x = 0; x < width; ++x) {
                const int byte = static_cast<uchar>(bytes.at(y * bytesPerRow + x * bits / 8));
                const int sample = (byte >> (8 - bits - x * bits % 8)) & most;
                samples.push_back(form[0] == 'p' ? sample : sample * 255 / most);
            }
        }
        return samples;
    }

    QByteArray m_bytes;
    QPDF m_pdf;
    mutable QPDFObjectHandle m_object;
};

using PixelAt = std::function<QRgb(int x, int y)>;

QImage drawn(int width, int height, const PixelAt& pixelAt) {
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, pixelAt(x, y));
    }
    return image;
}

QRgb gray(int level, int alpha = 255) {
    return qRgba(level, level, level, alpha);
}

QRgb noise() {
    static std::mt19937 random;
    return QRgb(random());
}

/// A smooth picture with a little noise, as cameras make it.
QRgb photo(int x, int y) {
    const QRgb n = noise();
    return qRgb(x % 200 + int(n % 4), y % 200 + int(n >> 8) % 4, (x + y) % 200 + int(n >> 16) % 4);
}

/// A PNG by hand: `header` is the depth, the colour type and the interlace method; the rows begin with their
/// filter.
QByteArray handmadePng(int width, int height, const std::array<char, 3>& header,
                       const QByteArray& extraChunks, const QByteArray& rows) {
    const QByteArray form = QByteArray(header.data(), 2) + QByteArray(2, '\0') + QByteArray(1, header[2]);
    return QByteArray::fromHex("89504e470d0a1a0a") +
           pngChunk("IHDR", bigEndian(quint32(width)) + bigEndian(quint32(height)) + form) + extraChunks +
           pngChunk("IDAT", qCompress(rows).mid(4)) + pngChunk("IEND", {});
}

Image imageOf(const QByteArray& png) {
    const auto image = Image::fromData(png);
    EXPECT_TRUE(image);
    return image.value_or(Image(plainImage(1, 1, Qt::black)));
}

void expectLossless(const Image& image) {
    QImage expected = image.pixels().convertToFormat(QImage::Format_ARGB32);
    expected.setColorSpace({});
    EXPECT_EQ(Written(image).pixels(), expected) << Written(image).form();
}

}  // namespace

TEST(PictureObjectTest, TakesTheFewestBitsThatLoseNothing) {
    struct Drawing {
        const char* form;
        PixelAt pixelAt;
    };
    const std::vector<Drawing> pictures = {
        {"gray 1", [](int x, int y) { return gray((x ^ y) & 4 ? 255 : 0); }},
        {"gray 2", [](int x, int) { return gray(x % 4 * 85); }},
        {"gray 4", [](int x, int y) { return gray((x + y) % 16 * 17); }},
        {"palette 2", [](int x, int) { return gray(x % 3 * 100); }},
        {"gray 8 png", [](int x, int y) { return gray((x * 3 + y * 5) & 255); }},
        {"palette 1", [](int x, int) { return x < 9 ? qRgb(255, 0, 0) : qRgb(0, 0, 0); }},
        {"palette 4", [](int x, int y) { return qRgb(x % 5 * 50, y % 3 * 50, 1); }},
        {"palette 8", [](int, int) { return noise() % 200 * 0x010203U | 0xff000000; }},
        {"rgb 8 png", [](int x, int y) { return qRgb(x * 2, y * 3, (x + y) * 2); }},
        {"rgb 8", [](int, int) { return noise() | 0xff000000; }},
        {"palette 1, mask 1", [](int x, int y) { return qRgba(200, 0, 0, (x ^ y) & 8 ? 255 : 0); }},
        {"gray 1, mask 2", [](int x, int) { return gray(0, x % 4 * 85); }},
        {"gray 1, mask 8", [](int, int) { return gray(255, int(noise() & 255)); }},
    };
    for (const auto& [form, pixelAt] : pictures) {
        const QImage image = drawn(67, 45, pixelAt);
        const Written written{Image(image)};
        EXPECT_EQ(written.form(), form);
        EXPECT_EQ(written.pixels(), image) << form;
        expectLossless(imageOf(pngOf(image)));
    }
}

TEST(PictureObjectTest, LosesNothingWhateverTheSizeAndTheSource) {
    for (const QSize size : {QSize(1, 1), QSize(7, 3), QSize(8, 1), QSize(1, 300)}) {
        for (const int colors : {1, 2, 3, 16, 17, 256, 257, 1000}) {
            expectLossless(Image(drawn(size.width(), size.height(), [&](int x, int y) {
                return QRgb((x * 31 + y) % colors) * 0x010307U | 0xff000000;
            })));
        }
    }
    const QImage photograph = drawn(90, 60, photo);
    const QImage glassy =
        drawn(90, 60, [](int x, int y) { return (photo(x, y) & RGB_MASK) | noise() << 24; });
    for (const auto format : {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_Grayscale8,
                              QImage::Format_Grayscale16, QImage::Format_RGBX64, QImage::Format_RGBA64}) {
        expectLossless(imageOf(pngOf(photograph.convertToFormat(format))));
        expectLossless(imageOf(pngOf(glassy.convertToFormat(format))));
    }
    expectLossless(Image(glassy.convertToFormat(QImage::Format_ARGB32_Premultiplied)));
    // Large enough for several threads.
    expectLossless(Image(drawn(1500, 1700, photo)));
}

TEST(PictureObjectTest, PassesThePngsOwnSamplesOn) {
    QByteArray rows;
    for (int y = 0; y < 100; ++y) {
        rows += '\0';
        for (int x = 0; x < 150; ++x) {
            const QRgb pixel = photo(x, y);
            rows.append(char(qRed(pixel))).append(char(qGreen(pixel))).append(char(qBlue(pixel)));
        }
    }
    const Image photograph = imageOf(handmadePng(150, 100, {8, 2, 0}, {}, rows));
    EXPECT_EQ(Written(photograph).raw(), qCompress(rows).mid(4).toStdString());
    expectLossless(photograph);

    // A drawing that was saved as a photograph is not.
    const QImage drawing = drawn(300, 200, [](int x, int y) { return qRgb(x / 40 * 30, y / 50 * 30, 90); });
    const QByteArray wasteful = pngOf(drawing.convertToFormat(QImage::Format_RGB32));
    EXPECT_EQ(Written(imageOf(wasteful)).form().substr(0, 7), "palette");
    EXPECT_LT(Written(imageOf(wasteful)).size(), size_t(wasteful.size()));
}

/// A column of grey levels, which is as long interlaced as it is plain. Each would come out wrong if its
/// samples were passed on.
TEST(PictureObjectTest, UnpacksWhatAReaderWouldTakeOtherwise) {
    constexpr int height = 64;
    const auto rowsOf = [](const std::vector<int>& order, int bytesPerLevel) {
        QByteArray rows;
        for (const int y : order)
            rows += '\0' + QByteArray(bytesPerLevel, char(y * 37));
        return rows;
    };
    std::vector<int> downwards(height);
    std::iota(downwards.begin(), downwards.end(), 0);
    std::vector<int> inPasses;
    for (const auto& [first, step] : {std::pair(0, 8), {4, 8}, {2, 4}, {1, 2}}) {
        for (int y = first; y < height; y += step)
            inPasses.push_back(y);
    }
    const QByteArray rows = rowsOf(downwards, 1);
    EXPECT_EQ(Written(imageOf(handmadePng(1, height, {8, 0, 0}, {}, rows))).raw(),
              qCompress(rows).mid(4).toStdString());

    const QByteArray gamma = pngChunk("gAMA", bigEndian(100000));
    const QByteArray transparentLevel = pngChunk("tRNS", QByteArray::fromHex("0025"));
    struct Source {
        const char* name;
        QByteArray png;
        QRgb secondRow;
    };
    const std::vector<Source> cases = {
        {"light is stated to be linear", handmadePng(1, height, {8, 0, 0}, gamma, rows), gray(106)},
        {"transparent", handmadePng(1, height, {8, 0, 0}, transparentLevel, rows), 0},
        {"interlaced", handmadePng(1, height, {8, 0, 1}, {}, rowsOf(inPasses, 1)), gray(37)},
        {"16 bits", handmadePng(1, height, {16, 0, 0}, {}, rowsOf(downwards, 2)), gray(37)},
        {"bytes beyond the rows", handmadePng(1, height, {8, 0, 0}, {}, rows + rows), gray(37)},
    };
    for (const auto& [name, png, secondRow] : cases) {
        const Image image = imageOf(png);
        EXPECT_EQ(image.pixels().pixel(0, 1), secondRow) << name;
        expectLossless(image);
    }
}

TEST(PictureObjectTest, TakesNoMoreRoomThanThePng) {
    const auto disc = [](int x, int y) {
        return qBound(0, 3000 - (x - 100) * (x - 100) - (y - 60) * (y - 60), 255);
    };
    const std::vector<std::pair<const char*, PixelAt>> pictures = {
        {"photograph", photo},
        {"photograph with alpha",
         [&](int x, int y) { return (photo(x, y) & RGB_MASK) | QRgb(disc(x, y)) << 24; }},
        {"gradient", [](int x, int y) { return qRgb(x, y, (x + y) / 2); }},
        {"smooth ink", [&](int x, int y) { return qRgba(20, 30, 110, disc(x, y)); }},
        {"scan", [](int x, int y) { return gray(240 + int(noise() % 8) - (x + y) % 30 * 5); }},
    };
    for (const auto& [name, pixelAt] : pictures) {
        const QByteArray png = pngOf(drawn(220, 120, pixelAt));
        EXPECT_LE(Written(imageOf(png)).size(), size_t(png.size())) << name;
    }
}
