#!/usr/bin/env python3
"""What scripts/changed.py chooses, and that its table names tests that there are.

    changed_test.py SOURCE_FOLDER BUILD_FOLDER
"""

import fnmatch
import os
import sys
import tempfile
import unittest

SOURCE, BUILD = sys.argv[1:3]
sys.path.insert(0, SOURCE + "/scripts")
sys.dont_write_bytecode = True  # the sources may be for reading only
import changed  # noqa: E402

TESTS = [("unit_a", {"unit"}), ("a_fuzz", {"fuzz"}), ("desktop_list", {"desktop"}),
         ("desktop_video", {"desktop"}), ("sound_rates", {"engine", "recorded"})]
REACH = {"src/playback": ["desktop_list"], "src/playback/Video": ["desktop_video"],
         "src/sound": ["sound_*"]}


class Choosing(unittest.TestCase):
    def choose(self, *files):
        return changed.chosen(TESTS, files, REACH)[2:]

    def test_the_unit_tests_always_run(self):
        self.assertEqual(changed.chosen(TESTS, [], REACH), ["unit_a", "a_fuzz"])

    def test_the_longest_beginning_counts(self):
        self.assertEqual(self.choose("src/playback/Main.cpp"), ["desktop_list"])
        self.assertEqual(self.choose("src/playback/VideoScreen.cpp"), ["desktop_video"])

    def test_each_file_adds_its_own(self):
        self.assertEqual(self.choose("src/sound/a.cpp", "README.md", "src/playback/Main.cpp"),
                         ["desktop_list", "sound_rates"])

    def test_a_script_is_its_own_test(self):
        self.assertEqual(self.choose("tests/desktop/program/test_video.py"), ["desktop_video"])


class TheTable(unittest.TestCase):
    def setUp(self):
        self.reach = changed.table()
        self.tests = [name for name, _ in changed.all_tests(BUILD)]

    def test_asking_for_the_tests_leaves_the_log_of_the_run_that_goes_on(self):
        with tempfile.TemporaryDirectory() as build:
            with open(build + "/CTestTestfile.cmake", "w", encoding="utf-8") as tests:
                tests.write("add_test(one true)\nset_tests_properties(one PROPERTIES LABELS unit)\n")
            os.makedirs(build + "/Testing/Temporary")
            log = build + "/Testing/Temporary/LastTest.log"
            with open(log, "w", encoding="utf-8") as file:
                file.write("goes on")
            self.assertEqual(list(changed.all_tests(build)), [("one", {"unit"})])
            with open(log, encoding="utf-8") as file:
                self.assertEqual(file.read(), "goes on")

    def test_every_name_is_a_test(self):
        for path, names in self.reach.items():
            for name in names:
                self.assertTrue(fnmatch.filter(self.tests, name), f"{path}: there is no {name}")

    def test_every_path_is_there(self):
        for path in self.reach:
            folder, beginning = os.path.split(f"{SOURCE}/{path}")
            self.assertTrue(any(name.startswith(beginning) for name in os.listdir(folder)), path)

    def test_every_source_reaches_something(self):
        for folder, _, names in os.walk(SOURCE + "/src"):
            for name in names:
                path = os.path.relpath(f"{folder}/{name}", SOURCE)
                self.assertTrue(changed.reached_by(path, self.reach), f"{path} reaches no test")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
