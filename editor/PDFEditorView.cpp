#include "editor/PDFEditorView.h"

#include <algorithm>
#include <utility>

#include <QScopeGuard>

namespace vellmora {

namespace {

bool contains(const StampsByPage& stamps, const StampItem& stamp) {
    const auto page = stamps.constFind(stamp.pageIndex);
    return page != stamps.cend() && page->contains(stamp);
}

}  // namespace

PDFEditorView::Coordinator::Coordinator(const PDFEditorView& parent, QObject* owner)
    : QObject(owner), m_parent(parent) {}

void PDFEditorView::Coordinator::setPageIndex(qsizetype index) {
    m_parent.currentPageIndex = index;
}

void PDFEditorView::Coordinator::setStamp(const StampItem& stamp) {
    QProperty<StampsByPage>& field = m_parent.stampsByPage;
    if (contains(field.value(), stamp))
        return;
    StampsByPage stamps = field.value();
    // With the field empty for the moment, only `stamps` holds the map, and Qt copies none of it on writing.
    field.setValueBypassingBindings({});
    const auto putBack = qScopeGuard([&] { field.setValue(std::move(stamps)); });
    const auto page = stamps.find(stamp.pageIndex);
    if (page == stamps.end())
        return;
    const auto known =
        std::find_if(page->begin(), page->end(), [&](const auto& s) { return s.id == stamp.id; });
    if (known != page->end())
        *known = stamp;
}

void PDFEditorView::Coordinator::setSelectedStamp(const std::optional<QUuid>& id) {
    m_parent.selectedStampID = id;
}

EditorHostView* PDFEditorView::makeView(PageRenderer& renderer, QWidget* parentWidget) const {
    auto* host = new EditorHostView(renderer, parentWidget);
    auto* coordinator = new Coordinator(*this, host);
    const auto later = [coordinator](auto write) {
        QMetaObject::invokeMethod(coordinator, std::move(write), Qt::QueuedConnection);
    };
    host->stampsByPage = [&field = stampsByPage] { return field.value(); };
    host->onPageChanged = [=](qsizetype index) { later([=] { coordinator->setPageIndex(index); }); };
    host->onStampChanged = [=](const StampItem& stamp) { later([=] { coordinator->setStamp(stamp); }); };
    host->onStampSelected = [=](const std::optional<QUuid>& id) {
        later([=] { coordinator->setSelectedStamp(id); });
    };
    return host;
}

void PDFEditorView::updateView(EditorHostView& host) const {
    host.setDocument(pdfDocument.value());
    host.syncStampViews();
    host.setSelectedStampID(selectedStampID.value());
    host.displayPage(currentPageIndex.value());
}

}  // namespace vellmora
