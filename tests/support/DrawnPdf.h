#pragma once

#include "engine/objects/Qpdf.h"
#include "pdf/PDFContext.h"
#include "tests/support/TestPdf.h"

#include <string>
#include <utility>

namespace vellmora::test {

inline std::string text(const std::shared_ptr<Buffer>& buffer) {
    return {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()};
}

/// An output of the context, opened with the PDF library.
class Output {
public:
    explicit Output(QByteArray bytes) : m_bytes(std::move(bytes)) {
        m_pdf.processMemoryFile("output", m_bytes.constData(), static_cast<size_t>(m_bytes.size()));
    }
    QPDFObjectHandle page(size_t index = 0) { return m_pdf.getAllPages().at(index); }
    QPDFObjectHandle root() { return m_pdf.getRoot(); }
    QPDFObjectHandle trailer() { return m_pdf.getTrailer(); }
    /// The object that the page paints under this name; null where there is none.
    QPDFObjectHandle drawn(const std::string& name) {
        return page().getKey("/Resources").getKey("/XObject").getKey(name);
    }
    std::string contentOf(const std::string& name) { return text(drawn(name).getStreamData()); }
    std::string pageContent() { return text(page().getKey("/Contents").getStreamData()); }

private:
    QByteArray m_bytes;
    QPDF m_pdf;
};

/// The bytes of a context's output for the first page of a document.
inline QByteArray drawFirstPage(const PdfBuilder& source) {
    MemoryConsumer consumer;
    const auto document = source.document();
    const auto context = PDFContext::create(consumer, *document);
    context->beginPage();
    context->drawPage(0, DisplayBox::mediaBox);
    context->endPage();
    context->close();
    return consumer.bytes();
}

}  // namespace vellmora::test
