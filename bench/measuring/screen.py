"""The program on a virtual display, used with real events and watched from outside."""
import json
import os
import shutil
import subprocess
import tempfile
import time
from contextlib import contextmanager
from pathlib import Path

from lib.virtual_desktop import WAIT_SECONDS, Accessibility, VirtualDesktop

from .processes import wait_for_rest
from .warming import files_of, warm_files

WHOLE_SCREEN = (0, 0, 1600, 1000)
REST = 800  # milliseconds without any drawing after which nothing more is to come
STOP_SECONDS = 5


class Screen:
    """Starts programs and tells, in milliseconds, when the screen shows what is to be seen."""

    def __init__(self, folder, programs):
        # In memory, so that nothing is written to the disk for it.
        self.framebuffer = Path(tempfile.mkdtemp(prefix="vellmora-screen-",
                                                 dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None))
        self.desktop = VirtualDesktop(folder, self.framebuffer)
        self.programs = programs
        self.folders = 0
        self.files = {}  # of each program that was started before

    def __enter__(self):
        self.desktop.start()
        self.with_accessibility = dict(self.desktop.env)
        # Nobody listens to what is on the screen while it is measured, as on most desktops.
        for name in "QT_ACCESSIBILITY", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON":
            del self.desktop.env[name]
        return self

    def __exit__(self, *_):
        self.desktop.stop()
        shutil.rmtree(self.framebuffer, ignore_errors=True)

    def new_home(self):
        """A home folder without anything in it: environment variables that lead to it."""
        home = self.new_folder()
        # What the program keeps of one library for its next start is of no use with another one.
        return {"XDG_DATA_HOME": str(home), "XDG_CONFIG_HOME": str(home), "XDG_CACHE_HOME": str(home / "cache")}

    def new_folder(self):
        self.folders += 1
        folder = self.desktop.folder / f"folder{self.folders}"
        folder.mkdir()
        return folder

    def probe(self, command, area, *words, rest=REST):
        process = subprocess.Popen(
            [str(word) for word in (self.programs / "bench/screen_probe", command, *area, rest, *words)],
            env={**self.desktop.env, "VELLMORA_FRAMEBUFFER": str(self.framebuffer / "Xvfb_screen0")},
            stdout=subprocess.PIPE, text=True)
        assert process.stdout.readline() == "ready\n", "the screen cannot be watched"
        return process

    @staticmethod
    def answer(process):
        text, _ = process.communicate(timeout=120)
        if process.returncode != 0:
            raise RuntimeError(f"{process.args[1]} failed")
        return json.loads(text)

    def seen(self, command, area, *words, rest=REST):
        """The times of a key or a click and of the last change that it brings about in the area."""
        return self.answer(self.probe(command, area, *words, rest=rest))

    def use(self, command, area, *words):
        """From a key or a click until the last change that it brings about in the area."""
        seen = self.seen(command, area, *words)
        return seen["last"] - seen["sent"]

    def drag(self, area, at, steps):
        return self.answer(self.probe("drag", area, *at, steps))

    def started(self, program, *arguments, home, env=None):
        return subprocess.Popen([str(word) for word in (self.programs / program, *arguments)],
                                env={**(env or self.desktop.env), **home}, cwd=self.desktop.folder,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

    def end(self, process):
        program = Path(process.args[0])
        self.files[program] = self.files.get(program, set()) | files_of(process.pid)
        process.terminate()
        process.wait(STOP_SECONDS)
        process.stdout.close()

    @contextmanager
    def running(self, program, *arguments, home, env=None):
        """The program once its window is there; with the time that this took."""
        warm_files(self.files.get(self.programs / program, ()))
        watching = self.probe("watch", WHOLE_SCREEN)
        started = time.clock_gettime(time.CLOCK_MONOTONIC) * 1000
        process = self.started(program, *arguments, home=home, env=env)
        try:
            process.start_time = self.answer(watching)["last"] - started
            yield process
        finally:
            self.end(process)

    def start_time(self, program, home):
        with self.running(program, home=home) as process:
            return process.start_time

    def time_to_rest(self, program, home):
        """Until the window is complete and all threads of the program and its helpers sleep."""
        warm_files(self.files.get(self.programs / program, ()))
        watching = self.probe("watch", WHOLE_SCREEN)
        started = time.clock_gettime(time.CLOCK_MONOTONIC) * 1000
        process = self.started(program, home=home)
        try:
            at_rest = wait_for_rest(process.pid)
            return max(at_rest, self.answer(watching)["last"]) - started
        finally:
            self.end(process)

    def places(self):
        """Where the program's editor area and its insert button are: asked of an own run, since answering costs time."""
        with self.running("vellmora", home=self.new_home(), env=self.with_accessibility):
            screen = Accessibility(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
            area = screen.property(screen.find("label", "Keine PDF geladen"), "Parent")
            x, y, width, height = screen.extents(screen.find("push button", "Stempel auf aktueller Seite"))
            return screen.extents(area), (x + width // 2, y + height // 2)

    def choose_file(self, path, key, dialog, typing=15):
        """Opens the dialog and types the file's name, so many milliseconds between two keys, all but the one that
        ends it."""
        run = self.desktop.run
        run("xdotool", "key", key)
        run("timeout", WAIT_SECONDS, "xdotool", "search", "--sync", "--onlyvisible", "--name", dialog)
        time.sleep(0.3)
        run("xdotool", "key", "ctrl+a", "type", "--delay", typing, path)
        time.sleep(0.5)

    def choose_document(self, path, **options):
        self.choose_file(path, "ctrl+o", "^PDF ausw", **options)

    def choose_target(self, path, **options):
        self.choose_file(path, "ctrl+shift+s", "^PDF speichern", **options)

    def open_document(self, path, area):
        self.choose_document(path)
        warm_files([path])
        return self.use("key", area, "Return")
