#pragma once

#include "picture/PictureColors.h"

#include <functional>

#include <QImage>

namespace vellmora {

/// Rows of samples, packed as in a file, taken from a picture when they are asked for. Valid as long as the
/// picture (RGB32 or ARGB32) and its palette; may be read on several threads.
struct SampleRows {
    int width = 0;
    int height = 0;
    int components = 1;
    int bitsPerComponent = 8;
    std::function<void(int y, uchar* row)> copyRow;

    int bitsPerPixel() const { return components * bitsPerComponent; }
    size_t bytesPerRow() const {
        return (static_cast<size_t>(width) * static_cast<size_t>(bitsPerPixel()) + 7) / 8;
    }
};

SampleRows rgbRows(const QImage& image);
SampleRows grayRows(const QImage& image, int bits);
SampleRows alphaRows(const QImage& image, int bits);
SampleRows paletteRows(const QImage& image, const Palette& palette, int bits);

}  // namespace vellmora
