#!/usr/bin/env python3
"""The real program on a real screen with recorded sound: keys and mouse as a person would use them.

    test_player.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import glob
import os
import signal
import sqlite3
import struct
import subprocess
import sys
import time
import unittest

from cases import run
from player import NO_SOUND_CARD, PROGRAM, TITLE, Player, PlayerTest, stairs
from session import Recorder, quiet, wait_for


class Playing(PlayerTest):
    def test_plays_the_list_by_keys_and_ends_by_esc(self):
        one, two = f"{self.music}/one two.wav", f"{self.music}/灯火 100%.wav"
        stairs(one, 20, base=500, step=0)
        stairs(two, 20, base=1000, step=0)
        self.write_list([one, two])
        player, window = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.session.key("F6", window)
        self.assert_title(player, window, "one two")
        self.assertAlmostEqual(self.now_playing(recorder), 500, delta=10)
        self.session.key("F6", window)
        self.assert_title(player, window, "灯火 100%")
        self.assertTrue(wait_for(lambda: abs((self.now_playing(recorder, 2) or 0) - 1000) < 20))
        self.session.key("F5", window)
        self.assert_title(player, window, "one two")
        self.session.key("F3", window)
        self.assertIsNotNone(recorder.first(time.monotonic(), loud=False, run=20),
                             "pause is not silent")
        self.session.key("F2", window)
        self.assertIsNotNone(recorder.first(time.monotonic(), run=20), "play does not resume")
        self.session.key("F4", window)
        self.assertTrue(wait_for(lambda: player.title(window) == TITLE),
                        "the stopped look has the plain title")
        self.session.key("Escape", window)
        self.assertTrue(player.ended(), "Esc does not end the program")
        self.assertEqual(player.child.returncode, 0)

    def test_a_click_on_the_seek_bar_is_heard_at_its_place(self):
        track = f"{self.music}/stairs.wav"
        stairs(track, 60)
        self.write_list([track])
        player, window = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.session.key("F6", window)
        self.assertLess(self.now_playing(recorder), 800)
        player.click(window, "load_Played_BG", 0.5)
        # The middle of the bar is about the 30th second: 200 + 30 * 100 Hz.
        self.assertTrue(wait_for(lambda: 3000 < (self.now_playing(recorder, 2) or 0) < 4200, 20),
                        "the sound is not where the bar was clicked")

    def test_a_click_on_the_volume_bar_changes_the_level(self):
        track = f"{self.music}/steady.wav"
        stairs(track, 60, level=0.8, step=0)
        self.write_list([track])
        player, window = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.session.key("F6", window)
        self.assertIsNotNone(self.now_playing(recorder))

        def peak():
            return max(abs(value) for _, block in recorder.blocks[-10:]
                       for value in struct.unpack(f"<{len(block) // 2}h", block))
        # A click inside the fade-in ends it, but where the next step would have been.
        self.assertTrue(wait_for(lambda: peak() / 32767 / 0.8 > 0.74), "it does not get to three quarters")
        player.click(window, "Volume_Set_BG", 0.25)
        self.assertTrue(wait_for(lambda: 0.15 < peak() / 32767 / 0.8 < 0.35),
                        "a quarter of the bar is not a quarter of the amplitude")
        player.click(window, "Volume_ICO")
        self.assertIsNotNone(recorder.first(time.monotonic(), loud=False, run=20),
                             "mute is not silent")

    def test_the_end_of_a_track_starts_the_next(self):
        one, two = f"{self.music}/a.wav", f"{self.music}/b.wav"
        stairs(one, 3, base=500, step=0)
        stairs(two, 20, base=1000, step=0)
        self.write_list([one, two])
        player, window = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.session.key("F6", window)
        self.assertAlmostEqual(self.now_playing(recorder), 500, delta=10)
        self.assert_title(player, window, "〗 b")
        loud = [at for at, block in recorder.blocks if Recorder.loud(block)]
        gaps = [after - before for before, after in zip(loud, loud[1:])]
        self.assertLess(max(gaps), 2.0, "the gap between two tracks")
        self.assertTrue(wait_for(lambda: abs((self.now_playing(recorder, 2) or 0) - 1000) < 20))


class SecondStart(PlayerTest):
    reads = True

    def test_it_refuses_with_a_message_and_the_first_goes_on(self):
        first, _ = self.start()
        second = Player(self.session)
        box = second.box("已经运行了一个")
        self.assertTrue(box, "no message comes up")
        self.assertEqual(second.title(box), TITLE)
        self.session.reply("Return", box)
        self.assertTrue(second.ended(), "the second instance does not end")
        self.assertIsNone(first.child.poll(), "the first ended")


class Lasting(PlayerTest):
    def test_a_kill_in_the_middle_leaves_list_and_settings_whole(self):
        tracks = []
        for number in range(3):
            tracks.append(f"{self.music}/track {number}.wav")
            stairs(tracks[-1], 30, base=300 + 200 * number, step=0)
        self.write_list(tracks)
        before = self.read_list()
        player, window = self.start()
        self.session.key("F6", window)
        self.assert_title(player, window, "track 0")
        self.session.key("F6", window)
        self.assert_title(player, window, "track 1")
        os.killpg(player.child.pid, signal.SIGKILL)
        player.child.wait()
        self.assertEqual(self.read_list(), before)
        database = sqlite3.connect(self.registry_file())
        self.assertEqual(database.execute("pragma integrity_check").fetchone()[0], "ok")
        database.close()
        # The last file resumes at the next start.
        again, window = self.start()
        self.assert_title(again, window, "track 1")

    def test_a_second_start_with_the_restart_marker_comes_up(self):
        first, window = self.start()
        marker = self.session.runtime + "/velmora/RestartZkPlayer.tmp"
        with open(marker, "w") as file:
            file.write(TITLE)
        second = Player(self.session)
        self.assertTrue(wait_for(lambda: not os.path.exists(marker)), "the marker stays")
        self.assertTrue(wait_for(lambda: len(quiet(
            "xdotool", "search", "--onlyvisible", "--pid", str(second.child.pid),
            env=self.session.env).split()) > 0))
        self.assertIsNone(second.child.poll())

    def test_a_damaged_registry_is_kept_aside_and_the_player_starts(self):
        folder = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        player, window = self.start()
        self.session.key("Escape", window)
        self.assertTrue(player.ended())
        registry = self.registry_file()
        with open(registry, "wb") as file:
            file.write(b"this is no registry at all\n" * 500)
        for suffix in ("-wal", "-shm"):
            if os.path.exists(registry + suffix):
                os.remove(registry + suffix)
        player, window = self.start()
        kept = [name for name in os.listdir(folder)
                if self.begins(f"{folder}/{name}", b"this is no registry at all")]
        self.assertTrue(kept, "the damaged file is not kept")
        with open(self.session.home + "/errors.log") as log:
            self.assertEqual(len(log.read().strip().splitlines()), 1)

    def test_lists_that_are_no_lists_do_not_stop_the_start(self):
        os.makedirs(os.path.dirname(self.list_file()), exist_ok=True)
        for make in (lambda path: os.mkfifo(path), lambda path: os.symlink(path, path),
                     lambda path: os.mkdir(path),
                     lambda path: open(path, "wb").write(os.urandom(200000))):
            with self.subTest(make=make):
                subprocess.run(["rm", "-rf", self.list_file()], check=True)
                make(self.list_file())
                player, window = self.start()
                self.session.key("Escape", window)
                self.assertTrue(player.ended())
                self.assertEqual(player.child.returncode, 0)


class WithoutSound(PlayerTest):
    reads = True
    sound = False

    def test_the_message_comes_and_the_player_goes_on(self):
        player = Player(self.session)
        box = self.assert_box(player, NO_SOUND_CARD)
        self.assertEqual(player.title(box), TITLE)
        self.session.reply("Return", box)
        self.assertTrue(player.window(), "the player does not come up without a sound device")


class WithoutBus(PlayerTest):
    def beside(self):
        """What runs for the screen."""
        found = []
        for process in glob.glob("/proc/[0-9]*"):
            try:
                with open(process + "/environ", "rb") as file:
                    here = f"DISPLAY={self.session.env['DISPLAY']}".encode() in file.read().split(b"\0")
                with open(process + "/comm", encoding="utf-8") as file:
                    found += [file.read().strip()] if here else []
            except OSError:
                pass
        return found

    def test_none_is_begun_for_the_player(self):
        player, main = self.start()
        self.assertTrue(player.took(main))
        self.assertFalse([name for name in self.beside() if name == "dbus-launch"])
        self.assertIn("velmora", self.beside())


class WithoutDisplay(unittest.TestCase):
    def test_no_display_is_said_in_one_line(self):
        env = {key: value for key, value in os.environ.items()
               if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
        done = subprocess.run([PROGRAM], env=env, stderr=subprocess.PIPE, stdout=subprocess.PIPE,
                              timeout=20, check=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertGreater(done.returncode, 0, "it crashed")
        self.assertEqual(len(done.stderr.decode().strip().splitlines()), 1)


if __name__ == "__main__":
    run(sys.argv[5:])
