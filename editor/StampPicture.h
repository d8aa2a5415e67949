#pragma once

#include "base/Image.h"

#include <memory>
#include <vector>

#include <QByteArray>
#include <QImage>
#include <QPainter>

namespace vellmora {

/// A stamp's decoded picture, together with smaller copies of it, each half as large as the one before.
/// Drawing picks the copy that fits, so it is quick at any size.
class StampPicture {
public:
    explicit StampPicture(const QImage& pixels);

    /// Stretches the picture into `target`, in the painter's points. The time depends on the size of the
    /// target, not on that of the picture.
    void draw(QPainter& painter, const QRectF& target) const;

    /// The memory that the picture takes, in bytes.
    qint64 size() const;

private:
    std::vector<QImage> m_levels;
};

/// Decodes each picture once for all stamps that have the same bytes, and keeps it as long as any of them
/// shows it. The pictures used last are kept longer, so that turning the pages decodes nothing. Main thread
/// only.
class StampPictures {
public:
    /// `budget` is the memory for all pictures, in bytes. Only pictures on screen may exceed it.
    explicit StampPictures(qint64 budget = 48 << 20) : m_budget(budget) {}

    /// Null where the data cannot be decoded.
    std::shared_ptr<const StampPicture> picture(const QByteArray& imageData);

    /// Takes a picture that the caller has decoded from the data.
    void add(const QByteArray& imageData, const Image& image);

private:
    struct Entry {
        QByteArray data;
        std::shared_ptr<const StampPicture> picture;
    };
    std::shared_ptr<const StampPicture> known(const QByteArray& imageData);
    void dropOldest();

    qint64 m_budget;
    std::vector<Entry> m_entries;  ///< the one used last at the end
};

}  // namespace vellmora
