#pragma once

#include <QCoreApplication>

namespace vellmora::test {

/// Lets everything that is queued happen, and what that queues in its turn.
inline void settle() {
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

}  // namespace vellmora::test
