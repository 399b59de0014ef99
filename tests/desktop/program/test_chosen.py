#!/usr/bin/env python3
"""Rows are chosen while a short track plays, and what was asked for is answered when it has really
ended and the next one of the list has begun, which selects its own row.

    test_chosen.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import contextlib
import os
import signal
import sys

from cases import run
from listing import DEEPER, SURE, ListTest, silence
from player import ASK, LIST, PICK_FILE, PICK_FOLDER, TITLE
from session import wait_for

SECONDS = 12  # the first track; held back until the rows are chosen


class ChosenTest(ListTest):
    def setUp(self):
        super().setUp()
        silence(self.tracks[0], SECONDS)
        for track in self.tracks[1:4]:
            silence(track, 600)

    def start_held(self):
        """The short track is open and paused, and goes on by itself nowhere."""
        player, main, rows = self.start_with_list()
        player.click(main, "Volume_ICO")  # no sound to fade in
        self.click_row(player, rows, 0)
        stopped = player.look(main, "playButton")
        self.session.key("F2", rows)
        self.assert_title(player, main, "track 0")
        self.assertTrue(wait_for(lambda: player.look(main, "playButton") != stopped), "no play")
        self.session.key("F3", rows)
        self.assertTrue(wait_for(lambda: player.look(main, "playButton") == stopped), "no pause")
        return player, main, rows

    def go_on(self, player, main):
        self.session.key("F2", main)
        self.assertIn("track 0", player.title(main))

    def assert_still_playing(self, player, main):
        self.assertIn("track 0", player.title(main), "the track was over too early for this test")

    def wait_for_the_next(self, player, main):
        self.assert_title(player, main, "track 1", 60)

    @contextlib.contextmanager
    def held(self, player):
        """What is sent while the program is held is there at its first look for events."""
        os.kill(player.child.pid, signal.SIGSTOP)
        try:
            yield
        finally:
            os.kill(player.child.pid, signal.SIGCONT)

    @staticmethod
    def right_click_ground(player, rows):
        player.click_at(rows, LIST["form"][2] / 2, -4, button=3)

    def assert_on_disk(self, paths):
        self.assertEqual([track for track in self.tracks[:4] if os.path.exists(track)], paths)


class Deleting(ChosenTest):
    def test_the_track_that_began_while_the_question_stood_is_not_deleted(self):
        player, main, rows = self.start_held()
        self.click_row(player, rows, 2)
        self.go_on(player, main)
        self.session.key("shift+Delete", rows)
        self.assert_box(player, SURE)
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)  # removal from the list
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE, 30), "the track stays open")
        self.assert_story(player, rows, self.tracks)
        self.assert_on_disk(self.tracks)
        self.assertEqual(self.opened(), [])

    def test_of_the_chosen_ones_the_one_that_began_goes_as_asked(self):
        player, main, rows = self.start_held()
        self.click_row(player, rows, 1)
        self.click_row(player, rows, 3, held="ctrl")
        self.go_on(player, main)
        self.session.key("shift+Delete", rows)
        self.assert_box(player, SURE)
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [self.tracks[0]] + self.tracks[2:])
        self.assert_on_disk([self.tracks[0]] + self.tracks[2:])

    def test_the_menu_is_for_the_row_it_was_opened_on(self):
        player, main, rows = self.start_held()
        self.go_on(player, main)
        self.click_row(player, rows, 2, button=3)
        self.assertTrue(player.menus(), "no menu comes up")
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        for key in ("Down", "Down", "Down", "Down", "Right"):
            self.session.key(key)
        self.assertTrue(player.menus(2), "no submenu comes up")
        self.session.key("Return")  # from the disk, what is selected
        self.answer(player, "y", SURE)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE, 30), "the track stays open")
        self.assert_on_disk(self.tracks)
        self.assert_story(player, rows, self.tracks)


class LongRemoval(ChosenTest):
    """So many rows that no machine is through with them when the track ends."""
    count = 4
    more = 30000

    def setUp(self):
        super().setUp()
        self.tracks += [f"{self.music}/none {number}.wav" for number in range(self.more)]
        self.write_list(self.tracks)

    def test_the_track_that_begins_in_the_middle_of_it_stays_in_the_list(self):
        player, main, rows = self.start_held()
        self.click_row(player, rows, 2)
        self.session.key("shift+End", rows)
        self.go_on(player, main)
        self.session.key("Delete", rows)
        self.assert_box(player, SURE)
        self.assert_still_playing(player, main)
        self.answer(player, "y", SURE)
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        left = wait_for(self.quiet_list, 30)
        self.assertTrue(left, "the removal goes on")
        self.assertEqual(left[:2], self.tracks[:2])
        self.assertGreater(len(left), 2, "it was through before the track ended")
        self.assertEqual(left[2:], self.tracks[len(self.tracks) - len(left) + 2:])

    def quiet_list(self):
        """The saved list, once it does not change any more."""
        before = self.list_lines()
        if wait_for(lambda: self.list_lines() != before, 2):
            return None
        return before


class LongDeletion(ChosenTest):
    count = 4
    more = 6000

    def setUp(self):
        super().setUp()
        for number in range(self.more):
            self.tracks.append(f"{self.music}/little {number}.wav")
            with open(self.tracks[-1], "wb") as file:
                file.write(b"little")
        self.write_list(self.tracks)

    def test_nothing_of_the_main_window_reaches_into_it(self):
        player, main, rows = self.start_held()
        self.click_row(player, rows, 4)
        self.session.key("shift+End", rows)
        self.session.key("shift+Delete", rows)
        self.session.reply("y", self.assert_box(player, SURE))
        self.assertTrue(wait_for(lambda: not os.path.exists(self.tracks[4]), 30, 0.001),
                        "nothing goes")
        # Were it through before they are sent, they would meet its second question.
        with self.held(player):
            self.assertTrue(os.path.exists(self.tracks[-1]), "it was through too early")
            player.click(main, "playButton")
            for key in ("F2", "F6", "F5", "F7", "F10"):
                self.session.key(key, main)
            player.click(main, "nextButton")
            player.click(main, "song_GoTo_List")
        self.answer(player, "y", SURE, seconds=400)  # the second question of the key
        self.assert_story(player, rows, self.tracks[:4])
        self.assert_on_disk(self.tracks[:4])
        self.assertFalse(any(os.path.exists(track) for track in self.tracks[4:]))
        self.assertEqual(player.title(main), TITLE, "something plays")
        # Behind it all works again.
        player.click(main, "nextButton")
        self.assert_title(player, main, "track 1")


class Renaming(ChosenTest):
    def test_the_row_that_was_asked_about_gets_the_name(self):
        player, main, rows = self.start_held()
        self.click_row(player, rows, 2)
        self.go_on(player, main)
        player.click(rows, "Alter", form=LIST)
        ask = player.form(ASK)
        self.assertTrue(ask, "no question comes up")
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        self.write_into(player, ask, "another")
        player.click(ask, "OK", form=ASK)
        self.assertTrue(player.gone(ask), "the question stays")
        renamed = self.music + "/another.wav"
        self.assert_story(player, rows, [*self.tracks[:2], renamed, self.tracks[3]])
        self.assert_on_disk([*self.tracks[:2], self.tracks[3]])
        self.assertTrue(os.path.exists(renamed))
        self.assert_title(player, main, "another")


class Copying(ChosenTest):
    def test_all_that_was_chosen_arrives_and_nothing_else(self):
        target = self.session.home + "/stick"
        os.mkdir(target)
        player, main, rows = self.start_held()
        self.click_row(player, rows, 0)
        self.click_row(player, rows, 2, held="ctrl")
        self.click_row(player, rows, 3, held="ctrl")
        self.go_on(player, main)
        self.session.key("F10", rows)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        self.type_into(dialog, target)
        self.assertTrue(player.gone(dialog), "the dialog stays")
        live = ["track 0.wav", "track 2.wav", "track 3.wav"]
        self.assertTrue(wait_for(lambda: sorted(os.listdir(target)) == live, 30),
                        os.listdir(target))
        self.assert_list(self.tracks)


class AtOnce(ChosenTest):
    def wait_until_read(self, player, rows, live):
        """The first row was selected before, and is not when the list has been read."""
        self.assertTrue(wait_for(lambda: not self.is_selected(player, rows, 0), 30), "no reload")
        self.assertTrue(wait_for(lambda: player.look(rows, "addFile", form=LIST) == live, 300),
                        "the list is not read to its end")


class Reading(AtOnce):
    count = 4
    more = 32000

    def setUp(self):
        super().setUp()
        self.tracks += [f"{self.music}/none {number}.wav" for number in range(self.more)]
        self.write_list(self.tracks)

    def test_nothing_is_taken_in_nor_saved_until_the_list_is_there(self):
        player, main, rows = self.start_held()
        live = player.look(rows, "addFile", form=LIST)
        with self.held(player):
            player.click(rows, "afresh_Load", form=LIST)
            player.click(main, "openFile_Button")  # would ask for a file to add and play
            self.right_click_ground(player, rows)
            self.session.key("F7", main)
        self.wait_until_read(player, rows, live)
        self.assertEqual(player.others(unmanaged=False), [], "a file was asked for in the middle")
        self.assertEqual(player.menus(0), [])
        self.go_on(player, main)
        for _ in range(100):
            if "track 0" not in player.title(main):
                break
            self.press_row(player, rows, 0)
            # The next track may begin right behind the click, and selects its own row.
            self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 0) or
                                     "track 0" not in player.title(main), 30), "a click selects no row")
            player.click(rows, "afresh_Load", form=LIST)
            self.wait_until_read(player, rows, live)
        self.assert_title(player, main, "track 1")
        self.assertEqual(self.list_lines(), self.tracks)
        # Behind it all works again.
        self.session.key("F7", main)
        dialog = self.assert_box(player, PICK_FILE)
        added = self.music + "/added.wav"
        silence(added)
        self.type_into(dialog, added)
        self.assert_list(self.tracks + [added])


class Adding(AtOnce):
    count = 4
    more = 8000

    def test_the_lists_menu_stays_away_until_a_folder_is_added(self):
        folder = self.session.home + "/many"
        os.mkdir(folder)
        names = sorted(f"{number:04}.wav" for number in range(self.more))
        for name in names:
            open(f"{folder}/{name}", "wb").close()
        player, main, rows = self.start_held()
        live = player.look(rows, "addFile", form=LIST)
        self.go_on(player, main)
        player.click(rows, "addDir", form=LIST)
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, folder)
        self.assertTrue(player.gone(dialog), "the dialog stays")
        box = self.assert_box(player, DEEPER)
        self.assert_still_playing(player, main)
        self.wait_for_the_next(player, main)
        with self.held(player):
            self.session.reply("n", box)
            self.right_click_ground(player, rows)
        self.assert_list(self.tracks + [f"{folder}/{name}" for name in names])
        self.assertEqual(player.menus(0), [])
        # The list is saved before its buttons come back.
        self.assertTrue(wait_for(lambda: player.look(rows, "addFile", form=LIST) == live))
        self.right_click_ground(player, rows)
        self.assertTrue(player.menus(), "no menu comes up behind it")


if __name__ == "__main__":
    run(sys.argv[5:])
