#include "engine/appearance/FieldOptions.h"

#include "engine/appearance/TextLayout.h"

#include <algorithm>
#include <cmath>

namespace vellmora {

FieldOptions::FieldOptions(QPDFObjectHandle list) {
    if (!list.isArray())
        return;
    for (QPDFObjectHandle item : list.aitems()) {
        const bool isPair = item.isArray() && item.getArrayNItems() >= 2;
        const QString exported = textOf(isPair ? item.getArrayItem(0) : item);
        const QString shown = isPair ? textOf(item.getArrayItem(1)) : exported;
        m_options.push_back({exported, shown});
        if (!m_shownByValue.contains(exported))
            m_shownByValue.insert(exported, shown);
    }
}

bool FieldOptions::isChosen(size_t index, const QSet<QString>& values) const {
    return values.contains(m_options[index].exported) || values.contains(m_options[index].shown);
}

ObjectCache<FieldOptions>::Pointer OptionLists::of(const FormField& field) {
    QPDFObjectHandle list = field.attribute("/Opt");
    return m_lists.get(list, [&] { return FieldOptions(list); });
}

QSet<QString> chosenValues(const FormField& field) {
    QPDFObjectHandle value = field.attribute("/V");
    QSet<QString> chosen;
    if (value.isArray()) {
        for (const QPDFObjectHandle& item : value.aitems())
            chosen.insert(textOf(item));
    } else if (!value.isNull()) {
        chosen.insert(textOf(value));
    }
    return chosen;
}

namespace {

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

void drawListBox(FormBuilder& drawing, const FormField& field, const FieldFrame& frame,
                 const FieldOptions& options, FieldFonts& fonts, const std::string& fontName) {
    TextStyle style = fonts.style(field.defaultAppearance());
    if (style.fontSize <= 0)
        style.fontSize = defaultSize;
    const double height = lineHeight * style.fontSize;
    const Rect box = frame.list();
    const Rect text = frame.content();
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
        drawText(drawing, {options.shown(i), {text.x, line.y, text.width, line.height}}, *writer, style);
        y -= height;
    }
}

}  // namespace vellmora
