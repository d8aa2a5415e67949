#include "engine/file/OpenFile.h"
#include "engine/file/PageAttributes.h"
#include "engine/file/ParsedFile.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

namespace vellmora {

ParsedFile::ParsedFile(std::shared_ptr<const SnapshotReader> content, const PlainFile& file,
                       const PageOutline& outline, const PlainPart& part)
    : m_content(std::move(content)),
      m_reading(Damage::refuse),
      m_plainFile(file),
      m_firstPage(part.firstPage) {
    m_plainFile->beginReading();
    openFile(m_qpdf, *m_content, part.table);
    m_catalog = m_qpdf.getRoot();
    m_pages.reserve(static_cast<size_t>(part.pageCount));
    for (qsizetype index = m_firstPage; index < m_firstPage + part.pageCount; ++index)
        addPage(outline.number(index), outline.attributes(index));
}

void ParsedFile::addPage(int number, const PageOutline::Attributes& attributes) {
    QPDFObjectHandle dictionary = m_qpdf.getObject(number, 0);
    if (!dictionary.isDictionary())
        throw std::runtime_error("no page");
    const auto inherited = [this](std::string_view text) {
        const auto [entry, isNew] = m_inheritedResources.try_emplace(std::string(text));
        if (isNew)
            entry->second =
                text.empty() ? QPDFObjectHandle::newNull() : QPDFObjectHandle::parse(&m_qpdf, entry->first);
        return entry->second;
    };
    InheritedAttributes resources{
        inherited(attributes.resources), inherited(attributes.outerResources), {}, {}, {}};
    resources.takeResources(dictionary.getKey("/Resources"));
    m_pages.push_back({dictionary, resources.resources, resources.outerResources, attributes.orientation,
                       attributes.cropBox, attributes.statedCropBox, false});
}

std::unique_ptr<ParsedFile> ParsedFile::openPart(const std::shared_ptr<const SnapshotReader>& content,
                                                 const PlainFile& file, const PageOutline& outline,
                                                 const PlainPart& part) {
    try {
        std::unique_ptr<ParsedFile> parsed(new ParsedFile(content, file, outline, part));
        return parsed->hasMetDamage() ? nullptr : std::move(parsed);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace vellmora
