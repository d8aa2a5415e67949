#pragma once

#include "pdf/PDFPage.h"

namespace vellmora {

/// Where a stamp is put first.
struct StampPlacement {
    Rect rect;  ///< page space, points
    double aspectRatio = 1;
};

/// Centred on what is shown of the page. 28 % of the page's width, but at most 190 points wide and no wider
/// than what is shown; the height from the picture's aspect ratio (at least 0.1). `imageSize` in points.
StampPlacement initialPlacement(const PDFPage& page, Size imageSize);

}  // namespace vellmora
