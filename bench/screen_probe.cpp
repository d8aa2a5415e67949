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
//
// VELLMORA_FRAMEBUFFER names the file in which Xvfb keeps the screen (its option -fbdir): to ask Xvfb for
// pictures would keep it from serving the program that is watched.

#include <X11/XWDFile.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xdamage.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <endian.h>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
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

/// What is on the screen, where the X server keeps it.
class Framebuffer {
public:
    Framebuffer() {
        const char* path = std::getenv("VELLMORA_FRAMEBUFFER");
        const int file = path ? ::open(path, O_RDONLY | O_CLOEXEC) : -1;
        struct stat status {};
        if (file < 0 || ::fstat(file, &status) < 0)
            fail("VELLMORA_FRAMEBUFFER names no file that can be read");
        const void* content =
            ::mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ, MAP_SHARED, file, 0);
        if (content == MAP_FAILED)
            fail("the screen's memory cannot be read");
        // As of xwd: a header of big-endian numbers, then colours, then the rows.
        XWDFileHeader header{};
        std::memcpy(&header, content, sizeof header);
        m_bytesPerRow = be32toh(header.bytes_per_line);
        m_bytesPerPixel = be32toh(header.bits_per_pixel) / 8;
        m_pixels = static_cast<const char*>(content) + be32toh(header.header_size) +
                   size_t{be32toh(header.ncolors)} * sizeof(XWDColor);
    }

    /// The pixels of a row from `x` on.
    const char* row(int x, int y) const {
        return m_pixels + static_cast<size_t>(y) * m_bytesPerRow + bytesOf(x);
    }
    size_t bytesOf(int pixels) const { return static_cast<size_t>(pixels) * m_bytesPerPixel; }

private:
    size_t m_bytesPerRow = 0;
    size_t m_bytesPerPixel = 0;
    const char* m_pixels = nullptr;
};

class Watcher {
public:
    explicit Watcher(Rectangle watched) : m_watched(watched) {
        int error = 0;
        if (!m_display || !XDamageQueryExtension(m_display, &m_damageEvent, &error))
            fail("no display, or one that does not tell what is drawn");
        XDamageCreate(m_display, DefaultRootWindow(m_display), XDamageReportRawRectangles);
        m_seen.resize(m_screen.bytesOf(watched.width) * static_cast<size_t>(watched.height));
        hasChanged();
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
        const size_t length = m_screen.bytesOf(m_watched.width);
        bool result = false;
        for (int y = 0; y < m_watched.height; ++y) {
            const char* row = m_screen.row(m_watched.x, m_watched.y + y);
            char* seen = m_seen.data() + static_cast<size_t>(y) * length;
            if (std::memcmp(seen, row, length) == 0)
                continue;
            std::memcpy(seen, row, length);
            result = true;
        }
        return result;
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

    Rectangle m_watched;
    Display* m_display = XOpenDisplay(nullptr);
    int m_damageEvent = 0;
    Framebuffer m_screen;
    std::vector<char> m_seen;  ///< its rows, one after the other
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
