#!/usr/bin/env python3
"""The network's windows of the real program, by mouse and keys, on a server that misbehaves.

    test_trouble.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

The catalogue's program, which tells the player where its hosts are, is named by the environment:
VELMORA_CATALOGUE.
"""

import gzip
import os
import shutil
import sqlite3
import sys
import threading
import time

import misbehaving
from cases import run
from household import HouseholdTest
from misbehaving import AUDIO, OK, SOUND, answer, length
from player import PROGRAM, SETTINGS, WELCOME, design, stairs
from session import quiet, wait_for

LYRICS = design("src/network/search_Lrc_Internet_Form.form")
SONGS = design("src/network/search_Song_Internet_Form.form")
STOP = (180 / 15 + (1470 + 735) / 15, 480 / 15 + (3720 + 195) / 15)  # in the panel
ROW = 27


class TroubleTest(HouseholdTest):
    def setUp(self):
        super().setUp()
        self.net = misbehaving.Server()
        self.addCleanup(self.net.close)
        self.introduce(self.net.at)

    def search(self, control, form, word):
        window = self.open(control, form)
        self.search_again(window, form, word)
        return window

    def search_again(self, window, form, word):
        self.player.click(window, "songName_Text", form=form)
        quiet("xdotool", "windowfocus", "--sync", window, env=self.session.env)
        quiet("xdotool", "key", "ctrl+a", "Delete", env=self.session.env)
        quiet("xdotool", "type", "--delay", "8", word, env=self.session.env)
        self.player.click(window, "search_Button", form=form)

    def rows_shown(self, window):
        """Whether the first row has letters: light pixels on the dark ground."""
        left, top, _, _ = SONGS["search_Song_List"]
        self.player.tool("mousemove", 1270, 790)
        return any(pixel > 110 for pixel in self.player.picture(window, left + 4, top + 4, 200, 18))

    def over_row(self, window, number):
        left, top, _, _ = SONGS["search_Song_List"]
        self.player.tool("mousemove",
                         *self.player.point(window, left + 60, top + ROW * (number + 0.5)))

    def tree(self):
        return {os.path.join(folder, name) for folder, folders, names in os.walk(self.session.home)
                for name in folders + names}

    def assert_fit(self):
        """It goes on, and ends in order when told to."""
        self.assertIsNone(self.player.child.poll(), "the program ended")
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended(), "the program does not end")
        self.assertEqual(self.player.child.returncode, 0)


def record(name, link, kind="wav"):
    return f'<td class="data">0@@{name}@@album@@@@4100@@{kind}@@98@@FI{link};;</td>\r\n'


class SongsTest(TroubleTest):
    def songs(self, *records):
        page = "<html>\r\n" + "".join(records)
        self.net.answers["/fcgi-bin/m.q"] = answer(page.encode("gb18030"))
        self.begin()
        window = self.search("search_Song_Internet", SONGS, "anything")
        self.assertTrue(wait_for(lambda: self.rows_shown(window)), "no row is shown")
        return window

    def save(self, window, number):
        self.over_row(window, number)
        self.player.tool("click", 1)
        self.player.click(window, "save", form=SONGS)

    def cached(self):
        folder = self.app("Cache")
        return {name: self.content(f"{folder}/{name}") for name in os.listdir(folder)} \
            if os.path.isdir(folder) else {}

    def at_rest(self, window, control):
        since = [None, 0]

        def look():
            now = self.player.look(window, control, SONGS)
            if now != since[0]:
                since[:] = now, time.monotonic()
            return now if time.monotonic() - since[1] > 0.5 else None
        return wait_for(look)


