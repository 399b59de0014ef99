#!/usr/bin/env python3
"""The search windows of the real program, by mouse and keyboard, on a household's own catalogue.

    test_network.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

The catalogue's program is named by the environment: VELMORA_CATALOGUE.
"""

import os
import signal
import sys
import time

from cases import run
from household import HouseholdTest
from player import design, stairs
from session import Recorder, quiet, rest, wait_for

LYRICS = design("src/network/search_Lrc_Internet_Form.form")
SONGS = design("src/network/search_Song_Internet_Form.form")
PANEL = (180 / 15, 480 / 15)  # of the download
BAR = (PANEL[0] + 240 / 15, PANEL[1] + 2610 / 15, 3930 / 15, 270 / 15)
STOP = (PANEL[0] + (1470 + 735) / 15, PANEL[1] + (3720 + 195) / 15)
ROW = 27
THERE = "该曲目文件已存在，是否覆盖？"
LYRIC = "[00:01.00]first words\r\n[00:02.00]second words\r\n"


class NetworkTest(HouseholdTest):
    def look_for(self, window, form, name, singer=""):
        for box, text in (("songName_Text", name), ("singer_Str", singer)):
            self.player.click(window, box, form=form)
            quiet("xdotool", "windowfocus", "--sync", window, env=self.session.env)
            quiet("xdotool", "key", "ctrl+a", "Delete", env=self.session.env)
            if text:
                quiet("xdotool", "type", "--delay", "8", text, env=self.session.env)
        self.player.click(window, "search_Button", form=form)

    def row(self, form, number):
        left, top, _, _ = form["search_Lrc_List" if form is LYRICS else "search_Song_List"]
        return left + 60, top + ROW * (number + 0.5)

    def rows_shown(self, window, form):
        """Whether the first row has letters: light pixels on the dark ground."""
        left, top, _, _ = form["search_Lrc_List" if form is LYRICS else "search_Song_List"]
        self.player.tool("mousemove", 1270, 790)
        return any(pixel > 110 for pixel in self.player.picture(window, left + 4, top + 4, 200, 18))

    def fetch_first(self, window, form):
        self.assertTrue(wait_for(lambda: self.rows_shown(window, form)), "no row is shown")
        self.player.click_at(window, *self.row(form, 0), times=2)


