#include "ui/SoftShadow.h"

#include "ui/RoundedRect.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QImage>
#include <QtMath>
#include <qdrawutil.h>

namespace vellmora {

namespace {

/// Three means, one after the other, are close to a Gaussian blur.
constexpr int passes = 3;

/// A mean over 2r + 1 pixels has the variance ((2r + 1)² − 1) / 12. This is the r for a standard deviation.
int meanRadius(double deviation) {
    const double width = std::sqrt(12 * deviation * deviation / passes + 1);
    return static_cast<int>(std::lround((width - 1) / 2));
}

/// The first half of values that are the same from both ends, with the one in the middle.
int halfOf(int count) {
    return (count + 1) / 2;
}

/// Replaces each of `count` values by the mean of those up to `radius` before and after it. Beyond both ends
/// is nothing. They are the same from both ends, and the first half of them is given.
void takeMeans(std::vector<int>& values, int count, int radius) {
    const std::vector<int> before = values;
    const auto at = [&](int i) {
        return i < 0 || i >= count ? 0 : before[size_t(std::min(i, count - 1 - i))];
    };
    int sum = 0;
    for (int i = -radius; i < radius; ++i)
        sum += at(i);
    for (int i = 0; i < int(values.size()); ++i) {
        sum += at(i + radius);
        values[size_t(i)] = sum / (2 * radius + 1);
        sum -= at(i - radius);
    }
}

/// The first half of `count` values, `step` bytes apart. They are summed up finer than a byte holds them.
void blurLine(uchar* line, int count, qsizetype step, int radius) {
    constexpr int fineness = 256;
    std::vector<int> values(size_t(halfOf(count)));
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = line[qsizetype(i) * step] * fineness;
    for (int pass = 0; pass < passes; ++pass)
        takeMeans(values, count, radius);
    for (size_t i = 0; i < values.size(); ++i)
        line[qsizetype(i) * step] = static_cast<uchar>((values[i] + fineness / 2) / fineness);
}

/// What is the same from all sides is computed for a quarter, and copied.
void blur(QImage& opacity, int radius) {
    const int width = opacity.width();
    const int height = opacity.height();
    for (int y = 0; y < halfOf(height); ++y)
        blurLine(opacity.scanLine(y), width, 1, radius);
    for (int x = 0; x < halfOf(width); ++x)
        blurLine(opacity.bits() + x, height, opacity.bytesPerLine(), radius);
    for (int y = 0; y < halfOf(height); ++y) {
        uchar* line = opacity.scanLine(y);
        std::reverse_copy(line, line + width / 2, line + halfOf(width));
        std::copy(line, line + width, opacity.scanLine(height - 1 - y));
    }
}

/// How opaque the shadow is of a rounded rectangle that has `margin` pixels around it.
QImage shadow(const QSize& size, int margin, double cornerRadius, int blurRadius) {
    QImage opacity(size, QImage::Format_Alpha8);
    opacity.fill(Qt::transparent);
    QPainter painter(&opacity);
    fillRoundedRect(painter, opacity.rect().adjusted(margin, margin, -margin, -margin), cornerRadius,
                    Qt::black);
    painter.end();
    blur(opacity, blurRadius);
    return opacity;
}

/// The color, as opaque at each pixel as the image and the color say together.
QImage colored(const QImage& opacity, const QColor& color) {
    QImage result(opacity.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(color);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    paintInStrips(painter, result.rect(), rowsOfPictures, [&] { painter.drawImage(0, 0, opacity); });
    return result;
}

}  // namespace

void SoftShadow::paint(QPainter& painter, const QRectF& shape) {
    const double ratio = painter.device()->devicePixelRatioF();
    const int radius = meanRadius(m_style.blurRadius / 2 * ratio);
    const int reach = passes * radius;
    const QSize whole = (shape.size() * ratio).toSize() + 2 * QSize(reach, reach);
    const int corner = qCeil(m_style.cornerRadius * ratio) + 2 * reach;
    const QSize size = whole.boundedTo(QSize(2 * corner + 1, 2 * corner + 1));
    if (m_pixmap.size() != size)
        m_pixmap = QPixmap::fromImage(
            colored(shadow(size, reach, m_style.cornerRadius * ratio, radius), m_style.color));
    const int left = (size.width() - 1) / 2;
    const int top = (size.height() - 1) / 2;
    const QMargins corners(left, top, size.width() - 1 - left, size.height() - 1 - top);
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    const QRect target((shape.topLeft() * ratio).toPoint() - QPoint(reach, reach), whole);
    paintInStrips(painter, target, rowsOfPictures,
                  [&] { qDrawBorderPixmap(&painter, target, corners, m_pixmap, m_pixmap.rect(), corners); });
    painter.restore();
}

}  // namespace vellmora
