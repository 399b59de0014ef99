#!/usr/bin/env python3
"""The judge of tests/soak on series that were made up.

    judge_test.py FOLDER_OF_THE_JUDGE
"""

import math
import random
import sys
import unittest

sys.path.insert(0, sys.argv[1])
from judge import judge  # noqa: E402

HOURS = [number / 50 for number in range(100)]  # two hours
MEMORY = 28_000  # KB


def noise(chance, deviation=150, alike=0.6):
    """Neighbours are alike, and one sample in thirty is wild, as those of a heap are."""
    value, found = 0.0, []
    for _ in HOURS:
        value = alike * value + chance.gauss(0, deviation)
        found.append(value + (chance.uniform(0, 20 * deviation) if chance.random() < 1 / 30 else 0))
    return found


def grows(series, least=64):
    return judge(HOURS, series, least).grows


class Judge(unittest.TestCase):
    @staticmethod
    def found(series, least=64, of=200):
        """In how many of so many runs, each with a noise of its own, the series is found to grow."""
        return sum(grows(series(random.Random(seed)), least) for seed in range(of))

    def test_what_only_wavers_passes(self):
        self.assertLessEqual(self.found(lambda chance: [MEMORY + each for each in noise(chance)]), 1)

    def test_what_grows_under_the_same_noise_fails(self):
        self.assertGreaterEqual(self.found(lambda chance: [
            MEMORY + 1500 * time + each for time, each in zip(HOURS, noise(chance))]), 198)

    def test_the_slope_is_told_within_its_error(self):
        verdict = judge(HOURS, [MEMORY + 1500 * time + each for time, each in
                                zip(HOURS, noise(random.Random(1)))], 64)
        self.assertLess(verdict.low, 1500)
        self.assertGreater(verdict.high, 1500)
        self.assertAlmostEqual(verdict.slope, 1500, delta=300)

    def test_a_growth_that_a_week_would_bear_passes_however_sure_it_is(self):
        self.assertFalse(grows([MEMORY + 40 * time for time in HOURS]))
        self.assertTrue(grows([MEMORY + 80 * time for time in HOURS]))

    def test_one_step_passes_wherever_it_stands(self):
        for at in (10, 30, 50, 62, 75, 90):
            with self.subTest(at=at):
                quiet = noise(random.Random(at), 40)
                self.assertFalse(grows([MEMORY + (2000 if number > at else 0) + each
                                        for number, each in enumerate(quiet)]))

    def test_a_stair_fails(self):
        self.assertGreaterEqual(self.found(lambda chance: [
            MEMORY + 500 * (number // 12) + each for number, each in enumerate(noise(chance, 40))]), 198)

    def test_a_cache_that_fills_and_is_full_passes(self):
        self.assertLessEqual(self.found(lambda chance: [
            MEMORY + 6000 * (1 - math.exp(-10 * time)) + each
            for time, each in zip(HOURS, noise(chance, 40))]), 2)

    def test_a_count_that_gains_one_every_quarter_of_an_hour_fails(self):
        self.assertTrue(grows([20 + int(4 * time) for time in HOURS], 0.5))

    def test_a_count_that_comes_and_goes_passes(self):
        self.assertLessEqual(self.found(lambda chance: [
            20 + chance.choice((0, 0, 0, 1, 2)) for _ in HOURS], 0.5), 1)

    def test_a_count_that_stands_passes(self):
        verdict = judge(HOURS, [20] * len(HOURS), 0.5)
        self.assertTrue(verdict.judged)
        self.assertFalse(verdict.grows)

    def test_what_falls_passes(self):
        self.assertFalse(grows([MEMORY - 1500 * time for time in HOURS]))

    def test_nothing_is_said_of_a_few_samples(self):
        self.assertFalse(judge(HOURS[:7], range(7), 0).judged)
        self.assertFalse(judge([], [], 0).judged)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
