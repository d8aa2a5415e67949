#include "platform/pdf/Annotations.h"

#include <optional>

namespace vellmora {

namespace {

// Annotation flags (ISO 32000-2, table 167).
constexpr int hiddenFlag = 1 << 1;
constexpr int noViewFlag = 1 << 5;

std::optional<Rect> rectangleOf(QPDFObjectHandle array) {
    if (!array.isRectangle())
        return std::nullopt;
    const auto edges = array.getArrayAsRectangle();
    return rectFromCorners({edges.llx, edges.lly}, {edges.urx, edges.ury});
}

QTransform matrixOf(QPDFObjectHandle array) {
    if (!array.isMatrix())
        return {};
    const auto m = array.getArrayAsMatrix();
    return QTransform(m.a, m.b, m.c, m.d, m.e, m.f);
}

bool isVisible(QPDFObjectHandle annotation) {
    QPDFObjectHandle flags = annotation.getKey("/F");
    const int value = flags.isInteger() ? flags.getIntValueAsInt() : 0;
    return (value & (hiddenFlag | noViewFlag)) == 0 &&
           !annotation.getKey("/Subtype").isNameAndEquals("/Popup");
}

/// The normal appearance in the annotation's current state; null where there is none.
QPDFObjectHandle normalAppearance(QPDFObjectHandle annotation) {
    QPDFObjectHandle appearances = annotation.getKey("/AP");
    if (!appearances.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle normal = appearances.getKey("/N");
    if (normal.isStream() || !normal.isDictionary())
        return normal;
    QPDFObjectHandle state = annotation.getKey("/AS");
    return state.isName() ? normal.getKey(state.getName()) : QPDFObjectHandle::newNull();
}

/// Maps the appearance's transformed bounding box onto the annotation's rectangle (ISO 32000-2, 12.5.5,
/// algorithm "appearance streams"); the form's own matrix is applied when the form is painted.
std::optional<QTransform> placement(QPDFObjectHandle form, const Rect& rect) {
    const auto box = rectangleOf(form.getDict().getKey("/BBox"));
    if (!box)
        return std::nullopt;
    const Rect transformed = mapRect(matrixOf(form.getDict().getKey("/Matrix")), *box);
    if (transformed.isEmpty())
        return std::nullopt;
    const double sx = rect.width / transformed.width;
    const double sy = rect.height / transformed.height;
    return QTransform(sx, 0, 0, sy, rect.x - transformed.x * sx, rect.y - transformed.y * sy);
}

std::optional<AnnotationAppearance> appearanceOf(QPDFObjectHandle annotation) {
    if (!annotation.isDictionary() || !isVisible(annotation))
        return std::nullopt;
    QPDFObjectHandle form = normalAppearance(annotation);
    const auto rect = rectangleOf(annotation.getKey("/Rect"));
    if (!form.isStream() || !rect || rect->isEmpty())
        return std::nullopt;
    const auto matrix = placement(form, *rect);
    return matrix ? std::optional(AnnotationAppearance{form, *matrix}) : std::nullopt;
}

}  // namespace

std::vector<AnnotationAppearance> visibleAppearances(const SourcePage& page) {
    QPDFObjectHandle annotations = QPDFObjectHandle(page.dictionary).getKey("/Annots");
    std::vector<AnnotationAppearance> ordinary;
    std::vector<AnnotationAppearance> fields;
    if (!annotations.isArray())
        return ordinary;
    for (QPDFObjectHandle annotation : annotations.aitems()) {
        const auto appearance = appearanceOf(annotation);
        if (!appearance)
            continue;
        const bool isField = annotation.getKey("/Subtype").isNameAndEquals("/Widget");
        (isField ? fields : ordinary).push_back(*appearance);
    }
    ordinary.insert(ordinary.end(), fields.begin(), fields.end());
    return ordinary;
}

}  // namespace vellmora
