"""How long a window leaves the desktop without an answer."""
import subprocess
from contextlib import contextmanager


class Pulse:
    def __init__(self, screen, process):
        number = screen.desktop.run("xdotool", "search", "--onlyvisible", "--pid", process.pid).stdout.split()[0]
        self.asking = subprocess.Popen([str(screen.programs / "bench/window_pulse"), number.decode(), str(process.pid)],
                                       env=screen.desktop.env, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def silence(self):
        """Milliseconds: the longest that the window has not answered since this was asked last, without the time in which
        it was ready to and others had the processor."""
        self.asking.stdin.write("\n")
        self.asking.stdin.flush()
        return float(self.asking.stdout.readline().split()[1])

    def end(self):
        self.asking.kill()
        self.asking.communicate()


@contextmanager
def pulse_of(screen, process):
    pulse = Pulse(screen, process)
    try:
        yield pulse
    finally:
        pulse.end()
