#!/usr/bin/env python3
"""Mouse and drops on denser screens: what the hand points at is what the program takes.

    test_density.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import sys

from cases import run
from listing import LIST_LEFT, LIST_TOP, ROW, ListTest, silence
from player import LIST, MAIN, SETTINGS, Player
from session import Session, quiet, wait_for

FRAME = (2280 / 15, 480 / 15)  # of a settings page, in pixels of the design
ENGLISH = (40, (960 + 165) / 15)


class DenseSession(Session):
    screen = "2560x1600x24"


class Density(ListTest):
    session_kind = DenseSession
    scale = 2

    def setUp(self):
        super().setUp()
        self.session.env["QT_SCALE_FACTOR"] = str(self.scale)

    def form(self, form):
        wanted = [side * self.scale for side in form["form"][2:4]]
        found = wait_for(lambda: next(
            (number for number in self.player.windows()
             if all(abs(a - b) < 2 for a, b in zip(self.player.size(number), wanted))), None), 30)
        self.assertTrue(found, "the window does not come up in its size")
        return found

    def start_dense(self):
        self.player = Player(self.session)
        main = self.form(MAIN)
        self.click(main, MAIN, "playListButton")
        rows = self.form(LIST)
        self.assert_side_by_side(main, rows)
        return main, rows

    def assert_side_by_side(self, main, rows):
        def touch():
            (x, y), (list_x, list_y) = self.player.place(main), self.player.place(rows)
            return (list_x, list_y) == (x + self.player.size(main)[0], y)
        self.assertTrue(wait_for(touch, 30), "the windows do not touch")

    def at(self, x, y):
        return x * self.scale, y * self.scale

    def click(self, window, form, control):
        left, top, width, height = form[control]
        self.player.click_at(window, *self.at(left + width / 2, top + height / 2))

    def row(self, number):
        return self.at(LIST_LEFT + 60, LIST_TOP + ROW * number + ROW / 2)

    def test_a_drag_takes_both_windows_along_to_the_pixel(self):
        main, rows = self.start_dense()
        before = self.player.place(main)
        self.player.tool("mousemove", *self.player.point(main, *self.at(150, 13)))
        self.player.tool("mousedown", 1)
        # A drag begins where the pointer is when the press is handled.
        self.assertTrue(wait_for(lambda: "ABOVE" in quiet(
            "xprop", "-id", main, "_NET_WM_STATE", env=self.session.env), 30), "no drag begins")
        for _ in range(9):
            self.player.tool("mousemove_relative", "--", -13, 7)
        target = (before[0] - 9 * 13, before[1] + 9 * 7)
        # A place between two pixels of the design is rounded.
        moved = wait_for(lambda: all(abs(a - b) <= 1 for a, b in
                                     zip(self.player.place(main), target)), 30)
        self.player.tool("mouseup", 1)
        self.assertTrue(moved, f"{self.player.place(main)} instead of {target}")
        self.assert_side_by_side(main, rows)

    def test_drop_click_and_settings_land_where_they_are_aimed(self):
        main, rows = self.start_dense()
        added = self.music + "/new.wav"
        silence(added)
        self.assertEqual(self.drag(self.player, rows, *self.row(2), [added]), "XdndActionCopy")
        self.assert_list(self.tracks[:2] + [added] + self.tracks[2:])
        self.player.click_at(rows, *self.row(4))
        self.session.key("F2", rows)
        self.assert_title(self.player, main, "5/5")
        self.session.key("ctrl+s", main)
        settings = self.form(SETTINGS)
        self.click(settings, SETTINGS, "languageSet")
        self.player.click_at(settings, *self.at(FRAME[0] + ENGLISH[0], FRAME[1] + ENGLISH[1]))
        self.click(settings, SETTINGS, "qd")
        self.assert_stored("Language", "1")
        self.assertTrue(self.player.gone(settings))


class DensityBetween(Density):
    scale = 1.25


if __name__ == "__main__":
    run(sys.argv[5:])
