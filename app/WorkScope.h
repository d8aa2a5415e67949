#pragma once

#include "app/ContentView.h"

#include <chrono>
#include <future>
#include <utility>

namespace vellmora {

class ContentView::WorkScope {
public:
    explicit WorkScope(ContentView& content) : m_content(content) { Q_EMIT m_content.willWork(); }
    ~WorkScope() { Q_EMIT m_content.didWork(); }
    WorkScope(const WorkScope&) = delete;
    WorkScope& operator=(const WorkScope&) = delete;

    /// Runs the task and waits for it; what it throws is thrown on. The task gets a thread of its own only so
    /// that this one is free to tell when it takes long; where there is none to be had, it runs on this one.
    template <typename Task>
    auto await(Task task) {
        auto result = std::async(std::launch::async | std::launch::deferred, std::move(task));
        if (result.wait_for(patience) == std::future_status::timeout)
            Q_EMIT m_content.worksLong();
        return result.get();
    }

private:
    static constexpr std::chrono::milliseconds patience{100};

    ContentView& m_content;
};

}  // namespace vellmora
