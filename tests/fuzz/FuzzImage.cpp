// A picture with any bytes in it, imported and put on a page.

#include "base/Image.h"
#include "engine/PageComposer.h"

#include <cstdint>
#include <cstdlib>

using namespace vellmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr qint64 mostPixels = 1 << 22;  // larger ones only take longer
    const auto image =
        Image::fromData(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!image)
        return 0;
    const Size points = image->size();
    if (!(points.width > 0) || !(points.height > 0) || image->pngRepresentation().isEmpty())
        std::abort();
    if (qint64(image->pixels().width()) * image->pixels().height() > mostPixels)
        return 0;
    MemoryConsumer consumer;
    PageComposer composer(consumer);
    composer.beginPage();
    composer.drawPicture(composer.addPicture([&] { return encodePicture(*image); }),
                         {10, 10, points.width, points.height});
    composer.endPage();
    composer.close();
    const ParsedDocument written(std::make_shared<const SnapshotReader>(consumer.bytes()));
    if (written.pageCount() != 1)
        std::abort();
    return 0;
}
