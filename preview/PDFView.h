#pragma once

#include "base/KeyboardFocus.h"
#include "pdf/PDFDocument.h"
#include "preview/PageCache.h"
#include "preview/PageGeometry.h"
#include "preview/PageScrollBars.h"

#include <memory>
#include <optional>

#include <QPainter>
#include <QWidget>

namespace vellmora {

/// Shows one page of a document at a time, fitted or zoomed.
///
/// The wheel scrolls within a page that is larger than the view, and turns to the next page at its edge; with
/// Shift it scrolls sideways, with Ctrl it zooms about the pointer, as a pinch does. Such a page can also be
/// dragged, and has scroll bars. Arrow and page keys, Space, Home and End do what they do in any page view;
/// Ctrl with plus, minus and 0 zooms; a menu under the right mouse button has the rest.
///
/// View space is measured in view points from the view's lower left corner, y upwards.
class PDFView : public QWidget {
    Q_OBJECT

public:
    /// `renderer` must outlive the view.
    PDFView(PageRenderer& renderer, QWidget* parent);

    /// True: the page is scaled to fit the view, also when the view is resized. The default is false.
    void setAutoScales(bool autoScales);
    void setBackgroundColor(const QColor& color);

    /// View points for each point of the page.
    double scaleFactor() const;
    /// Shows the page at a fixed scale from now on; `autoScales` ends. The scale is kept within sensible
    /// limits.
    void setScaleFactor(double scale);
    /// The same, with what is at `anchor` (view space) staying there.
    void zoom(double factor, Point anchor);
    /// How far the page's centre lies from the view's, in view points; kept so that no edge of a page larger
    /// than the view comes further in than its margin.
    void setScrollOffset(Point offset);
    Point scrollOffset() const { return m_offset; }
    /// Scrolls as little as is needed to show this part of the view, or as much of it as the view can show.
    void scrollIntoSight(const Rect& viewRect);

    const std::shared_ptr<const PDFDocument>& document() const { return m_document; }
    /// Shows the first page where there is one. Notifies of a page change.
    void setDocument(std::shared_ptr<const PDFDocument> document);

    /// Index of the page on screen; nothing without a document or with an empty one.
    std::optional<qsizetype> currentPageIndex() const { return m_currentPage; }
    /// Does nothing for an index that the document does not have, or for the page on screen.
    void goTo(qsizetype pageIndex);

    /// Where the current page lies in the view; nothing without one.
    std::optional<PageGeometry> geometryOfPage() const;

    /// Both need a current page; without one they give an empty rectangle.
    Rect convertFromPage(const Rect& pageRect) const;
    Rect convertToPage(const Rect& viewRect) const;

    /// In words, for those who do not see it: which page is on screen, and whether it cannot be shown.
    QString pageDescription() const;

    const PageCache& pictures() const { return m_pictures; }

Q_SIGNALS:
    void pageChanged();
    /// The mapping between page and view changed: scale, size of the view or scroll offset.
    void scaleChanged();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// Of a key, a menu command and a notch of the wheel.
    static constexpr double zoomStep = 1.25;

    Size viewSize() const { return {double(width()), double(height())}; }
    Point centre() const { return {width() / 2.0, height() / 2.0}; }
    Rect shownBox() const;
    double fittingScale() const;
    double withinLimits(double scale) const;
    Point clampedOffset(Point offset) const;
    Point scrollRange() const;
    bool canScroll() const;
    void followLayout();
    void updateCursor();
    void endPanning();

    bool zoomByKey(int key);
    bool turnPage(int direction);
    bool scrollBy(double dx, double dy);
    void scrollOrTurn(double dy);
    void wheelTurn(int angle);
    void showMenu(const QPoint& globalPosition);
    void showPage(std::optional<qsizetype> pageIndex);

    PageCache::Wish wishFor(const PageGeometry& geometry) const;
    void requestPictures(const PageGeometry& geometry);
    void paintPage(QPainter& painter, const PageGeometry& geometry) const;
    void paintFocus(QPainter& painter) const;

    std::shared_ptr<const PDFDocument> m_document;
    std::optional<qsizetype> m_currentPage;
    QColor m_backgroundColor = Qt::black;
    bool m_autoScales = false;
    double m_fixedScale = 1;
    Point m_offset;
    int m_wheelTravel = 0;                ///< in eighths of a degree since the last page was turned
    std::optional<Point> m_panningMouse;  ///< where the mouse is that drags the page
    KeyboardFocus m_keyboardFocus;
    PageScrollBars* m_scrollBars;
    PageCache m_pictures;
};

}  // namespace vellmora
