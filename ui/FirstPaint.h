#pragma once

#include <QWidget>

namespace vellmora {

/// Tells when a window was painted for the first time. Work that would delay that waits for the signal.
class FirstPaint : public QObject {
    Q_OBJECT

public:
    explicit FirstPaint(QWidget& window);

Q_SIGNALS:
    /// Once, on a turn of the event loop after the window was painted with all that is in it.
    void painted();

protected:
    bool eventFilter(QObject* window, QEvent* event) override;
};

}  // namespace vellmora
