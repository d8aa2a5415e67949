#pragma once

#include "editor/StampGeometry.h"
#include "editor/StampPicture.h"
#include "library/StampItem.h"

#include <functional>
#include <memory>
#include <optional>

#include <QWidget>

class QSinglePointEvent;

namespace vellmora {

/// One placed stamp inside the editor's overlay. It shows the stamp's picture, and lets the user select, move
/// and resize it.
///
/// All its coordinates are in overlay space: view points, from the overlay's lower left corner, y upwards. Of
/// the page it knows only where it lies. Main thread only.
class InteractiveStampView : public QWidget {
    Q_OBJECT

public:
    enum class DragMode { move, resize };

    /// How things were when the mouse button went down.
    struct Drag {
        DragMode mode = DragMode::move;
        Point mouse;
        Rect place;
        Rect rect;  ///< the stamp's, in page space
    };

    /// The page beneath the stamp.
    struct PageBeneath {
        Rect area;       ///< what is shown of it
        Size pointSize;  ///< view points for each point of the page, across and up
    };

    /// `pictures` must outlive the view. The caller sets the place afterwards.
    InteractiveStampView(StampItem stamp, StampPictures& pictures, QWidget* overlay);

    const StampItem& stamp() const { return m_stamp; }
    void setStamp(const StampItem& stamp);
    bool isSelectedStamp() const { return m_isSelectedStamp; }
    void setSelectedStamp(bool isSelected);
    /// True while the user holds the mouse button down on the stamp. What else happens does not change its
    /// place then. Where the view never gets the mouse-up, the next move without the button ends it.
    bool isDraggingInteractively() const { return m_isDraggingInteractively; }

    /// The drag that goes on, or the last one.
    const Drag& drag() const { return m_drag; }

    /// Where the stamp's picture lies, exactly.
    const Rect& place() const { return m_place; }
    void setPlace(const Rect& place);
    /// The whole points that the place touches: the widget, with the stamp's border and its handle.
    Rect frame() const { return integral(m_place); }
    /// Without a page, the overlay counts as one.
    void setPageBeneath(const PageBeneath& page) { m_page = page; }

    /// Called on mouse-down with the stamp's id.
    std::function<void(std::optional<QUuid>)> onSelect;
    /// Called at every step of a drag and on mouse-up, with the stamp's id and its place.
    std::function<void(QUuid, Rect)> onPlaceChanged;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    stampgeometry::Limits limits() const;
    Point pointInOverlay(const QSinglePointEvent& event) const;
    bool isOnHandle(Point pointInOverlay) const;
    void updateCursor(Point pointInOverlay);
    Rect draggedPlace(Point mouse) const;
    void reportPlace();
    void paintBorder(QPainter& painter) const;
    void paintHandle(QPainter& painter) const;

    StampPictures& m_pictures;
    std::shared_ptr<const StampPicture> m_picture;
    StampItem m_stamp;
    Rect m_place;
    std::optional<PageBeneath> m_page;
    bool m_isSelectedStamp = false;
    Drag m_drag;
    bool m_isDraggingInteractively = false;
    bool m_showsKeyboardFocus = false;
};

}  // namespace vellmora
