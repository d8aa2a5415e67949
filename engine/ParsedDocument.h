#pragma once

#include "base/SnapshotReader.h"
#include "pdf/DocumentDamage.h"
#include "pdf/DocumentFailure.h"
#include "pdf/PDFPage.h"

#include <exception>
#include <memory>

namespace vellmora {

class ParsedFile;

/// A document's bytes cannot be read as a PDF.
struct Unparsable : std::exception {
    explicit Unparsable(DocumentFailure why) : reason(why) {}
    DocumentFailure reason;
};

/// A document whose structure is read.
class ParsedDocument {
public:
    /// Throws `Unparsable`, the `Error` of content that cannot be read, or `std::bad_alloc`.
    explicit ParsedDocument(const std::shared_ptr<const SnapshotReader>& content);
    ~ParsedDocument();
    ParsedDocument(const ParsedDocument&) = delete;
    ParsedDocument& operator=(const ParsedDocument&) = delete;

    qsizetype pageCount() const;
    /// `index` is one of 0 … pageCount − 1.
    PDFPage page(qsizetype index) const;
    /// What is known to be missing since the document was opened.
    const DocumentDamage& damage() const;

    const ParsedFile& file() const { return *m_file; }

private:
    std::unique_ptr<ParsedFile> m_file;
};

}  // namespace vellmora
