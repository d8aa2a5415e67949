"""What the program's processes do and take: the program, its helpers, all their threads."""
import os
import subprocess
import time
from pathlib import Path

REST = 0.8  # seconds without any work after which no more is to come
INTERVAL = 0.004
LONGEST_WORK = 120


def family(pid):
    """The process and those that it started, as far as they are there."""
    found = [int(pid)]
    for member in found:
        try:
            for task in Path(f"/proc/{member}/task").glob("*/children"):
                found += map(int, task.read_text().split())
        except OSError:
            pass  # it has just ended
    return found


def work_of(pid):
    """For each thread what it has run so far. And whether one is at work, or would be if it had the processor."""
    work, is_working = {}, False
    for member in family(pid):
        for task in Path(f"/proc/{member}/task").glob("*"):
            try:
                work[task] = (task / "schedstat").read_text()
                state = (task / "stat").read_text().rpartition(")")[2].split()[0]
                is_working = is_working or state in "RD"
            except OSError:
                pass  # it has just ended
    return work, is_working


def wait_for_rest(pid, helpers=2):
    """When (milliseconds of CLOCK_MONOTONIC) the last of all threads went to sleep, so many helpers being there."""
    changed = started = time.monotonic()
    before = None
    while time.monotonic() - changed < REST or len(family(pid)) <= helpers:
        now, is_working = work_of(pid)
        if is_working or now != before:
            before, changed = now, time.monotonic()
        if time.monotonic() - started > LONGEST_WORK:
            raise RuntimeError("the program does not come to rest")
        time.sleep(INTERVAL)
    return changed * 1000


def own_and_shared(pid):
    """Kilobytes that a process has for itself, of files its part; and by their number the shared memories that it has
    mapped or open, with what lies in them."""
    own, shared, inode = 0, {}, 0
    for line in Path(f"/proc/{pid}/smaps").read_text().splitlines():
        words = line.split()
        if "-" in words[0] and not words[0].endswith(":"):
            inode = int(words[4]) if len(words) > 5 and words[5].startswith(("/memfd:", "/SYSV", "/dev/shm")) else 0
            shown = 0
        elif words[0] == "Rss:":
            shown = int(words[1])
        elif words[0] == "Pss:":
            part = int(words[1])
        elif words[0] == "Anonymous:":
            # Pages of a memory that were written to are the process' own.
            anonymous = int(words[1])
            own += anonymous if inode else part
            if inode:
                shared[inode] = max(shared.get(inode, 0), shown - anonymous)
    for name in os.listdir(f"/proc/{pid}/fd"):
        try:
            place = f"/proc/{pid}/fd/{name}"
            if os.readlink(place).startswith("/memfd:"):
                info = os.stat(place)
                shared[info.st_ino] = max(shared.get(info.st_ino, 0), info.st_blocks // 2)
        except FileNotFoundError:
            pass
    return own, shared


def memory_of(pid):
    """Bytes of the process and its helpers. What they share is counted once, whether any has it mapped or not."""
    total, shared = 0, {}
    for member in family(pid):
        try:
            own, memories = own_and_shared(member)
        except OSError:
            continue  # it has just ended
        total += own
        for inode, kilobytes in memories.items():
            shared[inode] = max(shared.get(inode, 0), kilobytes)
    return (total + sum(shared.values())) * 1024


def system_calls(pid, seconds):
    """Those that all threads of the process and its helpers make in so many seconds, as strace writes them. It is a
    second older than what counts: what a thread was waiting in is told, too, where it is attached to."""
    words = [word for member in family(pid) for word in ("-p", str(member))]
    started = time.time()
    watching = subprocess.Popen(["strace", "-f", "-ttt", "-qq", *words], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True)
    time.sleep(seconds + 1)
    ended = time.time()
    watching.terminate()
    _, text = watching.communicate()
    calls = [line.partition("] ")[2] for line in text.splitlines() if line.startswith("[pid")]
    return [call for call in calls if call[:1].isdigit() and started + 1 <= float(call.split()[0]) <= ended]
