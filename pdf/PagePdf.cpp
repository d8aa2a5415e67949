#include "pdf/PagePdf.h"

#include "pdf/PDFContext.h"

#include <exception>

namespace vellmora {

QByteArray makePagePdf(const PDFDocument& document, qsizetype pageIndex, WorkProgress* progress) {
    if (!document.page(pageIndex))
        return {};
    MemoryConsumer consumer;
    try {
        if (const auto known = document.firstPagePdf())
            return *known;
        const auto context = PDFContext::create(consumer, document, progress, PDFContext::Purpose::viewing);
        context->beginPage();
        context->drawPage(pageIndex, DisplayBox::cropBox);
        context->endPage();
        context->close();
    } catch (const std::exception&) {
        return {};
    }
    return consumer.bytes();
}

}  // namespace vellmora
