#pragma once

#include "base/Rect.h"
#include "engine/ParsedDocument.h"
#include "pdf/PDFDataConsumer.h"
#include "picture/PictureEncoding.h"

#include <functional>
#include <memory>

#include <QList>

namespace vellmora {

/// Writes a fresh PDF, page after page. What is written carries no document information, outline, links,
/// form, script or attachment: only pages, as a screen viewer shows them.
///
/// Order of calls: for each page `beginPage`, any drawing, `endPage`; at last `close`. Much is written before
/// that: each call may throw what the consumer throws.
class PageComposer {
public:
    using PictureMaker = std::function<EncodedPicture()>;

    /// Throws `std::bad_alloc`.
    explicit PageComposer(PDFDataConsumer& consumer);
    ~PageComposer();
    PageComposer(const PageComposer&) = delete;
    PageComposer& operator=(const PageComposer&) = delete;

    /// Begins an empty page, of A4 size until `drawPage` gives it another.
    void beginPage();

    /// Draws a source page into the page that was begun. The output page gets that page's `box` and rotation,
    /// and what is drawn after it is placed in its page space. Content is carried over losslessly, also what
    /// is damaged in it; what is damaged so that it cannot be read is left out. Throws `std::bad_alloc`, and
    /// the `Error` of a source whose bytes cannot be read.
    ///
    /// The document must live until `close`.
    void drawPage(const ParsedDocument& document, qsizetype pageIndex, DisplayBox box);

    /// Stores a picture once; it can be drawn any number of times on any page. It is asked for when the file
    /// is written. Answers its number: 0 for the first, and so on.
    int addPicture(PictureMaker picture);

    /// Paints the picture stretched to `rect` (page space of the page drawn before, else the begun page's
    /// space). Throws `std::out_of_range` for one that was not added.
    void drawPicture(int picture, const Rect& rect);

    void endPage();

    /// Writes the file. Throws what the consumer throws, the `Error` of a source that cannot be read,
    /// `std::bad_alloc`, or another exception where writing fails otherwise.
    void close();

    /// After `close`: the output's pages on which something of the source is missing, since it could not be
    /// read. 0-based, ascending.
    QList<qsizetype> incompletePages() const;

private:
    class Writer;
    std::unique_ptr<Writer> m_writer;
};

}  // namespace vellmora
