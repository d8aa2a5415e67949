#include "pdf/PDFContext.h"

#include "base/Error.h"
#include "engine/PageComposer.h"
#include "pdf/DocumentFailure.h"

#include <exception>
#include <future>
#include <new>

namespace vellmora {

PDFContext::PDFContext(PDFDataConsumer& consumer) : m_composer(std::make_unique<PageComposer>(consumer)) {}

PDFContext::~PDFContext() = default;

std::unique_ptr<PDFContext> PDFContext::create(PDFDataConsumer& consumer) {
    try {
        return std::unique_ptr<PDFContext>(new PDFContext(consumer));
    } catch (const std::exception&) {
        return nullptr;
    }
}

void PDFContext::beginPage() {
    m_composer->beginPage();
}

void PDFContext::drawPage(const PDFDocument& document, qsizetype pageIndex, DisplayBox box) {
    m_composer->drawPage(document.source(), pageIndex, box);
}

PDFContext::Picture PDFContext::addPicture(const Image& image) {
    const auto encoded = std::async(encodePicture, image).share();
    return {m_composer->addPicture([encoded] { return encoded.get(); })};
}

void PDFContext::drawPicture(Picture picture, const Rect& rect) {
    m_composer->drawPicture(picture.index, rect);
}

void PDFContext::endPage() {
    m_composer->endPage();
}

void PDFContext::close() {
    try {
        m_composer->close();
    } catch (const Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        throw documentError(DocumentFailure::notProduced);
    }
}

QList<qsizetype> PDFContext::incompletePages() const {
    return m_composer->incompletePages();
}

}  // namespace vellmora
