#!/usr/bin/env python3
"""Real files added, renamed, copied and deleted through the windows on the screen. Disk, saved list
and rows tell the same after every step.

    test_files.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import shutil
import signal
import subprocess
import sys

from cases import run
from listing import DEEPER, NOT_COPIED, SURE, ListTest, silence
from player import ASK, LIST, PICK_FOLDER, TITLE
from session import let_pass, quiet, wait_for


def content(path):
    with open(path, "rb") as file:
        return file.read()


class Renaming(ListTest):
    count = 2

    def rename(self, player, rows, row, text, button="OK", refused=None):
        self.click_row(player, rows, row)
        player.click(rows, "Alter", form=LIST)
        ask = player.form(ASK)
        self.assertTrue(ask, "no question comes up")
        if text is not None:
            self.write_into(player, ask, text)
        player.click(ask, button, form=ASK)
        if refused:
            self.answer(player, "Return", refused)  # the question goes after it
        self.assertTrue(player.gone(ask), "the question stays")

    def test_the_file_and_its_row_get_the_name(self):
        player, main, rows = self.start_with_list()
        before = content(self.tracks[0])
        self.rename(player, rows, 0, "another  name")
        renamed = self.music + "/another  name.wav"
        self.assert_story(player, rows, [renamed, self.tracks[1]])
        self.assertEqual(content(renamed), before)
        self.assertFalse(os.path.exists(self.tracks[0]))
        self.assert_a_reload_changes_nothing(player, rows)
        # Both windows take input again.
        self.click_row(player, rows, 1)
        self.session.key("F2", rows)
        self.assert_title(player, main, "2/2")

    def test_the_question_is_answered_by_the_keyboard_alone(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)

        def ask():
            player.click(rows, "Alter", form=LIST)
            window = player.form(ASK)
            self.assertTrue(window, "no question comes up")
            quiet("xdotool", "windowfocus", "--sync", window, env=self.session.env)
            quiet("xdotool", "key", "ctrl+a", env=self.session.env)
            quiet("xdotool", "type", "--delay", "8", "by hand", env=self.session.env)
            return window
        window = ask()
        for key in ("Tab", "Tab", "Return"):  # OK, Cancel
            self.session.key(key)
        self.assertTrue(player.gone(window), "the question stays")
        self.assert_story(player, rows, self.tracks)
        window = ask()
        for key in ("Tab", "space"):
            self.session.key(key)
        self.assertTrue(player.gone(window), "the question stays")
        self.assert_story(player, rows, [self.music + "/by hand.wav", self.tracks[1]])

    def test_a_pasted_line_break_is_no_part_of_the_name(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        player.click(rows, "Alter", form=LIST)
        window = player.form(ASK)
        self.assertTrue(window, "no question comes up")
        self.write_into(player, window, "")
        subprocess.run(["xclip", "-selection", "clipboard"], input=b"one\r\ntwo\n",
                       env=self.session.env, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        self.session.key("ctrl+v")
        player.click(window, "OK", form=ASK)
        self.assertTrue(player.gone(window), "the question stays")
        self.assert_story(player, rows, [self.music + "/onetwo.wav", self.tracks[1]])
        self.assert_a_reload_changes_nothing(player, rows)

    def test_nothing_is_renamed_onto_a_link_that_leads_nowhere(self):
        link = self.music + "/dangling.wav"
        os.symlink("/no/where", link)
        player, _, rows = self.start_with_list()
        self.rename(player, rows, 0, "dangling", refused="File exists")
        self.assert_story(player, rows, self.tracks)
        self.assertTrue(os.path.islink(link))

    def test_what_is_behind_the_first_point_is_offered_and_the_number_kept_for_the_eye(self):
        numbered = self.music + "/01.Love Song.wav"
        silence(numbered)
        self.write_list([numbered])
        player, _, rows = self.start_with_list()
        self.rename(player, rows, 0, None)  # "Love Song" as it is offered
        self.assert_story(player, rows, [self.music + "/Love Song.wav"])
        self.assertTrue(os.path.exists(self.music + "/Love Song.wav"))
        self.assertFalse(os.path.exists(numbered))

    def test_nothing_is_renamed_onto_another_file(self):
        player, _, rows = self.start_with_list()
        kept = [content(track) for track in self.tracks]
        self.rename(player, rows, 0, "track 1", refused="File exists")
        self.assert_story(player, rows, self.tracks)
        self.assertEqual([content(track) for track in self.tracks], kept)

    def test_a_name_with_a_slash_is_refused(self):
        player, _, rows = self.start_with_list()
        os.mkdir(self.music + "/inner")
        for name in ("inner/track", "../track", "/tmp/track"):
            self.rename(player, rows, 0, name, refused="Invalid argument")
            self.assert_story(player, rows, self.tracks)
            self.assertTrue(os.path.exists(self.tracks[0]))
        self.assertEqual(os.listdir(self.music + "/inner"), [])

    def test_an_empty_name_and_a_refusal_do_nothing(self):
        player, _, rows = self.start_with_list()
        self.rename(player, rows, 0, "")
        self.rename(player, rows, 0, "other", button="Cancel")
        self.rename(player, rows, 0, "other", button="close")
        self.assert_story(player, rows, self.tracks)
        self.assertEqual(sorted(os.listdir(self.music)), ["track 0.wav", "track 1.wav"])

    def test_a_track_that_plays_goes_on_under_its_new_name(self):
        silence(self.tracks[0])
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("F2", rows)
        self.assert_title(player, main, "track 0")
        self.rename(player, rows, 0, "hello")
        self.assert_title(player, main, "hello")
        self.assert_story(player, rows, [self.music + "/hello.wav", self.tracks[1]])

    def test_a_name_too_long_for_the_disk_is_refused(self):
        player, _, rows = self.start_with_list()
        self.rename(player, rows, 0, "n" * 252, refused="File name too long")
        self.assert_story(player, rows, self.tracks)
        self.assertTrue(os.path.exists(self.tracks[0]))


class Copying(ListTest):
    count = 3

    def setUp(self):
        super().setUp()
        self.target = self.session.home + "/stick"
        os.mkdir(self.target)

    def choose_folder(self, player, rows, folder):
        self.session.key("F10", rows)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, folder)
        self.assertTrue(player.gone(dialog), "the dialog stays")

    def test_the_selected_files_arrive_whole_and_with_their_time(self):
        os.utime(self.tracks[2], (1_000_000_000, 1_000_000_000))
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.click_row(player, rows, 2, held="ctrl")
        self.choose_folder(player, rows, self.target)
        self.assertTrue(wait_for(lambda: sorted(os.listdir(self.target)) ==
                                 ["track 0.wav", "track 2.wav"], 30), os.listdir(self.target))
        for number in (0, 2):
            self.assertEqual(content(f"{self.target}/track {number}.wav"),
                             content(self.tracks[number]))
        self.assertEqual(int(os.stat(self.target + "/track 2.wav").st_mtime), 1_000_000_000)
        self.assert_story(player, rows, self.tracks)

    def test_nothing_is_copied_when_no_folder_is_chosen(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("F10", rows)
        self.answer(player, "Escape", PICK_FOLDER)
        self.assert_story(player, rows, self.tracks)
        # The list takes input again.
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[1:])

    def test_a_file_that_is_there_is_asked_about(self):
        player, _, rows = self.start_with_list()
        there = self.target + "/track 0.wav"
        with open(there, "wb") as file:
            file.write(b"old")
        self.click_row(player, rows, 0)
        self.click_row(player, rows, 1, held="shift")
        self.choose_folder(player, rows, self.target)
        self.answer(player, "n", "track 0.wav")
        self.answer(player, "Return", NOT_COPIED)  # the next file is copied all the same
        self.assertTrue(wait_for(lambda: os.path.exists(self.target + "/track 1.wav"), 30))
        self.assertEqual(content(there), b"old")
        self.click_row(player, rows, 0)
        self.choose_folder(player, rows, self.target)
        self.answer(player, "y", "track 0.wav")
        self.assertTrue(wait_for(lambda: content(there) == content(self.tracks[0]), 30))
        self.assertEqual(sorted(os.listdir(self.target)), ["track 0.wav", "track 1.wav"])

    def test_a_file_is_not_copied_onto_itself(self):
        player, _, rows = self.start_with_list()
        before = content(self.tracks[0])
        self.click_row(player, rows, 0)
        self.choose_folder(player, rows, self.music)
        self.answer(player, "Return", "File exists")
        self.assertEqual(content(self.tracks[0]), before)
        self.assertEqual(len(os.listdir(self.music)), 3)

    def test_a_file_that_is_gone_is_told_and_the_next_is_copied(self):
        player, _, rows = self.start_with_list()
        os.remove(self.tracks[0])
        self.click_row(player, rows, 0)
        self.click_row(player, rows, 1, held="shift")
        self.choose_folder(player, rows, self.target)
        self.answer(player, "Return", "No such file or directory")
        self.assertTrue(wait_for(lambda: os.listdir(self.target) == ["track 1.wav"], 30))

    def is_copying(self, player):
        """Whether the player holds a file in the target folder open, be it without a name."""
        folder = f"/proc/{player.child.pid}/fd/"
        for number in os.listdir(folder):
            try:
                if os.readlink(folder + number).startswith(self.target + "/"):
                    return True
            except FileNotFoundError:
                pass  # closed meanwhile
        return False

    def begin_a_big_copy(self):
        big = self.music + "/big.wav"
        shutil.copy(self.tracks[0], big)
        os.truncate(big, 2 << 30)
        self.write_list([big])
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("F10", rows)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, self.target)
        self.assertTrue(wait_for(lambda: self.is_copying(player), 30, 0.002), "no copy began")
        return player, rows, big

    def test_a_copy_cut_short_by_force_leaves_nothing(self):
        player, _, _ = self.begin_a_big_copy()
        player.child.kill()
        player.child.wait()
        self.assertEqual(os.listdir(self.target), [])

    def test_a_copy_cancelled_half_way_leaves_nothing(self):
        player, rows, big = self.begin_a_big_copy()
        # It is held while the hand moves: the copy might be through before that.
        os.kill(player.child.pid, signal.SIGSTOP)
        let_pass(0.6)  # longer than a copy lasts that shows no progress
        os.kill(player.child.pid, signal.SIGCONT)
        # What it says is not read: the copy would be through meanwhile. What Escape does tells it.
        progress = wait_for(lambda: next(iter(player.boxes()), None))
        self.assertTrue(progress, "no progress is shown")
        self.assertEqual([name for name in os.listdir(self.target) if not name.startswith(".")], [])
        self.session.key("Escape", progress)
        self.assertTrue(player.gone(progress), "the progress stays")
        self.answer(player, "Return", NOT_COPIED)
        self.assertEqual(os.listdir(self.target), [])
        self.assert_story(player, rows, [big])

    def test_a_full_disk_leaves_no_half_file(self):
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", self.target],
                          stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("a small disk cannot be made here")
        self.addCleanup(subprocess.run, ["umount", self.target], check=False)
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.choose_folder(player, rows, self.target)
        self.answer(player, "Return", "No space left on device")
        self.assertEqual(os.listdir(self.target), [])
        self.assert_story(player, rows, self.tracks)


class Deleting(ListTest):
    def log(self):
        self.assertTrue(wait_for(self.opened, 30), "the log is not shown")
        with open(self.opened()[-1], newline="", encoding="utf-8") as log:
            return log.read().split("\r\n")

    def test_what_cannot_be_deleted_is_told_and_leaves_the_list(self):
        os.chmod(self.tracks[0], 0o444)
        os.remove(self.tracks[1])
        os.remove(self.tracks[2])
        os.mkdir(self.tracks[2])
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.select_all(player, rows)
        self.session.key("shift+Delete", rows)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertEqual([os.path.exists(track) for track in self.tracks],
                         [True, False, True, False])
        lines = self.log()
        self.assertEqual(sum(line.startswith("【Unsuccessful】") for line in lines), 3)
        self.assertEqual(sum(line.startswith("【Successful】") for line in lines), 1)
        self.assertEqual([line[4:] for line in lines if line.startswith("    ")], self.tracks)

    def test_a_link_goes_and_its_target_stays(self):
        target = self.session.home + "/target.wav"
        os.rename(self.tracks[0], target)
        os.symlink(target, self.tracks[0])
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("shift+Delete", rows)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[1:])
        self.assertTrue(os.path.exists(target))
        self.assertFalse(os.path.lexists(self.tracks[0]))

    def test_the_track_that_plays_is_closed_and_deleted(self):
        silence(self.tracks[0])
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("F2", rows)
        self.assert_title(player, main, "track 0")
        self.session.key("shift+Delete", rows)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE, 30))
        self.assertFalse(os.path.exists(self.tracks[0]))
        self.assert_story(player, rows, self.tracks[1:])


class AddingFolders(ListTest):
    count = 1

    def add(self, player, rows, folder, deep):
        player.click(rows, "addDir", form=LIST)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, folder)
        self.assertTrue(player.gone(dialog), "the dialog stays")
        self.answer(player, "y" if deep else "n", DEEPER)

    def make_tree(self):
        root = self.session.home + "/tree"
        found = []
        for name in ("b.wav", "a 100%.wav", "one/c.wav", "one/two/灯火.wav", "zwei/\"q\".wav"):
            path = f"{root}/{name}"
            os.makedirs(os.path.dirname(path), exist_ok=True)
            silence(path)
            found.append(path)
        open(root + "/one/cover.jpg", "w").close()
        return root, found

    def test_a_tree_with_loops_and_locked_folders_ends(self):
        root, found = self.make_tree()
        os.symlink(root, root + "/one/up")
        os.symlink("self", root + "/self")
        os.symlink(root + "/gone", root + "/dangling.wav")
        os.mkdir(root + "/locked")
        silence(root + "/locked/unseen.wav")
        os.chmod(root + "/locked", 0)
        self.addCleanup(os.chmod, root + "/locked", 0o755)
        os.mkfifo(root + "/pipe.wav")
        player, _, rows = self.start_with_list(self.plain_program())
        self.add(player, rows, root, True)
        self.assertTrue(wait_for(lambda: len(self.list_lines()) == 6, 30), self.list_lines())
        self.assertEqual(sorted(self.list_lines()[1:]), sorted(found))
        self.assert_story(player, rows, self.list_lines())
        self.assert_a_reload_changes_nothing(player, rows)

    def test_without_subfolders_only_what_lies_in_it_is_taken(self):
        root, _ = self.make_tree()
        player, _, rows = self.start_with_list()
        self.add(player, rows, root, False)
        self.assert_story(player, rows, self.tracks + [root + "/a 100%.wav", root + "/b.wav"])
        self.add(player, rows, root, False)  # never twice
        self.assert_story(player, rows, self.tracks + [root + "/a 100%.wav", root + "/b.wav"])

    def test_a_refused_dialog_changes_nothing(self):
        player, _, rows = self.start_with_list()
        player.click(rows, "addDir", form=LIST)
        self.answer(player, "Escape", PICK_FOLDER)
        self.assert_story(player, rows, self.tracks)


if __name__ == "__main__":
    run(sys.argv[5:])
