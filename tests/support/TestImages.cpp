#include "tests/support/TestImages.h"

#include <cstdlib>

#include <QBuffer>

namespace vellmora::test {

QImage plainImage(int width, int height, const QColor& color) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QByteArray pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray plainPng(int width, int height, const QColor& color) {
    return pngOf(plainImage(width, height, color));
}

bool isClose(const QColor& a, const QColor& b, int tolerance) {
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

}  // namespace vellmora::test
