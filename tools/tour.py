#!/usr/bin/python3
"""The guided tour: does the program's main job once on a virtual display, with real mouse and keyboard events.

Opens a sample document, puts a stamp on it, drags the stamp and saves the result under another name.
The stamped document and a picture of each step are left in build/tour.
"""
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from gi.repository import GLib

from lib.virtual_desktop import Accessibility, TourError, VirtualDesktop, wait_for

ROOT = Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/vellmora"
SAMPLE_PDF = ROOT / "build/release/tools/sample_pdf"
RESULTS = ROOT / "build/tour"

TOUR_SECONDS = 300  # time limit of the whole tour
DRAG_ACROSS, DRAG_UP = 0.26, 0.39  # of the page's width and height
DRAG_TOLERANCE = 0.01
PAGE_MARGIN = 8  # pixels above and below the page
A4_ASPECT = 595 / 842
DARK = 128  # of 255
LEAST_TEXT = 0.2  # of the rows of pixels


def say(text):
    print(text, flush=True)


class Tour:
    def __init__(self, folder):
        self.desktop = VirtualDesktop(folder)
        self.sample = folder / "Mietvertrag.pdf"
        self.stamped = folder / "Mietvertrag-gestempelt.pdf"
        self.pictures = 0
        self.title = ""

    def run(self):
        for self.title, step in self.steps():
            say(f"{self.title} …")
            step()

    def steps(self):
        return [
            ("Starting a virtual display", self.desktop.start),
            ("Writing the sample document", self.write_sample),
            ("Starting the program", self.start_program),
            ("Opening the document", self.open_document),
            ("Putting a stamp on the page", self.insert_stamp),
            ("Dragging the stamp", self.drag_stamp),
            ("Saving under another name", self.save_as),
            ("Looking at the result", self.check_result),
        ]

    def write_sample(self):
        self.desktop.run(SAMPLE_PDF, self.sample, QT_QPA_PLATFORM="offscreen")

    def start_program(self):
        self.screen = Accessibility(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.desktop.spawn([str(PROGRAM)])
        empty_state = self.screen.property(self.screen.find("label", "Keine PDF geladen"), "Parent")
        self.editor_area = self.screen.extents(empty_state)
        self.take_picture("started")

    def open_document(self):
        self.answer_file_dialog("ctrl+o", "PDF auswählen", self.sample)
        self.screen.find("label", "PDF geladen: " + self.sample.name)
        wait_for(self.page_is_shown, "the page's text on the screen")
        self.take_picture("opened")

    def page_is_shown(self):
        """Whether there is as much text in the middle of the editor area as the sample has; a notice is one line."""
        x, y, width, height = self.editor_area
        inner_height = round(height * 0.7)
        inner_width = round(inner_height * A4_ASPECT)
        crop = f"{inner_width}x{inner_height}+{x + (width - inner_width) // 2}+{y + (height - inner_height) // 2}"
        pixels = self.desktop.run("import", "-window", "root", "-crop", crop, "-depth", 8, "gray:-").stdout
        rows = [pixels[start:start + inner_width] for start in range(0, len(pixels), inner_width)]
        return sum(min(row) < DARK < max(row) for row in rows) > LEAST_TEXT * inner_height

    def insert_stamp(self):
        x, y, width, height = self.screen.extents(self.screen.find("push button", "Stempel auf aktueller Seite"))
        self.desktop.click(x + width / 2, y + height / 2)
        self.screen.find("label", "Stempel auf Seite 1 eingefügt: ")
        self.take_picture("stamped")

    def drag_stamp(self):
        """A new stamp lies in the middle of the page, and the page in the middle of the editor area."""
        x, y, width, height = self.editor_area
        x, y = x + width / 2, y + height / 2
        page_height = height - 2 * PAGE_MARGIN
        self.desktop.drag((x, y), (x + DRAG_ACROSS * page_height * A4_ASPECT, y - DRAG_UP * page_height))
        self.take_picture("dragged")

    def save_as(self):
        self.answer_file_dialog("ctrl+shift+s", "PDF speichern unter", self.stamped)
        self.screen.find("label", "PDF gespeichert: " + self.stamped.name)
        self.take_picture("saved")

    def answer_file_dialog(self, keys, title, path):
        self.desktop.run("xdotool", "key", keys)
        self.screen.find("dialog", title)
        field = self.screen.find("text", "Dateiname:")
        self.desktop.run("xdotool", "key", "ctrl+a", "type", "--delay", 15, path)
        wait_for(lambda: self.screen.text(field) == str(path), "the path in the dialog")
        self.take_picture("dialog")
        self.desktop.run("xdotool", "key", "Return")

    def take_picture(self, name):
        self.pictures += 1
        self.desktop.picture(RESULTS / f"{self.pictures}-{name}.png")

    def check_result(self):
        """The first page must differ from the sample's just where the stamp was dragged to."""
        shutil.copy(self.stamped, RESULTS)
        self.desktop.run("pdftoppm", "-png", "-r", 100, "-singlefile", self.stamped, RESULTS / self.stamped.stem)
        (width, height, before), (_, _, after) = self.gray_page(self.sample), self.gray_page(self.stamped)
        changed = [i for i in range(width * height) if before[i] != after[i]]
        if not changed:
            raise TourError("there is no stamp on the page")
        columns, rows = [i % width for i in changed], [i // width for i in changed]
        across = (min(columns) + max(columns)) / 2 / width - 0.5
        up = 0.5 - (min(rows) + max(rows)) / 2 / height
        say(f"  The stamp lies {across:.1%} of the page's width right of its centre and {up:.1%} of its height above.")
        if max(abs(across - DRAG_ACROSS), abs(up - DRAG_UP)) > DRAG_TOLERANCE:
            raise TourError(f"the stamp was dragged {DRAG_ACROSS:.1%} to the right and {DRAG_UP:.1%} up")

    def gray_page(self, path):
        """Width, height and bytes of the first page, one byte for each point."""
        image = self.desktop.run("pdftoppm", "-gray", "-r", 72, "-f", 1, "-l", 1, path).stdout
        _, size, _, pixels = image.split(b"\n", 3)
        return *map(int, size.split()), pixels

    def keep_traces(self):
        """What helps to find out why the tour failed."""
        for log in self.desktop.folder.glob("*.log"):
            shutil.copy(log, RESULTS)
        if "DISPLAY" in self.desktop.env:
            self.desktop.run("import", "-window", "root", RESULTS / "failed.png", check=False)


def stop_at_signals(tour):
    def run_out_of_time(*_):
        raise TourError(f"the tour took longer than {TOUR_SECONDS} s")

    signal.signal(signal.SIGALRM, run_out_of_time)
    for sign in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
        signal.signal(sign, lambda *_: sys.exit(f"The tour was stopped at “{tour.title}”."))
    signal.alarm(TOUR_SECONDS)


def main():
    shutil.rmtree(RESULTS, ignore_errors=True)
    RESULTS.mkdir(parents=True)
    folder = Path(tempfile.mkdtemp(prefix="vellmora-tour-", dir="/tmp"))
    tour = Tour(folder)
    stop_at_signals(tour)
    try:
        tour.run()
    except (TourError, GLib.Error, OSError, subprocess.TimeoutExpired) as error:
        tour.keep_traces()
        sys.exit(f"The tour failed at “{tour.title}”: {error}\n"
                 f"Pictures and logs are in {RESULTS.relative_to(ROOT)}.")
    finally:
        signal.alarm(0)
        tour.desktop.stop()
        shutil.rmtree(folder, ignore_errors=True)
    say(f"Done. The stamped document and the pictures of each step are in {RESULTS.relative_to(ROOT)}:")
    for path in sorted(RESULTS.iterdir()):
        say(f"  {path.name}")


if __name__ == "__main__":
    main()
