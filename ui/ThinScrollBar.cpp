#include "ui/ThinScrollBar.h"

#include "ui/Theme.h"

#include <QPainter>
#include <QStyleOptionSlider>

namespace vellmora {

namespace {

constexpr double handleInset = 3;
constexpr double handleOpacity = 0.3;
constexpr double activeHandleOpacity = 0.5;

}  // namespace

ThinScrollBar::ThinScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
    setFixedWidth(thickness);
}

/// Where the style lets the handle be dragged.
QRectF ThinScrollBar::handle() const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF slider =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    return slider.adjusted(handleInset, handleInset, -handleInset, -handleInset);
}

void ThinScrollBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::controlBackground(palette()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double opacity = isSliderDown() || underMouse() ? activeHandleOpacity : handleOpacity;
    painter.setBrush(Theme::withOpacity(Theme::text(palette()), opacity));
    const double radius = (thickness - 2 * handleInset) / 2;
    painter.drawRoundedRect(handle(), radius, radius);
}

}  // namespace vellmora
