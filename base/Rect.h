#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>

namespace vellmora {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

/// A rectangle in a space whose y axis points upwards; the origin is its lower-left corner.
///
/// Page space and view space are both of this kind. Qt's own rectangles (`QRectF`, y downwards) are
/// a different type on purpose: `toQt()` and `fromQt()` are the only ways across.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double minY() const { return y; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    double midX() const { return x + width * 0.5; }
    double midY() const { return y + height * 0.5; }
    bool isEmpty() const { return !(width > 0 && height > 0); }
    /// The lower and left edges belong to the rectangle, the upper and right ones do not.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    Rect translated(double dx, double dy) const { return {x + dx, y + dy, width, height}; }
    /// Smaller by `inset` on every side; larger where `inset` is negative.
    Rect insetBy(double inset) const { return {x + inset, y + inset, width - 2 * inset, height - 2 * inset}; }
    bool operator==(const Rect&) const = default;
};

/// The rectangle with these two opposite corners, in whatever order they come.
Rect rectFromCorners(Point a, Point b);

/// Common part of both; an empty rectangle where they do not overlap.
Rect intersection(const Rect& a, const Rect& b);

/// The smallest rectangle of whole points that contains `rect`.
///
/// An edge that lies within a thousandth of a point of a whole number counts as that number, so that a
/// rectangle that went to page space and back does not grow by its rounding error.
Rect integral(const Rect& rect);

/// The same area in Qt's coordinates (y downwards) of a container `containerHeight` points high.
QRectF toQt(const Rect& rect, double containerHeight);
Point fromQt(QPointF point, double containerHeight);

}  // namespace vellmora
