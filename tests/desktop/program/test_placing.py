#!/usr/bin/env python3
"""What window managers, monitors and a guest server make of the places of the real program's windows.

    test_placing.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import re
import signal
import subprocess
import sys
from unittest import mock

from cases import run
from player import DRAG, LIST, MAIN, MINI, TITLE, Player, PlayerTest, Stranger, said, stairs
from session import Session, let_pass, quiet, rest, wait_for

DEAF = os.path.join(os.path.dirname(os.path.abspath(DRAG)), "velmora_deaf")
WIDTH = int(MAIN["form"][2])


class Placing(PlayerTest):
    def setUp(self):
        super().setUp()
        self.track = f"{self.music}/track.wav"
        stairs(self.track, 60, step=0)
        self.write_list([self.track])

    def haul(self, player, by, steps=12):
        for _ in range(steps):
            player.tool("mousemove_relative", "--", round(by[0] / steps), round(by[1] / steps))


class HeldAtAnEdge(Placing):
    """openbox lets no window leave the screen by more than nine tenths, whatever the program asks."""

    def test_the_pair_comes_back_together_from_every_edge(self):
        player, main, rows = self.start_with_list()
        home = player.place(main)
        for number, out in enumerate(((-700, 0), (700, 0), (0, 420), (0, -420), (540, 420))):
            with self.subTest(out=out):
                grip = player.point(main if number % 2 == 0 else rows, 150, 12)
                player.tool("mousemove", *grip)
                player.tool("mousedown", 1)
                self.haul(player, out)
                # The hand comes to rest there, and moves a little.
                for step in (1, -1) * 3:
                    self.assertTrue(
                        rest(lambda: (player.place(main), player.place(rows)), still=0.1))
                    player.tool("mousemove_relative", "--", step, step)
                self.haul(player, (-out[0], -out[1]))
                player.tool("mousemove", *grip)
                player.tool("mouseup", 1)
                self.assert_touching(player, main, rows)
                self.assertTrue(wait_for(lambda: player.place(main) == home),
                                f"it stands at {player.place(main)}, not at {home}")

    def test_a_manager_that_answers_late_does_not_part_the_pair(self):
        player, main, rows = self.start_with_list()
        home = player.place(main)
        grip = player.point(main, 470, 150)
        player.tool("mousemove", *grip)
        player.tool("mousedown", 1)
        self.haul(player, (-504, 0))
        self.assertTrue(rest(lambda: player.place(main)))
        manager = self.session.manager
        manager.send_signal(signal.SIGSTOP)
        try:
            player.tool("mousemove", 0, grip[1])
            let_pass(1.5)  # longer than any manager would seem to need
        finally:
            manager.send_signal(signal.SIGCONT)
        self.assertTrue(rest(lambda: player.place(main)))
        player.tool("mousemove", *grip)
        player.tool("mouseup", 1)
        self.assert_touching(player, main, rows)
        self.assertTrue(wait_for(lambda: player.place(main) == home),
                        f"it stands at {player.place(main)}, not at {home}")

    def test_a_drag_starts_where_the_hand_took_hold_though_the_player_was_busy(self):
        player, main, rows = self.start_with_list()
        x, y = player.place(main)
        player.tool("mousemove", *player.point(main, 150, 12))
        player.child.send_signal(signal.SIGSTOP)
        try:
            # Straight to the screen: nobody answers for the player now.
            for words in (("mousedown", 1), ("mousemove_relative", 100, 50)):
                subprocess.run(["xdotool", *map(str, words)], env=self.session.env, check=True)
        finally:
            player.child.send_signal(signal.SIGCONT)
        player.took(main)
        player.tool("mouseup", 1)
        self.assertTrue(wait_for(lambda: player.place(main) == (x + 100, y + 50)),
                        f"from {(x, y)} by (100, 50) it came to {player.place(main)}")
        self.assert_touching(player, main, rows)

    def test_a_window_that_is_held_takes_its_clicks_where_it_is_seen(self):
        player, main = self.start()
        player.tool("mousemove", *player.point(main, 470, 150))
        player.tool("mousedown", 1)
        self.haul(player, (-1000, 0))
        place = wait_for(lambda: player.place(main)[0] < 0 and player.place(main))
        self.assertTrue(place)
        player.tool("mouseup", 1)
        shown = -place[0]  # columns beyond the edge
        button = MAIN["playListButton"]
        self.assertGreater(shown, 0)
        self.assertTrue(rest(lambda: player.place(main), still=0.5))
        # What is left in sight is dragged, not thrown about.
        player.tool("mousemove", *player.point(main, 470, 150))
        player.tool("mousedown", 1)
        self.haul(player, (600, 0))
        player.tool("mouseup", 1)
        self.assertTrue(wait_for(lambda: abs(player.place(main)[0] - place[0] - 600) < 3),
                        f"from {place} by 600 it came to {player.place(main)}")
        player.click_at(main, button[0] + button[2] / 2, button[1] + button[3] / 2)
        self.assertTrue(player.form(LIST), "its button does not answer")


class Deaf(Session):
    """Its window manager takes requests for another place of what is shown, and tells nothing."""
    how = ()

    def __init__(self, window_manager, sound):
        super().__init__(window_manager=False, sound=sound)
        self.manager = subprocess.Popen([DEAF, *self.how], env=self.env, stdout=subprocess.PIPE, start_new_session=True)
        self.children.append(self.manager)
        self.manager.stdout.readline()


class Frames(Deaf):
    """It moves frames, and tells the windows in them nothing, either."""
    how = ("frames",)


class Untold(Placing):
    def setUp(self):
        super().setUp()
        self.enterContext(mock.patch("session.TAKEN", None))  # it answers nothing at all
        self.addCleanup(lambda: self.session.manager.stdout.close())


class LeftWhereItIs(Untold):
    session_kind = Deaf

    def test_a_window_that_nobody_moves_takes_its_clicks_where_it_is_seen(self):
        player, main = self.start()
        home = player.place(main)
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assertTrue(rows, "the list does not come up")
        self.assertTrue(rest(lambda: player.place(main), still=2) == home, "somebody moves it")
        player.click(main, "playListButton")
        self.assertTrue(wait_for(lambda: not player.form(LIST, 0.1)), "its button does not answer")
        # Closing that put the window back: there it is at home.
        let_pass(2)
        player.click(main, "mini_Button")
        self.assertTrue(player.form(MINI), "its button does not answer")


class MovedInItsFrame(Untold):
    session_kind = Frames

    def test_a_press_that_meets_a_window_elsewhere_has_it_looked_for_at_once(self):
        player, main = self.start()
        tree = quiet("xwininfo", "-tree", "-id", main, env=self.session.env)
        frame = re.search(r"Parent window id: (0x[0-9a-f]+)", tree)[1]
        x, y = player.place(main)
        let_pass(2)  # the program looks by itself a moment after it has come, and not again
        player.move(frame, x + 100, y + 150)
        self.assertEqual(player.place(main), (x + 100, y + 150), "it does not stand in its frame")
        player.click(main, "mini_Button")
        self.assertTrue(player.form(MINI), "its button does not answer")


class Minimised(Placing):
    def restore(self, main):
        quiet("xdotool", "windowactivate", main, env=self.session.env)

    def test_after_a_minimise_the_strip_brings_the_main_window_in_full_view(self):
        player, main = self.start()
        player.click(main, "minimizeButton")
        self.assertTrue(player.gone(main))
        self.restore(main)
        self.assertTrue(player.window())
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main))
        player.tool("mousemove", player.place(strip)[0] + 40, 0)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == 0))
        player.click(strip, "mini_Button", form=MINI)
        self.assertTrue(player.window(), "the main window comes up minimised")

    def test_a_list_that_another_program_minimised_comes_back_by_its_button(self):
        player, main, rows = self.start_with_list()
        quiet("xdotool", "windowminimize", rows, env=self.session.env)
        self.assertTrue(player.gone(rows), "nothing minimises it")
        player.click(main, "playListButton")
        if not player.form(LIST, 10):
            player.click(main, "playListButton")
        self.assertTrue(player.form(LIST), "the list is lost")


class Unminimised(Placing):
    """Where nothing is minimised the window goes on as it was."""

    def session_kind(self, window_manager, sound):
        return Session(window_manager=False, sound=sound)

    def test_after_its_button_it_takes_moves_and_clicks_as_before(self):
        player, main = self.start()
        player.click(main, "minimizeButton")
        let_pass(1.5)  # the manager is given a second for it
        player.move(main, 400, 40)
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assertTrue(rows, "its button does not answer")
        player.click_at(main, 150, 12, times=2)
        self.assertTrue(player.form(MINI), "its title does not answer")


class Entry(Placing):
    """While the strip stands for the main window the task bar has an entry for it."""

    def entries(self):
        listed = quiet("xprop", "-root", "_NET_CLIENT_LIST", env=self.session.env)
        return [window for window in re.findall("0x[0-9a-f]+", listed)
                if "Iconic" in quiet("xprop", "-id", window, "WM_STATE", env=self.session.env)]

    def entry(self):
        return rest(lambda: next(iter(self.entries()), None), still=1)

    def enter(self):
        player, main = self.start()
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main))
        entry = self.entry()
        self.assertTrue(entry, "no list of windows has it")
        return player, main, strip, entry

    def test_called_up_it_brings_the_main_window_and_goes(self):
        player, main, strip, entry = self.enter()
        told = quiet("xprop", "-id", entry, "WM_CLASS", "_NET_WM_NAME", "_NET_WM_STATE",
                     env=self.session.env)
        self.assertIn("velmora", told)
        self.assertIn(TITLE, told)
        self.assertNotIn("SKIP_TASKBAR", told)
        quiet("xdotool", "windowactivate", entry, env=self.session.env)
        self.assertTrue(player.window(), "the main window does not come")
        self.assertTrue(player.gone(strip), "the strip stays beside it")
        self.assertTrue(wait_for(lambda: not self.entries(), 30), "two entries stay")

    def test_each_mini_mode_has_one(self):
        player, main, strip, entry = self.enter()
        for _ in range(2):
            self.lock_strip(player, strip)
            player.click(strip, "auto_Hide_Lock_True", form=MINI)
            player.click(strip, "mini_Button", form=MINI)
            self.assertTrue(player.window())
            self.assertTrue(wait_for(lambda: not self.entries(), 30), "it stays")
            player.click(main, "mini_Button")
            strip = player.form(MINI)
            self.assertTrue(strip and self.entry(), "it does not come back")
            self.assertEqual(len(self.entries()), 1)

    def test_closed_there_the_program_ends(self):
        player, _, _, entry = self.enter()
        quiet("wmctrl", "-i", "-c", entry, env=self.session.env)
        self.assertTrue(player.ended(), "it does not end")
        self.assertEqual(player.child.returncode, 0)


class TwoMonitors(Session):
    """A screen of two halves; the left one is the primary monitor."""
    screen = "2560x800x24"

    def parts(self, primary):
        for name, left in (("left", 0), ("right", 1280)):
            quiet("xrandr", "--delmonitor", name, env=self.env)
        for name, left in (("left", 0), ("right", 1280)):
            star = "*" if name == primary else ""
            quiet("xrandr", "--setmonitor", star + name, f"1280/340x800/200+{left}+0",
                  "screen" if name == "left" else "none", env=self.env)

    def _display(self):
        super()._display()
        self.parts("left")


class Monitors(Placing):
    session_kind = TwoMonitors

    def test_when_another_monitor_becomes_the_primary_one_windows_stay_and_take_their_clicks(self):
        player, main = self.start()
        before = player.place(main)
        self.assertLess(before[0], 1280)
        self.session.parts("right")
        # Once the program knows: the desktop's line, empty as it is, goes over there.
        player.took(main)
        self.assertTrue(self.until(lambda: self.opens_the_list(player, main)),
                        "its button does not answer")
        self.assertEqual(player.place(main)[1], before[1], "it moved")

    def test_a_box_comes_up_on_the_monitor_of_its_window(self):
        player, main, rows = self.start_with_list()
        player.move(main, 1400, 300)
        player.move(rows, 1890, 300)
        player.click_at(rows, 60, 60)
        self.session.key("Delete", rows)
        box = wait_for(player.boxes)
        self.assertTrue(box, "no question comes up")
        x, y = wait_for(lambda: player.place(box[0]))
        self.assertGreaterEqual(x, 1280, "it comes up on the other monitor")
        self.session.reply("n", box[0])
        self.assertTrue(player.gone(box[0]))

    def opens_the_list(self, player, main):
        player.click(main, "playListButton")
        return player.form(LIST, 15)

    def until(self, look):
        return wait_for(look, 60)

    def test_a_drag_after_it_moves_by_what_the_pointer_moves(self):
        player, main = self.start()
        before = player.place(main)
        self.session.parts("right")
        self.assertTrue(self.until(lambda: self.opens_the_list(player, main)))
        # The list shows before the main window has come to its side.
        self.assertTrue(player.done(main) and rest(lambda: player.place(main)))
        player.click(main, "playListButton")
        self.assertTrue(wait_for(lambda: not player.form(LIST, 0.1)), "the list stays")
        before = player.place(main)
        player.tool("mousemove", *player.point(main, 150, 12))
        player.tool("mousedown", 1)
        self.haul(player, (60, 36))
        player.tool("mouseup", 1)
        self.assertTrue(wait_for(lambda: player.place(main) == (before[0] + 60, before[1] + 36)),
                        f"from {before} it was thrown to {player.place(main)}")


class Stacked(Session):
    """The primary monitor stands below the other one."""
    screen = "1280x1600x24"

    def _display(self):
        super()._display()
        for name, top, output in (("upper", 0, "none"), ("*lower", 800, "screen")):
            quiet("xrandr", "--setmonitor", name, f"1280/340x800/200+0+{top}", output, env=self.env)


class Above(Placing):
    session_kind = Stacked

    def rows_of(self, strip):
        """What there is of it, above and below the edge."""
        shape = quiet("xwininfo", "-shape", "-id", strip, env=self.session.env)
        found = re.search(r"Window shape extents: *(\d+)x(\d+)([+-]-?\d+)([+-]-?\d+)", shape)
        return found and (int(found[2]), int(found[4].lstrip("+")))

    def test_a_monitor_above_shows_nothing_of_a_strip_that_is_out_of_sight(self):
        player, main = self.start()
        self.assertGreater(player.place(main)[1], 800)
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main))
        high = int(MINI["form"][3])
        x = player.place(strip)[0] + 300
        for _ in range(2):
            player.tool("mousemove", 640, 1300)
            self.assertTrue(wait_for(lambda: player.place(strip)[1] <= 800 - high, 30), "it stays")
            self.assertTrue(wait_for(lambda: (self.rows_of(strip) or (1, 0))[0] <= 1, 30),
                            f"seen on the other monitor: {self.rows_of(strip)}")
            # No edge stops the pointer there: a hand comes near it.
            player.tool("mousemove", x, 803)
            self.assertTrue(wait_for(lambda: player.place(strip)[1] == 800, 30), "it is lost")
            self.assertTrue(wait_for(lambda: (self.rows_of(strip) or (0, 0))[0] >= high - 1, 30),
                            f"cut where it is in sight: {self.rows_of(strip)}")
            player.tool("mousemove", x, 820)

    def test_dragged_up_there_it_is_whole(self):
        player, main = self.start()
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main))
        player.tool("mousemove", player.place(strip)[0] + 40, 800)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == 800, 30))
        player.click(strip, "auto_Hide_Lock_False", form=MINI)
        player.tool("mousemove", *player.point(strip, 15, 20))
        player.tool("mousedown", 1)
        self.assertTrue(player.took(strip))
        self.haul(player, (0, -420))
        player.tool("mouseup", 1)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == 380, 30), f"{player.place(strip)}")
        self.assertTrue(wait_for(lambda: (self.rows_of(strip) or (0, 0))[0] >= int(MINI["form"][3]) - 1, 30),
                        f"cut: {self.rows_of(strip)}")


class WideScreen(Session):
    screen = "2560x1600x24"


class Between(Placing):
    """Densities at which no whole number of the program's pixels is as wide as the screen."""
    reads = True
    session_kind = WideScreen

    def press(self, player, window, control, scale):
        left, top, width, height = (side * scale for side in MAIN[control])
        player.click_at(window, left + width / 2, top + height / 2)

    def line(self, density):
        """The line on the desktop, as a track with a lyric brings it up."""
        self.session.env["QT_SCALE_FACTOR"] = str(density)
        player = Player(self.session)
        self.addCleanup(self.session.stop, player.child)
        wanted = [side * density for side in MAIN["form"][2:4]]
        main = wait_for(lambda: next(
            (each for each in player.windows()
             if all(abs(a - b) < 2 for a, b in zip(player.size(each), wanted))), None))
        self.assertTrue(main, "the main window does not come up")
        self.press(player, main, "nextButton", density)
        # What it says tells that the fade-in is over and the lyric has been found.
        self.assertTrue(wait_for(lambda: any(
            "Words" in text for window in player.told() for text in said(window)), 120), "no lyric")
        self.press(player, main, "desktop_Lrc", density)
        line = wait_for(lambda: next(
            (each for each in player.windows()
             if player.unmanaged(each) and player.size(each)[0] >= 2550), None))
        self.assertTrue(line, "no line comes up")
        return player, line

    def assert_fits(self, density):
        player, line = self.line(density)
        self.assertTrue(wait_for(lambda: player.size(line)[0] == 2560), f"{player.size(line)}")
        self.assertEqual(player.place(line)[0], 0)
        foot = player.place(line)[1] + player.size(line)[1]
        self.assertTrue(1600 - density <= foot <= 1600, f"its foot is at {foot}")

    def setUp(self):
        super().setUp()
        with open(self.track[:-3] + "lrc", "w", encoding="utf-8") as lyric:
            lyric.writelines(f"[00:{second:02}.00]Words\n" for second in range(60))

    def test_at_one_and_a_half_the_line_is_as_wide_as_the_screen_and_ends_at_its_foot(self):
        self.assert_fits(1.5)

    def test_at_one_and_a_quarter_too(self):
        self.assert_fits(1.25)


