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
/// Room for many short replies, or for a part of a long one.
constexpr size_t usualLength = 32 << 10;

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
    const std::string_view start = take(sizeof header, patience, silentUntil, progress);
    std::memcpy(&header, start.data(), start.size());
    if (header.length > maxReplyLength)
        throw HelperLost(DocumentFailure::unsound);
    return {static_cast<DocumentReplyKind>(header.kind),
            take(header.length, patience, silentUntil, progress)};
}

void DocumentHelper::rest() {
    if (m_begin < m_end)
        return;  // it said more than it was asked for
    m_received = std::vector<char>();
    m_begin = m_end = 0;
}

/// The next bytes that the process says. They are valid until the next ones are taken.
std::string_view DocumentHelper::take(size_t length, const Patience& patience, Clock::time_point& silentUntil,
                                      const WorkProgress* progress) {
    if (m_end - m_begin < length) {
        m_received.erase(m_received.begin(), m_received.begin() + static_cast<ptrdiff_t>(m_begin));
        m_end -= std::exchange(m_begin, 0);
        m_received.resize(std::max({m_received.size(), length, usualLength}));
    }
    while (m_end < m_begin + length)
        receiveMore(patience, silentUntil, progress);
    if (progress && progress->isCancelled())
        throw WorkProgress::cancelledError();
    return {m_received.data() + std::exchange(m_begin, m_begin + length), length};
}

void DocumentHelper::receiveMore(const Patience& patience, Clock::time_point& silentUntil,
                                 const WorkProgress* progress) {
    const ssize_t count =
        ::recv(m_process->socket(), m_received.data() + m_end, m_received.size() - m_end, MSG_DONTWAIT);
    if (count > 0)
        m_end += static_cast<size_t>(count);
    else if (count < 0 && errno == EAGAIN)
        wait(patience, silentUntil, progress);
    else if (count == 0 || errno != EINTR)
        throw HelperLost(DocumentFailure::ended);
    if (progress && progress->isCancelled())
        throw WorkProgress::cancelledError();
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
