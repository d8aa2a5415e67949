// Plays the user and watches the screen: what a person at it would see, and when.
//
//   screen_probe watch X Y W H QUIET             when the rectangle got its last change
//   screen_probe key X Y W H QUIET KEYSYM        the same after a key (names as in <X11/keysymdef.h>)
//   screen_probe click X Y W H QUIET AT_X AT_Y   the same after a click
//   screen_probe drag X Y W H QUIET AT_X AT_Y STEPS
//
// The last change is known once nothing was drawn for QUIET milliseconds. Prints "ready" as soon as it
// watches, then one line of JSON, in milliseconds: `last` and `sent` of the clock CLOCK_MONOTONIC, or for a
// drag for each step the time from the motion of the mouse until the last drawing that follows from it.

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xdamage.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <string_view>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <utility>
#include <vector>

namespace {

// Milliseconds. The interval is that of a hand that moves a mouse slowly, and longer than any step may take.
constexpr double timeLimit = 30'000;
constexpr double stepInterval = 25;
constexpr int stepLength = 2;  // pixels
constexpr int stepsBeforeTurn = 60;

struct Rectangle {
    int x, y, width, height;
};

double now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

[[noreturn]] void fail(const char* message) {
    std::fprintf(stderr, "screen_probe: %s\n", message);
    std::exit(1);
}

class Watcher {
public:
    explicit Watcher(Rectangle watched) : m_watched(watched) {
        int error = 0;
        if (!m_display || !XDamageQueryExtension(m_display, &m_damageEvent, &error))
            fail("no display, or one that does not tell what is drawn");
        XDamageCreate(m_display, DefaultRootWindow(m_display), XDamageReportRawRectangles);
        makeImage();
        takePicture(m_before);
    }

    Display* display() const { return m_display; }

    /// The time of the next drawing in the watched rectangle; 0 where there is none until `end`.
    double nextDrawing(double end) {
        for (;;) {
            while (XPending(m_display)) {
                XEvent event;
                XNextEvent(m_display, &event);
                if (event.type == m_damageEvent &&
                    isWatched(reinterpret_cast<XDamageNotifyEvent&>(event).area))
                    return now();
            }
            const double left = end - now();
            if (left <= 0)
                return 0;
            pollfd descriptor{ConnectionNumber(m_display), POLLIN, 0};
            ::poll(&descriptor, 1, static_cast<int>(left) + 1);
        }
    }

    /// True where the watched rectangle looks other than when this was called last.
    bool hasChanged() {
        takePicture(m_after);
        std::swap(m_before, m_after);
        return m_before != m_after;
    }

    /// The time of the last change, once nothing was drawn for `quiet`.
    double lastChange(double quiet) {
        const double end = now() + timeLimit;
        double last = 0;
        while (now() < end) {
            double drawn = 0;
            double next = nextDrawing(last > 0 ? now() + quiet : end);
            if (next == 0)
                return last;
            // One look at all that was drawn: looking takes the processor from the program.
            while (next > 0) {
                drawn = next;
                next = nextDrawing(now());
            }
            if (hasChanged())
                last = drawn;
        }
        fail("the screen does not come to rest");
    }

private:
    bool isWatched(const XRectangle& area) const {
        return area.x < m_watched.x + m_watched.width && area.x + area.width > m_watched.x &&
               area.y < m_watched.y + m_watched.height && area.y + area.height > m_watched.y;
    }

    void makeImage() {
        m_image =
            XShmCreateImage(m_display, DefaultVisual(m_display, 0),
                            static_cast<unsigned>(DefaultDepth(m_display, 0)), ZPixmap, nullptr, &m_segment,
                            static_cast<unsigned>(m_watched.width), static_cast<unsigned>(m_watched.height));
        m_segment.shmid = ::shmget(IPC_PRIVATE, imageBytes(), IPC_CREAT | 0600);
        m_segment.shmaddr = m_image->data = static_cast<char*>(::shmat(m_segment.shmid, nullptr, 0));
        XShmAttach(m_display, &m_segment);
        XSync(m_display, False);
        ::shmctl(m_segment.shmid, IPC_RMID, nullptr);
    }