class GuestScreen(Session):
    """A screen that calls its output what XWayland does. The pointer is known all the same."""

    def _display(self):
        super()._display()
        quiet("xrandr", "--setmonitor", "*XWAYLAND0", "1280/340x800/200+0+0", "screen", env=self.env)


class Guest(Placing):
    session_kind = GuestScreen

    def sensors(self):
        """The widths of windows of one row at the upper edge."""
        tree = quiet("xwininfo", "-root", "-tree", env=self.session.env)
        widths = [int(found) for found in re.findall(r" (\d+)x1\+\d+\+0 ", tree)]
        return [width for width in widths if width > 1]

    def hidden(self, player, strip):
        return wait_for(lambda: player.place(strip)[1] <= -int(MINI["form"][3]))

    def test_the_edge_feels_the_pointer_only_while_the_strip_is_out_of_sight(self):
        player, main = self.start()
        # As a person does who wants the window as large as the screen.
        player.click_at(main, 150, 12, times=2)
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main))
        self.assertTrue(self.hidden(player, strip), "the strip stays")
        width = int(MINI["form"][2])
        self.assertTrue(wait_for(lambda: self.sensors() == [width]),
                        f"nothing at the edge feels the pointer: {self.sensors()}")
        player.tool("mousemove", player.place(strip)[0] + 40, 0)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == 0), "the strip is lost")
        self.assertTrue(wait_for(lambda: not self.sensors()),
                        "the edge takes clicks under the strip that is shown")
        player.click(strip, "mini_Button", form=MINI)
        self.assertTrue(player.window())
        self.assertTrue(wait_for(lambda: not self.sensors()),
                        "the edge takes clicks after the strip has gone")

    def test_a_pointer_that_left_again_lets_the_strip_slide_out_again(self):
        player, main = self.start()
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and self.hidden(player, strip))
        for _ in range(3):
            self.assertTrue(wait_for(self.sensors))
            player.tool("mousemove", player.place(strip)[0] + 40, 0)
            player.tool("mousemove", 640, 500)
            self.assertTrue(wait_for(lambda: player.place(strip)[1] == 0), "it does not come")
            self.assertTrue(self.hidden(player, strip), "it stays though the pointer has gone")

    def ground(self):
        """What takes the presses beside the program's windows."""
        told = quiet("xwininfo", "-root", "-tree", env=self.session.env)
        return next((line.split()[0] for line in told.splitlines() if " 1282x802+-1+-1 " in line), None)

    def witness(self, player, main):
        """Tells what has become of the screen's windows, in order: (event, window, place)."""
        path = self.session.home + "/seen"

        def seen():
            with open(path, encoding="utf-8") as file:
                told = re.findall(r"^(\w+)Notify event.*\n +event 0x\w+, window (0x\w+)(?:, \((-?\d+),(-?\d+)\))?",
                                  file.read(), re.M)
            return [(kind, int(window, 16), x and (int(x), int(y))) for kind, window, x, y in told]
        with open(path, "w", encoding="utf-8") as file:
            child = subprocess.Popen(["stdbuf", "-oL", "xev", "-root", "-event", "substructure"],
                                     env=self.session.env, stdout=file, stderr=subprocess.DEVNULL)
        self.addCleanup(child.wait)
        self.addCleanup(child.kill)
        x, y = player.place(main)

        def is_there():
            for step in (1, 0):
                player.tool("windowmove", main, x + step, y)
            return seen()
        self.assertTrue(wait_for(is_there), "no witness")
        return seen

    def first(self, seen, kind, window, beyond=False):
        """Which of what was seen it was that befell the window, on the screen or beyond."""
        return next((number for number, (what, which, place) in enumerate(seen) if (what, which) == (kind, window) and
                     (not beyond or not (-100 < place[0] < 1280 and -100 < place[1] < 800))), None)

    def test_a_menu_is_told_of_every_press_on_the_screen_and_closes_by_it(self):
        player, main = self.start()
        other = Stranger(self.session, 900, 500, 200, 200)
        player.click_at(main, 5, 150, button=3)
        self.assertTrue(player.menus(), "no menu")
        self.assertTrue(self.ground(), "XWayland would tell of no press beside the windows")
        player.click_at(other.window, 100, 100)
        self.assertTrue(wait_for(lambda: not player.menus(1, 0.1)), "the menu stays")
        self.assertTrue(wait_for(lambda: not self.ground()), "the screen takes no more clicks")
        player.click_at(other.window, 100, 100)
        self.assertTrue(wait_for(lambda: len(other.presses()) == 1), f"{other.presses()}")

    def test_a_menu_and_what_lies_below_it_leave_the_screen_before_they_go(self):
        """XWayland keeps the picture of what went for another second, and weston gives it the clicks."""
        player, main = self.start()
        seen = self.witness(player, main)
        player.click_at(main, 5, 150, button=3)
        menus = player.menus()
        self.assertTrue(menus, "no menu")
        menu, ground = int(menus[0]), int(self.ground(), 16)
        player.tool("key", "Escape")
        self.assertTrue(wait_for(lambda: self.first(seen(), "Destroy", ground) is not None), "it stays")
        for window, ends in ((menu, "Unmap"), (ground, "Destroy")):
            left, went = (self.first(seen(), *what) for what in (("Configure", window, True), (ends, window)))
            self.assertTrue(left is not None and left < went, f"{window:x}: {seen()}")
        self.assertLess(self.first(seen(), "Configure", ground, True), self.first(seen(), "Unmap", menu))


if __name__ == "__main__":
    run(sys.argv[5:])
