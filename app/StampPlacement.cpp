#include "app/StampPlacement.h"

#include <algorithm>

namespace vellmora {

StampPlacement initialPlacement(const Rect& mediaBox, Size imageSize) {
    const double aspect = std::max(imageSize.width / std::max(imageSize.height, 1.0), 0.1);
    const double width = std::min(mediaBox.width * 0.28, 190.0);
    const double height = width / aspect;
    return {{mediaBox.midX() - width * 0.5, mediaBox.midY() - height * 0.5, width, height}, aspect};
}

}  // namespace vellmora
