#pragma once

#include "base/Image.h"
#include "base/Rect.h"
#include "pdf/PDFDataConsumer.h"
#include "pdf/PDFDocument.h"

#include <memory>

#include <QList>

namespace vellmora {

class WorkProgress;

/// Writes a fresh PDF, page after page. What is written carries no document information, outline, links,
/// form, script or attachment: only pages, as a screen viewer shows them.
///
/// Order of calls: for each page `beginPage`, any drawing, `endPage`; at last `close`. Until then the calls
/// are only noted down; they are carried out by the document's process.
class PDFContext {
public:
    /// A picture that was added to the file; valid for the context that gave it.
    struct Picture {
        int index = 0;
    };
    /// What the file is for. A look at a page has little time, and little size beside what the document has.
    enum class Purpose { saving, viewing };

    /// Consumer and document must outlive the context, and so must `progress`, which may be null.
    static std::unique_ptr<PDFContext> create(PDFDataConsumer& consumer, const PDFDocument& document,
                                              WorkProgress* progress = nullptr,
                                              Purpose purpose = Purpose::saving);
    ~PDFContext();
    PDFContext(const PDFContext&) = delete;
    PDFContext& operator=(const PDFContext&) = delete;

    /// Begins an empty page, of A4 size until `drawPage` gives it another.
    void beginPage();

    /// Draws a page of the document into the page that was begun. The output page gets that page's `box` as
    /// its media box, and its rotation; with the media box also its crop, bleed, trim and art boxes, where it
    /// has them. What is drawn after it is placed in its page space. Content is carried over losslessly, also
    /// what is damaged in it; what cannot be read is left out.
    void drawPage(qsizetype pageIndex, DisplayBox box);

    /// Stores a picture once; it can be drawn any number of times on any page.
    Picture addPicture(const Image& image);

    /// Paints the picture stretched to `rect` (page space of the page drawn before, else the begun page's
    /// space).
    void drawPicture(Picture picture, const Rect& rect);

    void endPage();

    /// Writes the file. Throws the consumer's `Error`, or one of its own where writing fails otherwise, or
    /// `std::bad_alloc`.
    void close();

    /// After `close`: the output's pages on which something of the source is missing, since it could not be
    /// read. 0-based, ascending.
    QList<qsizetype> incompletePages() const;

private:
    struct Contents;
    explicit PDFContext(std::unique_ptr<Contents> contents);

    std::unique_ptr<Contents> m_contents;
};

}  // namespace vellmora
