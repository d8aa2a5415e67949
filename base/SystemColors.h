#pragma once

#include <QColor>

namespace vellmora::colors {

/// The named colours that the program draws with. Stamps and the frames of placed stamps lie on paper, so
/// these do not change with the desktop's palette; each has a contrast of at least 3.7 : 1 to white.
inline constexpr QColor systemRed{0xc6, 0x28, 0x28};
inline constexpr QColor systemGreen{0x2e, 0x7d, 0x32};
inline constexpr QColor systemBlue{0x15, 0x65, 0xc0};
inline constexpr QColor systemOrange{0xe0, 0x52, 0x00};

}  // namespace vellmora::colors
