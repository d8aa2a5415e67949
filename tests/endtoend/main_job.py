#!/usr/bin/python3
"""Does the main job in the real window.

    main_job.py BUILD_FOLDER [PROGRAM]

The document is dropped from another process. PROGRAM is an installed one to drive instead of that of the build folder.
Ends with 77 where there is no virtual display.
"""
from pathlib import Path

from window import middle, run_in_window, wait_for


class MainJob:
    def __init__(self, window):
        self.window = window
        self.desktop = window.desktop
        self.contract = window.folder / "Mietvertrag.pdf"

    def run(self):
        self.window.start_desktop()
        self.window.write_sample(self.contract)
        original = self.contract.read_bytes()
        self.screen = self.window.screen
        self.window.start_program()
        program = self.desktop.processes[-1].pid
        self.screen.find("label", "Keine PDF geladen")
        self.drop(self.contract)
        self.window.expect("PDF geladen: Mietvertrag.pdf")
        wait_for(self.shows_text, "the text of the page")
        self.window.click("push button", "Aktiven Stempel einfügen")
        self.window.expect("Stempel auf Seite 1 eingefügt: ")
        before, after = self.drag_stamp(120, -150)
        assert (after[0] - before[0], after[1] - before[1]) == (120, -150), (before, after)
        before, after = self.drag_stamp(60, 0, grip=(-4, -4))
        assert after[2] - before[2] in (59, 60, 61) and after[1] < before[1], (before, after)
        self.window.click("push button", "Speichern")
        self.window.expect("Original überschrieben: Mietvertrag.pdf")
        helpers = [child for tasks in Path(f"/proc/{program}/task").iterdir() for child in (tasks / "children").read_text().split()]
        assert len(helpers) == 2, "the document's and that of its pages; nobody needs a spare one"
        assert self.contract.read_bytes() != original
        self.window.click("push button", "Ausgewählten löschen")
        self.window.expect("Ausgewählter Stempel gelöscht.")
        saved = self.contract.read_bytes()
        self.desktop.run("prlimit", "--pid", program, f"--fsize={len(saved) // 2}")
        self.window.click("push button", "Speichern")
        self.window.expect("Fehler beim Überschreiben: PDF-Datei konnte nicht erstellt werden.")
        assert self.contract.read_bytes() == saved
        leftovers = [p.name for p in self.contract.parent.iterdir() if p.name.startswith(".vellmora")]
        assert not leftovers, leftovers
        self.start_again()

    def start_again(self):
        """The document comes as an argument; the built-in stamps are drawn anew."""
        library = Path(self.desktop.env["XDG_DATA_HOME"]) / "Vellmora/Stamps"
        picture = library / "builtin-erledigt.png"
        drawn = picture.read_bytes()
        picture.write_bytes(b"no picture")
        self.window.start_program(self.contract.name)
        self.window.expect("PDF geladen: Mietvertrag.pdf")
        wait_for(lambda: picture.read_bytes() == drawn, "the new picture of a built-in stamp")

    def drop(self, path):
        self.desktop.spawn([str(self.window.build / "tests/drag_source"), str(path)])
        source = self.screen.find("label", "Dateien")
        zone = self.screen.find("label", "PDF hier ablegen")
        start, end = middle(self.screen.extents(source)), middle(self.screen.extents(zone))
        self.page_middle = end
        self.desktop.run("xdotool", "mousemove", *map(round, start), "mousedown", 1)
        for step in range(1, 31):
            at = [round(a + (b - a) * step / 30) for a, b in zip(start, end)]
            self.desktop.run("xdotool", "mousemove", *at, "sleep", 0.01)
        self.window.expect("PDF jetzt loslassen")
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


if __name__ == "__main__":
    run_in_window(lambda window: MainJob(window).run())
    print("the main job was done")
