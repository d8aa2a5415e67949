#pragma once

#include "platform/image/PictureSource.h"

#include <mutex>
#include <optional>
#include <vector>

#include <QImage>
#include <QObject>
#include <QSet>
#include <QSize>
#include <QThreadPool>

namespace vellmora {

/// Loads and scales pictures one after the other on a thread of its own, the newest request first: a huge or
/// damaged file holds nothing up but its own place. The oldest of too many requests are forgotten.
class ThumbnailLoader : public QObject {
    Q_OBJECT

public:
    struct Request {
        QString key;  ///< of the picture at that size; it is loaded once for all requests that wait
        PictureSource source;
        QSize pixels;  ///< the picture is scaled to fit into it, its aspect ratio kept
    };

    using QObject::QObject;
    ~ThumbnailLoader() override;

    void load(const Request& request);
    /// Ahead of time: after all that is waited for, the oldest of such requests first.
    void prepare(const Request& request);

Q_SIGNALS:
    /// On this object's thread. The picture is null where it is missing or cannot be decoded.
    void loaded(const vellmora::ThumbnailLoader::Request& request, const QImage& picture);

private:
    void ensureWork();
    void work();
    std::optional<Request> takeNext();
    void deliver(const Request& request, const QImage& picture);

    static constexpr size_t maxWaiting = 64;

    std::mutex m_mutex;
    // Guarded by the mutex.
    std::vector<Request> m_waiting;
    QSet<QString> m_underWay;  ///< keys of requests that were taken and are not delivered yet
    bool m_isWorking = false;

    QThreadPool m_thread;
};

}  // namespace vellmora
