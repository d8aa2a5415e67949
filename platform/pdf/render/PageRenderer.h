#pragma once

#include <functional>

#include <QByteArray>
#include <QImage>
#include <QSize>

namespace vellmora {

/// A page drawing (a PDF of one page) and how large it is wanted.
struct PageRenderRequest {
    QByteArray drawing;
    QSize pixelSize;
};

/// Turns page drawings into pixels. An interface, since the engine behind it is what hostile files break: it
/// does not live in this process.
class PageRenderer {
public:
    /// Called at most once, on the main thread: the page on white, `pixelSize` large; a null image where the
    /// drawing cannot be rendered.
    using Completion = std::function<void(const QImage&)>;

    virtual ~PageRenderer() = default;
    /// Returns at once; `completion` runs on a later turn of the event loop. The newest request is served
    /// first, and one that many newer ones have overtaken is dropped.
    virtual void render(const PageRenderRequest& request, Completion completion) = 0;
};

}  // namespace vellmora
