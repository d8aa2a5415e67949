#pragma once

#include <QList>

namespace vellmora {

/// What of a document could not be read, as far as it is known when the document is opened.
struct DocumentDamage {
    /// The file's table of objects was missing or wrong; the objects were searched for.
    bool isRepaired = false;
    /// The file ends before its last object does.
    bool isCutOff = false;
    /// Pages that the document names but the file has lost; they are shown blank. 0-based, ascending.
    QList<qsizetype> lostPages;
    /// Pages that the document counts beyond those that it names.
    qsizetype uncountedPages = 0;

    bool losesPages() const { return !lostPages.isEmpty() || uncountedPages > 0; }
    bool isNone() const { return !isRepaired && !isCutOff && !losesPages(); }
    bool operator==(const DocumentDamage&) const = default;
};

}  // namespace vellmora
