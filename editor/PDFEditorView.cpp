#include "editor/PDFEditorView.h"

#include <algorithm>
#include <utility>

namespace vellmora {

PDFEditorView::Coordinator::Coordinator(const PDFEditorView& parent, QObject* owner)
    : QObject(owner), m_parent(parent) {}

void PDFEditorView::Coordinator::setPageIndex(qsizetype index) {
    m_parent.currentPageIndex.setValue(index);
}

void PDFEditorView::Coordinator::setStamp(const StampItem& stamp) {
    StampsByPage stampsByPage = m_parent.stampsByPage.value();
    QList<StampItem> stamps = stampsByPage.value(stamp.pageIndex);
    const auto known =
        std::find_if(stamps.begin(), stamps.end(), [&](const auto& s) { return s.id == stamp.id; });
    if (known == stamps.end())
        return;
    *known = stamp;
    stampsByPage.insert(stamp.pageIndex, stamps);
    m_parent.stampsByPage.setValue(stampsByPage);
}

void PDFEditorView::Coordinator::setSelectedStamp(const std::optional<QUuid>& id) {
    m_parent.selectedStampID.setValue(id);
}

EditorHostView* PDFEditorView::makeView(PageRenderer& renderer, QWidget* parentWidget) const {
    auto* host = new EditorHostView(renderer, parentWidget);
    auto* coordinator = new Coordinator(*this, host);
    const auto later = [coordinator](auto write) {
        QMetaObject::invokeMethod(coordinator, std::move(write), Qt::QueuedConnection);
    };
    host->onPageChanged = [=](qsizetype index) { later([=] { coordinator->setPageIndex(index); }); };
    host->onStampChanged = [=](const StampItem& stamp) { later([=] { coordinator->setStamp(stamp); }); };
    host->onStampSelected = [=](const std::optional<QUuid>& id) {
        later([=] { coordinator->setSelectedStamp(id); });
    };
    return host;
}

void PDFEditorView::updateView(EditorHostView& host) const {
    host.setDocument(pdfDocument.value());
    host.setStampsByPage(stampsByPage.value());
    host.setSelectedStampID(selectedStampID.value());
    host.displayPage(currentPageIndex.value());
}

}  // namespace vellmora
