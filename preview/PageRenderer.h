#pragma once

#include <functional>

#include <QByteArray>
#include <QImage>
#include <QRect>
#include <QSize>

namespace vellmora {

/// A PDF of one page, how large the whole page is wanted, and which part of it.
struct PageRenderRequest {
    QByteArray pagePdf;
    QSize pixelSize;
    QRect part;  ///< in pixels of the whole page, inside it

    static PageRenderRequest whole(const QByteArray& pagePdf, QSize size) {
        return {pagePdf, size, {{0, 0}, size}};
    }
};

/// Turns PDFs of single pages into pixels. An interface, since the engine behind it is what hostile files
/// break: it does not live in this process.
class PageRenderer {
public:
    /// Called at most once, on the main thread: the part of the page on white; a null image where the
    /// page cannot be rendered.
    using Completion = std::function<void(const QImage&)>;

    virtual ~PageRenderer() = default;
    /// What is asked for from now on belongs to another document. What was asked for before is dropped.
    virtual void beginDocument() = 0;
    /// Returns at once; `completion` runs on a later turn of the event loop. The newest request is served
    /// first, and one that many newer ones have overtaken is dropped.
    virtual void render(const PageRenderRequest& request, Completion completion) = 0;
    /// Pages come back null because nothing can be rendered at all. The next page is tried nevertheless.
    virtual bool isBroken() const = 0;
};

}  // namespace vellmora