class Songs(SongsTest):
    def assert_each_ends_well(self, good, bad):
        """Each song that is taken, by turns with one that is not, and what each leaves behind."""
        turns, records = [], []
        for number, (name, (reply, left)) in enumerate(
                song for pair in zip(good.items(), bad.items()) for song in pair):
            link = f"{self.net.at}/{name}"
            if isinstance(reply, str):
                link = reply
            else:
                self.net.answers[f"/{name}"] = reply
            turns.append((number, name, left))
            records.append(record(name, link))
        window = self.songs(*records)
        told = [None, None]  # what the title says of a song that came, and of one that did not
        expected = {}
        for number, name, left in turns:
            before = self.player.look(window, "title", SONGS)
            self.save(window, number)
            if left is not None:
                expected[name.upper() + ".WAV"] = left
            bad_one = number % 2
            if told[bad_one] is None:
                self.assertTrue(wait_for(lambda: self.cached() == expected and self.at_rest(
                    window, "title") != before, 60), f"{name}: {sorted(self.cached())}")
                told[bad_one] = self.at_rest(window, "title")
            self.assertTrue(wait_for(
                lambda: self.player.look(window, "title", SONGS) == told[bad_one], 60),
                f"{name} does not end as it should")
            self.assertEqual(self.cached(), expected, name)
        self.assertTrue(told[0] != told[1], "both say the same")
        self.assert_fit()

    def test_songs_whose_headers_are_wrong(self):
        whole = OK + AUDIO + length(len(SOUND))
        self.assert_each_ends_well(
            {"nolength": (OK + AUDIO + b"\r\n" + SOUND, SOUND),
             "tooshort": (OK + AUDIO + length(4) + b"\r\n" + SOUND, SOUND[:4]),
             "toolong": (OK + AUDIO + length(99_999) + b"\r\n" + SOUND, SOUND),
             "errorpage": (whole.replace(b"200 OK", b"404 No") + b"\r\n" + SOUND, SOUND),
             "chunked": (OK + AUDIO + b"Transfer-Encoding: chunked\r\n\r\n"
                         b"6\r\nchunks\r\n0\r\n\r\n", b"chunks")},
            {"bigheader": (whole + b"X-More: " + b"x" * 1024 + b"\r\n\r\n" + SOUND, None),
             "lowercase": ((whole + b"\r\n").lower() + SOUND, None),
             "empty": (OK + AUDIO + length(0) + b"\r\n", None),
             "otherkind": (answer(SOUND), None),
             "atonce": (misbehaving.at_once, None)})

    def test_songs_whose_bodies_are_troubled_or_lie_elsewhere(self):
        packed = gzip.compress(SOUND)
        whole = OK + AUDIO + length(len(SOUND)) + b"\r\n" + SOUND
        self.net.answers["/good"] = whole
        with misbehaving.socket.create_server(("127.0.0.1", 0)) as closed:
            closed_port = closed.getsockname()[1]
        self.assert_each_ends_well(
            {"packed": (OK + AUDIO + length(len(packed)) + b"Content-Encoding: gzip\r\n\r\n" +
                        packed, packed),
             "drips": (misbehaving.drip, SOUND),
             "late": (misbehaving.late, SOUND),
             "cut": (misbehaving.reset, SOUND[:500]),
             "elsewhere": (misbehaving.redirect(b"/good"), SOUND)},
            {"ring": (misbehaving.redirect(b"/ring"), None),
             "local": (misbehaving.redirect(b"file:///etc/passwd"), None),
             "closed": (f"http://127.0.0.1:{closed_port}/closed", None),
             "nobody": ("http://no-such-name.invalid/nobody", None),
             "noport": ("http://127.0.0.1:0x/noport", None)})

    def test_a_song_of_three_gigabytes_is_stopped_by_its_button(self):
        self.net.answers["/endless"] = misbehaving.endless
        window = self.songs(record("endless", self.net.at + "/endless"))
        self.save(window, 0)
        path = self.app("Cache", "ENDLESS.WAV")
        self.assertTrue(wait_for(lambda: os.path.exists(path) and os.path.getsize(path) > 0, 60))
        self.player.click_at(window, *STOP)
        self.assertTrue(wait_for(lambda: not os.path.exists(path), 60), "the part stays")
        self.assert_fit()

    def test_names_that_would_leave_the_folder_or_are_none(self):
        names = ("../../../evil", self.session.home + "/evil", "c:\\evil", "..\\evil", "nul\0evil", "x" * 300,
                 "月" * 100, "good")
        self.net.answers["/"] = OK + AUDIO + length(len(SOUND)) + b"\r\n" + SOUND
        # Without a name and a kind the link's last piece is the name.
        window = self.songs(*[record(name, f"{self.net.at}/{number}")
                              for number, name in enumerate(names)],
                            record("", self.net.at + "/a?b/..", ""))
        before = self.tree()
        told = []
        for number in range(len(names) + 1):
            self.save(window, number)
            told.append(self.at_rest(window, "title"))
        self.assertTrue(wait_for(lambda: "GOOD.WAV" in self.cached(), 60))
        new = self.tree() - before
        strays = [path for path in new if not os.path.dirname(path).endswith("/Cache")
                  and not path.endswith("/Cache")]
        self.assertEqual(strays, [])
        # One of a hundred ideographs is longer than a disk takes, one with a NUL is no name.
        self.assertEqual(list(self.cached()), ["GOOD.WAV"])
        self.assertEqual([name for name in os.listdir(self.session.home) if "evil" in name.lower()],
                         [])
        self.assertNotIn(told[-2], told[:-2] + told[-1:])
        self.assert_fit()

    def test_a_record_with_too_few_fields_ends_the_program_in_order(self):
        tracks = [f"{self.music}/{name}.wav" for name in ("one", "two")]
        for track in tracks:
            stairs(track, 1)
        self.write_list(tracks)
        listed = self.read_list()
        window = self.songs(f'<td class="data">0@@a@@b@@c@@1@@wav@@FI{self.net.at}/x;;</td>')
        settings = self.open_settings()
        self.player.click(settings, "qd", form=SETTINGS)
        self.assert_stored("PlayMode", "0")
        self.over_row(window, 0)
        self.assertTrue(self.player.ended(), "it goes on")
        self.assertEqual(self.player.child.returncode, 1)
        with open(self.session.home + "/errors.log", encoding="utf-8") as log:
            self.assertEqual(len(log.read().splitlines()), 1)
        self.assertEqual(self.read_list(), listed)
        database = sqlite3.connect(self.registry)
        self.assertEqual(database.execute("pragma integrity_check").fetchone(), ("ok",))
        database.close()
        self.assertEqual(self.stored("PlayMode"), "0")
        self.begin()
        self.assert_fit()

    def open_settings(self):
        self.session.key("ctrl+s", self.window)
        settings = self.player.form(SETTINGS)
        self.assertTrue(settings, "the settings do not come up")
        return settings


