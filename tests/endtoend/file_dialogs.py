#!/usr/bin/python3
"""Answers the file dialogs of the real window in every way, and uses the window at once after each.

    file_dialogs.py BUILD_FOLDER [PROGRAM]

Ends with 77 where there is no virtual display.
"""
from window import ACTIVE, FOCUSED, run_in_window, wait_for

OPEN = "ctrl+o", "PDF auswählen"
IMPORT = "ctrl+i", "PNG-Stempel zur Bibliothek hinzufügen"
SAVE_AS = "ctrl+shift+s", "PDF speichern unter"


class FileDialogs:
    def __init__(self, window):
        self.window = window
        self.desktop = window.desktop
        self.files = window.folder / "Vertrag"

    def run(self):
        self.window.start_desktop()
        self.screen = self.window.screen
        self.make_files()
        self.window.start_program(self.files / "Mietvertrag.pdf")
        self.window.expect("PDF geladen: Mietvertrag.pdf")
        self.document = "Mietvertrag.pdf"
        self.frame = self.screen.find("frame", "Mietvertrag.pdf")
        for step in self.save_as, self.save_over_a_file, self.open, self.import_stamp, self.cancel, self.refuse:
            print(f"{step.__name__} …", flush=True)
            step()

    def make_files(self):
        self.files.mkdir()
        for name in "Mietvertrag.pdf", "Mietspiegel.pdf":
            self.window.write_sample(self.files / name)
        for name in "Siegel.png", "Siegel-rot.png":
            self.desktop.run("convert", "-size", "40x20", "xc:red", self.files / name)
        (self.files / "Siegel.txt").write_text("no picture")

    def save_as(self):
        """The first dialog starts beside the document, which came as an argument."""
        for typed, name in ("Entwurf", "Entwurf.pdf"), ("Kopie.txt", "Kopie.txt.pdf"), ("Kopie.PDF", "Kopie.PDF"):
            self.show(SAVE_AS)
            self.type(typed)
            self.window.keys("Return")
            self.expect_document("PDF gespeichert: ", name)
            assert (self.files / name).read_bytes().startswith(b"%PDF"), name
        assert not (self.files / "Kopie.txt").exists()

    def save_over_a_file(self):
        """What may be replaced is asked with the name that is written at last."""
        target = self.files / "Entwurf.pdf"
        before = target.read_bytes()
        self.show(SAVE_AS)
        self.type("Entwurf", completions=True)
        self.window.keys("Return")
        self.screen.find("label", "Die Datei Entwurf.pdf existiert bereits.")
        self.window.click("push button", "Nein")
        wait_for(lambda: self.window.windows() == 2, "the question to go")
        assert target.read_bytes() == before
        self.window.click("tree item", "Entwurf.pdf", times=2)
        self.window.click("push button", "Ja")
        self.expect_document("PDF gespeichert: ", "Entwurf.pdf")
        assert target.read_bytes() != before

    def open(self):
        self.show(OPEN)
        self.type(self.files / "Mietspiegel.pdf", completions=True)
        self.window.keys("Return")
        self.expect_document("PDF geladen: ", "Mietspiegel.pdf")
        self.show(OPEN)
        self.window.click("tree item", "Mietvertrag.pdf", times=2)
        self.expect_document("PDF geladen: ", "Mietvertrag.pdf")
        self.show(OPEN)
        self.type("Mietsp", completions=True)
        self.window.keys("Down", "Return")
        self.expect_document("PDF geladen: ", "Mietspiegel.pdf")

    def import_stamp(self):
        self.show(IMPORT)
        self.type(self.files / "Siegel.png", completions=True)
        self.window.keys("Return")
        self.window.expect("Stempel importiert: Siegel")
        self.use_window()
        self.show(IMPORT)
        self.window.click("tree item", "Siegel-rot.png", times=2)
        self.window.expect("Stempel importiert: Siegel-rot")
        self.use_window()

    def cancel(self):
        """Escape closes the list of completions, and then the dialog."""
        for dialog, name in (OPEN, "Mietvertrag"), (IMPORT, "Siegel"), (SAVE_AS, "Mietvertrag"):
            self.show(dialog)
            self.type(name, completions=True)
            self.window.keys("Escape")
            wait_for(lambda: self.window.windows() == 2, "the list of completions to go")
            self.window.keys("Escape")
            self.wait_until_closed()
            self.use_window(key_first=True)

    def refuse(self):
        for dialog, kind in (OPEN, "PDF"), (IMPORT, "PNG"):
            self.show(dialog)
            self.type(self.files / "Siegel.txt")
            self.window.keys("Return")
            self.screen.find("tool tip", f"Nur {kind}-Dateien werden unterstützt.")
            self.screen.find("dialog", dialog[1])
            self.window.keys("Escape")
            self.wait_until_closed()
            self.window.expect("Stempel auf Seite 1 eingefügt: ")  # as before
            self.use_window(key_first=True)

    def show(self, dialog):
        keys, title = dialog
        self.window.keys(keys)
        self.screen.find("dialog", title)
        self.field = self.screen.find("text", "Dateiname:")
        wait_for(lambda: self.window.has_state(self.field, FOCUSED), "the focus in the dialog")

    def type(self, name, completions=False):
        self.desktop.run("xdotool", "key", "ctrl+a", "type", "--delay", 15, name)
        wait_for(lambda: self.screen.text(self.field) == str(name), "the name in the dialog")
        if completions:
            wait_for(lambda: self.window.windows() == 3, "the list of completions")

    def wait_until_closed(self):
        wait_for(lambda: self.window.windows() == 1, "the dialog to go")

    def expect_document(self, status, name):
        self.window.expect(status + name)
        self.document = name
        self.use_window()

    def use_window(self, key_first=False):
        """The very first click or key arrives, and the window is the active one, with the focus in it."""
        steps = [self.insert_by_click, self.save_by_key]
        for step in reversed(steps) if key_first else steps:
            step()
        wait_for(lambda: self.window.has_state(self.frame, ACTIVE), "the window to be active")
        wait_for(lambda: any(self.window.has_state(node, FOCUSED) for node in self.screen.showing(self.frame)),
                 "a focus in the window")
        self.wait_until_closed()

    def insert_by_click(self):
        before = self.stamps()
        self.window.click("push button", "Stempel auf aktueller Seite")
        wait_for(lambda: self.stamps() == before + 1, "the stamp that was inserted by a click")

    def save_by_key(self):
        self.window.keys("ctrl+s")
        self.window.expect("Original überschrieben: " + self.document)

    def stamps(self):
        is_stamp = lambda node: self.screen.property(node, "Name").startswith("Stempel ")
        return sum(self.screen.ask(node, "GetRoleName") == "list item" and is_stamp(node)
                   for node in self.screen.showing(self.frame))


if __name__ == "__main__":
    run_in_window(lambda window: FileDialogs(window).run())
    print("all dialogs were answered")
