#include "base/DescriptorPacket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace vellmora {

namespace {

/// Bytes and descriptors laid out as the system sends and receives them. Points into itself.
struct Packet {
    Packet(void* bytes, size_t length) : part{bytes, length} {
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    iovec part;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> control{};
    msghdr header{};
};

}  // namespace

bool sendWithDescriptors(int socket, std::span<const std::byte> bytes, std::span<const int> descriptors) {
    // The system does not write to what is sent.
    Packet packet(const_cast<std::byte*>(bytes.data()), bytes.size());
    cmsghdr* rights = CMSG_FIRSTHDR(&packet.header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(descriptors.size_bytes());
    packet.header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    std::memcpy(CMSG_DATA(rights), descriptors.data(), descriptors.size_bytes());
    return ::sendmsg(socket, &packet.header, MSG_NOSIGNAL | MSG_DONTWAIT) ==
           static_cast<ssize_t>(bytes.size());
}

std::optional<std::array<FileDescriptor, mostDescriptors>> receiveWithDescriptors(
    int socket, std::span<std::byte> bytes) {
    Packet packet(bytes.data(), bytes.size());
    ssize_t length = 0;
    do
        length = ::recvmsg(socket, &packet.header, MSG_CMSG_CLOEXEC | MSG_WAITALL);
    while (length < 0 && errno == EINTR);
    const cmsghdr* rights = length < 0 ? nullptr : CMSG_FIRSTHDR(&packet.header);
    if (!rights || rights->cmsg_level != SOL_SOCKET || rights->cmsg_type != SCM_RIGHTS)
        return std::nullopt;
    std::array<int, mostDescriptors> numbers{-1, -1};
    std::memcpy(numbers.data(), CMSG_DATA(rights), std::min(sizeof numbers, rights->cmsg_len - CMSG_LEN(0)));
    // Owned from here on, also where they are refused.
    std::array<FileDescriptor, mostDescriptors> descriptors{FileDescriptor(numbers[0]),
                                                            FileDescriptor(numbers[1])};
    if (length != static_cast<ssize_t>(bytes.size()))
        return std::nullopt;
    return descriptors;
}

}  // namespace vellmora