class Lyrics(TroubleTest):
    def test_pages_without_end_or_sense_leave_the_window_working(self):
        site = self.net.at
        good = f'<a href="{site}/">x</a>\r\n<a href="{site}/LrcDown/good.lrc">x</a>'
        self.net.answers["/m?"] = answer(b"<html>" + b"HREF" * 2_500_000)
        self.net.answers["/lrcdown/good.lrc"] = answer(b"[00:01.00]words\r\n")
        track = self.music + "/track.wav"
        stairs(track, 30)
        self.write_list([track])
        self.begin()
        window = self.search("search_Lrc_Internet", LYRICS, "anything")
        for page in ("<html>" + f'<a href="{site}/LrcDown/{"x" * 400}.lrc">' * 3,
                     "<html>\0<a href=" + "\0" * 500, "<html> href", good):
            self.net.answers["/m?"] = answer(page.encode())
            asked = len(self.net.asked)
            self.search_again(window, LYRICS, "other")
            self.assertTrue(wait_for(lambda: len(self.net.asked) >= asked + 2, 60),
                            "the window is dead")
        left, top, _, _ = LYRICS["search_Lrc_List"]
        self.session.key("F6", self.window)
        self.assert_content(self.app("Lyrics", "track.LRC"), b"[00:01.00]words\r\n")
        os.remove(self.app("Lyrics", "track.LRC"))
        self.player.click_at(window, left + 60, top + ROW / 2, times=2)
        self.assert_content(self.app("Lyrics", "track.LRC"), b"[00:01.00]words\r\n")
        self.assert_fit()


class Slow(TroubleTest):
    """A track whose lyric the server holds back until the test lets it go."""
    reads = True
    BY_HAND = "".join(f"[00:{second:02}.00]by hand\r\n" for second in range(60)).encode()

    def setUp(self):
        super().setUp()
        self.release = threading.Event()
        self.addCleanup(self.release.set)
        page = "<html>" + "".join(f'<a href="{self.net.at}/LrcDown/{n}.lrc">x</a>' for n in (1, 2, 3))
        self.net.answers["/m?"] = answer(page.encode())
        self.net.answers["/lrcdown/"] = answer(b"[00:00.00]from the server\r\n")
        for name in ("slow", "next"):
            stairs(f"{self.music}/{name}.wav", 60, level=0.05, step=0)
        with open(self.music + "/next.lrc", "wb") as file:
            file.write(self.BY_HAND.replace(b"by hand", b"of the next"))
        self.write_list([f"{self.music}/{name}.wav" for name in ("slow", "next")])

    def hold(self, beginning):
        """What begins so is answered only when it is let go."""
        reply = self.net.answers[beginning]

        def late(talk):
            self.release.wait(60)
            talk.sendall(reply)
        self.net.answers[beginning] = late
        self.begin()
        self.session.key("F6", self.window)
        self.assertTrue(wait_for(lambda: any(path.lower().startswith(beginning)
                                             for path in self.net.asked), 60), "nobody asks")

    def test_the_lyric_of_a_track_that_gave_way_is_kept_for_it_and_not_shown_to_the_next(self):
        self.hold("/m?")
        self.session.key("F6", self.window)
        self.release.set()
        self.assert_content(self.app("Lyrics", "slow.LRC"), b"[00:00.00]from the server\r\n", 30)
        self.assertTrue(self.player.took(self.window))
        self.assert_title(self.player, self.window, "2/2")
        self.assertTrue(self.player.says(self.window, "of the next"), "the next has lost its lyric")
        self.assert_fit()

    def test_a_lyric_that_was_saved_while_the_page_came_stays(self):
        self.hold("/m?")
        self.assert_kept()

    def test_a_lyric_that_was_saved_while_the_other_one_came_stays(self):
        self.hold("/lrcdown/")
        self.assert_kept()

    def assert_kept(self):
        path = self.app("Lyrics", "slow.LRC")
        with open(path, "wb") as file:
            file.write(self.BY_HAND)
        self.release.set()
        self.assertTrue(self.player.says(self.window, "by hand", 30), "another one is shown")
        self.assertEqual(self.content(path), self.BY_HAND)
        self.assertEqual([name for name in os.listdir(self.app("Lyrics")) if name != "slow.LRC"], [])
        self.assert_fit()


