#pragma once

#include "pdf/DocumentProcesses.h"
#include "pdf/PDFDocument.h"

namespace vellmora::test {

/// The processes in which all documents of a test are read. They end with the test program.
DocumentProcesses& documentProcesses();

/// As `PDFDocument` opens them.
std::shared_ptr<const PDFDocument> documentOf(const QByteArray& bytes);
std::shared_ptr<const PDFDocument> openDocument(const QUrl& url);

}  // namespace vellmora::test
