#include "tests/support/TestDocuments.h"

#include "tests/support/TestPdf.h"

namespace vellmora::test {

DocumentProcesses& documentProcesses() {
    // Never destroyed: documents may be kept until the very end.
    static auto* const processes = new DocumentProcesses(QStringLiteral(VELLMORA_DOCUMENT));
    return *processes;
}

std::shared_ptr<const PDFDocument> documentOf(const QByteArray& bytes) {
    return PDFDocument::fromData(bytes, documentProcesses());
}

std::shared_ptr<const PDFDocument> openDocument(const QUrl& url) {
    return PDFDocument::open(url, documentProcesses());
}

std::shared_ptr<const PDFDocument> PdfBuilder::document() const {
    return documentOf(bytes());
}

}  // namespace vellmora::test
