"""What is measured of a window that has a document open: what it does when nobody does anything, what memory it takes,
whether it answers while it works."""
import shutil
from contextlib import contextmanager

from .processes import memory_of, system_calls, wait_for_rest
from .pulse import pulse_of
from .samples import Row
from .waiting import wait_for_file

WATCHED = 10  # seconds
HELPERS = 2  # the document's, and that of its pages
MEGABYTE = 1e6
ALLOWED_MEMORY = 60  # megabytes beside the source
MOST_SILENCE = 100  # milliseconds


class RestRows:
    def __init__(self, screen, inputs, rounds):
        self.screen = screen
        self.inputs = inputs
        self.rounds = rounds
        self.area, self.insert_button = screen.places()

    @contextmanager
    def stamped(self, name):
        """The program with the document and a stamp that is selected."""
        with self.screen.running("vellmora", home=self.screen.new_home()) as process:
            self.screen.open_document(self.inputs / name, self.area)
            self.screen.use("click", self.area, *self.insert_button)
            wait_for_rest(process.pid, HELPERS)
            yield process

    def rest(self):
        if not shutil.which("strace"):
            print("Left out: system calls at rest, which strace would count")
            return []
        counts = []
        for _ in range(self.rounds):
            with self.stamped("scans.pdf") as process:
                calls = system_calls(process.pid, WATCHED)
                counts.append(len(calls))
                for call in calls[:20]:
                    print(f"  at rest: {call}")
        what = f"system calls in {WATCHED} s at rest: all threads of the program and its {HELPERS} helpers"
        return [Row(what, counts, "none", 0, share=1, unit="calls")]

    def save(self, target):
        self.screen.choose_target(target)
        self.screen.desktop.run("xdotool", "key", "Return")
        wait_for_file(target)

    def memory_with(self, what, name):
        source, opened, saved = self.inputs / name, [], []
        target = self.inputs / "saved.pdf"
        for _ in range(self.rounds):
            target.unlink(missing_ok=True)
            with self.stamped(name) as process:
                opened.append(memory_of(process.pid) / MEGABYTE)
                self.save(target)
                wait_for_rest(process.pid, HELPERS)
                saved.append(memory_of(process.pid) / MEGABYTE)
        target.unlink()
        size = source.stat().st_size / MEGABYTE
        goal = "the source + 60 MB", size + ALLOWED_MEMORY, "the source", [size]
        return [Row(f"memory of the window and its helpers, {what} open", opened, *goal, unit="MB"),
                Row(f"memory of the window and its helpers, {what} saved", saved, *goal, unit="MB")]

    def memory(self):
        return [*self.memory_with("130 MB of scans", "scans.pdf"), *self.memory_with("2,000 text pages", "text2000.pdf")]

    def silence_with(self, what, name):
        opening, saving = [], []
        target = self.inputs / "saved.pdf"
        for _ in range(self.rounds):
            target.unlink(missing_ok=True)
            with self.screen.running("vellmora", home=self.screen.new_home()) as process, \
                    pulse_of(self.screen, process) as pulse:
                self.screen.choose_document(self.inputs / name)
                pulse.silence()
                self.screen.use("key", self.area, "Return")
                opening.append(pulse.silence())
                self.screen.use("click", self.area, *self.insert_button)
                self.screen.choose_target(target)
                pulse.silence()
                self.screen.desktop.run("xdotool", "key", "Return")
                wait_for_file(target)
                saving.append(pulse.silence())
        target.unlink()
        return [Row(f"longest silence of the window: open {what}", opening, "at most 100 ms", MOST_SILENCE, share=1),
                Row(f"longest silence of the window: save {what}", saving, "at most 100 ms", MOST_SILENCE, share=1)]

    def large(self):
        document = "1.3 GB of scans", "scans3000.pdf"
        return [*self.memory_with(*document), *self.silence_with(*document)]
