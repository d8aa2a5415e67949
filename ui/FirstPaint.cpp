#include "ui/FirstPaint.h"

#include <QEvent>

namespace vellmora {

FirstPaint::FirstPaint(MainWindow& window) : m_pictures(window.sidebar().thumbnails()) {
    window.installEventFilter(this);
}

bool FirstPaint::eventFilter(QObject* window, QEvent* event) {
    if (event->type() == QEvent::Paint) {
        window->removeEventFilter(this);
        connect(&m_pictures, &Thumbnails::settled, this, &FirstPaint::completeOnce);
        // Painting asks for pictures, of which there may be none.
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!m_pictures.isLoading())
                    completeOnce();
            },
            Qt::QueuedConnection);
    }
    return false;
}

void FirstPaint::completeOnce() {
    if (disconnect(&m_pictures, &Thumbnails::settled, this, nullptr))
        Q_EMIT completed();
}

}  // namespace vellmora
