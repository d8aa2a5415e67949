#include "editor/InteractiveStampView.h"

#include "base/SystemColors.h"

#include <algorithm>
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
constexpr QColor handleEdge{0x6e, 0x6e, 0x6e};
constexpr double handleEdgeInset = 0.5;

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

void InteractiveStampView::setPlace(const Rect& place) {
    const QRect covered = toQt(integral(place), parentWidget()->height()).toRect();
    if (place == m_place && covered == geometry())
        return;
    m_place = place;
    setGeometry(covered);
    update();
}

stampgeometry::Limits InteractiveStampView::limits() const {
    const Rect overlay{0, 0, double(parentWidget()->width()), double(parentWidget()->height())};
    const PageBeneath page = m_page.value_or(PageBeneath{overlay, {1, 1}});
    // Enough of the stamp to take hold of it at this zoom, and at the page's own size.
    const Size grip{stampgeometry::handleSize.width * std::max(1.0, page.pointSize.width),
                    stampgeometry::handleSize.height * std::max(1.0, page.pointSize.height)};
    return {overlay, page.area, grip};
}

Point InteractiveStampView::pointInOverlay(const QSinglePointEvent& event) const {
    // Qt rounds the other positions of an event to whole points before it delivers it.
    return fromQt(parentWidget()->mapFrom(window(), event.scenePosition()), parentWidget()->height());
}

bool InteractiveStampView::isOnHandle(Point pointInOverlay) const {
    return stampgeometry::resizeHandleRect(frame()).contains(pointInOverlay);
}

void InteractiveStampView::updateCursor(Point pointInOverlay) {
    setCursor(isOnHandle(pointInOverlay) ? Qt::CrossCursor : Qt::OpenHandCursor);
}

void InteractiveStampView::enterEvent(QEnterEvent* event) {
    updateCursor(pointInOverlay(*event));
}

void InteractiveStampView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    setFocus(Qt::MouseFocusReason);
    if (onSelect)
        onSelect(m_stamp.id);
    const Point mouse = pointInOverlay(*event);
    m_drag = {isOnHandle(mouse) ? DragMode::resize : DragMode::move, mouse, m_place, m_stamp.rect};
    m_isDraggingInteractively = true;
}

Rect InteractiveStampView::draggedPlace(Point mouse) const {
    const double dx = mouse.x - m_drag.mouse.x;
    const double dy = mouse.y - m_drag.mouse.y;
    if (m_drag.mode == DragMode::move)
        return stampgeometry::moved(m_drag.place, dx, dy, limits());
    const Size pointSize = m_page ? m_page->pointSize : Size{1, 1};
    const double ratio = std::max(m_stamp.aspectRatio, stampgeometry::lowestAspectRatio);
    return stampgeometry::resized(m_drag.place, dx, ratio * pointSize.width / pointSize.height, limits());
}

void InteractiveStampView::mouseMoveEvent(QMouseEvent* event) {
    // The mouse-up is lost where a dialog opens during a drag.
    if (!event->buttons().testFlag(Qt::LeftButton))
        m_isDraggingInteractively = false;
    if (!m_isDraggingInteractively) {
        updateCursor(pointInOverlay(*event));
        return;
    }
    setPlace(draggedPlace(pointInOverlay(*event)));
    reportPlace();
}

void InteractiveStampView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_isDraggingInteractively)
        return QWidget::mouseReleaseEvent(event);
    m_isDraggingInteractively = false;
    reportPlace();
}

void InteractiveStampView::reportPlace() {
    if (onPlaceChanged)
        onPlaceChanged(m_stamp.id, m_place);
}

void InteractiveStampView::paintEvent(QPaintEvent*) {
    if (!m_picture)
        m_picture = m_pictures.picture(m_stamp.imageData);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_picture)
        m_picture->draw(painter, toQt(m_place, parentWidget()->height()).translated(-pos()));
    paintBorder(painter);
    paintHandle(painter);
}

void InteractiveStampView::paintBorder(QPainter& painter) const {
    const QRectF border = QRectF(rect()).adjusted(borderInset, borderInset, -borderInset, -borderInset);
    if (m_isSelectedStamp)
        fillOutline(painter, border, selectedBorderWidth, colors::systemBlue);
    else
        fillOutline(painter, border, borderWidth, white(borderAlpha));
    if (m_keyboardFocus.isShown()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::black, borderWidth, Qt::DashLine));
        painter.drawRect(border.adjusted(focusInset, focusInset, -focusInset, -focusInset));
    }
}

void InteractiveStampView::paintHandle(QPainter& painter) const {
    const Rect handle = stampgeometry::resizeHandleRect({0, 0, double(width()), double(height())});
    QRectF shape = toQt(handle, height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_isSelectedStamp ? colors::systemBlue : white(handleAlpha));
    if (!m_isSelectedStamp) {
        // On white paper a white handle would look like a hole in the stamp.
        painter.setPen(QPen(handleEdge, 1));
        shape.adjust(handleEdgeInset, handleEdgeInset, -handleEdgeInset, -handleEdgeInset);
    }
    painter.drawRoundedRect(shape, handleCornerRadius, handleCornerRadius);
}

}  // namespace vellmora
