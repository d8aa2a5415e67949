#include "base/WorkProgress.h"

#include <sys/eventfd.h>

namespace vellmora {

WorkProgress::WorkProgress() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WorkProgress::cancel() {
    m_isCancelled = true;
    ::eventfd_write(m_event.get(), 1);
}

Error WorkProgress::cancelledError() {
    return Error(Error::vellmoraDomain, 3, QStringLiteral("Abgebrochen."));
}

}  // namespace vellmora
