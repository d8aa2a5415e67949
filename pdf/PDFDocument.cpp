#include "pdf/PDFDocument.h"

#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "pdf/DocumentSession.h"
#include "pdf/PagePdf.h"

#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url, DocumentProcesses& processes,
                                                     WorkProgress* progress,
                                                     const FirstLookHandler& onFirstLook) {
    return fromContent(FileSnapshot::open(url.toLocalFile()), processes, progress, onFirstLook);
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes,
                                                         DocumentProcesses& processes) {
    return fromContent(std::make_shared<const FileSnapshot>(bytes), processes, nullptr, {});
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileSnapshot>& content, DocumentProcesses& processes, WorkProgress* progress,
    const FirstLookHandler& onFirstLook) {
    try {
        const auto session = std::make_shared<DocumentSession>(processes, content);
        std::shared_ptr<const PDFDocument> firstLook;
        const auto lookAt = [&](const PDFPage& page) {
            const DocumentStructure structure{{page}, {}};
            std::promise<QByteArray> pagePdf;
            firstLook = std::make_shared<const PDFDocument>(content, session, structure, nullptr,
                                                            pagePdf.get_future().share());
            // Whoever shows the page makes room for it while it is drawn.
            onFirstLook(firstLook);
            const QByteArray drawn = makePagePdf(PDFDocument(content, session, structure), 0, progress);
            pagePdf.set_value(drawn);
            if (drawn.isEmpty())
                firstLook.reset();
        };
        DocumentStructure structure =
            session->open(progress, onFirstLook ? lookAt : DocumentSession::FirstPageHandler());
        if (!structure.isContinued)
            firstLook.reset();
        return std::make_shared<const PDFDocument>(content, session, std::move(structure), firstLook);
    } catch (...) {
        throw Error::current();
    }
}

PDFDocument::PDFDocument(std::shared_ptr<const FileSnapshot> content,
                         std::shared_ptr<DocumentSession> session, DocumentStructure structure,
                         std::shared_ptr<const PDFDocument> firstLook,
                         std::shared_future<QByteArray> firstPagePdf)
    : m_content(std::move(content)),
      m_session(std::move(session)),
      m_pages(std::move(structure.pages)),
      m_damage(std::move(structure.damage)),
      m_firstLook(std::move(firstLook)),
      m_firstPagePdf(std::move(firstPagePdf)) {}

PDFDocument::~PDFDocument() = default;

std::optional<PDFPage> PDFDocument::page(qsizetype index) const {
    if (index < 0 || index >= pageCount())
        return std::nullopt;
    return m_pages[static_cast<size_t>(index)];
}

std::optional<QByteArray> PDFDocument::firstPagePdf() const {
    return isFirstLook() ? std::optional(m_firstPagePdf.get()) : std::nullopt;
}

std::optional<pid_t> PDFDocument::processID() const {
    return m_session->processID();
}

}  // namespace vellmora
