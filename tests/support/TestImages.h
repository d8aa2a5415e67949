#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>

namespace vellmora::test {

/// One colour all over.
QImage plainImage(int width, int height, const QColor& color);
QByteArray pngOf(const QImage& image);
QByteArray plainPng(int width, int height, const QColor& color);

/// Colours of two pixels are alike up to the rounding of a renderer.
bool isClose(const QColor& a, const QColor& b, int tolerance = 12);

}  // namespace vellmora::test
