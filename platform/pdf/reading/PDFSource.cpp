#include "platform/pdf/reading/PDFSource.h"

#include "platform/pdf/reading/FileRepair.h"
#include "platform/pdf/reading/OpenFile.h"
#include "platform/pdf/reading/PageTree.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace vellmora {

PDFSource::PDFSource(std::shared_ptr<const FileContent> content, Damage damage)
    : m_content(std::move(content)) {
    openFile(m_qpdf, *m_content, damage);
    m_catalog = m_qpdf.getRoot();
    m_pages = collectPages(m_qpdf);
}

std::unique_ptr<PDFSource> PDFSource::read(const std::shared_ptr<const FileContent>& content, Damage damage) {
    try {
        return std::unique_ptr<PDFSource>(new PDFSource(content, damage));
    } catch (const std::exception&) {
        return nullptr;
    }
}

qsizetype PDFSource::readablePageCount() const {
    return std::count_if(m_pages.begin(), m_pages.end(), [](const SourcePage& page) { return !page.isLost; });
}

std::unique_ptr<PDFSource> PDFSource::open(const std::shared_ptr<const FileContent>& content) {
    auto source = read(content, Damage::refuse);
    if (source && source->isComplete())
        return source;
    try {
        const std::string_view all = content->all();
        const auto damaged = QByteArray::fromRawData(all.data(), static_cast<qsizetype>(all.size()));
        const auto repairedContent = std::make_shared<const FileContent>(repairedFile(damaged));
        auto repaired = read(repairedContent, Damage::refuse);
        if (repaired && repaired->readablePageCount() > (source ? source->readablePageCount() : 0))
            return repaired;
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the source is taken as it is
    }
    return source ? std::move(source) : read(content, Damage::recover);
}

}  // namespace vellmora
