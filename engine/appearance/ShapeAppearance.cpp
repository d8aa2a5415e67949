#include "engine/appearance/ShapeAppearance.h"

#include "engine/appearance/FormBuilder.h"

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

void arrow(FormBuilder& drawing, const Tip& tip, double length, bool isClosed, bool fill) {
    const double half = std::abs(length) * std::tan(std::numbers::pi / 6);
    drawing.polyline({tip.offset(length, half), tip.at, tip.offset(length, -half)});
    if (isClosed)
        drawing.closePath();
    drawing.paintPath(isClosed && fill, true);
}

void around(FormBuilder& drawing, const Tip& tip, const std::string& style, double size, bool fill) {
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

void stroke(FormBuilder& drawing, Point from, Point to) {
    drawing.polyline({from, to});
    drawing.paintPath(false, true);
}

}  // namespace

void drawLineEnding(FormBuilder& drawing, QPDFObjectHandle style, Point tip, Point from, double width,
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

namespace {

struct Paint {
    bool fill = false;
    bool stroke = false;
};

/// A line without a colour is black, an area without one is empty.
Paint setUp(FormBuilder& drawing, const Annotation& annotation, bool isArea) {
    const double width = annotation.borderWidth();
    Paint paint;
    drawing.setBlending(annotation.opacity(), "Normal");
    paint.stroke = drawing.setStrokeColor(annotation.color("/C")) || !isArea;
    paint.stroke = paint.stroke && width > 0;
    paint.fill = drawing.setFillColor(annotation.color("/IC"));
    drawing.setLine(width, annotation.borderDashes());
    return paint;
}

/// The annotation's rectangle less its differences (/RD) and half of the border.
Rect innerRect(const Annotation& annotation) {
    const Rect& rect = annotation.rect();
    const std::vector<double> differences = numbersOf(annotation.entry("/RD"));
    const double half = annotation.borderWidth() / 2;
    Rect inner = rect.insetBy(half);
    if (differences.size() == 4) {
        inner = {rect.x + differences[0] + half, rect.y + differences[1] + half,
                 rect.width - differences[0] - differences[2] - 2 * half,
                 rect.height - differences[1] - differences[3] - 2 * half};
    }
    return inner.isEmpty() ? rect : inner;
}

Rect boundsOf(const std::vector<Point>& points, double margin) {
    const auto [left, right] =
        std::minmax_element(points.begin(), points.end(), [](auto a, auto b) { return a.x < b.x; });
    const auto [low, high] =
        std::minmax_element(points.begin(), points.end(), [](auto a, auto b) { return a.y < b.y; });
    return rectFromCorners({left->x, low->y}, {right->x, high->y}).insetBy(-margin);
}

/// Line endings are up to nine widths of the line long, and mitred.
double marginOf(const Annotation& annotation) {
    return 2 + 12 * std::max(1.0, annotation.borderWidth());
}

void drawEndings(FormBuilder& drawing, const Annotation& annotation, const std::vector<Point>& points,
                 bool fill) {
    QPDFObjectHandle endings = annotation.entry("/LE");
    if (!endings.isArray() || endings.getArrayNItems() < 2 || points.size() < 2)
        return;
    const double width = annotation.borderWidth();
    drawLineEnding(drawing, endings.getArrayItem(0), points[0], points[1], width, fill);
    drawLineEnding(drawing, endings.getArrayItem(1), points.back(), points[points.size() - 2], width, fill);
}

std::optional<QPDFObjectHandle> drawBox(const Annotation& annotation, QPDF& output) {
    if (annotation.rect().isEmpty())
        return std::nullopt;
    FormBuilder drawing(output);
    const Paint paint = setUp(drawing, annotation, true);
    const Rect box = innerRect(annotation);
    if (annotation.is("/Circle"))
        drawing.ellipse(box);
    else
        drawing.rectangle(box);
    drawing.paintPath(paint.fill, paint.stroke);
    return drawing.finish(annotation.rect().insetBy(-1));
}

std::optional<QPDFObjectHandle> drawPath(const Annotation& annotation, QPDF& output,
                                         const std::vector<Point>& points) {
    if (points.size() < 2)
        return std::nullopt;
    FormBuilder drawing(output);
    const bool isArea = annotation.is("/Polygon");
    const Paint paint = setUp(drawing, annotation, isArea);
    drawing.polyline(points);
    if (isArea)
        drawing.closePath();
    drawing.paintPath(paint.fill && isArea, paint.stroke);
    if (!isArea && paint.stroke)
        drawEndings(drawing, annotation, points, paint.fill);
    return drawing.finish(boundsOf(points, marginOf(annotation)));
}

std::optional<QPDFObjectHandle> drawInk(const Annotation& annotation, QPDF& output) {
    QPDFObjectHandle list = annotation.entry("/InkList");
    if (!list.isArray())
        return std::nullopt;
    FormBuilder drawing(output);
    const Paint paint = setUp(drawing, annotation, false);
    drawing.add("1 J 1 j");
    std::vector<Point> all;
    for (const QPDFObjectHandle& stroke : list.aitems()) {
        const std::vector<Point> points = pointsOf(stroke);
        drawing.polyline(points);
        if (points.size() == 1)
            drawing.lineTo(points.front());
        all.insert(all.end(), points.begin(), points.end());
    }
    if (all.empty())
        return std::nullopt;
    drawing.paintPath(false, paint.stroke);
    return drawing.finish(boundsOf(all, marginOf(annotation)));
}

}  // namespace

std::optional<QPDFObjectHandle> drawShape(const Annotation& annotation, QPDF& output) {
    if (annotation.is("/Square") || annotation.is("/Circle"))
        return drawBox(annotation, output);
    if (annotation.is("/Line"))
        return drawPath(annotation, output, pointsOf(annotation.entry("/L")));
    if (annotation.is("/Polygon") || annotation.is("/PolyLine"))
        return drawPath(annotation, output, pointsOf(annotation.entry("/Vertices")));
    if (annotation.is("/Ink"))
        return drawInk(annotation, output);
    return std::nullopt;
}

}  // namespace vellmora
