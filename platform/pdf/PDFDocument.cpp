#include "platform/pdf/PDFDocument.h"

#include "platform/error/Error.h"
#include "platform/files/FileContent.h"
#include "platform/pdf/reading/PDFSource.h"

#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url) {
    try {
        return fromContent(FileContent::open(url.toLocalFile()));
    } catch (const Error&) {
        return nullptr;
    }
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes) {
    return fromContent(std::make_shared<const FileContent>(bytes));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileContent>& content) {
    std::unique_ptr<PDFSource> source = PDFSource::open(content);
    if (!source)
        return nullptr;
    return std::make_shared<const PDFDocument>(std::move(source));
}

PDFDocument::PDFDocument(std::unique_ptr<PDFSource> source) : m_source(std::move(source)) {}

PDFDocument::~PDFDocument() = default;

qsizetype PDFDocument::pageCount() const {
    return m_source->pageCount();
}

const DocumentDamage& PDFDocument::damage() const {
    return m_source->damage();
}

void PDFDocument::readAhead() const {
    m_source->content().readAhead();
}

std::optional<PDFPage> PDFDocument::page(qsizetype index) const {
    if (index < 0 || index >= pageCount())
        return std::nullopt;
    const SourcePage& page = m_source->page(index);
    return PDFPage(page.orientation.uprightMediaBox(), mapRect(page.orientation.toPageSpace(), page.cropBox));
}

}  // namespace vellmora
