#pragma once

#include <QColor>

namespace vellmora::colors {

/// The named colours that the program draws with. Stamps and the frames of placed stamps lie on paper, so
/// these do not change with the desktop's palette; each has a contrast of at least 4.5 : 1 to white, also
/// where a tenth of the colour is mixed into that.
inline constexpr QColor systemRed{0xc6, 0x28, 0x28};
inline constexpr QColor systemGreen{0x2e, 0x7d, 0x32};
inline constexpr QColor systemBlue{0x15, 0x65, 0xc0};
inline constexpr QColor systemOrange{0xb8, 0x4a, 0x00};

}  // namespace vellmora::colors
