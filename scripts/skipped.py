#!/usr/bin/env python3
"""Names every test that the last run of ctest skipped, with its reason.

    scripts/skipped.py BUILD_FOLDER|LOG...

It reads the log of the last run in each folder, or the log of an earlier one that was kept in its folder Testing, and
what the programs of that run wrote of their cases. The status is 0 whatever was skipped, 2 where there is no log.
"""

import os
import re
import sys
import xml.etree.ElementTree as tree

TESTING = re.compile(r"^\d+/\d+ Testing: (.+)$", re.M)
# As unittest tells it: the name, perhaps a line of its description, and the reason.
SCRIPT = re.compile(r"^(\w+) \((?:__main__\.)?([\w.]+)\)(?:\n[^\n]*?)? \.\.\. "
                    r"skipped ['\"](.*)['\"]$", re.M)
# A case by itself, where a program says no more of it.
PLACE = re.compile(r"^(\S+:\d+): Skipped\n(.*)$", re.M)
# A script's own word.
WORD = re.compile(r"^skipped: (.*)$", re.M)


def skipped_cases(path):
    for case in tree.parse(path).iter("testcase"):
        skipped = case.find("skipped")
        if skipped is not None:
            reason = skipped.get("message") or skipped.text or "no reason given"
            # In front of the reason stands its place in the source.
            yield f"{case.get('classname')}.{case.get('name')}", reason.strip().split("\n")[-1]


def skipped_in(run):
    """Name and reason of each, in the order of the run."""
    kept = run.endswith(".log")
    folder = os.path.dirname(os.path.dirname(run)) if kept else run
    with open(run if kept else f"{folder}/Testing/Temporary/LastTest.log", encoding="utf-8", errors="replace") as file:
        log = file.read()
    parts = TESTING.split(log)[1:]
    for test, output in zip(parts[::2], parts[1::2]):
        cases = f"{folder}/Testing/cases/{test}.xml"
        if os.path.exists(cases):
            found = list(skipped_cases(cases))
        else:
            found = PLACE.findall(output)
        found += [(f"{kind}.{name}" if not kind.endswith(name) else kind, reason)
                  for name, kind, reason in SCRIPT.findall(output)]
        found += [("", word) for word in WORD.findall(output)]
        for name, reason in found:
            yield f"{test} {name}".strip(), reason


def main(runs):
    by_reason = {}
    for run in runs:
        try:
            for name, reason in skipped_in(run):
                names = by_reason.setdefault(reason, [])
                if name not in names:
                    names.append(name)
        except FileNotFoundError:
            print(f"{run}: no tests were run there", file=sys.stderr)
            return 2
    count = sum(len(names) for names in by_reason.values())
    print(f"Skipped: {count or 'nothing'}")
    for reason, names in by_reason.items():
        print(f"  {reason}:")
        for name in names:
            print(f"    {name}")
    return 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1:]))