    size_t imageBytes() const {
        return static_cast<size_t>(m_image->bytes_per_line) * static_cast<size_t>(m_image->height);
    }

    void takePicture(std::vector<char>& picture) {
        XShmGetImage(m_display, DefaultRootWindow(m_display), m_image, m_watched.x, m_watched.y, AllPlanes);
        picture.assign(m_image->data, m_image->data + imageBytes());
    }

    Rectangle m_watched;
    Display* m_display = XOpenDisplay(nullptr);
    int m_damageEvent = 0;
    XShmSegmentInfo m_segment{};
    XImage* m_image = nullptr;
    std::vector<char> m_before;
    std::vector<char> m_after;
};

void moveMouse(const Watcher& watcher, int x, int y) {
    XTestFakeMotionEvent(watcher.display(), 0, x, y, CurrentTime);
    XFlush(watcher.display());
}

void pressButton(const Watcher& watcher, bool isDown) {
    XTestFakeButtonEvent(watcher.display(), 1, isDown, CurrentTime);
    XFlush(watcher.display());
}

void pressKey(const Watcher& watcher, const char* name) {
    const KeyCode code = XKeysymToKeycode(watcher.display(), XStringToKeysym(name));
    if (code == 0)
        fail("no such key");
    XTestFakeKeyEvent(watcher.display(), code, True, CurrentTime);
    XTestFakeKeyEvent(watcher.display(), code, False, CurrentTime);
    XFlush(watcher.display());
}

/// Nothing is drawn any more for so long that what comes next follows from what is done next.
void waitForRest(Watcher& watcher, double quiet) {
    while (watcher.nextDrawing(now() + quiet) > 0) {
    }
}

/// From the motion until the last drawing within the step's time; a step without any took forever.
double dragStep(Watcher& watcher, int x, int y) {
    const double sent = now();
    moveMouse(watcher, x, y);
    double last = watcher.nextDrawing(sent + timeLimit);
    if (last == 0)
        fail("a step of the drag changes nothing");
    const double end = std::max(last, sent) + stepInterval;
    for (;;) {
        const double drawn = watcher.nextDrawing(end);
        if (drawn == 0)
            return last - sent;
        last = drawn;
    }
}

void drag(Watcher& watcher, double quiet, int x, int y, int steps) {
    moveMouse(watcher, x, y);
    waitForRest(watcher, quiet);
    pressButton(watcher, true);
    waitForRest(watcher, quiet);
    std::printf("[");
    for (int i = 1; i <= steps; ++i) {
        const bool isForth = (i - 1) / stepsBeforeTurn % 2 == 0;
        x += isForth ? stepLength : -stepLength;
        y += isForth ? stepLength : -stepLength;
        std::printf("%s%.3f", i > 1 ? ", " : "", dragStep(watcher, x, y));
    }
    std::printf("]\n");
    pressButton(watcher, false);
    waitForRest(watcher, quiet);
}

void tellLastChange(Watcher& watcher, double sent, double quiet) {
    std::printf(R"({"sent": %.3f, "last": %.3f})"
                "\n",
                sent, watcher.lastChange(quiet));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 7)
        fail("wrong arguments");
    const auto number = [&](int index) { return index < argc ? std::atoi(argv[index]) : 0; };
    const std::string_view command = argv[1];
    Watcher watcher({number(2), number(3), number(4), number(5)});
    const double quiet = number(6);
    std::puts("ready");
    std::fflush(stdout);
    if (command == "drag") {
        drag(watcher, quiet, number(7), number(8), number(9));
        return 0;
    }
    if (command == "click") {
        moveMouse(watcher, number(7), number(8));
        waitForRest(watcher, quiet);
        watcher.hasChanged();
    }
    const double sent = now();
    if (command == "click") {
        pressButton(watcher, true);
        pressButton(watcher, false);
    } else if (command == "key") {
        pressKey(watcher, argv[7]);
    }
    tellLastChange(watcher, sent, quiet);
    return 0;
}
