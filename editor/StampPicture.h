#pragma once

#include <memory>
#include <vector>

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QPainter>

namespace vellmora {

/// A stamp's decoded picture, prepared for drawing at any size at the speed of the mouse: a row of copies,
/// each half as large as the one before.
class StampPicture {
public:
    explicit StampPicture(const QImage& pixels);

    /// Stretched into `target` (in the painter's points). Costs what the target is large, not what the
    /// picture is.
    void draw(QPainter& painter, const QRectF& target) const;

private:
    std::vector<QImage> m_levels;
};

/// Decodes each picture once for all stamps that share its bytes, and keeps it as long as any of them shows
/// it.
class StampPictures {
public:
    /// Null where the data cannot be decoded.
    std::shared_ptr<const StampPicture> picture(const QByteArray& imageData);

private:
    struct Entry {
        QByteArray data;  ///< keeps the address from being used again
        std::weak_ptr<const StampPicture> picture;
    };
    void dropUnused();

    QHash<const char*, Entry> m_entries;
};

}  // namespace vellmora
