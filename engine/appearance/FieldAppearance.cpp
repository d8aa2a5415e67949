#include "engine/appearance/FieldAppearance.h"

#include "engine/appearance/FieldFrame.h"
#include "engine/appearance/FieldOptions.h"
#include "engine/appearance/FieldText.h"
#include "engine/appearance/FormField.h"
#include "engine/appearance/TextLayout.h"

#include <algorithm>

namespace vellmora {

namespace {

int combCells(const FormField& field) {
    const bool isComb =
        field.hasFlag(combFlag) && !field.hasFlag(multilineFlag) && !field.hasFlag(passwordFlag);
    return isComb ? static_cast<int>(std::clamp(numberOr(field.attribute("/MaxLen"), 0), 0.0, 1000.0)) : 0;
}

void drawFieldText(FormBuilder& drawing, const FormField& field, const FieldFrame& frame,
                   AppearanceTools& tools) {
    const TextStyle& style = tools.fonts.style(field.defaultAppearance());
    const std::string fontName = style.fontName.empty() ? "/Helv" : style.fontName;
    if (field.is("/Ch") && !field.hasFlag(comboFlag)) {
        drawListBox(drawing, field, frame, *tools.options.of(field), tools.fonts, fontName);
        return;
    }
    TextBlock block{displayedText(field, tools), frame.content(), field.alignment()};
    block.isMultiline = field.is("/Tx") && field.hasFlag(multilineFlag);
    if (block.isMultiline) {
        block.box = frame.lines();
        block.firstBaseline = 1.1;
    }
    block.combCells = field.is("/Tx") ? combCells(field) : 0;
    if (block.combCells > 0)
        block.box = frame.inner();
    if (!block.isMultiline) {
        constexpr qsizetype longestLine = 10'000;  // more is never visible
        block.text.truncate(longestLine);
        block.text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    }
    const auto writer = tools.fonts.writer(drawing, block.text, field.resources(), style.fontName, fontName);
    drawText(drawing, block, *writer, style);
}

/// The mark of a check box or radio button that is on, or the caption of a push button.
void drawButton(FormBuilder& drawing, const Annotation& widget, const FormField& field,
                const FieldFrame& frame, AppearanceTools& tools) {
    QPDFObjectHandle look = widget.entry("/MK");
    QString caption = look.isDictionary() ? textOf(look.getKey("/CA")) : QString();
    const TextStyle& style = tools.fonts.style(field.defaultAppearance());
    if (field.hasFlag(pushButtonFlag)) {
        const auto writer = tools.fonts.writer(drawing, caption, field.resources(), style.fontName, "/F0");
        drawText(drawing, {caption, frame.content(), 1}, *writer, style);
        return;
    }
    QPDFObjectHandle state = widget.entry("/AS");
    if (state.isNull() && !field.hasFlag(radioFlag))
        state = field.attribute("/V");
    if (!state.isName() || state.isNameAndEquals("/Off"))
        return;
    const char usual = field.hasFlag(radioFlag) ? 'l' : '4';
    drawMark(drawing, caption.isEmpty() ? usual : signFor(caption[0], usual), frame.inner(), style);
}

}  // namespace

bool needsNewAppearance(const Annotation& widget, const QPDFObjectHandle& appearance,
                        const ParsedFile& source, AppearanceTools& tools) {
    QPDFObjectHandle form = source.catalog().getKey("/AcroForm");
    QPDFObjectHandle wish =
        form.isDictionary() ? form.getKey("/NeedAppearances") : QPDFObjectHandle::newNull();
    if (!wish.isBool() || !wish.getBoolValue())
        return false;
    const FormField field(widget, source);
    if (!field.is("/Tx") && !field.is("/Ch"))
        return false;
    if (!QPDFObjectHandle(appearance).isStream())
        return true;
    const TextStyle& style = tools.fonts.style(field.defaultAppearance());
    return showsAnotherText(field, appearance, tools) &&
           tools.fonts.canWrite(displayedText(field, tools), field.resources(), style.fontName);
}

QPDFObjectHandle formResources(const Annotation& widget, const ParsedFile& source) {
    return FormField(widget, source).resources();
}

std::optional<QPDFObjectHandle> drawField(const Annotation& widget, const ParsedFile& source,
                                          AppearanceTools& tools) {
    const FormField field(widget, source);
    const bool isText = field.is("/Tx") || field.is("/Ch");
    if (widget.rect().isEmpty() || (!isText && !field.is("/Btn")))
        return std::nullopt;
    FormBuilder drawing(tools.copier.output());
    const FieldFrame frame(widget, field.is("/Btn") && field.hasFlag(radioFlag));
    frame.draw(drawing);
    if (isText)
        drawFieldText(drawing, field, frame, tools);
    else
        drawButton(drawing, widget, field, frame, tools);
    return drawing.finish(frame.box(), frame.toPage());
}

}  // namespace vellmora
