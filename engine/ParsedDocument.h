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
    enum class Extent {
        firstPage,  ///< the first page is enough, where reading all of them takes long
        allPages,
    };

    /// Throws `Unparsable`, the `Error` of content that cannot be read, or `std::bad_alloc`.
    explicit ParsedDocument(const std::shared_ptr<const SnapshotReader>& content,
                            Extent extent = Extent::allPages);
    ~ParsedDocument();
    ParsedDocument(const ParsedDocument&) = delete;
    ParsedDocument& operator=(const ParsedDocument&) = delete;

    /// False where only the first page is known; the document is one of a single page until `complete`.
    bool isComplete() const;
    /// Reads the other pages. Throws what the constructor throws; the document is of no use then.
    void complete();
    /// All that is known of the document is what its file says in plain words. So is what was known before it
    /// was complete.
    bool isPlain() const { return m_outlined != nullptr; }

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

    bool readOutline(qsizetype pageCount);
    void openWhole() const;
    std::shared_ptr<const ParsedFile> partOf(qsizetype index) const;

    std::shared_ptr<const SnapshotReader> m_content;
    std::unique_ptr<Outlined> m_outlined;               ///< of a plain document
    mutable std::shared_ptr<const ParsedFile> m_whole;  ///< of another one, or where a part is not enough
    DocumentDamage m_damage;
};

}  // namespace vellmora
