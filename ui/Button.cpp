#include "ui/Button.h"

#include "base/SystemColors.h"
#include "ui/ToolTip.h"

#include <QPainter>

namespace vellmora {

namespace {

constexpr double cornerRadius = 6;
constexpr double disabledOpacity = 0.4;

}  // namespace

Button::Metrics Button::metricsOf(Size size, const Theme& theme) {
    const Metrics usual = size == Size::small ? Metrics{24, 9, 11, 15} : Metrics{28, 12, 13, 18};
    return {theme.scaled(usual.height), usual.padding, usual.textSize, theme.scaled(usual.symbolSize)};
}

Button::Button(const QString& text, Look look, Size size, const Theme& theme, QWidget* parent)
    : QPushButton(text, parent),
      m_look(look),
      m_metrics(metricsOf(size, theme)),
      m_font(theme.font(m_metrics.textSize, Theme::medium)) {
    setFont(m_font.font());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // The Tab key moves the focus here; a click does not.
    setFocusPolicy(Qt::TabFocus);
}

Button::Button(Symbol symbol, Look look, Size size, const Theme& theme, QWidget* parent)
    : Button(QString(), look, size, theme, parent) {
    m_symbol = symbol;
}

int Button::heightOf(Size size, const Theme& theme) {
    return metricsOf(size, theme).height;
}

void Button::setName(const QString& name) {
    if (name == accessibleName())
        return;
    setAccessibleName(name);
    setToolTip(toolTipOf(name));
}

void Button::showShortcut(const QKeySequence& shortcut) {
    m_shownShortcut = shortcut;
    if (!shortcut.isEmpty())
        setToolTip(
            toolTipOf(QStringLiteral("%1 (%2)").arg(text(), shortcut.toString(QKeySequence::NativeText))));
}

QSize Button::sizeHint() const {
    const double content = m_symbol ? m_metrics.symbolSize : m_font.width(text());
    return {qRound(content) + 2 * m_metrics.padding, m_metrics.height};
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
        const double side = m_metrics.symbolSize;
        const QRectF square(QRectF(rect()).center() - QPointF(side, side) / 2, QSizeF(side, side));
        drawSymbol(painter, *m_symbol, square, foreground());
        return;
    }
    painter.setPen(foreground());
    m_font.paint(painter, rect(), Qt::AlignCenter, text());
}

void Button::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!m_ignoresSecondClick)
        QPushButton::mouseDoubleClickEvent(event);
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
