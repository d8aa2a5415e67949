#include "preview/RenderMessages.h"

#include "base/DescriptorPacket.h"

#include <array>
#include <span>
#include <utility>

namespace vellmora {

bool sendRenderRequest(int socket, const RenderRequestMessage& request, int pagePdf, int pixels) {
    return sendWithDescriptors(socket, std::as_bytes(std::span(&request, 1)), std::array{pagePdf, pixels});
}

std::optional<ReceivedRenderRequest> receiveRenderRequest(int socket) {
    ReceivedRenderRequest received;
    auto descriptors =
        receiveWithDescriptors(socket, std::as_writable_bytes(std::span(&received.message, 1)));
    if (!descriptors || !descriptors->back().isValid())
        return std::nullopt;
    received.pagePdf = std::move(descriptors->front());
    received.pixels = std::move(descriptors->back());
    return received;
}

}  // namespace vellmora
