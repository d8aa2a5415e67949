#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <optional>

namespace vellmora {

/// What the program and its renderer process say to each other, a packet each, over a socket of the kind that
/// keeps packets apart (SOCK_SEQPACKET). Both run on one machine and come from one build, so the layout is
/// that of memory.

/// Comes with two file descriptors: a PDF of the page alone, and where the pixels go (32 bits
/// each, as QImage::Format_RGB32 has them, rows without gaps). Each of them is 0 before, which no painted one
/// is: that is opaque.
struct RenderRequestMessage {
    std::uint64_t pdfSize;   ///< in bytes
    std::int32_t pageWidth;  ///< of the whole page, in pixels
    std::int32_t pageHeight;
    std::int32_t x;  ///< the part that is wanted, in pixels of the whole page
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
};

enum class RenderReply : std::uint32_t {
    ready,  ///< said once, by a process that has confined itself
    rendered,
    notRendered,  ///< the page cannot be rendered
};

struct RenderReplyMessage {
    std::uint32_t content;  ///< a RenderReply; anything, where the process has been taken over
};

/// A request as the renderer process gets it.
struct ReceivedRenderRequest {
    RenderRequestMessage message{};
    FileDescriptor pagePdf;
    FileDescriptor pixels;
};

/// False where the other side is gone or does not keep up. Never blocks.
bool sendRenderRequest(int socket, const RenderRequestMessage& request, int pagePdf, int pixels);

/// Waits for the next request; nothing when the program is gone.
std::optional<ReceivedRenderRequest> receiveRenderRequest(int socket);

/// Largest picture that is asked for, in pixels.
inline constexpr std::int64_t maxRenderedPixels = std::int64_t{64} << 20;

}  // namespace vellmora
