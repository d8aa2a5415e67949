#pragma once

#include "base/Rect.h"

#include <functional>

#include <QObject>

class QScrollBar;
class QWidget;

namespace vellmora {

/// The scroll bars of a page view. They lie over its right and its lower edge, so that the page has the same
/// room with them and without them. Each is shown only where the page is larger than the view.
class PageScrollBars : public QObject {
    Q_OBJECT

public:
    explicit PageScrollBars(QWidget* view);

    /// `offset` is how far the page's centre lies from the view's, y upwards; `range` how far it can lie from
    /// it to either side. Both in view points.
    void show(Point offset, Point range);

    /// Called with the offset that the user wants.
    std::function<void(Point)> onScrolled;

private:
    void layOut();

    QWidget* m_view;
    QScrollBar* m_across;
    QScrollBar* m_up;
    Point m_offset;
    Point m_range;
};

}  // namespace vellmora
