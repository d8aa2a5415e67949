#include "pdf/PDFDocument.h"

#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "pdf/DocumentSession.h"

#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url, DocumentProcesses& processes,
                                                     WorkProgress* progress) {
    return fromContent(FileSnapshot::open(url.toLocalFile()), processes, progress);
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes,
                                                         DocumentProcesses& processes) {
    return fromContent(std::make_shared<const FileSnapshot>(bytes), processes, nullptr);
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileSnapshot>& content, DocumentProcesses& processes,
    WorkProgress* progress) {
    try {
        auto session = std::make_unique<DocumentSession>(processes, content);
        DocumentStructure structure = session->open(progress);
        return std::make_shared<const PDFDocument>(content, std::move(session), std::move(structure));
    } catch (...) {
        throw Error::current();
    }
}

PDFDocument::PDFDocument(std::shared_ptr<const FileSnapshot> content,
                         std::unique_ptr<DocumentSession> session, DocumentStructure structure)
    : m_content(std::move(content)),
      m_session(std::move(session)),
      m_pages(std::move(structure.pages)),
      m_damage(std::move(structure.damage)) {}

PDFDocument::~PDFDocument() = default;

std::optional<PDFPage> PDFDocument::page(qsizetype index) const {
    if (index < 0 || index >= pageCount())
        return std::nullopt;
    return m_pages[static_cast<size_t>(index)];
}

std::optional<pid_t> PDFDocument::processID() const {
    return m_session->processID();
}

}  // namespace vellmora
