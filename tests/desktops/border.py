"""The border between two dense monitors alone: a part of every run."""

import monitors

COLUMNS = {"2 by QT_SCALE_FACTOR": "left, 2 by QT_SCALE_FACTOR"}


def start(manager, column):
    return monitors.start(manager, COLUMNS[column], monitors.Border)
