#pragma once

#include "base/HelperProcess.h"
#include "base/WorkProgress.h"
#include "pdf/DocumentFailure.h"
#include "pdf/DocumentMessages.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vellmora {

/// A document's process cannot be used any more: what it did, or did not do.
struct HelperLost : std::exception {
    explicit HelperLost(DocumentFailure what) : failure(what) {}
    DocumentFailure failure;
};

/// The process of a document, as one talks with it. What it says is read within limits and is not trusted:
/// who takes it checks it, and ends the process where it cannot be true.
class DocumentHelper {
public:
    using Clock = std::chrono::steady_clock;

    /// How long an answer may take.
    struct Patience {
        std::chrono::milliseconds silence;     ///< from one reply to the next
        std::optional<Clock::time_point> end;  ///< of all replies
        /// While it answers true, the process may be waiting for the program: its silence does not count.
        std::function<bool()> isExcused{};
    };
    struct Reply {
        DocumentReplyKind kind;
        std::string_view content;  ///< valid until the next one

        /// The content where it is one of these values. Throws `HelperLost` where it is of another size.
        template <typename Value>
        Value as() const;
        /// The same for any number of values.
        template <typename Value>
        std::vector<Value> asMany() const;
    };

    /// Waits until the process is ready. Throws `HelperLost`, or the `Error` of work that was cancelled.
    DocumentHelper(std::unique_ptr<HelperProcess> process, const Patience& forStart,
                   const WorkProgress* progress);

    pid_t pid() const { return m_process->pid(); }
    /// `file` may be negative. Throws `HelperLost`. For any thread.
    void send(const DocumentRequest& request, int memory, int file = -1);
    /// Nothing comes any more: who waits for a reply is told that the process has ended. For any thread.
    void hangUp();
    /// Waits for the next reply. Throws `HelperLost`, or the `Error` of work that was cancelled.
    Reply receive(const Patience& patience, const WorkProgress* progress);
    /// Nothing more comes before the next request: keeps no room for it. The last reply is not valid any
    /// more.
    void rest();

private:
    std::string_view take(size_t length, const Patience& patience, Clock::time_point& silentUntil,
                          const WorkProgress* progress);
    void receiveMore(const Patience& patience, Clock::time_point& silentUntil, const WorkProgress* progress);
    void wait(const Patience& patience, Clock::time_point& silentUntil, const WorkProgress* progress);

    std::unique_ptr<HelperProcess> m_process;
    // What was received; what nobody has taken yet lies between the two.
    std::vector<char> m_received;
    size_t m_begin = 0;
    size_t m_end = 0;
};

template <typename Value>
Value DocumentHelper::Reply::as() const {
    const std::vector<Value> values = asMany<Value>();
    if (values.size() != 1)
        throw HelperLost(DocumentFailure::unsound);
    return values.front();
}

template <typename Value>
std::vector<Value> DocumentHelper::Reply::asMany() const {
    static_assert(std::is_trivially_copyable_v<Value>);
    if (content.size() % sizeof(Value) != 0)
        throw HelperLost(DocumentFailure::unsound);
    std::vector<Value> values(content.size() / sizeof(Value));
    if (!values.empty())
        std::memcpy(values.data(), content.data(), content.size());
    return values;
}

}  // namespace vellmora
