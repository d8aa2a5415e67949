#!/usr/bin/python3
"""Does the main job in the real window with nothing but keys.

    keyboard_job.py BUILD_FOLDER [PROGRAM]

Nothing is clicked, and the mouse lies where no part of the window is. Ends with 77 where there is no virtual display.
"""
import re
from pathlib import Path

from gi.repository import GLib

from window import FOCUSED, run_in_window, wait_for

PAGE = "Seitenansicht"
MOST_TABS = 60  # more than there are controls


class KeyboardJob:
    def __init__(self, window):
        self.window = window
        self.files = window.folder / "HOME/Dokumente"
        self.contract = self.files / "Mietvertrag.pdf"
        self.copy = self.files / "Kopie.pdf"
        self.seal = self.files / "Siegel.png"

    def run(self):
        self.window.start_desktop()
        self.screen = self.window.screen
        self.files.mkdir()
        self.window.write_sample(self.contract)
        self.window.desktop.run("convert", "-size", "80x40", "xc:red", self.seal)
        self.window.desktop.run("xdotool", "mousemove", 0, 0)
        self.window.start_program()
        self.screen.find("label", "Keine PDF geladen")
        self.window.wait_for_keyboard()
        self.frame = self.screen.find("frame", "")
        for step in self.open, self.import_stamp, self.insert, self.move, self.resize, self.save, self.turn_pages, \
                self.delete, self.deselect, self.save_as, self.remove_from_library:
            print(f"{step.__name__} …", flush=True)
            step()

    def open(self):
        self.answer_dialog("ctrl+o", "PDF auswählen", self.contract)
        self.window.expect("PDF geladen: Mietvertrag.pdf")
        self.expect_focus(PAGE)

    def import_stamp(self):
        self.answer_dialog("ctrl+i", "PNG-Stempel zur Bibliothek hinzufügen", self.seal)
        self.window.expect("Stempel importiert: Siegel")
        self.expect_focus(PAGE)

    def insert(self):
        self.tab_to("Stempel auf aktueller Seite")
        self.window.keys("space")
        self.window.expect("Stempel auf Seite 1 eingefügt: Siegel")
        self.expect_focus("Stempel Siegel")

    def move(self):
        page, left, below, *size = self.place()
        self.window.keys("shift+Right", "shift+Right", "Right", "Up")
        self.expect_place(page, left + 21, below + 1, *size)
        self.window.keys("shift+Down", "Left")
        self.expect_place(page, left + 20, below - 9, *size)

    def resize(self):
        page, left, below, width, height = self.place()
        self.window.keys("ctrl+shift+Right", "ctrl+shift+Up", "ctrl+Left", "ctrl+Down")
        self.expect_place(page, left, below, width + 18, height + 9)

    def save(self):
        original = self.contract.read_bytes()
        self.window.keys("ctrl+s")
        self.window.expect("Original überschrieben: Mietvertrag.pdf")
        assert self.contract.read_bytes() != original
        self.expect_focus("Stempel Siegel")

    def turn_pages(self):
        self.window.keys("Next")
        self.expect_focus(PAGE)
        self.expect_page("Seite 2 von 2")
        self.window.keys("Prior")
        self.expect_page("Seite 1 von 2")
        self.window.keys("space")
        self.expect_page("Seite 2 von 2")

    def delete(self):
        """A stamp from the sidebar, which the keyboard reaches as well."""
        self.tab_to("Siegel")
        self.window.keys("Return")
        self.window.expect("Stempel auf Seite 2 eingefügt: Siegel")
        self.expect_focus("Stempel Siegel")
        self.window.keys("Delete")
        self.window.expect("Ausgewählter Stempel gelöscht.")
        self.expect_focus(PAGE)
        assert not self.stamps(), "it is gone"

    def deselect(self):
        self.window.keys("Prior")
        self.expect_page("Seite 1 von 2")
        self.window.keys("Tab")
        self.expect_focus("Stempel Siegel")
        self.window.keys("Escape")
        self.expect_focus(PAGE)
        self.window.keys("Delete", "Tab")
        self.expect_focus("Stempel Siegel")
        assert len(self.stamps()) == 1, "none was selected"
        self.window.keys("Escape")
        self.expect_focus(PAGE)

    def save_as(self):
        self.answer_dialog("ctrl+shift+s", "PDF speichern unter", self.copy)
        self.window.expect("PDF gespeichert: Kopie.pdf")
        assert self.copy.read_bytes().startswith(b"%PDF")
        self.expect_focus(PAGE)

    def remove_from_library(self):
        """Nothing of the picture stays, neither its file nor what is kept of it for the next start."""
        home = self.window.desktop.env
        kept = Path(home["XDG_CACHE_HOME"]) / "Vellmora/thumbnails"
        wait_for(kept.exists, "the pictures that are kept for the next start")
        pictures = Path(home["XDG_DATA_HOME"]) / "Vellmora/Stamps"
        count = len(list(pictures.iterdir()))
        for _ in "the recent one", "its button", "that of the library":
            self.tab_to("Siegel")
        self.window.keys("Delete")
        wait_for(lambda: len(list(pictures.iterdir())) == count - 1, "the picture to be gone")
        wait_for(lambda: not kept.exists(), "the kept pictures to be gone")

    def answer_dialog(self, keys, title, path):
        self.window.keys(keys)
        self.screen.find("dialog", title)
        field = self.screen.find("text", "Dateiname:")
        wait_for(lambda: self.window.has_state(field, FOCUSED), "the focus in the dialog")
        self.window.desktop.run("xdotool", "key", "ctrl+a", "type", "--delay", 15, path)
        wait_for(lambda: self.screen.text(field) == str(path), "the name in the dialog")
        if path.exists():
            wait_for(lambda: self.window.windows() == 3, "the list of completions")
        self.window.keys("Return")

    def focus(self):
        """What has the focus; None while it is on its way."""
        return self.first(lambda node: self.window.has_state(node, FOCUSED))

    def page(self):
        return self.first(lambda node: self.screen.property(node, "Name") == PAGE)

    def first(self, is_wanted):
        try:
            return next(filter(is_wanted, self.screen.showing(self.frame)), None)
        except GLib.Error:  # something went away while it was looked at
            return None

    def focused_name(self):
        node = self.focus()
        return self.screen.property(node, "Name") if node else None

    def expect_focus(self, name):
        wait_for(lambda: (self.focused_name() or "").startswith(name), f"the focus on “{name}”")

    def tab_to(self, name):
        """With the Tab key; whatever it comes by has a name and can be seen."""
        for _ in range(MOST_TABS):
            before = self.focused_name()
            self.window.keys("Tab")
            wait_for(lambda: self.focused_name() not in (None, before), f"the focus to leave “{before}”")
            now = self.focused_name()
            assert now, "a focus without a name"
            self.check_in_sight(wait_for(self.focus, "a focus"))
            if now.startswith(name):
                return
        raise AssertionError(f"Tab does not lead to “{name}”")

    def check_in_sight(self, node):
        x, y, width, height = self.screen.extents(node)
        left, top, across, down = self.screen.extents(self.frame)
        assert left <= x and top <= y and x + width <= left + across and y + height <= top + down, \
            (self.screen.property(node, "Name"), (x, y, width, height), (left, top, across, down))

    def expect_page(self, description):
        page = wait_for(self.page, "the page")
        wait_for(lambda: self.screen.property(page, "Description") == description, description)

    def stamps(self):
        is_stamp = lambda node: self.screen.property(node, "Name").startswith("Stempel ")
        return [node for node in self.screen.showing(self.page())
                if self.screen.ask(node, "GetRoleName") == "list item" and is_stamp(node)]

    def place(self):
        """Page, points from the left, points from below, width and height of the stamp that has the focus."""
        description = self.screen.property(wait_for(self.focus, "a focus"), "Description")
        return [int(number) for number in re.findall(r"\d+", description)]

    def expect_place(self, *place):
        wait_for(lambda: self.place() == list(place), f"the stamp at {place}")


if __name__ == "__main__":
    run_in_window(lambda window: KeyboardJob(window).run())
    print("the main job was done by keys alone")
