#include "app/ContentView.h"

#include <utility>

namespace vellmora {

ContentView::ContentView(std::unique_ptr<StampLibrary> library, FilePanels& panels)
    : m_stampLibrary(std::move(library)), m_panels(panels) {}

ContentView::~ContentView() = default;

QString ContentView::actionLabel(SaveMode mode) {
    switch (mode) {
        case SaveMode::overwriteOriginal:
            return QStringLiteral("Speichern");
        case SaveMode::saveAs:
            return QStringLiteral("Speichern unter…");
    }
    return {};
}

QString ContentView::pageDisplayText() const {
    const auto document = pdfDocument.value();
    if (!document)
        return QStringLiteral("–");
    return QStringLiteral("%1 / %2").arg(currentPageIndex.value() + 1).arg(document->pageCount());
}

QString ContentView::withRemark(const QString& message, const QString& remark) {
    return remark.isEmpty() ? message : message + QStringLiteral(" – ") + remark;
}

qsizetype ContentView::totalStampCount() const {
    qsizetype count = 0;
    for (const QList<StampItem>& stamps : stampsByPage.value())
        count += stamps.size();
    return count;
}

}  // namespace vellmora
