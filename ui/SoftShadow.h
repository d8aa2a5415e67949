#pragma once

#include <QColor>
#include <QPainter>
#include <QPixmap>

namespace vellmora {

/// The blurred shadow of a rounded rectangle. Its corners are drawn once and kept; its sides are stretched.
class SoftShadow {
public:
    /// Lengths in view points.
    struct Style {
        double cornerRadius = 0;
        double blurRadius = 0;  ///< twice the standard deviation of the blur
        QColor color;
    };

    explicit SoftShadow(const Style& style) : m_style(style) {}

    /// The shadow that lies exactly beneath `shape`.
    void paint(QPainter& painter, const QRectF& shape);

private:
    Style m_style;
    QPixmap m_pixmap;  ///< of a rectangle that is as small as its corners allow
};

}  // namespace vellmora
