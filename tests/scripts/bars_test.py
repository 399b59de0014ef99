#!/usr/bin/env python3
"""What bench/process/bars.py reads on a page of benchmarks.

    bars_test.py FOLDER_OF_THE_SCRIPT
"""

import re
import sys
import unittest

sys.path.insert(0, sys.argv.pop(1))
from bars import BARS, FLOORS, table  # noqa: E402

PAGE = """# Benchmarks

## The windows

| what | figures |
|---|---|
| add a tree, 30000 tracks found | CPU 460 ms (`find`: 250 ms; 1.8 times), X server 20 ms, 700 ms in all |
| select all of 32767 rows | 4.2 ms, at most 6.0 |
| search 32767 rows | 5.1 ms, at most 7.0 |
| scroll 32767 rows, by the wheel, 60 steps a second | a step 1.1 ms, 99 % within 2.0, at most 20.0, work at most 0.5; 0 of 600 frames late |
| scroll 32767 rows, by the thumb, 60 steps a second | a step 1.1 ms, 99 % within 2.0, at most 20.0, work at most 0.5; 2 of 600 frames late |
| a bare window of the list's size, 60 steps a second | a step 0.4 ms, 99 % within 1.0, at most 19.0; 1 of 600 frames late |
| scroll 32767 rows, one step after the other | a step 0.9 ms, 99 % within 1.2, at most 3.0, work at most 0.9 |

## Whole process

| player | first window, ms | main window, ms | own idle | own playing | PSS idle | PSS playing | CPU idle | CPU playing | X playing | wake-ups/s idle | wake-ups/s playing |
|---|---|---|---|---|---|---|---|---|---|---|---|
| Velmora, English texts | 30.0 ± 1.0 | 52.0 ± 1.0 | 5.0 ± 0.1 | 8.0 | 27.1 | 31.0 | 0.01 | 0.38 | 0.08 | 3.0 | 39.0 |
| Velmora, Chinese texts | 31.0 ± 1.0 | 53.0 ± 1.0 | 5.0 ± 0.1 | 8.0 | 27.9 | 33.5 | 0.02 | 0.40 | 0.09 | 3.1 | 40.5 |
| bare windows | 25.0 ± 1.0 | 40.0 ± 1.0 | 2.0 | – | 18.7 | – | 0.10 | – | – | 14.3 | – |
| bare windows, a line of Chinese | 30.0 ± 1.0 | 50.0 ± 1.0 | 3.0 | – | 22.7 | – | 0.20 | – | – | 14.4 | – |
| bare windows, what is seen of playing | 25.0 | 40.0 | 2.0 | 2.1 | 18.7 | 18.8 | 0.10 | 0.31 | 0.07 | 14.3 | 36.5 |
| Audacious | 80.0 | 80.0 | 9.0 | 10.0 | 28.8 | 30.1 | 0.04 | 0.60 | 0.20 | 4.0 | 60.0 |

## Heard

| player | next track heard, ms | seek heard, ms | pause silent, ms |
|---|---|---|---|
| Velmora | 12.0 ± 1.0 | 11.0 ± 0.5 | 18.0 ± 1.0 |
| Audacious | 11.0 ± 1.0 | 9.0 ± 0.5 | 12.0 ± 1.0 |
| mpv | 40.0 ± 1.0 | 40.0 ± 1.0 | 40.0 ± 1.0 |

## A song of 1 GB through its window

| what | wall, s | processor, s |
|---|---|---|
| window | 1.40 | 0.90 |
| longest wait for an answer, ms | 12.0 | |
| floor | 1.20 | 0.80 |
| curl | 0.90 | 0.50 |

## The list at start

| entries | Velmora, ms | Audacious, ms |
|---|---|---|
| 0 | 50.0 ± 1.0 | 80.0 |
| 32,767 | 57.5 ± 1.0 | 90.0 |

## The lyric on the desktop

| screen | line | player | X server | compositor | wake-ups/s |
|---|---|---|---|---|---|
| without a compositor | off | 0.40 | 0.08 | 0.00 | 39 |
| without a compositor | stands | 0.50 | 0.10 | 0.00 | 39 |
| without a compositor | rolls | 1.20 | 1.03 | 0.00 | 60 |

## Films

| round | Velmora | X | engine, quickly heard | X | ratio | bare engine | X | ratio |
|---|---|---|---|---|---|---|---|---|
| median | | | | | 1.02 | | | 1.09 |
"""


def rows(page):
    return {cells[0]: cells[2:] for cells in
            ([cell.strip() for cell in line.strip("|").split("|")] for line in table(page).splitlines()[2:])}


class Bars(unittest.TestCase):
    def test_each_is_read_on_the_page_and_judged(self):
        found = {name: (cells[0], cells[2]) for name, cells in rows(PAGE).items()}
        self.assertEqual(found, {
            "idle, percent of a core": ("0.02", "holds"),
            "idle, wake-ups a second": ("3.1", "holds"),
            "playing, percent of a core": ("0.4", "holds"),
            "playing, the X server": ("0.09", "holds"),
            "playing, wake-ups a second": ("40.5", "missed"),
            "the desktop line adds, percent of a core": ("0.1", "holds"),
            "the desktop line rolls, the X server": ("1.03", "holds"),
            "memory idle, MB in the language that takes most": ("27.9", "holds"),
            "memory playing, MB in the language that takes most": ("33.5", "missed"),
            "splash, times the bare window": ("1.2", "holds"),
            "main window, times the bare window": ("1.3", "holds"),
            "32,767 rows at start, ms more than none": ("7.5", "holds"),
            "a tree is added, times `find`": ("1.8", "holds"),
            "select all of 32,767 rows, ms": ("4.2", "holds"),
            "search 32,767 rows, ms": ("5.1", "missed"),
            "scroll 32,767 rows, late frames of 600": ("2", "missed"),
            "next track, ms behind the best beside it": ("0", "holds"),
            "seek, ms behind the best beside it": ("1", "missed"),
            "pause, ms behind the best beside it": ("4", "missed"),
            "a song of 1 GB, times curl's processor time": ("1.8", "holds"),
            "a film, times the bare engine": ("1.09", "holds"),
        })

    def test_floors_stand_beside_what_has_one(self):
        found = {name: cells[1] for name, cells in rows(PAGE).items() if cells[1]}
        self.assertEqual(found["scroll 32,767 rows, late frames of 600"], "1")
        self.assertEqual(found["a song of 1 GB, times curl's processor time"], "1.6")
        self.assertEqual(found["memory idle, MB in the language that takes most"], "22.7")
        self.assertEqual(found["memory playing, MB in the language that takes most"], "22.7")
        self.assertEqual(found["idle, percent of a core"], "0.1")
        self.assertEqual(found["playing, percent of a core"], "0.31")
        self.assertEqual(found["playing, the X server"], "0.07")
        self.assertEqual(found["playing, wake-ups a second"], "36.5")
        self.assertEqual(set(found), set(FLOORS))

    def test_a_part_that_did_not_run_is_neither_held_nor_missed(self):
        without = re.sub(r"(?s)## Films.*", "", PAGE)
        self.assertEqual(rows(without)["a film, times the bare engine"], ["–", "", ""])

    def test_an_empty_page_has_all_rows(self):
        self.assertEqual(len(rows("")), len(BARS))


if __name__ == "__main__":
    unittest.main()
