#include "platform/pdf/annotations/FreeTextAppearance.h"

#include "platform/pdf/annotations/FormField.h"
#include "platform/pdf/annotations/TextLayout.h"

namespace vellmora {

std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const PDFSource& source,
                                             ObjectCopier& copier) {
    const Rect& rect = annotation.rect();
    if (rect.isEmpty())
        return std::nullopt;
    const FormField texts(annotation, source);
    TextStyle style = parseDefaultAppearance(texts.defaultAppearance());
    const TextFont font(texts.resources(), style.fontName);
    const double border = annotation.borderWidth();
    FormDrawing drawing(copier.output());
    drawing.setBlending(annotation.opacity(), "Normal");
    drawing.addFont("/F0", copier.copy(font.dictionary()));
    const bool isFilled = drawing.setFillColor(annotation.color("/C"));
    drawing.add("0 G");
    drawing.setLine(border, annotation.borderDashes());
    drawing.rectangle(rect.insetBy(border / 2));
    drawing.paintPath(isFilled, border > 0);
    TextBlock block{textOf(annotation.entry("/Contents")), rect.insetBy(border + 2), texts.alignment()};
    block.isMultiline = true;
    drawText(drawing, block, font, "/F0", style);
    return drawing.finish(rect);
}

}  // namespace vellmora
