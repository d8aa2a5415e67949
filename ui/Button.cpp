#include "ui/Button.h"

#include "base/SystemColors.h"

#include <QPainter>

namespace vellmora {

namespace {

constexpr double cornerRadius = 6;
constexpr double disabledOpacity = 0.4;

struct Metrics {
    int height;
    int padding;
    double textSize;
    double symbolSize;
};

Metrics metricsOf(Button::Size size) {
    return size == Button::Size::small ? Metrics{24, 9, 11, 15} : Metrics{28, 12, 13, 18};
}

}  // namespace

Button::Button(const QString& text, Look look, Size size, const Theme& theme, QWidget* parent)
    : QPushButton(text, parent), m_look(look), m_size(size) {
    setFont(theme.font(metricsOf(size).textSize, Theme::medium));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // The Tab key moves the focus here; a click does not.
    setFocusPolicy(Qt::TabFocus);
}

Button::Button(Symbol symbol, const QString& name, Look look, Size size, const Theme& theme, QWidget* parent)
    : Button(QString(), look, size, theme, parent) {
    m_symbol = symbol;
    setAccessibleName(name);
}

int Button::heightOf(Size size) {
    return metricsOf(size).height;
}

QSize Button::sizeHint() const {
    const Metrics metrics = metricsOf(m_size);
    const double content = m_symbol ? metrics.symbolSize : QFontMetricsF(font()).horizontalAdvance(text());
    return {qRound(content) + 2 * metrics.padding, metrics.height};
}

QColor Button::background() const {
    const bool isProminent = m_look == Look::prominent;
    const QColor base = isProminent ? Theme::readable(Theme::accent(palette()), Qt::white)
                                    : Theme::buttonBackground(palette());
    if (isDown())
        return isProminent ? base.darker(125) : Theme::withOpacity(Theme::text(palette()), 0.22);
    if (underMouse() && isEnabled())
        return isProminent ? base.darker(110) : Theme::withOpacity(Theme::text(palette()), 0.16);
    return base;
}

QColor Button::foreground() const {
    switch (m_look) {
        case Look::bordered:
            return Theme::text(palette());
        case Look::prominent:
            return Qt::white;
        case Look::destructive:
            return Theme::readable(colors::systemRed, Theme::buttonBackground(palette()));
    }
    return {};
}

void Button::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background());
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    m_focusRing.paint(painter, rect(), cornerRadius, palette());
    if (m_symbol) {
        const double side = metricsOf(m_size).symbolSize;
        const QRectF square(QRectF(rect()).center() - QPointF(side, side) / 2, QSizeF(side, side));
        drawSymbol(painter, *m_symbol, square, foreground());
        return;
    }
    painter.setFont(font());
    painter.setPen(foreground());
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

void Button::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void Button::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

void Button::focusInEvent(QFocusEvent* event) {
    m_focusRing.focusIn(*event);
    QPushButton::focusInEvent(event);
}

void Button::focusOutEvent(QFocusEvent* event) {
    m_focusRing.focusOut(*event);
    QPushButton::focusOutEvent(event);
}

}  // namespace vellmora
