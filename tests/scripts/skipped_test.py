#!/usr/bin/env python3
"""What scripts/skipped.py names of a run.

    skipped_test.py SCRIPT
"""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv[1]
LOG = """Start testing: Nov 22 03:52 UTC
----------------------------------------------------------
1/4 Testing: program_tests
1/4 Test: program_tests
Output:
/src/some_test.cpp:3: Skipped
only root may
<end of output>
2/4 Testing: desktop_x
2/4 Test: desktop_x
Output:
test_one (__main__.Copying.test_one) ... ok
test_two (__main__.Copying.test_two) ... skipped 'a small disk cannot be made here'
test_three (__main__.Copying.test_three)
What it shows. ... skipped "it's not there"
test_four (__main__.Copying.test_four) ... ok
<end of output>
3/4 Testing: scaled
Output:
/src/other_test.cpp:5: Skipped
no such screen
<end of output>
4/4 Testing: proof
Output:
skipped: vfat (no such kernel here)
<end of output>
"""
CASES = """<?xml version="1.0" encoding="UTF-8"?>
<testsuites><testsuite name="Folders">
<testcase name="aGood" classname="Folders" />
<testcase name="anOther" classname="Folders"><skipped message="some_test.cpp:3&#x0A;only root may"/></testcase>
</testsuite></testsuites>
"""


class Skipped(unittest.TestCase):
    def run_on(self, log, cases=()):
        with tempfile.TemporaryDirectory() as folder:
            os.makedirs(folder + "/Testing/Temporary")
            os.makedirs(folder + "/Testing/cases")
            for path, text in [("Temporary/LastTest.log", log),
                               *[(f"cases/{name}.xml", text) for name, text in cases]]:
                if text is not None:
                    with open(f"{folder}/Testing/{path}", "w", encoding="utf-8") as file:
                        file.write(text)
            return subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True,
                                  check=False)

    def test_every_kind_is_named_with_its_reason(self):
        done = self.run_on(LOG, [("program_tests", CASES), ("not_run", CASES)])
        self.assertEqual(done.returncode, 0)
        self.assertEqual(done.stdout.splitlines(), [
            "Skipped: 5",
            "  only root may:",
            "    program_tests Folders.anOther",
            "  a small disk cannot be made here:",
            "    desktop_x Copying.test_two",
            "  it's not there:",
            "    desktop_x Copying.test_three",
            "  no such screen:",
            "    scaled /src/other_test.cpp:5",
            "  vfat (no such kernel here):",
            "    proof"])

    def test_a_run_that_skips_nothing_says_so(self):
        done = self.run_on("1/1 Testing: a\nOutput:\ntest_x (__main__.A.test_x) ... ok\n")
        self.assertEqual((done.returncode, done.stdout), (0, "Skipped: nothing\n"))

    def test_a_log_that_was_kept_of_an_earlier_run_is_read_like_the_last_one(self):
        with tempfile.TemporaryDirectory() as folder:
            os.makedirs(folder + "/Testing/Temporary")
            os.makedirs(folder + "/Testing/cases")
            for path, text in (("windows.log", LOG), ("Temporary/LastTest.log", ""), ("cases/program_tests.xml", CASES)):
                with open(f"{folder}/Testing/{path}", "w", encoding="utf-8") as file:
                    file.write(text)
            done = subprocess.run([sys.executable, SCRIPT, folder + "/Testing/windows.log", folder], capture_output=True,
                                  text=True, check=False)
        self.assertEqual(done.stdout.splitlines()[:3], ["Skipped: 5", "  only root may:", "    program_tests Folders.anOther"])

    def test_a_run_that_was_not_is_no_run_without_skips(self):
        done = self.run_on(None)
        self.assertEqual((done.returncode, done.stdout), (2, ""))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
