#!/usr/bin/env python3
"""What bench/process/pairs.py says of runs of two builds.

    pairs_test.py FOLDER_OF_THE_SCRIPT
"""

import random
import sys
import unittest

sys.path.insert(0, sys.argv.pop(1))
from pairs import judge, lower_rank, told  # noqa: E402


class Judge(unittest.TestCase):
    def test_a_figure_that_is_worse_in_every_pair_is_found_through_the_machines_moods(self):
        moods = [10, 30, 12, 55, 11, 18, 40, 13, 25]
        found = judge(moods, [mood + 2 for mood in moods], 0.5)
        self.assertEqual(found["verdict"], "worse")
        self.assertEqual(found["difference"], 2)

    def test_a_figure_that_is_better_in_every_pair_is_told(self):
        self.assertEqual(judge([10] * 9, [8, 9, 8, 9, 8, 9, 8, 9, 8], 0.5)["verdict"], "better")

    def test_one_pair_that_disagrees_is_enough_to_say_nothing_of_nine(self):
        self.assertEqual(judge([10] * 9, [12] * 8 + [9.9], 0.5)["verdict"], "")

    def test_of_twelve_pairs_one_may_disagree(self):
        self.assertEqual(judge([10] * 12, [12] * 11 + [9], 0.5)["verdict"], "worse")
        self.assertEqual(judge([10] * 12, [12] * 10 + [9, 9], 0.5)["verdict"], "")

    def test_less_than_the_grain_or_a_fiftieth_is_no_change(self):
        self.assertEqual(judge([10] * 9, [10.4] * 9, 0.5)["verdict"], "")
        self.assertEqual(judge([100] * 9, [101.5] * 9, 0.5)["verdict"], "")
        self.assertEqual(judge([100] * 9, [102.5] * 9, 0.5)["verdict"], "worse")

    def test_seven_pairs_show_nothing(self):
        self.assertIsNone(lower_rank(7))
        self.assertEqual(judge([1] * 7, [9] * 7, 0.5)["verdict"], "")

    def test_eight_pairs_show_what_all_of_them_say(self):
        self.assertEqual(lower_rank(8), 0)

    def test_noise_alone_is_hardly_ever_called_a_change(self):
        chance = random.Random(20261122)
        worse = 0
        for _ in range(2000):
            old, new = ([chance.lognormvariate(3, 0.2) for _ in range(9)] for _ in range(2))
            worse += judge(old, new, 0)["verdict"] == "worse"
        self.assertLess(worse, 20)


class Told(unittest.TestCase):
    def test_are_the_median_and_half_of_the_middle_half(self):
        self.assertEqual(told([1, 2, 3, 4, 50]), "3.0 ± 1.0")
        self.assertEqual(told([1234.5], 0), "1,234")
        self.assertEqual(told([]), "–")


if __name__ == "__main__":
    unittest.main()
