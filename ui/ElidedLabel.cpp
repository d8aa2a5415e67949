#include "ui/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace vellmora {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text().simplified(), Qt::ElideRight, width());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(),
                          shown, foregroundRole());
}

}  // namespace vellmora
