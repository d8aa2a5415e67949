"""What is to be at hand when something is measured. Files in the system's memory: it drops what was not used for a minute
or two, and a start would be timed together with the disk. And memory itself: a virtual machine gives back what is free for a
second or two, and gets it again at 10 us for each page, which would make copying a file ten times as slow."""
import mmap
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


def warm_files(paths):
    for path in paths:
        with open(path, "rb", buffering=0) as file:
            while file.read(PIECE):
                pass


def warm_memory(size):
    """Makes so many bytes of the free memory the machine's own for a while."""
    mmap.mmap(-1, size, flags=mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS | mmap.MAP_POPULATE).close()
