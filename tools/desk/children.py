"""The processes that a desk starts, and their certain end."""

import signal
import subprocess

# The kernel ends a child whose parent is gone, so that nothing is left behind by a killed run.
# Sound must come in time even on a busy machine; whoever may not raise priorities goes without.
START = ["setpriv", "--pdeathsig", "KILL", "--", "nice", "-n", "-10"]
END_LIMIT = 5.0


def tidy_up_on_termination():
    """Turns the system's request to end into what Ctrl+C does: every desk then ends in order."""
    def interrupt(*_):
        raise KeyboardInterrupt
    signal.signal(signal.SIGTERM, interrupt)


class Children:
    """Starts processes and ends them in the reverse order. Never touches any other process."""

    def __init__(self, log_folder):
        self.log_folder = log_folder
        self._running = []

    def start(self, name, command, **options):
        """Starts `command` with its output in the log `name`, and gives its Popen."""
        options.setdefault("stdin", subprocess.DEVNULL)
        with open(self.log_folder / f"{name}.log", "ab") as log:
            options.setdefault("stdout", log)
            child = subprocess.Popen(START + command, stderr=log, **options)
        self._running.append(child)
        return child

    def end(self, child):
        """Ends one child: politely first, since Xvfb and the sound server then tidy up."""
        self._running.remove(child)
        if child.poll() is None:
            child.terminate()
        try:
            child.wait(END_LIMIT)
        except subprocess.TimeoutExpired:
            child.kill()
            child.wait()

    def end_all(self):
        """Ends every child, the youngest first."""
        for child in reversed(list(self._running)):
            self.end(child)
