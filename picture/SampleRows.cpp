#include "picture/SampleRows.h"

#include <algorithm>
#include <optional>

namespace vellmora {

namespace {

const QRgb* pixelsOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// Packs `sampleOf` each pixel, the first one into the highest bits.
template <typename SampleOf>
void pack(const QRgb* pixels, int width, int bits, uchar* row, SampleOf sampleOf) {
    if (bits == 8) {
        std::transform(pixels, pixels + width, row, sampleOf);
        return;
    }
    const int perByte = 8 / bits;
    for (int x = 0; x < width; x += perByte) {
        const int count = std::min(perByte, width - x);
        int byte = 0;
        for (int i = 0; i < count; ++i)
            byte |= sampleOf(pixels[x + i]) << (8 - bits * (i + 1));
        *row++ = static_cast<uchar>(byte);
    }
}

template <typename SampleOf>
SampleRows packedRows(const QImage& image, int bits, SampleOf sampleOf) {
    return {image.width(), image.height(), 1, bits, [&image, bits, sampleOf](int y, uchar* row) {
                pack(pixelsOf(image, y), image.width(), bits, row, sampleOf);
            }};
}

}  // namespace

SampleRows rgbRows(const QImage& image) {
    return {image.width(), image.height(), 3, 8, [&image](int y, uchar* row) {
                const QRgb* pixels = pixelsOf(image, y);
                const int width = image.width();
                for (int x = 0; x < width; ++x, row += 3) {
                    row[0] = static_cast<uchar>(qRed(pixels[x]));
                    row[1] = static_cast<uchar>(qGreen(pixels[x]));
                    row[2] = static_cast<uchar>(qBlue(pixels[x]));
                }
            }};
}

SampleRows grayRows(const QImage& image, int bits) {
    return packedRows(image, bits,
                      [bits](QRgb pixel) { return static_cast<uchar>(qRed(pixel) >> (8 - bits)); });
}

SampleRows alphaRows(const QImage& image, int bits) {
    return packedRows(image, bits,
                      [bits](QRgb pixel) { return static_cast<uchar>(qAlpha(pixel) >> (8 - bits)); });
}

SampleRows paletteRows(const QImage& image, const Palette& palette, int bits) {
    // Drawings have long runs of one colour.
    return packedRows(image, bits,
                      [&palette, last = std::optional<QRgb>(), index = uchar()](QRgb pixel) mutable {
                          if (last != pixel)
                              index = palette.indexOf(pixel);
                          last = pixel;
                          return index;
                      });
}

}  // namespace vellmora
