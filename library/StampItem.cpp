#include "library/StampItem.h"

namespace vellmora {

static bool sameBytes(const QByteArray& a, const QByteArray& b) {
    const bool shared = a.constData() == b.constData() && a.size() == b.size();
    return shared || a == b;
}

bool StampItem::operator==(const StampItem& other) const {
    return id == other.id && pageIndex == other.pageIndex && rect == other.rect &&
           aspectRatio == other.aspectRatio && presetID == other.presetID &&
           sameBytes(imageData, other.imageData);
}

}  // namespace vellmora
