#include "ui/GroupBox.h"

#include <utility>

#include <QPainter>

namespace vellmora {

namespace {

constexpr int titleHeight = 18;
constexpr int titleGap = 4;
constexpr double frameRadius = 10;
constexpr double titleTextSize = 12;

}  // namespace

GroupBox::GroupBox(QString title, const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_title(std::move(title)),
      m_titleFont(theme.font(titleTextSize, Theme::semibold)),
      m_content(new QVBoxLayout(this)) {
    setAccessibleName(m_title);
    m_content->setContentsMargins(padding, titleHeight + titleGap + padding, padding, padding);
    m_content->setSpacing(itemSpacing);
}

void GroupBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(m_titleFont);
    painter.setPen(Theme::text(palette()));
    painter.drawText(QRect(2, 0, width(), titleHeight), Qt::AlignLeft | Qt::AlignVCenter, m_title);
    painter.setPen(QPen(Theme::divider(palette()), 1));
    painter.setBrush(Theme::boxBackground(palette()));
    const QRectF frame(0, titleHeight + titleGap, width(), height() - titleHeight - titleGap);
    painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), frameRadius, frameRadius);
}

}  // namespace vellmora
