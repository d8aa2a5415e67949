// Stands in for the renderer process: says and does what no honest one does. A file beside it, with ".lie" at
// the end of its name, names the lie.

#include "base/HelperProcess.h"
#include "preview/RenderMessages.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace vellmora;

namespace {

constexpr std::uint32_t opaqueWhite = 0xFFFFFFFF;
constexpr std::uint32_t opaqueBlack = 0xFF000000;

void sendBytes(const void* bytes, size_t length) {
    if (::send(helperSocket, bytes, length, MSG_NOSIGNAL) != static_cast<ssize_t>(length))
        std::_Exit(0);
}

void say(std::uint32_t content) {
    const RenderReplyMessage message{content};
    sendBytes(&message, sizeof message);
}

void say(RenderReply reply) {
    say(static_cast<std::uint32_t>(reply));
}

[[noreturn]] void sayNothing() {
    for (;;)
        ::pause();
}

[[noreturn]] void sayForEver(RenderReply reply) {
    for (;;)
        say(reply);
}

/// As many as go with one packet, all of them the same.
void sayWithDescriptors(RenderReply reply, int descriptor) {
    constexpr size_t most = 253;
    RenderReplyMessage message{static_cast<std::uint32_t>(reply)};
    std::array<int, most> descriptors{};
    descriptors.fill(descriptor);
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof descriptors)> control{};
    iovec part{&message, sizeof message};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    cmsghdr* rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof descriptors);
    std::copy(descriptors.begin(), descriptors.end(), reinterpret_cast<int*>(CMSG_DATA(rights)));
    ::sendmsg(helperSocket, &header, MSG_NOSIGNAL);
}

/// The page's pixels, as far as they were asked for.
class Pixels {
public:
    explicit Pixels(const ReceivedRenderRequest& request)
        : m_count(static_cast<size_t>(request.message.width) * static_cast<size_t>(request.message.height)),
          m_pixels(static_cast<std::uint32_t*>(::mmap(nullptr, m_count * sizeof(std::uint32_t),
                                                      PROT_READ | PROT_WRITE, MAP_SHARED,
                                                      request.pixels.get(), 0))) {}

    void paint(std::uint32_t color) { paintFirst(m_count, color); }
    void paintAllButTheLast(std::uint32_t color) { paintFirst(m_count - 1, color); }

private:
    void paintFirst(size_t count, std::uint32_t color) { std::fill_n(m_pixels, count, color); }

    size_t m_count;
    std::uint32_t* m_pixels;
};

[[noreturn]] void paintForEver(Pixels pixels) {
    for (;;) {
        pixels.paint(opaqueBlack);
        pixels.paint(opaqueWhite);
    }
}

/// The memory is the program's, which maps it too.
void takeMemoryAway(const ReceivedRenderRequest& request) {
    for (const FileDescriptor* file : {&request.pixels, &request.pagePdf}) {
        if (::ftruncate(file->get(), 0) == 0)
            std::abort();
        ::fallocate(file->get(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, 1 << 20);
    }
}

void answerAs(const std::string& lie, const ReceivedRenderRequest& request) {
    Pixels pixels(request);
    if (lie == "silent")
        sayNothing();
    if (lie == "ends")
        std::_Exit(0);
    if (lie == "unknown reply")
        return say(4711);
    if (lie == "ready again")
        return say(RenderReply::ready);
    if (lie == "half a reply")
        return sendBytes("?", 1);
    if (lie == "empty reply")
        return sendBytes("", 0);
    if (lie == "takes the memory away")
        takeMemoryAway(request);
    if (lie == "all but one pixel")
        pixels.paintAllButTheLast(opaqueWhite);
    if (lie == "invisible pixels")
        pixels.paint(opaqueWhite & ~opaqueBlack);
    if (lie == "descriptors without a picture")
        return sayWithDescriptors(RenderReply::rendered, request.pixels.get());
    if (lie == "paints" || lie == "paints on" || lie == "too long a reply" || lie == "answers twice")
        pixels.paint(opaqueWhite);
    if (lie == "too long a reply")
        return sendBytes(std::array{RenderReply::rendered, RenderReply::rendered}.data(),
                         2 * sizeof(RenderReplyMessage));
    say(RenderReply::rendered);
    if (lie == "answers twice")
        say(RenderReply::rendered);
    if (lie == "paints on")
        paintForEver(pixels);
}

}  // namespace

int main(int /*count*/, char** arguments) {
    std::string lie;
    std::getline(std::ifstream(std::string(arguments[0]) + ".lie"), lie);
    if (lie == "never ready")
        sayNothing();
    if (lie == "not ready")
        say(RenderReply::rendered);
    say(RenderReply::ready);
    if (lie == "answers without end")
        sayForEver(RenderReply::rendered);
    if (lie == "ready without end")
        sayForEver(RenderReply::ready);
    while (const auto request = receiveRenderRequest(helperSocket))
        answerAs(lie, *request);
    return 0;
}
