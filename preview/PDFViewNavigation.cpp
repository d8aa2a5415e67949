#include "preview/PDFView.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QNativeGestureEvent>
#include <QWheelEvent>

namespace vellmora {

namespace {

constexpr int wheelNotch = 120;       // Qt's unit: eighths of a degree
constexpr double notchDistance = 60;  // view points that a notch of the wheel scrolls
constexpr double arrowDistance = 40;  // view points that an arrow key scrolls
constexpr double pageOverlap = 40;    // view points that stay in sight when a view's height is scrolled
constexpr double zoomStep = 1.25;     // of a menu command, and of a notch of the wheel

constexpr double farAway = std::numeric_limits<double>::max();

}  // namespace

bool PDFView::turnPage(int direction) {
    if (!m_currentPage || !m_document->page(*m_currentPage + direction))
        return false;
    goTo(*m_currentPage + direction);
    // Backwards, a page is come upon from its end.
    if (direction < 0 && !m_autoScales)
        setScrollOffset({m_offset.x, farAway});
    return true;
}

/// Moves the page within the view; false where it lies at that edge already.
bool PDFView::scrollBy(double dx, double dy) {
    const Point before = m_offset;
    setScrollOffset({m_offset.x + dx, m_offset.y + dy});
    return !(m_offset == before);
}

void PDFView::scrollOrTurn(double dy) {
    if (!scrollBy(0, dy))
        turnPage(dy > 0 ? 1 : -1);
}

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

void PDFView::keyPressEvent(QKeyEvent* event) {
    const double viewHeight = std::max(height() - pageOverlap, arrowDistance);
    const bool isBackwards = event->modifiers() & Qt::ShiftModifier;
    if (!m_currentPage)
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
        case Qt::Key_PageDown:
            return scrollOrTurn(viewHeight);
        case Qt::Key_PageUp:
            return scrollOrTurn(-viewHeight);
        case Qt::Key_Space:
            return scrollOrTurn(isBackwards ? -viewHeight : viewHeight);
        case Qt::Key_Down:
            return scrollOrTurn(arrowDistance);
        case Qt::Key_Up:
            return scrollOrTurn(-arrowDistance);
        case Qt::Key_Right:
            if (!scrollBy(-arrowDistance, 0))
                turnPage(1);
            return;
        case Qt::Key_Left:
            if (!scrollBy(arrowDistance, 0))
                turnPage(-1);
            return;
        case Qt::Key_Home:
            return goTo(0);
        case Qt::Key_End:
            return goTo(m_document->pageCount() - 1);
        case Qt::Key_F10:
            // With Shift, what the menu key does: Qt leaves it to the program on this platform.
            if (event->modifiers() & Qt::ShiftModifier)
                return showMenu(mapToGlobal(rect().center()));
            break;
        default:
            break;
    }
    QWidget::keyPressEvent(event);
}

void PDFView::contextMenuEvent(QContextMenuEvent* event) {
    if (m_currentPage)
        showMenu(event->globalPos());
}

void PDFView::showMenu(const QPoint& globalPosition) {
    QMenu menu(this);
    menu.setAccessibleName(accessibleName());
    QAction* fit = menu.addAction(QStringLiteral("Einpassen"), this, [this] { setAutoScales(true); });
    fit->setEnabled(!m_autoScales);
    menu.addAction(QStringLiteral("Größer"), this, [this] { zoom(zoomStep, centre()); });
    menu.addAction(QStringLiteral("Kleiner"), this, [this] { zoom(1 / zoomStep, centre()); });
    menu.addSeparator();
    QAction* next = menu.addAction(QStringLiteral("Nächste Seite"), this, [this] { turnPage(1); });
    next->setEnabled(m_document->page(*m_currentPage + 1).has_value());
    QAction* previous = menu.addAction(QStringLiteral("Vorherige Seite"), this, [this] { turnPage(-1); });
    previous->setEnabled(*m_currentPage > 0);
    menu.exec(globalPosition);
}

}  // namespace vellmora
