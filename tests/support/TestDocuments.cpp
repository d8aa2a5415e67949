#include "tests/support/TestDocuments.h"

#include "tests/support/TestPdf.h"

namespace vellmora::test {

/// A sanitizer, or a busy machine, takes its time.
static DocumentLimits patientLimits() {
    using namespace std::chrono_literals;
    DocumentLimits limits;
    limits.start = limits.silence = limits.view = 300s;
    return limits;
}

DocumentProcesses& documentProcesses() {
    // Never destroyed: documents may be kept until the very end.
    static auto* const processes = new DocumentProcesses(QStringLiteral(VELLMORA_DOCUMENT), patientLimits());
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
