#!/usr/bin/env python3
"""Which cases of a script of desktop tests a run takes.

    cases_test.py FOLDER_OF_CASES_PY
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

FOLDER = sys.argv[1]
SCRIPT = """
import sys, unittest
from cases import run
class Short(unittest.TestCase):
    def test_a(self): pass
    def test_b(self): pass
class Long(unittest.TestCase):
    def test_c(self): pass
    def test_d(self): self.skipTest("not today")
class Wrong(unittest.TestCase):
    def test_e(self): self.fail("broken")
if __name__ == "__main__":
    run(sys.argv[1:])
"""


class Cases(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        os.makedirs(self.folder + "/tests/desktop/program")
        shutil.copy(FOLDER + "/cases.py", self.folder + "/tests/desktop/program/cases.py")
        with open(self.folder + "/tests/desktop/program/test_some.py", "w", encoding="utf-8") as file:
            file.write(SCRIPT)

    def run_with(self, left, *words, **env):
        with open(self.folder + "/tests/whole.txt", "w", encoding="utf-8") as file:
            file.write(left)
        environment = {key: value for key, value in os.environ.items() if key != "VELMORA_WHOLE"}
        return subprocess.run([sys.executable, self.folder + "/tests/desktop/program/test_some.py", *words],
                              env={**environment, **env}, capture_output=True, text=True, check=False)

    def taken(self, done):
        return [line.split(" ")[0] for line in done.stderr.splitlines() if " ... " in line]

    def test_those_that_are_named_for_the_script_are_left_out_and_counted(self):
        done = self.run_with("# why\n\nsome Short.test_b # long\nother Short.test_a\nsome Wrong\n")
        self.assertEqual((self.taken(done), done.returncode), (["test_c", "test_d", "test_a"], 0))
        self.assertEqual(done.stdout, "2 cases are left to the whole run.\n")

    def test_the_whole_run_takes_all(self):
        done = self.run_with("some Short.test_b\n", VELMORA_WHOLE="1")
        self.assertEqual((self.taken(done), done.returncode), (["test_c", "test_d", "test_a", "test_b", "test_e"], 1))
        self.assertEqual(done.stdout, "")

    def test_a_case_that_is_asked_for_by_name_or_pattern_is_taken(self):
        for words in (["Short.test_b"], ["-k", "test_b"]):
            self.assertEqual(self.taken(self.run_with("some Short.test_b\n", *words)), ["test_b"], words)

    def test_a_name_that_no_case_has_fails(self):
        for left in ("some Short.test_x\n", "some Shorter\n"):
            done = self.run_with(left)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn(left.split()[1], done.stderr)

    def test_a_case_that_fails_fails_the_run_and_each_right_one_tells_its_time(self):
        done = self.run_with("")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"test_a .* \.\.\. ok \(\d+\.\d s\)\n")
        self.assertRegex(done.stderr, r"test_d .* \.\.\. skipped 'not today'\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
