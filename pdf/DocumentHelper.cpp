#include "pdf/DocumentHelper.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace vellmora {

/// So often it is asked whether a silence is still excused.
constexpr std::chrono::milliseconds excuseInterval{1000};

DocumentHelper::DocumentHelper(std::unique_ptr<HelperProcess> process, const Patience& forStart,
                               const WorkProgress* progress)
    : m_process(std::move(process)) {
    if (!m_process)
        throw HelperLost(DocumentFailure::notStarted);
    if (receive(forStart, progress).kind != DocumentReplyKind::ready)
        throw HelperLost(DocumentFailure::unsound);
}

void DocumentHelper::send(const DocumentRequest& request, int memory, int file) {
    if (!sendDocumentRequest(m_process->socket(), request, memory, file))
        throw HelperLost(DocumentFailure::ended);
}

void DocumentHelper::hangUp() {
    ::shutdown(m_process->socket(), SHUT_RDWR);
}

DocumentHelper::Reply DocumentHelper::receive(const Patience& patience, const WorkProgress* progress) {
    Clock::time_point silentUntil = Clock::now() + patience.silence;
    DocumentReplyHeader header{};
    read(reinterpret_cast<char*>(&header), sizeof header, patience, silentUntil, progress);
    if (header.length > maxReplyLength)
        throw HelperLost(DocumentFailure::unsound);
    m_content.resize(header.length);
    read(m_content.data(), m_content.size(), patience, silentUntil, progress);
    return {static_cast<DocumentReplyKind>(header.kind), {m_content.data(), m_content.size()}};
}

void DocumentHelper::read(char* target, size_t length, const Patience& patience,
                          Clock::time_point& silentUntil, const WorkProgress* progress) {
    while (length > 0) {
        const ssize_t count = ::recv(m_process->socket(), target, length, MSG_DONTWAIT);
        if (count > 0) {
            target += count;
            length -= static_cast<size_t>(count);
        } else if (count < 0 && errno == EAGAIN) {
            wait(patience, silentUntil, progress);
        } else if (count == 0 || errno != EINTR) {
            throw HelperLost(DocumentFailure::ended);
        }
        if (progress && progress->isCancelled())
            throw WorkProgress::cancelledError();
    }
}

void DocumentHelper::wait(const Patience& patience, Clock::time_point& silentUntil,
                          const WorkProgress* progress) {
    const Clock::time_point now = Clock::now();
    if (patience.end && now >= *patience.end)
        throw HelperLost(DocumentFailure::timeIsOver);
    const bool isExcused = patience.isExcused && patience.isExcused();
    if (isExcused)
        silentUntil = now + patience.silence;
    if (now >= silentUntil)
        throw HelperLost(DocumentFailure::silent);
    Clock::time_point until = patience.end ? std::min(*patience.end, silentUntil) : silentUntil;
    if (isExcused)
        until = std::min(until, now + excuseInterval);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now);
    std::array<pollfd, 2> events{pollfd{m_process->socket(), POLLIN, 0},
                                 pollfd{progress ? progress->descriptor() : -1, POLLIN, 0}};
    ::poll(events.data(), events.size(), static_cast<int>(left.count()));
}

}  // namespace vellmora
