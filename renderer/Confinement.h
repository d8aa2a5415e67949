#pragma once

namespace vellmora {

/// Gives up, for the rest of this process's life, all that drawing a page does not need: network, other
/// processes, and all files but the system's fonts, which can be read. Without a kernel that can tell fonts
/// from other files (Landlock) no file can be opened at all. Memory is limited. The process dies with the one
/// that started it.
///
/// False where the system call filter cannot be installed; nothing from outside may be read then.
bool confineProcess();

}  // namespace vellmora
