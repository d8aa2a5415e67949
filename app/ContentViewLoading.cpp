#include "app/ContentView.h"
#include "app/WorkScope.h"
#include "platform/error/Error.h"
#include "platform/files/SecurityScopedAccess.h"
#include "platform/pdf/DamageText.h"

#include <algorithm>

#include <QFileInfo>

namespace vellmora {

/// Of the exception that is being handled.
static QString notLoaded() {
    return QStringLiteral("PDF konnte nicht geladen werden. ") + Error::current().reason();
}

void ContentView::openPDF() {
    try {
        const auto url = m_panels.runModal(OpenPanel{QStringLiteral("PDF auswählen"), ContentType::pdf});
        if (url)
            loadPDF(*url);
    } catch (...) {
        statusText = notLoaded();
    }
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
    try {
        const auto document = work.await([&] { return PDFDocument::open(url); });
        m_versions = FileVersions(document->content());
        pdfDocument = document;
        pdfSourceURL = url;
        currentPageIndex = 0;
        stampsByPage = StampsByPage();
        selectedStampID = std::nullopt;
        statusText =
            withRemark(QStringLiteral("PDF geladen: ") + url.fileName(), damageText(document->damage()));
    } catch (...) {
        statusText = notLoaded();
    }
}

}  // namespace vellmora
