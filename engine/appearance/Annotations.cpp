#include "engine/appearance/Annotations.h"

#include "engine/appearance/FieldAppearance.h"
#include "engine/appearance/FreeTextAppearance.h"
#include "engine/appearance/ShapeAppearance.h"
#include "engine/appearance/TextMarkupAppearance.h"

#include <algorithm>

namespace vellmora {

namespace {

/// The normal appearance in the annotation's current state; null where there is none.
QPDFObjectHandle normalAppearance(const Annotation& annotation) {
    QPDFObjectHandle appearances = annotation.entry("/AP");
    if (!appearances.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle normal = appearances.getKey("/N");
    if (normal.isStream() || !normal.isDictionary())
        return normal;
    QPDFObjectHandle state = annotation.entry("/AS");
    return state.isName() ? normal.getKey(state.getName()) : QPDFObjectHandle::newNull();
}

/// Whether the file says how the annotation looks, even if that is nothing in its current state.
bool bringsAppearance(const Annotation& annotation) {
    QPDFObjectHandle appearances = annotation.entry("/AP");
    if (!appearances.isDictionary())
        return false;
    QPDFObjectHandle normal = appearances.getKey("/N");
    return normal.isStream() || normal.isDictionary();
}

/// Maps the appearance's transformed bounding box onto the annotation's rectangle (ISO 32000-2, 12.5.5,
/// algorithm "appearance streams"); the form's own matrix is applied when the form is painted.
std::optional<Matrix> placement(QPDFObjectHandle form, const Rect& rect) {
    const auto box = rectangleOf(form.getDict().getKey("/BBox"));
    if (!box)
        return std::nullopt;
    const Rect transformed = mapRect(matrixOf(form.getDict().getKey("/Matrix")), *box);
    if (transformed.isEmpty())
        return std::nullopt;
    const double sx = rect.width / transformed.width;
    const double sy = rect.height / transformed.height;
    return Matrix{sx, 0, 0, sy, rect.x - transformed.x * sx, rect.y - transformed.y * sy};
}

/// Turns an annotation that stays upright against the rotation of the page.
Matrix uprightMatrix(const Annotation& annotation, const ParsedPage& page) {
    if (!annotation.isUpright())
        return {};
    const Rect& rect = annotation.rect();
    return Matrix::translation(-rect.minX(), -rect.maxY()) * Matrix::rotation(page.orientation.rotation()) *
           Matrix::translation(rect.minX(), rect.maxY());
}

std::optional<QPDFObjectHandle> drawAppearance(const Annotation& annotation, const ParsedFile& source,
                                               AppearanceTools& tools) {
    if (annotation.is("/Widget"))
        return drawField(annotation, source, tools);
    if (annotation.is("/FreeText"))
        return drawFreeText(annotation, source, tools);
    if (auto form = drawTextMarkup(annotation, tools.copier.output()))
        return form;
    return drawShape(annotation, tools.copier.output());
}

bool isToBeDrawn(const Annotation& annotation, const QPDFObjectHandle& normal, const ParsedFile& source,
                 AppearanceTools& tools) {
    return !bringsAppearance(annotation) ||
           (annotation.is("/Widget") && needsNewAppearance(annotation, normal, source, tools));
}

bool isPlainlyInvisible(int number, const PlainFile& file) {
    PlainObject annotation;
    file.read(number, annotation);
    const std::string_view subtype = annotation.entry("/Subtype");
    return annotation.isDictionary() && (subtype == "/Link" || subtype == "/Popup");
}

}  // namespace

bool hasPlainlyNoVisibleAnnotations(const PlainObject& page, const PlainFile& file) {
    const std::string_view annotations = page.entry("/Annots");
    if (annotations.empty() || annotations == "null")
        return true;
    try {
        PlainObject array;
        if (const int number = plainReference(annotations); number > 0)
            file.read(number, array);
        else
            array.readValue(annotations);
        return array.value().starts_with('[') &&
               std::all_of(array.items().begin(), array.items().end(), [&file](std::string_view item) {
                   const int number = plainReference(item);
                   return number > 0 && isPlainlyInvisible(number, file);
               });
    } catch (const NotPlain&) {
        return false;
    }
}

std::vector<Annotation> visibleAnnotations(const ParsedPage& page) {
    QPDFObjectHandle annotations = page.entry("/Annots");
    std::vector<Annotation> ordinary;
    std::vector<Annotation> fields;
    if (!annotations.isArray())
        return ordinary;
    for (QPDFObjectHandle item : annotations.aitems()) {
        if (!item.isDictionary())
            continue;
        const Annotation annotation(item);
        if (annotation.isVisible())
            (annotation.is("/Widget") ? fields : ordinary).push_back(annotation);
    }
    ordinary.insert(ordinary.end(), fields.begin(), fields.end());
    return ordinary;
}

std::optional<AnnotationAppearance> Appearances::make(const Annotation& annotation, const ParsedFile& source,
                                                      const ParsedPage& page) {
    QPDFObjectHandle normal = normalAppearance(annotation);
    std::optional<AnnotationAppearance> appearance;
    if (!isToBeDrawn(annotation, normal, source, m_tools))
        appearance = carry(annotation, normal, source);
    else if (const auto form = *m_drawn.get(annotation.dictionary(),
                                            [&] { return drawAppearance(annotation, source, m_tools); }))
        appearance = AnnotationAppearance{*form, {}};
    if (appearance)
        appearance->matrix *= uprightMatrix(annotation, page);
    return appearance;
}

std::optional<AnnotationAppearance> Appearances::carry(const Annotation& annotation, QPDFObjectHandle normal,
                                                       const ParsedFile& source) {
    if (!normal.isStream() || annotation.rect().isEmpty())
        return std::nullopt;
    const auto matrix = placement(normal, annotation.rect());
    if (!matrix)
        return std::nullopt;
    QPDFObjectHandle form = m_tools.copier.copy(normal);
    form.getDict().replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    if (annotation.is("/Widget") && !normal.getDict().getKey("/Resources").isDictionary())
        form.getDict().replaceKey("/Resources", m_tools.copier.copy(formResources(annotation, source)));
    return AnnotationAppearance{form, *matrix};
}

}  // namespace vellmora
