#!/usr/bin/env python3
"""Real films in the video window of the real program: what the screen shows and what is heard.

    test_video.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import shutil
import sys

from cases import run
from films import (COLUMNS, HEIGHT, STRIP, WIDTH, FilmSession, FilmTest, make_film,
                   near)
from player import SETTINGS, Stranger, stairs
from session import quiet, wait_for

SCREEN = (1280, 800)
FULL = (0, 0, 1280, int(800 - STRIP))

KINDS = {
    "mpeg4.avi": dict(size=(320, 240), video=("mpeg4", "-q:v", "3"), sound=("libmp3lame",)),
    "mpeg1.mpg": dict(size=(352, 288), video=("mpeg1video", "-q:v", "3"), sound=("mp2",)),
    "theora.ogv": dict(size=(400, 304), video=("libtheora", "-q:v", "7"), sound=("libvorbis",)),
    "vp8.webm": dict(size=(640, 480), video=("libvpx", "-deadline", "realtime", "-cpu-used", "8",
                                             "-b:v", "1M"), sound=("libvorbis",)),
    "wmv2.wmv": dict(size=(480, 272), video=("wmv2", "-q:v", "3"), sound=("wmav2",)),
    "flash.flv": dict(size=(320, 180), video=("flv", "-q:v", "3"), sound=("libmp3lame",)),
    "tiny.mkv": dict(size=(64, 48)),
    "tall.mp4": dict(size=(240, 640)),
    "wide.mp4": dict(size=(1920, 200)),
    "hd.mp4": dict(size=(1920, 1080)),
    "odd.mkv": dict(size=(334, 222)),
    "mute.mp4": dict(sound=None),
}


class Kinds(FilmTest):
    def assert_shown(self, name):
        make_film(self.film(name), seconds=12, **KINDS[name])
        player, main, window = self.play_in_window(name)
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        x, y = player.place(window)
        # Nothing of the picture lies over the title row or the strip.
        for place in ((WIDTH / 8, 10), (WIDTH / 8, HEIGHT - 3), (WIDTH - 5, HEIGHT - 20)):
            self.assertNotIn(self.session.pixel(x + place[0], y + place[1]),
                             ((255, 0, 0), (255, 255, 0), (0, 255, 0), (0, 0, 255)))
        self.assert_button(player, main, True)


for kind in KINDS:
    setattr(Kinds, "test_" + kind.replace(".", "_"),
            lambda self, name=kind: self.assert_shown(name))


class InTheWindow(FilmTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        make_film(cls.made + "/short.mp4", seconds=12)

    def full(self, player):
        # The keys mean full screen once the sound has faded in and the window is on top. The one of the
        # film before may still be there at first.
        def on_top():
            window = self.video(player, SCREEN, 1)
            return window if window and "ABOVE" in quiet(
                "xprop", "-id", window, "_NET_WM_STATE", env=self.session.env) else None
        window = wait_for(on_top)
        self.assertTrue(window, "no full screen")
        return window

    def test_picture_and_sound_go_together(self):
        recorder = self.recorder()
        player, _, window = self.play_in_window("film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)

        def together():
            heard = self.heard_second(recorder)
            return heard is not None and abs(self.film_time(rect) - heard - 0.5) < 1.0
        self.assertTrue(wait_for(together), "the picture is not where the sound is")

    def test_enter_stretches_it_over_the_screen_and_the_way_back_fits_it_to_the_window(self):
        player, _, window = self.play_in_window("film.mp4")
        self.assert_stretched(self.whole(player, window))
        home = player.place(window)
        self.session.key("Return", window)
        self.full(player)
        self.assert_stretched(FULL)
        self.assert_moves(FULL)
        self.session.key("Return", window)
        back = self.video(player)
        self.assertTrue(back, "no way back")
        self.assertTrue(wait_for(lambda: player.place(back) == home),
                        f"it comes back to {player.place(back)}, not to {home}")
        self.assert_stretched(self.whole(player, back))
        self.assert_moves(self.whole(player, back))
        self.session.key("Return", back)
        self.full(player)
        self.assert_stretched(FULL)
        self.assert_moves(FULL)

    def test_a_new_put_stretches_it_in_the_window_again(self):
        player, main, window = self.play_in_window("film.mp4", "film.mp4")
        self.session.key("Return", window)
        self.full(player)
        self.assert_stretched(FULL)
        self.session.key("Escape", window)
        self.assertTrue(self.video(player))
        self.session.key("F6", self.video(player))
        fresh = wait_for(lambda: self.stretched_over(
            self.whole(player, self.video(player) or main)))
        self.assertTrue(fresh, "the next film is not stretched over the window")

    def test_double_clicks_and_both_buttons_go_there_and_back(self):
        player, _, window = self.play_in_window("film.mp4")
        self.assert_stretched(self.whole(player, window))
        ways = {"the picture": (300, 200), "the strip": (330, HEIGHT - 12),
                "the title's button": (660, 13), "the strip's button": None}
        for name, place in ways.items():
            with self.subTest(way=name):
                if place is None:
                    left = self.strip_button(player, window)
                    player.click_at(window, left, HEIGHT - 20)
                else:
                    times = 2 if "button" not in name else 1
                    player.click_at(window, *place, times=times)
                full = self.full(player)
                self.assert_stretched(FULL)

                # While the sound still fades in, a double click means full screen once more.
                def back():
                    player.click_at(full, 600, 300, times=2)
                    return self.video(player, seconds=6)
                window = wait_for(back)
                self.assertTrue(window, "no way back")

    def strip_button(self, player, window):
        # Clock, volume bar and its image stand behind it, 100 twips apart.
        return WIDTH - (100 + 2400 + 100 + 1600 + 100 + 390 + 100 + 195) / 15

    def test_esc_leaves_full_screen_then_hides_and_the_sound_goes_on(self):
        recorder = self.recorder()
        player, main, window = self.play_in_window("film.mp4")
        self.session.key("Return", window)
        full = self.full(player)
        self.assert_stretched(FULL)
        self.session.key("Escape", full)
        window = self.video(player)
        self.assertTrue(window, "the first Esc hides the window")
        self.session.key("Escape", window)
        self.assertTrue(player.gone(window), "the second Esc does not hide it")
        self.assertIsNone(player.child.poll(), "the program has ended")
        before = self.heard_second(recorder)
        self.assertTrue(wait_for(lambda: (self.heard_second(recorder) or 0) > before + 1.5),
                        "the sound does not go on")

    def test_close_keeps_the_sound_and_the_button_brings_the_picture_back(self):
        recorder = self.recorder()
        player, main, window = self.play_in_window("film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        before = self.film_time(rect)
        player.click_at(window, 712, 13)  # close
        self.assertTrue(player.gone(window))
        second = self.heard_second(recorder)
        self.assertTrue(wait_for(lambda: (self.heard_second(recorder) or 0) > second + 1.5),
                        "the sound does not go on")
        player.click(main, "videoScreen_Button")
        window = self.video(player)
        self.assertTrue(window, "the button does not bring it back")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        self.assertGreater(self.film_time(rect), before + 1.5)
        self.session.key("F11", main)
        self.assertTrue(player.gone(window), "F11 does not hide it")
        self.session.key("F11", main)
        self.assertTrue(self.video(player), "F11 does not show it")

    def test_space_holds_the_picture_and_lets_it_go_on(self):
        recorder = self.recorder()
        player, _, window = self.play_in_window("film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assertIsNotNone(self.heard_second(recorder))
        self.session.key("space", window)
        self.assert_still(rect)
        self.session.key("space", window)
        self.assert_moves(rect)

    def test_a_click_on_its_seek_bar_moves_picture_and_sound(self):
        recorder = self.recorder()
        player, _, window = self.play_in_window("film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        player.click_at(window, WIDTH / 2, HEIGHT - STRIP + 10)
        self.assertTrue(wait_for(lambda: 57 < (self.film_time(rect) or 0) < 80),
                        f"the picture is at {self.film_time(rect)}")
        self.assertTrue(wait_for(lambda: 57 < (self.heard_second(recorder) or 0) < 90))

    def test_the_film_after_a_film_in_full_screen_comes_up_in_full_screen(self):
        player, main, window = self.play_in_window("short.mp4", "film.mp4")
        self.session.key("Return", window)
        self.full(player)
        self.assertTrue(wait_for(lambda: "film" in player.title(main) and
                                 "short" not in player.title(main), 60), "no next film")
        self.full(player)
        self.assertTrue(wait_for(lambda: (self.mark(FULL) or 1) < 0.4),
                        "the next film is not seen")
        self.assert_stretched(FULL)
        self.assert_moves(FULL)
        self.assertTrue(player.stays_away(lambda: self.video(player, seconds=0.1), main),
                        "a small window as well")

    def test_in_full_screen_it_follows_the_screen(self):
        player, _, window = self.play_in_window("film.mp4")
        self.session.key("Return", window)
        self.full(player)
        self.resize(1024, 768)
        self.assertTrue(self.video(player, (1024, 768)), "it keeps the size of the screen before")
        self.assert_stretched((0, 0, 1024, int(768 - STRIP)))

    def test_the_film_after_a_film_leaves_the_keyboard_where_it_is(self):
        player, main, window = self.play_in_window("short.mp4", "film.mp4")
        stranger = Stranger(self.session, 10, 10, 200, 150)
        quiet("xdotool", "windowactivate", "--sync", stranger.window, env=self.session.env)
        self.assertTrue(wait_for(lambda: "film" in player.title(main) and
                                 "short" not in player.title(main), 60), "no next film")
        fresh = wait_for(lambda: next((each for each in player.windows()
                                       if player.size(each) == (WIDTH, HEIGHT) and each != window),
                                      None))
        self.assertTrue(fresh, "no window of the next film")
        self.assert_moves(self.whole(player, fresh))
        self.assertEqual(quiet("xdotool", "getactivewindow", env=self.session.env), stranger.window)

    def test_a_dialog_is_seen_above_the_film_that_covers_the_screen(self):
        player, main, window = self.play_in_window("film.mp4")
        self.session.key("Return", window)
        full = self.full(player)
        self.assert_stretched(FULL)
        player.tool("windowactivate", "--sync", main)
        self.session.key("F7", main)

        def above():
            told = quiet("xprop", "-root", "_NET_CLIENT_LIST_STACKING", env=self.session.env)
            order = [int(number, 16) for number in re.findall(r"0x[0-9a-f]+", told)]
            return order and order[-1] not in (int(full), int(main)) and str(order[-1])
        dialog = wait_for(above)
        self.assertTrue(dialog, "the film hides the dialog that it waits for")
        x, y = player.point(dialog, 380, 60)
        self.assertTrue(wait_for(lambda: not any(near(self.session.pixel(x, y), colour)
                                                 for colour in COLUMNS)), "it is not painted")
        self.session.key("Escape", dialog)
        self.assertTrue(player.gone(dialog))
        self.session.key("Escape", full)
        self.assertTrue(self.video(player), "the film takes no key any more")

    def test_a_window_that_the_manager_closes_is_hidden_and_the_sound_goes_on(self):
        recorder = self.recorder()
        player, main, window = self.play_in_window("film.mp4")
        self.assert_stretched(self.whole(player, window))
        quiet("wmctrl", "-i", "-c", window, env=self.session.env)
        self.assertTrue(player.gone(window))
        second = self.heard_second(recorder)
        self.assertTrue(wait_for(lambda: (self.heard_second(recorder) or 0) > second + 1.5),
                        "the sound does not go on")
        self.session.key("F11", main)
        window = self.video(player)
        self.assertTrue(window, "F11 does not show it")
        self.assert_moves(self.whole(player, window))

    def test_stop_takes_the_window_away_and_play_brings_it_back(self):
        player, main, window = self.play_in_window("film.mp4")
        self.session.key("F4", window)
        self.assertTrue(player.gone(window))
        self.assert_button(player, main, False)
        self.session.key("F2", main)
        window = self.video(player)
        self.assertTrue(window)
        self.assert_stretched(self.whole(player, window))

    def test_a_sound_file_behind_a_film_hides_window_and_button(self):
        stairs(self.film("sound.wav"), 10, step=0)
        player, main, window = self.play_in_window("film.mp4", "sound.wav")
        self.session.key("F6", window)
        self.assert_title(player, main, "sound")
        self.assertTrue(player.gone(window))
        self.assertTrue(player.stays_away(lambda: self.video(player, seconds=0.1), main))
        self.assert_button(player, main, False)

    def test_a_drag_takes_the_picture_along_and_leaves_the_main_window(self):
        player, main, window = self.play_in_window("film.mp4")
        self.assert_stretched(self.whole(player, window))
        before, main_before = player.place(window), player.place(main)
        player.tool("mousemove", *player.point(window, 60, 13))
        player.tool("mousedown", 1)
        for _ in range(10):
            player.tool("mousemove_relative", "--", 10, 5)
        self.assertTrue(wait_for(lambda: player.place(window) != before))
        player.tool("mouseup", 1)
        self.assertTrue(player.done(window), "the drag is not handled to its end")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        self.assertEqual(player.place(main), main_before)


class WideSession(FilmSession):
    """Two monitors of 1280 x 800 beside each other."""
    screen = "2560x800x24"
    primary = "left"

    def _display(self):
        super()._display()
        for name, output, place in (("left", "screen", "+0+0"), ("right", "none", "+1280+0")):
            quiet("xrandr", "--setmonitor", ("*" if name == self.primary else "") + name,
                  "1280/340x800/212" + place, output, env=self.env)


class RightIsPrimary(WideSession):
    primary = "right"


class SecondMonitorIsPrimary(FilmTest):
    session_kind = RightIsPrimary

    def test_its_corner_is_the_origin_of_full_screen(self):
        player, _, window = self.play_in_window("film.mp4")
        x, _ = player.place(window)
        self.assertGreater(x, 1280, "the window does not stand on the primary monitor")
        outside = self.session.pixel(600, 400)
        self.session.key("Return", window)
        full = self.video(player, SCREEN)
        self.assertTrue(full, "no full screen of one monitor")
        self.assertTrue(wait_for(lambda: player.place(full) == (1280, 0)))
        self.assert_stretched((1280, *FULL[1:]))
        self.assertEqual(self.session.pixel(600, 400), outside, "the other monitor is covered")


class TwoMonitors(FilmTest):
    session_kind = WideSession

    def assert_two(self):
        listed = quiet("xrandr", "--listmonitors", env=self.session.env)
        self.assertIn("Monitors: 2", listed)

    def test_full_screen_covers_the_primary_monitor_alone(self):
        self.assert_two()
        player, _, window = self.play_in_window("film.mp4")
        x, _ = player.place(window)
        self.assertLess(x + WIDTH, 1280, "the window does not stand on the primary monitor")
        outside = self.session.pixel(1900, 400)
        self.session.key("Return", window)
        self.assertTrue(self.video(player, SCREEN), "no full screen of one monitor")
        self.assert_stretched(FULL)
        self.assert_moves(FULL)
        self.assertEqual(self.session.pixel(1900, 400), outside, "the other monitor is covered")

    def test_from_the_other_monitor_it_goes_to_the_primary_one(self):
        self.assert_two()
        player, _, window = self.play_in_window("film.mp4")
        player.move(window, 1500, 100)
        rect = self.whole(player, window)
        self.assertGreater(rect[0], 1280)
        self.assert_stretched(rect)
        self.session.key("Return", window)
        full = self.video(player, SCREEN)
        self.assertTrue(full)
        self.assertTrue(wait_for(lambda: player.place(full) == (0, 0)))
        self.assert_stretched(FULL)


class TheEnginesWindow(FilmTest):
    interface = "0"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        for name in ("copy.mp4", "last.mp4"):
            shutil.copy(cls.made + "/film.mp4", f"{cls.made}/{name}")

    def test_it_has_the_films_size_and_closing_it_keeps_the_sound(self):
        recorder = self.recorder()
        player, main = self.play("film.mp4")
        window = self.video(player, (640, 360))
        self.assertTrue(window, "the engine opens no window")
        rect = (*player.place(window), 640, 360)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        self.assertTrue(player.stays_away(lambda: self.video(player, seconds=0.1), main),
                        "the program's own window as well")
        player.tool("windowclose", window)
        self.assertTrue(player.gone(window))
        before = self.heard_second(recorder)
        self.assertTrue(wait_for(lambda: (self.heard_second(recorder) or 0) > before + 1.5),
                        "the sound does not go on")
        self.assertIsNone(player.child.poll())

    def test_the_settings_choose_the_window_of_the_next_film(self):
        player, main = self.play("film.mp4", "copy.mp4", "last.mp4")
        for size, name in (((640, 360), "film"), ((WIDTH, HEIGHT), "copy"), ((640, 360), "last")):
            self.assert_title(player, main, f"〗 {name}")
            window = self.video(player, size)
            self.assertTrue(window, f"no window of {size} for {name}")
            rect = (*player.place(window), *size)
            self.assert_stretched(rect if size == (640, 360) else self.whole(player, window))
            self.session.key("ctrl+s", main)
            settings = player.form(SETTINGS)
            self.assertTrue(settings, "the settings do not come up")
            # The check box that chooses it, on the page that is shown first; then OK.
            player.click_at(settings, (2280 + 400) / 15, (480 + 2850 + 165) / 15)
            player.click(settings, "qd", form=SETTINGS)
            self.assertTrue(player.gone(settings))
            self.assertTrue(player.size(window) == size, "it is not for the next film alone")
            self.session.key("F6", main)


if __name__ == "__main__":
    run(sys.argv[5:])
