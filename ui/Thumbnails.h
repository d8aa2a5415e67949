#pragma once

#include "base/Image.h"
#include "base/SerialQueue.h"

#include <mutex>
#include <optional>
#include <vector>

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QSize>

namespace vellmora {

/// Loads and scales pictures one after the other on a thread of its own, the newest request first. So a huge
/// or damaged file never makes the window wait. When too many requests wait, the oldest are dropped. Its
/// functions are for the main thread.
class ThumbnailLoader : public QObject {
    Q_OBJECT

public:
    struct Request {
        QString key;  ///< names picture and size; requests with one key are loaded once
        DeferredPicture source;
        QSize pixels;  ///< the picture is scaled to fit into this size and keeps its aspect ratio
    };

    using QObject::QObject;
    ~ThumbnailLoader() override;

    void load(const Request& request);
    /// For a picture that is not needed yet. It is loaded after all those that `load` asked for.
    void prepare(const Request& request);
    /// A request waits, or its picture is on its way.
    bool isAtWork();

Q_SIGNALS:
    /// Emitted on the main thread. The picture is null where its file is missing or cannot be decoded.
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
    QSet<QString> m_underWay;  ///< keys of the requests that are being loaded or delivered
    bool m_isWorking = false;

    SerialQueue m_queue;  ///< last: it ends first
};

/// Pictures, scaled to the sizes at which they are shown. Each is decoded once for each version and size.
/// Main thread only.
class Thumbnails : public QObject {
    Q_OBJECT

public:
    enum class State { loading, ready, missing };
    struct Thumbnail {
        State state = State::loading;
        QPixmap picture;  ///< null unless ready; device pixel ratio 1
    };

    explicit Thumbnails(QObject* parent);

    /// The picture scaled to fit into `pixels`, with its aspect ratio. A picture that is not there yet is
    /// loaded, and `changed` is emitted when it is. To be called while painting: the picture asked for last
    /// is loaded first, so pictures in sight come before others.
    Thumbnail thumbnail(const DeferredPicture& source, QSize pixels);

    /// Begins to load the picture for a view that will be painted soon.
    void prepare(const DeferredPicture& source, QSize pixels);

    bool isKnownToBeMissing(const DeferredPicture& source) const {
        return m_missing.contains(source.version);
    }

    /// All that were asked for and are there, by what tells pictures and sizes apart, also from one start of
    /// the program to the next.
    QHash<QString, QImage> pictures() const;
    /// Such pictures, which need not be loaded where they are asked for. They take the place of those that
    /// were offered before.
    void offer(const QHash<QString, QImage>& pictures) { m_offered = pictures; }

    bool isLoading() { return m_loader.isAtWork(); }

Q_SIGNALS:
    void changed(const QString& version);
    /// All pictures that were asked for have come, or never will.
    void settled();

private:
    void take(const ThumbnailLoader::Request& request, const QImage& picture);
    void insert(const QString& key, const QImage& picture);
    /// The picture; null where it is neither there nor offered.
    const Thumbnail* find(const QString& key);

    static constexpr int budgetKilobytes = 64 * 1024;

    QCache<QString, Thumbnail> m_thumbnails{budgetKilobytes};
    QHash<QString, QImage> m_offered;
    QSet<QString> m_missing;  ///< versions
    ThumbnailLoader m_loader;
};

}  // namespace vellmora
