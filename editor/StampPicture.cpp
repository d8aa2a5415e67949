#include "editor/StampPicture.h"

#include <algorithm>

namespace vellmora {

namespace {

/// In pixels. No copies are made of a picture with a side this small.
constexpr int smallestLevel = 64;

/// Of the rows that are converted at a time. They are still in the processor's cache when they are read
/// again, and the memory that one band had is at hand for the next.
constexpr int bytesInBand = 64 << 10;

/// Mean of four pixels, each channel rounded to the nearest. Two channels are added at a time; the bits
/// between them hold the carry.
QRgb meanOf(QRgb a, QRgb b, QRgb c, QRgb d) {
    constexpr QRgb mask = 0x00ff00ff;
    constexpr QRgb half = 0x00020002;
    const QRgb even = (a & mask) + (b & mask) + (c & mask) + (d & mask) + half;
    const QRgb odd = ((a >> 8) & mask) + ((b >> 8) & mask) + ((c >> 8) & mask) + ((d >> 8) & mask) + half;
    return ((even >> 2) & mask) | (((odd >> 2) & mask) << 8);
}

void halveRows(const QRgb* upper, const QRgb* lower, int width, QRgb* result) {
    for (int x = 0; x + 1 < width; x += 2, upper += 2, lower += 2)
        *result++ = meanOf(upper[0], upper[1], lower[0], lower[1]);
    if (width % 2 != 0)
        *result = meanOf(upper[0], upper[0], lower[0], lower[0]);
}

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// An even number.
int rowsInBand(int width) {
    return std::max(1, bytesInBand / static_cast<int>(sizeof(QRgb)) / width / 2) * 2;
}

/// Half as wide and as high, rounded up. The last column or row of an odd size counts twice.
QImage halved(const QImage& image) {
    constexpr auto format = QImage::Format_ARGB32_Premultiplied;
    QImage result((image.width() + 1) / 2, (image.height() + 1) / 2, format);
    const int rows = rowsInBand(image.width());
    for (int first = 0; first < image.height(); first += rows) {
        const int count = std::min(rows, image.height() - first);
        const QImage band =
            QImage(image.constScanLine(first), image.width(), count, image.bytesPerLine(), image.format())
                .convertToFormat(format);
        for (int y = 0; y < count; y += 2)
            halveRows(rowOf(band, y), rowOf(band, std::min(y + 1, count - 1)), image.width(),
                      reinterpret_cast<QRgb*>(result.scanLine((first + y) / 2)));
    }
    return result;
}

}  // namespace

StampPicture::StampPicture(const QImage& pixels) {
    m_levels.push_back(pixels);
    while (m_levels.back().width() > smallestLevel && m_levels.back().height() > smallestLevel)
        m_levels.push_back(halved(m_levels.back()));
}

void StampPicture::draw(QPainter& painter, const QRectF& target) const {
    const double ratio = painter.device()->devicePixelRatioF();
    size_t level = 0;
    while (level + 1 < m_levels.size() && m_levels[level + 1].width() >= target.width() * ratio &&
           m_levels[level + 1].height() >= target.height() * ratio)
        ++level;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // Where an odd size was rounded up, the picture does not fill the whole copy.
    const QSizeF size = QSizeF(m_levels.front().size()) / double(1 << level);
    painter.drawImage(target, m_levels[level], QRectF(QPointF(0, 0), size));
}

qint64 StampPicture::size() const {
    qint64 size = 0;
    for (const QImage& level : m_levels)
        size += level.sizeInBytes();
    return size;
}

std::shared_ptr<const StampPicture> StampPictures::known(const QByteArray& imageData) {
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& candidate) {
        // Most stamps share them, and there is nothing to compare.
        return candidate.data.constData() == imageData.constData() || candidate.data == imageData;
    });
    if (entry == m_entries.end())
        return nullptr;
    std::rotate(entry, entry + 1, m_entries.end());
    return m_entries.back().picture;
}

std::shared_ptr<const StampPicture> StampPictures::picture(const QByteArray& imageData) {
    if (auto picture = known(imageData))
        return picture;
    const std::optional<Image> image = Image::fromData(imageData);
    if (!image)
        return nullptr;
    add(imageData, *image);
    return m_entries.back().picture;
}

void StampPictures::add(const QByteArray& imageData, const Image& image) {
    if (known(imageData))
        return;
    m_entries.push_back({imageData, std::make_shared<const StampPicture>(image.pixels())});
    dropOldest();
}

/// Drops pictures that no view shows, first the one used longest ago, until the rest fits the budget.
void StampPictures::dropOldest() {
    qint64 size = 0;
    for (const Entry& entry : m_entries)
        size += entry.picture->size();
    const auto newest = m_entries.end() - 1;
    const auto kept = std::remove_if(m_entries.begin(), newest, [&](const Entry& entry) {
        const bool isDropped = size > m_budget && entry.picture.use_count() == 1;
        size -= isDropped ? entry.picture->size() : 0;
        return isDropped;
    });
    m_entries.erase(kept, newest);
}

}  // namespace vellmora
