#include "ui/Theme.h"

namespace vellmora {

static QColor withAlpha(QColor color, float alpha) {
    color.setAlphaF(alpha);
    return color;
}

QColor Theme::editorBackground() {
    return withAlpha(Qt::black, 0.92F);
}

QColor Theme::secondaryText(const QPalette& palette) {
    return withAlpha(palette.color(QPalette::WindowText), 0.68F);
}

QColor Theme::secondaryTextOnDark() {
    return withAlpha(Qt::white, 0.72F);
}

}  // namespace vellmora
