#pragma once

#include <functional>

#include <QDateTime>

namespace vellmora {

/// Answers the current point in time. Handed in, so that a test can set the date.
using Clock = std::function<QDateTime()>;

inline Clock systemClock() {
    return [] { return QDateTime::currentDateTime(); };
}

}  // namespace vellmora
