#include "ui/Symbols.h"

#include "ui/RoundedRect.h"

#include <utility>

#include <QFile>
#include <QSvgRenderer>

namespace vellmora {

static QString fileName(Symbol symbol) {
    switch (symbol) {
        case Symbol::document:
            return QStringLiteral("document");
        case Symbol::starOnSquares:
            return QStringLiteral("star-on-squares");
        case Symbol::photoOnRectangle:
            return QStringLiteral("photo-on-rectangle");
        case Symbol::photo:
            return QStringLiteral("photo");
        case Symbol::trash:
            return QStringLiteral("trash");
        case Symbol::trayArrowDown:
            return QStringLiteral("tray-arrow-down");
        case Symbol::documentArrowUp:
            return QStringLiteral("document-arrow-up");
        case Symbol::warning:
            return QStringLiteral("warning");
    }
    return {};
}

void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& area, const QColor& color) {
    QFile file(QStringLiteral(":/symbols/%1.svg").arg(fileName(symbol)));
    if (!file.open(QIODevice::ReadOnly))
        return;
    QSvgRenderer drawing(file.readAll().replace("currentColor", color.name().toLatin1()));
    const double side = qMin(area.width(), area.height());
    painter.save();
    painter.setOpacity(painter.opacity() * color.alphaF());
    const QRectF square(area.center() - QPointF(side, side) / 2, QSizeF(side, side));
    paintInStrips(painter, square.toAlignedRect(), rowsOfDrawings, [&] { drawing.render(&painter, square); });
    painter.restore();
}

SymbolView::SymbolView(Symbol symbol, int size, Color color, QWidget* parent)
    : QWidget(parent), m_symbol(symbol), m_color(std::move(color)) {
    setFixedSize(size, size);
}

void SymbolView::setSymbol(Symbol symbol, Color color) {
    m_symbol = symbol;
    m_color = std::move(color);
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawSymbol(painter, m_symbol, rect(), m_color(palette()));
}

}  // namespace vellmora
