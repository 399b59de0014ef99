#!/usr/bin/env python3
"""Names the tests that a change can break soonest, as a pattern for ctest -R.

    scripts/changed.py BUILD_FOLDER [COMMIT]

It takes what differs from the commit (HEAD where none is named), new files included, and looks up
in tests/reach.txt what each file reaches. The unit tests and the replayed fuzz targets are named
always. The status is 2 where git does not know the commit.
"""

import fnmatch
import json
import os
import re
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ALWAYS = {"unit", "fuzz"}
SCRIPT = re.compile(r"tests/desktop/program/test_(\w+)\.py")


def changed_files(commit):
    found = []
    for command in (["diff", "--name-only", "-z", commit, "--"],
                    ["ls-files", "--others", "--exclude-standard", "-z"]):
        found += subprocess.run(["git", "-C", HERE, *command], check=True, text=True,
                                stdout=subprocess.PIPE).stdout.split("\0")[:-1]
    return found


def table():
    reach = {}
    with open(HERE + "/tests/reach.txt", encoding="utf-8") as file:
        for line in file:
            words = line.split("#")[0].split()
            if words:
                reach[words[0]] = words[1:]
    return reach


def reached_by(path, reach):
    """The names, or patterns of names, for a changed file."""
    script = SCRIPT.fullmatch(path)
    if script:
        return ["desktop_" + script[1]]
    beginnings = [each for each in reach if path.startswith(each)]
    return reach[max(beginnings, key=len)] if beginnings else []


def all_tests(build):
    """Name and labels of each. ctest is asked from a folder of its own: where it is only asked, too, it begins the
    log anew, in which a run that goes on in the build folder writes what was skipped."""
    with tempfile.TemporaryDirectory() as folder:
        with open(f"{folder}/CTestTestfile.cmake", "w", encoding="utf-8") as tests:
            tests.write(f"subdirs([==[{os.path.abspath(build)}]==])\n")
        told = json.loads(subprocess.run(["ctest", "--test-dir", folder, "--show-only=json-v1"], check=True,
                                         stdout=subprocess.PIPE).stdout)
    for test in told["tests"]:
        labels = next((each["value"] for each in test.get("properties", [])
                       if each["name"] == "LABELS"), [])
        yield test["name"], set(labels)


def chosen(tests, files, reach):
    patterns = {pattern for path in files for pattern in reached_by(path, reach)}
    return [name for name, labels in tests
            if labels & ALWAYS or any(fnmatch.fnmatchcase(name, each) for each in patterns)]


def main(build, commit="HEAD"):
    try:
        files = changed_files(commit)
    except subprocess.CalledProcessError:
        return 2
    names = chosen(all_tests(build), files, table())
    print("^(" + "|".join(re.escape(name) for name in names) + ")$")
    return 0


if __name__ == "__main__":
    if not 2 <= len(sys.argv) <= 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
