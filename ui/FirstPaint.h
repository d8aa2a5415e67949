#pragma once

#include "ui/MainWindow.h"

namespace vellmora {

/// Tells when a window is complete for the first time. Work that would delay that waits for the signal.
class FirstPaint : public QObject {
    Q_OBJECT

public:
    explicit FirstPaint(MainWindow& window);

Q_SIGNALS:
    /// Once, on a turn of the event loop after the window was painted with all that is in it, the library's
    /// pictures in sight too.
    void completed();

protected:
    bool eventFilter(QObject* window, QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void completeOnce();

    Thumbnails& m_pictures;
};

}  // namespace vellmora
