#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

namespace vellmora {

/// Does tasks one after another, in their order, on a thread of its own. The thread is started for the first
/// task and stays until the queue goes. Where no thread is to be had, the task is done by the one that brings
/// it. May be used by several threads.
class SerialQueue {
public:
    enum class Priority { normal, lowest };

    explicit SerialQueue(Priority priority = Priority::normal) : m_priority(priority) {}
    /// Waits for all tasks, so none of them may own the queue.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// The future has what the task answers or throws. Unlike that of `std::async` it does not wait for the
    /// task when it goes.
    template <typename Task>
    std::future<std::invoke_result_t<Task&>> run(Task task) {
        // Shared, since `std::function` wants to be copied.
        auto packaged = std::make_shared<std::packaged_task<std::invoke_result_t<Task&>()>>(std::move(task));
        auto future = packaged->get_future();
        add([packaged] { (*packaged)(); });
        return future;
    }

private:
    void add(std::function<void()> task);
    bool hasThread();
    void work();

    Priority m_priority;
    std::mutex m_mutex;
    // Guarded by the mutex.
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace vellmora
