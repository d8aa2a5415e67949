#include "pdf/PagePdf.h"

#include "pdf/PDFContext.h"

#include <exception>

namespace vellmora {

QByteArray makePagePdf(const PDFDocument& document, qsizetype pageIndex) {
    const std::optional<PDFPage> page = document.page(pageIndex);
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer);
    if (!page || !context)
        return {};
    try {
        context->beginPage();
        context->drawPage(document, pageIndex, DisplayBox::cropBox);
        context->endPage();
        context->close();
    } catch (const std::exception&) {
        return {};
    }
    return consumer.bytes();
}

}  // namespace vellmora
