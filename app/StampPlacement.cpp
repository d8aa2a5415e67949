#include "app/StampPlacement.h"

#include <algorithm>

namespace vellmora {

StampPlacement initialPlacement(const PDFPage& page, Size imageSize) {
    const Rect& shown = page.bounds(DisplayBox::cropBox);
    const double aspect = std::max(imageSize.width / std::max(imageSize.height, 1.0), 0.1);
    const double width = std::min({page.bounds(DisplayBox::mediaBox).width * 0.28, 190.0, shown.width});
    const double height = width / aspect;
    return {{shown.midX() - width * 0.5, shown.midY() - height * 0.5, width, height}, aspect};
}

}  // namespace vellmora
