#include "ui/FirstPaint.h"

#include <QEvent>

namespace vellmora {

FirstPaint::FirstPaint(QWidget& window) {
    window.installEventFilter(this);
}

bool FirstPaint::eventFilter(QObject* window, QEvent* event) {
    if (event->type() == QEvent::Paint) {
        window->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &FirstPaint::painted, Qt::QueuedConnection);
    }
    return false;
}

}  // namespace vellmora
