#pragma once

#include "base/Rect.h"

namespace vellmora::stampgeometry {

/// Size and place of a stamp's view during a drag. All values are in view points, y upwards.

inline constexpr Size handleSize{16, 16};
inline constexpr double minimumWidth = 28;
inline constexpr double lowestAspectRatio = 0.1;

/// The square in the lower right corner of `bounds`. A drag that begins in it resizes.
Rect resizeHandleRect(const Rect& bounds);

/// The frame with the same lower left corner and its width changed by `dx`, but at least `minimumWidth`. The
/// height follows from the width.
Rect resizedFrame(const Rect& initialFrame, double dx, double aspectRatio);

/// The frame, moved into `container`. A frame that is too large is shrunk and keeps its aspect ratio; in a
/// small container it may become narrower than `minimumWidth`. An empty container leaves the frame unchanged.
Rect constrainedFrame(const Rect& frame, const Rect& container, double aspectRatio);

}  // namespace vellmora::stampgeometry
