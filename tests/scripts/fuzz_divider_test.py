#!/usr/bin/env python3
"""How the fuzz run divides its time.

    fuzz_divider_test.py FOLDER_OF_THE_FUZZ_RUN
"""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv[1])
from fuzz import EVEN_SHARE, Target, choose  # noqa: E402


def said(first, last, runs):
    return (f"#2\tINITED cov: 9 ft: {first} corp: 1/1b\n#8\tNEW    cov: 9 ft: {last} corp: 2/9b\n"
            f"#9\tDONE   cov: 9 ft: {last} corp: 2/9b\nstat::number_of_executed_units: {runs}\n")


class Divider(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.everyone = [Target(name, os.path.join(folder.name, name), folder.name) for name in ("rich", "poor", "none")]

    def spend(self, slices):
        """What each gets of so many slices: one finds much, one a little, one nothing."""
        found = {"rich": 100, "poor": 10, "none": 0}
        for _ in range(slices):
            chosen = choose(self.everyone, self.everyone)
            chosen.take(said(50, 50 + found[chosen.name], 1000), 20)
        return [each.seconds / (20 * slices) for each in self.everyone]

    def test_each_is_looked_at_once_first(self):
        self.assertEqual(self.spend(3), [1 / 3] * 3)

    def test_the_one_that_finds_most_gets_most_and_each_its_share(self):
        rich, poor, none = self.spend(300)
        self.assertGreater(rich, 0.7)
        for share in (poor, none):
            self.assertAlmostEqual(share, EVEN_SHARE / 3, delta=0.02)

    def test_one_that_finds_nothing_more_gives_way(self):
        self.spend(30)
        rich, poor, _ = self.everyone
        for _ in range(6):
            rich.take(said(50, 50, 1000), 20)
        for each in self.everyone:
            each.seconds = 1000  # nobody is owed anything
        self.assertIs(choose(self.everyone, self.everyone), poor)

    def test_inputs_and_features_are_counted(self):
        rich = self.everyone[0]
        rich.take(said(50, 80, 1234), 10)
        rich.take(said(80, 85, 1000), 10)
        self.assertEqual((rich.runs, rich.new, rich.seconds), (2234, 35, 20))

    def test_what_it_found_before_is_nothing_new_however_long_it_takes_to_read(self):
        rich = self.everyone[0]
        reading = "#1024\tpulse  cov: 9 ft: 10 exec/s: 20\n#2048\tpulse  cov: 9 ft: 70 exec/s: 20\n"
        rich.take(reading + said(80, 85, 1000), 10)
        self.assertEqual(rich.new, 5)
        rich.take(reading, 10)
        self.assertEqual(rich.new, 5)

    def test_what_says_nothing_found_nothing(self):
        rich = self.everyone[0]
        rich.take("", 10)
        self.assertEqual((rich.runs, rich.new, rich.worth), (0, 0, 0))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
