// Tells how long a window leaves the desktop without an answer.
//
//   window_pulse WINDOW PROCESS
//
// Asks the window (its number, in decimal) every few milliseconds whether it is alive, as window managers do
// (_NET_WM_PING). For each line of its input it prints two times, in milliseconds: the longest that an answer
// has taken since the line before, and the longest without what the process' main thread has waited for a
// processor meanwhile, which others kept busy. A question without an answer counts for as long as it has been
// waiting.

#include <X11/Xlib.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

constexpr double interval = 10;  // milliseconds from an answer to the next question

double now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// How long a main thread has been ready to run, and did not, in milliseconds since its start.
class ProcessorQueue {
public:
    explicit ProcessorQueue(const std::string& process)
        : m_file(::open(("/proc/" + process + "/task/" + process + "/schedstat").c_str(), O_RDONLY)) {}

    double waited() const {
        std::array<char, 128> text{};
        unsigned long long onProcessor = 0;
        unsigned long long waiting = 0;
        const bool isRead = ::pread(m_file, text.data(), text.size() - 1, 0) > 0 &&
                            std::sscanf(text.data(), "%llu %llu", &onProcessor, &waiting) == 2;
        return isRead ? static_cast<double>(waiting) / 1e6 : 0;
    }

private:
    int m_file;
};

struct Times {
    double seen = 0;
    double own = 0;
    void include(const Times& other) {
        seen = std::max(seen, other.seen);
        own = std::max(own, other.own);
    }
};

class Pulse {
public:
    Pulse(Display* display, Window window, const std::string& process)
        : m_display(display),
          m_window(window),
          m_protocols(XInternAtom(display, "WM_PROTOCOLS", False)),
          m_ping(XInternAtom(display, "_NET_WM_PING", False)),
          m_queue(process) {
        // Answers go to the root window. Qt sends them to those who listen to its structure.
        XSelectInput(display, DefaultRootWindow(display), StructureNotifyMask | SubstructureNotifyMask);
    }

    /// Asks when it is time to, takes the answer when it is there.
    void beat() {
        while (XPending(m_display)) {
            XEvent event;
            XNextEvent(m_display, &event);
            if (m_isAsked && isAnswer(event)) {
                m_longest.include(sinceAsked());
                m_isAsked = false;
            }
        }
        if (!m_isAsked && now() - m_asked >= interval)
            ask();
    }

    /// And begins anew.
    Times longest() {
        if (m_isAsked)
            m_longest.include(sinceAsked());
        return std::exchange(m_longest, Times());
    }

private:
    bool isAnswer(const XEvent& event) const {
        return event.type == ClientMessage && event.xclient.message_type == m_protocols &&
               static_cast<Atom>(event.xclient.data.l[0]) == m_ping && event.xclient.data.l[1] == m_number;
    }

    Times sinceAsked() const {
        const double seen = now() - m_asked;
        return {seen, std::max(0.0, seen - (m_queue.waited() - m_waited))};
    }

    void ask() {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = m_window;
        event.xclient.message_type = m_protocols;
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(m_ping);
        event.xclient.data.l[1] = ++m_number;
        event.xclient.data.l[2] = static_cast<long>(m_window);
        m_waited = m_queue.waited();
        m_asked = now();
        m_isAsked = true;
        XSendEvent(m_display, m_window, False, NoEventMask, &event);
        XFlush(m_display);
    }

    Display* m_display;
    Window m_window;
    Atom m_protocols;
    Atom m_ping;
    long m_number = 0;
    bool m_isAsked = false;
    double m_asked = 0;
    ProcessorQueue m_queue;
    double m_waited = 0;  ///< when it was asked
    Times m_longest;
};

/// The window is gone, which ends the program that asks, too.
int takeError(Display*, XErrorEvent*) {
    std::exit(0);
}

}  // namespace

int main(int argc, char** argv) {
    Display* display = XOpenDisplay(nullptr);
    if (argc != 3 || !display)
        return 1;
    XSetErrorHandler(takeError);
    Pulse pulse(display, std::strtoul(argv[1], nullptr, 10), argv[2]);
    std::array<pollfd, 2> events{pollfd{ConnectionNumber(display), POLLIN, 0},
                                 pollfd{STDIN_FILENO, POLLIN, 0}};
    for (;;) {
        pulse.beat();
        ::poll(events.data(), events.size(), static_cast<int>(interval) / 2);
        if (events[1].revents == 0)
            continue;
        std::array<char, 64> line{};
        if (::read(STDIN_FILENO, line.data(), line.size()) <= 0)
            return 0;
        const Times longest = pulse.longest();
        std::printf("%.1f %.1f\n", longest.seen, longest.own);
        std::fflush(stdout);
    }
}
