#include "platform/pdf/render/QtPdfRenderer.h"

#include <utility>

#include <QBuffer>
#include <QPainter>

#include <QPdfDocument>

namespace vellmora {

static QImage renderPage(const PageRenderRequest& request) {
    QBuffer buffer;
    buffer.setData(request.drawing);
    buffer.open(QIODevice::ReadOnly);
    QPdfDocument document;
    document.load(&buffer);
    if (document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
        return {};
    const QImage page = document.render(0, request.pixelSize);
    if (page.isNull())
        return {};
    QImage onPaper(request.pixelSize, QImage::Format_RGB32);
    onPaper.fill(Qt::white);
    QPainter(&onPaper).drawImage(0, 0, page);
    return onPaper;
}

void QtPdfRenderer::render(const PageRenderRequest& request, Completion completion) {
    QMetaObject::invokeMethod(
        &m_lifetime, [request, completion = std::move(completion)] { completion(renderPage(request)); },
        Qt::QueuedConnection);
}

}  // namespace vellmora
