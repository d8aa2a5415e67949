#include "base/Image.h"

#include "base/Error.h"
#include "base/Files.h"
#include "base/LimitedDevice.h"
#include "base/PngChunks.h"

#include <algorithm>
#include <utility>

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QImageWriter>

namespace vellmora {

namespace {

/// Fax scans have up to twice (standard mode) or four times (with halved lines) as many dots across as down.
constexpr double maxPixelStretch = 4;

constexpr int bytesPerPixel = 4;

/// Qt's measure of how little time the lossless compression takes: stands for the fastest level of
/// zlib.
constexpr int fastQuality = 85;

/// A few bytes may stand for much work: a scan of a JPEG takes as little as ten, and touches the whole
/// picture.
constexpr qint64 jpegPortion = 512;

const QByteArray pngFormat = QByteArrayLiteral("png");
const QByteArray jpegFormat = QByteArrayLiteral("jpeg");

QByteArray detectFormat(const QByteArray& data) {
    if (data.startsWith(QByteArrayView("\x89PNG\r\n\x1a\n")))
        return pngFormat;
    if (data.startsWith(QByteArrayView("\xff\xd8\xff")))
        return jpegFormat;
    return {};
}

QImage decode(const QByteArray& data, const QByteArray& format, std::chrono::nanoseconds longest) {
    // Qt's PNG decoder must get all that it asks for.
    LimitedDevice device(data, longest, format == jpegFormat ? jpegPortion : data.size());
    QImageReader reader(&device, format);
    QImageReader::setAllocationLimit(Image::maxDecodedMegabytes);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    // Checked for all depths alike, since a picture of one bit a pixel grows when it is unpacked.
    const QSize size = reader.size();
    if (qint64(size.width()) * size.height() * bytesPerPixel > qint64(Image::maxDecodedMegabytes) << 20)
        return {};
    QImage image = reader.read();
    return device.isTimeOver() ? QImage() : image;
}

/// The decoder makes room for what a chunk claims to hold before it reads any of it, and unpacks all that it
/// finds.
QByteArray decodable(const QByteArray& data, const QByteArray& format) {
    return format == pngFormat ? pictureChunks(data) : data;
}

/// Pixels that hold their own colour: a picture with a palette cannot be scaled smoothly.
QImage unpacked(const QImage& image) {
    if (image.depth() > 8 || image.format() == QImage::Format_Grayscale8)
        return image;
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

bool isInSRGB(const QImage& image) {
    return !image.colorSpace().isValid() || image.colorSpace() == QColorSpace(QColorSpace::SRgb);
}

}  // namespace

Image::Image(QImage pixels) : m_pixels(std::move(pixels)) {}

std::optional<Image> Image::fromData(const QByteArray& data, std::chrono::nanoseconds longest) {
    const QByteArray format = detectFormat(data);
    const QByteArray bytes = decodable(data, format);
    if (format.isEmpty() || bytes.isEmpty())
        return std::nullopt;
    Image image(unpacked(decode(bytes, format, longest)));
    if (image.m_pixels.isNull())
        return std::nullopt;
    if (format == pngFormat)
        image.m_png = data;
    image.m_isConverted = !isInSRGB(image.m_pixels);
    if (image.m_isConverted)
        image.m_pixels.convertToColorSpace(QColorSpace::SRgb);
    return image;
}

std::optional<Image> Image::fromFile(const QString& path) {
    try {
        return fromData(files::read(path, maxFileSize));
    } catch (const Error&) {
        return std::nullopt;
    }
}

Size Image::size() const {
    const double width = m_pixels.width();
    const double height = m_pixels.height();
    const double stretch = double(m_pixels.dotsPerMeterX()) / std::max(m_pixels.dotsPerMeterY(), 1);
    const bool isPlausible = stretch >= 1 / maxPixelStretch && stretch <= maxPixelStretch;
    return {width, isPlausible ? height * stretch : height};
}

QByteArray Image::pngRepresentation() const {
    if (!m_png.isEmpty())
        return m_png;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, pngFormat);
    writer.setQuality(fastQuality);
    if (!writer.write(m_pixels))
        return {};
    return bytes;
}

}  // namespace vellmora
