#pragma once

#include "base/SerialQueue.h"
#include "ui/Thumbnails.h"

#include <QHash>
#include <QImage>
#include <QString>

namespace vellmora {

/// Keeps the pictures that a window shows first in a file, so that the next start need not decode them.
/// A picture whose file was changed since is not among them. The file may be lost, be anything else, or be
/// out of reach: then the pictures are decoded. For the main thread.
class KeptThumbnails {
public:
    /// Hands `thumbnails`, which must outlive this, what `path` holds. Without a path nothing is kept.
    KeptThumbnails(Thumbnails& thumbnails, QString path);

    /// Writes the pictures that were asked for so far, where they are others than those of the file: what is
    /// not shown any more goes. Does not wait.
    void keep();
    /// Takes the file away, since a picture in it is not to be seen any more. Does not wait.
    void forget();

private:
    Thumbnails& m_thumbnails;
    QString m_path;
    QHash<QString, QImage> m_kept;
    SerialQueue m_writer;  ///< last: it ends first
};

}  // namespace vellmora
