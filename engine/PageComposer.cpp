#include "engine/PageComposer.h"

#include "engine/compose/ComposerWriter.h"

#include <utility>

namespace vellmora {

PageComposer::PageComposer(PDFDataConsumer& consumer) : m_writer(std::make_unique<Writer>(consumer)) {}

PageComposer::~PageComposer() = default;

void PageComposer::beginPage() {
    m_writer->beginPage();
}

void PageComposer::drawPage(const ParsedDocument& document, qsizetype pageIndex, DisplayBox box) {
    m_writer->drawPage(document, pageIndex, box);
}

int PageComposer::addPicture(PictureMaker picture) {
    return m_writer->addPicture(std::move(picture));
}

void PageComposer::drawPicture(int picture, const Rect& rect) {
    m_writer->drawPicture(picture, rect);
}

void PageComposer::endPage() {
    m_writer->endPage();
}

void PageComposer::close() {
    m_writer->write();
}

QList<qsizetype> PageComposer::incompletePages() const {
    return m_writer->incompletePages();
}

}  // namespace vellmora
