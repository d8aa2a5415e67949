// Stands in for the document process: says what no honest one says. The variable VELLMORA_LIE names the lie;
// a document of two pages is opened honestly where the lie is about something else.

#include "base/HelperProcess.h"
#include "pdf/DocumentFailure.h"
#include "pdf/DocumentMessages.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

using namespace vellmora;

namespace {

using Kind = DocumentReplyKind;

void sendBytes(const void* bytes, size_t length) {
    if (::send(helperSocket, bytes, length, MSG_NOSIGNAL) != static_cast<ssize_t>(length))
        std::_Exit(0);
}

void sendHeader(std::uint32_t kind, std::uint32_t length) {
    const DocumentReplyHeader header{kind, length};
    sendBytes(&header, sizeof header);
}

void say(Kind kind, const void* bytes = nullptr, size_t length = 0) {
    sendHeader(static_cast<std::uint32_t>(kind), static_cast<std::uint32_t>(length));
    if (length > 0)
        sendBytes(bytes, length);
}

template <typename Value>
void sayValue(Kind kind, const Value& value) {
    say(kind, &value, sizeof value);
}

void sayIndices(Kind kind, const std::vector<std::int64_t>& indices) {
    say(kind, indices.data(), indices.size() * sizeof(std::int64_t));
}

[[noreturn]] void sayNothing() {
    for (;;)
        ::pause();
}

[[noreturn]] void sayForEver(Kind kind, const std::string& content) {
    for (;;)
        say(kind, content.data(), content.size());
}

constexpr PageBoxes page{{0, 0, 100, 200}, {0, 0, 100, 200}};

void openAs(const std::string& lie) {
    if (lie == "begun unasked" || lie == "begun again" || lie == "silent after the first page") {
        sayValue(Kind::pages, page);
        return say(Kind::begun);
    }
    PageBoxes odd = page;
    if (lie == "no number")
        odd.cropBox[1] = std::nan("");
    if (lie == "no width")
        odd.mediaBox[2] = 0;
    if (lie == "far away")
        odd.mediaBox[0] = 1e300;
    if (lie == "too many pages")
        sayForEver(Kind::pages, std::string(100 * sizeof(PageBoxes), '?'));
    if (lie == "other page count")
        sayValue(Kind::pages, page);
    sayValue(Kind::pages, page);
    sayValue(Kind::pages, odd);
    if (lie == "begun with two pages")
        return say(Kind::begun);
    if (lie == "half a page")
        say(Kind::pages, &page, sizeof page / 2);
    if (lie == "lost page that is not there")
        sayIndices(Kind::lostPages, {0, 2});
    if (lie == "lost page twice")
        sayIndices(Kind::lostPages, {1, 1});
    if (lie == "data too early")
        say(Kind::data, "%PDF-1.7", 8);
    if (lie == "unknown reply")
        say(static_cast<Kind>(4711));
    if (lie == "unknown failure")
        sayValue(Kind::failed, FailedRequest{4711, 0});
    if (lie == "a failure of the program's own")
        sayValue(Kind::failed, FailedRequest{static_cast<std::uint32_t>(DocumentFailure::ended), 0});
    if (lie == "endless reply")
        sendHeader(static_cast<std::uint32_t>(Kind::pages), 0xFFFFFFFF);
    if (lie == "progress beyond the end")
        sayValue(Kind::progress, DocumentProgress{3, 2});
    if (lie == "ends while opening")
        std::_Exit(0);
    if (lie == "half a reply") {
        sendHeader(static_cast<std::uint32_t>(Kind::opened), 100);
        sayNothing();
    }
    sayValue(Kind::opened, OpenedDocument{0, 0, lie == "fewer than none" ? -1 : 0, 0});
}

void composeAs(const std::string& lie, std::uint64_t sourceSize) {
    if (lie == "silent while writing")
        sayNothing();
    if (lie == "endless data")
        sayForEver(Kind::data, "%PDF-" + std::string(maxReplyLength - 5, '?'));
    if (lie == "no data")
        return say(Kind::composed);
    if (lie == "no pdf")
        say(Kind::data, "#!/bin/sh", 9);
    say(Kind::data, "%PDF-1.7", 8);
    if (lie == "source beyond its end")
        sayValue(Kind::source, SourceRange{1, sourceSize});
    if (lie == "source far beyond its end")
        sayValue(Kind::source, SourceRange{~std::uint64_t{0}, 2});
    if (lie == "half a place in the source")
        say(Kind::source, "1234", 4);
    if (lie == "endless source") {
        for (;;)
            sayValue(Kind::source, SourceRange{0, sourceSize});
    }
    if (lie == "incomplete page that is not there")
        sayIndices(Kind::incomplete, {1});
    if (lie == "ends while writing")
        std::_Exit(0);
    if (lie == "pages while writing")
        sayValue(Kind::pages, page);
    say(Kind::composed);
}

}  // namespace

int main() {
    const char* variable = std::getenv("VELLMORA_LIE");
    const std::string lie = variable ? variable : "";
    if (lie == "never ready")
        sayNothing();
    say(lie == "not ready" ? Kind::opened : Kind::ready);
    std::uint64_t sourceSize = 0;
    while (const auto request = receiveDocumentRequest(helperSocket)) {
        if (lie == "silent")
            sayNothing();
        if (request->message.kind == DocumentRequestKind::open) {
            sourceSize = request->message.size;
            openAs(lie);
        } else if (request->message.kind == DocumentRequestKind::complete) {
            if (lie == "begun again")
                openAs(lie);
        } else if (request->message.kind == DocumentRequestKind::compose) {
            composeAs(lie, sourceSize);
        }
    }
    return 0;
}
