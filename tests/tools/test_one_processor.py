"""Commands that keep to the processor that ctest gives to their test."""

import os
import subprocess
from pathlib import Path

TOOLS = Path(__file__).resolve().parents[2] / "tools"
PRINT_PROCESSORS = ["/usr/bin/python3", "-c", "import os; print(*os.sched_getaffinity(0))"]
GIVEN = "CTEST_RESOURCE_GROUP_0_PROCESSORS"


def processors_of_a_command(given):
    """Where tools/one-processor runs a command when it may run anywhere and ctest gave `given`."""
    environment = {name: value for name, value in os.environ.items() if name != GIVEN}
    printed = subprocess.run(
        [TOOLS / "one-processor", *PRINT_PROCESSORS], check=True, text=True, capture_output=True,
        env={**environment, **given},
        preexec_fn=lambda: os.sched_setaffinity(0, range(os.cpu_count()))).stdout
    return {int(number) for number in printed.split()}


def test_a_command_has_the_processor_that_its_test_was_given():
    for number in range(os.cpu_count()):
        assert processors_of_a_command({GIVEN: f"id:{number},slots:2"}) == {number}


def test_a_command_runs_anywhere_where_none_was_given():
    assert processors_of_a_command({}) == set(range(os.cpu_count()))
