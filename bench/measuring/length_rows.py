"""What is measured of documents of very many pages: whether length alone costs anything, and that what it costs is linear."""
from .samples import Row, in_turn
from .screen import WHOLE_SCREEN
from .save_rows import ALLOWED_GROWTH, ALLOWED_MEMORY, MEGABYTE, SaveRows, peer_commands
from .window_rows import OPENING, WindowRows

LONG, HALF = "pages100000.pdf", "pages50000.pdf"
NAME = "100,000 pages, 1 million objects"
OPEN_LIMIT, TURN_LIMIT, SAVE_LIMIT = 1000, 50, 3000  # milliseconds for a million objects
TWICE = 2.2  # twice the work, and the noise of two measurements


class LengthRows:
    """Needs the documents of make_pages, and a stamp."""

    def __init__(self, screen, inputs, rounds):
        self.window = WindowRows(screen, inputs, rounds)
        self.saving = SaveRows(screen.programs, inputs, rounds)
        self.rounds = rounds

    def loaded_and_turned(self, name):
        """Opens the document until all its pages are known and the window says so, and turns to its last page, which
        nothing of the window has seen before."""
        screen = self.window.screen
        with screen.running("vellmora", home=self.window.home):
            opened = screen.open_document(self.window.inputs / name, WHOLE_SCREEN)
            return opened, screen.use("key", self.window.area, "End")

    def windows(self):
        engine, path = self.window.engine, self.window.inputs / LONG
        times = in_turn({"first": lambda: self.window.opened(path),
                         "long": lambda: self.loaded_and_turned(LONG), "half": lambda: self.loaded_and_turned(HALF),
                         "engine": lambda: engine("page", path, *self.window.page_size)["render_ms"]},
                        self.rounds)
        loaded, turned = map(list, zip(*times["long"]))
        loaded_half, _ = map(list, zip(*times["half"]))
        painted = Row(f"open: {NAME}", times["first"], f"the engine's time + {OPENING} ms", 0, "the engine, that page",
                      times["engine"])
        painted.limit = painted.other_figure + OPENING
        return [
            painted,
            Row(f"open, until all pages are known: {NAME}", loaded, "at most 1 s", OPEN_LIMIT),
            Row(f"open, until all pages are known: {NAME}", loaded, "linear: at most 2.2 times", TWICE, "half of them",
                loaded_half, True),
            Row(f"turn to the last page: {NAME}", turned, "at most 50 ms", TURN_LIMIT),
        ]

    def saves(self):
        saving = self.saving
        source = saving.inputs / LONG
        times = in_turn({"long": lambda: saving.ours(source), "half": lambda: saving.ours(saving.inputs / HALF)},
                        self.rounds)
        elapsed, _, size = map(list, zip(*times["long"]))
        half, _, _ = map(list, zip(*times["half"]))
        source_size = source.stat().st_size / MEGABYTE
        what = f"save {NAME}"
        # Once each: they take minutes.
        peers = [Row(what, elapsed, "faster", 1, f"{peer}, once", [saving.timed(source, command)], True)
                 for peer, command in peer_commands(saving.inputs, source, saving.target).items()]
        return [
            Row(what, elapsed, "at most 3 s", SAVE_LIMIT),
            Row(what, elapsed, "linear: at most 2.2 times", TWICE, "half of them", half, True),
            *peers,
            Row(f"{what}: peak memory", [saving.peak_memory(source)], "the source + 60 MB", source_size + ALLOWED_MEMORY,
                "the source", [source_size], unit="MB"),
            Row(f"{what}: size of the file", size, "at most 1.05 times", ALLOWED_GROWTH, "the source", [source_size],
                True, unit="MB"),
        ]

    def length(self):
        return [*self.windows(), *self.saves()]
