#include "platform/pdf/PictureObject.h"

#include <string>
#include <utility>

#include <zlib.h>

namespace vellmora {

namespace {

std::string deflated(const std::string& bytes) {
    uLongf size = ::compressBound(bytes.size());
    std::string result(size, '\0');
    ::compress2(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                bytes.size(), Z_DEFAULT_COMPRESSION);
    result.resize(size);
    return result;
}

QPDFObjectHandle makeSampleObject(QPDF& output, const QImage& pixels, const char* colorSpace,
                                  const std::string& samples) {
    QPDFObjectHandle object = output.newStream();
    object.replaceStreamData(deflated(samples), QPDFObjectHandle::newName("/FlateDecode"),
                             QPDFObjectHandle::newNull());
    QPDFObjectHandle dictionary = object.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Image"));
    dictionary.replaceKey("/Width", QPDFObjectHandle::newInteger(pixels.width()));
    dictionary.replaceKey("/Height", QPDFObjectHandle::newInteger(pixels.height()));
    dictionary.replaceKey("/ColorSpace", QPDFObjectHandle::newName(colorSpace));
    dictionary.replaceKey("/BitsPerComponent", QPDFObjectHandle::newInteger(8));
    return object;
}

size_t pixelCount(const QImage& pixels) {
    return static_cast<size_t>(pixels.width()) * static_cast<size_t>(pixels.height());
}

/// Bytes `first` … `first + count − 1` of each four-byte RGBA pixel.
std::string samplesOf(const QImage& rgba, int first, size_t count) {
    std::string samples;
    samples.reserve(pixelCount(rgba) * count);
    for (int y = 0; y < rgba.height(); ++y) {
        const char* pixel = reinterpret_cast<const char*>(rgba.constScanLine(y)) + first;
        for (int x = 0; x < rgba.width(); ++x, pixel += 4)
            samples.append(pixel, count);
    }
    return samples;
}

bool isOpaque(const std::string& alpha) {
    return alpha.find_first_not_of('\xff') == std::string::npos;
}

}  // namespace

QPDFObjectHandle makePictureObject(QPDF& output, const QImage& pixels) {
    const QImage rgba = pixels.convertToFormat(QImage::Format_RGBA8888);
    const bool isGray = pixels.allGray();
    QPDFObjectHandle picture = makeSampleObject(output, rgba, isGray ? "/DeviceGray" : "/DeviceRGB",
                                                samplesOf(rgba, 0, isGray ? 1 : 3));
    if (pixels.hasAlphaChannel()) {
        const std::string alpha = samplesOf(rgba, 3, 1);
        if (!isOpaque(alpha))
            picture.getDict().replaceKey("/SMask", makeSampleObject(output, rgba, "/DeviceGray", alpha));
    }
    return picture;
}

}  // namespace vellmora
