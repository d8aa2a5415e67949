#include "ui/ThumbnailLoader.h"

#include <algorithm>
#include <utility>

namespace vellmora {

ThumbnailLoader::~ThumbnailLoader() {
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.clear();
    }
    m_thread.waitForDone();
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

void ThumbnailLoader::ensureWork() {
    if (!std::exchange(m_isWorking, true))
        m_thread.start([this] { work(); });
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

static QImage scaledPicture(const PictureSource& source, QSize pixels) {
    std::optional<Image> image = source.load();
    if (!image)
        return {};
    QImage picture = std::move(*image).pixels();
    // In place: only such pixels are scaled smoothly, else the toolkit would convert a copy of them.
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

}  // namespace vellmora
