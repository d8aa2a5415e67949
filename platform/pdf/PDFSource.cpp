#include "platform/pdf/PDFSource.h"

#include "platform/pdf/PageTree.h"

#include <exception>
#include <utility>

#include <qpdf/QPDFLogger.hh>

namespace vellmora {

PDFSource::PDFSource(QByteArray bytes) : m_bytes(std::move(bytes)) {
    const auto silent = QPDFLogger::create();
    silent->setInfo(silent->discard());
    silent->setWarn(silent->discard());
    silent->setError(silent->discard());
    m_qpdf.setLogger(silent);
    m_qpdf.setSuppressWarnings(true);
    m_qpdf.processMemoryFile("", m_bytes.constData(), static_cast<size_t>(m_bytes.size()), "");
    m_catalog = m_qpdf.getRoot();
    m_pages = collectPages(m_qpdf);
}

std::unique_ptr<PDFSource> PDFSource::open(const QByteArray& bytes) {
    try {
        return std::unique_ptr<PDFSource>(new PDFSource(bytes));
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace vellmora
