#include "ui/Thumbnails.h"

namespace vellmora {

Thumbnails::Thumbnails(QObject* parent) : QObject(parent) {
    connect(&m_loader, &ThumbnailLoader::loaded, this, &Thumbnails::take);
}

static QString keyOf(const PictureSource& source, QSize pixels) {
    return QStringLiteral("%1 %2x%3").arg(source.version).arg(pixels.width()).arg(pixels.height());
}

Thumbnails::Thumbnail Thumbnails::thumbnail(const PictureSource& source, QSize pixels) {
    if (source.version.isEmpty() || isKnownToBeMissing(source))
        return {State::missing, {}};
    const QString key = keyOf(source, pixels);
    if (const Thumbnail* known = m_thumbnails.object(key))
        return *known;
    m_loader.load({key, source, pixels});
    return {};
}

void Thumbnails::prepare(const PictureSource& source, QSize pixels) {
    if (source.version.isEmpty() || isKnownToBeMissing(source))
        return;
    const QString key = keyOf(source, pixels);
    if (!m_thumbnails.contains(key))
        m_loader.prepare({key, source, pixels});
}

void Thumbnails::take(const ThumbnailLoader::Request& request, const QImage& picture) {
    if (picture.isNull()) {
        m_missing.insert(request.source.version);
    } else {
        const auto kilobytes = static_cast<int>(picture.sizeInBytes() / 1024 + 1);
        m_thumbnails.insert(request.key, new Thumbnail{State::ready, QPixmap::fromImage(picture)}, kilobytes);
    }
    Q_EMIT changed(request.source.version);
}

}  // namespace vellmora
