#include "pdf/PDFDocument.h"

#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "engine/ParsedDocument.h"

#include <fcntl.h>
#include <utility>

namespace vellmora {

std::shared_ptr<const PDFDocument> PDFDocument::open(const QUrl& url) {
    return fromContent(FileSnapshot::open(url.toLocalFile()));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromData(const QByteArray& bytes) {
    return fromContent(std::make_shared<const FileSnapshot>(bytes));
}

static FileDescriptor duplicate(int descriptor) {
    return FileDescriptor(descriptor < 0 ? -1 : ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

std::shared_ptr<const PDFDocument> PDFDocument::fromContent(
    const std::shared_ptr<const FileSnapshot>& content) {
    try {
        auto source = std::make_unique<ParsedDocument>(std::make_shared<const SnapshotReader>(
            duplicate(content->memory()), duplicate(content->file()), content->size()));
        content->readAhead();
        return std::make_shared<const PDFDocument>(content, std::move(source));
    } catch (const Unparsable& failure) {
        throw documentError(failure.reason);
    } catch (...) {
        throw Error::current();
    }
}

PDFDocument::PDFDocument(std::shared_ptr<const FileSnapshot> content, std::unique_ptr<ParsedDocument> source)
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
    return m_source->page(index);
}

}  // namespace vellmora
