"""A Windows program on the desk, seen from outside."""

import os
import time
from pathlib import Path

from .waiting import wait_until

TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")


class Program:
    """One started program. Wine runs it in the very process that was started."""

    def __init__(self, process):
        self.process = process

    def alive(self):
        return self.process.poll() is None

    def wait_end(self, limit=30.0):
        """Waits for the end and gives the exit code: its low 8 bits, as the system passes it on."""
        wait_until(lambda: not self.alive(), "the program to end", limit)
        return self.process.returncode

    def kill(self):
        """Ends the program from outside, without a chance to tidy up, and gives its exit code."""
        if self.alive():
            self.process.kill()
        return self.process.wait()

    def cpu_seconds(self):
        """The processor time that the program has used in all its threads."""
        fields = Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS_PER_SECOND

    def cpu_share(self, seconds):
        """The share of one processor that the program takes in the coming `seconds`."""
        begin, used = time.monotonic(), self.cpu_seconds()
        time.sleep(seconds)  # the measured interval itself, not a wait for something
        return (self.cpu_seconds() - used) / (time.monotonic() - begin)

    def pauses(self):
        """How often the main thread has given up the processor so far. It does so several times
        a frame, which makes this a clock that stands still when the program does."""
        pid = self.process.pid
        for line in Path(f"/proc/{pid}/task/{pid}/status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                return int(line.split()[1])
        return 0

    def let_run(self, seconds=0.08, pauses=40):
        """Lets time pass for the program: both by the clock and by what it got to do itself."""
        end, target = time.monotonic() + seconds, self.pauses() + pauses
        wait_until(lambda: time.monotonic() >= end and (not self.alive() or
                                                        self.pauses() >= target),
                   "the program to go on")
