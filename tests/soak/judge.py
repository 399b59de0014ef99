"""Whether a series that was sampled over hours grows, or only wavers.

A leak is a straight line under noise that is nothing like a bell curve: a film's buffers come and go, a page of the
allocator stays for a while, a count steps by one. So the slope is Theil and Sen's, the median of the slopes of all
pairs, which a third of wild samples does not move; and its error is read from the order of those slopes (Sen, 1968),
which asks nothing of how the noise is spread.
"""

import dataclasses
import statistics

# What fills at the first use (a face, a form, a library) is no leak: this share of the run is not looked at.
WARM_UP = 0.25
# Samples beside each other are alike. Their order says something only once stretches of them are one value each.
BLOCKS = 24
# Fewer values than this have too few orders for the error below: nothing is said of them.
FEWEST = 8
# 3.29 deviations: one series in two thousand that does not grow is taken for one that does, by the noise alone. A run
# judges about twenty.
DEVIATIONS = 3.29
# One step, or a cache that fills ever more slowly, raises the whole line, too. What leaks goes on: the later half has
# to rise by this share of the whole slope. A half has nearly three times the error of the whole, so that at the
# least growth that is found at all one leak in five is missed here, and of twice that growth one in thirty.
LATER_SHARE = 1 / 3


@dataclasses.dataclass
class Verdict:
    """Slopes are in the series' unit an hour; the true one lies between `low` and `high` but for the chance above."""
    judged: bool
    grows: bool = False
    slope: float = 0.0
    low: float = 0.0
    high: float = 0.0
    later: float = 0.0


def slopes(times, values):
    """Of all pairs, in order."""
    return sorted((values[late] - values[early]) / (times[late] - times[early])
                  for late in range(len(times)) for early in range(late))


def rate(times, values):
    """The median slope or, for a count of which most pairs are alike, what the means of its ends tell."""
    third = max(1, len(values) // 3)
    ends = (statistics.mean(values[-third:]) - statistics.mean(values[:third])) / \
        (statistics.mean(times[-third:]) - statistics.mean(times[:third]))
    return statistics.median(slopes(times, values)) or ends


def blocks(times, values):
    """The medians of stretches of the samples behind the warm-up, in time."""
    begun = times[0] + WARM_UP * (times[-1] - times[0])
    kept = [(time, value) for time, value in zip(times, values) if time >= begun]
    count = min(BLOCKS, len(kept))
    edges = [number * len(kept) // count for number in range(count + 1)]
    pieces = [kept[start:end] for start, end in zip(edges, edges[1:])]
    return ([statistics.mean(time for time, _ in piece) for piece in pieces],
            [statistics.median(value for _, value in piece) for piece in pieces])


def judge(times, values, least):
    """`times` in hours, rising. `least` is the growth an hour that would be borne for a week."""
    if len(times) < FEWEST:
        return Verdict(judged=False)
    times, values = blocks(times, values)
    count = len(values)
    if count < FEWEST:
        return Verdict(judged=False)
    # The number of pairs that rise less those that fall has this deviation where nothing grows; ties, of which a
    # count has many, make it smaller.
    ties = [values.count(value) for value in set(values)]
    spread = (count * (count - 1) * (2 * count + 5) - sum(tie * (tie - 1) * (2 * tie + 5) for tie in ties)) / 18
    aside = DEVIATIONS * spread ** 0.5
    order = sum((late > early) - (late < early) for at, early in enumerate(values) for late in values[at + 1:])
    ordered = slopes(times, values)
    below = max(0, round((len(ordered) - aside) / 2))
    slope, half = rate(times, values), count // 2
    later = rate(times[half:], values[half:])
    return Verdict(True, order > aside > 0 and slope > least and later >= LATER_SHARE * slope, slope,
                   ordered[below], ordered[-1 - below], later)
