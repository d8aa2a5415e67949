#!/usr/bin/python3
"""Makes the pictures of README, handbook and software centre: takes the guided tour on a light and on a dark desktop.

Needs what ./run builds and the packages of the tour. Leaves each picture twice in docs/pictures: NAME.png and NAME-dark.png.
"""
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from gi.repository import GLib

from lib.virtual_desktop import TourError, wait_for
from tour import A4_ASPECT, PAGE_MARGIN, RESULTS, ROOT, Tour, say, stop_at_signals

PICTURES = ROOT / "docs/pictures"
COLOURS = 256  # of a picture's palette
ACTIVE = 1 << 1  # in the first word of an object's state
UP, DOWN = 4, 5  # buttons of the mouse: its wheel

# The colours of two desktops: of windows, of what one writes in, of buttons, of what is chosen.
LIGHT = {"Window": ("239,240,241", "35,38,41"), "View": ("255,255,255", "35,38,41"),
         "Button": ("252,252,252", "35,38,41"), "Selection": ("61,174,233", "255,255,255")}
DARK = {"Window": ("42,46,50", "252,252,252"), "View": ("27,30,32", "252,252,252"),
        "Button": ("49,54,59", "252,252,252"), "Selection": ("61,174,233", "252,252,252")}

# Strokes of a pen, as somebody would sign.
SIGNATURE = ("path 'M 30,150 C 60,20 110,10 100,70 C 90,140 40,190 60,110 C 75,60 130,90 140,120 "
             "C 150,150 165,90 185,105 C 200,120 180,150 205,130 C 225,110 225,95 240,110 C 250,125 240,150 265,125 "
             "C 300,60 330,10 315,60 C 300,120 285,160 310,130 C 330,105 345,100 350,120 C 360,150 420,120 470,95' "
             "path 'M 60,178 C 180,160 330,158 455,150'")


