#pragma once

#include "base/Rect.h"

namespace vellmora::stampgeometry {

/// Size and place of a stamp that is moved or resized. Values are in view points, y upwards; the functions
/// take those of any other space as well, as long as all of them are of the same.

inline constexpr Size handleSize{16, 16};
inline constexpr double minimumWidth = 28;
inline constexpr double lowestAspectRatio = 0.1;

/// Where a stamp may be led.
struct Limits {
    Rect container;  ///< what can be seen
    Rect page;       ///< what is shown of the page
    Size grip;       ///< how much of a stamp stays over the page; of a smaller one, all of it
    double leastWidth = minimumWidth;
};

/// The square in the lower right corner of `bounds`. A drag that begins in it resizes.
Rect resizeHandleRect(const Rect& bounds);

/// The place, moved. Its size stays as it is. Where it fits into the container, it stops flush with the
/// edges; else as much of it as is needed to take hold of it again stays inside. A place that was further out
/// before the drag may stay there, but goes no further.
Rect moved(const Rect& initial, double dx, double dy, const Limits& limits);

/// The place with the same lower left corner and its width changed by `dx`, but at least `leastWidth`. The
/// height follows from the width; `ratio` is theirs. It grows no further than to the edges of the container;
/// in a small one it may become narrower than `leastWidth`. No horizontal movement leaves it as it is.
Rect resized(const Rect& initial, double dx, double ratio, const Limits& limits);

}  // namespace vellmora::stampgeometry
