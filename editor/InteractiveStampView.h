#pragma once

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
/// All its coordinates are in overlay space: view points, from the overlay's lower left corner, y upwards. It
/// knows nothing of pages. Main thread only.
class InteractiveStampView : public QWidget {
    Q_OBJECT

public:
    enum class DragMode { move, resize };

    /// `pictures` must outlive the view. The caller sets the frame afterwards.
    InteractiveStampView(StampItem stamp, StampPictures& pictures, QWidget* overlay);

    const StampItem& stamp() const { return m_stamp; }
    void setStamp(const StampItem& stamp);
    bool isSelectedStamp() const { return m_isSelectedStamp; }
    void setSelectedStamp(bool isSelected);
    /// True while the user holds the mouse button down on the stamp. `EditorHostView` does not change the
    /// frame then. Where the view never gets the mouse-up, the next move without the button ends it.
    bool isDraggingInteractively() const { return m_isDraggingInteractively; }

    /// The frame need not lie on whole points. The widget covers it.
    const Rect& frame() const { return m_frame; }
    void setFrame(const Rect& frame);

    /// Called on mouse-down with the stamp's id.
    std::function<void(std::optional<QUuid>)> onSelect;
    /// Called at every step of a drag and on mouse-up, with the stamp's id and the view's frame.
    std::function<void(QUuid, Rect)> onFrameChanged;

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
    Rect bounds() const { return {0, 0, m_frame.width, m_frame.height}; }
    Rect overlayBounds() const;
    Point pointInOverlay(const QSinglePointEvent& event) const;
    Point pointInBounds(const QSinglePointEvent& event) const;
    Rect proposedFrame(Point mouse) const;
    bool isOnHandle(Point point) const;
    void updateCursor(Point point);
    void reportFrame();
    void paintBorder(QPainter& painter, const QRectF& frame) const;
    void paintHandle(QPainter& painter, const QRectF& frame) const;

    StampPictures& m_pictures;
    std::shared_ptr<const StampPicture> m_picture;
    StampItem m_stamp;
    Rect m_frame;
    bool m_isSelectedStamp = false;
    DragMode m_dragMode = DragMode::move;
    Point m_initialMouseLocationInSuperview;
    Rect m_initialFrame;
    bool m_isDraggingInteractively = false;
    bool m_showsKeyboardFocus = false;
};

}  // namespace vellmora
