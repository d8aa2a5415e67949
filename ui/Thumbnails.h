#pragma once

#include "platform/image/PictureSource.h"

#include <vector>

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QSize>
#include <QThreadPool>

namespace vellmora {

/// Pictures scaled for the sizes at which they are shown. Each is decoded once for each version and size, on
/// a thread of its own: a huge or damaged file holds nothing up but its own place.
class Thumbnails : public QObject {
    Q_OBJECT

public:
    enum class State { loading, ready, missing };
    struct Thumbnail {
        State state = State::loading;
        QPixmap picture;  ///< null unless ready; device pixel ratio 1
    };

    explicit Thumbnails(QObject* parent);
    ~Thumbnails() override;

    /// The picture scaled to fit into `pixels`, its aspect ratio kept. What is not there yet is loaded, the
    /// newest request first, and `changed` tells when it is. To be called while painting, so that only what
    /// is in sight is ever loaded.
    Thumbnail thumbnail(const PictureSource& source, QSize pixels);

    bool isKnownToBeMissing(const PictureSource& source) const { return m_missing.contains(source.version); }

Q_SIGNALS:
    void changed(const QString& version);

private:
    struct Request {
        QString key;
        PictureSource source;
        QSize pixels;
    };
    void loadNext();
    void take(const Request& request, const QImage& image);

    static constexpr int budgetKilobytes = 64 * 1024;
    static constexpr size_t maxWaiting = 64;

    QCache<QString, Thumbnail> m_thumbnails{budgetKilobytes};
    QSet<QString> m_missing;  ///< versions
    std::vector<Request> m_waiting;
    QString m_loadingKey;  ///< of the request that the thread works on; empty while it has none
    QThreadPool m_thread;
};

}  // namespace vellmora
