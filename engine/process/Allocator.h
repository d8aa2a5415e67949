#pragma once

namespace vellmora {

/// Gives memory that is free back to the system. What was freed last would stay else: the allocator looks
/// after it only when it is asked for memory, and between two requests nobody asks.
void giveBackFreeMemory();

}  // namespace vellmora
