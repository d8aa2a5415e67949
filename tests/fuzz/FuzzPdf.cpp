// A document with any bytes in it, opened, shown and written with a stamp on each page.

#include "base/Error.h"
#include "pdf/PDFContext.h"
#include "pdf/PagePdf.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace vellmora;

namespace {

constexpr qsizetype mostPages = 8;  // more only take longer

void requireSoundBox(const Rect& box) {
    if (!std::isfinite(box.x) || !std::isfinite(box.y) || !(box.width > 0) || !(box.height > 0))
        std::abort();
}

QByteArray withStamps(const PDFDocument& document, qsizetype pageCount) {
    QImage pixels(3, 2, QImage::Format_ARGB32);
    pixels.fill(qRgba(255, 0, 0, 128));
    MemoryConsumer consumer;
    const auto context = PDFContext::create(consumer);
    const PDFContext::Picture picture = context->addPicture(Image(pixels));
    for (qsizetype index = 0; index < pageCount; ++index) {
        const Rect box = document.page(index)->bounds(DisplayBox::mediaBox);
        requireSoundBox(box);
        requireSoundBox(document.page(index)->bounds(DisplayBox::cropBox));
        context->beginPage();
        context->drawPage(document, index, DisplayBox::mediaBox);
        context->drawPicture(picture, {box.x, box.y, 30, 20});
        context->endPage();
    }
    context->close();
    return consumer.bytes();
}

std::shared_ptr<const PDFDocument> opened(const QByteArray& bytes) {
    try {
        return PDFDocument::fromData(bytes);
    } catch (const Error&) {
        return nullptr;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto document =
        opened(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!document)
        return 0;
    const qsizetype pageCount = std::min(document->pageCount(), mostPages);
    QByteArray bytes;
    try {
        bytes = withStamps(*document, pageCount);
    } catch (const Error&) {  // a save may fail, with a message
        return 0;
    }
    const auto written = opened(bytes);
    if (!written || written->pageCount() != pageCount)
        std::abort();
    if (pageCount > 0)
        makePagePdf(*document, 0);
    return 0;
}
