"""What is measured of saving: a stamp with alpha on every page, by us and by other programs."""
import importlib.util
import json
import os
import shutil
import statistics
import subprocess
import time
from pathlib import Path

from .processes import memory_of
from .samples import Row, in_turn
from .warming import warm_files, warm_memory

PEERS = Path(__file__).resolve().parent.parent / "peers"
PLACE = "200,642,200,80"
MEGABYTE = 1e6
ALLOWED_MEMORY = 60  # megabytes beside the source
ALLOWED_GROWTH = 1.05  # of the source's size


def peer_commands(inputs, source, target):
    """Those that are installed."""
    stamp, overlay = inputs / "stamp.png", inputs / "overlay.pdf"
    commands = {
        "mutool": ["mutool", "run", PEERS / "stamp.js", source, stamp, target],
        "PyMuPDF": ["/usr/bin/python3", PEERS / "stamp_pymupdf.py", source, stamp, target],
        "qpdf": ["qpdf", source, "--overlay", overlay, "--from=", "--repeat=1", "--", target],
        "pdftk": ["pdftk", source, "stamp", overlay, "output", target],
    }
    is_there = {name: shutil.which(command[0]) for name, command in commands.items()}
    is_there["PyMuPDF"] = importlib.util.find_spec("fitz")
    return {name: command for name, command in commands.items() if is_there[name]}


def pause_for(source):
    """Seconds in which a document that was opened is read to its end."""
    return 0.8 + 0.004 * source.stat().st_size / MEGABYTE


class SaveRows:
    def __init__(self, programs, inputs, rounds):
        self.programs = programs
        self.inputs = inputs
        self.rounds = rounds
        self.target = inputs / "saved.pdf"

    def prepare(self, source):
        self.target.unlink(missing_ok=True)
        os.sync()  # what others wrote before is not to be written on the next one's time
        warm_files([source])
        warm_memory(2 * source.stat().st_size)

    def timed(self, source, command):
        """Milliseconds of the whole process."""
        self.prepare(source)
        started = time.perf_counter()
        subprocess.run([str(word) for word in command], check=True, stdin=subprocess.DEVNULL, capture_output=True)
        return (time.perf_counter() - started) * 1000

    def start(self, source, *words):
        return subprocess.Popen([str(word) for word in (
            self.programs / "tools/export_pdf", source, self.target, "--png", self.inputs / "stamp.png", "--page", "all",
            "--rect", PLACE, *words)], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ours(self, source):
        """Time from the start of the process until the file is there (the program does not end with a save), without
        that of the final sync, which no other program does; that of the sync; and the file's size."""
        self.prepare(source)
        started = time.perf_counter()
        process = self.start(source)
        told = json.loads(process.stdout.readline())
        elapsed = (time.perf_counter() - started) * 1000
        process.communicate()
        return elapsed - told["sync_ms"], told["sync_ms"], self.target.stat().st_size / MEGABYTE

    def peak_memory(self, source):
        """Of the program and its helpers; what they share, as the one copy of the source, is counted once. In a run of its
        own, since looking takes time."""
        peak = 0
        self.prepare(source)
        process = self.start(source)
        while process.poll() is None:
            peak = max(peak, memory_of(process.pid))
        process.communicate()
        return peak / MEGABYTE

    def of_an_open_document(self, source):
        """The part of that which the program's user waits for, who opened the document earlier."""
        self.prepare(source)
        process = self.start(source, "--look", 1)
        time.sleep(pause_for(source))
        warm_memory(2 * source.stat().st_size)
        output, _ = process.communicate(b"\n")
        told = json.loads(output)
        return told["export_ms"] - told["sync_ms"]

    def document(self, what, name, allowed_ratio, copies=None):
        """Its rows, and the samples of ours. They may take `allowed_ratio` times as long as the fastest other program, and
        where the document is open `copies` times as long as copying the file."""
        source = self.inputs / name
        candidates = {"ours": lambda: self.ours(source), "open": lambda: self.of_an_open_document(source),
                      "cp": lambda: self.timed(source, ["cp", source, self.target])}
        for peer, command in peer_commands(self.inputs, source, self.target).items():
            candidates[peer] = lambda command=command: self.timed(source, command)
        times = in_turn(candidates, self.rounds)
        elapsed, sync, size = map(list, zip(*times.pop("ours")))
        memory = [self.peak_memory(source) for _ in range(self.rounds)]
        copying = times.pop("cp")
        of_an_open_document = times.pop("open")
        source_size = source.stat().st_size / MEGABYTE
        saving = f"save {what}"
        goal = "faster" if allowed_ratio == 1 else f"at most {allowed_ratio:g} times the fastest"
        fastest = min(times, key=lambda peer: statistics.median(times[peer]), default=None)
        rows = []
        for peer, theirs in times.items():
            is_compared = allowed_ratio == 1 or peer == fastest
            rows.append(Row(saving, elapsed, goal if is_compared else "–", allowed_ratio if is_compared else None, peer, theirs,
                            True))
        rows += [
            # Much of a document of many small objects is work that copying bytes is spared.
            Row(f"{saving} that are open", of_an_open_document, f"at most {copies} times" if copies else "–", copies, "cp",
                copying, True),
            Row(saving, elapsed, "–", None, "cp", copying, True),
            Row(f"{saving}: the final sync, not counted above", sync),
            Row(f"{saving}: peak memory", memory, "the source + 60 MB", source_size + ALLOWED_MEMORY, "the source",
                [source_size], unit="MB"),
            Row(f"{saving}: size of the file", size, "at most 1.05 times", ALLOWED_GROWTH, "the source", [source_size],
                True, unit="MB"),
        ]
        self.target.unlink(missing_ok=True)
        return rows, elapsed

    def save(self):
        scan_rows, _ = self.document("130 MB of scans", "scans.pdf", 1, copies=1.5)
        text_rows, many = self.document("2,000 text pages", "text2000.pdf", 0.5)
        few = in_turn({"ours": lambda: self.ours(self.inputs / "text200.pdf")[0]}, self.rounds)["ours"]
        # Ten times the work, and the noise of two measurements.
        growth = Row("save, ten times the pages (2,000)", many, "linear: at most 11 times", 11, "200 pages", few, True)
        return [*scan_rows, *text_rows, growth]

    def large(self):
        return self.document("1.3 GB of scans", "scans3000.pdf", 1, copies=1.5)[0]
