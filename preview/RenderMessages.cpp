#include "preview/RenderMessages.h"

#include <array>
#include <cstring>
#include <sys/socket.h>

namespace vellmora {

namespace {

using Descriptors = std::array<int, 2>;

/// A request and its descriptors laid out as the system sends and receives them. Points into itself.
struct Packet {
    Packet() {
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    RenderRequestMessage request{};
    iovec part{&request, sizeof request};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(Descriptors))> control{};
    msghdr header{};
};

}  // namespace

bool sendRenderRequest(int socket, const RenderRequestMessage& request, int drawing, int pixels) {
    const Descriptors descriptors{drawing, pixels};
    Packet packet;
    packet.request = request;
    cmsghdr* rights = CMSG_FIRSTHDR(&packet.header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof descriptors);
    std::memcpy(CMSG_DATA(rights), descriptors.data(), sizeof descriptors);
    return ::sendmsg(socket, &packet.header, MSG_NOSIGNAL | MSG_DONTWAIT) == sizeof request;
}

std::optional<ReceivedRenderRequest> receiveRenderRequest(int socket) {
    Packet packet;
    const ssize_t length = ::recvmsg(socket, &packet.header, MSG_CMSG_CLOEXEC);
    const cmsghdr* rights = CMSG_FIRSTHDR(&packet.header);
    if (length != sizeof packet.request || !rights || rights->cmsg_len != CMSG_LEN(sizeof(Descriptors)))
        return std::nullopt;
    Descriptors descriptors{};
    std::memcpy(descriptors.data(), CMSG_DATA(rights), sizeof descriptors);
    return ReceivedRenderRequest{packet.request, FileDescriptor(descriptors[0]),
                                 FileDescriptor(descriptors[1])};
}

}  // namespace vellmora
