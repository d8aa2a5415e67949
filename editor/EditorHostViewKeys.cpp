#include "editor/EditorHostView.h"

#include <algorithm>

#include <QKeyEvent>

namespace vellmora {

namespace {

/// Where keys may lead a stamp, in page space: as far as the mouse can once the page is scrolled there. A
/// stamp that is smaller already than the mouse can make it may stay so.
stampgeometry::Limits limitsForKeys(const InteractiveStampView& view, const PageGeometry& page) {
    const auto [inSight, onPage, grip, leastWidth] = view.limits();
    const Rect reach =
        rectFromCorners({std::min(inSight.minX(), onPage.minX()), std::min(inSight.minY(), onPage.minY())},
                        {std::max(inSight.maxX(), onPage.maxX()), std::max(inSight.maxY(), onPage.maxY())});
    const Size point = page.pointSize();
    return {page.toPage(reach),
            page.toPage(onPage),
            {grip.width / point.width, grip.height / point.height},
            std::min(leastWidth / point.width, view.stamp().rect.width)};
}

}  // namespace

/// The stamps of the page come after the page, in their order.
void EditorHostView::updateTabOrder(const QList<StampItem>& stamps) {
    QWidget* previous = m_pdfView;
    for (const StampItem& stamp : stamps) {
        setTabOrder(previous, m_stampViews.value(stamp.id));
        previous = m_stampViews.value(stamp.id);
    }
}

void EditorHostView::focusStamp(const QUuid& id, Qt::FocusReason reason) {
    InteractiveStampView* view = stampView(id);
    if (!view)
        return focusPage(reason);
    view->setFocus(reason);
    m_pdfView->scrollIntoSight(view->place());
}

/// Without this, Qt would give the focus of a stamp that goes away to whatever control comes next.
void EditorHostView::leaveStamp(const InteractiveStampView& view) {
    if (window()->focusWidget() == &view)
        focusPage(view.keyboardFocus().reason());
}

void EditorHostView::enterStamp(const QUuid& id) {
    if (onStampSelected)
        onStampSelected(id);
    if (const InteractiveStampView* view = stampView(id))
        m_pdfView->scrollIntoSight(view->place());
}

void EditorHostView::stepStamp(const QUuid& id, InteractiveStampView::DragMode mode, Size step) {
    InteractiveStampView* view = stampView(id);
    const std::optional<PageGeometry> page = m_pdfView->geometryOfPage();
    if (!view || !page)
        return;
    const StampItem& stamp = view->stamp();
    const stampgeometry::Limits limits = limitsForKeys(*view, *page);
    const double ratio = std::max(stamp.aspectRatio, stampgeometry::lowestAspectRatio);
    const bool isMove = mode == InteractiveStampView::DragMode::move;
    setStampRect(*view, *page,
                 isMove ? stampgeometry::moved(stamp.rect, step.width, step.height, limits)
                        : stampgeometry::resized(stamp.rect, step.width, ratio, limits));
    m_pdfView->scrollIntoSight(view->place());
}

void EditorHostView::restoreStamp(const QUuid& id) {
    InteractiveStampView* view = stampView(id);
    const std::optional<PageGeometry> page = m_pdfView->geometryOfPage();
    if (view && page)
        setStampRect(*view, *page, view->drag().rect);
}

/// The stamp that has the focus, else the one on this page that is selected.
InteractiveStampView* EditorHostView::stampForKeys() const {
    if (auto* focused = qobject_cast<InteractiveStampView*>(focusWidget()))
        return focused;
    return m_selectedStampID ? stampView(*m_selectedStampID) : nullptr;
}

/// What neither a stamp nor the page had a use for.
void EditorHostView::keyPressEvent(QKeyEvent* event) {
    const InteractiveStampView* view = stampForKeys();
    if (!view || (event->modifiers() & ~Qt::KeypadModifier))
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            if (onStampDeleted)
                onStampDeleted(view->stamp().id);
            return;
        case Qt::Key_Escape:
            leaveStamp(*view);
            if (onStampSelected)
                onStampSelected(std::nullopt);
            return;
        default:
            return QWidget::keyPressEvent(event);
    }
}

}  // namespace vellmora
