#!/usr/bin/env python3
"""The real program on a disk that stops answering, as the mount of a server that has gone.

    test_dead_disk.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

The library that makes a folder such a disk is named by the environment: VELMORA_DEAD_DISK_LIBRARY.
"""

import os
import sys

from cases import run
from player import LIST, PlayerTest, stairs
from session import Recorder, wait_for


class DeadDisk(PlayerTest):
    def setUp(self):
        super().setUp()
        self.disk = self.session.home + "/disk"
        os.makedirs(self.disk)
        self.session.env["LD_PRELOAD"] = os.environ["VELMORA_DEAD_DISK_LIBRARY"]
        self.session.env["VELMORA_DEAD_DISK"] = self.disk
        self.tracks = [f"{self.music}/here 0.wav", f"{self.disk}/there.wav",
                       f"{self.music}/here 1.wav"]
        stairs(self.tracks[0], 60, base=500, step=0)
        stairs(self.tracks[1], 60, base=800, step=0)
        stairs(self.tracks[2], 60, base=1100, step=0)
        self.write_list(self.tracks)

    def die(self, how):
        """`how`: "names", nothing answers; "reads", what the system still knows by heart does."""
        with open(self.disk + ".dead", "w") as file:
            file.write(how)

    def revive(self):
        os.remove(self.disk + ".dead")

    def next(self, title):
        self.session.key("F6", self.main)
        self.assert_title(self.player, self.main, title)

    def assert_alive(self, seconds):
        """The window answers a click within that time."""
        self.player.click(self.main, "playListButton")
        rows = self.player.form(LIST, seconds)
        self.assertTrue(rows, "the window does not answer")
        self.player.click(self.main, "playListButton")
        self.assertTrue(self.player.gone(rows))

    def hears(self, recorder, frequency):
        return wait_for(lambda: abs((self.now_playing(recorder, 1, 10) or 0) - frequency) < 25)

    def test_the_start_does_not_wait_for_the_last_file(self):
        self.player, self.main = self.start()
        self.next("here 0")
        self.next("there")
        self.session.key("Escape", self.main)
        self.assertTrue(self.player.ended())
        self.die("names")
        self.player, self.main = self.start()
        self.assert_alive(10)
        self.assertNotIn("there", self.player.title(self.main))
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.next("here 0")
        self.assertTrue(self.hears(recorder, 500))
        # A disk that is back is used again.
        self.revive()
        self.next("there")
        self.assertTrue(self.hears(recorder, 800))

    def test_a_track_there_leaves_the_music_and_the_window(self):
        self.player, self.main = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.next("here 0")
        self.assertTrue(self.hears(recorder, 500))
        self.die("names")
        self.session.key("F6", self.main)
        self.assert_alive(15)
        self.assertIn("here 0", self.player.title(self.main))
        self.assertTrue(self.hears(recorder, 500))
        self.session.key("F6", self.main)
        self.assert_alive(15)

    def test_a_disk_that_knows_its_names_alone_lets_the_open_fail_and_the_next_one_play(self):
        self.player, self.main = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.next("here 0")
        self.die("reads")
        self.session.key("F6", self.main)
        self.assert_alive(40)  # an open may take ten seconds
        self.next("here 1")
        self.assertTrue(self.hears(recorder, 1100))

    def test_a_dead_lyric_folder_holds_no_track(self):
        self.disk = os.path.dirname(os.path.dirname(self.list_file())) + "/Lyrics"
        self.session.env["VELMORA_DEAD_DISK"] = self.disk
        os.makedirs(self.disk)
        self.tracks = [self.tracks[0], self.tracks[2]]
        self.write_list(self.tracks)
        self.player, self.main = self.start()
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        self.next("here 0")
        self.die("names")
        self.next("here 1")
        self.assertTrue(self.hears(recorder, 1100))
        self.assert_alive(15)


if __name__ == "__main__":
    run(sys.argv[5:])
