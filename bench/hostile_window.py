#!/usr/bin/python3
"""Opens all documents of a folder one after another in one real window, as a user would: each is dropped onto the window,
a page is turned, a stamp inserted, the document saved over a copy. For documents that were made to do harm.

    bench/hostile_window.py BUILD_FOLDER FOLDER

Prints a line for each document, and at its end what is beyond the bounds: the program's own memory, the time that the
window did not answer, the time of each operation. Ends with 1 where anything is. As root the window and what shows it
have the processor before all else, so that what others do on the machine is not measured.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "tests/endtoend"), str(ROOT / "tools")]
from lib.virtual_desktop import TourError, wait_for  # noqa: E402
from window import Window, middle  # noqa: E402

MOST_MEMORY = 150  # megabytes beside the source
MOST_SILENCE = 100  # milliseconds
MOST_SECONDS = 15  # for an operation; then it is cancelled
REST = 0.3  # seconds without any work of the helpers after which a page is there or given up
MEGABYTE = 1 << 20
LOADED = ("PDF geladen: ", "PDF konnte nicht geladen werden", "Laden abgebrochen")
SAVED = ("Original überschrieben: ", "PDF gespeichert: ", "Fehler beim ", "Speichern abgebrochen")
STAMPED = ("Stempel auf Seite ", "Stempel konnte nicht", "Kein aktiver Stempel")


def put_first(process):
    """Before all else on the machine, but not what it starts from now on."""
    for thread in (Path("/proc") / str(process.pid) / "task").iterdir():
        try:
            os.sched_setscheduler(int(thread.name), os.SCHED_RR | os.SCHED_RESET_ON_FORK, os.sched_param(5))
        except PermissionError:
            return


class Program:
    """The process of the window: its memory, and what its helpers do."""

    def __init__(self, process, desktop):
        self.process = process
        self.folder = Path("/proc") / str(process.pid)
        found = wait_for(lambda: desktop.run("xdotool", "search", "--onlyvisible", "--pid", process.pid,
                                             check=False).stdout.split(), "the window")
        self.pulse = subprocess.Popen([str(desktop.pulse), found[0].decode(), str(process.pid)], env=desktop.env, text=True,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        put_first(self.pulse)

    def silence(self):
        """Milliseconds: the longest that the window has not answered since this was asked last; and without the time
        in which it was ready to and others had the processor."""
        self.pulse.stdin.write("\n")
        self.pulse.stdin.flush()
        return tuple(map(float, self.pulse.stdout.readline().split()))

    def forget_peak(self):
        (self.folder / "clear_refs").write_text("5")

    def peak(self):
        """Megabytes, with all that is shared."""
        return int(re.search(r"VmHWM:\s+(\d+)", (self.folder / "status").read_text())[1]) * 1024 / MEGABYTE

    def share(self):
        """Megabytes now: of what is shared, its part."""
        return int(re.search(r"Pss:\s+(\d+)", (self.folder / "smaps_rollup").read_text())[1]) * 1024 / MEGABYTE

    def helpers(self):
        numbers = " ".join(path.read_text() for path in self.folder.glob("task/*/children"))
        return [int(number) for number in numbers.split()]

    def work_of_helpers(self):
        """Changes as long as they work, come or go."""
        def ticks(number):
            try:
                return (Path("/proc") / str(number) / "stat").read_text().rsplit(")", 1)[1].split()[11:13]
            except OSError:
                return None
        return {number: ticks(number) for number in self.helpers()}

    def rest(self):
        """Seconds until the helpers had nothing more to do."""
        started = changed = time.monotonic()
        before = self.work_of_helpers()
        while time.monotonic() - changed < REST and time.monotonic() - started < 2 * MOST_SECONDS:
            time.sleep(0.02)
            now = self.work_of_helpers()
            if now != before:
                before, changed = now, time.monotonic()
        return changed - started


class HostileWindow:
    def __init__(self, folder, build):
        self.window = Window(folder, build)
        self.desktop = self.window.desktop
        self.desktop.pulse = self.window.build / "bench/window_pulse"
        self.copies = folder / "copies"
        self.copies.mkdir()
        self.faults = []

    def start(self):
        self.window.start_desktop()
        self.screen = self.window.screen
        self.window.start_program()
        self.program = Program(self.desktop.processes[-1], self.desktop)
        for process in self.desktop.processes:
            put_first(process)
        self.area = middle(self.screen.extents(self.screen.find("label", "Keine PDF geladen")))
        self.buttons = {name: self.screen.find("push button", name)
                        for name in ("Stempel auf aktueller Seite", "Speichern", "Speichern unter…")}
        bar = self.screen.property(self.buttons["Speichern"], "Parent")
        self.status_label = next(child for child in self.screen.ask(bar, "GetChildren")
                                 if self.screen.ask(child, "GetRoleName") != "push button")

    def status(self):
        return self.screen.property(self.status_label, "Name")

    def press(self, name):
        x, y = map(round, middle(self.screen.extents(self.buttons[name])))
        self.desktop.run("xdotool", "mousemove", x, y, "click", 1)

    def drop(self, path):
        self.desktop.spawn([str(self.window.build / "tests/drag_source"), str(path)])
        source = self.desktop.processes.pop()
        wait_for(lambda: self.desktop.run("xdotool", "search", "--onlyvisible", "--pid", source.pid,
                                          check=False).stdout, "the file to drag")
        x, y = map(round, self.area)
        self.desktop.run("xdotool", "mousemove", 85, 55, "mousedown", 1, "sleep", 0.05, "mousemove", 120, 120,
                         "sleep", 0.05, "mousemove", x - 20, y - 20, "sleep", 0.1, "mousemove", x, y, "sleep", 0.15,
                         "mouseup", 1)
        return source

    def turn(self):
        x, y = map(round, self.area)
        self.desktop.run("xdotool", "mousemove", x, y, "click", 5)

    def page(self):
        """What is said of the page on screen."""
        view = next((node for node in self.screen.showing() if self.screen.property(node, "Name") == "Seitenansicht"),
                    None)
        described = view and self.screen.call(view, "org.freedesktop.DBus.Properties", "Get", "(ss)",
                                              ("org.a11y.atspi.Accessible", "Description"))
        return (described or "").replace("\n", " ")

    def operate(self, what, action, ends):
        """Seconds until the status says one of `ends`; cancelled after the longest time. And what it says."""
        before = self.status()
        self.program.silence()
        started = time.monotonic()
        action()
        is_cancelled = False
        while True:
            elapsed = time.monotonic() - started
            text = self.status()
            if text != before and text.startswith(ends):
                break
            if elapsed > MOST_SECONDS and not is_cancelled:
                self.desktop.run("xdotool", "key", "Escape")
                is_cancelled = True
            if elapsed > 2 * MOST_SECONDS:
                self.blame(f"{what} does not end: {text}")
                break
            time.sleep(0.02)
        if is_cancelled:
            self.cancelled += 1
        self.check_silence(what)
        return elapsed, text

    def check_silence(self, what):
        silence, own = self.program.silence()
        self.longest_silence = max(self.longest_silence, silence)
        self.longest_own = max(self.longest_own, own)
        if own > MOST_SILENCE:
            self.blame(f"{what}: no answer for {silence:.0f} ms, {own:.0f} of them its own")

    def blame(self, what):
        self.faults.append(f"{self.name}: {what}")

    def rest(self, what):
        elapsed = self.program.rest()
        if elapsed > MOST_SECONDS:
            self.blame(f"{what} is at work for {elapsed:.1f} s")
        self.check_silence(what)
        return elapsed

    def use(self, source):
        """All that is done with one document. What the status said at last."""
        self.name, self.longest_silence, self.longest_own, self.cancelled = source.name, 0, 0, 0
        path = self.copies / source.name
        shutil.copyfile(source, path)
        if self.status().startswith(LOADED):  # so that it changes even where the next one is refused, too
            self.press("Stempel auf aktueller Seite")
            wait_for(lambda: not self.status().startswith(LOADED), "another status")
        self.program.forget_peak()
        dragged = []
        loading, text = self.operate("loading", lambda: dragged.append(self.drop(path)), LOADED)
        dragged[0].kill()
        dragged[0].wait()
        times = {"load": loading, "page": self.rest("the page")}
        told = [text]
        if text.startswith("PDF geladen: "):
            told += self.use_opened(path, times)
        peak, share = self.program.peak(), self.program.share()
        if peak > source.stat().st_size / MEGABYTE + MOST_MEMORY:
            self.blame(f"{peak:.0f} MB of memory")
        took = "  ".join(f"{what} {seconds:5.2f}" for what, seconds in times.items())
        print(f"{peak:5.0f} MB ({share:3.0f})  {self.longest_silence:4.0f} ms ({self.longest_own:3.0f})  {took}  {self.name}: {' | '.join(told)}",
              flush=True)
        return told[-1]

    def use_opened(self, path, times):
        told = [self.page()]
        self.turn()
        times["turn"] = self.rest("the next page")
        told.append(self.page())
        times["stamp"], text = self.operate("stamping", lambda: self.press("Stempel auf aktueller Seite"), STAMPED)
        told.append(text)
        times["save"], text = self.operate("saving", lambda: self.press("Speichern"), SAVED)
        told.append(text)
        if not text.startswith("Original überschrieben"):
            times["save as"], text = self.operate("saving anew", lambda: self.save_as(path), SAVED)
            told.append(text)
        self.rest("the saved document")
        return told

    def save_as(self, path):
        self.press("Speichern unter…")
        self.screen.find("dialog", "PDF speichern unter")
        field = self.screen.find("text", "Dateiname:")
        target = path.with_name("new-" + path.name)
        self.desktop.run("xdotool", "key", "ctrl+a", "type", "--delay", 8, target)
        wait_for(lambda: self.screen.text(field) == str(target), "the name in the dialog")
        self.desktop.run("xdotool", "key", "Return")

    def use_sound(self, name):
        """A sound document opens, shows and saves."""
        sound = self.window.folder / name
        self.window.write_sample(sound)
        text = self.use(sound)
        if not text.startswith("Original überschrieben"):
            self.blame("a sound document is not saved")
        if not self.shows_text():
            self.blame("a sound document is not shown")

    def shows_text(self):
        """Letters bring many greys."""
        x, y = map(round, self.area)
        crop = f"200x200+{x - 100}+{y - 260}"
        greys = self.desktop.run("import", "-window", "root", "-crop", crop, "-format", "%k", "info:").stdout
        return int(greys) > 16

    def close(self):
        self.name = "closing"
        helpers = self.program.helpers()
        self.desktop.run("xdotool", "key", "alt+F4")
        try:
            ended = self.program.process.wait(MOST_SECONDS)
            if ended != 0:
                self.blame(f"the program ends with {ended}")
        except subprocess.TimeoutExpired:
            self.blame("the program does not end")
        left = [number for number in helpers if (Path("/proc") / str(number)).exists()]
        if left:
            self.blame(f"{len(left)} helpers are left")

    def run(self, sources):
        self.start()
        self.use_sound("before.pdf")
        for source in sources:
            self.use(source)
        self.use_sound("after.pdf")
        self.close()


def main():
    build, folder = sys.argv[1:3]
    scratch = Path(tempfile.mkdtemp(prefix="vellmora-", dir="/tmp"))
    job = HostileWindow(scratch, build)
    try:
        job.run(sorted(Path(folder).glob("*.pdf")))
    except (TourError, StopIteration) as error:
        job.blame(f"{error}")
    finally:
        job.desktop.stop()
        shutil.rmtree(scratch, ignore_errors=True)
    print(f"\n{len(job.faults)} beyond the bounds", *job.faults, sep="\n")
    sys.exit(1 if job.faults else 0)


if __name__ == "__main__":
    main()
