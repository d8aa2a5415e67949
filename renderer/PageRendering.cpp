#include "renderer/PageRendering.h"

#include <QBuffer>
#include <QPainter>

#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>

namespace vellmora {

static QImage renderPart(QPdfDocument& document, QSize pageSize, const QRect& part) {
    if (part.size() == pageSize)
        return document.render(0, pageSize);
    QPdfDocumentRenderOptions options;
    options.setScaledSize(pageSize);
    // The engine's wrapper takes the distance of the first from the last pixel for the width: one more makes
    // it right.
    options.setScaledClipRect(part.adjusted(0, 0, 1, 1));
    return document.render(0, part.size(), options);
}

bool renderPage(const QByteArray& drawing, QSize pageSize, const QRect& part, QImage& target) {
    QBuffer buffer;
    buffer.setData(drawing);
    buffer.open(QIODevice::ReadOnly);
    QPdfDocument document;
    document.load(&buffer);
    if (document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
        return false;
    const QImage page = renderPart(document, pageSize, part);
    if (page.isNull())
        return false;
    target.fill(Qt::white);
    QPainter(&target).drawImage(0, 0, page);
    return true;
}

}  // namespace vellmora
