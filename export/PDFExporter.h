#pragma once

#include "library/StampItem.h"
#include "platform/pdf/PDFDocument.h"

#include <QUrl>

namespace vellmora {

/// Writes a document with the stamps placed on it as a fresh PDF; neither is changed.
///
/// Every page is drawn unchanged and then its stamps over it, in list order, stretched to their rectangles.
/// Of a stamp only the rectangle (page space) and the picture are read; one without a readable picture is
/// left out, as are stamps of pages that the document does not have. Both calls are synchronous.
class PDFExporter {
public:
    PDFExporter() = delete;

    /// Throws `PDFExportError`; the target is as it was then.
    static void save(const PDFDocument& document, const StampsByPage& stampsByPage, const QUrl& to);

    /// Writes beside the original and then puts the new file in its place in one step. Throws
    /// `PDFExportError` or the platform's file error; the original is untouched then.
    static void replaceOriginal(const PDFDocument& document, const StampsByPage& stampsByPage,
                                const QUrl& originalURL);
};

}  // namespace vellmora
