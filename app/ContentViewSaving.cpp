#include "app/ContentView.h"
#include "app/WorkScope.h"
#include "export/PDFExporter.h"
#include "platform/error/Error.h"
#include "platform/files/SecurityScopedAccess.h"

namespace vellmora {

void ContentView::beginSaveFlow(SaveMode mode) {
    if (pdfDocument.value())
        performSave(mode);
}

void ContentView::performSave(SaveMode mode) {
    switch (mode) {
        case SaveMode::overwriteOriginal:
            return saveOverOriginalPDF();
        case SaveMode::saveAs:
            return saveAsNewPDF();
    }
}

void ContentView::saveOverOriginalPDF() {
    const auto document = pdfDocument.value();
    const std::optional<QUrl> url = pdfSourceURL;
    if (!document || !url) {
        statusText = QStringLiteral("Keine originale PDF-Datei zum Überschreiben verfügbar.");
        return;
    }
    const SecurityScopedAccess access(*url);
    WorkScope work(*this);
    try {
        const QString missing = work.await([&, stamps = stampsByPage.value()] {
            return PDFExporter::replaceOriginal(*document, stamps, *url, m_versions);
        });
        pdfSourceURL = url;
        statusText = withRemark(QStringLiteral("Original überschrieben: ") + url->fileName(), missing);
    } catch (...) {
        statusText = QStringLiteral("Fehler beim Überschreiben: ") + Error::current().localizedDescription();
    }
}

/// Of the exception that is being handled.
static QString notSavedAs() {
    return QStringLiteral("Fehler beim Speichern unter: ") + Error::current().localizedDescription();
}

void ContentView::saveAsNewPDF() {
    const auto document = pdfDocument.value();
    if (!document)
        return;
    try {
        const auto url = m_panels.runModal(SavePanel{QStringLiteral("PDF speichern unter"), ContentType::pdf,
                                                     defaultSaveAsFilename(), pdfSourceURL});
        if (url)
            saveAsNewPDF(*document, *url);
        else
            statusText = QStringLiteral("Speichern unter abgebrochen.");
    } catch (...) {
        statusText = notSavedAs();
    }
}

void ContentView::saveAsNewPDF(const PDFDocument& document, const QUrl& url) {
    const SecurityScopedAccess access(url);
    WorkScope work(*this);
    try {
        const QString missing = work.await([&, stamps = stampsByPage.value()] {
            return PDFExporter::save(document, stamps, url, m_versions);
        });
        pdfSourceURL = url;
        statusText = withRemark(QStringLiteral("PDF gespeichert: ") + url.fileName(), missing);
    } catch (...) {
        statusText = notSavedAs();
    }
}

QString ContentView::defaultSaveAsFilename() const {
    const std::optional<QUrl> url = pdfSourceURL;
    return url ? url->fileName() : QStringLiteral("gestempelt.pdf");
}

}  // namespace vellmora
