#pragma once

#include <QString>

namespace vellmora {

/// The text for a tooltip: broken into lines, blanks and signs as they are.
inline QString toolTipOf(const QString& text) {
    return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

}  // namespace vellmora
