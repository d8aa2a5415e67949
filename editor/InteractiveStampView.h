#pragma once

#include "base/KeyboardFocus.h"
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
/// and resize it, with the mouse and with the arrow keys. Keys that it has no use for go on to the overlay.
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

    /// Where a drag may lead, in overlay space.
    stampgeometry::Limits limits() const;
    const KeyboardFocus& keyboardFocus() const { return m_keyboardFocus; }

    /// Called on mouse-down with the stamp's id.
    std::function<void(std::optional<QUuid>)> onSelect;
    /// Called at every step of a drag and on mouse-up, with the stamp's id and its place.
    std::function<void(QUuid, Rect)> onPlaceChanged;
    /// Called when the user breaks a drag off. The stamp is to be as it was before, see `drag()`.
    std::function<void(QUuid)> onDragCancelled;
    /// Called for an arrow key, with how far the stamp is to be moved; for a resize only the width counts.
    /// In points of the page, to the right and up as the page is seen.
    std::function<void(QUuid, DragMode, Size)> onStep;
    /// Called when the focus comes to the stamp, other than by a click.
    std::function<void(QUuid)> onFocus;

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Point pointInOverlay(const QSinglePointEvent& event) const;
    bool isOnHandle(Point pointInOverlay) const;
    void updateCursor(Point pointInOverlay);
    Rect draggedPlace(Point mouse) const;
    void reportPlace();
    void cancelDrag();
    bool stepByKey(const QKeyEvent& event);
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
    KeyboardFocus m_keyboardFocus;
};

}  // namespace vellmora
