#include "ui/DropZone.h"

#include "ui/RoundedRect.h"

#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QVBoxLayout>

namespace vellmora {

namespace {

constexpr int horizontalPadding = 28;
constexpr int verticalPadding = 26;
constexpr int itemSpacing = 10;
constexpr int usualWidth = 420;
constexpr int symbolSize = 28;
constexpr double titleSize = 18;
constexpr double subtitleSize = 12;
constexpr double cornerRadius = 20;

constexpr double dash = 10;
constexpr double gap = 8;
constexpr double borderWidth = 1.5;
constexpr double borderOpacity = 0.28;
constexpr double targetedBorderWidth = 2.5;
constexpr double targetedBorderOpacity = 0.95;

constexpr double shadowRadius = 18;
constexpr double shadowOffset = 8;
constexpr double shadowOpacity = 0.22;

QColor accentOnMaterial(const QPalette& palette) {
    QColor material = Theme::dropZoneMaterial();
    material.setAlpha(255);
    return Theme::readable(Theme::accent(palette), material);
}

}  // namespace

DropZone::DropZone(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView(Symbol::trayArrowDown, symbolSize, Theme::text, this)),
      m_title(makeTextOnDark({}, theme.font(titleSize, Theme::semibold), 1, this)),
      m_shadow({cornerRadius, shadowRadius, Theme::black(shadowOpacity)}) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* stack = new QVBoxLayout(this);
    constexpr int side = sidePadding + horizontalPadding;
    constexpr int edge = shadowMargin + verticalPadding;
    stack->setContentsMargins(side, edge, side, edge);
    stack->setSpacing(itemSpacing);
    stack->addWidget(m_symbol, 0, Qt::AlignHCenter);
    stack->addWidget(m_title);
    TextLabel* subtitle = makeTextOnDark(QStringLiteral("Unterstützt einzelne PDF-Dateien per Drag & Drop"),
                                         theme.font(subtitleSize), 0.72, this);
    // Large texts need two lines.
    constexpr int room = usualWidth - 2 * side;
    if (subtitle->sizeHint().width() > room) {
        subtitle->setWordWrap(true);
        subtitle->setFixedHeight(subtitle->heightForWidth(room));
    }
    stack->addWidget(subtitle);
    setTargeted(false);
}

void DropZone::setTargeted(bool isTargeted) {
    m_isTargeted = isTargeted;
    if (isTargeted)
        m_symbol->setSymbol(Symbol::documentArrowUp, accentOnMaterial);
    else
        m_symbol->setSymbol(Symbol::trayArrowDown, [](const QPalette&) { return Theme::onDark(0.9); });
    m_title->setText(isTargeted ? QStringLiteral("PDF jetzt loslassen") : QStringLiteral("PDF hier ablegen"));
    update();
}

void DropZone::setFrameArea(const QRect& area) {
    setGeometry(area.adjusted(0, -shadowMargin, 0, shadowMargin));
}

void DropZone::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect frame = rect().adjusted(sidePadding, shadowMargin, -sidePadding, -shadowMargin);
    m_shadow.paint(painter, QRectF(frame).translated(0, shadowOffset));
    fillRoundedRect(painter, frame, cornerRadius, Theme::dropZoneMaterial());

    const double width = m_isTargeted ? targetedBorderWidth : borderWidth;
    QPen pen(m_isTargeted ? Theme::withOpacity(accentOnMaterial(palette()), targetedBorderOpacity)
                          : Theme::onDark(borderOpacity),
             width);
    pen.setDashPattern({dash / width, gap / width});
    pen.setCapStyle(Qt::FlatCap);
    const double inset = width / 2;
    QPainterPath line;
    line.addRoundedRect(QRectF(frame).adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                        cornerRadius - inset);
    // One by one: many in one row have many spans.
    painter.setPen(Qt::NoPen);
    painter.setBrush(pen.brush());
    for (const QPolygonF& oneDash : QPainterPathStroker(pen).createStroke(line).toSubpathPolygons())
        painter.drawPolygon(oneDash);
}

}  // namespace vellmora
