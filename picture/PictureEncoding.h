#pragma once

#include "base/Image.h"

#include <optional>
#include <string>

namespace vellmora {

/// The samples of one image object as they stand in the file: rows from the top, each padded to whole bytes,
/// zlib-compressed.
struct EncodedSamples {
    enum class Colors { gray, rgb, palette };

    int width = 0;
    int height = 0;
    Colors colors = Colors::gray;
    int bitsPerComponent = 8;
    std::string palette;        ///< three bytes for each colour; empty unless `colors` says so
    bool hasPredictor = false;  ///< each row begins with the number of its PNG filter
    std::string data;

    int components() const { return colors == Colors::rgb ? 3 : 1; }
    int bitsPerPixel() const { return components() * bitsPerComponent; }
};

/// A picture's colours and, where a pixel is transparent, its straight alpha.
struct EncodedPicture {
    EncodedSamples colors;
    std::optional<EncodedSamples> alpha;
};

/// The picture's pixels in sRGB or grey without any loss, in the fewest bits that hold them.
EncodedPicture encodePicture(const Image& image);

}  // namespace vellmora
