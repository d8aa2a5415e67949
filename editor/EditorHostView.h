#pragma once

#include "editor/InteractiveStampView.h"
#include "editor/StampPicture.h"
#include "preview/PDFView.h"

#include <functional>
#include <memory>
#include <optional>

#include <QHash>
#include <QWidget>

namespace vellmora {

/// The transparent layer over the page that holds the stamp views. It handles no events itself: those that no
/// stamp view takes go on to the page view, which is its parent.
class EditorOverlayView : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;
};

/// Shows one page of the document with its placed stamps laid over it, and maps between the stamps' page
/// space and the overlay. It reads the stamps and never changes them: every change leaves through the
/// callbacks. The focus is with the page or with one of its stamps: it goes on to the page where its stamp
/// goes away. Main thread only.
class EditorHostView : public QWidget {
    Q_OBJECT

public:
    /// `renderer` must outlive the view.
    EditorHostView(PageRenderer& renderer, QWidget* parent);

    /// Shows another document from its first page, scaled to fit. Does nothing for the document that is shown
    /// already.
    void setDocument(const std::shared_ptr<const PDFDocument>& document);
    /// Shows a first look at a document until another is shown. It has no stamps, and its page is not
    /// reported.
    void showFirstLook(const std::shared_ptr<const PDFDocument>& firstLook);
    /// Makes the stamp views match the stamps of the page on screen. To be called after the stamps changed;
    /// the host calls it itself when page, scale or size change.
    void syncStampViews();
    void setSelectedStampID(const std::optional<QUuid>& id);
    /// Does nothing for a page that the document does not have, or that is on screen already.
    void displayPage(qsizetype index);
    void focusPage(Qt::FocusReason reason) { m_pdfView->setFocus(reason); }
    /// Moves the focus to the stamp and scrolls it into sight, or to the page where the stamp is not on it.
    void focusStamp(const QUuid& id, Qt::FocusReason reason);

    /// The stamps of all pages as they are now. The host keeps no copy of them.
    std::function<StampsByPage()> stampsByPage;
    /// Called with the stamp at every step of a drag or a key, and on mouse-up. A click leaves it as it is, a
    /// move changes nothing but its origin, a resize nothing but its size.
    std::function<void(const StampItem&)> onStampChanged;
    /// Called when the user clicks on a stamp or goes to it with the Tab key; with nothing for Escape.
    std::function<void(std::optional<QUuid>)> onStampSelected;
    /// Called when the user wants a stamp of the page to be deleted.
    std::function<void(QUuid)> onStampDeleted;
    /// The name by which a screen reader calls a stamp.
    std::function<QString(const StampItem&)> nameOfStamp;
    /// Called when another page is on screen.
    std::function<void(qsizetype)> onPageChanged;

    PDFView& pdfView() { return *m_pdfView; }
    StampPictures& stampPictures() { return m_pictures; }
    EditorOverlayView& overlayContainer() { return *m_overlayContainer; }
    /// Null for a stamp that is not on the page on screen.
    InteractiveStampView* stampView(const QUuid& id) const { return m_stampViews.value(id); }
    /// 0 when no page is on screen.
    qsizetype currentPageIndex() const { return m_pdfView->currentPageIndex().value_or(0); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setup();
    void showPagesOf(const std::shared_ptr<const PDFDocument>& document, bool isFirstLook);
    void pdfPageChanged();
    void removeStaleViews(const QList<StampItem>& stamps);
    void syncStampView(const StampItem& stamp, const PageGeometry& page);
    InteractiveStampView* makeStampView(const StampItem& stamp);
    void updateSelectionState();
    void updateStampRect(const QUuid& stampID, const Rect& place);
    void setStampRect(InteractiveStampView& view, const PageGeometry& page, const Rect& rect);
    void connectStampView(InteractiveStampView& view);
    void updateTabOrder(const QList<StampItem>& stamps);
    void leaveStamp(const InteractiveStampView& view);
    void stepStamp(const QUuid& id, InteractiveStampView::DragMode mode, Size step);
    void restoreStamp(const QUuid& id);
    void enterStamp(const QUuid& id);
    InteractiveStampView* stampForKeys() const;

    StampPictures m_pictures;
    PDFView* m_pdfView;
    EditorOverlayView* m_overlayContainer;
    bool m_isFirstLook = false;
    std::optional<QUuid> m_selectedStampID;
    QHash<QUuid, InteractiveStampView*> m_stampViews;
};

}  // namespace vellmora
