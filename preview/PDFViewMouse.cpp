#include "preview/PDFView.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>

namespace vellmora {

namespace {

constexpr int wheelNotch = 120;       // Qt's unit: eighths of a degree
constexpr double notchDistance = 60;  // view points that a notch of the wheel scrolls

}  // namespace

/// One page for each notch, and never more than one for one event.
void PDFView::wheelTurn(int angle) {
    if ((angle > 0) != (m_wheelTravel > 0))
        m_wheelTravel = 0;
    m_wheelTravel += angle;
    if (std::abs(m_wheelTravel) < wheelNotch)
        return;
    const int direction = m_wheelTravel > 0 ? -1 : 1;
    m_wheelTravel = 0;
    turnPage(direction);
}

void PDFView::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (!m_currentPage)
        return;
    const QPoint angle = event->angleDelta();
    if (event->modifiers() & Qt::ControlModifier) {
        zoom(std::pow(zoomStep, double(angle.y()) / wheelNotch), fromQt(event->position(), height()));
        return;
    }
    const QPointF distance = event->pixelDelta().isNull() ? QPointF(angle) * (notchDistance / wheelNotch)
                                                          : QPointF(event->pixelDelta());
    if (event->modifiers() & Qt::ShiftModifier) {
        scrollBy(distance.x() + distance.y(), 0);
        return;
    }
    // The wheel turned away from the user moves the page down, which is a negative offset upwards.
    if (scrollBy(distance.x(), -distance.y()))
        m_wheelTravel = 0;
    else if (angle.y() != 0)
        wheelTurn(angle.y());
}

bool PDFView::event(QEvent* event) {
    if (event->type() == QEvent::NativeGesture) {
        const auto& gesture = *static_cast<QNativeGestureEvent*>(event);
        if (gesture.gestureType() == Qt::ZoomNativeGesture) {
            zoom(1 + gesture.value(), fromQt(gesture.position(), height()));
            return true;
        }
    }
    return QWidget::event(event);
}

/// A hand, where the page can be dragged.
void PDFView::updateCursor() {
    const Qt::CursorShape shape = !canScroll()     ? Qt::ArrowCursor
                                  : m_panningMouse ? Qt::ClosedHandCursor
                                                   : Qt::OpenHandCursor;
    if (cursor().shape() != shape)
        setCursor(shape);
}

void PDFView::endPanning() {
    m_panningMouse.reset();
    updateCursor();
}

/// The mouse-up is lost where a dialog opens meanwhile. The mouse cannot come in while it drags the page.
void PDFView::enterEvent(QEnterEvent*) {
    endPanning();
}

void PDFView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !canScroll())
        return QWidget::mousePressEvent(event);
    m_panningMouse = fromQt(event->position(), height());
    updateCursor();
}

void PDFView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_panningMouse)
        return QWidget::mouseMoveEvent(event);
    const Point mouse = fromQt(event->position(), height());
    const Point before = *std::exchange(m_panningMouse, mouse);
    scrollBy(mouse.x - before.x, mouse.y - before.y);
}

void PDFView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_panningMouse)
        return QWidget::mouseReleaseEvent(event);
    endPanning();
}

}  // namespace vellmora
