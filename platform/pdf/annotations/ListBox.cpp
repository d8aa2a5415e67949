#include "platform/pdf/annotations/ListBox.h"

#include "platform/pdf/annotations/TextLayout.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

namespace {

constexpr double lineHeight = 1.15;  // in font sizes
constexpr double defaultSize = 12;
constexpr const char* chosenColor = "0.6 0.75686 0.8549 rg";

/// All in one font.
QString textOfLines(const FieldOptions& options, size_t from, size_t to) {
    QString text;
    for (size_t i = from; i < to; ++i)
        text += options.shown(i);
    return text;
}

}  // namespace

void drawListBox(FormDrawing& drawing, const FormField& field, const Rect& box, const FieldOptions& options,
                 FieldFonts& fonts, const std::string& fontName) {
    TextStyle style = fonts.style(field.defaultAppearance());
    if (style.fontSize <= 0)
        style.fontSize = defaultSize;
    const double height = lineHeight * style.fontSize;
    const auto count = static_cast<double>(options.count());
    const double top = std::clamp(numberOr(field.attribute("/TI"), 0), 0.0, count);
    const auto first = static_cast<size_t>(top);
    const auto end = static_cast<size_t>(
        std::clamp(std::ceil(box.height / height) + static_cast<double>(first), 0.0, count));
    const auto writer =
        fonts.writer(drawing, textOfLines(options, first, end), field.resources(), style.fontName, fontName);
    const QSet<QString> chosen = chosenValues(field);
    double y = box.maxY();
    for (size_t i = first; i < end; ++i) {
        const Rect line{box.x, y - height, box.width, height};
        if (options.isChosen(i, chosen)) {
            drawing.add(chosenColor);
            drawing.rectangle(intersection(line, box));
            drawing.paintPath(true, false);
        }
        drawText(drawing, {options.shown(i), line}, *writer, style);
        y -= height;
    }
}

}  // namespace vellmora
