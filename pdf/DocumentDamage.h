#pragma once

#include <QList>

namespace vellmora {

/// What of a document could not be read, as far as it is known when the document is opened.
struct DocumentDamage {
    /// The file's table of objects was missing or wrong; the objects were searched for.
    bool isRepaired = false;
    /// The file's end is missing, and whatever stood there.
    bool isCutOff = false;
    /// Pages that the document names but the file has lost, or their content; they are shown blank. 0-based,
    /// ascending.
    QList<qsizetype> lostPages;
    /// Pages that the document counts beyond those that it names, as far as the count is credible.
    qsizetype uncountedPages = 0;

    bool losesPages() const { return !lostPages.isEmpty() || uncountedPages > 0; }
    bool isNone() const { return !isRepaired && !isCutOff && !losesPages(); }
    bool operator==(const DocumentDamage&) const = default;
};

}  // namespace vellmora
