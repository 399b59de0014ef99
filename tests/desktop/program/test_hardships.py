#!/usr/bin/env python3
"""What the disk, the sound server and the system may do to a program that starts or plays.

    test_hardships.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import shutil
import signal
import sqlite3
import subprocess
import sys

from cases import run
from films import ffmpeg
from listing import SURE, ListTest
from player import LIST, NO_SOUND_CARD, PROGRAM, SETTINGS, SPLASH, TITLE, Player, PlayerTest, stairs
from session import Recorder, quiet, wait_for


class HardshipTest(ListTest):
    count = 3

    def errors(self):
        with open(self.session.home + "/errors.log") as told:
            return told.read().strip().splitlines()

    def program_with(self, *preparations):
        """The program in a view of the file system that is its own and prepared by root there."""
        path = self.session.home + "/prepared"
        with open(path, "w") as script:
            script.write("#!/bin/sh\nexec unshare -rm sh -e -c '" +
                         "; ".join((*preparations, f"exec \"{PROGRAM}\"")) + "'\n")
        os.chmod(path, 0o755)
        tried = subprocess.run(["unshare", "-rm", "true"], stderr=subprocess.DEVNULL, check=False)
        if tried.returncode != 0:
            self.skipTest("no view of the file system can be made here")
        return path

    def delete_row(self, player, rows, row):
        self.click_row(player, rows, row)
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)

    def end(self, player, main):
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)


class Settings(HardshipTest):
    """The file of the settings."""

    def setUp(self):
        super().setUp()
        player, main = self.start()
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")
        self.end(player, main)
        self.file = self.registry_file()

    def last_file(self):
        database = sqlite3.connect(self.file, timeout=0)
        try:
            return [bytes(row[0], "utf-8") if isinstance(row[0], str) else row[0] for row in
                    database.execute("select data from entries where folded = 'LASTPLAYFILENAME'")]
        finally:
            database.close()

    def whole(self):
        database = sqlite3.connect(self.file)
        try:
            return database.execute("pragma integrity_check").fetchone()[0]
        finally:
            database.close()

    def assert_locked(self, *locks, titles):
        """With the file locked so the titles come one by one, and nothing is stored."""
        holder = sqlite3.connect(self.file)
        for lock in locks:
            holder.execute(lock)
        try:
            player, main = self.start()
            self.assertTrue(player.took(main))
            # A known track's title comes with the first roll, which the window does not wait for.
            self.assert_title(player, main, titles[0])
            for title in titles[1:]:
                self.session.key("F6", main)
                self.assert_title(player, main, title)
            self.end(player, main)
        finally:
            holder.rollback()
            holder.close()
        self.assertEqual(self.last_file(), [self.tracks[0].encode()])
        self.assertEqual(self.whole(), "ok")
        self.assertEqual(os.listdir(os.path.dirname(self.file)).count("registry.sqlite"), 1)

    def test_locked_for_writing_by_another_program_it_is_read_and_the_program_usable(self):
        self.assert_locked("begin exclusive", titles=("track 0", "track 1", "track 2"))

    def test_locked_for_reading_too_it_leaves_the_defaults_and_the_program_usable(self):
        # With the settings it would show the last track and go on behind it.
        self.assert_locked("pragma locking_mode = exclusive", "begin exclusive",
                           titles=(TITLE, "track 0", "track 1"))

    def test_read_only_it_is_read_and_left_as_it_is(self):
        folder = os.path.dirname(self.file)
        with open(self.file, "rb") as file:
            before = file.read()
        player, main = self.start(self.program_with(
            f"mount --bind {folder} {folder}", f"mount -o remount,ro,bind {folder}"))
        self.assert_title(player, main, "track 0")  # the last file is known
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        player.click(main, "playSet_Button")
        window = player.form(SETTINGS)
        self.assertTrue(window, "the settings do not come up")
        player.click(window, "yy", form=SETTINGS)  # apply
        player.click(window, "close", form=SETTINGS)
        self.assertTrue(player.gone(window))
        self.end(player, main)
        with open(self.file, "rb") as file:
            self.assertEqual(file.read(), before)

    def test_a_start_on_a_full_disk_reads_everything_and_stores_again_when_there_is_room(self):
        folder = os.path.dirname(self.file)
        aside = self.session.home + "/aside"
        player, main = self.start(self.program_with(
            f"cp -r \"{folder}\" \"{aside}\"",
            f"mount -t tmpfs -o size=128k tmpfs \"{folder}\"",
            f"cp \"{aside}/registry.sqlite\" \"{folder}\"",
            f"cat /dev/zero > \"{folder}/filler\" 2> /dev/null || true"))
        self.assert_title(player, main, "track 0")  # the last file is known
        seen = f"/proc/{player.child.pid}/root{folder}"
        self.assertGreater(os.path.getsize(seen + "/filler"), 10_000, "the disk is not full")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        os.remove(seen + "/filler")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 2")
        # Looked at in a copy: the program holds this file alone.
        self.file = aside + "/registry.sqlite"

        def stored():
            for name in os.listdir(seen):
                shutil.copy(f"{seen}/{name}", aside)
            return self.last_file() == [self.tracks[2].encode()]
        self.assertTrue(wait_for(stored), "with room again nothing is stored")
        self.end(player, main)
        self.assertEqual(self.errors(), [])

    def test_read_only_beside_a_journal_it_is_read(self):
        folder = os.path.dirname(self.file)
        player, main = self.start()
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        self.assertTrue(wait_for(lambda: self.last_file() == [self.tracks[1].encode()]))
        os.kill(player.child.pid, signal.SIGKILL)
        self.assertTrue(player.ended())
        os.remove(self.file + "-shm")
        self.assertTrue(os.path.getsize(self.file + "-wal"))
        player, main = self.start(self.program_with(
            f"mount --bind {folder} {folder}", f"mount -o remount,ro,bind {folder}"))
        self.assert_title(player, main, "track 1")  # which only the journal knows
        self.end(player, main)
        self.assertEqual(self.errors(), [])

    def test_of_a_newer_program_it_is_read_and_left_to_it(self):
        database = sqlite3.connect(self.file)
        database.execute("pragma user_version = 2")
        database.execute("alter table entries add column later integer not null default 1")
        database.close()
        with open(self.file, "rb") as file:
            before = file.read()
        player, main = self.start()
        self.assert_title(player, main, "track 0")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        self.end(player, main)
        with open(self.file, "rb") as file:
            self.assertEqual(file.read(), before)
        self.assertEqual([line for line in self.errors() if "newer version" in line], self.errors())
        self.assertEqual(len(self.errors()), 1)

    def test_a_full_disk_keeps_what_it_holds(self):
        player, main = self.start()
        self.assert_title(player, main, "track 0")
        subprocess.run(["prlimit", "--pid", str(player.child.pid), "--fsize=2048:"], check=True)
        for title in ("track 1", "track 2"):
            self.session.key("F6", main)
            self.assert_title(player, main, title)
        self.assertEqual(self.last_file(), [self.tracks[0].encode()])
        subprocess.run(["prlimit", "--pid", str(player.child.pid), "--fsize=unlimited:"],
                       check=True)
        self.session.key("F5", main)
        self.assert_title(player, main, "track 1")
        self.assertTrue(wait_for(lambda: self.last_file() == [self.tracks[1].encode()]),
                        "with room again nothing is stored")
        self.end(player, main)
        self.assertEqual(self.whole(), "ok")


class Lists(HardshipTest):
    def test_in_a_folder_that_cannot_be_written_it_is_played_and_kept(self):
        folder = os.path.dirname(self.list_file())
        player, main = self.start(self.program_with(
            f"mount --bind \"{folder}\" \"{folder}\"",
            f"mount -o remount,ro,bind \"{folder}\""))
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.delete_row(player, rows, 0)
        self.assertTrue(wait_for(lambda: self.rows_shown(player, rows) == 2))
        self.assertEqual(self.list_lines(), self.tracks)
        self.assertTrue(player.stays_away(player.boxes, main), "a message comes up")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        self.end(player, main)
        self.assertEqual(self.list_lines(), self.tracks)
        self.assertEqual(len(os.listdir(folder)), 1)

    def test_longer_than_a_list_can_be_it_comes_up_and_the_rest_is_kept_at_the_first_save(self):
        lines = [f"/nowhere/at all/number {number}.mp3" for number in range(40000)]
        self.write_list(self.tracks + lines)
        player, main, rows = self.start_with_list()
        self.delete_row(player, rows, 0)
        kept = (self.tracks + lines)[1:32767]
        self.assertTrue(wait_for(lambda: self.list_lines() == kept, 60), "not the rows it took")
        with open(self.list_file() + ".old", newline="", encoding="utf-8") as old:
            self.assertEqual(old.read().split("\r\n")[:-1], self.tracks + lines)
        self.session.key("F6", main)
        self.assert_title(player, main, "/32766〗 track 1")
        self.end(player, main)


class Server(PlayerTest):
    """The sound server under a program that plays a track."""

    def setUp(self):
        super().setUp()
        self.track = self.music + "/stairs.wav"
        stairs(self.track, 60, base=300)
        self.write_list([self.track])

    def recorder(self):
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        return recorder

    def begin(self):
        self.player, self.main = self.start()
        self.session.key("F6", self.main)
        self.assert_title(self.player, self.main, "stairs")

    def second(self, recorder):
        heard = self.now_playing(recorder, 8)
        return None if heard is None else (heard - 300) / 100

    def time_moves(self):
        before = self.player.look(self.main, "play_Time")
        return wait_for(lambda: self.player.look(self.main, "play_Time") != before)

    def test_one_that_dies_and_comes_back_is_heard_again_at_its_place(self):
        recorder = self.recorder()
        self.begin()
        before = self.second(recorder)
        self.assertIsNotNone(before)
        self.session.pulse.kill()
        self.session.pulse.wait()
        for _ in range(3):
            self.assertTrue(self.time_moves(), "the time stands still")
        self.session.start_sound()
        again = self.recorder()
        after = self.second(again)
        self.assertIsNotNone(after, "it is not heard again")
        self.assertGreater(after, before + 2)
        player = self.player
        player.click(self.main, "load_Played_BG", 0.75)
        self.assertTrue(wait_for(lambda: 43 < (self.second(again) or 0) < 52, 20))
        self.session.key("Escape", self.main)
        self.assertTrue(player.ended())

    def test_one_that_hangs_holds_no_key_up(self):
        recorder = self.recorder()
        self.begin()
        self.assertIsNotNone(self.second(recorder))
        os.kill(self.session.pulse.pid, signal.SIGSTOP)
        try:
            player = self.player
            player.click(self.main, "load_Played_BG", 0.5)
            self.session.key("F3", self.main)
            self.session.key("F2", self.main)
            self.session.key("F4", self.main)
            self.assertTrue(wait_for(lambda: player.title(self.main) == TITLE, 60),
                            "the program hangs")
            self.session.key("Escape", self.main)
            self.assertTrue(player.ended(), "it does not end")
            self.assertEqual(player.child.returncode, 0)
        finally:
            os.kill(self.session.pulse.pid, signal.SIGCONT)


class LateServer(Server):
    """None is there at the start."""
    reads = True
    sound = False

    def hear_what_begins_without_a_server(self):
        self.player = Player(self.session)
        box = self.assert_box(self.player, NO_SOUND_CARD)
        self.session.reply("Return", box)
        self.main = self.player.window()
        self.session.key("F6", self.main)
        self.assert_title(self.player, self.main, "stairs")
        self.assertTrue(self.time_moves())
        self.session.start_sound()
        self.assertIsNotNone(self.second(self.recorder()), "the late server plays nothing")

    def test_it_is_found(self):
        self.hear_what_begins_without_a_server()

    def test_it_is_found_by_the_engine_of_films_too(self):
        film = self.music + "/stairs.m4a"
        ffmpeg("-i", self.track, film)
        self.write_list([film])
        self.hear_what_begins_without_a_server()

    test_one_that_dies_and_comes_back_is_heard_again_at_its_place = None
    test_one_that_hangs_holds_no_key_up = None


class Notes(HardshipTest):
    def test_without_a_sound_font_notes_are_silent_and_the_next_track_plays(self):
        notes = self.music + "/notes.mid"
        with open(notes, "wb") as file:
            file.write(b"MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\x0f\0\x90\x45\x64\x8f\0\x80\x45\0"
                       b"\0\xff\x2f\0\0\0\0")
        self.write_list([self.tracks[0], notes, self.tracks[1]])
        player, main = self.start(self.program_with("mount -t tmpfs none /usr/share/sounds"))
        self.session.key("F6", main)
        self.assert_title(player, main, "track 0")
        self.session.key("F6", main)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE), player.title(main))
        self.assertTrue(player.stays_away(player.boxes, main), "a message comes up")
        self.session.key("F6", main)
        self.assert_title(player, main, "track 1")
        self.end(player, main)


class Ends(HardshipTest):
    """Each way to the one exit."""

    def begin(self):
        player, main = self.start()
        self.session.key("F6", main)
        self.assert_title(player, main, "track")
        return player, main

    def assert_ends(self, player):
        self.assertTrue(player.ended(), "it does not end")
        self.assertEqual(player.child.returncode, 0)
        self.assertEqual(self.errors(), [])
        self.assertEqual(self.list_lines(), self.tracks)

    def test_by_the_signals_of_a_session_that_ends(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            with self.subTest(signal=number):
                player, _ = self.begin()
                os.kill(player.child.pid, number)
                self.assert_ends(player)

    def test_by_the_window_managers_close_of_the_main_window_and_by_its_button(self):
        player, main = self.begin()
        quiet("wmctrl", "-i", "-c", main, env=self.session.env)
        self.assert_ends(player)
        player, main = self.begin()
        player.click(main, "closeButton")
        self.assert_ends(player)

    def test_by_a_display_that_goes_away(self):
        player, _ = self.begin()
        self.session.server.kill()
        self.session.server.wait()
        self.assertTrue(player.ended(), "it stays without a display")
        self.assertGreaterEqual(player.child.returncode, 0, "it crashed")
        self.assertEqual(self.list_lines(), self.tracks)


class Splash(PlayerTest):
    reads = True
    sound = False  # the message of that holds the start up

    def test_it_stands_in_the_middle_while_the_program_starts_and_goes_with_the_main_window(self):
        player = Player(self.session)
        box = self.assert_box(player, NO_SOUND_CARD)
        splash = player.form(SPLASH)
        self.assertTrue(splash, "no splash")
        self.assertIsNone(player.window(0.2), "the main window is there already")
        place, (width, height) = player.place(splash), SPLASH["form"][2:4]
        self.assertAlmostEqual(place[0], (1280 - width) / 2, delta=2)
        self.assertAlmostEqual(place[1], (800 - height) / 2, delta=2)
        self.assertGreater(len(set(player.look(splash, "form", SPLASH))), 16, "nothing is drawn")
        self.session.reply("Return", box)
        self.assertTrue(player.window())
        self.assertTrue(player.gone(splash), "the splash stays")


if __name__ == "__main__":
    run(sys.argv[5:])
