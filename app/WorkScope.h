#pragma once

#include "app/ContentView.h"
#include "base/WorkProgress.h"

#include <functional>
#include <future>
#include <optional>
#include <type_traits>
#include <utility>

namespace vellmora {

/// Work that may take long, on a document of the workspace: while it is done on a thread of its own, the
/// event loop runs, and no second one begins. After a while the workspace says what is being done, and how
/// far it is.
class ContentView::WorkScope {
public:
    /// What happens to the work where the program ends meanwhile.
    enum class AtEnd { cancel, finish };

    /// `text` is for the status line, for example "PDF wird geladen…".
    WorkScope(ContentView& content, QString text, AtEnd atEnd);
    ~WorkScope();
    WorkScope(const WorkScope&) = delete;
    WorkScope& operator=(const WorkScope&) = delete;

    /// Runs the task and waits for it; what it throws is thrown on. The task gets the `WorkProgress` to
    /// report to.
    template <typename Task>
    auto await(Task task) {
        std::optional<std::invoke_result_t<Task, WorkProgress*>> result;
        run([&] { result.emplace(task(&m_progress)); });
        return std::move(*result);
    }

    /// Somebody wanted the work to end before it was done.
    bool isCancelled() const { return m_progress.isCancelled(); }

private:
    void run(const std::function<void()>& task);
    void endWithProgram(std::future<void>& work);
    void show();

    ContentView& m_content;
    QString m_text;
    AtEnd m_atEnd;
    WorkProgress m_progress;
    bool m_isShown = false;  ///< reported: from then on the status text follows the work
};

}  // namespace vellmora
