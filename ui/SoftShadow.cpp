#include "ui/SoftShadow.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QImage>

namespace vellmora {

namespace {

/// Three means, one after the other, are close to a Gaussian blur.
constexpr int passes = 3;

/// A mean over 2r + 1 pixels has the variance ((2r + 1)² − 1) / 12. This is the r for a standard deviation.
int meanRadius(double deviation) {
    const double width = std::sqrt(12 * deviation * deviation / passes + 1);
    return static_cast<int>(std::lround((width - 1) / 2));
}

/// Replaces each value by the mean of those up to `radius` before and after it. Beyond both ends is nothing.
void takeMeans(std::vector<int>& values, int radius) {
    const std::vector<int> before = values;
    const auto at = [&](int i) { return i >= 0 && i < int(before.size()) ? before[size_t(i)] : 0; };
    int sum = 0;
    for (int i = -radius; i < radius; ++i)
        sum += at(i);
    for (int i = 0; i < int(values.size()); ++i) {
        sum += at(i + radius);
        values[size_t(i)] = sum / (2 * radius + 1);
        sum -= at(i - radius);
    }
}

/// `count` values, `step` bytes apart. They are summed up finer than a byte holds them.
void blurLine(uchar* line, int count, qsizetype step, int radius) {
    constexpr int fineness = 256;
    std::vector<int> values;
    values.reserve(size_t(count));
    for (int i = 0; i < count; ++i)
        values.push_back(line[i * step] * fineness);
    for (int pass = 0; pass < passes; ++pass)
        takeMeans(values, radius);
    for (int i = 0; i < count; ++i)
        line[i * step] = static_cast<uchar>((values[size_t(i)] + fineness / 2) / fineness);
}

void blur(QImage& opacity, int radius) {
    for (int y = 0; y < opacity.height(); ++y)
        blurLine(opacity.scanLine(y), opacity.width(), 1, radius);
    for (int x = 0; x < opacity.width(); ++x)
        blurLine(opacity.bits() + x, opacity.height(), opacity.bytesPerLine(), radius);
}

/// The color, as opaque at each pixel as the image and the color say together.
QImage colored(const QImage& opacity, const QColor& color) {
    QImage result(opacity.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(color);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, opacity);
    return result;
}

}  // namespace

void SoftShadow::paint(QPainter& painter, const QRectF& shape) {
    const double ratio = painter.device()->devicePixelRatioF();
    const int radius = meanRadius(m_style.blurRadius / 2 * ratio);
    const int reach = passes * radius;
    const QSize inner = (shape.size() * ratio).toSize();
    const QSize size = inner + 2 * QSize(reach, reach);
    if (m_pixmap.size() != size) {
        QImage opacity(size, QImage::Format_Alpha8);
        opacity.fill(Qt::transparent);
        QPainter shapePainter(&opacity);
        shapePainter.setRenderHint(QPainter::Antialiasing);
        shapePainter.setPen(Qt::NoPen);
        shapePainter.setBrush(Qt::black);
        shapePainter.drawRoundedRect(QRect(QPoint(reach, reach), inner), m_style.cornerRadius * ratio,
                                     m_style.cornerRadius * ratio);
        shapePainter.end();
        blur(opacity, radius);
        m_pixmap = QPixmap::fromImage(colored(opacity, m_style.color));
    }
    const double margin = reach / ratio;
    painter.drawPixmap(shape.adjusted(-margin, -margin, margin, margin), m_pixmap, QRectF(m_pixmap.rect()));
}

}  // namespace vellmora
