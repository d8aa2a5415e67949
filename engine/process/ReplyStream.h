#pragma once

#include "pdf/DocumentFailure.h"
#include "pdf/DocumentMessages.h"
#include "pdf/PDFDataConsumer.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QList>

namespace vellmora {

/// What the process says to the program. It ends where the program is gone.
class ReplyStream : public PDFDataConsumer {
public:
    void send(DocumentReplyKind kind, std::string_view content = {});
    template <typename Value>
    void send(DocumentReplyKind kind, const Value& value) {
        send(kind, contentOf(value));
    }
    /// As many replies as they need.
    template <typename Value>
    void sendMany(DocumentReplyKind kind, const std::vector<Value>& values);
    void sendIndices(DocumentReplyKind kind, const QList<qsizetype>& indices);
    void fail(DocumentFailure reason, int error = 0);

    /// So many pages of so many are done. Says so now and then.
    void setProgress(qsizetype done, qsizetype total);
    /// The process is at work. To be called often; says so now and then.
    void keepAlive();

    /// Memory of which the program has the content, each all of it. What is written from it is not sent, but
    /// told by its place.
    void setShared(std::vector<std::string_view> memory) { m_shared = std::move(memory); }
    /// Bytes of the new file. They are on their way once there is enough for the program to do, or something
    /// else is sent.
    void write(const char* bytes, qint64 count) override;
    void finish() override {}

private:
    using Clock = std::chrono::steady_clock;

    template <typename Value>
    static std::string_view contentOf(const Value& value) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }
    std::optional<SourceRange> sharedRange(const char* bytes, qint64 count) const;
    void add(DocumentReplyKind kind, std::string_view content);
    void flush();

    std::vector<std::string_view> m_shared;
    std::string m_unsent;
    qint64 m_unsentWork = 0;  ///< bytes of the new file in it, or told in it
    DocumentProgress m_progress{0, 0};
    Clock::time_point m_lastSent = Clock::now();
};

template <typename Value>
void ReplyStream::sendMany(DocumentReplyKind kind, const std::vector<Value>& values) {
    constexpr size_t most = (1 << 16) / sizeof(Value);
    for (size_t sent = 0; sent < values.size(); sent += most) {
        const size_t count = std::min(most, values.size() - sent);
        send(kind,
             std::string_view(reinterpret_cast<const char*>(values.data() + sent), count * sizeof(Value)));
    }
}

}  // namespace vellmora
