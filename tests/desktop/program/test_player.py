#!/usr/bin/env python3
"""The real program on a real screen with recorded sound: keys and mouse as a person would use them.

    test_player.py VELMORA DEMO_PIECE SOURCE_FOLDER [unittest options]
"""

import math
import os
import re
import signal
import sqlite3
import struct
import subprocess
import sys
import time
import unittest
import wave

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from session import RATE, Recorder, Session, quiet, wait_for  # noqa: E402

PROGRAM, PIECE, SOURCE = sys.argv[1:4]
APP = "Program Files/Norvane软件/Velmora"
TITLE = "Velmora 2011"


def design(name):
    """Rectangles of a form's own controls, in pixels, by control name."""
    places, control = {}, None
    with open(f"{SOURCE}/{name}") as file:
        for line in file:
            words = line.split("#")[0].split() if '"' not in line else line.split()
            if not words:
                continue
            if words[0] == "form":
                control = "form"
                places[control] = [0, 0, 0, 0]
            elif words[0][0].isupper():
                control = words[1] if len(line) - len(line.lstrip()) == 0 else None
                if control:
                    places[control] = [0, 0, 0, 0]
            elif control and words[0] == "at":
                places[control][0:2] = [float(word) / 15 for word in words[1:3]]
            elif control and words[0] == "size":
                places[control][2:4] = [float(word) / 15 for word in words[1:3]]
    return places


MAIN = design("src/playback/Main.form")
SPLASH = design("src/playback/startLoad_Form.form")


