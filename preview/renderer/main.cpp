// The renderer process: gets PDFs of single pages from the program and puts their pixels into shared memory.
// It trusts nothing that it is given, and the program trusts nothing that comes back.

#include "base/HelperProcess.h"
#include "confinement/Confinement.h"
#include "preview/RenderMessages.h"
#include "preview/renderer/PageEngine.h"

#include <malloc.h>
#include <optional>
#include <sys/mman.h>
#include <sys/socket.h>

#include <QCoreApplication>

using namespace vellmora;

namespace {

bool serve(PageEngine& engine, const ReceivedRenderRequest& request) {
    const size_t pdfSize = request.message.pdfSize;
    const QRect part(request.message.x, request.message.y, request.message.width, request.message.height);
    const QSize size = part.size();
    const auto pixelBytes =
        static_cast<size_t>(size.width()) * static_cast<size_t>(size.height()) * sizeof(QRgb);
    void* pagePdf = ::mmap(nullptr, pdfSize, PROT_READ, MAP_SHARED, request.pagePdf.get(), 0);
    void* pixels = ::mmap(nullptr, pixelBytes, PROT_READ | PROT_WRITE, MAP_SHARED, request.pixels.get(), 0);
    bool isRendered = false;
    if (pagePdf != MAP_FAILED && pixels != MAP_FAILED) {
        QImage target(static_cast<uchar*>(pixels), size.width(), size.height(), QImage::Format_RGB32);
        const auto length = static_cast<qsizetype>(pdfSize);
        isRendered =
            engine.render(QByteArray::fromRawData(static_cast<const char*>(pagePdf), length),
                          QSize(request.message.pageWidth, request.message.pageHeight), part, target);
    }
    if (pagePdf != MAP_FAILED)
        ::munmap(pagePdf, pdfSize);
    if (pixels != MAP_FAILED)
        ::munmap(pixels, pixelBytes);
    return isRendered;
}

bool answer(RenderReply content) {
    const RenderReplyMessage message{static_cast<std::uint32_t>(content)};
    return ::send(helperSocket, &message, sizeof message, MSG_NOSIGNAL) == sizeof message;
}

}  // namespace

int main(int argc, char** argv) {
    if (!leaveDescriptors(helperSocket))
        return 1;
    const QCoreApplication app(argc, argv);
    PageEngine engine;
    ConfinementPolicy policy;
    policy.readableFolders = {"/usr/share/fonts", "/usr/local/share/fonts", "/usr/share/X11/fonts",
                              "/usr/share/ghostscript/fonts"};
    policy.prepare = [&] { engine.findFonts(); };
    if (!confineProcess(policy))
        return 1;
    bool isHeard = answer(RenderReply::ready);
    while (isHeard) {
        const std::optional<ReceivedRenderRequest> request = receiveRenderRequest(helperSocket);
        if (!request)
            break;
        isHeard = answer(serve(engine, *request) ? RenderReply::rendered : RenderReply::notRendered);
        // What the engine has freed, while nobody waits: else it lies here for as long as the document is
        // open.
        ::malloc_trim(0);
    }
    // Without destructors: they might call what is not permitted any more.
    ::_exit(0);
}
