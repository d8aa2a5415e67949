// The renderer process: gets drawings of pages from the program and puts their pixels into shared memory. It
// trusts nothing that it is given, and the program trusts nothing that comes back.

#include "platform/pdf/render/RenderMessages.h"
#include "renderer/Confinement.h"
#include "renderer/PageRendering.h"

#include <optional>
#include <sys/mman.h>
#include <sys/socket.h>

#include <QCoreApplication>

using namespace vellmora;

namespace {

bool serve(const ReceivedRenderRequest& request) {
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
    while (const std::optional<ReceivedRenderRequest> request = receiveRenderRequest(rendererSocket)) {
        const RenderReplyMessage reply{serve(*request) ? 1U : 0U};
        if (::send(rendererSocket, &reply, sizeof reply, MSG_NOSIGNAL) != sizeof reply)
            break;
    }
    // Without destructors: they might call what is not permitted any more.
    ::_exit(0);
}
