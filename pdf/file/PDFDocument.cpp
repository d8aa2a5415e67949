#include "pdf/PDFDocument.h"

#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "pdf/file/OpenFailure.h"
#include "pdf/file/ParsedFile.h"

#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url) {
    return fromContent(FileSnapshot::open(url.toLocalFile()));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes) {
    return fromContent(std::make_shared<const FileSnapshot>(bytes));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileSnapshot>& content) {
    try {
        std::unique_ptr<ParsedFile> source = ParsedFile::open(content);
        if (!source)
            throw openFailure(*content);
        content->readAhead();
        return std::make_shared<const PDFDocument>(content, std::move(source));
    } catch (...) {
        throw Error::current();
    }
}

PDFDocument::PDFDocument(std::shared_ptr<const FileSnapshot> content, std::unique_ptr<ParsedFile> source)
    : m_content(std::move(content)), m_source(std::move(source)) {}

PDFDocument::~PDFDocument() = default;

qsizetype PDFDocument::pageCount() const {
    return m_source->pageCount();
}

const DocumentDamage& PDFDocument::damage() const {
    return m_source->damage();
}

std::optional<PDFPage> PDFDocument::page(qsizetype index) const {
    if (index < 0 || index >= pageCount())
        return std::nullopt;
    const ParsedPage& page = m_source->page(index);
    return PDFPage(page.orientation.uprightMediaBox(), mapRect(page.orientation.toPageSpace(), page.cropBox));
}

}  // namespace vellmora
