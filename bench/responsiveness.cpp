// Measures how long the program's window keeps its user waiting: opens each document in the real window,
// turns to its first pages one after another, and has an event posted every few milliseconds all the while.
//
//   responsiveness IN.pdf…
//
// Prints one line for each document, and a summary with the slowest at the end. A window that does not answer
// for a minute counts as hanging and ends the program.

#include "app/ContentWindow.h"
#include "app/VellmoraApp.h"
#include "desktop/DialogFilePanels.h"
#include "pdf/DocumentProcesses.h"
#include "preview/ProcessRenderer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include <QFileInfo>
#include <QKeyEvent>
#include <QTemporaryDir>

using namespace vellmora;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto probeInterval = 5ms;
constexpr auto hangLimit = 60s;
constexpr auto pageLimit = 6s;
constexpr auto lookAtPage = 150ms;  // the neighbouring pages are made ready in it
constexpr qsizetype pagesToShow = 3;
constexpr size_t slowestListed = 10;

const auto probeEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

double milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

/// Posts events from a thread of its own and keeps the longest time that one of them waited to be served.
class Probe : public QObject {
public:
    Probe() : m_thread([this] { run(); }) {}
    ~Probe() override {
        m_isDone = true;
        m_thread.join();
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    /// Counts events from now on; what was posted before is left out.
    void restart() {
        m_since = Clock::now();
        m_longest = {};
    }
    Clock::duration longest() const { return m_longest; }

    /// Called with each event that is served.
    std::function<void()> onServed;

protected:
    void customEvent(QEvent* event) override {
        const Clock::time_point now = Clock::now();
        const Clock::time_point posted = static_cast<Event*>(event)->posted;
        if (posted >= m_since)
            m_longest = std::max(m_longest, now - posted);
        m_lastServed = now.time_since_epoch().count();
        if (onServed)
            onServed();
    }

private:
    struct Event : QEvent {
        Event() : QEvent(probeEvent) {}
        Clock::time_point posted = Clock::now();
    };

    void run() {
        while (!m_isDone) {
            QCoreApplication::postEvent(this, new Event);
            std::this_thread::sleep_for(probeInterval);
            if (Clock::now().time_since_epoch() - Clock::duration(m_lastServed) > hangLimit) {
                std::puts("the window hangs");
                std::fflush(stdout);
                std::abort();
            }
        }
    }

    Clock::time_point m_since = Clock::now();
    Clock::duration m_longest{};
    std::atomic<Clock::rep> m_lastServed = Clock::now().time_since_epoch().count();
    std::atomic<bool> m_isDone = false;
    std::thread m_thread;
};

struct Measurement {
    QString name;
    bool isRefused = false;
    double load = 0;     ///< milliseconds, as is `longest`
    double longest = 0;  ///< wait of an event, outside of the load
    double slowestPage = 0;
    qsizetype shown = 0;
    qsizetype notices = 0;
    qsizetype late = 0;  ///< pages neither shown nor given up in time
    int restarts = 0;    ///< of the renderer process
};

class Session {
public:
    explicit Session(const SystemFonts& fonts)
        : m_window(std::make_unique<ContentView>(std::make_unique<StampLibrary>(StampLibrary::Environment{
                                                     {m_folder.filePath(QStringLiteral("data")),
                                                      m_folder.filePath(QStringLiteral("tmp")),
                                                      m_folder.filePath(QStringLiteral("settings.json"))},
                                                     systemClock(),
                                                     m_panels,
                                                     fonts}),
                                                 m_panels, m_processes),
                   m_renderer, Theme(fonts)) {
        m_renderer.prepare();
        m_rendererProcess = m_renderer.processID();
        m_probe.onServed = [this] { countRestarts(); };
        m_window.window().show();
        waitFor([] { return false; }, 500ms);
    }

