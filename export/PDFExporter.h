#pragma once

#include "base/FileVersions.h"
#include "library/StampItem.h"
#include "pdf/PDFDocument.h"

#include <QUrl>

namespace vellmora {

class WorkProgress;

/// Writes a document with the stamps placed on it as a fresh PDF; neither is changed.
///
/// Every page is drawn unchanged and then its stamps over it, in list order, stretched to their rectangles.
/// Of a stamp only the rectangle (page space) and the picture are read; one without a readable picture is
/// left out, as are stamps of pages that the document does not have. Both calls are synchronous; `progress`
/// may be null.
class PDFExporter {
public:
    PDFExporter() = delete;

    /// Answers what the new file lacks of the document, as `missingText` does. `versions` learns what was
    /// written. Throws `PDFExportError`; the target is as it was then.
    static QString save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to,
                        FileVersions& versions, WorkProgress* progress = nullptr);
    /// The same for who saves once.
    static QString save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to);

    /// Writes beside the original and then puts the new file in its place in one step. Throws
    /// `PDFExportError` or the `Error` of a file; the original is untouched then.
    ///
    /// An original that holds none of `versions` is somebody else's and is refused; one that is gone is
    /// written anew. What is there is compared last of all: who changes it in the moment between that and the
    /// step loses the change. The file that was opened is not replaced by one that lacks some of it, but one
    /// that was written from the same document may be.
    static QString replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                   const QUrl& originalURL, FileVersions& versions,
                                   WorkProgress* progress = nullptr);
    /// The same for who saves once, over what was opened.
    static QString replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                   const QUrl& originalURL);
};

}  // namespace vellmora
