#pragma once

#include <functional>

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QWidget>

namespace vellmora {

/// The program's own pictograms: one SVG file each under `ui/symbols`.
enum class Symbol {
    document,          ///< a page with text
    starOnSquares,     ///< a standard stamp
    photoOnRectangle,  ///< no stamp chosen
    photo,             ///< no picture
    trash,
    trayArrowDown,    ///< drop here
    documentArrowUp,  ///< let go now
    warning,          ///< a problem
};

/// Draws the symbol into the largest square in the middle of `area`.
void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& area, const QColor& color);

/// A symbol of a fixed size in view points. Screen readers skip it, since a text always stands beside it.
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
