#!/usr/bin/env python3
"""The program's windows as the desktop sees them: dragged, clicked through, in the tray, with menus.

    test_windows.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import sys

from cases import run
from player import (ABOUT, HELP_PAGE, LIST, MAIN, MINI, PICK_FILE, SETTINGS, TITLE, PlayerTest,
                    Stranger, stairs)
from session import quiet, wait_for

MAIN_WIDTH = int(MAIN["form"][2])


class WindowTest(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.tracks = []
        for number in range(3):
            self.tracks.append(f"{self.music}/track {number}.wav")
            stairs(self.tracks[-1], 20, base=300, step=0)
        self.write_list(self.tracks)

    def stacking(self):
        """The managed windows, lowest first."""
        told = quiet("xprop", "-root", "_NET_CLIENT_LIST_STACKING", env=self.session.env)
        return [int(number, 16) for number in re.findall(r"0x[0-9a-f]+", told)]

    def assert_above(self, upper, lower):
        def above():
            order = self.stacking()
            return order.index(int(upper)) > order.index(int(lower))
        self.assertTrue(wait_for(above, 30), "it is not above the other window")

    def states(self, window):
        return quiet("xprop", "-id", window, "_NET_WM_STATE", env=self.session.env)


class Dragging(WindowTest):
    def drag(self, player, window, handle, steps, between=None):
        player.tool("mousemove", *player.point(window, *handle))
        player.tool("mousedown", 1)
        # A drag begins where the pointer is when the press is handled.
        self.assertTrue(wait_for(lambda: "ABOVE" in self.states(window), 30), "no drag begins")
        for step_x, step_y in steps:
            player.tool("mousemove_relative", "--", step_x, step_y)
        if between:
            between()
        player.tool("mouseup", 1)
        self.assertTrue(player.done(window), "the drag is not handled to its end")

    def assert_moves_both(self, dragged, handle):
        player, main, rows = self.start_with_list()
        before = player.place(main)
        target = (before[0] - 100 + 7, before[1] + 60 - 3)

        def held():
            self.assertTrue(wait_for(lambda: player.place(main) == target, 30),
                            f"{player.place(main)} instead of {target}")
            self.assert_touching(player, main, rows)
            for window in (main, rows):
                self.assertTrue(wait_for(lambda: "ABOVE" in self.states(window), 30),
                                f"{player.title(window)} is not on top: {self.states(window)}")
        steps = [(-10, 6)] * 10 + [(7, -3)]
        self.drag(player, main if dragged == "main" else rows, handle, steps, held)
        for window in (main, rows):
            self.assertTrue(wait_for(lambda: "ABOVE" not in self.states(window), 30),
                            "a dragged window stays on top")
        self.assertEqual(player.place(main), target)
        self.assert_touching(player, main, rows)

    def test_the_main_window_takes_the_list_along(self):
        self.assert_moves_both("main", (150, 13))

    def test_the_list_takes_the_main_window_along(self):
        self.assert_moves_both("list", (150, 13))

    def test_the_ground_of_the_main_window_is_a_handle_too(self):
        self.assert_moves_both("main", (5, 150))

    def test_a_drag_may_leave_the_screen_and_come_back(self):
        player, main, rows = self.start_with_list()
        x, y = player.place(main)
        self.drag(player, main, (150, 13), [(0, -40)] * 10)
        self.assertTrue(wait_for(lambda: player.place(main)[1] < -10, 30))
        self.assert_touching(player, main, rows)
        above = y - player.place(main)[1]
        self.drag(player, main, (5, 150), [(0, above // 10)] * 9 + [(0, above - above // 10 * 9)])
        self.assertTrue(wait_for(lambda: player.place(main) == (x, y), 30), player.place(main))
        self.assert_touching(player, main, rows)

    def test_the_rows_of_the_list_are_no_handle(self):
        player, main, rows = self.start_with_list()
        before = player.place(main), player.place(rows)
        player.tool("mousemove", *player.point(rows, 100, 200))
        player.tool("mousedown", 1)
        self.assertTrue(player.took(rows), "the press is not handled")
        player.tool("mousemove_relative", "--", 30, 20)
        player.tool("mouseup", 1)
        self.assertTrue(player.took(rows))
        self.assertEqual((player.place(main), player.place(rows)), before)

    def test_a_drag_of_the_list_is_seen_when_it_comes_back(self):
        player, main, rows = self.start_with_list()
        self.session.key("F8", rows)
        self.assertTrue(player.gone(rows))
        before = player.place(main)
        self.drag(player, main, (150, 13), [(20, 10)] * 3)
        self.assertTrue(wait_for(lambda: player.place(main) == (before[0] + 60, before[1] + 30), 30))
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assert_touching(player, main, rows)


class Holes(WindowTest):
    def bring_forward(self, player, *windows):
        for window in windows:
            player.tool("windowactivate", "--sync", window)

    def assert_holes(self):
        stranger = Stranger(self.session, 100, 100, 1000, 600)
        self.assertTrue(stranger.window)
        player, main, rows = self.start_with_list()
        for window, form in ((main, MAIN), (rows, LIST)):
            width, height = (int(side) for side in form["form"][2:4])
            holes = [(0, 0), (width - 1, 0), (0, height - 1), (width - 1, height - 1)]
            if window == main:
                solid = [(9, 9), (width // 2, 2), (5, height // 2)]
            else:
                solid = [(9, 9), (width // 2, 2), (width // 2, height // 2)]
            for x, y in holes:
                self.bring_forward(player, rows, main)  # the stranger was clicked
                self.assert_above(window, stranger.window)
                before = len(stranger.presses())
                player.click_at(window, x, y)
                place = player.point(window, x, y)
                self.assertTrue(wait_for(lambda: len(stranger.presses()) == before + 1, 30),
                                f"the hole at {x},{y} holds the click back")
                self.assertEqual(stranger.presses()[-1], place)
            self.bring_forward(player, rows, main)
            self.assert_above(window, stranger.window)
            before = len(stranger.presses())
            for x, y in solid:
                player.click_at(window, x, y)
            # A click beside both windows arrives: so all the earlier ones have been handled.
            player.tool("mousemove", 120, 680)
            player.tool("click", 1)
            self.assertTrue(wait_for(lambda: len(stranger.presses()) > before, 30))
            self.assertEqual(stranger.presses()[before:], [(120, 680)],
                             "a click on the window fell through")

    def test_clicks_in_the_corners_reach_the_window_below(self):
        self.assert_holes()

    def test_clicks_in_the_corners_reach_the_window_below_under_a_compositor(self):
        self.session.spawn(["picom", "--backend", "xrender", "--config", "/dev/null"])
        self.assertTrue(wait_for(lambda: quiet("xdotool", "search", "--class", "picom",
                                               env=self.session.env), 30))
        self.assert_holes()


class MainKeys(WindowTest):
    def test_f8_hides_the_list_and_does_not_bring_it_back(self):
        player, main, rows = self.start_with_list()
        self.session.key("F8", main)
        self.assertTrue(player.gone(rows))
        self.session.key("F8", main)
        self.assertTrue(player.stays_away(lambda: player.form(LIST, 0.1), main))
        player.click(main, "playListButton")
        self.assertTrue(player.form(LIST))

    def test_f12_shows_the_maker_and_locks_the_windows_meanwhile(self):
        player, main, rows = self.start_with_list()
        self.session.key("F12", main)
        about = player.form(ABOUT)
        self.assertTrue(about)
        player.click(main, "nextButton")
        self.session.key("F6", main)
        self.assertEqual(player.title(main), TITLE)
        player.click(about, "close", form=ABOUT)
        self.assertTrue(player.gone(about))
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")

    def test_ctrl_s_opens_the_settings_from_either_window(self):
        player, main, rows = self.start_with_list()
        for window in (main, rows):
            if window == rows:
                player.click_at(rows, 60, 300)
            self.session.key("ctrl+s", window)
            settings = player.form(SETTINGS)
            self.assertTrue(settings)
            self.session.key("F8", main)
            player.click(settings, "close", form=SETTINGS)
            self.assertTrue(player.gone(settings))
            self.assertTrue(player.form(LIST), "a locked window took a key")

    def test_f7_asks_for_a_file_and_plays_it(self):
        player, main = self.start()
        self.session.key("F7", main)
        dialog = self.assert_box(player, PICK_FILE)
        added = self.music + "/another.wav"
        stairs(added, 5, step=0)
        self.type_into(dialog, added)
        self.assert_title(player, main, "4/4")
        self.assert_list(self.tracks + [added])

    def test_f4_stops_and_f2_starts_the_same_track_again(self):
        player, main = self.start()
        self.session.key("F2", main)  # no track is known yet
        # Without a sound to fade in: a stop in the middle of that would leave the player in use.
        player.click(main, "Volume_ICO")
        idle = player.look(main, "play_Time")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")
        self.assertTrue(wait_for(lambda: player.look(main, "play_Time") != idle, 30))
        self.session.key("F4", main)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE, 30))
        self.session.key("F2", main)
        self.assert_title(player, main, "track 0")

    def test_esc_ends_the_program_in_the_middle_of_a_track(self):
        player, main, _ = self.start_with_list()
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)


class MainMenu(WindowTest):
    def open_menu(self, player, main):
        player.click(main, "title", button=3)
        menus = player.menus()
        self.assertTrue(menus, "no menu comes up")
        return menus[0]

    def test_the_mouse_opens_a_submenu_and_chooses_in_it(self):
        player, main = self.start()
        for number in range(3):
            self.session.key("F6", main)
            self.assert_title(player, main, f"track {number}")
        menu = self.open_menu(player, main)
        player.click_at(menu, 30, 14)  # the first entry: play control
        menus = player.menus(2)
        self.assertTrue(menus, "no submenu comes up")
        inner = menus[1]
        player.click_at(inner, 30, -14)  # its last entry: previous
        self.assertIsNotNone(player.menus(0))
        self.assert_title(player, main, "track 1")

    def test_the_mouse_ends_the_program_by_the_last_entry(self):
        player, main = self.start()
        menu = self.open_menu(player, main)
        player.click_at(menu, 30, -14)
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)

    def test_the_keyboard_walks_and_chooses(self):
        player, main = self.start()
        self.open_menu(player, main)
        for key in ("Down", "Right"):
            self.session.key(key)
        self.assertTrue(player.menus(2))
        for key in ("Down", "Down", "Down", "Return"):  # play, pause, stop, next
            self.session.key(key)
        self.assert_title(player, main, "track 0")
        self.open_menu(player, main)
        for key in ("Down", "Right", "Down", "Down", "Return"):  # stop
            self.session.key(key)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE, 30))

    def test_the_entries_for_windows_toggle_them(self):
        player, main = self.start()
        self.open_menu(player, main)
        for key in ("Down", "Down", "Down", "Return"):  # play control, mini mode, list
            self.session.key(key)
        rows = player.form(LIST)
        self.assertTrue(rows)
        self.assert_touching(player, main, rows)
        self.open_menu(player, main)
        for key in ("Down", "Down", "Down", "Return"):
            self.session.key(key)
        self.assertTrue(player.gone(rows))
        centre = (1280 - MAIN_WIDTH) // 2
        self.assertTrue(wait_for(lambda: player.place(main)[0] == centre, 30), "it is not centred")
        self.open_menu(player, main)
        for key in ("Down", "Down", "Return"):
            self.session.key(key)
        self.assertTrue(player.form(MINI), "no mini window")
        self.assertTrue(player.gone(main))

    def test_esc_closes_the_menu_alone(self):
        player, main = self.start()
        self.open_menu(player, main)
        self.session.key("Escape")
        self.assertIsNotNone(player.menus(0))
        self.assertIsNone(player.child.poll())
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")

    def test_the_help_entry_opens_the_settings_with_the_windows_locked(self):
        player, main = self.start()
        self.open_menu(player, main)
        for key in ("Up", "Up", "Return"):  # close, help
            self.session.key(key)
        settings = player.form(SETTINGS)
        self.assertTrue(settings)
        self.assertTrue(player.says(settings, HELP_PAGE), "it is not the page of the help")
        player.click(main, "playListButton")
        self.assertTrue(player.stays_away(lambda: player.form(LIST, 0.1), main))


if __name__ == "__main__":
    run(sys.argv[5:])
