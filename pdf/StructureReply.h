#pragma once

#include "pdf/DocumentHelper.h"
#include "pdf/DocumentSession.h"

namespace vellmora {

/// Indices of pages that come in several replies, ascending. Others cannot be true: `add` throws
/// `HelperLost`.
class IndexList {
public:
    /// They are less than `end`.
    explicit IndexList(qsizetype end) : m_end(end) {}
    void add(const DocumentHelper::Reply& reply);
    const QList<qsizetype>& indices() const { return m_indices; }

private:
    qsizetype m_end;
    QList<qsizetype> m_indices;
};

/// The answer to the opening of a document, put together from its replies. Throws `HelperLost` for what
/// cannot be true.
class StructureReply {
public:
    explicit StructureReply(bool isFirstPageEnough) : m_isFirstPageEnough(isFirstPageEnough) {}
    void add(const DocumentHelper::Reply& reply);
    bool isAnswered() const { return m_isAnswered; }
    DocumentStructure take();

private:
    void addPages(const std::vector<PageBoxes>& pages);
    void finish(const OpenedDocument& opened);
    void finishBegun();

    bool m_isFirstPageEnough;
    DocumentStructure m_structure;
    IndexList m_lostPages{maxPageCount};
    bool m_isAnswered = false;
};

}  // namespace vellmora
