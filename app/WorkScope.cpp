#include "app/WorkScope.h"

#include <chrono>
#include <utility>

#include <QEventLoop>
#include <QScopeGuard>
#include <QTimer>

namespace vellmora {

using namespace std::chrono_literals;

/// Then the cursor says that the program is at work.
static constexpr auto untilCursor = 100ms;
/// Then the status line says what it does, and from then on how far it is.
static constexpr auto untilText = 500ms;
static constexpr auto textInterval = 100ms;
/// A save has so long where the program is to end.
static constexpr auto patienceAtEnd = 10s;

ContentView::WorkScope::WorkScope(ContentView& content, QString text, AtEnd atEnd)
    : m_content(content), m_text(std::move(text)), m_atEnd(atEnd) {
    m_content.m_work = &m_progress;
    Q_EMIT m_content.willWork();
}

ContentView::WorkScope::~WorkScope() {
    m_content.m_work = nullptr;
    m_content.workProgress = std::nullopt;
    Q_EMIT m_content.didWork();
}

void ContentView::WorkScope::run(const std::function<void()>& task) {
    QEventLoop loop;
    bool isDone = false;
    std::future<void> work = m_content.m_workQueue.run([&] {
        const auto end = qScopeGuard([&] {
            QMetaObject::invokeMethod(
                &loop,
                [&] {
                    isDone = true;
                    loop.quit();
                },
                Qt::QueuedConnection);
        });
        task();
    });
    QTimer::singleShot(untilCursor, &loop, [this] { Q_EMIT m_content.worksLong(); });
    QTimer display;
    QObject::connect(&display, &QTimer::timeout, [this, &display] {
        display.setInterval(textInterval);
        show();
    });
    display.start(untilText);
    loop.exec();
    if (!isDone)
        endWithProgram(work);
    work.get();
}

void ContentView::WorkScope::endWithProgram(std::future<void>& work) {
    const auto patience = m_atEnd == AtEnd::finish ? patienceAtEnd : 0s;
    if (work.wait_for(patience) == std::future_status::timeout)
        m_progress.cancel();
}

void ContentView::WorkScope::show() {
    const qint64 done = m_progress.done();
    const qint64 total = m_progress.total();
    const bool isKnown = total > 0;
    m_content.workProgress = isKnown ? static_cast<double>(done) / static_cast<double>(total) : 0;
    const QString text = isKnown ? m_text + QStringLiteral(" Seite %1 von %2").arg(done).arg(total) : m_text;
    if (std::exchange(m_isShown, true))
        m_content.statusText = text;
    else
        m_content.report(text, Outcome::success);
}

}  // namespace vellmora
