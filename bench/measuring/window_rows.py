"""What is measured at the window: starting, opening, turning pages, dragging, inserting."""
import json
import random
import shutil
import subprocess
import uuid
from pathlib import Path

from .samples import Row, in_turn

FRAME = 16  # milliseconds
OPENING = 30  # milliseconds beside the engine's for that page
DRAG_STEPS = 120
ALLOWANCE = 1.2  # of what is to stay constant: the noise of two measurements
PAGE_MARGIN = 8
A4 = (595, 842)


def fill_library(home, picture, count):
    """A library with `count` entries beside the built-in ones, the first of them selected."""
    names = random.Random(4)
    folder = Path(home["XDG_DATA_HOME"]) / "Vellmora"
    (folder / "Stamps").mkdir(parents=True)
    entries = []
    for number in range(count):
        name = str(uuid.UUID(int=names.getrandbits(128), version=4)).upper()
        shutil.copy(picture, folder / "Stamps" / f"{name}.png")
        entries.append({"id": name, "displayName": f"Stempel {number}", "fileName": f"{name}.png",
                        "createdAt": "2024-01-31T12:00:00Z"})
    (folder / "stamp-library.json").write_text(json.dumps(entries))
    settings = {"Vellmora.selectedPresetID": entries[0]["id"]}
    (folder / "settings.json").write_text(json.dumps(settings))


class WindowRows:
    def __init__(self, screen, inputs, rounds):
        self.screen = screen
        self.inputs = inputs
        self.rounds = rounds
        self.home = screen.new_home()
        self.area, self.insert_button = screen.places()
        x, y, width, height = self.area
        # Without the frame that tells of the keyboard's focus.
        self.page_area = x + PAGE_MARGIN, y + PAGE_MARGIN, width - 2 * PAGE_MARGIN, height - 2 * PAGE_MARGIN
        scale = min((width - 2 * PAGE_MARGIN) / A4[0], (height - 2 * PAGE_MARGIN) / A4[1])
        self.page_size = round(A4[0] * scale), round(A4[1] * scale)

    def engine(self, *words):
        """What the engine and Qt themselves take, in a process of its own."""
        output = subprocess.run([str(word) for word in (self.screen.programs / "bench/engine", *words)],
                                env={**self.screen.desktop.env, "QT_QPA_PLATFORM": "offscreen"}, check=True,
                                stdin=subprocess.DEVNULL, capture_output=True).stdout
        return json.loads(output)

    def home_with(self, count, picture="small.png"):
        home = self.screen.new_home()
        fill_library(home, self.inputs / picture, count)
        return home

    def start(self):
        some, many = self.home_with(195), self.home_with(1995)
        start = self.screen.start_time
        forgetful = self.screen.new_home()

        def start_without_cache():
            shutil.rmtree(forgetful["XDG_CACHE_HOME"], ignore_errors=True)
            return start("vellmora", forgetful)

        times = in_turn({"empty": lambda: start("bench/empty_window", self.home),
                         "5": lambda: start("vellmora", self.home),
                         "no cache": start_without_cache,
                         "rest": lambda: self.screen.time_to_rest("vellmora", self.home),
                         "200": lambda: start("vellmora", some),
                         "2000": lambda: start("vellmora", many)}, 2 * self.rounds)
        return [
            Row("start", times["5"], "at most 1.4 times", 1.4, "an empty window", times["empty"], True),
            Row("start, nothing kept from the one before", times["no cache"], against="an empty window",
                theirs=times["empty"]),
            Row("start, until all threads sleep and the helpers are ready", times["rest"], "at most 2.5 times", 2.5,
                "an empty window", times["empty"], True),
            Row("start, 2,000 library entries", times["2000"], "at most 1.2 times", 1.2, "5 entries", times["5"], True),
            Row("start, ten times the entries (2,000)", times["2000"], "constant", ALLOWANCE, "200 entries",
                times["200"], True),
        ]

    def opened(self, path):
        """Until the first page is there, and sharp."""
        with self.screen.running("vellmora", home=self.home):
            return self.screen.open_document(path, self.page_area)

    def open(self):
        rows = []
        for what, name in ("130 MB of scans", "scans.pdf"), ("2,000 text pages", "text2000.pdf"), \
                ("2 pages", "small.pdf"):
            path = self.inputs / name

            def engine():
                return self.engine("page", path, *self.page_size)["render_ms"]

            times = in_turn({"ours": lambda: self.opened(path), "engine": engine}, self.rounds)
            row = Row(f"open: {what}", times["ours"], f"the engine's time + {OPENING} ms", 0, "the engine, that page",
                      times["engine"])
            row.limit = row.other_figure + OPENING
            rows.append(row)
        return rows

    def turn(self):
        rows = []
        for what, name in ("130 MB of scans", "scans.pdf"), ("2,000 text pages", "text2000.pdf"):
            with self.screen.running("vellmora", home=self.home):
                self.screen.open_document(self.inputs / name, self.area)
                times = in_turn({"ours": lambda: self.screen.use("key", self.area, "Next")}, 2 * self.rounds)
            rows.append(Row(f"turn to the next page: {what}", times["ours"], "at most one frame (16 ms)", FRAME))
        return rows

    def drag_steps(self, picture, count, elsewhere):
        with self.screen.running("bench/filled_window", self.inputs / "text200.pdf", self.inputs / picture, count,
                                 elsewhere, home=self.home) as process:
            places = json.loads(process.stdout.readline())
            return self.screen.drag(places["editor"], places["stamp"], DRAG_STEPS)

    def drag(self):
        times = in_turn({"many": lambda: self.drag_steps("large.png", 200, 4800),
                         "fewer": lambda: self.drag_steps("large.png", 200, 480),
                         "one": lambda: self.drag_steps("small.png", 1, 0)}, self.rounds)
        many, fewer, one = (sum(samples, []) for samples in times.values())
        goal = "99th percentile at most 8 ms"
        return [
            Row("drag step, 24 megapixels, 200 on the page, 5,000 in all", many, goal, 8, share=0.99),
            Row("drag step, one stamp of 100 × 40", one, goal, 8, share=0.99),
            Row("drag step, ten times the stamps elsewhere", many, "constant", ALLOWANCE, "480 elsewhere", fewer, True),
        ]

    def insert(self):
        home = self.home_with(1, "large.png")

        def ours():
            with self.screen.running("vellmora", home=home):
                self.screen.open_document(self.inputs / "small.pdf", self.area)
                return self.screen.use("click", self.area, *self.insert_button)

        times = in_turn({"ours": ours, "decode": lambda: self.engine("picture", self.inputs / "large.png")["decode_ms"]},
                        self.rounds)
        return [Row("insert a picture of 24 megapixels", times["ours"], "at most 1.2 times", 1.2, "decoding it once",
                    times["decode"], True)]
