#include "app/ContentView.h"
#include "app/StampPlacement.h"
#include "platform/error/Error.h"

namespace vellmora {

static Error insertFailure() {
    return Error(Error::vellmoraDomain, 1, QStringLiteral("Stempel konnte nicht vorbereitet werden."));
}

void ContentView::importStampToLibrary() {
    try {
        const auto url = m_stampLibrary->openImportPanel();
        if (!url)
            return;
        const StampPreset preset = m_stampLibrary->importPreset(*url);
        statusText = QStringLiteral("Stempel importiert: ") + preset.displayName;
    } catch (...) {
        statusText = QStringLiteral("Stempel konnte nicht importiert werden: ") +
                     Error::current().localizedDescription();
    }
}

void ContentView::addStampToCurrentPage(const std::optional<StampPreset>& preset) {
    try {
        const auto image = preset ? m_stampLibrary->image(*preset) : std::nullopt;
        if (!image) {
            statusText = QStringLiteral("Kein aktiver Stempel gewählt.");
            return;
        }
        addStampToCurrentPage(*image, preset->id);
        m_stampLibrary->recordUse(preset->id);
        statusText = QStringLiteral("Stempel auf Seite ") + QString::number(currentPageIndex.value() + 1) +
                     QStringLiteral(" eingefügt: ") + preset->displayName;
    } catch (...) {
        statusText = Error::current().localizedDescription();
    }
}

void ContentView::addStampToCurrentPage(const Image& image, const QUuid& presetID) {
    const auto document = pdfDocument.value();
    const auto page = document ? document->page(currentPageIndex) : std::nullopt;
    if (!page)
        throw insertFailure();
    const QByteArray png = image.pngRepresentation();
    if (png.isEmpty())
        throw insertFailure();
    const StampPlacement placement = initialPlacement(page->bounds(DisplayBox::mediaBox), image.size());
    StampItem stamp;
    stamp.pageIndex = currentPageIndex;
    stamp.rect = placement.rect;
    stamp.aspectRatio = placement.aspectRatio;
    stamp.imageData = sharedWithPlacedStamps(png);
    stamp.presetID = presetID;
    Q_EMIT willPlaceStamp(stamp.imageData, image);
    StampsByPage stamps = stampsByPage;
    stamps[currentPageIndex].append(stamp);
    stampsByPage = stamps;
    selectedStampID = stamp.id;
}

/// The bytes of a placed stamp with the same picture, so that it is kept and decoded once; else the bytes
/// given.
QByteArray ContentView::sharedWithPlacedStamps(const QByteArray& imageData) const {
    for (const QList<StampItem>& stamps : stampsByPage.value()) {
        for (const StampItem& stamp : stamps) {
            if (stamp.imageData == imageData)
                return stamp.imageData;
        }
    }
    return imageData;
}

void ContentView::deleteSelectedStamp() {
    const std::optional<QUuid> selected = selectedStampID;
    if (!selected)
        return;
    StampsByPage stamps = stampsByPage;
    for (QList<StampItem>& onPage : stamps)
        onPage.removeIf([&](const StampItem& stamp) { return stamp.id == *selected; });
    stampsByPage = stamps;
    selectedStampID = std::nullopt;
    statusText = QStringLiteral("Ausgewählter Stempel gelöscht.");
}

void ContentView::removePreset(const QUuid& id) {
    StampsByPage stamps = stampsByPage;
    for (QList<StampItem>& onPage : stamps)
        onPage.removeIf([&](const StampItem& stamp) { return stamp.presetID == id; });
    stamps.removeIf([](const auto& page) { return page.value().isEmpty(); });
    stampsByPage = stamps;
    // The selection stays, even where it names a stamp that is gone: only a deletion and a load clear it.
    try {
        m_stampLibrary->removePreset(id);
        statusText = QStringLiteral("Stempel aus Bibliothek entfernt.");
    } catch (...) {
        statusText = QStringLiteral("Stempel konnte nicht entfernt werden: ") +
                     Error::current().localizedDescription();
    }
}

}  // namespace vellmora
