"""Prints how much of the product the tests have reached, file by file, and each line that they have
not. Called by ./test --coverage with the build folder; fails where it is too little."""

import json
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
GCOV = "x86_64-w64-mingw32-gcov-posix"
PRODUCT = ("kit", "launcher_logic")
LINES_WANTED, BRANCHES_WANTED = 98.0, 90.0


class Counts:
    """How often each line and each branch of one source file has run."""

    def __init__(self):
        self.lines = defaultdict(int)
        self.branches = defaultdict(int)

    def add(self, line):
        """A header's lines come once for each file that includes it."""
        number = line["line_number"]
        self.lines[number] += line["count"]
        for place, branch in enumerate(line["branches"]):
            self.branches[number, place] += branch["count"]


def gcov_reports(build):
    """What gcov tells of each object of the product; of one that never ran, too."""
    for library in PRODUCT:
        for notes in sorted((build / "CMakeFiles" / f"{library}.dir").rglob("*.gcno")):
            done = subprocess.run([GCOV, "-b", "--json-format", "--stdout", str(notes)],
                                  check=True, capture_output=True, cwd=build)
            yield json.loads(done.stdout)


def count_all(build):
    """The Counts of each product file, by its path below the root."""
    files = defaultdict(Counts)
    for report in gcov_reports(build):
        for file in report["files"]:
            path = (build / file["file"]).resolve()
            if path.is_relative_to(ROOT):
                for line in file["lines"]:
                    files[str(path.relative_to(ROOT))].add(line)
    return dict(sorted(files.items()))


def share(counts):
    """Reached, all, and percent."""
    reached = sum(count > 0 for count in counts)
    return reached, len(counts), 100.0 * reached / len(counts) if counts else 100.0


def print_row(name, lines, branches):
    print(f"{name:32} {lines[0]:5} of {lines[1]:5} {lines[2]:6.1f} %"
          f"   {branches[0]:5} of {branches[1]:5} {branches[2]:6.1f} %")


def print_table(files):
    """Prints the table and gives the two percentages of its last row."""
    print(f"\n{'File':32} {'Lines':>16}          {'Branches':>18}")
    for name, counts in files.items():
        print_row(name, share(counts.lines.values()), share(counts.branches.values()))
    lines = share([count for counts in files.values() for count in counts.lines.values()])
    branches = share([count for counts in files.values() for count in counts.branches.values()])
    print_row("All", lines, branches)
    return lines[2], branches[2]


def print_unreached_lines(files):
    print("\nLines that no test has reached:")
    for name, counts in files.items():
        source = (ROOT / name).read_text().splitlines()
        for number in sorted(number for number, count in counts.lines.items() if count == 0):
            print(f"  {name}:{number}: {source[number - 1].strip()}")


def main(build):
    files = count_all(Path(build).resolve())
    lines, branches = print_table(files)
    print_unreached_lines(files)
    if lines < LINES_WANTED or branches < BRANCHES_WANTED:
        return (f"coverage: {LINES_WANTED:g} % of lines and {BRANCHES_WANTED:g} % of branches "
                "are wanted")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
