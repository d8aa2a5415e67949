#include "editor/StampPicture.h"

#include "platform/image/Image.h"

namespace vellmora {

namespace {

/// Side in pixels below which no smaller copy is worth making.
constexpr int smallestLevel = 64;

}  // namespace

StampPicture::StampPicture(const QImage& pixels) {
    m_levels.push_back(pixels.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    while (m_levels.back().width() > smallestLevel && m_levels.back().height() > smallestLevel) {
        const QSize half = m_levels.back().size() / 2;
        m_levels.push_back(m_levels.back().scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
}

void StampPicture::draw(QPainter& painter, const QRectF& target) const {
    const double ratio = painter.device()->devicePixelRatioF();
    size_t level = 0;
    while (level + 1 < m_levels.size() && m_levels[level + 1].width() >= target.width() * ratio &&
           m_levels[level + 1].height() >= target.height() * ratio)
        ++level;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, m_levels[level]);
}

void StampPictures::dropUnused() {
    m_entries.removeIf([](const auto& entry) { return entry.value().picture.expired(); });
}

std::shared_ptr<const StampPicture> StampPictures::picture(const QByteArray& imageData) {
    const char* address = imageData.constData();
    if (auto known = m_entries.value(address).picture.lock())
        return known;
    dropUnused();
    const std::optional<Image> image = Image::fromData(imageData);
    if (!image)
        return nullptr;
    auto picture = std::make_shared<const StampPicture>(image->pixels());
    m_entries.insert(address, {imageData, picture});
    return picture;
}

}  // namespace vellmora
