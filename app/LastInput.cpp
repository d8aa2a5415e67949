#include "app/LastInput.h"

#include <QCoreApplication>
#include <QEvent>

namespace vellmora {

LastInput::LastInput() {
    QCoreApplication::instance()->installEventFilter(this);
}

/// A key that is a shortcut arrives as nothing but the question whether it is one.
bool LastInput::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
            m_wasKey = true;
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Drop:
            m_wasKey = false;
            break;
        default:
            break;
    }
    return false;
}

}  // namespace vellmora
