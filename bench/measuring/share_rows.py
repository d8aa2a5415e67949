"""What is measured of documents that lie on a slow share: ten megabytes a second, and 20 ms until an answer."""
import os
import shutil
import subprocess
import tempfile
import time
from contextlib import contextmanager
from pathlib import Path

from .pulse import pulse_of
from .samples import Row
from .waiting import wait_for_file

RATE = 10  # megabytes a second
LATENCY = 20  # milliseconds
QUIET = 15000  # milliseconds without any drawing after which the page is there
OTHER_FILES = 200
TYPING = 150  # milliseconds from a key to the next, as people do
MOST_SILENCE = 100  # milliseconds
BOUND = "at most 1.15 times", 1.15
LONGEST_READING = 300  # seconds
SETTLING = 1  # seconds in which the window tells what was done
MEGABYTE = 1e6


class Share:
    """A folder and what is to be seen of it over a slow line."""

    def __init__(self, folder, program):
        self.folder = folder / "disk"
        self.mount = folder / "share"
        self.log = folder / "requests"
        for place in self.folder, self.mount:
            place.mkdir(parents=True)
        self.program = program

    def __enter__(self):
        words = [self.program, self.folder, self.mount, RATE, LATENCY, self.log]
        self.process = subprocess.Popen(list(map(str, words)), stderr=subprocess.DEVNULL)
        while not self.mount.is_mount():
            if self.process.poll() is not None:
                raise RuntimeError("the share cannot be mounted")
            time.sleep(0.05)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()

    def bytes_read(self, until=float("inf")):
        """Those that were asked for until then (milliseconds of CLOCK_MONOTONIC)."""
        requests = (line.split() for line in self.log.read_text().splitlines())
        return sum(int(size) for at, name, _, size in requests if name == "read" and float(at) <= until)

    def wait_until_read(self, size):
        end = time.monotonic() + LONGEST_READING
        while self.bytes_read() < size and time.monotonic() < end:
            time.sleep(0.2)


class ShareRows:
    def __init__(self, screen, inputs, rounds):
        self.screen = screen
        self.inputs = inputs
        self.rounds = rounds
        self.program = screen.programs / "bench/slow_share"
        self.area, self.insert_button = screen.places()

    @contextmanager
    def mounted(self):
        # In memory, since the line is what is measured.
        folder = Path(tempfile.mkdtemp(prefix="vellmora-share-", dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None))
        share = Share(folder, self.program)
        shutil.copy(self.inputs / "scans.pdf", share.folder / "scans.pdf")
        for number in range(OTHER_FILES):
            shutil.copy(self.inputs / "small.pdf", share.folder / f"other{number}.pdf")
        try:
            with share:
                yield share
        finally:
            shutil.rmtree(folder, ignore_errors=True)

    def use(self):
        """Opens, stamps and saves once; figures by what they tell, times in milliseconds."""
        figures = {}
        with self.mounted() as share, self.screen.running("vellmora", home=self.screen.new_home()) as process, \
                pulse_of(self.screen, process) as pulse:
            def note_silence(where):
                figures[where] = max(figures.get(where, 0), pulse.silence())

            def save(what, name, keys):
                path = share.folder / name
                before = path.stat().st_ino if path.exists() else None
                started = time.monotonic()
                self.screen.desktop.run("xdotool", "key", keys)
                if keys == "Return":  # which ends the dialog
                    time.sleep(SETTLING)
                    note_silence("silence: file dialog")
                wait_for_file(path, before)
                figures[what] = (time.monotonic() - started) * 1000
                figures["line"] = path.stat().st_size / MEGABYTE / RATE * 1000
                time.sleep(SETTLING)
                note_silence("silence: save")

            document = share.folder / "scans.pdf"
            figures["size"] = document.stat().st_size / MEGABYTE
            pulse.silence()
            self.screen.choose_document(share.mount / document.name, typing=TYPING)
            note_silence("silence: file dialog")
            seen = self.screen.seen("key", self.area, "Return", rest=QUIET)
            figures["open"] = seen["last"] - seen["sent"]
            figures["read"] = share.bytes_read(seen["last"]) / MEGABYTE
            share.wait_until_read(document.stat().st_size)
            time.sleep(SETTLING)
            note_silence("silence: open")
            self.screen.use("click", self.area, *self.insert_button)
            pulse.silence()
            save("replace", document.name, "ctrl+s")
            self.screen.choose_target("saved.pdf", typing=TYPING)
            note_silence("silence: file dialog")
            save("save", "saved.pdf", "Return")
        return figures

    def share(self):
        if not self.program.exists():
            print("Left out: the slow share, which FUSE would show")
            return []
        uses = [self.use() for _ in range(self.rounds)]

        def of(name):
            return [figures[name] for figures in uses]

        what = "10 MB/s and 20 ms away, 130 MB of scans"
        return [
            Row(f"{what}: read until the first page is shown", of("read"), "at most a tenth of the file", 0.1,
                "the file", of("size"), True, unit="MB"),
            Row(f"{what}: open", of("open")),
            Row(f"{what}: save over the file that is open", of("replace"), *BOUND, "its bytes on the line", of("line"), True),
            Row(f"{what}: save as another file", of("save"), *BOUND, "its bytes on the line", of("line"), True),
            *(Row(f"{what}: longest silence of the window, {where}", of(f"silence: {where}"), "at most 100 ms", MOST_SILENCE,
                  share=1) for where in ("file dialog", "open", "save")),
        ]
