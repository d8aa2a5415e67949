"""A virtual display of one's own, and the eyes and hands to use a program on it."""
import os
import select
import signal
import subprocess
import time
from pathlib import Path

from gi.repository import Gio, GLib

WAIT_SECONDS = 60  # time limit of each wait, also on a machine that has much else to do
SCREEN = "1600x1000x24"
ACCESSIBLE = "org.a11y.atspi."
REGISTRY = (ACCESSIBLE + "Registry", "/org/a11y/atspi/accessible/root")
SHOWING = 1 << 25  # in the first word of an object's state


class TourError(Exception):
    pass


def wait_for(check, what):
    """The first true value of check()."""
    end = time.monotonic() + WAIT_SECONDS
    while time.monotonic() < end:
        value = check()
        if value:
            return value
        time.sleep(0.05)
    raise TourError(f"waited {WAIT_SECONDS} s in vain for {what}")


class VirtualDesktop:
    """A display, a window manager, a message bus and a home folder that nothing else uses."""

    def __init__(self, folder, framebuffer_folder=None):
        """framebuffer_folder is where the display keeps what is on its screen, for those that watch it; it has no
        mouse pointer then, which would be a part of that."""
        self.folder = folder
        self.framebuffer_folder = framebuffer_folder
        self.processes = []
        self.env = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", "QT_QPA_PLATFORM": "xcb",
                    "QT_ACCESSIBILITY": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "GSETTINGS_BACKEND": "memory"}
        for name in "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR":
            (folder / name).mkdir(mode=0o700)
            self.env[name] = str(folder / name)

    def start(self):
        framebuffer = ["-fbdir", str(self.framebuffer_folder), "-nocursor"] if self.framebuffer_folder else []
        self.env["DISPLAY"] = ":" + self.spawn_telling(
            lambda fd: ["Xvfb", "-displayfd", fd, "-screen", "0", SCREEN, "-nolisten", "tcp", *framebuffer])
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.spawn_telling(
            lambda fd: ["dbus-daemon", "--session", "--nofork", "--print-address=" + fd])
        self.spawn(["openbox", "--sm-disable"])
        wait_for(self.has_window_manager, "the window manager")

    def has_window_manager(self):
        """It is started again where it ended: now and then it finds the display not ready yet."""
        if self.processes[-1].poll() is not None:
            self.spawn(["openbox", "--sm-disable"])
        return self.run("xdotool", "get_desktop", check=False).returncode == 0

    def spawn(self, command, **options):
        with open(self.folder / (Path(command[0]).name + ".log"), "wb") as log:
            self.processes.append(subprocess.Popen(
                command, env=self.env, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                start_new_session=True, **options))

    def spawn_telling(self, command):
        """Starts command(descriptor); the first line it writes to that descriptor."""
        reader, writer = os.pipe()
        try:
            self.spawn(command(str(writer)), pass_fds=[writer])
        finally:
            os.close(writer)
        with open(reader) as pipe:
            line = pipe.readline().strip() if select.select([pipe], [], [], WAIT_SECONDS)[0] else ""
        if not line:
            raise TourError(f"{self.processes[-1].args[0]} does not start")
        return line

    def run(self, *command, check=True, **env):
        done = subprocess.run([str(word) for word in command], env={**self.env, **env}, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=WAIT_SECONDS)
        if check and done.returncode:
            raise TourError(f"{command[0]} failed: {done.stderr.decode(errors='replace').strip()}")
        return done

    def click(self, x, y):
        self.run("xdotool", "mousemove", round(x), round(y), "click", 1)

    def drag(self, start, end, steps=20):
        words = ["mousemove", *map(round, start), "mousedown", 1]
        for step in range(1, steps + 1):
            words += ["mousemove", *(round(a + (b - a) * step / steps) for a, b in zip(start, end)), "sleep", 0.02]
        self.run("xdotool", *words, "mouseup", 1)

    def picture(self, path):
        """A picture of the screen, once nothing is on it that was not there before: a text cursor comes and goes."""
        seen = set()

        def is_still():
            known = len(seen)
            self.run("import", "-window", "root", "-strip", path)
            seen.add(path.read_bytes())
            return len(seen) == known
        wait_for(is_still, "a screen that stands still")

    def stop(self):
        """Ends what was started here, and what that started in turn."""
        for process in reversed(self.processes):
            for sign in signal.SIGTERM, signal.SIGKILL:
                try:
                    os.killpg(process.pid, sign)
                    process.wait(3)
                except (ProcessLookupError, subprocess.TimeoutExpired):
                    pass


class Accessibility:
    """What programs say of their windows to a screen reader. An object is a pair (bus name, path)."""

    def __init__(self, session_address):
        launcher = ("org.a11y.Bus", "/org/a11y/bus")
        self.bus = self.connect(session_address)
        self.bus = self.connect(self.call(launcher, "org.a11y.Bus", "GetAddress"))

    @staticmethod
    def connect(address):
        flags = Gio.DBusConnectionFlags
        return Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)

    def call(self, target, interface, method, *arguments):
        values = GLib.Variant(*arguments) if arguments else None
        limit = WAIT_SECONDS * 1000
        return self.bus.call_sync(*target, interface, method, values, None, Gio.DBusCallFlags.NONE, limit).unpack()[0]

    def ask(self, target, method, *arguments, interface="Accessible"):
        return self.call(target, ACCESSIBLE + interface, method, *arguments)

    def property(self, target, name):
        return self.call(target, "org.freedesktop.DBus.Properties", "Get", "(ss)", (ACCESSIBLE + "Accessible", name))

    def showing(self, target=REGISTRY):
        """All visible objects below `target`."""
        for child in self.ask(target, "GetChildren"):
            if self.ask(child, "GetRoleName") == "application":
                yield from self.showing(child)
            elif self.ask(child, "GetState")[0] & SHOWING:
                yield child
                yield from self.showing(child)

    def find(self, role, name):
        """The visible object of this role whose name begins with `name`."""
        def first():
            try:
                return next((node for node in self.showing() if self.ask(node, "GetRoleName") == role
                             and self.property(node, "Name").startswith(name)), None)
            except GLib.Error:  # it went away while we looked at it
                return None
        return wait_for(first, f"{role} “{name}”")

    def extents(self, target):
        """x, y, width and height on the screen."""
        return self.ask(target, "GetExtents", "(u)", (0,), interface="Component")

    def text(self, target):
        return self.ask(target, "GetText", "(ii)", (0, -1), interface="Text")
