#include "ui/SymbolView.h"

#include <utility>

#include <QPainter>

namespace vellmora {

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
