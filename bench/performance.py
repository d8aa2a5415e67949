#!/usr/bin/python3
"""Measures how quick the program is, against what it is built on and against other programs: see ./benchmark --help."""
import argparse
import os
import platform
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools"))

from measuring.length_rows import LengthRows
from measuring.rest_rows import RestRows
from measuring.samples import markdown_table, text_table
from measuring.save_rows import SaveRows
from measuring.screen import Screen
from measuring.share_rows import OTHER_FILES, ShareRows
from measuring.window_rows import WindowRows

PROGRAMS = ROOT / "build/release"
INPUTS = ROOT / "build/bench-data"
REPORT = ROOT / "docs/performance.md"
WINDOW_PARTS = {WindowRows: ["start", "open", "turn", "drag", "insert"], RestRows: ["rest", "memory", "large"],
                ShareRows: ["share"], LengthRows: ["length"]}
SAVE_PARTS = ["save", "large"]
PARTS = list(dict.fromkeys([*sum(WINDOW_PARTS.values(), []), *SAVE_PARTS]))
LEAST_ROUNDS = 7
LONG_ROUNDS = 3  # of what takes long and hardly varies


def arguments():
    parser = argparse.ArgumentParser(prog="./benchmark", description=__doc__.partition(":")[0])
    parser.add_argument("parts", nargs="*", metavar="PART", help="of " + ", ".join(PARTS) + "; all where none is named; large takes 4 GB of the disk")
    parser.add_argument("--rounds", type=int, default=LEAST_ROUNDS, help="how often each is measured (%(default)s)")
    parser.add_argument("--write", action="store_true", help=f"put the table into {REPORT.relative_to(ROOT)}")
    parser.add_argument("--install", action="store_true", help="install the other programs first, without a question")
    words = parser.parse_args()
    if unknown := set(words.parts) - set(PARTS):
        parser.error("no such part: " + ", ".join(sorted(unknown)))
    words.parts = words.parts or PARTS
    return words


def make(program, mark, *words):
    """Made once for each state of the program that makes them."""
    maker = PROGRAMS / "bench" / program
    stamp = INPUTS / mark
    if stamp.exists() and stamp.stat().st_mtime >= maker.stat().st_mtime:
        return
    print("Making the documents …", flush=True)
    INPUTS.mkdir(parents=True, exist_ok=True)
    subprocess.run([maker, INPUTS, *words], env={**os.environ, "QT_QPA_PLATFORM": "offscreen"}, check=True)
    stamp.touch()


def make_inputs(parts):
    """Those that the parts need: some of them take a while."""
    if set(parts) - {"length"}:
        make("make_inputs", "made")
    if "large" in parts:
        make("make_inputs", "made_large", "large")
    if "length" in parts:
        make("make_inputs", "made_pictures", "pictures")
        make("make_pages", "made_pages")


def measure(parts, rounds):
    rows = []

    def take(owner, own_parts):
        for part in own_parts:
            if part in parts:
                print(f"Measuring: {part} …", flush=True)
                rows.extend(getattr(owner, part)())

    for kind, window_parts in WINDOW_PARTS.items():
        if set(window_parts) & set(parts):
            folder = Path(tempfile.mkdtemp(prefix="vellmora-bench-"))
            try:
                with Screen(folder, PROGRAMS) as screen:
                    take(kind(screen, INPUTS, rounds if kind is WindowRows else LONG_ROUNDS), window_parts)
            finally:
                shutil.rmtree(folder, ignore_errors=True)
    take(SaveRows(PROGRAMS, INPUTS, rounds), SAVE_PARTS)
    return rows


def machine():
    model = next((line.partition(":")[2].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")), "")
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    return f"{model or platform.machine()}, {os.cpu_count()} cores, {memory:.0f} GB of memory"


def versions():
    packages = ["libqt6core6", "libqt6pdf6", "libqpdf29", "mupdf-tools", "python3-fitz", "qpdf", "pdftk-java", "coreutils", "fuse3", "strace"]
    found = subprocess.run(["dpkg-query", "-W", "-f", "${binary:Package} ${Version}\n", *packages], capture_output=True,
                           text=True).stdout
    return found.replace(":amd64", "").split("\n")[:-1]


def remarks():
    """What was written by hand below the table."""
    _, heading, text = (REPORT.read_text() if REPORT.exists() else "").partition("\n## ")
    return heading + text


def write_report(rows, rounds):
    REPORT.write_text(f"""# How quick Vellmora is

Measured by `./benchmark --write`, each row at least {rounds} times in turn with what it is compared to (memory, silences,
what happens at rest and the slow share {LONG_ROUNDS} times), in one run on one machine. "Ours" is the median (for steps of
a drag the 99th percentile, for silences and system calls the greatest), "Spread" the least and the greatest sample.
The window is driven with real events on a virtual display, and watched from outside: a time ends with the last change
on the screen. Saving is timed from the start of a process that opens, stamps and writes (others until its end, ours until
the file has its name, without the final sync to the disk, which no other program does); "that are open" is the part of it
that the program's user waits for, who opened the document before. Programs, libraries and documents are in the system's memory
when the clock starts: some systems drop what was not used for a minute or two, and would add 0 to 40 ms of the disk to a start.
Before each save twice the memory of the source is used and freed: a virtual machine gives free memory back after a second or two,
and getting it again takes 10 µs for each page, ten times as long as copying a file into it.

Memory is what the program and its helpers have for themselves and what they share, counted once. A silence is the time
that the window takes to answer the desktop when it asks whether the window is alive, without that for which others had the
processor. System calls at rest are counted with strace, once a document is open, a stamp placed and selected, and all
threads sleep. The slow share is a mount of our own
(`bench/slow_share.cpp`): 10 MB a second, each request answered 20 ms late. It counts the bytes that the kernel asks it for,
readahead included. {OTHER_FILES} other documents lie in the folder, and names are typed as quickly as people do.

{markdown_table(rows)}

Machine: {machine()}.

Versions: {", ".join(versions())}.
{remarks()}""")


def main():
    words = arguments()
    make_inputs(words.parts)
    rows = measure(words.parts, max(words.rounds, LEAST_ROUNDS))
    print(text_table(rows))
    if words.write:
        write_report(rows, max(words.rounds, LEAST_ROUNDS))


if __name__ == "__main__":
    main()
