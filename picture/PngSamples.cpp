#include "picture/PngSamples.h"

#include "base/PngChunks.h"
#include "picture/DeflateStream.h"

#include <QtEndian>

namespace vellmora {

namespace {

constexpr qsizetype headerSize = 13;

/// What is needed of a PNG's chunks.
struct PngContent {
    QByteArrayView header;
    QByteArrayView palette;
    std::string samples;
    bool isPlain = true;  ///< no chunk says that the samples are shown otherwise
};

quint32 numberAt(const char* bytes) {
    return qFromBigEndian<quint32>(bytes);
}

PngContent contentOf(const QByteArray& png) {
    PngContent content;
    visitPngChunks(png, [&](QByteArrayView type, QByteArrayView data) {
        if (type == "IHDR")
            content.header = data;
        else if (type == "PLTE")
            content.palette = data;
        else if (type == "IDAT")
            content.samples.append(data.data(), static_cast<size_t>(data.size()));
        else if (type == "tRNS" || type == "eXIf")
            content.isPlain = false;
    });
    return content;
}

std::optional<EncodedSamples::Colors> colorsOf(char colorType) {
    switch (colorType) {
        case 0:
            return EncodedSamples::Colors::gray;
        case 2:
            return EncodedSamples::Colors::rgb;
        case 3:
            return EncodedSamples::Colors::palette;
        default:
            return std::nullopt;  // with alpha
    }
}

size_t filteredSize(const EncodedSamples& samples) {
    const auto bitsPerRow = static_cast<size_t>(samples.width) * static_cast<size_t>(samples.bitsPerPixel());
    const size_t bytesPerRow = 1 + (bitsPerRow + 7) / 8;
    return bytesPerRow * static_cast<size_t>(samples.height);
}

}  // namespace

std::optional<EncodedSamples> samplesOfPng(const QByteArray& png) {
    PngContent content = contentOf(png);
    if (content.header.size() != headerSize || !content.isPlain)
        return std::nullopt;
    const char* header = content.header.data();
    const int bits = static_cast<uchar>(header[8]);
    const auto colors = colorsOf(header[9]);
    const bool isInterlaced = header[12] != 0;
    if (!colors || bits > 8 || isInterlaced)
        return std::nullopt;
    EncodedSamples samples{
        static_cast<int>(numberAt(header)), static_cast<int>(numberAt(header + 4)), *colors, bits, {}, true,
        std::move(content.samples)};
    if (*colors == EncodedSamples::Colors::palette)
        samples.palette.assign(content.palette.data(), static_cast<size_t>(content.palette.size()));
    if (!isZlibStreamOf(filteredSize(samples), samples.data))
        return std::nullopt;
    return samples;
}

}  // namespace vellmora
