#include "base/SerialQueue.h"

#include <sys/resource.h>
#include <system_error>
#include <unistd.h>

namespace vellmora {

/// Of the system's threads: for what nobody waits for.
static constexpr int lowestPriority = 19;

SerialQueue::~SerialQueue() {
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable())
        m_thread.join();
}

void SerialQueue::add(std::function<void()> task) {
    {
        const std::scoped_lock lock(m_mutex);
        if (hasThread()) {
            m_tasks.push_back(std::move(task));
            m_changed.notify_one();
            return;
        }
    }
    task();
}

bool SerialQueue::hasThread() {
    if (m_thread.joinable())
        return true;
    try {
        m_thread = std::thread([this] { work(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

void SerialQueue::work() {
    if (m_priority == Priority::lowest)
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), lowestPriority);
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

}  // namespace vellmora
