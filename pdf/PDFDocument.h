#pragma once

#include "pdf/DocumentDamage.h"
#include "pdf/PDFPage.h"

#include <memory>
#include <optional>

#include <QByteArray>
#include <QUrl>

namespace vellmora {

class FileSnapshot;
class ParsedDocument;

/// An open document: a snapshot of the file's bytes and what its structure says of the pages.
///
/// Soon after opening (the rest of a large file is read meanwhile) the file is not touched again; it may be
/// replaced, truncated or unplugged. What was not read in time is never saved as if it were. Documents are
/// compared by identity and shared, also among threads.
class PDFDocument {
public:
    /// Throws `Error` where the file cannot be read, or its bytes cannot be read as a PDF (damaged beyond
    /// repair, encrypted with a password that is not empty); its reason says why.
    static std::shared_ptr<const PDFDocument> open(const QUrl& url);
    static std::shared_ptr<const PDFDocument> fromData(const QByteArray& bytes);

    PDFDocument(std::shared_ptr<const FileSnapshot> content, std::unique_ptr<ParsedDocument> source);
    ~PDFDocument();
    PDFDocument(const PDFDocument&) = delete;
    PDFDocument& operator=(const PDFDocument&) = delete;

    qsizetype pageCount() const;
    /// Nothing for an index outside 0 … pageCount − 1.
    std::optional<PDFPage> page(qsizetype index) const;

    /// What is known to be missing since the document was opened.
    const DocumentDamage& damage() const;

    /// The bytes that were opened.
    const std::shared_ptr<const FileSnapshot>& content() const { return m_content; }

    /// What the engine reads; not for use outside of `pdf/`.
    const ParsedDocument& source() const { return *m_source; }

private:
    static std::shared_ptr<const PDFDocument> fromContent(const std::shared_ptr<const FileSnapshot>& content);

    std::shared_ptr<const FileSnapshot> m_content;
    std::unique_ptr<ParsedDocument> m_source;
};

}  // namespace vellmora