class PictureTour(Tour):
    """The tour with a stamp of one's own; its pictures show nothing but the window."""

    def __init__(self, folder, colours, suffix):
        super().__init__(folder)
        self.suffix = suffix
        self.signature = folder / "Unterschrift.png"
        self.desktop.env.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5")
        (folder / "XDG_CONFIG_HOME/kdeglobals").write_text("[KDE]\nwidgetStyle=Fusion\n" + "".join(
            f"[Colors:{role}]\nBackgroundNormal={ground}\nBackgroundAlternate={ground}\nForegroundNormal={text}\n"
            for role, (ground, text) in colours.items()))

    def steps(self):
        return [
            ("Starting a virtual display", self.desktop.start),
            ("Writing the sample document", self.write_sample),
            ("Drawing a signature", self.draw_signature),
            ("Starting the program", self.start_program),
            ("Opening the document", self.open_document),
            ("Choosing a stamp", self.choose_stamp),
            ("Putting the stamp on the page", self.insert_stamp),
            ("Moving and resizing the stamp", self.place_stamp),
            ("Signing", self.sign),
            ("Saving over the original", self.save),
        ]

    def draw_signature(self):
        self.desktop.run("convert", "-size", "500x200", "xc:none", "-fill", "none", "-stroke", "#1b2f7a",
                         "-strokewidth", 6, "-draw", SIGNATURE, self.signature)

    def answer_file_dialog(self, keys, title, path):
        super().answer_file_dialog(keys, title, path)
        self.rest()

    def choose_stamp(self):
        """In the library, which a stamp of one's own is in as well."""
        self.desktop.run("xdotool", "key", "ctrl+i")
        self.click_on(self.screen.find("tree item", self.signature.name), times=2)
        self.screen.find("label", "Stempel importiert: Unterschrift")
        self.scroll_sidebar(DOWN)
        self.click_on(self.tile_of("Eingegangen"))
        self.rest()
        self.take_picture("library")

    def insert_stamp(self):
        self.click_on(self.screen.find("push button", "Stempel auf aktueller Seite"))
        self.screen.find("label", "Stempel auf Seite 1 eingefügt: Eingegangen")
        self.scroll_sidebar(UP)
        self.take_picture("inserted")

    def place_stamp(self):
        self.move_stamp("Stempel Eingegangen", 0.19, 0.44)
        x, y, width, height = self.placed("Stempel Eingegangen")
        self.desktop.drag((x + width - 4, y + height - 4), (x + width + 46, y + height - 4))
        wait_for(lambda: self.placed("Stempel Eingegangen")[2] != width, "the stamp to grow")
        self.rest()
        self.take_picture("placed")

    def sign(self):
        self.scroll_sidebar(DOWN)
        self.click_on(self.tile_of("Unterschrift"), times=2)
        self.screen.find("label", "Stempel auf Seite 1 eingefügt: Unterschrift")
        self.scroll_sidebar(UP)
        self.move_stamp("Stempel Unterschrift", 0.24, -0.385)

    def save(self):
        self.desktop.run("xdotool", "key", "ctrl+s")
        self.screen.find("label", "Original überschrieben: " + self.sample.name)
        self.take_picture("saved")

    def scroll_sidebar(self, button):
        x, y, _, height = self.screen.extents(self.screen.find("frame", ""))
        self.desktop.run("xdotool", "mousemove", x + 150, y + height // 2, "click", "--repeat", 40, button)
        self.rest()

    def tile_of(self, name):
        library = self.screen.find("list", "Stempel der Bibliothek")
        return next(entry for entry in self.screen.showing(library) if self.screen.property(entry, "Name").startswith(name))

    def click_on(self, target, times=1):
        x, y, width, height = map(round, self.screen.extents(target))
        self.desktop.run("xdotool", "mousemove", x + width // 2, y + height // 2, "click", "--repeat", times, "--delay", 50, 1)

    def placed(self, name):
        return self.screen.extents(self.screen.find("list item", name))

    def move_stamp(self, name, across, up):
        """By these parts of the page's width and height."""
        x, y, width, height = self.placed(name)
        start = x + width / 2, y + height / 2
        page_height = self.editor_area[3] - 2 * PAGE_MARGIN
        self.desktop.drag(start, (start[0] + across * page_height * A4_ASPECT, start[1] - up * page_height))
        wait_for(lambda: self.placed(name)[:2] != (x, y), "the stamp to move")
        self.rest()

    def rest(self):
        """Moves the mouse to where nothing answers it."""
        x, y, _, _ = self.editor_area
        self.desktop.run("xdotool", "mousemove", x + 5, y + 5)

    def take_picture(self, name):
        screen = RESULTS / "screen.png"
        window = self.screen.find("frame", "")
        if name != "dialog":  # the window shows its focus once it is the active one again
            wait_for(lambda: self.screen.ask(window, "GetState")[0] & ACTIVE, "the window to become active")
        self.desktop.picture(screen)
        if name == "dialog":  # every desktop has its own
            return
        x, y, width, height = self.screen.extents(window)
        self.desktop.run("convert", screen, "-crop", f"{width}x{height}+{x}+{y}", "+repage", "+dither",
                         "-colors", COLOURS, "-define", "png:compression-level=9", "-strip",
                         f"PNG8:{PICTURES / name}{self.suffix}.png")


def main():
    for folder in PICTURES, RESULTS:
        folder.mkdir(parents=True, exist_ok=True)
    for colours, suffix in (LIGHT, ""), (DARK, "-dark"):
        folder = Path(tempfile.mkdtemp(prefix="vellmora-tour-", dir="/tmp"))
        tour = PictureTour(folder, colours, suffix)
        stop_at_signals(tour)
        try:
            tour.run()
        except (TourError, GLib.Error, OSError, subprocess.TimeoutExpired) as error:
            tour.keep_traces()
            sys.exit(f"The tour failed at “{tour.title}”: {error}\n"
                     f"A picture and logs are in {RESULTS.relative_to(ROOT)}.")
        finally:
            signal.alarm(0)
            tour.desktop.stop()
            shutil.rmtree(folder, ignore_errors=True)
    say(f"The pictures are in {PICTURES.relative_to(ROOT)}.")


if __name__ == "__main__":
    main()
