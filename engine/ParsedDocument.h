#pragma once

#include "base/SnapshotReader.h"
#include "pdf/DocumentDamage.h"
#include "pdf/DocumentFailure.h"
#include "pdf/PDFPage.h"

#include <exception>
#include <memory>
#include <optional>

namespace vellmora {

class ParsedFile;
struct OutlinedPage;

/// A document's bytes cannot be read as a PDF.
struct Unparsable : std::exception {
    explicit Unparsable(DocumentFailure why) : reason(why) {}
    DocumentFailure reason;
};

/// A document whose structure is read. Of one that is sound and plain only the pages that are drawn are read
/// with the PDF library, and not all of them at once: a document of any length takes little memory.
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

    /// The page without the PDF library; nothing of a document that is not plain. It lives as long as the
    /// document.
    std::optional<OutlinedPage> outlinedPage(qsizetype index) const;
    /// A file that has this page, at the same index. Throws the `Error` of content that cannot be read,
    /// `std::bad_alloc`, and `std::runtime_error` where the pages are others than those that were found
    /// before.
    std::shared_ptr<const ParsedFile> fileOf(qsizetype index) const;

private:
    struct Outlined;

    void openWhole() const;
    std::shared_ptr<const ParsedFile> partOf(qsizetype index) const;

    std::shared_ptr<const SnapshotReader> m_content;
    std::unique_ptr<Outlined> m_outlined;               ///< of a plain document
    mutable std::shared_ptr<const ParsedFile> m_whole;  ///< of another one, or where a part is not enough
    DocumentDamage m_damage;
};

}  // namespace vellmora
