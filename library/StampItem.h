#pragma once

#include "platform/geometry/Rect.h"
#include "platform/image/Image.h"

#include <optional>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QUuid>

namespace vellmora {

/// One stamp placed on one page of the open document. It carries its picture with it, so that it stays valid
/// when the library entry that it came from is removed. Copies share the picture's bytes.
struct StampItem {
    QUuid id = QUuid::createUuid();
    qsizetype pageIndex = 0;  ///< 0-based
    Rect rect;                ///< in page space, in points
    double aspectRatio = 1;   ///< width divided by height of the picture, fixed when the stamp is placed
    QByteArray imageData;     ///< encoded picture
    std::optional<QUuid> presetID;

    /// Decoded anew on every call and never kept; nothing where the data cannot be decoded.
    std::optional<Image> image() const { return Image::fromData(imageData); }

    /// Field by field; the picture's bytes are compared only where the two do not share them.
    bool operator==(const StampItem& other) const;
};

/// The stamps of each page under its 0-based index, in the order of insertion: later ones lie on top.
using StampsByPage = QMap<qsizetype, QList<StampItem>>;

}  // namespace vellmora
