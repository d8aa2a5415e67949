#pragma once

namespace vellmora {

/// Whether a change is on the disk when the call that makes it returns. Without that a new file may turn out
/// empty after a loss of power, which suits only what is made anew at each start.
enum class Durability { synced, untilPowerLoss };

}  // namespace vellmora
