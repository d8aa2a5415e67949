#include "picture/PictureEncoding.h"

#include "picture/PictureColors.h"
#include "picture/PngSamples.h"
#include "picture/SampleCompression.h"
#include "picture/SampleRows.h"

#include <future>
#include <utility>

namespace vellmora {

namespace {

using Colors = EncodedSamples::Colors;

/// Rows in the fewest bits, not compressed yet.
struct Form {
    Colors colors;
    SampleRows rows;
};

Form smallestForm(const QImage& pixels, const PictureColors& colors) {
    const int paletteBits = colors.paletteBits();
    if (colors.isGray && (!colors.hasPalette || colors.grayBits <= paletteBits))
        return {Colors::gray, grayRows(pixels, colors.grayBits)};
    if (colors.hasPalette)
        return {Colors::palette, paletteRows(pixels, colors.palette, paletteBits)};
    return {Colors::rgb, rgbRows(pixels)};
}

EncodedSamples encode(const Form& form) {
    const SampleRows& rows = form.rows;
    CompressedRows compressed = compress(rows);
    return {rows.width,
            rows.height,
            form.colors,
            rows.bitsPerComponent,
            {},
            compressed.hasPredictor,
            std::move(compressed.data)};
}

/// The source's own compression where it is as good: it took its time, and nothing is done twice.
///
/// Colours under full transparency are kept as well: a renderer that smooths the picture mixes them with
/// their neighbours.
EncodedSamples encodeColors(const Image& image, const QImage& pixels, const PictureColors& colors) {
    const Form form = smallestForm(pixels, colors);
    auto source = samplesOfPng(image.unconvertedPng());
    if (source && source->bitsPerPixel() <= form.rows.bitsPerPixel())
        return std::move(*source);
    EncodedSamples encoded = encode(form);
    if (source && source->data.size() <= encoded.data.size())
        return std::move(*source);
    if (form.colors == Colors::palette)
        encoded.palette = colors.palette.bytes();
    return encoded;
}

}  // namespace

EncodedPicture encodePicture(const Image& image) {
    const bool hasAlpha = image.pixels().hasAlphaChannel();
    const QImage pixels =
        image.pixels().convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const PictureColors colors = PictureColors::of(pixels);
    if (colors.isOpaque)
        return {encodeColors(image, pixels, colors), std::nullopt};
    auto alpha = std::async([&] { return encode({Colors::gray, alphaRows(pixels, colors.alphaBits)}); });
    EncodedSamples encoded = encodeColors(image, pixels, colors);
    return {std::move(encoded), alpha.get()};
}

}  // namespace vellmora
