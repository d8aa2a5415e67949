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
        work.await(
            [&, stamps = stampsByPage.value()] { PDFExporter::replaceOriginal(*document, stamps, *url); });
        pdfSourceURL = url;
        statusText = QStringLiteral("Original überschrieben: ") + url->fileName();
    } catch (const Error& error) {
        statusText = QStringLiteral("Fehler beim Überschreiben: ") + error.localizedDescription();
    }
}

void ContentView::saveAsNewPDF() {
    const auto document = pdfDocument.value();
    if (!document)
        return;
    const auto url = m_panels.runModal(SavePanel{QStringLiteral("PDF speichern unter"), ContentType::pdf,
                                                 defaultSaveAsFilename(), pdfSourceURL});
    if (!url) {
        statusText = QStringLiteral("Speichern unter abgebrochen.");
        return;
    }
    const SecurityScopedAccess access(*url);
    WorkScope work(*this);
    try {
        work.await([&, stamps = stampsByPage.value()] { PDFExporter::save(*document, stamps, *url); });
        pdfSourceURL = url;
        statusText = QStringLiteral("PDF gespeichert: ") + url->fileName();
    } catch (const Error& error) {
        statusText = QStringLiteral("Fehler beim Speichern unter: ") + error.localizedDescription();
    }
}

QString ContentView::defaultSaveAsFilename() const {
    const std::optional<QUrl> url = pdfSourceURL;
    return url ? url->fileName() : QStringLiteral("gestempelt.pdf");
}

}  // namespace vellmora
