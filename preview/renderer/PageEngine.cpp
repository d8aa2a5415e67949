#include "preview/renderer/PageEngine.h"

#include <algorithm>

#include <QBuffer>

#include <QPdfDocumentRenderOptions>

namespace vellmora {

namespace {

/// A page with a letter whose font it does not bring. Its table of objects is left out: the engine finds
/// them.
constexpr auto pageWithoutItsFont = R"(%PDF-1.4
1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj
2 0 obj << /Type /Pages /Kids [3 0 R] /Count 1 >> endobj
3 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Contents 4 0 R
  /Resources << /Font << /F << /Type /Font /Subtype /TrueType /BaseFont /Helvetica >> >> >> >> endobj
4 0 obj << /Length 22 >> stream
BT /F 9 Tf (a) Tj ET
endstream endobj
trailer << /Root 1 0 R >>
%%EOF
)";

QImage renderPart(QPdfDocument& document, QSize pageSize, const QRect& part) {
    if (part.size() == pageSize)
        return document.render(0, pageSize);
    QPdfDocumentRenderOptions options;
    options.setScaledSize(pageSize);
    // The engine's wrapper takes the distance of the first from the last pixel for the width: one more makes
    // it right.
    options.setScaledClipRect(part.adjusted(0, 0, 1, 1));
    return document.render(0, part.size(), options);
}

QRgb onWhite(QRgb pixel) {
    const QRgb color = qPremultiply(pixel);
    const int white = 255 - qAlpha(pixel);
    return qRgb(qRed(color) + white, qGreen(color) + white, qBlue(color) + white);
}

/// By hand: Qt's painter starts threads for it.
void putOnWhite(const QImage& page, QImage& target) {
    for (int y = 0; y < target.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(page.constScanLine(y));
        auto* to = reinterpret_cast<QRgb*>(target.scanLine(y));
        std::transform(from, from + target.width(), to, onWhite);
    }
}

}  // namespace

void PageEngine::findFonts() {
    QImage target(9, 9, QImage::Format_RGB32);
    render(pageWithoutItsFont, target.size(), target.rect(), target);
}

bool PageEngine::render(const QByteArray& pagePdf, QSize pageSize, const QRect& part, QImage& target) {
    QBuffer buffer;
    buffer.setData(pagePdf);
    buffer.open(QIODevice::ReadOnly);
    QPdfDocument document;
    document.load(&buffer);
    if (document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
        return false;
    const QImage page = renderPart(document, pageSize, part);
    if (page.size() != target.size() || page.format() != QImage::Format_ARGB32)
        return false;
    putOnWhite(page, target);
    return true;
}

}  // namespace vellmora
