#include "platform/pdf/annotations/LineEnding.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace vellmora {

namespace {

/// The tip of a line and the direction in which the line arrives there.
struct Tip {
    Point at;
    double dx;
    double dy;

    /// `back` along the line, away from the tip, and `side` to its left.
    Point offset(double back, double side) const {
        return {at.x - back * dx - side * dy, at.y - back * dy + side * dx};
    }
};

void arrow(FormDrawing& drawing, const Tip& tip, double length, bool isClosed, bool fill) {
    const double half = std::abs(length) * std::tan(std::numbers::pi / 6);
    drawing.polyline({tip.offset(length, half), tip.at, tip.offset(length, -half)});
    if (isClosed)
        drawing.closePath();
    drawing.paintPath(isClosed && fill, true);
}

void around(FormDrawing& drawing, const Tip& tip, const std::string& style, double size, bool fill) {
    const double half = size / 2;
    const Rect box = Rect{tip.at.x, tip.at.y, 0, 0}.insetBy(-half);
    if (style == "/Circle")
        drawing.ellipse(box);
    else if (style == "/Square")
        drawing.rectangle(box);
    else
        drawing.polyline(
            {tip.offset(half, 0), tip.offset(0, half), tip.offset(-half, 0), tip.offset(0, -half)});
    drawing.closePath();
    drawing.paintPath(fill, true);
}

void stroke(FormDrawing& drawing, Point from, Point to) {
    drawing.polyline({from, to});
    drawing.paintPath(false, true);
}

}  // namespace

void drawLineEnding(FormDrawing& drawing, QPDFObjectHandle style, Point tip, Point from, double width,
                    bool fill) {
    const double length = std::hypot(tip.x - from.x, tip.y - from.y);
    if (!style.isName() || !(length > 0))
        return;
    const Tip end{tip, (tip.x - from.x) / length, (tip.y - from.y) / length};
    const std::string name = style.getName();
    const double size = std::max(1.0, width) * 6;
    if (name == "/OpenArrow" || name == "/ClosedArrow")
        arrow(drawing, end, size * 1.5, name == "/ClosedArrow", fill);
    else if (name == "/ROpenArrow" || name == "/RClosedArrow")
        arrow(drawing, end, -size * 1.5, name == "/RClosedArrow", fill);
    else if (name == "/Circle" || name == "/Square" || name == "/Diamond")
        around(drawing, end, name, size, fill);
    else if (name == "/Butt")
        stroke(drawing, end.offset(0, size / 2), end.offset(0, -size / 2));
    else if (name == "/Slash")
        stroke(drawing, end.offset(-size / 4, size / 2), end.offset(size / 4, -size / 2));
}

}  // namespace vellmora
