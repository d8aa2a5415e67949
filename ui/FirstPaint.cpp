#include "ui/FirstPaint.h"

#include <QCoreApplication>
#include <QEvent>

namespace vellmora {

static const auto completedEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

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
    // Views are painted with this priority, too: this comes after those that show the last picture.
    if (disconnect(&m_pictures, &Thumbnails::settled, this, nullptr))
        QCoreApplication::postEvent(this, new QEvent(completedEvent), Qt::LowEventPriority);
}

bool FirstPaint::event(QEvent* event) {
    if (event->type() != completedEvent)
        return QObject::event(event);
    Q_EMIT completed();
    return true;
}

}  // namespace vellmora
