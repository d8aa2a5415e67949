"""Files that are to be in the system's memory when something is measured: it drops what was not used for a minute or two,
and a start would be timed together with the disk."""
import os
from pathlib import Path

from .processes import family

PIECE = 1 << 20


def files_of(pid):
    """Those that a process and its helpers have mapped: programs, libraries, fonts, caches."""
    paths = set()
    for member in family(pid):
        try:
            maps = Path(f"/proc/{member}/maps").read_text()
        except OSError:
            continue  # it has just ended
        lines = (line.split(maxsplit=5) for line in maps.splitlines())
        paths.update(words[5] for words in lines if len(words) > 5 and words[5].startswith("/"))
    return {path for path in paths if os.path.isfile(path)}


def warm(paths):
    for path in paths:
        with open(path, "rb", buffering=0) as file:
            while file.read(PIECE):
                pass
