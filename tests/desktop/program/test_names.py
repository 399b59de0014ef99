#!/usr/bin/env python3
"""Files whose names are hard to write down, through every operation of the list; and an end in the
middle of one.

    test_names.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import signal
import subprocess
import sys

from cases import run
from listing import DEEPER, SURE, ListTest, line_of, silence
from player import ASK, LIST, PICK_FOLDER
from session import wait_for

HARD = [b"quo\"te's.wav", b"line\nbreak\r.wav", b"back\\slash.wav", b"no \xff\xfe text.wav",
        "مرحبا 🎵.wav".encode(), b"n" * 251 + b".wav", b"%41%zz%.wav", b"-rf.wav", b"$(touch x);`x`.wav",
        "half 灯".encode()[:-1] + b".wav", b"#?&.wav", b"*.wav"]


class HardNames(ListTest):
    def setUp(self):
        super().setUp()
        for track in self.tracks:
            os.remove(track)
        self.tracks = [self.music + "/" + os.fsdecode(name) for name in HARD]
        for track in self.tracks:
            silence(track)
        self.write_list([line_of(track) for track in self.tracks])

    def names(self, folder):
        return sorted(os.listdir(os.fsencode(folder)))

    def test_a_folder_of_them_is_added_whole(self):
        self.write_list([])
        player, _, rows = self.start_with_list()
        player.click(rows, "addDir", form=LIST)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, self.music)
        self.assertTrue(player.gone(dialog))
        self.answer(player, "y", DEEPER)
        self.assertTrue(wait_for(lambda: sorted(self.list_lines()) ==
                                 sorted(line_of(track) for track in self.tracks), 30),
                        self.list_lines())
        self.assertTrue(wait_for(lambda: self.rows_shown(player, rows) == len(HARD), 30),
                        "not all rows are shown")
        self.assert_a_reload_changes_nothing(player, rows)

    def test_each_is_copied_under_its_own_name(self):
        target = self.session.home + "/stick"
        os.mkdir(target)
        player, _, rows = self.start_with_list()
        self.select_all(player, rows)
        self.session.key("F10", rows)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, target)
        self.assertTrue(wait_for(lambda: self.names(target) == sorted(HARD), 30),
                        self.names(target))
        self.assert_story(player, rows, self.tracks)

    def test_each_can_be_renamed(self):
        player, _, rows = self.start_with_list()
        expected = list(self.tracks)
        for number in range(len(HARD)):
            self.click_row(player, rows, number)
            player.click(rows, "Alter", form=LIST)
            ask = player.form(ASK)
            self.assertTrue(ask, "no question comes up")
            self.write_into(player, ask, f"plain {number}")
            player.click(ask, "OK", form=ASK)
            self.assertTrue(player.gone(ask), f"{HARD[number]!r} is not renamed")
            expected[number] = f"{self.music}/plain {number}.wav"
            self.assert_list([line_of(path) for path in expected])
        self.assertEqual(self.names(self.music),
                         sorted(os.fsencode(f"plain {number}.wav") for number in range(len(HARD))))
        self.assert_story(player, rows, expected)

    def test_each_is_deleted_and_told(self):
        player, _, rows = self.start_with_list()
        self.select_all(player, rows)
        self.session.key("shift+Delete", rows)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertEqual(self.names(self.music), [])
        self.assertTrue(wait_for(self.opened, 30), "the log is not shown")
        with open(self.opened()[-1], "rb") as log:
            self.assertEqual(log.read().count("【Successful】".encode()), len(HARD))


class ForeignScripts(ListTest):
    def test_scripts_that_no_font_may_know_are_listed_without_a_word_on_the_errors(self):
        self.tracks = [f"{self.music}/{name}.wav" for name in
                       ("नमस्ते", "வணக்கம்", "ສະບາຍດີ", "ආයුබෝවන්")]
        for track in self.tracks:
            silence(track)
        self.write_list([line_of(track) for track in self.tracks])
        player, _, rows = self.start_with_list()
        self.assertTrue(wait_for(lambda: self.rows_shown(player, rows) == len(self.tracks), 30),
                        "not all rows are shown")
        with open(self.session.home + "/errors.log") as told:
            self.assertEqual(told.read(), "")


class EndInTheMiddle(ListTest):
    count = 0

    def test_a_kill_during_a_deletion_leaves_list_and_disk_at_most_one_apart(self):
        tracks = []
        for number in range(400):
            tracks.append(f"{self.music}/track {number:03}.wav")
            silence(tracks[-1], 1)
        self.write_list(tracks)
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.select_all(player, rows)
        self.session.key("shift+Delete", rows)
        box = self.assert_box(player, SURE)
        self.session.reply("y", box)
        self.assertTrue(wait_for(lambda: not os.path.exists(tracks[5]), 30, 0.001))
        os.kill(player.child.pid, signal.SIGKILL)
        player.child.wait()
        left = [track for track in tracks if os.path.exists(track)]
        self.assertGreater(len(left), 0, "it was through before the kill")
        listed = self.list_lines()
        self.assertIn(listed, (left, tracks[len(tracks) - len(left) - 1:]))
        player, _, rows = self.start_with_list()
        self.assertEqual(self.list_lines(), listed)


class NoRoom(ListTest):
    """A limit on the size of files stands for a full disk: every write beyond it fails."""

    def limit(self, player, size):
        subprocess.run(["prlimit", "--pid", str(player.child.pid), f"--fsize={size}:"], check=True)

    def test_a_list_that_cannot_be_written_stays_as_it_was(self):
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.limit(player, 40)
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assertTrue(wait_for(lambda: self.rows_shown(player, rows) == 3, 30))
        self.assertEqual(self.list_lines(), self.tracks)
        self.assertEqual(len(os.listdir(os.path.dirname(self.list_file()))), 1, "a half file stays")
        self.assertIsNone(player.child.poll(), "the program ended")
        # With room again the next save tells the rows.
        self.limit(player, "unlimited")
        self.click_row(player, rows, 0)
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[2:])

    def test_a_copy_that_does_not_fit_leaves_nothing(self):
        target = self.session.home + "/stick"
        os.mkdir(target)
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.limit(player, 1000)
        self.session.key("F10", rows)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, target)
        self.assertTrue(player.gone(dialog))
        self.answer(player, "Return", "File too large")
        self.assertEqual(os.listdir(target), [])
        self.assertIsNone(player.child.poll(), "the program ended")
        self.limit(player, "unlimited")
        self.assert_story(player, rows, self.tracks)


if __name__ == "__main__":
    run(sys.argv[5:])
