#include "engine/appearance/TextMarkupAppearance.h"

#include "engine/appearance/FormBuilder.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

namespace {

/// The corners of a marked piece of text, in the order in which producers write them (not the one of the
/// standard): upper left, upper right, lower left, lower right, as the text runs.
struct Quad {
    Point upperLeft;
    Point upperRight;
    Point lowerLeft;
    Point lowerRight;

    double height() const { return std::hypot(upperLeft.x - lowerLeft.x, upperLeft.y - lowerLeft.y); }
    double width() const { return std::hypot(lowerRight.x - lowerLeft.x, lowerRight.y - lowerLeft.y); }
    Point at(double along, double up) const {
        const Point bottom{std::lerp(lowerLeft.x, lowerRight.x, along),
                           std::lerp(lowerLeft.y, lowerRight.y, along)};
        const Point top{std::lerp(upperLeft.x, upperRight.x, along),
                        std::lerp(upperLeft.y, upperRight.y, along)};
        return {std::lerp(bottom.x, top.x, up), std::lerp(bottom.y, top.y, up)};
    }
};

std::vector<Quad> quadsOf(const Annotation& annotation) {
    std::vector<Quad> quads;
    const std::vector<Point> points = pointsOf(annotation.entry("/QuadPoints"));
    for (size_t i = 0; i + 3 < points.size(); i += 4)
        quads.push_back({points[i], points[i + 1], points[i + 2], points[i + 3]});
    const Rect& rect = annotation.rect();
    if (quads.empty() && !rect.isEmpty()) {
        quads.push_back({{rect.minX(), rect.maxY()},
                         {rect.maxX(), rect.maxY()},
                         {rect.minX(), rect.minY()},
                         {rect.maxX(), rect.minY()}});
    }
    return quads;
}

/// With sides that bulge by a quarter of its height, as viewers draw it.
void highlight(FormBuilder& drawing, const Quad& quad) {
    if (quad.width() == 0)
        return;
    const double bulge = quad.height() / 4 / quad.width();
    drawing.moveTo(quad.lowerLeft);
    drawing.curveTo(quad.at(-bulge, 0.25), quad.at(-bulge, 0.75), quad.upperLeft);
    drawing.lineTo(quad.upperRight);
    drawing.curveTo(quad.at(1 + bulge, 0.75), quad.at(1 + bulge, 0.25), quad.lowerRight);
    drawing.closePath();
    drawing.paintPath(true, false);
}

void straightLine(FormBuilder& drawing, const Quad& quad, double up) {
    drawing.setLine(quad.height() / 15, {});
    drawing.polyline({quad.at(0, up), quad.at(1, up)});
    drawing.paintPath(false, true);
}

/// `stepsLeft` is how many the annotation may still draw: a straight line takes the place of more.
void squiggle(FormBuilder& drawing, const Quad& quad, int& stepsLeft) {
    constexpr double maxSteps = 2000;
    const double step = quad.height() / 7;
    if (!(step > 0) || quad.width() / step > maxSteps)
        return;
    const int steps = static_cast<int>(quad.width() / step);
    if (steps > stepsLeft) {
        straightLine(drawing, quad, 1.0 / 14);
        return;
    }
    stepsLeft -= steps;
    drawing.setLine(quad.height() / 15, {});
    std::vector<Point> points;
    for (int i = 0; i <= steps; ++i)
        points.push_back(quad.at(i * step / quad.width(), i % 2 == 0 ? 0.0 : 1.0 / 7));
    drawing.polyline(points);
    drawing.paintPath(false, true);
}

Rect boundsOf(const std::vector<Quad>& quads) {
    Rect bounds;
    for (const Quad& quad : quads) {
        for (const Point& p : {quad.upperLeft, quad.upperRight, quad.lowerLeft, quad.lowerRight}) {
            const Rect around = Rect{p.x, p.y, 0, 0}.insetBy(-quad.height() / 2 - 1);
            bounds =
                bounds.isEmpty()
                    ? around
                    : rectFromCorners(
                          {std::min(bounds.minX(), around.minX()), std::min(bounds.minY(), around.minY())},
                          {std::max(bounds.maxX(), around.maxX()), std::max(bounds.maxY(), around.maxY())});
        }
    }
    return bounds;
}

void drawMark(FormBuilder& drawing, const Annotation& annotation, const Quad& quad, int& stepsLeft) {
    if (annotation.is("/Highlight"))
        highlight(drawing, quad);
    else if (annotation.is("/Underline"))
        straightLine(drawing, quad, 1.0 / 7);
    else if (annotation.is("/StrikeOut"))
        straightLine(drawing, quad, 3.0 / 7);
    else
        squiggle(drawing, quad, stepsLeft);
}

}  // namespace

std::optional<QPDFObjectHandle> drawTextMarkup(const Annotation& annotation, QPDF& output) {
    const bool isHighlight = annotation.is("/Highlight");
    if (!isHighlight && !annotation.is("/Underline") && !annotation.is("/StrikeOut") &&
        !annotation.is("/Squiggly"))
        return std::nullopt;
    const std::vector<Quad> quads = quadsOf(annotation);
    FormBuilder drawing(output);
    const std::vector<double> color = annotation.color("/C");
    const bool isColored = isHighlight ? drawing.setFillColor(color) : drawing.setStrokeColor(color);
    const bool isBlackByDefault = !isHighlight && annotation.entry("/C").isNull();
    if (!isColored && !isBlackByDefault)
        return std::nullopt;
    drawing.setBlending(annotation.opacity(), isHighlight ? "Multiply" : "Normal");
    int stepsLeft = 100'000;  // a page full of text takes a tenth
    for (const Quad& quad : quads)
        drawMark(drawing, annotation, quad, stepsLeft);
    return drawing.finish(boundsOf(quads));
}

}  // namespace vellmora
