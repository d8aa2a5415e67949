#pragma once

#include <functional>

#include <QColor>
#include <QPainter>
#include <QRect>

namespace vellmora {

// Qt's raster engine hands a shape of 96 spans or more to threads of a pool and waits for them
// (QT_THREAD_PARALLEL_FILLS). A span is a run of equal pixels of a row, of which a rounded corner has many.
// What the window paints is far too small for that: it took 2 ms of a start. So it is painted by fewer rows.

// As many rows of the device as a strip may have: of drawings of many lines, of round corners, and of
// pictures and rectangles, which have one span in each.
constexpr int rowsOfDrawings = 8;
constexpr int rowsOfCurves = 24;
constexpr int rowsOfPictures = 80;

/// Calls `paint` for one strip of the area after the other, clipped to it. An area that may be much larger
/// than what is seen is to be clipped to that before. Where whole view points are no whole pixels, which
/// would show where strips meet, it is called once.
void paintInStrips(QPainter& painter, const QRect& area, int rows, const std::function<void()>& paint);

/// Without an outline, antialiased. `radius` is at most half of each side.
void fillRoundedRect(QPainter& painter, const QRect& rect, double radius, const QColor& color);

}  // namespace vellmora
