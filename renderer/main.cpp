// The renderer process: gets drawings of pages from the program and puts their pixels into shared memory. It
// trusts nothing that it is given, and the program trusts nothing that comes back.

#include "platform/files/FileDescriptor.h"
#include "platform/pdf/render/RenderMessages.h"
#include "renderer/Confinement.h"
#include "renderer/PageRendering.h"

#include <array>
#include <cstring>
#include <optional>
#include <sys/mman.h>
#include <sys/socket.h>

#include <QCoreApplication>

using namespace vellmora;

namespace {

struct Request {
    RenderRequestMessage message{};
    FileDescriptor drawing;
    FileDescriptor pixels;
};

/// Waits for the next request; nothing when the program is gone.
std::optional<Request> receiveRequest() {
    Request request;
    iovec part{&request.message, sizeof request.message};
    std::array<int, 2> descriptors{-1, -1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof descriptors)> control{};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t length = ::recvmsg(rendererSocket, &message, MSG_CMSG_CLOEXEC);
    const cmsghdr* header = CMSG_FIRSTHDR(&message);
    if (length != sizeof request.message || !header || header->cmsg_len != CMSG_LEN(sizeof descriptors))
        return std::nullopt;
    std::memcpy(descriptors.data(), CMSG_DATA(header), sizeof descriptors);
    request.drawing = FileDescriptor(descriptors[0]);
    request.pixels = FileDescriptor(descriptors[1]);
    return request;
}

bool serve(const Request& request) {
    const size_t drawingSize = request.message.drawingSize;
    const QRect part(request.message.x, request.message.y, request.message.width, request.message.height);
    const QSize size = part.size();
    const auto pixelBytes =
        static_cast<size_t>(size.width()) * static_cast<size_t>(size.height()) * sizeof(QRgb);
    void* drawing = ::mmap(nullptr, drawingSize, PROT_READ, MAP_SHARED, request.drawing.get(), 0);
    void* pixels = ::mmap(nullptr, pixelBytes, PROT_READ | PROT_WRITE, MAP_SHARED, request.pixels.get(), 0);
    bool isRendered = false;
    if (drawing != MAP_FAILED && pixels != MAP_FAILED) {
        QImage target(static_cast<uchar*>(pixels), size.width(), size.height(), QImage::Format_RGB32);
        const auto length = static_cast<qsizetype>(drawingSize);
        isRendered = renderPage(QByteArray::fromRawData(static_cast<const char*>(drawing), length),
                                QSize(request.message.pageWidth, request.message.pageHeight), part, target);
    }
    if (drawing != MAP_FAILED)
        ::munmap(drawing, drawingSize);
    if (pixels != MAP_FAILED)
        ::munmap(pixels, pixelBytes);
    return isRendered;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (!confineProcess())
        return 1;
    while (const std::optional<Request> request = receiveRequest()) {
        const RenderReplyMessage reply{serve(*request) ? 1U : 0U};
        if (::send(rendererSocket, &reply, sizeof reply, MSG_NOSIGNAL) != sizeof reply)
            break;
    }
    // Without destructors: they might call what is not permitted any more.
    ::_exit(0);
}
