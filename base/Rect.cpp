#include "base/Rect.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

namespace {

constexpr double wholePointTolerance = 1e-3;

double floorWithTolerance(double value) {
    return std::floor(value + wholePointTolerance);
}

double ceilWithTolerance(double value) {
    return std::ceil(value - wholePointTolerance);
}

}  // namespace

Rect rectFromCorners(Point a, Point b) {
    const double x = std::min(a.x, b.x);
    const double y = std::min(a.y, b.y);
    return {x, y, std::max(a.x, b.x) - x, std::max(a.y, b.y) - y};
}

Rect intersection(const Rect& a, const Rect& b) {
    const double x = std::max(a.minX(), b.minX());
    const double y = std::max(a.minY(), b.minY());
    const double width = std::min(a.maxX(), b.maxX()) - x;
    const double height = std::min(a.maxY(), b.maxY()) - y;
    if (width <= 0 || height <= 0)
        return {};
    return {x, y, width, height};
}

Rect integral(const Rect& rect) {
    const double x = floorWithTolerance(rect.minX());
    const double y = floorWithTolerance(rect.minY());
    return {x, y, ceilWithTolerance(rect.maxX()) - x, ceilWithTolerance(rect.maxY()) - y};
}

QRectF toQt(const Rect& rect, double containerHeight) {
    return {rect.x, containerHeight - rect.maxY(), rect.width, rect.height};
}

Point fromQt(QPointF point, double containerHeight) {
    return {point.x(), containerHeight - point.y()};
}

}  // namespace vellmora
