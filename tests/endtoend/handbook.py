#!/usr/bin/python3
"""Has the program show its handbook, and reads the page that the desktop is given.

    handbook.py BUILD_FOLDER [PROGRAM]

PROGRAM is an installed one in place of that of the build folder. Ends with 77 where there is no virtual display.
"""
import base64
import struct
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

from window import run_in_window, wait_for

DATA = "data:image/png;base64,"
F1 = "67"  # by its code: with the name, some versions of xdotool hold Alt as well


class Page(HTMLParser):
    """What a page refers to, and what it can be referred to by."""

    def __init__(self, text):
        super().__init__()
        self.pictures, self.links, self.names, self.words = [], [], set(), []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("src", "srcset"):
                self.pictures.append(value)
            elif name == "href":
                self.links.append(value)
            elif name == "id":
                self.names.add("#" + value)

    def handle_data(self, data):
        self.words.append(data)


def check_page(path):
    page = Page(path.read_text(encoding="utf-8"))
    assert len(page.pictures) >= 12, len(page.pictures)
    for picture in page.pictures:
        assert picture.startswith(DATA), picture[:60]
        width, height = struct.unpack(">II", base64.b64decode(picture[len(DATA):])[16:24])
        assert width > 600 and height > 400, (width, height)
    assert page.links and not set(page.links) - page.names, set(page.links) - page.names
    assert "Strg+Umschalt+S" in page.words, page.words


class Handbook:
    def __init__(self, window):
        self.window = window
        self.desktop = window.desktop
        self.opened = window.folder / "opened"

    def run(self):
        self.window.start_desktop()
        self.fail_without_desktop()
        self.bring_opener()
        assert not self.desktop.run(self.window.program, "--handbuch").stdout
        from_entry = self.page_shown()
        assert Path(self.window.program).parents[1] in from_entry.parents, from_entry
        self.window.start_program()
        self.window.wait_for_keyboard()
        self.window.keys(F1)
        assert self.page_shown() == from_entry
        check_page(from_entry)

    def fail_without_desktop(self):
        failed = self.desktop.run(self.window.program, "--handbuch", check=False, PATH=str(self.window.folder / "empty"))
        message = "vellmora: Das Handbuch konnte nicht geöffnet werden: "
        assert failed.returncode == 1 and message in failed.stderr.decode(), failed

    def bring_opener(self):
        """Stands for what the desktop opens files with: notes the file."""
        opener = self.window.folder / "bin/xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\necho "$1" > "{self.opened}.new"\nmv "{self.opened}.new" "{self.opened}"\n')
        opener.chmod(0o755)
        self.desktop.env["PATH"] = f"{opener.parent}:{self.desktop.env['PATH']}"

    def page_shown(self):
        wait_for(self.opened.exists, "the desktop to be asked for a page")
        url = self.opened.read_text().strip()
        self.opened.unlink()
        return Path(unquote(url.removeprefix("file://"))).resolve()


if __name__ == "__main__":
    run_in_window(lambda window: Handbook(window).run())
    print("the handbook was shown")