class Lyrics(NetworkTest):
    def setUp(self):
        super().setUp()
        with open(self.served + "/Harbour song.lrc", "w", newline="", encoding="utf-8") as file:
            file.write(LYRIC)
        with open(self.served + "/Other.lrc", "w", newline="", encoding="utf-8") as file:
            file.write("[00:09.00]other\r\n")
        self.track = self.music + "/Harbour song.wav"
        stairs(self.track, 20)

    def test_a_track_that_starts_finds_its_lyric_by_itself(self):
        self.serve()
        self.write_list([self.track])
        self.begin()
        quiet("xdotool", "windowfocus", "--sync", self.window, env=self.session.env)
        self.session.key("F6", self.window)
        self.assert_content(self.app("Lyrics", "Harbour song.LRC"), LYRIC.encode())

    def test_a_track_starts_at_once_where_no_catalogue_is_known(self):
        self.write_list([self.track])
        self.begin()
        begun = time.monotonic()
        self.session.key("F6", self.window)
        # The search is over when it says so; a host that does not answer takes ten times as long.
        self.assertTrue(self.player.says(self.window, "该曲目无对应的LRC格式歌词文件"))
        self.assertLess(time.monotonic() - begun, 10)
        self.assert_title(self.player, self.window, "1/1")
        self.assertFalse(os.path.exists(self.app("Lyrics", "Harbour song.LRC")))

    def test_a_lyric_is_searched_and_fetched_over_the_one_there(self):
        self.serve()
        self.write_list([self.track])
        self.begin()
        self.session.key("F6", self.window)
        self.assert_content(self.app("Lyrics", "Harbour song.LRC"), LYRIC.encode())
        window = self.open("search_Lrc_Internet", LYRICS)
        self.look_for(window, LYRICS, "Other")
        self.fetch_first(window, LYRICS)
        self.assert_content(self.app("Lyrics", "Harbour song.LRC"), b"[00:09.00]other\r\n")
        self.player.click(window, "close", form=LYRICS)
        self.assertTrue(self.player.gone(window))

    def tagged(self, name, title, artist):
        """A track whose tag says this."""
        path = f"{self.music}/{name}.wav"
        stairs(path, 5)
        with open(path, "ab") as file:
            file.write(b"TAG" + title.encode().ljust(30, b"\0") + artist.encode().ljust(30, b"\0") +
                       bytes(64) + b"\xff")
        return path

    def offer(self, name, title, artist):
        """A lyric of the catalogue, and what it holds as the catalogue gives it."""
        text = f"[ti:{title}]\r\n[ar:{artist}]\r\n[00:01.00]{name}\r\n"
        with open(f"{self.served}/{name}.lrc", "w", newline="", encoding="utf-8") as file:
            file.write(text)
        return text.encode()

    def test_a_lyric_is_looked_for_by_the_tag_then_by_the_title_then_by_the_name(self):
        both = self.offer("one", "Evening", "Anna")
        self.offer("two", "Evening", "Berta")
        title = self.offer("three", "Morning", "Clara")
        name = self.offer("four", "Noonday", "Dora")
        tracks = [self.tagged("By both", "Evening", "Anna"),
                  self.tagged("By title", "Morning", "Nobody"),
                  self.tagged("Noonday", "Unheard", "Unknown")]
        self.serve()
        self.write_list(tracks)
        self.begin()
        for track, expected in zip(("By both", "By title", "Noonday"), (both, title, name)):
            self.session.key("F6", self.window)
            self.assert_content(self.app("Lyrics", track + ".LRC"), expected)

    def at_rest(self, seconds=30):
        """What the main window's line shows, once it stands still."""
        return rest(lambda: self.player.look(self.window, "lrcBox"), seconds)

    def test_a_lyric_that_was_searched_and_fetched_is_shown_in_time(self):
        words = "[00:40.00]all in good time\r\n"
        with open(self.served + "/In time.lrc", "w", newline="", encoding="utf-8") as file:
            file.write(words)
        # The same words of a lyric that lies beside its track tell how they look.
        for name in ("known", "unheard"):
            stairs(f"{self.music}/{name}.wav", 60, level=0.05, step=0)
        with open(self.music + "/known.lrc", "w", newline="", encoding="utf-8") as file:
            file.write("".join(f"[00:{second:02}.00]all in good time\r\n" for second in range(60)))
        self.serve()
        self.write_list([f"{self.music}/{name}.wav" for name in ("known", "unheard")])
        self.begin()
        self.player.tool("mousemove", 1270, 790)
        before = self.at_rest()
        self.session.key("F6", self.window)
        self.assertTrue(wait_for(lambda: self.at_rest() != before, 60))
        known = self.at_rest()
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "unheard")
        window = self.open("search_Lrc_Internet", LYRICS)
        self.look_for(window, LYRICS, "In time")
        self.fetch_first(window, LYRICS)
        self.assert_content(self.app("Lyrics", "unheard.LRC"), words.encode())
        self.player.click(window, "close", form=LYRICS)
        self.assertTrue(self.player.gone(window))
        self.player.click(self.window, "load_Played_BG", share=37 / 60 * 0.98)
        begun = time.monotonic()
        self.player.tool("mousemove", 1270, 790)
        self.assertTrue(self.player.look(self.window, "lrcBox") != known, "it comes too early")
        self.assertTrue(wait_for(lambda: self.player.look(self.window, "lrcBox") == known, 60),
                        "it never comes")
        self.assertTrue(1 < time.monotonic() - begun < 15, "it does not come in time")

    def test_the_window_closes_by_its_button_and_opens_again(self):
        self.serve()
        self.begin()
        for _ in range(2):
            window = self.open("search_Lrc_Internet", LYRICS)
            self.player.click(window, "close", form=LYRICS)
            self.assertTrue(self.player.gone(window))


