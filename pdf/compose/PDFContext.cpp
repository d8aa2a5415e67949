#include "pdf/PDFContext.h"

#include "base/Error.h"
#include "pdf/compose/PDFContextWriter.h"

#include <exception>
#include <new>

namespace vellmora {

PDFContext::PDFContext(PDFDataConsumer& consumer) : m_writer(std::make_unique<Writer>(consumer)) {}

PDFContext::~PDFContext() = default;

std::unique_ptr<PDFContext> PDFContext::create(PDFDataConsumer& consumer) {
    try {
        return std::unique_ptr<PDFContext>(new PDFContext(consumer));
    } catch (const std::exception&) {
        return nullptr;
    }
}

void PDFContext::beginPage() {
    m_writer->beginPage();
}

void PDFContext::drawPage(const PDFDocument& document, qsizetype pageIndex, DisplayBox box) {
    m_writer->drawPage(document.source(), pageIndex, box);
}

PDFContext::Picture PDFContext::addPicture(const Image& image) {
    return m_writer->addPicture(image);
}

void PDFContext::drawPicture(Picture picture, const Rect& rect) {
    m_writer->drawPicture(picture, rect);
}

void PDFContext::endPage() {
    m_writer->endPage();
}

void PDFContext::close() {
    try {
        m_writer->write();
    } catch (const Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        throw Error(Error::pdfDomain, 1, QStringLiteral("Die PDF-Daten konnten nicht erzeugt werden."));
    }
}

QList<qsizetype> PDFContext::incompletePages() const {
    return m_writer->incompletePages();
}

}  // namespace vellmora
