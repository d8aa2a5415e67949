#include "editor/InteractiveStampView.h"

#include <optional>

#include <QKeyEvent>

namespace vellmora {

namespace {

constexpr double step = 1;       // points of the page
constexpr double longStep = 10;  // with Shift

/// Of an arrow key, as the page is seen, y upwards.
std::optional<Size> directionOf(int key) {
    switch (key) {
        case Qt::Key_Left:
            return Size{-1, 0};
        case Qt::Key_Right:
            return Size{1, 0};
        case Qt::Key_Up:
            return Size{0, 1};
        case Qt::Key_Down:
            return Size{0, -1};
        default:
            return std::nullopt;
    }
}

}  // namespace

/// Escape breaks a drag off even while the window has another use for it.
bool InteractiveStampView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && m_isDraggingInteractively &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void InteractiveStampView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_isDraggingInteractively)
        return cancelDrag();
    if (stepByKey(*event))
        return;
    if (event->key() != Qt::Key_Space || m_isSelectedStamp)
        return QWidget::keyPressEvent(event);
    if (onSelect)
        onSelect(m_stamp.id);
}

void InteractiveStampView::cancelDrag() {
    m_isDraggingInteractively = false;
    if (onDragCancelled)
        onDragCancelled(m_stamp.id);
}

/// An arrow key moves the stamp, with Ctrl it resizes it: to the right and up is larger.
bool InteractiveStampView::stepByKey(const QKeyEvent& event) {
    const std::optional<Size> direction = directionOf(event.key());
    if (!direction || (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)))
        return false;
    if (m_isDraggingInteractively || !onStep)
        return true;
    const double length = event.modifiers() & Qt::ShiftModifier ? longStep : step;
    const double across = direction->width * length;
    const double up = direction->height * length;
    if (event.modifiers() & Qt::ControlModifier)
        onStep(m_stamp.id, DragMode::resize, {across + up, 0});
    else
        onStep(m_stamp.id, DragMode::move, {across, up});
    return true;
}

void InteractiveStampView::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    update();
    if (onFocus && event->reason() != Qt::MouseFocusReason && !KeyboardFocus::isComingBack(*event))
        onFocus(m_stamp.id);
}

void InteractiveStampView::focusOutEvent(QFocusEvent* event) {
    m_keyboardFocus.focusOut(*event);
    update();
}

}  // namespace vellmora
