#pragma once

#include "base/Error.h"
#include "base/FileDescriptor.h"

#include <atomic>

#include <QtGlobal>

namespace vellmora {

/// How far a long piece of work is, and whether it is still wanted. Shared by the thread that works and the
/// one that waits for it.
class WorkProgress {
public:
    WorkProgress();

    /// So many pages of so many.
    void report(qint64 done, qint64 total) {
        m_total = total;
        m_done = done;
    }
    qint64 done() const { return m_done; }
    qint64 total() const { return m_total; }

    /// The work ends as soon as it can, with `cancelledError`. It may be done already.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }
    /// Becomes readable when the work is cancelled.
    int descriptor() const { return m_event.get(); }

    static Error cancelledError();

private:
    std::atomic<qint64> m_done = 0;
    std::atomic<qint64> m_total = 0;
    std::atomic<bool> m_isCancelled = false;
    FileDescriptor m_event;
};

}  // namespace vellmora
