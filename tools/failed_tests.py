"""Prints the end of what each failed test of a run has printed. ./test puts it behind the runner's
summary, where it is found without looking through the whole run. Called with the run's JUnit
report."""

import sys
from xml.etree import ElementTree

LAST_LINES = 20


def main(report):
    for test in ElementTree.parse(report).iter("testcase"):
        if test.get("status") == "fail":
            print(f"\nThe end of {test.get('name')}:")
            for line in test.findtext("system-out", "").rstrip().splitlines()[-LAST_LINES:]:
                print(f"    {line}".rstrip())


if __name__ == "__main__":
    main(sys.argv[1])
