#include "editor/StampGeometry.h"

#include <algorithm>

namespace vellmora::stampgeometry {

namespace {

/// A stretch of one axis.
struct Span {
    double start = 0;
    double length = 0;
    double end() const { return start + length; }
};

Span across(const Rect& rect) {
    return {rect.x, rect.width};
}

Span up(const Rect& rect) {
    return {rect.y, rect.height};
}

/// How much of `span` must lie over `ground`.
double gripOn(const Span& ground, const Span& span, double grip) {
    return std::min({grip, span.length, ground.length});
}

/// Where a span of this length may start.
struct Range {
    double lowest;
    double highest;

    /// Both must hold. Where they cannot, this one does.
    Range within(const Range& other) const {
        return {std::clamp(other.lowest, lowest, highest), std::clamp(other.highest, lowest, highest)};
    }
};

Range startsWithGrip(const Span& ground, const Span& span, double grip) {
    const double kept = gripOn(ground, span, grip);
    return {ground.start + kept - span.length, ground.end() - kept};
}

Range startsInside(const Span& container, const Span& span, double grip) {
    if (span.length > container.length)
        return startsWithGrip(container, span, grip);
    return {container.start, container.end() - span.length};
}

double movedStart(const Span& initial, double distance, const Span& container, const Span& page,
                  double grip) {
    Range range = startsWithGrip(page, initial, grip);
    if (container.length > 0)
        range = range.within(startsInside(container, initial, grip));
    const double lowest = std::min(range.lowest, initial.start);
    const double highest = std::max(range.highest, initial.start);
    return std::clamp(initial.start + distance, lowest, highest);
}

/// The least length at which a span that starts here keeps its grip on the page.
double leastLength(const Span& initial, const Span& page, double grip) {
    const double below = page.start - initial.start;
    return below > 0 ? std::min(below + gripOn(page, initial, grip), initial.length) : 0;
}

/// The greatest length at which a span that starts here does not reach out of the container, nor further than
/// it did before. One that starts so close to the end of the page that less than a grip of it would be left
/// does not reach out of the page either.
double greatestLength(const Span& initial, const Span& container, const Span& page, double grip) {
    const double onPage = page.end() - initial.start;
    const double inSight = container.length > 0 ? container.end() - initial.start : onPage;
    const double room = onPage < std::min(grip, page.length) ? std::min(onPage, inSight) : inSight;
    return std::max(room, initial.length);
}

}  // namespace

Rect resizeHandleRect(const Rect& bounds) {
    return {bounds.maxX() - handleSize.width, bounds.minY(), handleSize.width, handleSize.height};
}

Rect moved(const Rect& initial, double dx, double dy, const Limits& limits) {
    const auto& [container, page, grip, _] = limits;
    return {movedStart(across(initial), dx, across(container), across(page), grip.width),
            movedStart(up(initial), dy, up(container), up(page), grip.height), initial.width, initial.height};
}

Rect resized(const Rect& initial, double dx, double ratio, const Limits& limits) {
    if (dx == 0)
        return initial;
    const auto& [container, page, grip, leastWidth] = limits;
    const double least = std::max(leastLength(across(initial), across(page), grip.width),
                                  leastLength(up(initial), up(page), grip.height) * ratio);
    const double greatest =
        std::min(greatestLength(across(initial), across(container), across(page), grip.width),
                 greatestLength(up(initial), up(container), up(page), grip.height) * ratio);
    const double width = std::min(std::max({leastWidth, initial.width + dx, least}), greatest);
    return {initial.x, initial.y, width, width / ratio};
}

}  // namespace vellmora::stampgeometry
