#include "editor/EditorHostView.h"

#include "editor/StampGeometry.h"

#include <algorithm>

#include <QPalette>
#include <QSet>

namespace vellmora {

namespace {

/// The stamp's rectangle once its picture lies at `place`: the one before the drag, changed in nothing but
/// what the drag is about. What went to the screen and back would come with a rounding error.
Rect draggedRect(const InteractiveStampView& view, const Rect& place, const PageGeometry& page) {
    const Rect& rect = view.drag().rect;
    const Rect before = page.toView(rect);
    if (place == before)
        return rect;
    const Size point = page.pointSize();
    if (view.drag().mode == InteractiveStampView::DragMode::move)
        return rect.translated((place.x - before.x) / point.width, (place.y - before.y) / point.height);
    const double width = rect.width + (place.width - before.width) / point.width;
    return {rect.x, rect.y, width,
            width / std::max(view.stamp().aspectRatio, stampgeometry::lowestAspectRatio)};
}

}  // namespace

EditorHostView::EditorHostView(PageRenderer& renderer, QWidget* parent)
    : QWidget(parent),
      m_pdfView(new PDFView(renderer, this)),
      m_overlayContainer(new EditorOverlayView(m_pdfView)) {
    setup();
}

void EditorHostView::setup() {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
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
    showPagesOf(document, false);
}

void EditorHostView::showFirstLook(const std::shared_ptr<const PDFDocument>& firstLook) {
    showPagesOf(firstLook, true);
}

void EditorHostView::showPagesOf(const std::shared_ptr<const PDFDocument>& document, bool isFirstLook) {
    if (document == m_pdfView->document())
        return;
    m_isFirstLook = isFirstLook;
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
    if (index && onPageChanged && !m_isFirstLook)
        onPageChanged(*index);
}

void EditorHostView::syncStampViews() {
    const std::optional<PageGeometry> page = m_pdfView->geometryOfPage();
    const bool hasStamps = stampsByPage && page && !m_isFirstLook;
    const QList<StampItem> stamps = hasStamps ? stampsByPage().value(currentPageIndex()) : QList<StampItem>();
    removeStaleViews(stamps);
    const qsizetype before = m_stampViews.size();
    for (const StampItem& stamp : stamps)
        syncStampView(stamp, *page);
    if (m_stampViews.size() != before)
        updateTabOrder(stamps);
    updateSelectionState();
}

void EditorHostView::removeStaleViews(const QList<StampItem>& stamps) {
    QSet<QUuid> ids;
    for (const StampItem& stamp : stamps)
        ids.insert(stamp.id);
    m_stampViews.removeIf([&](const auto& entry) {
        if (ids.contains(entry.key()))
            return false;
        leaveStamp(*entry.value());
        entry.value()->hide();
        entry.value()->deleteLater();
        return true;
    });
}

/// The overlay covers the page view exactly, so a point has the same coordinates in both.
void EditorHostView::syncStampView(const StampItem& stamp, const PageGeometry& page) {
    InteractiveStampView* view = m_stampViews.value(stamp.id);
    if (!view)
        view = makeStampView(stamp);
    view->setStamp(stamp);
    view->setPageBeneath({page.frame(), page.pointSize()});
    if (!view->isDraggingInteractively())
        view->setPlace(page.toView(stamp.rect));
}

InteractiveStampView* EditorHostView::makeStampView(const StampItem& stamp) {
    auto* view = new InteractiveStampView(stamp, m_pictures, m_overlayContainer);
    connectStampView(*view);
    view->setAccessibleName(nameOfStamp ? nameOfStamp(stamp) : QStringLiteral("Stempel"));
    m_stampViews.insert(stamp.id, view);
    view->show();
    return view;
}

void EditorHostView::connectStampView(InteractiveStampView& view) {
    view.onSelect = [this](const std::optional<QUuid>& id) {
        if (onStampSelected)
            onStampSelected(id);
    };
    view.onPlaceChanged = [this](const QUuid& id, const Rect& place) { updateStampRect(id, place); };
    view.onDragCancelled = [this](const QUuid& id) { restoreStamp(id); };
    view.onStep = [this](const QUuid& id, auto mode, Size step) { stepStamp(id, mode, step); };
    view.onFocus = [this](const QUuid& id) { enterStamp(id); };
}

void EditorHostView::updateSelectionState() {
    for (auto it = m_stampViews.cbegin(); it != m_stampViews.cend(); ++it)
        it.value()->setSelectedStamp(it.key() == m_selectedStampID);
}

void EditorHostView::updateStampRect(const QUuid& stampID, const Rect& place) {
    InteractiveStampView* view = stampView(stampID);
    const std::optional<PageGeometry> page = m_pdfView->geometryOfPage();
    if (view && page)
        setStampRect(*view, *page, draggedRect(*view, place, *page));
}

void EditorHostView::setStampRect(InteractiveStampView& view, const PageGeometry& page, const Rect& rect) {
    StampItem changed = view.stamp();
    changed.rect = rect;
    view.setStamp(changed);
    view.setPlace(page.toView(rect));
    if (onStampChanged)
        onStampChanged(changed);
}

}  // namespace vellmora
