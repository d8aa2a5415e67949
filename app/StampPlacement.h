#pragma once

#include "base/Rect.h"

namespace vellmora {

/// Where a stamp is put first.
struct StampPlacement {
    Rect rect;  ///< page space, points
    double aspectRatio = 1;
};

/// Centred on the page's media box, 28 % of its width but at most 190 points wide, the height from the
/// picture's aspect ratio (at least 0.1). `imageSize` in points.
StampPlacement initialPlacement(const Rect& mediaBox, Size imageSize);

}  // namespace vellmora
