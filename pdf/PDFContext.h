#pragma once

#include "base/Image.h"
#include "base/Rect.h"
#include "pdf/PDFDataConsumer.h"
#include "pdf/PDFDocument.h"

#include <memory>

namespace vellmora {

class PageComposer;

/// Writes a fresh PDF, page after page. What is written carries no document information, outline, links,
/// form, script or attachment: only pages, as a screen viewer shows them.
///
/// Order of calls: for each page `beginPage`, any drawing, `endPage`; at last `close`. Nothing reaches the
/// consumer before `close`.
class PDFContext {
public:
    /// A picture that was added to the file; valid for the context that gave it.
    struct Picture {
        int index = 0;
    };

    /// Nothing where libqpdf cannot start a document.
    static std::unique_ptr<PDFContext> create(PDFDataConsumer& consumer);
    ~PDFContext();
    PDFContext(const PDFContext&) = delete;
    PDFContext& operator=(const PDFContext&) = delete;

    /// Begins an empty page, of A4 size until `drawPage` gives it another.
    void beginPage();

    /// Draws a source page into the page that was begun. The output page gets that page's `box` and rotation,
    /// and what is drawn after it is placed in its page space. Content is carried over losslessly, also what
    /// is damaged in it; what cannot be read is left out. Throws `std::bad_alloc` and nothing else.
    ///
    /// The document must live until `close`; other threads that draw from it wait for that.
    void drawPage(const PDFDocument& document, qsizetype pageIndex, DisplayBox box);

    /// Stores a picture once; it can be drawn any number of times on any page.
    Picture addPicture(const Image& image);

    /// Paints the picture stretched to `rect` (page space of the page drawn before, else the begun page's
    /// space).
    void drawPicture(Picture picture, const Rect& rect);

    void endPage();

    /// Writes the file. Throws the consumer's `Error`, or one of the PDF domain where writing fails
    /// otherwise, or `std::bad_alloc`.
    void close();

    /// After `close`: the output's pages on which something of the source is missing, since it could not be
    /// read. 0-based, ascending.
    QList<qsizetype> incompletePages() const;

private:
    explicit PDFContext(PDFDataConsumer& consumer);

    std::unique_ptr<PageComposer> m_composer;
};

}  // namespace vellmora
