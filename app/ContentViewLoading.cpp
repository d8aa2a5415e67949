#include "app/ContentView.h"
#include "app/WorkScope.h"
#include "platform/files/SecurityScopedAccess.h"

#include <algorithm>

#include <QFileInfo>

namespace vellmora {

void ContentView::openPDF() {
    const auto url = m_panels.runModal(OpenPanel{QStringLiteral("PDF auswählen"), ContentType::pdf});
    if (url)
        loadPDF(*url);
}

bool ContentView::handlePDFDrop(const ItemProviders& providers) {
    const auto file = std::find_if(providers.begin(), providers.end(), [](const auto& provider) {
        return provider->hasItemConforming(fileURLTypeIdentifier);
    });
    if (file == providers.end()) {
        statusText = QStringLiteral("Bitte eine PDF-Datei ablegen.");
        return false;
    }
    (*file)->loadDataRepresentation(fileURLTypeIdentifier,
                                    [this](const auto& data, const auto& error) { finishDrop(data, error); });
    return true;
}

/// Runs on whatever thread delivers the data; every effect on the workspace is posted to the main queue.
void ContentView::finishDrop(const std::optional<QByteArray>& data,
                             const std::optional<ItemLoadError>& error) {
    const auto post = [this](auto effect) { QMetaObject::invokeMethod(this, effect, Qt::QueuedConnection); };
    const std::optional<QUrl> url = data ? fileURLFromDataRepresentation(*data) : std::nullopt;
    if (!url) {
        const QString reason =
            error ? error->localizedDescription : QStringLiteral("Datei konnte nicht gelesen werden.");
        post([this, reason] { statusText = QStringLiteral("Drop fehlgeschlagen: ") + reason; });
    } else if (QFileInfo(url->fileName()).suffix().toLower() == QStringLiteral("pdf")) {
        post([this, url] { loadPDF(*url); });
    } else {
        post([this] { statusText = QStringLiteral("Nur PDF-Dateien werden unterstützt."); });
    }
}

void ContentView::loadPDF(const QUrl& url) {
    const SecurityScopedAccess access(url);
    WorkScope work(*this);
    const auto document = work.await([&] { return PDFDocument::open(url); });
    if (!document) {
        statusText = QStringLiteral("PDF konnte nicht geladen werden.");
        return;
    }
    pdfDocument = document;
    pdfSourceURL = url;
    currentPageIndex = 0;
    stampsByPage = StampsByPage();
    selectedStampID = std::nullopt;
    statusText = QStringLiteral("PDF geladen: ") + url.fileName();
}

}  // namespace vellmora
