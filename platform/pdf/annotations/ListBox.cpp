#include "platform/pdf/annotations/ListBox.h"

#include "platform/pdf/annotations/TextLayout.h"

#include <algorithm>

#include <QSet>

namespace vellmora {

namespace {

constexpr double lineHeight = 1.15;  // in font sizes
constexpr double defaultSize = 12;
constexpr const char* chosenColor = "0.6 0.75686 0.8549 rg";

struct Option {
    QString exported;
    QString shown;
};

std::vector<Option> optionsOf(const FormField& field) {
    std::vector<Option> options;
    QPDFObjectHandle list = field.attribute("/Opt");
    if (!list.isArray())
        return options;
    for (QPDFObjectHandle item : list.aitems()) {
        if (item.isArray() && item.getArrayNItems() >= 2)
            options.push_back({textOf(item.getArrayItem(0)), textOf(item.getArrayItem(1))});
        else
            options.push_back({textOf(item), textOf(item)});
    }
    return options;
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

}  // namespace

QString chosenOption(const FormField& field) {
    const QString value = field.text("/V");
    const std::vector<Option> options = optionsOf(field);
    const auto known = std::find_if(options.begin(), options.end(),
                                    [&](const Option& option) { return option.exported == value; });
    return known != options.end() ? known->shown : value;
}

void drawListBox(FormDrawing& drawing, const FormField& field, const Rect& box, const TextFont& font,
                 const std::string& fontName, const TextStyle& style) {
    const std::vector<Option> options = optionsOf(field);
    const QSet<QString> chosen = chosenValues(field);
    TextStyle lineStyle = style;
    if (lineStyle.fontSize <= 0)
        lineStyle.fontSize = defaultSize;
    const double height = lineHeight * lineStyle.fontSize;
    const double top = std::max(0.0, numberOr(field.attribute("/TI"), 0));
    double y = box.maxY();
    for (size_t i = static_cast<size_t>(std::min(top, 1e6)); i < options.size() && y > box.minY(); ++i) {
        const Rect line{box.x, y - height, box.width, height};
        const Rect visible = intersection(line, box);
        if (chosen.contains(options[i].exported) || chosen.contains(options[i].shown)) {
            drawing.add(chosenColor);
            drawing.rectangle(visible);
            drawing.paintPath(true, false);
        }
        drawText(drawing, {options[i].shown, line}, font, fontName, lineStyle);
        y -= height;
    }
}

}  // namespace vellmora
