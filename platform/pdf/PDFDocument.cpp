#include "platform/pdf/PDFDocument.h"

#include "platform/error/Error.h"
#include "platform/files/FileContent.h"
#include "platform/pdf/OpenFailure.h"
#include "platform/pdf/reading/PDFSource.h"

#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url) {
    return fromContent(FileContent::open(url.toLocalFile()));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes) {
    return fromContent(std::make_shared<const FileContent>(bytes));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileContent>& content) {
    try {
        std::unique_ptr<PDFSource> source = PDFSource::open(content);
        if (!source)
            throw openFailure(*content);
        content->readAhead();
        return std::make_shared<const PDFDocument>(content, std::move(source));
    } catch (...) {
        throw Error::current();
    }
}

PDFDocument::PDFDocument(std::shared_ptr<const FileContent> content, std::unique_ptr<PDFSource> source)
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
    const SourcePage& page = m_source->page(index);
    return PDFPage(page.orientation.uprightMediaBox(), mapRect(page.orientation.toPageSpace(), page.cropBox));
}

}  // namespace vellmora
