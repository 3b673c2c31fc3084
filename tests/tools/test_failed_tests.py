"""What is told at the end of a run about the tests that failed."""

import subprocess
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "failed_tests.py"


def told_about(folder, tests):
    """What is told about a run of tests, shell commands by their names, by the runner itself."""
    (folder / "CTestTestfile.cmake").write_text(
        "".join(f'add_test({name} "sh" "-c" "{command}")\n' for name, command in tests.items()))
    subprocess.run(["ctest", "--output-junit", "report.xml"], cwd=folder, stdout=subprocess.DEVNULL)
    return subprocess.run(["/usr/bin/python3", "-B", TOOL, folder / "report.xml"], check=True,
                          text=True, capture_output=True).stdout


def test_the_end_of_each_failed_test_is_told(tmp_path):
    told = told_about(tmp_path, {"early": "seq 30 && false", "good": "echo well", "late": "exit 3"})
    assert told.split() == ["The", "end", "of", "early:", *map(str, range(11, 31)),
                            "The", "end", "of", "late:"]


def test_a_test_that_had_no_end_is_told_as_well(tmp_path):
    tests = {"endless": "echo begun && kill -KILL $$"}
    assert told_about(tmp_path, tests).split() == ["The", "end", "of", "endless:", "begun"]


def test_nothing_is_told_about_tests_that_passed(tmp_path):
    assert told_about(tmp_path, {"good": "echo well"}) == ""
