#include "preview/RendererProcess.h"

#include <sys/socket.h>
#include <utility>

namespace vellmora {

std::unique_ptr<RendererProcess> RendererProcess::start(const QString& program) {
    auto process = HelperProcess::start(program, HelperProcess::Talk::packets);
    if (!process)
        return nullptr;
    return std::unique_ptr<RendererProcess>(new RendererProcess(std::move(process)));
}

bool RendererProcess::send(const RenderRequestMessage& request, int pagePdf, int pixels) {
    return sendRenderRequest(socket(), request, pagePdf, pixels);
}

std::optional<RenderReplyMessage> RendererProcess::receive() {
    RenderReplyMessage reply{};
    // The length is that of the whole packet. Descriptors that come with it are closed by the system.
    if (::recv(socket(), &reply, sizeof reply, MSG_DONTWAIT | MSG_TRUNC) != sizeof reply)
        return std::nullopt;
    return reply;
}

}  // namespace vellmora
