#pragma once

#include <QObject>

namespace vellmora {

/// Knows whether the user last pressed a key or a mouse button, in whichever window of the program.
class LastInput : public QObject {
public:
    LastInput();

    /// With which the program moves the focus in answer: a view shows the focus that came with a key.
    Qt::FocusReason focusReason() const { return m_wasKey ? Qt::ShortcutFocusReason : Qt::OtherFocusReason; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_wasKey = false;
};

}  // namespace vellmora
