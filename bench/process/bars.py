#!/usr/bin/env python3
"""Reads the page of the benchmarks and prints the bars that this player sets itself, with what was measured.

    bars.py PAGE

A figure that is not on the page is shown as a dash: its part did not run.
"""

import re
import sys

NUMBER = re.compile(r"-?\d[\d,]*(?:\.\d+)?")
# Columns of the table of whole processes, behind the name.
FIRST, MAIN, OWN_IDLE, OWN_PLAYING, IDLE, PLAYING, CPU_IDLE, CPU, X, WAKES_IDLE, WAKES = range(1, 12)


class Missing(Exception):
    """The page lacks what was asked for."""


def numbers(text):
    return [float(found.replace(",", "")) for found in NUMBER.findall(text)]


class Page:
    def __init__(self, text):
        self.sections = {}
        title = ""
        for line in text.splitlines():
            if line.startswith("## "):
                title = line[3:]
            elif line.startswith("| "):
                cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
                self.sections.setdefault(title, []).append(cells)

    def rows(self, section, *begin):
        """The rows of a section whose first cells begin so."""
        return [row for row in self.sections.get(section, []) if len(row) > len(begin) and
                all(cell.startswith(wanted) for cell, wanted in zip(row, begin))]

    def figure(self, section, begin, column, number=0):
        """The first figure of a cell (its median, ahead of the spread), or a later one."""
        for row in self.rows(section, *begin):
            found = numbers(row[column]) if column < len(row) else []
            if len(found) > number:
                return found[number]
        raise Missing

    def whole(self, player, column):
        return self.figure("Whole process", (player,), column)

    def most(self, column):
        """Of this player in each language that was measured."""
        found = [numbers(row[column])[:1] for row in self.rows("Whole process", "Velmora")]
        if not any(found):
            raise Missing
        return max(value for cell in found for value in cell)

    def start_ratio(self, column):
        return self.whole("Velmora, English", column) / self.whole("bare windows", column)

    def list_start(self):
        return (self.figure("The list at start", ("32,767",), 1) -
                self.figure("The list at start", ("0",), 1))

    def late(self, begin="scroll"):
        rows = [numbers(row[1].split(";")[1])[0] for row in self.rows("The windows", begin)
                if "frames late" in row[1]]
        if not rows:
            raise Missing
        return max(rows)

    def behind_best(self, column):
        """Milliseconds behind the best of the others, less the spreads of both."""
        own = numbers(self.one("Heard", "Velmora")[column])
        others = [numbers(row[column]) for row in self.rows("Heard")
                  if not row[0].startswith(("Velmora", "player", "---"))]
        best = min((found for found in others if found), default=None)
        if not own or best is None:
            raise Missing
        return max(own[0] - best[0] - sum(own[1:2]) - sum(best[1:2]), 0.0)

    def one(self, section, begin):
        rows = self.rows(section, begin)
        if not rows:
            raise Missing
        return rows[0]

    def song(self, beside):
        section = "A song of 1 GB through its window"
        return self.figure(section, ("window",), 2) / self.figure(section, (beside,), 2)

    def line(self, screen, line, column):
        return self.figure("The lyric on the desktop", (screen, line), column)


BARE = "without"
SEEN = "bare windows, what is seen of playing"
BARS = [
    ("idle, percent of a core", 0.10, lambda page: page.most(CPU_IDLE)),
    ("idle, wake-ups a second", 15, lambda page: page.most(WAKES_IDLE)),
    ("playing, percent of a core", 0.45, lambda page: page.most(CPU)),
    ("playing, the X server", 0.12, lambda page: page.most(X)),
    ("playing, wake-ups a second", 40, lambda page: page.most(WAKES)),
    ("the desktop line adds, percent of a core", 0.15,
     lambda page: page.line(BARE, "stands", 2) - page.line(BARE, "off", 2)),
    ("the desktop line rolls, the X server", 1.2, lambda page: page.line(BARE, "rolls", 3)),
    ("memory idle, MB in the language that takes most", 28, lambda page: page.most(IDLE)),
    ("memory playing, MB in the language that takes most", 32, lambda page: page.most(PLAYING)),
    ("splash, times the bare window", 1.3, lambda page: page.start_ratio(FIRST)),
    ("main window, times the bare window", 1.3, lambda page: page.start_ratio(MAIN)),
    ("32,767 rows at start, ms more than none", 8, Page.list_start),
    ("a tree is added, times `find`", 2,
     lambda page: page.figure("The windows", ("add a tree",), 1, 2)),
    ("select all of 32,767 rows, ms", 5, lambda page: page.figure("The windows", ("select all",), 1)),
    ("search 32,767 rows, ms", 5, lambda page: page.figure("The windows", ("search ",), 1)),
    ("scroll 32,767 rows, late frames of 600", 0, Page.late),
    ("next track, ms behind the best beside it", 0, lambda page: page.behind_best(1)),
    ("seek, ms behind the best beside it", 0, lambda page: page.behind_best(2)),
    ("pause, ms behind the best beside it", 0, lambda page: page.behind_best(3)),
    ("a song of 1 GB, times curl's processor time", 2, lambda page: page.song("curl")),
    ("a film, times the bare engine", 1.10, lambda page: page.figure("Films", ("median",), 8)),
]
# What no program with this toolkit or library goes below, beside the figure that has it as its floor.
FLOORS = {
    "idle, percent of a core": lambda page: page.whole("bare windows", CPU_IDLE),
    "idle, wake-ups a second": lambda page: page.whole("bare windows", WAKES_IDLE),
    "playing, percent of a core": lambda page: page.whole(SEEN, CPU),
    "playing, the X server": lambda page: page.whole(SEEN, X),
    "playing, wake-ups a second": lambda page: page.whole(SEEN, WAKES),
    "memory idle, MB in the language that takes most":
        lambda page: page.whole("bare windows, a line of Chinese", IDLE),
    "memory playing, MB in the language that takes most":
        lambda page: page.whole("bare windows, a line of Chinese", IDLE),
    "splash, times the bare window": lambda page: 1.0,
    "main window, times the bare window": lambda page: 1.0,
    "scroll 32,767 rows, late frames of 600":
        lambda page: page.late("a bare window of the list's size"),
    "a song of 1 GB, times curl's processor time":
        lambda page: page.song("curl") / page.song("floor"),
}


def shown(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


def taken(page, ask):
    try:
        return ask(page)
    except (Missing, IndexError, ZeroDivisionError):
        return None


def table(text):
    page = Page(text)
    rows = ["| what | bar | measured | floor | |", "|---|---|---|---|---|"]
    for name, bar, ask in BARS:
        value = taken(page, ask)
        floor = taken(page, FLOORS[name]) if name in FLOORS else None
        verdict = "" if value is None else "holds" if value <= bar + 1e-9 else "missed"
        rows.append(f"| {name} | {shown(bar)} | {'–' if value is None else shown(value)} | "
                    f"{'' if floor is None else shown(floor)} | {verdict} |")
    return "\n".join(rows)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        text = file.read()
    print("\n## The bars\n")
    print("What this player is held to, at most, beside what this run measured. A floor is the least possible: two bare "
          "windows of the toolkit (for memory with a line of Chinese, for playing with what is seen of it and no sound), "
          "or the least program with the same library and the same writes.\n")
    print(table(text))


if __name__ == "__main__":
    main()
