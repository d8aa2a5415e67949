"""Waiting for what a program saves."""
import time

LONGEST = 300  # seconds


def wait_for_file(path, before=None):
    """Returns when the name belongs to another file than that with the number `before`."""
    started = time.monotonic()
    while time.monotonic() - started < LONGEST:
        if path.exists() and path.stat().st_ino != before:
            return
        time.sleep(0.01)
    raise RuntimeError(f"{path.name} was not saved")
