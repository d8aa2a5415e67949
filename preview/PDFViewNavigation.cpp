#include "preview/PDFView.h"

#include <algorithm>
#include <limits>

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

namespace vellmora {

namespace {

constexpr double arrowDistance = 40;  // view points that an arrow key scrolls
constexpr double pageOverlap = 40;    // view points that stay in sight when a view's height is scrolled

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

/// By how much a stretch of a view of this length must move to be seen. What is longer than the view moves
/// only until it fills the view.
static double wayIntoSight(double start, double length, double viewLength) {
    const double toStart = -start;
    const double toEnd = viewLength - (start + length);
    return std::clamp(0.0, std::min(toStart, toEnd), std::max(toStart, toEnd));
}

void PDFView::scrollIntoSight(const Rect& viewRect) {
    const double dx = wayIntoSight(viewRect.x, viewRect.width, width());
    const double dy = wayIntoSight(viewRect.y, viewRect.height, height());
    if (dx != 0 || dy != 0)
        scrollBy(dx, dy);
}

void PDFView::scrollOrTurn(double dy) {
    if (!scrollBy(0, dy))
        turnPage(dy > 0 ? 1 : -1);
}

bool PDFView::zoomByKey(int key) {
    switch (key) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:  // the same key on many keyboards, without Shift
            zoom(zoomStep, centre());
            return true;
        case Qt::Key_Minus:
            zoom(1 / zoomStep, centre());
            return true;
        case Qt::Key_0:
            setAutoScales(true);
            return true;
        default:
            return false;
    }
}

void PDFView::keyPressEvent(QKeyEvent* event) {
    const double viewHeight = std::max(height() - pageOverlap, arrowDistance);
    const bool isBackwards = event->modifiers() & Qt::ShiftModifier;
    if (!m_currentPage)
        return QWidget::keyPressEvent(event);
    if ((event->modifiers() & Qt::ControlModifier) && zoomByKey(event->key()))
        return;
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
