#!/usr/bin/env python3
"""Lists of tracks of every kind, whole and broken, in the real program: what is heard of each.

    test_tracks.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import shutil
import struct
import sys
import tempfile
import time

from cases import run
from films import ffmpeg
from player import TITLE, PlayerTest, stairs
from session import RATE, Recorder, wait_for

SECONDS = 20
BUFFERED_S = 1.0  # more than lies between the program and what is heard
# How each is made, by its name; its place gives its pitch.
SOUNDS = {
    "constant.mp3": ("-c:a", "libmp3lame", "-b:a", "128k"),
    "VARIABLE.MP3": ("-c:a", "libmp3lame", "-q:a", "4"),
    "headless.mp3": ("-c:a", "libmp3lame", "-q:a", "4", "-write_xing", "0"),
    "low rate.mp3": ("-c:a", "libmp3lame", "-ar", "11025", "-ac", "1"),
    "eight bits.wav": ("-c:a", "pcm_u8"),
    "24 bits.wav": ("-c:a", "pcm_s24le"),
    "float.wav": ("-c:a", "pcm_f32le"),
    "lossless.flac": (),
    "vorbis.ogg": ("-c:a", "libvorbis"),
    "opus.opus": ("-c:a", "libopus"),
    "apple.aiff": (),
    "sun.au": (),
    "windows.wma": ("-c:a", "wmav2"),
    "true.tta": (),
    "advanced.m4a": ("-c:a", "aac"),
    "bare.aac": ("-c:a", "aac"),
    "dolby.ac3": ("-c:a", "ac3"),
    "layer two.mp2": ("-c:a", "mp2"),
    "no ending": ("-c:a", "libmp3lame", "-f", "mp3"),
}
FILMS = {
    "film.mp4": ("-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac"),
    "film.flv": ("-c:v", "flv", "-c:a", "libmp3lame"),
    "film.avi": ("-c:v", "mpeg4", "-c:a", "libmp3lame"),
    "film.mpg": ("-c:v", "mpeg1video", "-c:a", "mp2"),
    "film.wmv": ("-c:v", "wmv2", "-c:a", "wmav2"),
    "film.MKV": ("-c:v", "libx264", "-preset", "ultrafast", "-c:a", "libvorbis"),
}


def tone_of(number):
    return 400 + 100 * number


def make(path, number, options, film=False):
    picture = ["-f", "lavfi", "-i", f"testsrc=s=320x240:r=25:d={SECONDS}"] if film else []
    ffmpeg("-f", "lavfi", "-i", f"sine=f={tone_of(number)}:r={RATE}:d={SECONDS}", *picture,
           "-af", "volume=6", *options, path)


def midi(note, beats):
    """A lasting organ note."""
    def length(number):
        return bytes([0x80 | number >> 7, number & 0x7F])
    events = b"\0\xC0\x10" + b"\0\x90" + bytes([note, 100]) + \
        length(96 * beats) + b"\x80" + bytes([note, 0]) + b"\0\xFF\x2F\0"
    return b"MThd" + struct.pack(">IHHH", 6, 0, 1, 96) + b"MTrk" + struct.pack(">I", len(events)) \
        + events


class TrackTest(PlayerTest):
    @classmethod
    def setUpClass(cls):
        cls.made = tempfile.mkdtemp(prefix="velmora-tracks-")
        cls.addClassCleanup(shutil.rmtree, cls.made, True)

    def begin(self, names):
        self.write_list([f"{self.made}/{name}" for name in names])
        self.player, self.main = self.start()
        self.recorder = Recorder(self.session)
        self.addCleanup(self.recorder.close)

    def next(self, title):
        self.session.key("F6", self.main)
        self.assert_title(self.player, self.main, title)

    def hears(self, frequency, seconds=30):
        return wait_for(lambda: abs((self.now_playing(self.recorder, 1, 10) or 0) - frequency) < 25,
                        seconds)

    def assert_heard(self, frequency):
        self.assertTrue(self.hears(frequency),
                        f"{self.now_playing(self.recorder, 1, 10)} Hz are heard, not {frequency}")

    def assert_heard_on(self, frequency, since):
        """Not a block since that moment is silent, or of another pitch at the end."""
        self.assertTrue(wait_for(lambda: self.recorder.blocks[-20][0] > since, 30))
        late = [block for at, block in self.recorder.blocks if at > since]
        self.assertTrue(all(Recorder.loud(block, 200) for block in late), "the sound breaks off")
        self.assert_heard(frequency)

    def silent(self, seconds=15, blocks=20):
        return wait_for(lambda: not any(Recorder.loud(block)
                                        for _, block in self.recorder.blocks[-blocks:]), seconds)


class EveryKind(TrackTest):
    def assert_all_heard(self, kinds, films=False):
        for number, (name, options) in enumerate(kinds.items()):
            make(f"{self.made}/{name}", number, options, films)
        self.begin(kinds)
        for number, name in enumerate(kinds):
            with self.subTest(track=name):
                self.next(f"{number + 1}/{len(kinds)}〗 {name.rsplit('.', 1)[0]}"
                          if "." in name else f"{number + 1}/{len(kinds)}〗")
                self.assert_heard(tone_of(number))

    def test_each_sound_of_a_list_is_heard_in_its_turn(self):
        self.assert_all_heard(SOUNDS)

    def test_each_film_of_a_list_is_heard_in_its_turn(self):
        self.assert_all_heard(FILMS, True)

    def test_notes_are_heard(self):
        bare = midi(69, 40)
        with open(self.made + "/notes.mid", "wb") as file:
            file.write(bare)
        with open(self.made + "/wrapped.rmi", "wb") as file:
            file.write(b"RIFF" + struct.pack("<I", 12 + len(bare)) + b"RMIDdata" +
                       struct.pack("<I", len(bare)) + bare)
        self.begin(["notes.mid", "wrapped.rmi"])
        for name in ("notes", "wrapped"):
            self.next(name)
            self.assertTrue(wait_for(lambda: self.now_playing(self.recorder, 1, 10)),
                            f"{name} is silent")
            self.session.key("F3", self.main)
            self.assertTrue(self.silent())


class Broken(TrackTest):
    """Each stands ahead of a good track, which comes by the next press."""

    def setUp(self):
        super().setUp()
        stairs(self.made + "/good.wav", 20, base=500, step=0)
        stairs(self.made + "/other.wav", 20, base=1000, step=0)

    def write(self, name, data):
        with open(f"{self.made}/{name}", "wb") as file:
            file.write(data)

    def test_what_is_no_medium_leaves_the_stopped_look_and_the_next_one_plays(self):
        make(self.made + "/real.mp4", 0, FILMS["film.mp4"], True)
        shutil.copy(self.made + "/real.mp4", self.made + "/real.rmvb")
        self.write("empty.mp3", b"")
        self.write("noise.mp4", bytes(200) + os.urandom(300000))
        self.write("page.ogg", b"<html>not found</html>" * 100)
        self.write("list.mp3", b"#EXTM3U\r\nfile:///etc/passwd\r\n/dev/zero\r\n")
        names = ["empty.mp3", "noise.mp4", "page.ogg", "list.mp3", "real.rmvb"]
        for number in range(len(names) + 1):
            os.symlink("good.wav", f"{self.made}/good {number}.wav")  # a list takes each path once
        self.begin([item for number, name in enumerate(names)
                    for item in (f"good {number}.wav", name)] + [f"good {len(names)}.wav"])
        for number, name in enumerate(names):
            with self.subTest(track=name):
                self.next(f"good {number}")
                self.assert_heard(500)
                self.session.key("F6", self.main)
                self.assertTrue(wait_for(lambda: self.player.title(self.main) == TITLE, 60),
                                f"the title is {self.player.title(self.main)}")
                self.assertTrue(self.silent())
        self.next(f"good {len(names)}")
        self.assert_heard(500)

    def test_what_is_no_file_leaves_the_old_track_playing(self):
        os.mkdir(self.made + "/folder.mp3")
        os.mkfifo(self.made + "/pipe.mp3")
        os.symlink("loop.mp3", self.made + "/loop.mp3")
        os.symlink("/dev/zero", self.made + "/endless.wav")
        names = ["folder.mp3", "pipe.mp3", "loop.mp3", "endless.wav", "missing.mp3"]
        self.begin(["good.wav", *names, "other.wav"])
        self.next("good")
        self.assert_heard(500)
        for name in names:
            with self.subTest(track=name):
                self.session.key("F6", self.main)
                self.assertTrue(self.player.took(self.main))
                # What was put out before the key would be heard for a while, whatever it did.
                self.assert_heard_on(500, time.monotonic() + BUFFERED_S)
                self.assert_title(self.player, self.main, "good")
        self.next("other")
        self.assert_heard(1000)

    def test_one_cut_short_plays_what_it_has_and_the_next_one_follows(self):
        for number, (name, like, seconds) in enumerate((
                ("cut.mp3", "constant.mp3", 2), ("cut.ogg", "vorbis.ogg", 4),  # its head is long
                ("cut.m4a", "advanced.m4a", 2))):
            path = f"{self.made}/{name}"
            make(path, number, (*SOUNDS[like], *(("-movflags", "faststart") * (number == 2))))
            os.truncate(path, os.path.getsize(path) * seconds // SECONDS)
        self.begin(["cut.mp3", "cut.ogg", "cut.m4a", "good.wav"])
        self.session.key("F6", self.main)
        for number, name in enumerate(("1/4〗 cut", "2/4〗 cut", "3/4〗 cut")):
            self.assert_title(self.player, self.main, name)
            self.assert_heard(tone_of(number))
        self.assert_title(self.player, self.main, "good")
        self.assert_heard(500)

    def test_a_track_deleted_and_one_overwritten_while_it_plays_harm_nothing(self):
        shutil.copy(self.made + "/good.wav", self.made + "/doomed.wav")
        make(self.made + "/changed.mp3", 3, SOUNDS["constant.mp3"])
        self.begin(["doomed.wav", "changed.mp3", "other.wav"])
        self.next("doomed")
        self.assert_heard(500)
        os.remove(self.made + "/doomed.wav")
        self.assert_heard(500)
        self.session.key("F3", self.main)
        self.assertTrue(self.silent())
        self.session.key("F2", self.main)
        self.assert_heard(500)
        self.next("changed")
        self.assert_heard(tone_of(3))
        with open(self.made + "/changed.mp3", "rb+") as file:
            file.truncate(0)
            file.write(os.urandom(4000))
        self.next("other")
        self.assert_heard(1000)
        self.assertIsNone(self.player.child.poll())


if __name__ == "__main__":
    run(sys.argv[5:])
