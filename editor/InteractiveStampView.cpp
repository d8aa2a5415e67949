#include "editor/InteractiveStampView.h"

#include "base/SystemColors.h"
#include "editor/StampGeometry.h"

#include <utility>

#include <QMouseEvent>
#include <QPainter>

namespace vellmora {

namespace {

constexpr double borderInset = 0.5;
constexpr double selectedBorderWidth = 2;
constexpr double borderWidth = 1;
constexpr double handleCornerRadius = 3;
constexpr double focusInset = 3;
constexpr float borderAlpha = 0.75F;
constexpr float handleAlpha = 0.9F;

QColor white(float alpha) {
    QColor color(Qt::white);
    color.setAlphaF(alpha);
    return color;
}

/// A line along the rectangle, painted as four bars. Qt would cut an outline in one piece up, hand the parts
/// to other threads and wait for them, for each stamp at each step of a drag.
void fillOutline(QPainter& painter, const QRectF& rect, double lineWidth, const QColor& color) {
    const double half = lineWidth / 2;
    const QRectF outer = rect.adjusted(-half, -half, half, half);
    const QRectF inner = rect.adjusted(half, half, -half, -half);
    painter.fillRect(QRectF(outer.topLeft(), QSizeF(outer.width(), lineWidth)), color);
    painter.fillRect(QRectF(outer.left(), inner.bottom(), outer.width(), lineWidth), color);
    painter.fillRect(QRectF(outer.left(), inner.top(), lineWidth, inner.height()), color);
    painter.fillRect(QRectF(inner.right(), inner.top(), lineWidth, inner.height()), color);
}

}  // namespace

InteractiveStampView::InteractiveStampView(StampItem stamp, StampPictures& pictures, QWidget* overlay)
    : QWidget(overlay), m_pictures(pictures), m_stamp(std::move(stamp)) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void InteractiveStampView::setStamp(const StampItem& stamp) {
    const bool hasOtherPicture = m_stamp.imageData.constData() != stamp.imageData.constData();
    m_stamp = stamp;
    if (!hasOtherPicture)
        return;
    m_picture.reset();
    update();
}

void InteractiveStampView::setSelectedStamp(bool isSelected) {
    if (m_isSelectedStamp == isSelected)
        return;
    m_isSelectedStamp = isSelected;
    update();
}

void InteractiveStampView::setFrame(const Rect& frame) {
    const QRect covered = toQt(integral(frame), parentWidget()->height()).toRect();
    if (frame == m_frame && covered == geometry())
        return;
    m_frame = frame;
    setGeometry(covered);
    update();
}

Rect InteractiveStampView::overlayBounds() const {
    return {0, 0, double(parentWidget()->width()), double(parentWidget()->height())};
}

Point InteractiveStampView::pointInOverlay(const QSinglePointEvent& event) const {
    return fromQt(parentWidget()->mapFromGlobal(event.globalPosition()), parentWidget()->height());
}

Point InteractiveStampView::pointInBounds(const QSinglePointEvent& event) const {
    const Point point = pointInOverlay(event);
    return {point.x - m_frame.x, point.y - m_frame.y};
}

bool InteractiveStampView::isOnHandle(Point point) const {
    return stampgeometry::resizeHandleRect(bounds()).contains(point);
}

void InteractiveStampView::updateCursor(Point point) {
    setCursor(isOnHandle(point) ? Qt::CrossCursor : Qt::OpenHandCursor);
}

void InteractiveStampView::enterEvent(QEnterEvent* event) {
    updateCursor(pointInBounds(*event));
}

void InteractiveStampView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    setFocus(Qt::MouseFocusReason);
    if (onSelect)
        onSelect(m_stamp.id);
    m_dragMode = isOnHandle(pointInBounds(*event)) ? DragMode::resize : DragMode::move;
    m_initialMouseLocationInSuperview = pointInOverlay(*event);
    m_initialFrame = m_frame;
    m_isDraggingInteractively = true;
}

Rect InteractiveStampView::proposedFrame(Point mouse) const {
    const double dx = mouse.x - m_initialMouseLocationInSuperview.x;
    const double dy = mouse.y - m_initialMouseLocationInSuperview.y;
    if (m_dragMode == DragMode::move)
        return m_initialFrame.translated(dx, dy);
    return stampgeometry::resizedFrame(m_initialFrame, dx, m_stamp.aspectRatio);
}

void InteractiveStampView::mouseMoveEvent(QMouseEvent* event) {
    // The mouse-up is lost where a dialog opens during a drag.
    if (!event->buttons().testFlag(Qt::LeftButton))
        m_isDraggingInteractively = false;
    if (!m_isDraggingInteractively) {
        updateCursor(pointInBounds(*event));
        return;
    }
    setFrame(stampgeometry::constrainedFrame(proposedFrame(pointInOverlay(*event)), overlayBounds(),
                                             m_stamp.aspectRatio));
    reportFrame();
}

void InteractiveStampView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_isDraggingInteractively)
        return QWidget::mouseReleaseEvent(event);
    m_isDraggingInteractively = false;
    reportFrame();
}

void InteractiveStampView::reportFrame() {
    if (onFrameChanged)
        onFrameChanged(m_stamp.id, m_frame);
}

void InteractiveStampView::paintEvent(QPaintEvent*) {
    if (!m_picture)
        m_picture = m_pictures.picture(m_stamp.imageData);
    // The widget lies on whole points. The frame may begin within the widget's first point.
    const QRectF frame = toQt(m_frame, parentWidget()->height()).translated(-pos());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_picture)
        m_picture->draw(painter, frame);
    paintBorder(painter, frame);
    paintHandle(painter, frame);
}

void InteractiveStampView::paintBorder(QPainter& painter, const QRectF& frame) const {
    const QRectF border = frame.adjusted(borderInset, borderInset, -borderInset, -borderInset);
    if (m_isSelectedStamp)
        fillOutline(painter, border, selectedBorderWidth, colors::systemBlue);
    else
        fillOutline(painter, border, borderWidth, white(borderAlpha));
    if (m_showsKeyboardFocus) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::black, borderWidth, Qt::DashLine));
        painter.drawRect(border.adjusted(focusInset, focusInset, -focusInset, -focusInset));
    }
}

void InteractiveStampView::paintHandle(QPainter& painter, const QRectF& frame) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_isSelectedStamp ? colors::systemBlue : white(handleAlpha));
    const Rect handle = stampgeometry::resizeHandleRect(bounds());
    painter.drawRoundedRect(toQt(handle, frame.height()).translated(frame.topLeft()), handleCornerRadius,
                            handleCornerRadius);
}

void InteractiveStampView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space)
        return QWidget::keyPressEvent(event);
    if (onSelect)
        onSelect(m_stamp.id);
}

void InteractiveStampView::focusInEvent(QFocusEvent* event) {
    m_showsKeyboardFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    update();
}

void InteractiveStampView::focusOutEvent(QFocusEvent*) {
    m_showsKeyboardFocus = false;
    update();
}

}  // namespace vellmora
