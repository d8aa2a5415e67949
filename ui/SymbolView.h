#pragma once

#include "ui/Symbols.h"

#include <functional>

#include <QWidget>

namespace vellmora {

/// A symbol of a fixed size in view points. It says nothing to a screen reader: a text always stands beside
/// it.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    using Color = std::function<QColor(const QPalette&)>;

    SymbolView(Symbol symbol, int size, Color color, QWidget* parent);

    void setSymbol(Symbol symbol, Color color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol m_symbol;
    Color m_color;
};

}  // namespace vellmora
