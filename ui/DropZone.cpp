#include "ui/DropZone.h"

#include <QPainter>
#include <QVBoxLayout>

namespace vellmora {

namespace {

constexpr int horizontalPadding = 28;
constexpr int verticalPadding = 26;
constexpr int itemSpacing = 10;
constexpr double cornerRadius = 20;
constexpr double targetedBorder = 2.5;
constexpr double border = 1.5;

QLabel* makeLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

}  // namespace

DropZone::DropZone(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_title(makeLabel({}, theme.font(Theme::dropZoneTitleSize, QFont::DemiBold), Qt::white, this)) {
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(horizontalPadding, verticalPadding, horizontalPadding, verticalPadding);
    stack->setSpacing(itemSpacing);
    stack->addWidget(m_title);
    stack->addWidget(makeLabel(QStringLiteral("Unterstützt einzelne PDF-Dateien per Drag & Drop"),
                               theme.font(Theme::dropZoneSubtitleSize), Theme::secondaryTextOnDark(), this));
    setTargeted(false);
}

void DropZone::setTargeted(bool isTargeted) {
    m_isTargeted = isTargeted;
    m_title->setText(isTargeted ? QStringLiteral("PDF jetzt loslassen") : QStringLiteral("PDF hier ablegen"));
    update();
}

void DropZone::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = m_isTargeted ? targetedBorder : border;
    painter.setBrush(QColor(40, 40, 40, 235));
    painter.setPen(QPen(m_isTargeted ? palette().color(QPalette::Highlight) : QColor(255, 255, 255, 71),
                        width, Qt::DashLine));
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius,
                            cornerRadius);
}

}  // namespace vellmora
