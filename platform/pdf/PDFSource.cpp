#include "platform/pdf/PDFSource.h"

#include "platform/pdf/FileRepair.h"
#include "platform/pdf/OpenFile.h"
#include "platform/pdf/PageTree.h"

#include <exception>
#include <utility>

namespace vellmora {

PDFSource::PDFSource(QByteArray bytes) : m_bytes(std::move(bytes)) {
    openFile(m_qpdf, m_bytes);
    m_catalog = m_qpdf.getRoot();
    m_pages = collectPages(m_qpdf);
}

std::unique_ptr<PDFSource> PDFSource::read(const QByteArray& bytes) {
    try {
        return std::unique_ptr<PDFSource>(new PDFSource(bytes));
    } catch (const std::exception&) {
        return nullptr;
    }
}

std::unique_ptr<PDFSource> PDFSource::open(const QByteArray& bytes) {
    auto source = read(bytes);
    if (source && source->pageCount() > 0)
        return source;
    try {
        auto repaired = read(repairedFile(bytes));
        return repaired && repaired->pageCount() > 0 ? std::move(repaired) : std::move(source);
    } catch (const std::exception&) {
        return source;
    }
}

}  // namespace vellmora
