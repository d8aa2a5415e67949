#include "ui/TextWidths.h"

namespace vellmora {

namespace {

/// How far kerning may make the sum of the characters' widths differ from the text's.
constexpr double tolerance = 0.06;

}  // namespace

bool TextWidths::fits(const QString& text, double width) {
    double sum = 0;
    for (const QChar character : text) {
        auto known = m_widths.constFind(character);
        if (known == m_widths.constEnd())
            known = m_widths.insert(character, m_metrics.horizontalAdvance(character));
        sum += *known;
        if (sum > width * (1 + tolerance))
            return false;
    }
    return sum < width * (1 - tolerance) || m_metrics.horizontalAdvance(text) <= width;
}

}  // namespace vellmora
