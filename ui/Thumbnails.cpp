#include "ui/Thumbnails.h"

#include <algorithm>
#include <utility>

namespace vellmora {

ThumbnailLoader::~ThumbnailLoader() {
    const std::lock_guard lock(m_mutex);
    m_waiting.clear();
}

void ThumbnailLoader::load(const Request& request) {
    const std::lock_guard lock(m_mutex);
    if (m_underWay.contains(request.key))
        return;
    std::erase_if(m_waiting, [&](const Request& other) { return other.key == request.key; });
    if (m_waiting.size() >= maxWaiting)
        m_waiting.erase(m_waiting.begin());
    m_waiting.push_back(request);
    ensureWork();
}

void ThumbnailLoader::prepare(const Request& request) {
    const std::lock_guard lock(m_mutex);
    const bool isWaiting = std::any_of(m_waiting.begin(), m_waiting.end(),
                                       [&](const Request& other) { return other.key == request.key; });
    if (isWaiting || m_underWay.contains(request.key) || m_waiting.size() >= maxWaiting)
        return;
    m_waiting.insert(m_waiting.begin(), request);
    ensureWork();
}

bool ThumbnailLoader::isAtWork() {
    const std::lock_guard lock(m_mutex);
    return !m_waiting.empty() || !m_underWay.isEmpty();
}

void ThumbnailLoader::ensureWork() {
    if (!std::exchange(m_isWorking, true))
        m_queue.run([this] { work(); });
}

std::optional<ThumbnailLoader::Request> ThumbnailLoader::takeNext() {
    const std::lock_guard lock(m_mutex);
    if (m_waiting.empty()) {
        m_isWorking = false;
        return std::nullopt;
    }
    Request request = std::move(m_waiting.back());
    m_waiting.pop_back();
    m_underWay.insert(request.key);
    return request;
}

static QImage scaledPicture(const DeferredPicture& source, QSize pixels) {
    std::optional<Image> image = source.load();
    if (!image)
        return {};
    QImage picture = std::move(*image).pixels();
    // Qt scales only this format smoothly. It would convert any other one itself, into a copy.
    if (picture.hasAlphaChannel())
        picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    const QSize size = picture.size().scaled(pixels, Qt::KeepAspectRatio).expandedTo({1, 1});
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void ThumbnailLoader::work() {
    while (const std::optional<Request> request = takeNext()) {
        const QImage picture = scaledPicture(request->source, request->pixels);
        QMetaObject::invokeMethod(
            this, [this, request = *request, picture] { deliver(request, picture); }, Qt::QueuedConnection);
    }
}

void ThumbnailLoader::deliver(const Request& request, const QImage& picture) {
    {
        const std::lock_guard lock(m_mutex);
        m_underWay.remove(request.key);
    }
    Q_EMIT loaded(request, picture);
}

Thumbnails::Thumbnails(QObject* parent) : QObject(parent) {
    connect(&m_loader, &ThumbnailLoader::loaded, this, &Thumbnails::take);
}

static QString keyOf(const DeferredPicture& source, QSize pixels) {
    return QStringLiteral("%1 %2x%3").arg(source.version).arg(pixels.width()).arg(pixels.height());
}

Thumbnails::Thumbnail Thumbnails::thumbnail(const DeferredPicture& source, QSize pixels) {
    if (source.version.isEmpty() || isKnownToBeMissing(source))
        return {State::missing, {}};
    const QString key = keyOf(source, pixels);
    if (const Thumbnail* known = find(key))
        return *known;
    m_loader.load({key, source, pixels});
    return {};
}

void Thumbnails::prepare(const DeferredPicture& source, QSize pixels) {
    if (source.version.isEmpty() || isKnownToBeMissing(source))
        return;
    const QString key = keyOf(source, pixels);
    if (!find(key))
        m_loader.prepare({key, source, pixels});
}

QHash<QString, QImage> Thumbnails::pictures() const {
    QHash<QString, QImage> pictures;
    for (const QString& key : m_thumbnails.keys())
        pictures.insert(key, m_thumbnails.object(key)->picture.toImage());
    return pictures;
}

const Thumbnails::Thumbnail* Thumbnails::find(const QString& key) {
    if (m_offered.contains(key))
        insert(key, m_offered.take(key));
    return m_thumbnails.object(key);
}

void Thumbnails::insert(const QString& key, const QImage& picture) {
    const auto kilobytes = static_cast<int>(picture.sizeInBytes() / 1024 + 1);
    m_thumbnails.insert(key, new Thumbnail{State::ready, QPixmap::fromImage(picture)}, kilobytes);
}

void Thumbnails::take(const ThumbnailLoader::Request& request, const QImage& picture) {
    if (picture.isNull())
        m_missing.insert(request.source.version);
    else
        insert(request.key, picture);
    Q_EMIT changed(request.source.version);
    if (!isLoading())
        Q_EMIT settled();
}

}  // namespace vellmora
