// Tells how long a window leaves the desktop without an answer.
//
//   window_pulse WINDOW
//
// Asks the window (its number, in decimal) every few milliseconds whether it is alive, as window managers do
// (_NET_WM_PING). For each line of its input it prints the longest time, in milliseconds, that an answer has
// taken since the line before. A question without an answer counts for as long as it has been waiting.

#include <X11/Xlib.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr double interval = 10;  // milliseconds from an answer to the next question

double now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

class Pulse {
public:
    Pulse(Display* display, Window window)
        : m_display(display),
          m_window(window),
          m_protocols(XInternAtom(display, "WM_PROTOCOLS", False)),
          m_ping(XInternAtom(display, "_NET_WM_PING", False)) {
        // Answers go to the root window. Qt sends them to those who listen to its structure.
        XSelectInput(display, DefaultRootWindow(display), StructureNotifyMask | SubstructureNotifyMask);
    }

    /// Asks when it is time to, takes the answer when it is there.
    void beat() {
        while (XPending(m_display)) {
            XEvent event;
            XNextEvent(m_display, &event);
            if (m_isAsked && isAnswer(event)) {
                m_longest = std::max(m_longest, now() - m_asked);
                m_isAsked = false;
            }
        }
        if (!m_isAsked && now() - m_asked >= interval)
            ask();
    }

    /// And begins anew.
    double longest() {
        const double longest = std::max(m_longest, m_isAsked ? now() - m_asked : 0);
        m_longest = 0;
        return longest;
    }

private:
    bool isAnswer(const XEvent& event) const {
        return event.type == ClientMessage && event.xclient.message_type == m_protocols &&
               static_cast<Atom>(event.xclient.data.l[0]) == m_ping && event.xclient.data.l[1] == m_number;
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
    double m_longest = 0;
};

/// The window is gone, which ends the program that asks, too.
int takeError(Display*, XErrorEvent*) {
    std::exit(0);
}

}  // namespace

int main(int argc, char** argv) {
    Display* display = XOpenDisplay(nullptr);
    if (argc != 2 || !display)
        return 1;
    XSetErrorHandler(takeError);
    Pulse pulse(display, std::strtoul(argv[1], nullptr, 10));
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
        std::printf("%.1f\n", pulse.longest());
        std::fflush(stdout);
    }
}
