#include "editor/EditorHostView.h"

#include <QPalette>
#include <QSet>

namespace vellmora {

EditorHostView::EditorHostView(PageRenderer& renderer, QWidget* parent)
    : QWidget(parent),
      m_pdfView(new PDFView(renderer, this)),
      m_overlayContainer(new EditorOverlayView(m_pdfView)) {
    setup();
}

void EditorHostView::setup() {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
    setFocusProxy(m_pdfView);
    m_pdfView->setAutoScales(true);
    m_pdfView->setBackgroundColor(Qt::black);
    connect(m_pdfView, &PDFView::pageChanged, this, &EditorHostView::pdfPageChanged);
    connect(m_pdfView, &PDFView::scaleChanged, this, &EditorHostView::syncStampViews);
}

void EditorHostView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_pdfView->setGeometry(rect());
    m_overlayContainer->setGeometry(m_pdfView->rect());
    syncStampViews();
}

void EditorHostView::setDocument(const std::shared_ptr<const PDFDocument>& document) {
    if (document == m_pdfView->document())
        return;
    m_pdfView->setDocument(document);
    m_pdfView->setAutoScales(true);
}

void EditorHostView::setSelectedStampID(const std::optional<QUuid>& id) {
    m_selectedStampID = id;
    updateSelectionState();
}

void EditorHostView::displayPage(qsizetype index) {
    m_pdfView->goTo(index);
}

void EditorHostView::pdfPageChanged() {
    syncStampViews();
    const auto index = m_pdfView->currentPageIndex();
    if (index && onPageChanged)
        onPageChanged(*index);
}

void EditorHostView::syncStampViews() {
    const bool hasStamps = stampsByPage && m_pdfView->currentPageIndex();
    const QList<StampItem> stamps = hasStamps ? stampsByPage().value(currentPageIndex()) : QList<StampItem>();
    removeStaleViews(stamps);
    for (const StampItem& stamp : stamps)
        syncStampView(stamp);
    updateSelectionState();
}

void EditorHostView::removeStaleViews(const QList<StampItem>& stamps) {
    QSet<QUuid> ids;
    for (const StampItem& stamp : stamps)
        ids.insert(stamp.id);
    m_stampViews.removeIf([&](const auto& entry) {
        if (ids.contains(entry.key()))
            return false;
        entry.value()->hide();
        entry.value()->deleteLater();
        return true;
    });
}

void EditorHostView::syncStampView(const StampItem& stamp) {
    InteractiveStampView* view = m_stampViews.value(stamp.id);
    if (!view)
        view = makeStampView(stamp);
    view->setStamp(stamp);
    // The overlay covers the page view exactly, so a point has the same coordinates in both.
    if (!view->isDraggingInteractively())
        view->setFrame(integral(m_pdfView->convertFromPage(stamp.rect)));
}

InteractiveStampView* EditorHostView::makeStampView(const StampItem& stamp) {
    auto* view = new InteractiveStampView(stamp, m_pictures, m_overlayContainer);
    view->onSelect = [this](const std::optional<QUuid>& id) {
        if (onStampSelected)
            onStampSelected(id);
    };
    view->onFrameChanged = [this](const QUuid& id, const Rect& frame) { updateStampRect(id, frame); };
    view->setAccessibleName(nameOfStamp ? nameOfStamp(stamp) : QStringLiteral("Stempel"));
    m_stampViews.insert(stamp.id, view);
    view->show();
    return view;
}

void EditorHostView::updateSelectionState() {
    for (auto it = m_stampViews.cbegin(); it != m_stampViews.cend(); ++it)
        it.value()->setSelectedStamp(it.key() == m_selectedStampID);
}

void EditorHostView::updateStampRect(const QUuid& stampID, const Rect& frameInOverlay) {
    const InteractiveStampView* view = stampView(stampID);
    if (!view || !onStampChanged)
        return;
    StampItem changed = view->stamp();
    changed.rect = m_pdfView->convertToPage(frameInOverlay);
    onStampChanged(changed);
}

}  // namespace vellmora
