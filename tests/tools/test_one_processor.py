"""Commands that keep to one processor each."""

import os
import subprocess
from pathlib import Path

import pytest

TOOL = Path(__file__).resolve().parents[2] / "tools" / "one-processor"
PRINT_PROCESSORS = ["/usr/bin/python3", "-c",
                    "import os, sys\n"
                    "print(*sorted(os.sched_getaffinity(0)), flush=True)\n"
                    "sys.stdin.read()"]


@pytest.fixture
def start(tmp_path):
    """Starts a command that prints its processors and waits. Gives it, and the processors."""
    started = []

    def start_one():
        command = subprocess.Popen(
            [TOOL, *PRINT_PROCESSORS], text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            env={**os.environ, "TMPDIR": str(tmp_path)},
            preexec_fn=lambda: os.sched_setaffinity(0, range(os.cpu_count())))
        started.append(command)
        return command, [int(number) for number in command.stdout.readline().split()]
    yield start_one
    for command in started:
        end(command)


def end(command):
    command.stdin.close()
    command.wait()
    command.stdout.close()


def test_each_has_a_processor_for_itself_as_far_as_they_go(start):
    count = os.cpu_count()
    own = [start()[1] for _ in range(count)]
    assert sorted(own) == [[number] for number in range(count)]
    assert start()[1] == list(range(count)), "none is left: it runs anywhere"


def test_a_processor_is_free_again_when_its_command_has_ended(start):
    command, first = start()
    end(command)
    assert start()[1] == first
