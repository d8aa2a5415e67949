#pragma once

#include "base/Matrix.h"
#include "engine/appearance/Annotation.h"
#include "engine/appearance/AppearanceTools.h"
#include "engine/file/ParsedFile.h"

#include <optional>
#include <vector>

namespace vellmora {

/// What is painted of an annotation or form field.
struct AnnotationAppearance {
    QPDFObjectHandle form;  ///< a form XObject of the output
    Matrix matrix;          ///< from the form's matrix space to the file's own page space
};

/// What a screen viewer paints of the page, in painting order: ordinary annotations, then form fields.
std::vector<Annotation> visibleAnnotations(const ParsedPage& page);

/// Whether that is nothing, as far as is seen at first sight: most pages have no annotations but links.
bool hasPlainlyNoVisibleAnnotations(const PlainObject& page, const PlainFile& file);

/// Makes the appearances of one output.
class Appearances {
public:
    explicit Appearances(ObjectCopier& copier) : m_tools(copier) {}

    /// The appearance that the file brings, or one that is drawn as mature viewers draw it where it brings
    /// none. Nothing where there is nothing to be seen.
    std::optional<AnnotationAppearance> make(const Annotation& annotation, const ParsedFile& source,
                                             const ParsedPage& page);
    /// To be called once, when no more appearances will be made: gives the output the fonts of the texts.
    void finish() { m_tools.fonts.finish(); }

private:
    std::optional<AnnotationAppearance> carry(const Annotation& annotation, QPDFObjectHandle normal,
                                              const ParsedFile& source);

    AppearanceTools m_tools;
    /// A page may name one annotation many times.
    ObjectCache<std::optional<QPDFObjectHandle>> m_drawn;
};

}  // namespace vellmora
