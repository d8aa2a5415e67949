#pragma once

#include "platform/pdf/annotations/Annotation.h"
#include "platform/pdf/reading/PDFSource.h"
#include "platform/pdf/writing/ObjectCopier.h"

#include <optional>
#include <vector>

namespace vellmora {

/// What is painted of an annotation or form field.
struct AnnotationAppearance {
    QPDFObjectHandle form;  ///< a form XObject of the output
    QTransform matrix;      ///< from the form's matrix space to the file's own page space
};

/// What a screen viewer paints of the page, in painting order: ordinary annotations, then form fields.
std::vector<Annotation> visibleAnnotations(const SourcePage& page);

/// The appearance that the file brings, or one that is drawn as mature viewers draw it where it brings none.
/// Nothing where there is nothing to be seen.
std::optional<AnnotationAppearance> makeAppearance(const Annotation& annotation, const PDFSource& source,
                                                   const SourcePage& page, ObjectCopier& copier);

}  // namespace vellmora
