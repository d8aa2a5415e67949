#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace vellmora {

/// The program's own pictograms, drawn as lines of one weight at any size.
enum class Symbol {
    document,          ///< a page with text
    starOnSquares,     ///< a standard stamp
    photoOnRectangle,  ///< no stamp chosen
    photo,             ///< no picture
    trash,
    trayArrowDown,    ///< drop here
    documentArrowUp,  ///< let go now
};

/// Draws the symbol as a square as large as the lesser side of `area`, in its middle.
void drawSymbol(QPainter& painter, Symbol symbol, const QRectF& area, const QColor& color);

}  // namespace vellmora
