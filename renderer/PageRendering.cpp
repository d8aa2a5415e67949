#include "renderer/PageRendering.h"

#include <QBuffer>
#include <QPainter>

#include <QPdfDocument>

namespace vellmora {

bool renderPage(const QByteArray& drawing, QImage& target) {
    QBuffer buffer;
    buffer.setData(drawing);
    buffer.open(QIODevice::ReadOnly);
    QPdfDocument document;
    document.load(&buffer);
    if (document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
        return false;
    const QImage page = document.render(0, target.size());
    if (page.isNull())
        return false;
    target.fill(Qt::white);
    QPainter(&target).drawImage(0, 0, page);
    return true;
}

}  // namespace vellmora
