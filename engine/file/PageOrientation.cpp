#include "engine/file/PageOrientation.h"

namespace vellmora {

Rect PageOrientation::uprightMediaBox() const {
    const Rect& box = m_mediaBox;
    if (m_rotation % 180 == 0)
        return box;
    return {box.x, box.y, box.height, box.width};
}

Matrix PageOrientation::toPageSpace() const {
    const Rect& box = m_mediaBox;
    switch (m_rotation) {
        case 90:  // the left edge becomes the top: x' − x₀ = y − y₀, y' − y₀ = x₁ − x
            return {0, -1, 1, 0, box.x - box.y, box.y + box.maxX()};
        case 180:
            return {-1, 0, 0, -1, box.x + box.maxX(), box.y + box.maxY()};
        case 270:  // the right edge becomes the top: x' − x₀ = y₁ − y, y' − y₀ = x − x₀
            return {0, 1, -1, 0, box.x + box.maxY(), box.y - box.x};
        default:
            return {};
    }
}

}  // namespace vellmora
