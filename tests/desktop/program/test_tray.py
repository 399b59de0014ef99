#!/usr/bin/env python3
"""The icon in a real tray: its clicks, its menu, and a tray that comes late or goes away.

    test_tray.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import sys

from cases import run
from player import LIST, MINI, PlayerTest, Stranger, stairs
from session import quiet, rest, wait_for

# At the bottom: the mini window lies over whatever is at the top.
TRAY = ["trayer", "--edge", "bottom", "--align", "left", "--widthtype", "pixel", "--width", "60",
        "--heighttype", "pixel", "--height", "30", "--tint", "0x000000", "--transparent", "false"]


class Tray(PlayerTest):
    def setUp(self):
        super().setUp()
        self.track = f"{self.music}/track.wav"
        stairs(self.track, 20, step=0)
        self.write_list([self.track])
        self.tray = None

    def start_tray(self):
        self.tray = self.session.spawn(TRAY)

    def icon(self, player, seconds=30):
        """The program's window inside the tray, once a click there would meet it: the tray shows it after taking it in."""
        def look():
            tray = quiet("xdotool", "search", "--onlyvisible", "--class", "trayer",
                         env=self.session.env).split()
            for number in tray:
                tree = quiet("xwininfo", "-tree", "-id", number, env=self.session.env)
                for line in tree.splitlines():
                    found = re.match(r"\s+(0x[0-9a-f]+) .*\"velmora\"", line)
                    if found and "IsViewable" in quiet("xwininfo", "-id", found[1], env=self.session.env):
                        return str(int(found[1], 16))
            return None
        return wait_for(look, seconds)

    def open_menu(self, player):
        self.click_icon(player, 3)
        if not player.menus():
            tree = quiet("xwininfo", "-root", "-tree", env=self.session.env)
            self.fail(f"no menu comes up: {player.tool('getmouselocation')}\n{tree}")

    def click_icon(self, player, button=1):
        icon = self.icon(player)
        self.assertTrue(icon, "no icon in the tray")
        shape = rest(lambda: player.geometry(icon))
        player.tool("mousemove", shape["X"] + shape["WIDTH"] // 2,
                    shape["Y"] + shape["HEIGHT"] // 2)
        player.tool("click", button)

    def is_above(self, upper, lower, seconds=30):
        def look():
            told = quiet("xprop", "-root", "_NET_CLIENT_LIST_STACKING", env=self.session.env)
            order = [str(int(number, 16)) for number in re.findall(r"0x[0-9a-f]+", told)]
            return upper in order and lower in order and order.index(upper) > order.index(lower)
        return wait_for(look, seconds)

    def cover(self, player, main, stranger):
        """Puts the stranger above the main window, which comes forward itself as it starts."""
        def look():
            player.tool("windowactivate", "--sync", stranger.window)
            return self.is_above(stranger.window, main, 1)
        self.assertTrue(wait_for(look, 30), "the stranger does not come above the main window")

    def test_a_click_brings_the_main_window_forward(self):
        self.start_tray()
        player, main = self.start()
        stranger = Stranger(self.session, 350, 250, 600, 300)
        self.cover(player, main, stranger)
        self.click_icon(player)
        self.assertTrue(self.is_above(main, stranger.window), "it stays behind")
        self.assertTrue(wait_for(lambda: "ABOVE" not in quiet(
            "xprop", "-id", main, "_NET_WM_STATE", env=self.session.env), 30), "it stays on top")
        # No longer kept on top: another window may cover it again.
        self.cover(player, main, stranger)

    def test_a_click_restores_the_minimised_window(self):
        self.start_tray()
        player, main = self.start()
        player.click(main, "minimizeButton")
        self.assertTrue(player.gone(main), "it is not minimised")
        self.click_icon(player)
        self.assertTrue(player.window(), "it stays minimised")

    def test_a_click_leaves_the_mini_mode_without_the_list(self):
        self.start_tray()
        player, main = self.start()
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assertTrue(rows)
        player.click(main, "mini_Button")
        mini = player.form(MINI)
        self.assertTrue(mini, "no mini window")
        self.assertTrue(player.gone(rows))
        self.click_icon(player)
        self.assertTrue(player.window())
        self.assertTrue(player.gone(mini))
        self.assertTrue(player.stays_away(lambda: player.form(LIST, 0.1), main))

    def test_the_right_button_opens_the_menu_and_it_works(self):
        self.start_tray()
        player, main = self.start()
        self.open_menu(player)
        for key in ("Down", "Right"):
            self.session.key(key)
        self.assertTrue(player.menus(2))
        for key in ("Down", "Down", "Down", "Return"):  # play, pause, stop, next
            self.session.key(key)
        self.assert_title(player, main, "track")
        self.open_menu(player)
        self.session.key("Up")
        self.session.key("Return")  # the last entry ends the program
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)
        self.assertIsNone(self.icon(player, 1), "an icon is left in the tray")

    def test_a_right_click_soon_after_another_opens_the_menu_again(self):
        self.start_tray()
        player, main = self.start()
        self.open_menu(player)
        for _ in range(2):  # near enough in time and place to count as double clicks
            self.session.key("Escape")
            self.assertIsNotNone(player.menus(0))
            player.tool("click", 3)
            self.assertTrue(player.menus(), "the click is lost")

    def test_a_tray_that_comes_late_gets_the_icon(self):
        player, main = self.start()
        self.start_tray()
        self.assertTrue(self.icon(player), "no icon in the tray")
        self.open_menu(player)
        self.session.key("Escape")
        self.assertIsNotNone(player.menus(0))
        self.assertIsNone(player.child.poll())

    def test_a_tray_that_goes_and_comes_again_gets_the_icon_again(self):
        self.start_tray()
        player, main = self.start()
        self.assertTrue(self.icon(player))
        self.session.stop(self.tray)
        self.session.key("F6", main)
        self.assert_title(player, main, "track")  # it goes on without
        self.start_tray()
        self.assertTrue(self.icon(player), "no icon in the new tray")
        self.open_menu(player)


if __name__ == "__main__":
    run(sys.argv[5:])
