#include "engine/ParsedDocument.h"

#include "engine/file/FileInput.h"
#include "engine/file/OpenFailure.h"
#include "engine/file/OutlineReader.h"
#include "engine/file/ParsedFile.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace vellmora {

namespace {

/// Who asks for page after page gets ever more of them at once.
constexpr qsizetype mostPagesAtOnce = 256;

/// A document with more pages is long: to look at so many takes two milliseconds where the file is in memory.
constexpr qsizetype mostPagesOfShort = 2000;
constexpr qsizetype allOfThem = std::numeric_limits<qsizetype>::max();

PDFPage pageWith(const PageOrientation& orientation, const Rect& cropBox) {
    return {orientation.uprightMediaBox(), mapRect(orientation.toPageSpace(), cropBox)};
}

}  // namespace

struct ParsedDocument::Outlined {
    explicit Outlined(PlainFile plain) : file(std::move(plain)) {}

    PlainFile file;
    PageOutline outline;
    std::optional<OutlineReader> reader{std::in_place, file, outline};  ///< until all pages are known
    std::shared_ptr<const ParsedFile> lastPart;
    qsizetype lastIndex = -2;
    qsizetype pagesAtOnce = 1;
};

ParsedDocument::ParsedDocument(const std::shared_ptr<const SnapshotReader>& content, Extent extent)
    : m_content(content) {
    if (std::optional<PlainFile> file = PlainFile::open(*content)) {
        m_outlined = std::make_unique<Outlined>(std::move(*file));
        const bool isFirstRead = readOutline(1);
        if (isFirstRead && extent == Extent::firstPage &&
            m_outlined->reader->statedCount() > mostPagesOfShort)
            return;
    }
    complete();
}

ParsedDocument::~ParsedDocument() = default;

bool ParsedDocument::isComplete() const {
    return m_whole || !m_outlined->reader;
}

void ParsedDocument::complete() {
    if (m_outlined && readOutline(allOfThem))
        m_outlined->reader.reset();
    else
        openWhole();
}

/// What turns out not to be plain is forgotten.
bool ParsedDocument::readOutline(qsizetype pageCount) {
    if (m_outlined->reader->readUpTo(pageCount))
        return true;
    m_outlined.reset();
    return false;
}

void ParsedDocument::openWhole() const {
    m_whole = ParsedFile::open(m_content);
    if (!m_whole)
        throw Unparsable(openFailure(*m_content));
}

qsizetype ParsedDocument::pageCount() const {
    return m_outlined ? m_outlined->outline.pageCount() : m_whole->pageCount();
}

PDFPage ParsedDocument::page(qsizetype index) const {
    if (m_outlined) {
        const PageOutline::Attributes& attributes = m_outlined->outline.attributes(index);
        return pageWith(attributes.orientation, attributes.cropBox);
    }
    const ParsedPage& page = m_whole->page(index);
    return pageWith(page.orientation, page.cropBox);
}

const DocumentDamage& ParsedDocument::damage() const {
    return m_outlined ? m_damage : m_whole->damage();
}

std::optional<OutlinedPage> ParsedDocument::outlinedPage(qsizetype index) const {
    if (m_whole)
        return std::nullopt;
    const PageOutline& outline = m_outlined->outline;
    return OutlinedPage{&m_outlined->file, outline.number(index), &outline.attributes(index)};
}

std::shared_ptr<const ParsedFile> ParsedDocument::fileOf(qsizetype index) const {
    if (m_whole)
        return m_whole;
    if (auto part = partOf(index))
        return part;
    if (!isComplete())
        throw std::runtime_error("not known yet");
    openWhole();
    if (m_whole->pageCount() != pageCount() || !m_whole->damage().lostPages.isEmpty()) {
        m_whole.reset();
        throw std::runtime_error("other pages");
    }
    return m_whole;
}

std::shared_ptr<const ParsedFile> ParsedDocument::partOf(qsizetype index) const {
    Outlined& known = *m_outlined;
    const bool isNext = index == std::exchange(known.lastIndex, index) + 1;
    if (known.lastPart && known.lastPart->hasPage(index))
        return known.lastPart;
    known.pagesAtOnce = isNext ? std::min(2 * known.pagesAtOnce, mostPagesAtOnce) : 1;
    known.lastPart.reset();
    if (const auto part = vellmora::partOf(known.file, known.outline, index, known.pagesAtOnce,
                                           FileInput::endPosition(*m_content)))
        known.lastPart = ParsedFile::openPart(m_content, known.file, known.outline, *part);
    return known.lastPart;
}

}  // namespace vellmora
