#include "engine/ParsedDocument.h"

#include "engine/file/OpenFailure.h"
#include "engine/file/ParsedFile.h"

namespace vellmora {

ParsedDocument::ParsedDocument(const std::shared_ptr<const SnapshotReader>& content)
    : m_file(ParsedFile::open(content)) {
    if (!m_file)
        throw Unparsable(openFailure(*content));
}

ParsedDocument::~ParsedDocument() = default;

qsizetype ParsedDocument::pageCount() const {
    return m_file->pageCount();
}

PDFPage ParsedDocument::page(qsizetype index) const {
    const ParsedPage& page = m_file->page(index);
    return {page.orientation.uprightMediaBox(), mapRect(page.orientation.toPageSpace(), page.cropBox)};
}

const DocumentDamage& ParsedDocument::damage() const {
    return m_file->damage();
}

}  // namespace vellmora
