#pragma once

#include "base/Image.h"
#include "base/Rect.h"

#include <optional>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QUuid>

namespace vellmora {

/// One stamp placed on one page of the open document. It holds its picture itself, so it stays valid when the
/// library entry that it came from is removed. Copies share the picture's bytes.
struct StampItem {
    QUuid id = QUuid::createUuid();
    qsizetype pageIndex = 0;  ///< 0-based
    Rect rect;                ///< in page space, in points
    double aspectRatio = 1;   ///< width divided by height of the picture, fixed when the stamp is placed
    QByteArray imageData;     ///< encoded picture
    std::optional<QUuid> presetID;

    /// Decodes the data at every call. Nothing where the data cannot be decoded.
    std::optional<Image> image() const { return Image::fromData(imageData); }

    /// Compares all fields. Bytes that both share are not compared.
    bool operator==(const StampItem& other) const;
};

/// The stamps of each page, under its 0-based index. A later stamp of a list lies over the earlier ones.
using StampsByPage = QMap<qsizetype, QList<StampItem>>;

}  // namespace vellmora
