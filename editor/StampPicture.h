#pragma once

#include "platform/image/Image.h"

#include <memory>
#include <vector>

#include <QByteArray>
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

    /// Memory that it takes, in bytes.
    qint64 size() const;

private:
    std::vector<QImage> m_levels;
};

/// Decodes each picture once for all stamps that share its bytes, and keeps it as long as any of them shows
/// it. Those used last are kept beyond that, so that turning the pages decodes nothing.
class StampPictures {
public:
    /// `budget` is the memory for pictures that are kept, in bytes. More is taken only where more is on
    /// screen.
    explicit StampPictures(qint64 budget = 256 << 20) : m_budget(budget) {}

    /// Null where the data cannot be decoded.
    std::shared_ptr<const StampPicture> picture(const QByteArray& imageData);

    /// Takes over what was decoded from the data elsewhere.
    void add(const QByteArray& imageData, const Image& image);

private:
    struct Entry {
        QByteArray data;  ///< keeps the address, by which it is found, from being used again
        std::shared_ptr<const StampPicture> picture;
    };
    std::shared_ptr<const StampPicture> known(const QByteArray& imageData);
    void dropOldest();

    qint64 m_budget;
    std::vector<Entry> m_entries;  ///< the one used last at the end
};

}  // namespace vellmora
