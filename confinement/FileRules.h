#pragma once

#include <string>
#include <vector>

namespace vellmora {

/// Lets the calling thread read and list what is beneath the folders, and do nothing else to any file from
/// now on. Where the kernel can, it also cuts the thread off from TCP, from devices' commands, and from
/// signalling and connecting to processes that are not confined with it. Folders that are not there are left
/// out. False where the kernel cannot tell files apart.
bool allowOnlyReading(const std::vector<std::string>& folders);

}  // namespace vellmora
