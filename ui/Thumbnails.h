#pragma once

#include "ui/ThumbnailLoader.h"

#include <QCache>
#include <QPixmap>

namespace vellmora {

/// Pictures scaled for the sizes at which they are shown. Each is decoded once for each version and size.
class Thumbnails : public QObject {
    Q_OBJECT

public:
    enum class State { loading, ready, missing };
    struct Thumbnail {
        State state = State::loading;
        QPixmap picture;  ///< null unless ready; device pixel ratio 1
    };

    explicit Thumbnails(QObject* parent);

    /// The picture scaled to fit into `pixels`, its aspect ratio kept. What is not there yet is loaded, the
    /// newest request first, and `changed` tells when it is. To be called while painting, so that what is in
    /// sight comes first.
    Thumbnail thumbnail(const PictureSource& source, QSize pixels);

    /// For a view that will be painted soon.
    void prepare(const PictureSource& source, QSize pixels);

    bool isKnownToBeMissing(const PictureSource& source) const { return m_missing.contains(source.version); }

Q_SIGNALS:
    void changed(const QString& version);

private:
    void take(const ThumbnailLoader::Request& request, const QImage& picture);

    static constexpr int budgetKilobytes = 64 * 1024;

    QCache<QString, Thumbnail> m_thumbnails{budgetKilobytes};
    QSet<QString> m_missing;  ///< versions
    ThumbnailLoader m_loader;
};

}  // namespace vellmora
