#include "ui/TextMeasures.h"

#include <QFontMetricsF>

namespace vellmora {

double TextMeasures::widthInOneLine(const QString& text, const QFont& font) {
    take(text, font);
    if (!m_width)
        m_width = QFontMetricsF(font).horizontalAdvance(text);
    return *m_width;
}

int TextMeasures::heightFor(int width, const QString& text, const QFont& font,
                            const std::function<int(int)>& measure) {
    take(text, font);
    if (!m_heights.contains(width))
        m_heights.insert(width, measure(width));
    return m_heights.value(width);
}

void TextMeasures::take(const QString& text, const QFont& font) {
    if (m_text == text && m_font == font)
        return;
    m_text = text;
    m_font = font;
    m_width.reset();
    m_heights.clear();
}

}  // namespace vellmora
