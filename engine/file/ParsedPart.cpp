#include "engine/file/OpenFile.h"
#include "engine/file/PageAttributes.h"
#include "engine/file/ParsedFile.h"

#include <exception>
#include <new>
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
    const auto inherited = [this](std::string_view text) {
        const auto [entry, isNew] = m_inheritedResources.try_emplace(std::string(text));
        if (isNew)
            entry->second =
                text.empty() ? QPDFObjectHandle::newNull() : QPDFObjectHandle::parse(&m_qpdf, entry->first);
        return entry->second;
    };
    ParsedPage page{m_qpdf.getObject(number, 0), {},    {},  attributes.orientation, attributes.cropBox,
                    attributes.statedCropBox,    false, this};
    InheritedAttributes resources{
        inherited(attributes.resources), inherited(attributes.outerResources), {}, {}, {}};
    resources.takeResources(page.entry("/Resources"));
    page.resources = resources.resources;
    page.outerResources = resources.outerResources;
    m_pages.push_back(std::move(page));
}

std::optional<QPDFObjectHandle> ParsedFile::plainEntry(const ParsedPage& page, const char* key) const {
    const PlainFile* file = plainFile();
    const int number = page.dictionary.getObjGen().getObj();
    try {
        if (!file)
            return std::nullopt;
        if (std::exchange(m_plainPageNumber, number) != number)
            file->read(number, m_plainPage);
    } catch (const NotPlain&) {
        m_plainPageNumber = 0;
        return std::nullopt;
    }
    const std::string_view value = m_plainPage.entry(key);
    if (value.empty())
        return QPDFObjectHandle::newNull();
    const int target = plainReference(value);
    return target > 0 ? m_qpdf.getObject(target, 0) : QPDFObjectHandle::parse(&m_qpdf, std::string(value));
}

QPDFObjectHandle ParsedPage::entry(const char* key) const {
    const auto plain = part ? part->plainEntry(*this, key) : std::nullopt;
    return plain ? *plain : QPDFObjectHandle(dictionary).getKey(key);
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