class Songs(NetworkTest):
    def cached(self, name):
        return self.app("Cache", name)

    def test_a_song_is_searched_fetched_listed_and_heard(self):
        stairs(self.served + "/Low tone.wav", 20)
        self.serve()
        self.begin()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        window = self.open("search_Song_Internet", SONGS)
        self.look_for(window, SONGS, "Low tone")
        self.fetch_first(window, SONGS)
        self.assert_content(self.cached("LOW TONE.WAV"), self.content(self.served + "/Low tone.wav"))
        self.assertTrue(wait_for(lambda: os.path.exists(self.list_file()) and
                                 self.list_lines() == [self.cached("LOW TONE.WAV")], 15))
        heard = self.now_playing(recorder)
        self.assertTrue(heard and 150 < heard < 2500, f"{heard} Hz is heard")
        # The same song again: it asks, and keeps what is there when told so.
        with open(self.cached("LOW TONE.WAV"), "r+b") as file:
            file.write(b"what is there")
        before = self.content(self.cached("LOW TONE.WAV"))
        self.player.click_at(window, *self.row(SONGS, 0), times=2)
        self.answer(self.player, "n", THERE)
        self.assertTrue(self.player.took(window))
        self.assertEqual(self.content(self.cached("LOW TONE.WAV")), before)
        self.player.click_at(window, *self.row(SONGS, 0), times=2)
        self.answer(self.player, "y", THERE)
        self.assert_content(self.cached("LOW TONE.WAV"), self.content(self.served + "/Low tone.wav"))

    def big_song(self, size):
        """A file that takes a while, mostly a hole on the disk."""
        stairs(self.served + "/Big.wav", 10)
        with open(self.served + "/Big.wav", "r+b") as file:
            file.truncate(size)

    def begin_big_download(self, size=1_900_000_000):
        self.big_song(size)
        self.serve()
        self.begin()
        window = self.open("search_Song_Internet", SONGS)
        self.look_for(window, SONGS, "Big")
        self.fetch_first(window, SONGS)
        self.assertTrue(wait_for(lambda: len(self.peek("BIG.WAV")) > 0, 30, 0.005))
        return window

    def peek(self, name):
        try:
            with open(self.cached(name), "rb") as file:
                return file.read(100)
        except FileNotFoundError:
            return b""

    def test_a_download_is_stopped_by_its_button_and_leaves_nothing(self):
        window = self.begin_big_download()
        self.player.click_at(window, *STOP)
        self.assertTrue(wait_for(lambda: not os.path.exists(self.cached("BIG.WAV")), 10),
                        "the part stays")
        # The window is itself again: it fetches the same song anew.
        self.player.click_at(window, *self.row(SONGS, 0), times=2)
        self.assertTrue(wait_for(lambda: len(self.peek("BIG.WAV")) > 0, 30, 0.005))
        self.player.click_at(window, *STOP)
        self.assertTrue(wait_for(lambda: not os.path.exists(self.cached("BIG.WAV")), 10))

    def test_a_download_is_stopped_by_closing_the_window_and_leaves_its_part(self):
        window = self.begin_big_download()
        self.player.click(window, "close", form=SONGS)
        self.assertTrue(self.player.gone(window))

        def steady():
            before = os.path.getsize(self.cached("BIG.WAV"))
            return wait_for(lambda: os.path.getsize(self.cached("BIG.WAV")) != before, 0.5) is None
        self.assertTrue(wait_for(steady))
        self.assertLess(os.path.getsize(self.cached("BIG.WAV")), 1_900_000_000)

    def filled(self, window):
        """How much of the bar is filled, by the grey of its upper edge; nothing of it is 0."""
        left, top, width, _ = BAR
        row = self.player.picture(window, left, top + 2, width, 1)
        return sum(pixel > 60 for pixel in row) / width

    def size_of(self, name):
        return os.path.getsize(self.cached(name)) if os.path.exists(self.cached(name)) else 0

    def test_a_song_stopped_half_way_is_fetched_again_over_its_part_and_heard(self):
        size = 200_000_000
        # The part is there as soon as a tenth has come; the server then holds its breath.
        window = self.begin_big_download(size)
        part = wait_for(lambda: self.size_of("BIG.WAV") > size / 10, 20, 0.002)
        self.server.send_signal(signal.SIGSTOP)
        self.assertTrue(part)

        def still():
            before = self.size_of("BIG.WAV")
            return wait_for(lambda: self.size_of("BIG.WAV") != before, 0.3) is None
        self.assertTrue(wait_for(still))
        come = self.size_of("BIG.WAV") / size
        self.assertTrue(0.1 < come < 0.9, f"{come} of it came at once")
        self.assertAlmostEqual(self.filled(window), come, delta=0.05)
        self.player.click(window, "close", form=SONGS)
        self.server.send_signal(signal.SIGCONT)
        self.assertTrue(self.player.gone(window))
        self.assertTrue(wait_for(still))
        self.assertLess(self.size_of("BIG.WAV"), size)
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        window = self.open("search_Song_Internet", SONGS)
        self.look_for(window, SONGS, "Big")
        self.fetch_first(window, SONGS)
        self.answer(self.player, "y", THERE)
        self.assertTrue(wait_for(lambda: self.size_of("BIG.WAV") == size, 30))
        self.assertTrue(wait_for(lambda: os.path.exists(self.list_file()) and
                                 self.list_lines() == [self.cached("BIG.WAV")], 15))
        heard = self.now_playing(recorder)
        self.assertTrue(heard and 150 < heard < 1500, f"{heard} Hz is heard")

    def test_the_program_ends_in_the_middle_of_a_download(self):
        window = self.begin_big_download()
        self.assertTrue(window)
        self.player.child.send_signal(signal.SIGTERM)
        self.assertTrue(self.player.ended(), "the program goes on")
        self.assertEqual(self.player.child.returncode, 0)


if __name__ == "__main__":
    run(sys.argv[5:])
