"""A Windows program on the desk, seen from outside."""

import os
import signal
import time
from contextlib import suppress
from pathlib import Path

from .waiting import wait_until

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")


class Program:
    """One started program. `starter` is the process that waits for it and has its exit code, `find`
    gives the program's own process id, or None as long as it does not run."""

    def __init__(self, starter, find):
        self._starter = starter
        self._find = find
        self._pid = None

    @property
    def pid(self):
        if self._pid is None:
            self._pid = wait_until(self._find, "the program to run")
        return self._pid

    def alive(self):
        return self._starter.poll() is None

    def wait_end(self, limit=120.0):
        """Waits for the end and gives the exit code: its low 8 bits, as the system passes it on."""
        wait_until(lambda: not self.alive(), "the program to end", limit)
        return self._starter.returncode

    def kill(self):
        """Ends the program from outside, without a chance to tidy up, and gives its exit code."""
        def seen():
            self._pid = self._pid or self._find()
            return self._pid or not self.alive()
        wait_until(seen, "the program to run")
        if self._pid and self.alive():
            with suppress(ProcessLookupError):  # it may have ended just before its starter
                os.kill(self._pid, signal.SIGKILL)
        return self.wait_end()

    def cpu_seconds(self):
        """The processor time that the program has used in all its threads."""
        fields = Path(f"/proc/{self.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS_PER_SECOND

    def cpu_share(self, seconds):
        """The share of one processor that the program takes in the coming `seconds`."""
        begin, used = time.monotonic(), self.cpu_seconds()
        time.sleep(seconds)  # the measured interval itself, not a wait for something
        return (self.cpu_seconds() - used) / (time.monotonic() - begin)

    def pauses(self):
        """How often the main thread has given up the processor so far. It does so four or five
        times a frame, which makes this a clock that stands still when the program does."""
        try:
            status = Path(f"/proc/{self.pid}/task/{self.pid}/status").read_text()
        except OSError:
            return 0  # it has ended
        return next(int(line.split()[1]) for line in status.splitlines()
                    if line.startswith("voluntary_ctxt_switches"))

    def let_run(self, seconds=0.08, pauses=20):
        """Lets time pass for the program: both by the clock and by what it got to do itself."""
        end, target = time.monotonic() + seconds, self.pauses() + pauses
        wait_until(lambda: time.monotonic() >= end and (not self.alive() or
                                                        self.pauses() >= target),
                   "the program to go on")
