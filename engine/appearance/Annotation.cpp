#include "engine/appearance/Annotation.h"

#include "engine/objects/ContentText.h"

#include <algorithm>

namespace vellmora {

namespace {

// Annotation flags (ISO 32000-2, table 167).
constexpr int hiddenFlag = 1 << 1;
constexpr int noRotateFlag = 1 << 4;
constexpr int noViewFlag = 1 << 5;

/// Whether a file can hold the numbers: readers disagree on greater ones, and what they bound would cover the
/// page.
bool isMeasurable(const Rect& rect) {
    const double farthest = std::max({-rect.minX(), -rect.minY(), rect.maxX(), rect.maxY()});
    return farthest < greatestNumber;
}

}  // namespace

Annotation::Annotation(const QPDFObjectHandle& dictionary) : m_dictionary(dictionary) {
    QPDFObjectHandle subtype = entry("/Subtype");
    if (subtype.isName())
        m_subtype = subtype.getName();
    if (const auto rect = rectangleOf(entry("/Rect")); rect && isMeasurable(*rect))
        m_rect = *rect;
    QPDFObjectHandle flags = entry("/F");
    if (flags.isInteger())
        m_flags = flags.getIntValue();
}

bool Annotation::isVisible() const {
    return (m_flags & (hiddenFlag | noViewFlag)) == 0 && !is("/Popup") && !is("/Link");
}

bool Annotation::isUpright() const {
    return (m_flags & noRotateFlag) != 0;
}

double Annotation::opacity() const {
    return std::clamp(numberOr(entry("/CA"), 1), 0.0, 1.0);
}

double Annotation::borderWidth() const {
    QPDFObjectHandle style = borderStyle();
    if (style.isDictionary())
        return std::max(0.0, numberOr(style.getKey("/W"), 1));
    QPDFObjectHandle border = entry("/Border");
    if (border.isArray() && border.getArrayNItems() >= 3)
        return std::max(0.0, numberOr(border.getArrayItem(2), 1));
    return 1;
}

std::vector<double> Annotation::borderDashes() const {
    QPDFObjectHandle style = borderStyle();
    std::vector<double> dashes;
    if (style.isDictionary()) {
        if (!style.getKey("/S").isNameAndEquals("/D"))
            return {};
        dashes = numbersOf(style.getKey("/D"));
        if (dashes.empty())
            dashes = {3};
    } else if (QPDFObjectHandle border = entry("/Border"); border.isArray() && border.getArrayNItems() >= 4) {
        dashes = numbersOf(border.getArrayItem(3));
    }
    const bool isUsable = std::all_of(dashes.begin(), dashes.end(), [](double dash) { return dash >= 0; }) &&
                          std::any_of(dashes.begin(), dashes.end(), [](double dash) { return dash > 0; });
    return isUsable ? dashes : std::vector<double>();
}

}  // namespace vellmora
