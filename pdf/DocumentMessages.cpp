#include "pdf/DocumentMessages.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>

#include <QDataStream>
#include <QIODevice>

namespace vellmora {

namespace {

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

    DocumentRequest request{};
    iovec part{&request, sizeof request};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(2 * sizeof(int))> control{};
    msghdr header{};
};

void put(QDataStream& stream, const EncodedSamples& samples) {
    stream << samples.width << samples.height << static_cast<qint32>(samples.colors)
           << samples.bitsPerComponent << samples.hasPredictor << QByteArray::fromStdString(samples.palette)
           << QByteArray::fromRawData(samples.data.data(), static_cast<qsizetype>(samples.data.size()));
}

EncodedSamples take(QDataStream& stream) {
    EncodedSamples samples;
    qint32 colors = 0;
    QByteArray palette;
    QByteArray data;
    stream >> samples.width >> samples.height >> colors >> samples.bitsPerComponent >> samples.hasPredictor >>
        palette >> data;
    samples.colors = static_cast<EncodedSamples::Colors>(colors);
    samples.palette = palette.toStdString();
    samples.data = data.toStdString();
    return samples;
}

}  // namespace

bool sendDocumentRequest(int socket, const DocumentRequest& request, int memory, int file) {
    const std::array<int, 2> descriptors{memory, file};
    const size_t length = (file < 0 ? 1 : 2) * sizeof(int);
    Packet packet;
    packet.request = request;
    cmsghdr* rights = CMSG_FIRSTHDR(&packet.header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(length);
    packet.header.msg_controllen = CMSG_SPACE(length);
    std::memcpy(CMSG_DATA(rights), descriptors.data(), length);
    return ::sendmsg(socket, &packet.header, MSG_NOSIGNAL | MSG_DONTWAIT) == sizeof request;
}

std::optional<ReceivedDocumentRequest> receiveDocumentRequest(int socket) {
    Packet packet;
    ssize_t length = 0;
    do
        length = ::recvmsg(socket, &packet.header, MSG_CMSG_CLOEXEC | MSG_WAITALL);
    while (length < 0 && errno == EINTR);
    const cmsghdr* rights = CMSG_FIRSTHDR(&packet.header);
    if (length != sizeof packet.request || !rights || rights->cmsg_type != SCM_RIGHTS)
        return std::nullopt;
    std::array<int, 2> descriptors{-1, -1};
    std::memcpy(descriptors.data(), CMSG_DATA(rights),
                std::min(sizeof descriptors, rights->cmsg_len - CMSG_LEN(0)));
    return ReceivedDocumentRequest{packet.request, FileDescriptor(descriptors[0]),
                                   FileDescriptor(descriptors[1])};
}

QByteArray packedPictures(const std::vector<EncodedPicture>& pictures) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const EncodedPicture& picture : pictures) {
        put(stream, picture.colors);
        stream << picture.alpha.has_value();
        if (picture.alpha)
            put(stream, *picture.alpha);
    }
    return bytes;
}

std::vector<EncodedPicture> unpackedPictures(const QByteArray& bytes) {
    std::vector<EncodedPicture> pictures;
    QDataStream stream(bytes);
    while (!stream.atEnd() && stream.status() == QDataStream::Ok) {
        EncodedPicture picture{take(stream), std::nullopt};
        bool hasAlpha = false;
        stream >> hasAlpha;
        if (hasAlpha)
            picture.alpha = take(stream);
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

}  // namespace vellmora
