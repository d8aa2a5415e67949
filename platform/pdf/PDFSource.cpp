#include "platform/pdf/PDFSource.h"

#include "platform/pdf/FileRepair.h"
#include "platform/pdf/OpenFile.h"
#include "platform/pdf/PageTree.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace vellmora {

PDFSource::PDFSource(QByteArray bytes, Damage damage) : m_bytes(std::move(bytes)) {
    openFile(m_qpdf, m_bytes, damage);
    m_catalog = m_qpdf.getRoot();
    m_pages = collectPages(m_qpdf);
}

std::unique_ptr<PDFSource> PDFSource::read(const QByteArray& bytes, Damage damage) {
    try {
        return std::unique_ptr<PDFSource>(new PDFSource(bytes, damage));
    } catch (const std::exception&) {
        return nullptr;
    }
}

qsizetype PDFSource::readablePageCount() const {
    return std::count_if(m_pages.begin(), m_pages.end(), [](const SourcePage& page) { return !page.isLost; });
}

std::unique_ptr<PDFSource> PDFSource::open(const QByteArray& bytes) {
    auto source = read(bytes, Damage::refuse);
    if (source && source->isComplete())
        return source;
    try {
        auto repaired = read(repairedFile(bytes), Damage::refuse);
        if (repaired && repaired->readablePageCount() > (source ? source->readablePageCount() : 0))
            return repaired;
    } catch (const QPDFExc& failure) {
        if (failure.getErrorCode() == qpdf_e_password)
            return nullptr;
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the source is taken as it is
    }
    return source ? std::move(source) : read(bytes, Damage::recover);
}

}  // namespace vellmora
