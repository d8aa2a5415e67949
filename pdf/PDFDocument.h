#pragma once

#include "pdf/DocumentDamage.h"
#include "pdf/PDFPage.h"

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

#include <QByteArray>
#include <QUrl>

namespace vellmora {

class DocumentProcesses;
class DocumentSession;
class FileSnapshot;
struct DocumentStructure;
class WorkProgress;

/// An open document: a snapshot of the file's bytes and what its structure says of the pages.
///
/// The structure is read in a process of its own, which belongs to the document and may be lost at any time.
/// Soon after opening (the rest of a large file is read meanwhile) the file is not touched again; it may be
/// replaced, truncated or unplugged. What was not read in time is never saved as if it were. Documents are
/// compared by identity and shared, also among threads.
class PDFDocument {
public:
    /// Gets the first look at a document: its first page as a document of its own, to be shown while the
    /// other pages are looked at. Whether all of it can be read is not known then. The page is drawn once the
    /// handler has returned.
    using FirstLookHandler = std::function<void(const std::shared_ptr<const PDFDocument>&)>;

    /// `processes` must outlive the document; `progress` may be null, and is to live until the call returns.
    /// Throws `Error` where the file cannot be read, or its bytes cannot be read as a PDF (damaged beyond
    /// repair, encrypted with a password that is not empty); its reason says why. `onFirstLook` is called at
    /// most once, by the same thread, and only for a document that takes long for its length.
    static std::shared_ptr<const PDFDocument> open(const QUrl& url, DocumentProcesses& processes,
                                                   WorkProgress* progress = nullptr,
                                                   const FirstLookHandler& onFirstLook = {});
    static std::shared_ptr<const PDFDocument> fromData(const QByteArray& bytes, DocumentProcesses& processes);

    /// For `open`.
    PDFDocument(std::shared_ptr<const FileSnapshot> content, std::shared_ptr<DocumentSession> session,
                DocumentStructure structure, std::shared_ptr<const PDFDocument> firstLook = {},
                std::shared_future<QByteArray> firstPagePdf = {});
    ~PDFDocument();
    PDFDocument(const PDFDocument&) = delete;
    PDFDocument& operator=(const PDFDocument&) = delete;

    qsizetype pageCount() const { return static_cast<qsizetype>(m_pages.size()); }
    /// Nothing for an index outside 0 … pageCount − 1.
    std::optional<PDFPage> page(qsizetype index) const;

    /// The first look that was had at this document, where that has proved right: a picture of its page is
    /// one of this document's first page. Else null.
    const std::shared_ptr<const PDFDocument>& firstLook() const { return m_firstLook; }
    bool isFirstLook() const { return m_firstPagePdf.valid(); }
    /// Of a first look: what `makePagePdf` answers for its page, for which it waits. Else nothing.
    std::optional<QByteArray> firstPagePdf() const;

    /// What is known to be missing since the document was opened.
    const DocumentDamage& damage() const { return m_damage; }

    /// The bytes that were opened.
    const std::shared_ptr<const FileSnapshot>& content() const { return m_content; }

    /// Of the process that reads the document; nothing while there is none. Waits while it is at work.
    std::optional<pid_t> processID() const;

    /// What `PDFContext` speaks with; not for use outside of `pdf/`.
    DocumentSession& session() const { return *m_session; }

private:
    static std::shared_ptr<const PDFDocument> fromContent(const std::shared_ptr<const FileSnapshot>& content,
                                                          DocumentProcesses& processes,
                                                          WorkProgress* progress,
                                                          const FirstLookHandler& onFirstLook);

    std::shared_ptr<const FileSnapshot> m_content;
    std::shared_ptr<DocumentSession> m_session;
    std::vector<PDFPage> m_pages;
    DocumentDamage m_damage;
    std::shared_ptr<const PDFDocument> m_firstLook;
    std::shared_future<QByteArray> m_firstPagePdf;  ///< of a first look
};

}  // namespace vellmora
