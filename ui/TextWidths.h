#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QString>

namespace vellmora {

/// Tells quickly whether texts fit into a width, for thousands of them: adds up the widths of their
/// characters, which it measures once, and measures a text as a whole only where the sum is too close to the
/// width to tell.
class TextWidths {
public:
    explicit TextWidths(const QFont& font) : m_metrics(font) {}

    bool fits(const QString& text, double width);

private:
    QFontMetricsF m_metrics;
    QHash<QChar, double> m_widths;
};

}  // namespace vellmora
