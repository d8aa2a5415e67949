#include "ui/RoundedRect.h"

#include <algorithm>

#include <QtMath>

namespace vellmora {

namespace {

/// Whether the edges of whole view points are edges of pixels.
bool keepsWholePixels(const QTransform& transform) {
    const auto isWhole = [](double number) { return number == qRound(number); };
    return transform.type() <= QTransform::TxScale && isWhole(transform.m11()) && isWhole(transform.m22()) &&
           isWhole(transform.dx()) && isWhole(transform.dy());
}

}  // namespace

void paintInStrips(QPainter& painter, const QRect& area, int rows, const std::function<void()>& paint) {
    if (!keepsWholePixels(painter.deviceTransform()))
        return paint();
    const QRect shown = painter.hasClipping() ? area & painter.clipBoundingRect().toAlignedRect() : area;
    const int height = std::max(1, rows / qRound(painter.deviceTransform().m22()));
    for (int top = shown.top(); top <= shown.bottom(); top += height) {
        painter.save();
        painter.setClipRect(QRect(shown.left(), top, shown.width(), height) & shown, Qt::IntersectClip);
        paint();
        painter.restore();
    }
}

void fillRoundedRect(QPainter& painter, const QRect& rect, double radius, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const auto paint = [&] { painter.drawRoundedRect(rect, radius, radius); };
    const int corner = qCeil(radius);
    const QRect between = rect.adjusted(0, corner, 0, -corner);
    if (between.isEmpty() || !keepsWholePixels(painter.deviceTransform())) {
        paint();
    } else {
        paintInStrips(painter, QRect(rect.topLeft(), between.topRight() - QPoint(0, 1)), rowsOfCurves, paint);
        paintInStrips(painter, QRect(between.bottomLeft() + QPoint(0, 1), rect.bottomRight()), rowsOfCurves,
                      paint);
        painter.setRenderHint(QPainter::Antialiasing, false);
        paintInStrips(painter, between, rowsOfPictures, [&] { painter.drawRect(between); });
    }
    painter.restore();
}

}  // namespace vellmora