    Measurement measure(const QString& path) {
        Measurement result;
        result.name = QFileInfo(path).fileName();
        const auto before = m_window.content().pdfDocument.value();
        const Clock::time_point start = Clock::now();
        m_window.content().loadPDF(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
        result.load = milliseconds(Clock::now() - start);
        m_probe.restart();
        m_restarts = 0;
        result.isRefused = m_window.content().pdfDocument.value() == before;
        if (!result.isRefused)
            showPages(result);
        result.longest = milliseconds(m_probe.longest());
        result.restarts = m_restarts;
        return result;
    }

private:
    /// False where the condition did not come true in time.
    template <typename Condition>
    bool waitFor(Condition condition, Clock::duration limit) {
        const Clock::time_point end = Clock::now() + limit;
        while (!condition()) {
            if (Clock::now() > end)
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }

    void showPages(Measurement& result) {
        const qsizetype count = std::min(m_window.content().pdfDocument.value()->pageCount(), pagesToShow);
        for (qsizetype page = 0; page < count; ++page) {
            const Clock::time_point start = Clock::now();
            if (page > 0) {
                QCoreApplication::postEvent(
                    &m_window.editor()->pdfView(),
                    new QKeyEvent(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier));
            }
            const bool isInTime = waitFor([&] { return isThere(page); }, pageLimit);
            result.slowestPage = std::max(result.slowestPage, milliseconds(Clock::now() - start));
            if (!isInTime)
                ++result.late;
            else if (m_window.editor()->pdfView().pictures().picture(page).isUnavailable)
                ++result.notices;
            else
                ++result.shown;
            waitFor([] { return false; }, lookAtPage);
        }
    }

    bool isThere(qsizetype page) {
        EditorHostView* editor = m_window.editor();
        if (!editor || editor->pdfView().document() != m_window.content().pdfDocument.value() ||
            editor->pdfView().currentPageIndex() != page)
            return false;
        const PageCache::Picture picture = editor->pdfView().pictures().picture(page);
        return picture.isUnavailable || !picture.pixmap.isNull();
    }

    void countRestarts() {
        const std::optional<pid_t> process = m_renderer.processID();
        if (process != std::exchange(m_rendererProcess, process))
            ++m_restarts;
    }

    QTemporaryDir m_folder;
    DialogFilePanels m_panels;
    DocumentProcesses m_processes{DocumentProcesses::installedProgram()};
    ProcessRenderer m_renderer{ProcessRenderer::installedProgram()};
    ContentWindow m_window;
    std::optional<pid_t> m_rendererProcess;
    int m_restarts = 0;
    Probe m_probe;
};

void print(const Measurement& m) {
    std::printf("load %7.1f  wait %7.1f  page %7.1f  shown %lld notices %lld late %lld restarts %d%s  %s\n",
                m.load, m.longest, m.slowestPage, m.shown, m.notices, m.late, m.restarts,
                m.isRefused ? " refused" : "", qPrintable(m.name));
    std::fflush(stdout);
}

template <typename Value>
void printSlowest(const char* title, std::vector<Measurement> all, Value Measurement::*value) {
    std::sort(all.begin(), all.end(), [=](const auto& a, const auto& b) { return a.*value > b.*value; });
    all.resize(std::min(all.size(), slowestListed));
    std::printf("slowest by %s:\n", title);
    for (const Measurement& measurement : all)
        print(measurement);
}

void printSummary(const std::vector<Measurement>& all) {
    qsizetype refused = 0;
    qsizetype shown = 0;
    qsizetype notices = 0;
    qsizetype late = 0;
    int restarts = 0;
    for (const Measurement& m : all) {
        refused += m.isRefused ? 1 : 0;
        shown += m.shown;
        notices += m.notices;
        late += m.late;
        restarts += m.restarts;
    }
    std::printf("\n%zu documents, %lld refused; pages: %lld shown, %lld notices, %lld late; %d restarts\n",
                all.size(), refused, shown, notices, late, restarts);
    printSlowest("load", all, &Measurement::load);
    printSlowest("wait", all, &Measurement::longest);
}

}  // namespace

int main(int argc, char** argv) {
    VellmoraApp app(argc, argv);
    Session session(SystemFonts::load());
    std::vector<Measurement> all;
    const QStringList paths = QCoreApplication::arguments().mid(1);
    for (const QString& path : paths) {
        all.push_back(session.measure(path));
        print(all.back());
    }
    printSummary(all);
    return 0;
}
