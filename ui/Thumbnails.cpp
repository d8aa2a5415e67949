#include "ui/Thumbnails.h"

#include <algorithm>
#include <utility>

namespace vellmora {

Thumbnails::Thumbnails(QObject* parent) : QObject(parent) {
    m_thread.setMaxThreadCount(1);
}

Thumbnails::~Thumbnails() {
    m_thread.waitForDone();
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
    if (key == m_loadingKey)
        return {};
    std::erase_if(m_waiting, [&](const Request& request) { return request.key == key; });
    if (m_waiting.size() >= maxWaiting)
        m_waiting.erase(m_waiting.begin());
    m_waiting.push_back({key, source, pixels});
    // Not before what is being painted now is on the screen.
    QMetaObject::invokeMethod(this, &Thumbnails::loadNext, Qt::QueuedConnection);
    return {};
}

static QImage scaledPicture(const PictureSource& source, QSize pixels) {
    const std::optional<Image> image = source.load();
    if (!image)
        return {};
    const QSize size = image->pixels().size().scaled(pixels, Qt::KeepAspectRatio).expandedTo({1, 1});
    return image->pixels().scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void Thumbnails::loadNext() {
    if (!m_loadingKey.isEmpty() || m_waiting.empty())
        return;
    const Request request = std::move(m_waiting.back());
    m_waiting.pop_back();
    m_loadingKey = request.key;
    m_thread.start([this, request] {
        const QImage image = scaledPicture(request.source, request.pixels);
        QMetaObject::invokeMethod(
            this, [this, request, image] { take(request, image); }, Qt::QueuedConnection);
    });
}

void Thumbnails::take(const Request& request, const QImage& image) {
    m_loadingKey.clear();
    if (image.isNull()) {
        m_missing.insert(request.source.version);
    } else {
        const auto kilobytes = static_cast<int>(image.sizeInBytes() / 1024 + 1);
        m_thumbnails.insert(request.key, new Thumbnail{State::ready, QPixmap::fromImage(image)}, kilobytes);
    }
    Q_EMIT changed(request.source.version);
    loadNext();
}

}  // namespace vellmora
