#pragma once

#include "platform/geometry/Rect.h"

namespace vellmora::stampgeometry {

/// Size and place of a stamp's view while the mouse works on it. All values in view points, y upwards.

inline constexpr Size handleSize{16, 16};
inline constexpr double minimumWidth = 28;
inline constexpr double lowestAspectRatio = 0.1;

/// The square at the lower right of `bounds` that resizes.
Rect resizeHandleRect(const Rect& bounds);

/// The frame with its lower-left corner kept and its width changed by `dx`; the height follows the width, so
/// vertical motion plays no part. Never narrower than `minimumWidth`.
Rect resizedFrame(const Rect& initialFrame, double dx, double aspectRatio);

/// The frame moved, and where it is too large shrunk, so that it lies inside `container`. Unchanged in an
/// empty container. Both size limits keep the aspect ratio; a small container overrules the minimum width.
Rect constrainedFrame(const Rect& frame, const Rect& container, double aspectRatio);

}  // namespace vellmora::stampgeometry
