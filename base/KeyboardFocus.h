#pragma once

#include <QFocusEvent>

namespace vellmora {

/// Whether a view shows that it has the focus. It does where a key led the focus there, not where a click
/// did. A window that comes back shows it as before.
class KeyboardFocus {
public:
    void focusIn(const QFocusEvent& event) {
        const Qt::FocusReason reason = event.reason();
        m_isShown = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                    reason == Qt::ShortcutFocusReason || (m_isShown && isComingBack(event));
    }
    void focusOut(const QFocusEvent& event) { m_isShown = m_isShown && isComingBack(event); }
    bool isShown() const { return m_isShown; }

    /// With which the focus is handed on to another view, which shows it or not as this one does.
    Qt::FocusReason reason() const { return m_isShown ? Qt::ShortcutFocusReason : Qt::OtherFocusReason; }

    /// Another window or a menu had the focus meanwhile.
    static bool isComingBack(const QFocusEvent& event) {
        return event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason;
    }

private:
    bool m_isShown = false;
};

}  // namespace vellmora
