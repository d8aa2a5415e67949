"""Samples of what was measured, and the table that they are put into."""
import math
import statistics
from dataclasses import dataclass


def percentile(samples, share):
    """The smallest sample that is not below `share` of them (nearest rank)."""
    return sorted(samples)[max(0, math.ceil(share * len(samples)) - 1)]


def in_turn(candidates, rounds):
    """Samples of each of the named candidates. They take turns, so that what disturbs the machine meets all alike; a
    first round, which warms the caches, does not count."""
    samples = {name: [] for name in candidates}
    for number in range(rounds + 1):
        for name, measure in candidates.items():
            value = measure()
            if number > 0:
                samples[name].append(value)
    return samples


@dataclass
class Row:
    """One line of the table. The goal is a largest figure: of ours itself, or of its ratio to the others' median."""
    what: str
    ours: list
    goal: str = "–"
    limit: float = None  # none: measured for what it tells, without a goal
    against: str = "–"
    theirs: list = None
    is_ratio: bool = False
    share: float = 0.5  # which of our samples counts: the median, 0.99 for the 99th percentile, 1 for the greatest
    unit: str = "ms"

    @property
    def figure(self):
        return percentile(self.ours, self.share) if self.share != 0.5 else statistics.median(self.ours)

    @property
    def other_figure(self):
        return statistics.median(self.theirs) if self.theirs else None

    @property
    def ratio(self):
        return self.figure / self.other_figure if self.theirs else None

    @property
    def verdict(self):
        if self.limit is None:
            return ""
        return "met" if self.is_met else "**not met**"

    @property
    def is_met(self):
        return (self.ratio if self.is_ratio else self.figure) <= self.limit


HEADINGS = ["What", "Ours", "Spread", "Against", "Its median", "Ratio", "Goal", ""]


def number(value, unit):
    digits = 0 if value >= 100 else 1 if value >= 10 else 2
    return f"{value:.{0 if isinstance(value, int) else digits}f} {unit}"


def cells(row):
    spread = f"{number(min(row.ours), row.unit)} – {number(max(row.ours), row.unit)}"
    return [row.what, number(row.figure, row.unit), spread, row.against,
            number(row.other_figure, row.unit) if row.theirs else "–",
            f"{row.ratio:.2f}" if row.theirs else "–", row.goal, row.verdict]


def markdown_table(rows):
    lines = [HEADINGS, ["---"] + ["---:"] * 2 + ["---"] + ["---:"] * 2 + ["---"] * 2, *map(cells, rows)]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def text_table(rows):
    lines = [HEADINGS, *map(cells, rows)]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in lines)
