#include "platform/pdf/annotations/FieldAppearance.h"

#include "platform/pdf/annotations/FieldFrame.h"
#include "platform/pdf/annotations/FormField.h"
#include "platform/pdf/annotations/ListBox.h"
#include "platform/pdf/annotations/ShownText.h"
#include "platform/pdf/annotations/TextLayout.h"

#include <algorithm>

namespace vellmora {

namespace {

// Field flags (ISO 32000-2, tables 229, 231 and 233), counted from 1.
constexpr int multilineFlag = 13;
constexpr int passwordFlag = 14;
constexpr int radioFlag = 16;
constexpr int pushButtonFlag = 17;
constexpr int comboFlag = 18;
constexpr int combFlag = 25;

QString displayedText(const FormField& field) {
    QString text = field.is("/Ch") ? chosenOption(field) : field.text("/V");
    if (field.is("/Tx") && field.hasFlag(passwordFlag))
        text.fill(QLatin1Char('*'));
    return text;
}

int combCells(const FormField& field) {
    QPDFObjectHandle length = field.attribute("/MaxLen");
    const bool isComb =
        field.hasFlag(combFlag) && !field.hasFlag(multilineFlag) && !field.hasFlag(passwordFlag);
    return isComb && length.isInteger() ? std::clamp(length.getIntValueAsInt(), 0, 1000) : 0;
}

/// Whether the appearance shows the field's text already; of a list box, its chosen entry among others.
bool isShown(const QString& text, const FormField& field, QPDFObjectHandle appearance) {
    if (!appearance.isStream())
        return false;
    const TextFont font(field.resources(), parseDefaultAppearance(field.defaultAppearance()).fontName);
    const std::string wanted = withoutSpaces(font.encoded(text));
    const std::string shown = shownText(appearance);
    const bool isList = field.is("/Ch") && !field.hasFlag(comboFlag);
    return isList ? !shown.empty() && shown.find(wanted) != std::string::npos : shown == wanted;
}

void drawFieldText(FormDrawing& drawing, const FormField& field, const FieldFrame& frame,
                   ObjectCopier& copier) {
    const TextStyle style = parseDefaultAppearance(field.defaultAppearance());
    const TextFont font(field.resources(), style.fontName);
    const std::string fontName = style.fontName.empty() ? "/Helv" : style.fontName;
    drawing.addFont(fontName, copier.copy(font.dictionary()));
    if (field.is("/Ch") && !field.hasFlag(comboFlag)) {
        drawListBox(drawing, field, frame.content(), font, fontName, style);
        return;
    }
    TextBlock block{displayedText(field), frame.content(), field.alignment()};
    block.isMultiline = field.is("/Tx") && field.hasFlag(multilineFlag);
    block.combCells = field.is("/Tx") ? combCells(field) : 0;
    if (block.combCells > 0)
        block.box = frame.inner();
    if (!block.isMultiline)
        block.text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    drawText(drawing, block, font, fontName, style);
}

/// The mark of a check box or radio button that is on, or the caption of a push button.
void drawButton(FormDrawing& drawing, const Annotation& widget, const FormField& field,
                const FieldFrame& frame, ObjectCopier& copier) {
    QPDFObjectHandle look = widget.entry("/MK");
    QString caption = look.isDictionary() ? textOf(look.getKey("/CA")) : QString();
    TextStyle style = parseDefaultAppearance(field.defaultAppearance());
    if (field.hasFlag(pushButtonFlag)) {
        const TextFont font(field.resources(), style.fontName);
        drawing.addFont("/F0", copier.copy(font.dictionary()));
        drawText(drawing, {caption, frame.content(), 1}, font, "/F0", style);
        return;
    }
    QPDFObjectHandle state = widget.entry("/AS");
    if (state.isNull() && !field.hasFlag(radioFlag))
        state = field.attribute("/V");
    if (!state.isName() || state.isNameAndEquals("/Off"))
        return;
    if (caption.isEmpty())
        caption = field.hasFlag(radioFlag) ? QStringLiteral("l") : QStringLiteral("4");
    drawMark(drawing, caption.left(1), frame.inner(), style);
}

}  // namespace

bool needsNewAppearance(const Annotation& widget, const QPDFObjectHandle& appearance,
                        const PDFSource& source) {
    QPDFObjectHandle form = source.catalog().getKey("/AcroForm");
    QPDFObjectHandle wish =
        form.isDictionary() ? form.getKey("/NeedAppearances") : QPDFObjectHandle::newNull();
    if (!wish.isBool() || !wish.getBoolValue())
        return false;
    const FormField field(widget, source);
    return (field.is("/Tx") || field.is("/Ch")) && !isShown(displayedText(field), field, appearance);
}

QPDFObjectHandle formResources(const Annotation& widget, const PDFSource& source) {
    return FormField(widget, source).resources();
}

std::optional<QPDFObjectHandle> drawField(const Annotation& widget, const PDFSource& source,
                                          ObjectCopier& copier) {
    const FormField field(widget, source);
    const bool isText = field.is("/Tx") || field.is("/Ch");
    if (widget.rect().isEmpty() || (!isText && !field.is("/Btn")))
        return std::nullopt;
    FormDrawing drawing(copier.output());
    const FieldFrame frame(widget, field.is("/Btn") && field.hasFlag(radioFlag));
    frame.draw(drawing);
    if (isText)
        drawFieldText(drawing, field, frame, copier);
    else
        drawButton(drawing, widget, field, frame, copier);
    return drawing.finish(frame.box(), frame.toPage());
}

}  // namespace vellmora
