#pragma once

#include "platform/pdf/PDFSource.h"

#include <vector>

namespace vellmora {

/// The appearance of an annotation or form field, and the matrix that puts it on the page.
struct AnnotationAppearance {
    QPDFObjectHandle form;  ///< a stream of the source file
    QTransform matrix;      ///< from the form's matrix space to the file's own page space
};

/// What a screen viewer paints of the page's annotations, in painting order: ordinary annotations, then form
/// fields. Hidden ones, pop-ups and those without an appearance are left out.
std::vector<AnnotationAppearance> visibleAppearances(const SourcePage& page);

}  // namespace vellmora
