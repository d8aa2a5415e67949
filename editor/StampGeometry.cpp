#include "editor/StampGeometry.h"

#include <algorithm>

namespace vellmora::stampgeometry {

Rect resizeHandleRect(const Rect& bounds) {
    return {bounds.maxX() - handleSize.width, bounds.minY(), handleSize.width, handleSize.height};
}

Rect resizedFrame(const Rect& initialFrame, double dx, double aspectRatio) {
    const double ratio = std::max(aspectRatio, lowestAspectRatio);
    const double width = std::max(minimumWidth, initialFrame.width + dx);
    const double height = std::max(minimumWidth / ratio, width / ratio);
    return {initialFrame.x, initialFrame.y, width, height};
}

Rect constrainedFrame(const Rect& frame, const Rect& container, double aspectRatio) {
    if (container.width <= 0 || container.height <= 0)
        return frame;
    const double ratio = std::max(aspectRatio, lowestAspectRatio);
    double width = frame.width;
    double height = frame.height;
    if (width > container.width) {
        width = container.width;
        height = container.width / ratio;
    }
    if (height > container.height) {
        height = container.height;
        width = container.height * ratio;
    }
    const double x = std::min(std::max(frame.minX(), container.minX()), container.maxX() - width);
    const double y = std::min(std::max(frame.minY(), container.minY()), container.maxY() - height);
    return {x, y, width, height};
}

}  // namespace vellmora::stampgeometry
