// A document with any bytes in it, opened, shown and written with a stamp on each page.

#include "base/Error.h"
#include "engine/PageComposer.h"

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

QByteArray withStamps(const ParsedDocument& document, qsizetype pageCount) {
    QImage pixels(3, 2, QImage::Format_ARGB32);
    pixels.fill(qRgba(255, 0, 0, 128));
    MemoryConsumer consumer;
    PageComposer composer(consumer);
    const int picture = composer.addPicture([&] { return encodePicture(Image(pixels)); });
    for (qsizetype index = 0; index < pageCount; ++index) {
        const Rect box = document.page(index).bounds(DisplayBox::mediaBox);
        requireSoundBox(box);
        requireSoundBox(document.page(index).bounds(DisplayBox::cropBox));
        composer.beginPage();
        composer.drawPage(document, index, DisplayBox::mediaBox);
        composer.drawPicture(picture, {box.x, box.y, 30, 20});
        composer.endPage();
    }
    composer.close();
    return consumer.bytes();
}

std::unique_ptr<ParsedDocument> opened(const QByteArray& bytes) {
    try {
        return std::make_unique<ParsedDocument>(std::make_shared<const SnapshotReader>(bytes));
    } catch (const Unparsable&) {
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
    } catch (const std::exception&) {  // a save may fail, with a message
        return 0;
    }
    const auto written = opened(bytes);
    if (!written || written->pageCount() != pageCount)
        std::abort();
    return 0;
}
