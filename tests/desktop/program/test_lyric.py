#!/usr/bin/env python3
"""The lyric on the desktop: what of it is there, where, above what, and how it moves.

    test_lyric.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import signal
import subprocess
import sys

from cases import run
from listing import silence
from player import MAIN, PlayerTest, Stranger
from session import quiet, rest, wait_for

WIDTH, HEIGHT = 1280, 800
SECONDS = 600  # the track; longer than any test on the busiest machine
GROUND = (0x20, 0x60, 0xA0)


class Picture:
    """A part of the screen in colour."""

    def __init__(self, session, x, y, width, height):
        self.width, self.height = width, height
        self.data = subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}",
             "-depth", "8", "rgb:-"], env=session.env, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, check=False).stdout

    def at(self, x, y):
        start = 3 * (y * self.width + x)
        return tuple(self.data[start:start + 3])

    def differing(self, colour):
        """The places that are not of this colour."""
        wanted = bytes(colour)
        found = []
        for y in range(self.height):
            row = self.data[3 * y * self.width:3 * (y + 1) * self.width]
            if row == wanted * self.width:
                continue
            found += [(x, y) for x in range(self.width) if row[3 * x:3 * x + 3] != wanted]
        return found


class LyricTest(PlayerTest):
    reads = True
    compositor = False

    def setUp(self):
        super().setUp()
        quiet("hsetroot", "-solid", "#%02x%02x%02x" % GROUND, env=self.session.env)
        if self.compositor:
            self.session.spawn(["picom", "--backend", "xrender", "--config", "/dev/null"])
            self.assertTrue(wait_for(lambda: quiet("xdotool", "search", "--class", "picom",
                                                   env=self.session.env), 30))
        self.track = self.music + "/song.wav"
        silence(self.track, SECONDS)
        self.write_list([self.track])

    def sing(self, words):
        """Plays the track with these words all through, the desktop line switched on."""
        with open(self.music + "/song.lrc", "w", newline="", encoding="utf-8") as file:
            # For each second: a busy machine looks for the first line behind it.
            file.write("".join(f"[{second // 60:02}:{second % 60:02}.00]{words}\r\n" for second in range(SECONDS)))
        player, main = self.start()
        self.session.key("F6", main)
        self.assertTrue(player.says(main, words, 60), "no lyric in the main window")
        player.click(main, "desktop_Lrc")
        self.assertTrue(self.strip(player), "the desktop line has no window")
        return player, main

    def store_font(self, name, size, bold=False):
        """Stores the face of the desktop line, in a registry that the program has made itself."""
        player, main = self.start()
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        font = {stem: (4, 0) for stem in ("Charset", "Italic", "Strikethrough", "Underline",
                                          "BackColor")}
        font |= {"Name": (1, name), "Size": (4, size), "Bold": (4, int(bold)),
                 "Weight": (4, 700 if bold else 400), "ForeColor": (4, 0xFFFFFF)}
        self.store({f"Desktop_Lrc_{stem}": value for stem, value in font.items()} |
                   {"Desktop_Lrc_AutoOpen": (1, "0")})

    def strip(self, player, seconds=30):
        """The window of the desktop line."""
        return wait_for(lambda: next((number for number in player.windows()
                                      if player.size(number)[0] == self.screen()[0]), None), seconds)

    def look(self, player):
        line = self.strip(player)
        x, y = player.place(line)
        return Picture(self.session, x, y, *player.size(line))

    def letters(self, player, ground=GROUND, seconds=30):
        """Where the screen shows something else than the ground, once it does."""
        return wait_for(lambda: self.look(player).differing(ground), seconds)

    def is_centred(self, player, width=WIDTH):
        letters = self.letters(player)
        middle = (min(x for x, _ in letters) + max(x for x, _ in letters)) / 2
        return abs(middle - width / 2) < 20

    def letter_and_gap(self, player):
        """A place on the screen in the heart of a letter, and one between two letters."""
        line = self.strip(player)
        letters = set(self.letters(player))
        picture, colour = self.look(player), self.colour(player)
        around = [(x, y) for x in range(-3, 4) for y in range(-3, 4)]
        heart = next((x, y) for x, y in sorted(letters)
                     if picture.at(x, y) == colour and all((x + dx, y) in letters for dx in (-1, 0, 1)))
        left, right = min(x for x, _ in letters), max(x for x, _ in letters)
        gap = next((x, y) for y in range(10, player.size(line)[1] - 10)
                   for x in range(left + 20, right - 20)
                   if all((x + dx, y + dy) not in letters for dx, dy in around))
        return player.point(line, *heart), player.point(line, *gap)

    def colour(self, player):
        """What most pixels of the letters are."""
        picture = self.look(player)
        seen = {}
        for x, y in self.letters(player):
            seen[picture.at(x, y)] = seen.get(picture.at(x, y), 0) + 1
        return max(seen, key=seen.get)


class Standing(LyricTest):
    """A line that fits."""

    LINE = "Letters on the desktop"

    def test_only_its_letters_are_there(self):
        player, _ = self.sing(self.LINE)
        letters = self.letters(player)
        picture = self.look(player)
        self.assertEqual(player.place(self.strip(player)), (0, HEIGHT - picture.height))
        share = len(letters) / (picture.width * picture.height)
        self.assertTrue(0.02 < share < 0.5, share)
        # In the middle of the screen, and rimmed: its edge is dark, its heart bright.
        left, right = min(x for x, _ in letters), max(x for x, _ in letters)
        self.assertLess(abs((left + right) / 2 - WIDTH / 2), 20)
        tones = {max(picture.at(x, y)) for x, y in letters}
        self.assertTrue(min(tones) < 0x30 and max(tones) > 0xC0, sorted(tones))
        smooth = len({picture.at(x, y) for x, y in letters if (x - 1, y) not in letters})
        if self.compositor:
            self.assertGreater(smooth, 30, "its edge is not smooth")

    def test_of_any_size_it_stays_on_the_screen_and_lets_clicks_through_between_its_letters(self):
        self.store_font("Liberation Sans", 2160)
        player, main = self.sing("II")
        player.tool("windowminimize", "--sync", main)  # it lies below the letters
        self.assertTrue(player.gone(main))
        line = self.strip(player)
        (_, top), (_, height) = player.place(line), player.size(line)
        self.assertGreaterEqual(top, 0)
        self.assertGreater(height, HEIGHT * 0.7)
        self.assertLessEqual(top + height, HEIGHT)
        letters = set(self.letters(player))
        # Down the middle, between the two strokes.
        column = [y for y in range(height) if (WIDTH // 2, y) not in letters]
        self.assertGreater(len(column), height // 2, "there is no gap between the letters")
        heart = next(place for place in sorted(letters)
                     if all((place[0] + dx, place[1] + dy) in letters
                            for dx in (-5, 0, 5) for dy in (-5, 0, 5)))
        gap = (WIDTH // 2, column[len(column) // 2])
        stranger = Stranger(self.session, 0, 0, WIDTH, HEIGHT)
        self.assertTrue(stranger.window)
        for place in (heart, gap):
            player.tool("mousemove", *player.point(line, *place))
            player.tool("click", 1)
        self.assertTrue(wait_for(stranger.presses, 30), "the click is held back")
        self.assertEqual(stranger.presses(), [player.point(line, *gap)])

    def test_a_bold_chinese_line_is_drawn_in_the_face_that_was_chosen(self):
        self.store_font("Noto Serif CJK SC", 120, bold=True)
        player, main = self.sing("一一")
        player.tool("windowminimize", "--sync", main)  # it lies below the letters
        self.assertTrue(player.gone(main))
        high = {}
        for x, _ in self.letters(player):
            high[x] = high.get(x, 0) + 1
        columns = [high[x] for x in sorted(high)]
        columns = columns[len(columns) // 2:]  # the second letter
        # One stroke, thin at its beginning and with a serif at its end, which a face without
        # serifs has not.
        self.assertGreater(len(columns), 80)
        begin, end = columns[len(columns) // 4:len(columns) // 2], columns[-len(columns) // 4:]
        self.assertGreater(max(end), 1.4 * max(begin), columns)

    def test_it_is_gone_when_switched_off_and_comes_back(self):
        player, main = self.sing(self.LINE)
        self.assertTrue(self.letters(player))
        player.click(main, "desktop_Lrc")
        self.assertTrue(wait_for(lambda: not self.look(player).differing(GROUND), 30),
                        "letters stay behind")
        player.click(main, "desktop_Lrc")
        self.assertTrue(self.letters(player))

    def test_a_click_between_letters_reaches_the_window_below_and_one_on_a_letter_does_not(self):
        player, _ = self.sing(self.LINE)
        heart, gap = self.letter_and_gap(player)
        stranger = Stranger(self.session, 100, 500, 1080, 280)
        self.assertTrue(stranger.window)
        for place in (heart, gap):
            player.tool("mousemove", *place)
            player.tool("click", 1)
        self.assertTrue(wait_for(stranger.presses, 30), "the click is held back")
        self.assertEqual(stranger.presses(), [gap])

    def assert_still_there(self, player, places, colour):
        def there():
            picture = self.look(player)
            return all(picture.at(x, y) == colour for x, y in places)
        self.assertTrue(wait_for(there, 30), "something covers the letters")

    def hearts(self, player):
        colour = self.colour(player)
        picture = self.look(player)
        return [(x, y) for x, y in self.letters(player) if picture.at(x, y) == colour], colour

    def test_it_stays_above_a_window_that_opens_and_one_that_is_raised(self):
        player, main = self.sing(self.LINE)
        places, colour = self.hearts(player)
        strangers = [Stranger(self.session, 50 * number, 400, 1100, 390) for number in (1, 2)]
        self.assertTrue(all(stranger.window for stranger in strangers))
        self.assert_still_there(player, places, colour)
        for window in (main, *strangers[0].window.split()):
            player.tool("windowactivate", "--sync", window)
            self.assert_still_there(player, places, colour)
        quiet("wmctrl", "-i", "-r", strangers[0].window.split()[0], "-b", "add,fullscreen",
              env=self.session.env)
        self.assert_still_there(player, places, colour)

    def test_it_is_on_every_workspace_and_out_of_the_task_list(self):
        player, main = self.sing(self.LINE)
        places, colour = self.hearts(player)
        listed = quiet("xprop", "-root", "_NET_CLIENT_LIST", env=self.session.env)
        numbers = [int(number, 16) for number in re.findall(r"0x[0-9a-f]+", listed)]
        self.assertIn(int(main), numbers)
        self.assertNotIn(int(self.strip(player)), numbers)
        for workspace in ("1", "2", "0"):
            quiet("wmctrl", "-s", workspace, env=self.session.env)
            self.assertTrue(wait_for(lambda: f"= {workspace}" in quiet(
                "xprop", "-root", "_NET_CURRENT_DESKTOP", env=self.session.env), 30))
            self.assert_still_there(player, places, colour)

    def test_it_is_placed_again_when_the_resolution_changes(self):
        player, _ = self.sing(self.LINE)
        line = self.strip(player)
        high = player.size(line)[1]
        for width, height in ((1024, 768), (800, 600), (1280, 800)):
            self.resize(width, height)
            self.assertTrue(wait_for(lambda: player.size(line) == (width, high) and
                                     player.place(line) == (0, height - high), 30),
                            f"{player.geometry(line)} on a screen of {width}x{height}")
            self.assertTrue(wait_for(lambda: self.is_centred(player, width), 30), "it is not centred")

    def test_it_is_placed_again_when_the_screen_is_parted_into_two_monitors(self):
        player, _ = self.sing(self.LINE)
        line = self.strip(player)
        high = player.size(line)[1]
        env = self.session.env
        quiet("xrandr", "--setmonitor", "right", "640/160x800/200+640+0", "none", env=env)
        quiet("xrandr", "--setmonitor", "*left", "640/160x800/200+0+0", "screen", env=env)
        self.assertTrue(wait_for(lambda: player.size(line) == (640, high) and
                                 player.place(line) == (0, HEIGHT - high), 30),
                        player.geometry(line))
        for name in ("left", "right"):
            quiet("xrandr", "--delmonitor", name, env=env)
        self.assertTrue(wait_for(lambda: player.size(line) == (WIDTH, high), 30),
                        player.geometry(line))
        self.assertTrue(self.letters(player))

    def part(self, high_left, high_right):
        """Two monitors side by side, the left one the primary."""
        env = self.session.env
        quiet("xrandr", "--setmonitor", "right", f"640/160x{high_right}/200+640+0", "none", env=env)
        quiet("xrandr", "--setmonitor", "*left", f"640/160x{high_left}/200+0+0", "screen", env=env)

    def panel(self, x, high):
        """Another program's window that keeps the foot of the monitor at that column for itself."""
        panel = Stranger(self.session, x, 100, 100, 50, name=f"panel{x}")
        strut = f"0,0,0,{high},0,0,0,0,0,0,{x},{x + 639}"
        quiet("xprop", "-id", panel.window, "-f", "_NET_WM_STRUT_PARTIAL", "32c", "-set",
              "_NET_WM_STRUT_PARTIAL", strut, env=self.session.env)
        return panel

    def test_of_two_monitors_only_the_panels_of_its_own_count(self):
        player, _ = self.sing(self.LINE)
        line = self.strip(player)
        high = player.size(line)[1]
        own = self.panel(0, 40)
        self.part(HEIGHT, 600)
        above = (0, round(HEIGHT - high - 40 - 40 / 15))  # the bar's height counts once more, in twips
        self.assertTrue(wait_for(lambda: player.place(line) == above, 30), player.geometry(line))
        self.panel(640, HEIGHT - 600 + 30)
        self.assertEqual(rest(lambda: player.place(line), still=1), above)
        self.session.stop(own.child)
        foot = (0, HEIGHT - high)
        self.assertTrue(wait_for(lambda: player.place(line) == foot, 30), player.geometry(line))

    def test_it_and_the_windows_are_placed_again_when_the_scale_changes(self):
        settings = self.session.home + "/xsettings"

        def scale(percent):
            with open(settings, "w", encoding="utf-8") as file:
                file.write(f"Xft/DPI {1024 * 96 * percent // 100}\n")
        scale(100)
        daemon = self.session.spawn(["xsettingsd", "-c", settings])
        # The toolkit asks for one at the start alone.
        self.assertTrue(wait_for(lambda: "Xft/DPI" in quiet("dump_xsettings", env=self.session.env)))
        player, main = self.sing(self.LINE)
        line = self.strip(player)
        self.assertTrue(self.letters(player))
        corner = (40, 20)  # apart from the line at every scale
        player.move(main, *corner)
        wide, high = player.size(main)
        line_high = player.size(line)[1]
        title = rest(lambda: player.look(main, "title"))  # at its new place it may still be on its way
        self.assertTrue(title, "the title does not come to rest")
        for percent in (200, 150, 100):
            scale(percent)
            daemon.send_signal(signal.SIGHUP)
            self.assertTrue(wait_for(
                lambda: player.size(main) == (wide * percent // 100, high * percent // 100) and
                abs(player.size(line)[1] - line_high * percent / 100) <= 1 and
                player.place(line) == (0, HEIGHT - player.size(line)[1]), 30),
                f"{player.geometry(main)} and {player.geometry(line)} at {percent} percent")
            self.assertTrue(all(abs(now - before) <= 2 for now, before in
                                zip(player.place(main), corner)), player.place(main))
            self.assertTrue(wait_for(lambda: self.is_centred(player), 30), "it is not centred")
            # The mouse finds the switch at its new place.
            left, top, width, height = (side * percent / 100 for side in MAIN["desktop_Lrc"])
            if left + width < WIDTH - corner[0]:
                player.click_at(main, left + width / 2, top + height / 2)
                self.assertTrue(wait_for(lambda: not self.look(player).differing(GROUND), 30))
                player.click_at(main, left + width / 2, top + height / 2)
                self.assertTrue(self.letters(player))
        self.assertTrue(wait_for(lambda: player.look(main, "title") == title, 30),
                        "the window does not look as before")

    def test_it_moves_up_when_a_panel_comes(self):
        player, _ = self.sing(self.LINE)
        line = self.strip(player)
        high = player.size(line)[1]
        panel = self.session.spawn(["trayer", "--edge", "bottom", "--widthtype", "percent",
                                    "--width", "100", "--heighttype", "pixel", "--height", "30",
                                    "--SetDockType", "true", "--SetPartialStrut", "true"])
        # The panel's height counts in twips as if it were pixels: 30 of them are two pixels.
        self.assertTrue(wait_for(lambda: player.place(line) == (0, HEIGHT - 30 - 2 - high), 30),
                        player.geometry(line))
        self.session.stop(panel)
        self.assertTrue(wait_for(lambda: player.place(line) == (0, HEIGHT - high), 30))


class Rolling(LyricTest):
    """A line that is wider than the screen."""

    LINE = "How it rolls: to its very end, and then all the way back. " * 3
    STEP = 10  # 150 twips

    @staticmethod
    def columns(picture):
        """For each column of the strip whether it holds anything but the ground."""
        found = bytearray(picture.width)
        for x, _ in picture.differing(GROUND):
            found[x] = 1
        return bytes(found)

    def shift(self, before, after):
        """How far everything moved, as one; None if it did not move as one."""
        for step in sorted(range(-60, 61), key=abs):
            by = step * self.STEP
            left, right = max(0, by), min(WIDTH, WIDTH + by)
            if after[left:right] == before[left - by:right - by]:
                return by
        return None

    def test_it_moves_as_one_by_its_steps_and_is_never_gone(self):
        player, _ = self.sing(self.LINE)
        before = [self.columns(self.look(player))]

        def rolls():
            now = self.columns(self.look(player))
            by, before[0] = self.shift(before[0], now), now
            return by
        self.assertTrue(wait_for(rolls), "it stands still")
        frames = [self.columns(self.look(player)) for _ in range(40)]
        shifts = [self.shift(before, after) for before, after in zip(frames, frames[1:])]
        self.assertNotIn(None, shifts, "it flickers or is torn")
        self.assertTrue(any(shifts), "it stands still")
        self.assertTrue(all(sum(frame) > WIDTH / 4 for frame in frames), "it is gone at times")
        # To the left first, and only turning at the ends.
        moved = [shift for shift in shifts if shift]
        self.assertLess(moved[0], 0)


class RollingComposited(Rolling):
    compositor = True


class StandingComposited(Standing):
    compositor = True


if __name__ == "__main__":
    run(sys.argv[5:])
