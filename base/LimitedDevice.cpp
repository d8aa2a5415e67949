#include "base/LimitedDevice.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <utility>

namespace vellmora {

std::chrono::nanoseconds timeComputed() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

LimitedDevice::LimitedDevice(QByteArray bytes, std::chrono::nanoseconds time, qint64 portion)
    : m_bytes(std::move(bytes)), m_portion(portion), m_end(timeComputed() + time) {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool LimitedDevice::isTimeOver() const {
    return timeComputed() >= m_end;
}

bool LimitedDevice::seek(qint64 position) {
    if (position < 0 || position > m_bytes.size())
        return false;
    m_at = position;
    return QIODevice::seek(position);
}

qint64 LimitedDevice::readData(char* buffer, qint64 capacity) {
    if (isTimeOver())
        return -1;
    const qint64 count = std::min({capacity, m_portion, m_bytes.size() - m_at});
    std::memcpy(buffer, m_bytes.constData() + m_at, static_cast<size_t>(count));
    m_at += count;
    return count;
}

}  // namespace vellmora