class Maker(TroubleTest):
    PAGE = ("[check]\r\nvesion=1.0.0\r\nupdate=0\r\n[config]\r\ntitle=Page\r\nprovider=p\r\n"
            "providerLink=http://127.0.0.1:9/\r\nbuttonStr0=a\r\nbuttonStr1=b\r\nbuttonStr2=c\r\n")

    def memory(self):
        with open(f"/proc/{self.player.child.pid}/status") as file:
            return next(int(line.split()[1]) // 1024 for line in file if line.startswith("VmHWM"))

    def assert_page_comes(self, more):
        self.net.answers["/source/mini/"] = answer((self.PAGE + more).encode())
        self.begin()
        page = self.open("welcome", WELCOME)
        self.assertTrue(self.player.says(page, "Page"), "the page is not shown")
        self.assertLess(self.memory(), 400)
        self.assert_fit()

    def test_a_page_of_two_thousand_million_banners_comes_up(self):
        self.assert_page_comes("[Advertising]\r\nAdvertisingNumbers=2000000000\r\n"
                               "index_0_Str=text\r\nindex_0_Link=http://127.0.0.1:9/\r\n")

    def test_a_page_of_two_thousand_million_lines_comes_up(self):
        self.assert_page_comes("[databases]\r\ndatabases_0_Ubound=2000000000\r\n"
                               "databases_0_0_Str=text\r\n")

    def test_a_page_with_keys_of_half_a_megabyte_comes_up(self):
        self.assert_page_comes("x" * 500_000 + "=y\r\n[databases]\r\ndatabases_0_Ubound=1\r\n"
                               "databases_0_0_Str=" + "z" * 500_000 + "\r\n")

    def test_a_page_of_more_than_a_megabyte_is_refused(self):
        self.net.answers["/source/mini/"] = answer(
            (self.PAGE + "[databases]\r\n" + "a=b\r\n" * 300_000).encode())
        self.begin()
        self.player.click(self.window, "welcome")
        self.answer(self.player, "Return", "远程数据传输错误！")
        self.assert_fit()

    def test_a_version_that_is_a_way_out_of_the_folder_is_not_fetched(self):
        self.net.answers["/source/softwareDate/"] = answer(
            f"[check]\r\nvesion=9.9.9/../../evil\r\ndownload={self.net.at}/program\r\n".encode())
        self.net.answers["/program"] = answer(b"#!/bin/sh\r\n")
        folder = self.session.home + "/program"
        os.makedirs(folder + "/zkPlayer [9.9.9")  # the way is there
        shutil.copy(PROGRAM, folder + "/velmora")
        self.player, self.window = self.start(folder + "/velmora")
        self.player.click(self.window, "title", button=3)
        self.assertTrue(self.player.menus(), "no menu comes up")
        for key in ("Up", "Up", "Up", "Up", "Return"):  # close, help, about, update
            self.session.key(key)
        self.answer(self.player, "y", "【9.9.9/../../evil】")
        self.answer(self.player, "Return", "升级失败")
        self.assertNotIn("/program", self.net.asked)
        self.assertEqual([path for path in self.tree() if "evil" in path], [])
        self.assert_fit()


if __name__ == "__main__":
    run(sys.argv[5:])
