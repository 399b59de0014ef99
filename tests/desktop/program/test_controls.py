#!/usr/bin/env python3
"""The buttons, bars and switches of the three windows that play, under the mouse: what they change
is recorded, and seen in the other windows.

    test_controls.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import shutil
import struct
import sys
import tempfile

from cases import run
from films import HEIGHT, SECONDS, STRIP, FilmTest, ffmpeg
from player import MAIN, MINI, PlayerTest, design, pitch
from session import RATE, Recorder, wait_for

INFO = design("src/playlist/playInfo_Form.form")
HIGH, LEVEL = 3000, 0.8


def low(second):
    return 300 + 20 * second


def make_sides(path, seconds=60, *video):
    """Left is a tone that is higher every second, right a high one."""
    source = (f"aevalsrc='{LEVEL}*sin(2*PI*(300+20*floor(t))*t)|{LEVEL}*sin(2*PI*{HIGH}*t)'"
              f":s={RATE}:d={seconds}")
    ffmpeg(*video, "-f", "lavfi", "-i", source, "-c:v", "copy", path)


class Listening:
    """What is heard of such a file."""

    def listen(self):
        self.recorder = Recorder(self.session)
        self.addCleanup(self.recorder.close)

    def samples(self, blocks=15):
        data = b"".join(block for _, block in self.recorder.blocks[-blocks:])
        return struct.unpack(f"<{len(data) // 2}h", data)

    def peak(self):
        return max(abs(value) for value in self.samples()) / 32767 / LEVEL

    def sides(self):
        """The pitches of both speakers, or None unless both sound all through."""
        if not all(Recorder.loud(block, 100) for _, block in self.recorder.blocks[-15:]):
            return None
        samples = self.samples()
        return pitch(samples[::2]), pitch(samples[1::2])

    def assert_channel(self, channel, seconds=30):
        """0 both, 1 the left one alone, 2 the right one alone; each on both speakers."""
        def hears():
            found = self.sides()
            if not found:
                return False
            high = [abs(one - HIGH) < 40 for one in found]
            return high == [[False, True], [False, False], [True, True]][channel]
        self.assertTrue(wait_for(hears, seconds), f"channel {channel} is not heard: {self.sides()}")

    def second(self):
        """The second of the file that is heard on the left speaker."""
        found = self.sides()
        return (found[0] - 300) / 20 if found else None

    def assert_second(self, first, last, seconds=8):
        self.assertTrue(wait_for(lambda: first <= (self.second() or -9) <= last, seconds),
                        f"second {self.second()} is heard, not {first} to {last}")

    def assert_level(self, level, seconds=30):
        self.assertTrue(wait_for(lambda: abs(self.peak() - level) < 0.08, seconds),
                        f"the amplitude is {self.peak()}, not {level}")

    def assert_faded_in(self):
        """A stop within the fade would leave the player in use; the bar stands at three quarters."""
        self.assert_level(0.75)

    def assert_silent(self, seconds=15):
        self.assertTrue(wait_for(lambda: self.peak() == 0, seconds), "it is not silent")


def filled(look, width):
    """The share of a bar that its fill covers: the fill is one level piece of its middle row."""
    height = len(look) // int(width)
    row = look[int(width) * (height // 2):][:int(width)]
    edges = [x for x in range(4, len(row) - 4) if abs(row[x + 1] - row[x - 1]) > 12]
    return max(edges) / len(row) if edges else 0


class Sound(PlayerTest, Listening):
    @classmethod
    def setUpClass(cls):
        cls.made = tempfile.mkdtemp(prefix="velmora-sides-")
        cls.addClassCleanup(shutil.rmtree, cls.made, True)
        make_sides(cls.made + "/one.flac")
        shutil.copy(cls.made + "/one.flac", cls.made + "/two.flac")
        with open(cls.made + "/one.lrc", "w", encoding="utf-8") as file:
            file.write("".join(f"[00:{second:02}.00]All the words\r\n" for second in range(60)))

    def setUp(self):
        super().setUp()
        self.tracks = [f"{self.made}/one.flac", f"{self.made}/two.flac"]
        self.write_list(self.tracks)
        self.player, self.main = self.start()
        self.listen()

    def press(self, control):
        self.player.click(self.main, control)

    def begin(self):
        self.press("nextButton")
        self.assert_title(self.player, self.main, "one")
        self.assert_second(0, 8)


class MainWindow(Sound):
    reads = True

    def test_the_switch_goes_from_both_to_left_to_right_and_is_kept_by_the_next_track(self):
        self.begin()
        self.assert_channel(0)
        self.press("AudioSource_H")
        self.assert_channel(1)
        self.press("AudioSource_L")
        self.assert_channel(2)
        self.press("nextButton")
        self.assert_title(self.player, self.main, "two")
        self.assert_channel(2)
        self.press("AudioSource_R")
        self.assert_channel(0)

    def test_the_switch_does_not_move_while_nothing_is_open(self):
        self.assertIn("立体声", self.player.words(self.main))
        self.press("AudioSource_H")
        self.assertTrue(self.player.took(self.main))
        self.assertIn("立体声", self.player.words(self.main))
        self.begin()
        self.assert_channel(0)

    def test_each_button_of_the_transport_is_heard(self):
        self.begin()
        self.press("pauseButton")
        self.assert_silent()
        self.press("playButton")
        self.assert_second(0, 15)
        self.press("nextButton")
        self.assert_title(self.player, self.main, "two")
        self.assert_second(0, 5)
        self.press("upButton")
        self.assert_title(self.player, self.main, "one")
        self.assert_second(0, 5)
        self.assert_faded_in()
        self.press("stopButton")
        self.assert_silent()
        self.press("playButton")
        self.assert_second(0, 5)

    def test_two_quick_seeks_end_at_the_second_and_clicks_within_the_fade_count(self):
        self.begin()
        left, top, width, height = MAIN["load_Played_BG"]
        for share in (0.9, 0.25):
            self.player.click_at(self.main, left + width * share, top + height / 2)
        self.assert_second(14, 22)
        # The sound fades in: a switch, a pause and the way on are taken at once all the same.
        self.player.click_at(self.main, left + width * 0.5, top + height / 2)
        self.press("AudioSource_H")
        self.assert_channel(1)
        self.player.click_at(self.main, left + width * 0.1, top + height / 2)
        self.press("pauseButton")
        self.assert_silent()

    def test_a_press_within_the_fade_that_is_held_beyond_it_counts(self):
        left, top, width, height = MAIN["nextButton"]
        self.player.tool("mousemove", *self.player.point(self.main, left + width / 2, top + height / 2))
        self.player.tool("click", 1, "mousedown", 1)
        self.assert_title(self.player, self.main, "one")
        self.assert_faded_in()
        self.player.tool("mouseup", 1)
        self.assert_title(self.player, self.main, "two")


class MiniWindow(Sound):
    reads = True

    def setUp(self):
        super().setUp()
        self.press("mini_Button")
        self.strip = self.player.form(MINI)
        self.assertTrue(self.strip, "the strip does not come up")
        self.lock_strip(self.player, self.strip)

    def press_strip(self, control, share=0.5):
        self.player.click(self.strip, control, share, form=MINI)

    def begin_strip(self):
        self.press_strip("nextButton")
        self.assert_second(0, 8)

    def test_each_button_of_the_transport_is_heard(self):
        self.begin_strip()
        self.press_strip("pauseButton")
        self.assert_silent()
        self.press_strip("playButton")
        self.assert_second(0, 15)
        self.press_strip("load_Played_BG", 0.75)
        self.assert_second(43, 52)
        self.press_strip("nextButton")
        self.assert_second(0, 5)
        self.press_strip("load_Played_BG", 0.5)
        self.assert_second(29, 36)
        self.press_strip("upButton")
        self.assert_second(0, 5)
        self.assert_faded_in()
        self.press_strip("stopButton")
        self.assert_silent()
        self.press_strip("playButton")
        self.assert_second(0, 5)

    def test_its_volume_bar_is_heard_and_the_main_window_shows_the_same(self):
        self.begin_strip()
        self.assert_level(0.75)
        for share in (0.25, 0.5):
            self.press_strip("Volume_Set_BG", share)
            self.assert_level(share)
        self.press_strip("mini_Button")
        self.assertTrue(self.player.gone(self.strip))
        left, top, width, _ = MAIN["Volume_Set_BG"]
        self.player.tool("mousemove", 5, 5)

        def share():
            y = MAIN["Volume_Set"][1] - top
            return filled(self.player.picture(self.main, left, top + y, width, 3), width)
        self.assertTrue(wait_for(lambda: abs(share() - 0.5) < 0.05),
                        f"the main window's bar shows {share()}")
        self.press("Volume_ICO")
        self.assert_silent()

    def test_mute_is_silent_and_the_next_track_stays_so(self):
        self.begin_strip()
        self.press_strip("Volume_ICO")
        self.assert_silent()
        self.press_strip("nextButton")
        self.assertTrue(self.player.says(self.strip, "two"))
        self.assertTrue(wait_for(lambda: any("00:00:02" <= each < "00:01" for each in
                                             self.player.words(self.strip, 1))),
                        "the next track does not play")
        self.assertEqual(self.peak(), 0, "the next track is heard")
        self.press_strip("Volume_Set_BG", 0.5)
        self.assert_level(0.5)

    def test_it_shows_the_lyric_and_its_two_windows_come_and_go(self):
        empty = self.player.look(self.strip, "lrcBox", MINI)
        self.press_strip("playInfo")
        box = self.assert_box(self.player, "没有播放曲目，无法获得正在播放曲目的信息！")
        self.session.reply("Return", box)
        self.assertTrue(self.player.gone(box))
        self.begin_strip()
        self.assertTrue(wait_for(lambda: self.player.look(self.strip, "lrcBox", MINI) != empty),
                        "no lyric in the strip")
        self.press_strip("playInfo")
        info = self.player.form(INFO)
        self.assertTrue(info, "the track's window does not come up")
        self.press_strip("playInfo")
        self.assertTrue(self.player.gone(info))
        self.press_strip("desktop_Lrc")

        def letters():
            """Whether the lowest part of the screen shows anything but the ground."""
            bottom = self.player.picture(self.strip, 0, 600, 1000, 190)
            return len(set(bottom)) > 1
        self.assertTrue(wait_for(letters), "the desktop line does not come up")
        self.press_strip("desktop_Lrc")
        self.assertTrue(wait_for(lambda: not letters()), "the desktop line stays")


class VideoWindow(FilmTest, Listening):
    """Places in the strip by the order in which its controls are laid out."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        make_sides(cls.made + "/one.mkv", SECONDS, "-i", cls.made + "/film.mp4")
        shutil.copy(cls.made + "/one.mkv", cls.made + "/two.mkv")

    def setUp(self):
        super().setUp()
        self.listen()
        self.player, self.main, self.window = self.play_in_window("one.mkv", "two.mkv")
        self.assert_stretched(self.whole(self.player, self.window))

    PLACES = {"play": 347, "stop": 842, "previous": 1337, "next": 1832, "switch": 5415,
              "mute": 6455}

    def press(self, place):
        self.press_at(self.PLACES[place], 547)

    def press_at(self, x, y):
        self.player.click_at(self.window, x / 15, HEIGHT - STRIP + y / 15)

    def renewed(self):
        """A new film has a new window."""
        old = self.window
        self.assertTrue(self.player.gone(old), "the old window stays")
        self.window = self.video(self.player)
        self.assertTrue(self.window, "no window for the next film")

    def test_the_switch_and_the_volume_are_heard_and_kept_by_the_next_film(self):
        self.assert_channel(0)
        self.press("switch")
        self.assert_channel(1)
        self.press("switch")
        self.assert_channel(2)
        self.press_at(6750 + 1600 * 0.4, 547)
        self.assert_level(0.4)
        self.press("next")
        self.renewed()
        self.assert_title(self.player, self.main, "two")
        self.assert_channel(2)
        self.assert_level(0.4)
        self.press("switch")
        self.assert_channel(0)
        self.press("mute")
        self.assert_silent()

    def test_the_main_windows_bars_and_switch_change_the_film(self):
        rect = self.whole(self.player, self.window)
        self.assert_second(0, 60)
        self.player.tool("windowactivate", "--sync", self.main)
        self.player.move(self.main, 0, 600)
        self.player.click(self.main, "AudioSource_H")
        self.assert_channel(1)
        self.player.click(self.main, "AudioSource_L")
        self.assert_channel(2)
        self.player.click(self.main, "AudioSource_R")
        self.assert_channel(0)
        self.player.click(self.main, "Volume_Set_BG", 0.25)
        self.assert_level(0.25)
        self.player.click(self.main, "load_Played_BG", 0.7)
        self.assertTrue(wait_for(lambda: 80 < (self.film_time(rect) or 0) < 100),
                        f"the picture is at {self.film_time(rect)}")
        self.assert_second(80, 110)

    def test_each_button_of_the_transport(self):
        self.press("play")  # the place of pause
        self.assert_silent()
        self.assert_still(self.whole(self.player, self.window))
        self.press("play")
        self.assert_moves(self.whole(self.player, self.window))
        self.assert_second(0, 25)
        self.press("next")
        self.renewed()
        self.assert_title(self.player, self.main, "two")
        self.assert_second(0, 10)
        self.press("previous")
        self.renewed()
        self.assert_title(self.player, self.main, "one")
        self.assert_second(0, 10)
        self.assert_faded_in()
        self.press("stop")
        self.assertTrue(self.player.gone(self.window))
        self.assert_silent()

    def test_each_key(self):
        self.assert_second(0, 20)
        self.session.key("F3", self.window)
        self.assert_silent()
        self.session.key("F2", self.window)
        self.assert_second(0, 25)
        for key, name in (("F6", "two"), ("F6", "one"), ("F6", "two"), ("F5", "one")):
            self.session.key(key, self.window)
            self.renewed()
            self.assert_title(self.player, self.main, name)
        self.session.key("F11", self.window)
        self.assertTrue(self.player.gone(self.window))
        self.assertIsNone(self.player.child.poll())


if __name__ == "__main__":
    run(sys.argv[5:])