def stairs(path, seconds, level=0.5, base=200, step=100):
    """A WAV whose tone tells the second: base + second * step Hz."""
    with wave.open(path, "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(RATE)
        frames, phase = bytearray(), 0.0
        for number in range(seconds * RATE):
            phase += 2 * math.pi * (base + (number // RATE) * step) / RATE
            value = int(32767 * level * math.sin(phase))
            frames += struct.pack("<hh", value, value)
        out.writeframes(bytes(frames))


def pitch(samples):
    """Frequency by rising zero crossings of one channel."""
    crossings = [n for n in range(1, len(samples)) if samples[n - 1] < 0 <= samples[n]]
    if len(crossings) < 2:
        return 0.0
    return RATE * (len(crossings) - 1) / (crossings[-1] - crossings[0])


class Player:
    """One run of the program in a session."""

    def __init__(self, session):
        self.session = session
        self.errors = open(session.home + "/errors.log", "ab")
        self.child = subprocess.Popen([PROGRAM], env=session.env, stderr=self.errors,
                                      stdout=subprocess.DEVNULL, start_new_session=True)
        self.errors.close()
        session.children.append(self.child)

    def window(self, seconds=20):
        """The main window: the one of its design's size (the splash has the same title)."""
        wanted = tuple(int(side) for side in MAIN["form"][2:4])

        def look():
            for number in quiet("xdotool", "search", "--onlyvisible", "--class", "velmora",
                                env=self.session.env).split():
                if self.size(number) == wanted:
                    return number
            return None
        return wait_for(look, seconds)

    def box(self, seconds=15):
        """A message box: a visible window that is neither the splash nor the main window."""
        others = [tuple(int(side) for side in form["form"][2:4]) for form in (MAIN, SPLASH)]
        def look():
            for number in quiet("xdotool", "search", "--onlyvisible", "--pid", str(self.child.pid),
                                env=self.session.env).split():
                width, height = self.size(number)
                if (width, height) not in others and width > 100 and height > 60:
                    return number
            return None
        return wait_for(look, seconds)

    def title(self, number):
        return quiet("xdotool", "getwindowname", number, env=self.session.env)

    def geometry(self, number):
        out = quiet("xdotool", "getwindowgeometry", "--shell", number, env=self.session.env)
        return {key: int(value) for key, value in re.findall(r"(\w+)=(-?\d+)", out)}

    def size(self, number):
        shape = self.geometry(number)
        return shape.get("WIDTH", 0), shape.get("HEIGHT", 0)

    def click(self, number, control, share=0.5, button=1):
        left, top, width, height = MAIN[control]
        shape = self.geometry(number)
        quiet("xdotool", "mousemove", str(int(shape["X"] + left + width * share)),
              str(int(shape["Y"] + top + height / 2)), "click", str(button),
              env=self.session.env)

    def ended(self, seconds=10):
        return wait_for(lambda: self.child.poll() is not None, seconds)


class PlayerTest(unittest.TestCase):
    sound = True

    def setUp(self):
        self.session = Session(window_manager=True, sound=self.sound)
        self.addCleanup(self.session.close)
        self.music = self.session.home + "/music"
        os.makedirs(self.music)

    def list_file(self):
        return f"{self.session.env['XDG_DATA_HOME']}/velmora/{APP}/List/zkPlayList.m3u"

    def write_list(self, paths):
        os.makedirs(os.path.dirname(self.list_file()), exist_ok=True)
        with open(self.list_file(), "w", newline="") as file:
            file.write("".join(path + "\r\n" for path in paths))

    def read_list(self):
        with open(self.list_file(), newline="") as file:
            return file.read()

    def registry_file(self):
        folder = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        for name in os.listdir(folder):
            with open(f"{folder}/{name}", "rb") as file:
                if file.read(15) == b"SQLite format 3":
                    return f"{folder}/{name}"
        return None

    @staticmethod
    def begins(path, beginning):
        with open(path, "rb") as file:
            return file.read(len(beginning)) == beginning

    def start(self):
        player = Player(self.session)
        window = player.window()
        self.assertTrue(window, "the main window does not come up")
        return player, window

    def assert_title(self, player, window, text, seconds=10):
        self.assertTrue(wait_for(lambda: text in player.title(window), seconds),
                        f"the title never shows {text!r} but {player.title(window)!r}")

    def now_playing(self, recorder, seconds=10, loud_blocks=20):
        """The frequency of the last quarter second, once it is loud all through."""
        def look():
            blocks = [block for _, block in recorder.blocks[-loud_blocks:]]
            if len(blocks) < loud_blocks or not all(Recorder.loud(block, 200) for block in blocks):
                return None
            data = b"".join(blocks)
            return (pitch(struct.unpack(f"<{len(data) // 2}h", data)[::2]),)
        found = wait_for(look, seconds, 0.05)
        return found[0] if found else None


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
        self.assertTrue(wait_for(lambda: abs((self.now_playing(recorder, 2) or 0) - 1000) < 20, 10))
        self.session.key("F5", window)
        self.assert_title(player, window, "one two")
        self.session.key("F3", window)
        self.assertIsNotNone(recorder.first(time.monotonic(), loud=False, run=20),
                             "pause is not silent")
        self.session.key("F2", window)
        self.assertIsNotNone(recorder.first(time.monotonic(), run=20), "play does not resume")
        self.session.key("F4", window)
        self.assertTrue(wait_for(lambda: player.title(window) == TITLE, 10),
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
        self.assertTrue(wait_for(lambda: 3000 < (self.now_playing(recorder, 2) or 0) < 4200, 10),
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
        player.click(window, "Volume_Set_BG", 0.25)
        self.assertTrue(wait_for(lambda: 0.15 < peak() / 32767 / 0.8 < 0.35, 10),
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
        self.assertTrue(wait_for(lambda: abs((self.now_playing(recorder, 2) or 0) - 1000) < 20, 10))


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

    def test_a_second_start_refuses_with_a_message(self):
        _, _ = self.start()
        second = Player(self.session)
        box = second.box()
        self.assertTrue(box, "no message comes up")
        self.assertEqual(second.title(box), TITLE)
        self.session.key("Return", box)
        self.assertTrue(second.ended(), "the second instance does not end")

    def test_a_second_start_with_the_restart_marker_comes_up(self):
        first, window = self.start()
        marker = self.session.runtime + "/velmora/RestartZkPlayer.tmp"
        with open(marker, "w") as file:
            file.write(TITLE)
        second = Player(self.session)
        self.assertTrue(wait_for(lambda: not os.path.exists(marker), 10), "the marker stays")
        self.assertTrue(wait_for(lambda: len(quiet(
            "xdotool", "search", "--onlyvisible", "--pid", str(second.child.pid),
            env=self.session.env).split()) > 0, 10))
        self.assertIsNone(second.child.poll())

    def test_a_damaged_registry_is_kept_aside_and_the_player_starts(self):
        folder = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        player, window = self.start()
        self.session.key("Escape", window)
        player.ended()
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
    sound = False

    def test_the_message_comes_and_the_player_goes_on(self):
        player = Player(self.session)
        box = player.box()
        self.assertTrue(box, "no message comes up")
        self.assertEqual(player.title(box), TITLE)
        self.session.key("Return", box)
        self.assertTrue(player.window(), "the player does not come up without a sound device")


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
    unittest.main(argv=[sys.argv[0]] + sys.argv[4:], verbosity=2)
