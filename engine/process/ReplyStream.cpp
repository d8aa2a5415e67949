#include "engine/process/ReplyStream.h"

#include "base/HelperProcess.h"

#include <cerrno>
#include <cstdint>
#include <functional>
#include <sys/socket.h>
#include <unistd.h>

namespace vellmora {

namespace {

/// The program is told that often, and does not wait for much longer.
constexpr std::chrono::milliseconds interval{200};
/// The program writes so many bytes in some milliseconds. It is not woken for less, and the system keeps more
/// of what it is told while it writes.
constexpr qint64 enoughWork = 4 << 20;
/// What is as long as that is not copied.
constexpr size_t longReply = 16 << 10;

void sendAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(helperSocket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            ::_exit(0);
        bytes.remove_prefix(static_cast<size_t>(count));
    }
}

}  // namespace

void ReplyStream::send(DocumentReplyKind kind, std::string_view content) {
    add(kind, content);
    flush();
}

void ReplyStream::add(DocumentReplyKind kind, std::string_view content) {
    const DocumentReplyHeader header{static_cast<std::uint32_t>(kind),
                                     static_cast<std::uint32_t>(content.size())};
    m_unsent.append(reinterpret_cast<const char*>(&header), sizeof header);
    if (content.size() < longReply) {
        m_unsent += content;
    } else {
        flush();
        sendAll(content);
    }
}

void ReplyStream::flush() {
    sendAll(m_unsent);
    m_unsent.clear();
    m_unsentWork = 0;
    m_lastSent = Clock::now();
}

void ReplyStream::sendIndices(DocumentReplyKind kind, const QList<qsizetype>& indices) {
    sendMany(kind, std::vector<std::int64_t>(indices.begin(), indices.end()));
}

void ReplyStream::fail(DocumentFailure reason, int error) {
    send(DocumentReplyKind::failed, FailedRequest{static_cast<std::uint32_t>(reason), error});
}

void ReplyStream::setProgress(qsizetype done, qsizetype total) {
    m_progress = {done, total};
    keepAlive();
}

void ReplyStream::keepAlive() {
    if (Clock::now() - m_lastSent >= interval)
        send(DocumentReplyKind::progress, m_progress);
}

std::optional<SourceRange> ReplyStream::sharedRange(const char* bytes, qint64 count) const {
    // The order of `std::less` is defined for pointers into different memory, too.
    const std::less_equal<> isUpTo;
    for (const std::string_view memory : m_shared) {
        if (isUpTo(memory.data(), bytes) && isUpTo(bytes + count, memory.data() + memory.size()))
            return SourceRange{static_cast<std::uint64_t>(bytes - memory.data()),
                               static_cast<std::uint64_t>(count)};
    }
    return std::nullopt;
}

void ReplyStream::write(const char* bytes, qint64 count) {
    m_unsentWork += count;
    if (const auto range = sharedRange(bytes, count)) {
        add(DocumentReplyKind::source, contentOf(*range));
    } else {
        for (qint64 added = 0; added < count; added += maxReplyLength) {
            const qint64 length = std::min<qint64>(count - added, maxReplyLength);
            add(DocumentReplyKind::data, std::string_view(bytes + added, static_cast<size_t>(length)));
        }
    }
    if (m_unsentWork >= enoughWork || m_unsent.size() >= longReply)
        flush();
}

}  // namespace vellmora
