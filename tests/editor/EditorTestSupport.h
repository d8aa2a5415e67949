#pragma once

#include "library/StampItem.h"
#include "tests/support/TestImages.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace vellmora::test {

inline StampItem stampAt(const Rect& rect, qsizetype page = 0) {
    StampItem stamp;
    stamp.pageIndex = page;
    stamp.rect = rect;
    stamp.aspectRatio = rect.width / rect.height;
    stamp.imageData = plainPng(40, 20, Qt::red);
    return stamp;
}

/// Sends a mouse event as the window system would, at a point of the widget (y downwards).
inline void sendMouse(QWidget& widget, QEvent::Type type, QPointF point,
                      Qt::MouseButton button = Qt::LeftButton) {
    const bool isMove = type == QEvent::MouseMove;
    const bool isRelease = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, point, widget.mapTo(widget.window(), point), widget.mapToGlobal(point),
                      isMove ? Qt::NoButton : button, isRelease ? Qt::NoButton : button, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/// Presses at `from`, moves by (dx, dy) view points, y upwards, in one step, and lets go.
inline void drag(QWidget& widget, QPointF from, double dx, double dy) {
    const QPointF toGlobal = widget.mapToGlobal(from) + QPointF(dx, -dy);
    sendMouse(widget, QEvent::MouseButtonPress, from);
    sendMouse(widget, QEvent::MouseMove, widget.mapFromGlobal(toGlobal));
    sendMouse(widget, QEvent::MouseButtonRelease, widget.mapFromGlobal(toGlobal));
}

}  // namespace vellmora::test
