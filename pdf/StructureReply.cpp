#include "pdf/StructureReply.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace vellmora {

namespace {

/// A table of objects has at most so many.
constexpr std::int64_t maxUncountedPages = 8388607;

void require(bool isSound) {
    if (!isSound)
        throw HelperLost(DocumentFailure::unsound);
}

Rect soundRect(const std::array<double, 4>& values) {
    constexpr double greatest = 1e11;
    require(
        std::all_of(values.begin(), values.end(), [](double value) { return std::abs(value) < greatest; }));
    require(values[2] > 0 && values[3] > 0);
    return {values[0], values[1], values[2], values[3]};
}

}  // namespace

void IndexList::add(const DocumentHelper::Reply& reply) {
    for (const auto index : reply.asMany<std::int64_t>()) {
        require(index >= 0 && index < m_end && (m_indices.isEmpty() || index > m_indices.last()));
        m_indices.append(index);
    }
}

void StructureReply::add(const DocumentHelper::Reply& reply) {
    switch (reply.kind) {
        case DocumentReplyKind::pages:
            return addPages(reply.asMany<PageBoxes>());
        case DocumentReplyKind::lostPages:
            return m_lostPages.add(reply);
        case DocumentReplyKind::begun:
            return finishBegun();
        case DocumentReplyKind::opened:
            return finish(reply.as<OpenedDocument>());
        default:
            require(false);
    }
}

void StructureReply::addPages(const std::vector<PageBoxes>& pages) {
    require(m_structure.pages.size() + pages.size() <= static_cast<size_t>(maxPageCount));
    for (const PageBoxes& page : pages)
        m_structure.pages.emplace_back(soundRect(page.mediaBox), soundRect(page.cropBox));
}

void StructureReply::finish(const OpenedDocument& opened) {
    const auto pageCount = static_cast<qsizetype>(m_structure.pages.size());
    const QList<qsizetype>& lost = m_lostPages.indices();
    require(lost.isEmpty() || lost.last() < pageCount);
    require(opened.uncountedPages >= 0 && opened.uncountedPages <= maxUncountedPages);
    m_structure.damage = {opened.isRepaired != 0, opened.isCutOff != 0, lost, opened.uncountedPages};
    m_structure.isContinued = opened.isPlain != 0 && pageCount > 0;
    m_isAnswered = true;
}

void StructureReply::finishBegun() {
    require(m_isFirstPageEnough && m_structure.pages.size() == 1 && m_lostPages.indices().isEmpty());
    m_structure.isComplete = false;
    m_isAnswered = true;
}

DocumentStructure StructureReply::take() {
    return std::move(m_structure);
}

}  // namespace vellmora
