#pragma once

#include <QWidget>

namespace vellmora {

/// The transparent layer over the page that holds the stamp views. It takes no events itself: what no stamp
/// takes goes on to the page view, in which it lies.
class EditorOverlayView : public QWidget {
    Q_OBJECT

public:
    explicit EditorOverlayView(QWidget* pageView);
};

}  // namespace vellmora
