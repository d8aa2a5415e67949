#include "platform/pdf/annotations/ShapeAppearance.h"

#include "platform/pdf/annotations/LineEnding.h"
#include "platform/pdf/drawing/FormDrawing.h"

#include <algorithm>

namespace vellmora {

namespace {

struct Paint {
    bool fill = false;
    bool stroke = false;
};

/// A line without a colour is black, an area without one is empty.
Paint setUp(FormDrawing& drawing, const Annotation& annotation, bool isArea) {
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

void drawEndings(FormDrawing& drawing, const Annotation& annotation, const std::vector<Point>& points,
                 bool fill) {
    QPDFObjectHandle endings = annotation.entry("/LE");
    if (!endings.isArray() || endings.getArrayNItems() < 2 || points.size() < 2)
        return;
    const double width = annotation.borderWidth();
    drawLineEnding(drawing, endings.getArrayItem(0), points[0], points[1], width, fill);
    drawLineEnding(drawing, endings.getArrayItem(1), points.back(), points[points.size() - 2], width, fill);
}

QPDFObjectHandle drawBox(const Annotation& annotation, QPDF& output) {
    FormDrawing drawing(output);
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
    FormDrawing drawing(output);
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
    FormDrawing drawing(output);
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
