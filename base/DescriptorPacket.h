#pragma once

#include "base/FileDescriptor.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace vellmora {

/// At most so many go with one packet.
inline constexpr size_t mostDescriptors = 2;

/// Sends the bytes in one piece, with copies of one or more descriptors, over a socket of this machine. False
/// where the other side is gone or does not keep up. Never blocks.
bool sendWithDescriptors(int socket, std::span<const std::byte> bytes, std::span<const int> descriptors);

/// Waits for exactly as many bytes as there is room for, and answers the descriptors that came with them;
/// those that did not come are not valid. Nothing where the other side is gone, or sends less, or no
/// descriptor.
std::optional<std::array<FileDescriptor, mostDescriptors>> receiveWithDescriptors(int socket,
                                                                                  std::span<std::byte> bytes);

}  // namespace vellmora
