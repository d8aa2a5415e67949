#include "engine/appearance/FreeTextAppearance.h"

#include "engine/appearance/FormField.h"
#include "engine/appearance/TextLayout.h"

namespace vellmora {

std::optional<QPDFObjectHandle> drawFreeText(const Annotation& annotation, const ParsedFile& source,
                                             AppearanceTools& tools) {
    const Rect& rect = annotation.rect();
    if (rect.isEmpty())
        return std::nullopt;
    const FormField texts(annotation, source);
    const TextStyle& style = tools.fonts.style(texts.defaultAppearance());
    TextBlock block{textOf(annotation.entry("/Contents")), {}, texts.alignment()};
    const double border = annotation.borderWidth();
    FormBuilder drawing(tools.copier.output());
    drawing.setBlending(annotation.opacity(), "Normal");
    const auto writer = tools.fonts.writer(drawing, block.text, texts.resources(), style.fontName, "/F0");
    const bool isFilled = drawing.setFillColor(annotation.color("/C"));
    drawing.add("0 G");
    drawing.setLine(border, annotation.borderDashes());
    drawing.rectangle(rect.insetBy(border / 2));
    drawing.paintPath(isFilled, border > 0);
    block.box = rect.insetBy(border + 2);
    block.isMultiline = true;
    drawText(drawing, block, *writer, style);
    return drawing.finish(rect);
}

}  // namespace vellmora
