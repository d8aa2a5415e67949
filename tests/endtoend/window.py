"""The real program in a window on a display of its own, used as by somebody who hears what is on it.

Everything is found by its accessible name; keys and clicks are real.
"""
import shutil
import sys
import tempfile
from pathlib import Path

SKIPPED = 77
NEEDED = ["Xvfb", "openbox", "xdotool", "dbus-daemon", "import", "prlimit"]

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
try:
    from lib.virtual_desktop import Accessibility, VirtualDesktop, wait_for
except ImportError:
    sys.exit(SKIPPED)

ACTIVE, FOCUSED = 1 << 1, 1 << 12  # in the first word of an object's state


def middle(rectangle):
    x, y, width, height = rectangle
    return x + width / 2, y + height / 2


class Window:
    """`build` is the build folder, `program` what is started: its program where none is given."""

    def __init__(self, folder, build, program=None):
        self.folder = folder
        self.build = Path(build).resolve()
        self.program = str(Path(program).resolve() if program else self.build / "vellmora")
        self.desktop = VirtualDesktop(folder)

    def start_desktop(self):
        self.desktop.start()
        self.screen = Accessibility(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])

    def start_program(self, *arguments):
        self.desktop.spawn([self.program, *map(str, arguments)])

    def write_sample(self, path):
        self.desktop.run(self.build / "tools/sample_pdf", path, QT_QPA_PLATFORM="offscreen")

    def expect(self, status):
        self.screen.find("label", status)

    def click(self, role, name, times=1):
        at = map(round, middle(self.screen.extents(self.screen.find(role, name))))
        self.desktop.run("xdotool", "mousemove", *at, "click", "--repeat", times, "--delay", 20, 1)

    def wait_for_keyboard(self):
        """The program's only window is shown some time before the window manager gives it the keyboard."""
        frame = self.screen.find("frame", "")
        wait_for(lambda: self.has_state(frame, ACTIVE), "the window to have the keyboard")

    def keys(self, *names):
        self.desktop.run("xdotool", "key", *names)

    def windows(self):
        """How many there are: the program's own, a dialog, and its list of completions or a question."""
        seen = self.desktop.run("xdotool", "search", "--onlyvisible", "--class", "vellmora", check=False)
        return 0 if seen.returncode else len(seen.stdout.split())  # it fails where a window goes meanwhile

    def has_state(self, target, state):
        return self.screen.ask(target, "GetState")[0] & state


def run_in_window(job):
    """Calls job(window) in a new folder, for a test that is called with the build folder and perhaps a program."""
    if not all(map(shutil.which, NEEDED)):
        sys.exit(SKIPPED)
    folder = Path(tempfile.mkdtemp(prefix="vellmora-test-", dir="/tmp"))
    window = Window(folder, *sys.argv[1:3])
    try:
        job(window)
    finally:
        window.desktop.stop()
        shutil.rmtree(folder, ignore_errors=True)
