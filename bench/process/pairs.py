"""Figures of several runs: what is told of them, and which of two builds' became worse."""

import math
import statistics

# A run judges some sixty figures: the chance that noise alone condemns one of them is held small.
ERROR = 0.005
# Of a figure's size, what nobody would call a change whatever its certainty.
GRAIN = 0.02


def lower_rank(count):
    """How many of the smallest differences may be left out below the bound that holds but for ERROR.

    By the sign test: if the true median difference were nothing, each pair were a coin. None where so
    few pairs can show nothing."""
    chance, rank = 0.0, None
    for heads in range(count + 1):
        chance += math.comb(count, heads) / 2 ** count
        if chance > ERROR:
            break
        rank = heads
    return rank


def judge(old, new, grain):
    """Of two lists of the same length, pair by pair, where less is better: the medians, the median
    difference, its bounds and "worse", "better" or "". `grain` is the smallest change that counts."""
    differences = sorted(after - before for before, after in zip(old, new))
    before, after = statistics.median(old), statistics.median(new)
    middle = statistics.median(differences)
    rank = lower_rank(len(differences))
    low, high = (-math.inf, math.inf) if rank is None else (differences[rank], differences[-1 - rank])
    least = max(grain, GRAIN * abs(before))
    verdict = ""
    if low > 0 and middle > least:
        verdict = "worse"
    elif high < 0 and middle < -least:
        verdict = "better"
    return {"old": before, "new": after, "difference": middle, "low": low, "high": high,
            "verdict": verdict}


def told(values, digits=1):
    """The median, and half of what the middle half of the values spans."""
    if not values:
        return "–"
    middle = f"{statistics.median(values):,.{digits}f}"
    if len(values) < 3:
        return middle
    quarters = statistics.quantiles(values, n=4, method="inclusive")
    return f"{middle} ± {(quarters[2] - quarters[0]) / 2:.{digits}f}"
