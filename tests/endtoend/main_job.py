#!/usr/bin/python3
"""Does the main job in the real window as a user would who hears what is on it: everything is found by its accessible name.

    main_job.py BUILD_FOLDER [PROGRAM]

The document is dropped from another process. PROGRAM is an installed one to drive instead of that of the build folder.
Ends with 77 where there is no virtual display.
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

BUILD = Path(sys.argv[1]).resolve()
PROGRAM = str(Path(sys.argv[2]).resolve() if sys.argv[2:] else BUILD / "vellmora")


def middle(rectangle):
    x, y, width, height = rectangle
    return x + width / 2, y + height / 2


class MainJob:
    def __init__(self, folder):
        self.desktop = VirtualDesktop(folder)
        self.contract = folder / "Mietvertrag.pdf"

    def run(self):
        self.desktop.start()
        self.desktop.run(BUILD / "tools/sample_pdf", self.contract, QT_QPA_PLATFORM="offscreen")
        original = self.contract.read_bytes()
        self.screen = Accessibility(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.desktop.spawn([PROGRAM])
        program = self.desktop.processes[-1].pid
        self.screen.find("label", "Keine PDF geladen")
        self.drop(self.contract)
        self.expect("PDF geladen: Mietvertrag.pdf")
        wait_for(self.shows_text, "the text of the page")
        self.click("push button", "Aktiven Stempel einfügen")
        self.expect("Stempel auf Seite 1 eingefügt: ")
        before, after = self.drag_stamp(120, -150)
        assert (after[0] - before[0], after[1] - before[1]) == (120, -150), (before, after)
        before, after = self.drag_stamp(60, 0, grip=(-4, -4))
        assert after[2] - before[2] in (59, 60, 61) and after[1] < before[1], (before, after)
        self.click("push button", "Speichern")
        self.expect("Original überschrieben: Mietvertrag.pdf")
        assert self.contract.read_bytes() != original
        self.click("push button", "Ausgewählten löschen")
        self.expect("Ausgewählter Stempel gelöscht.")
        saved = self.contract.read_bytes()
        self.desktop.run("prlimit", "--pid", program, f"--fsize={len(saved) // 2}")
        self.click("push button", "Speichern")
        self.expect("Fehler beim Überschreiben: PDF-Datei konnte nicht erstellt werden.")
        assert self.contract.read_bytes() == saved
        leftovers = [p.name for p in self.contract.parent.iterdir() if p.name.startswith(".vellmora")]
        assert not leftovers, leftovers
        self.desktop.spawn([PROGRAM, self.contract.name])
        self.expect("PDF geladen: Mietvertrag.pdf")

    def expect(self, status):
        self.screen.find("label", status)

    def click(self, role, name):
        self.desktop.click(*middle(self.screen.extents(self.screen.find(role, name))))

    def drop(self, path):
        self.desktop.spawn([str(BUILD / "tests/drag_source"), str(path)])
        source = self.screen.find("label", "Dateien")
        zone = self.screen.find("label", "PDF hier ablegen")
        start, end = middle(self.screen.extents(source)), middle(self.screen.extents(zone))
        self.page_middle = end
        self.desktop.run("xdotool", "mousemove", *map(round, start), "mousedown", 1)
        for step in range(1, 31):
            at = [round(a + (b - a) * step / 30) for a, b in zip(start, end)]
            self.desktop.run("xdotool", "mousemove", *at, "sleep", 0.01)
        self.expect("PDF jetzt loslassen")
        self.desktop.run("xdotool", "mouseup", 1)

    def shows_text(self):
        """Letters bring many greys. The area lies above what is written on a page that cannot be drawn, and is of one there."""
        x, y = map(round, self.page_middle)
        area = f"200x200+{x - 100}+{y - 260}"
        greys = self.desktop.run("import", "-window", "root", "-crop", area, "-format", "%k", "info:").stdout
        return int(greys) > 16

    def drag_stamp(self, dx, dy, grip=None):
        """Drags the stamp by its middle, or by a point counted from its lower right; its rectangles before and after."""
        stamp = self.screen.find("list item", "Stempel ")
        before = self.screen.extents(stamp)
        x, y = middle(before)
        if grip:
            x, y = before[0] + before[2] + grip[0], before[1] + before[3] + grip[1]
        self.desktop.drag((x, y), (x + dx, y + dy))
        wait_for(lambda: self.screen.extents(stamp) != before, "the stamp to move")
        self.desktop.run("xdotool", "sleep", 0.3)
        return before, self.screen.extents(stamp)


def main():
    if not all(map(shutil.which, NEEDED)):
        sys.exit(SKIPPED)
    folder = Path(tempfile.mkdtemp(prefix="vellmora-test-", dir="/tmp"))
    job = MainJob(folder)
    try:
        job.run()
    finally:
        job.desktop.stop()
        shutil.rmtree(folder, ignore_errors=True)
    print("the main job was done")


if __name__ == "__main__":
    main()
