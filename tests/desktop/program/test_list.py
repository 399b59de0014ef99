#!/usr/bin/env python3
"""The play list on the screen: keys, drops from another program, its menu. The saved list tells the
same as the rows after every step.

    test_list.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import sys

from cases import run
from listing import LIST_LEFT, LIST_TOP, NOTHING_CHOSEN, ROW, SURE, ListTest, silence
from player import ABOUT, ASK, LIST, PICK_FILE, TITLE
from session import wait_for


class Keys(ListTest):
    def test_ctrl_a_and_delete_empty_the_list_once_confirmed(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.select_all(player, rows)
        self.session.key("Delete", rows)
        self.assertEqual(player.title(self.assert_box(player, SURE)), TITLE)
        self.answer(player, "n", SURE)
        self.assert_story(player, rows, self.tracks)
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertTrue(all(os.path.exists(track) for track in self.tracks))

    def test_delete_takes_the_selected_rows_alone(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.click_row(player, rows, 2, held="ctrl")
        self.session.key("Delete", rows)
        self.answer(player, "Return", SURE)  # the first button: yes
        self.assert_story(player, rows, [self.tracks[1], self.tracks[3]])
        self.assert_a_reload_changes_nothing(player, rows)

    def test_shift_delete_deletes_from_the_disk_and_asks_twice(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.session.key("shift+Delete", rows)
        self.answer(player, "y", SURE)
        self.answer(player, "y", SURE)  # removal from the list finds nothing selected
        left = [self.tracks[0]] + self.tracks[2:]
        self.assert_story(player, rows, left)
        self.assertEqual([os.path.exists(track) for track in self.tracks],
                         [True, False, True, True])
        self.assertTrue(wait_for(self.opened, 30), "the log is not shown")
        self.assertEqual(len(self.opened()), 1)
        self.assertTrue(self.opened()[0].endswith("/delFile.log"))
        with open(self.opened()[0], newline="", encoding="utf-8") as log:
            lines = log.read().split("\r\n")
        self.assertEqual(lines[0], TITLE)
        self.assertIn("【Successful】：", lines)
        self.assertEqual(lines[lines.index("【Successful】：") + 1], "    " + self.tracks[1])

    def test_shift_delete_twice_refused_leaves_everything(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.session.key("shift+Delete", rows)
        self.answer(player, "n", SURE)
        self.answer(player, "n", SURE)
        self.assert_story(player, rows, self.tracks)
        self.assertTrue(all(os.path.exists(track) for track in self.tracks))
        self.assertEqual(self.opened(), [])

    def test_f2_enter_and_a_double_click_play_the_current_row(self):
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 2)
        self.session.key("F2", rows)
        self.assert_title(player, main, "3/4")
        self.click_row(player, rows, 1)
        self.session.key("Return", rows)
        self.assert_title(player, main, "2/4")
        self.click_row(player, rows, 3, times=2)
        self.assert_title(player, main, "4/4")
        self.assert_story(player, rows, self.tracks)

    def test_f3_to_f6_steer_the_player_from_the_list_too(self):
        player, main, rows = self.start_with_list()
        player.click(main, "Volume_ICO")  # no sound to fade in
        self.click_row(player, rows, 3)
        self.session.key("F6", rows)
        self.assert_title(player, main, "1/4")
        self.session.key("F6", rows)
        self.assert_title(player, main, "2/4")
        self.session.key("F5", rows)
        self.assert_title(player, main, "1/4")
        playing = player.look(main, "playButton")
        self.session.key("F3", rows)
        self.assertTrue(wait_for(lambda: player.look(main, "playButton") != playing), "no pause")
        self.session.key("F4", rows)
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE), "no stop")

    def test_f7_adds_one_file_and_never_twice(self):
        player, _, rows = self.start_with_list()
        added = self.music + "/another one.wav"
        silence(added)
        for _ in range(2):
            self.click_row(player, rows, 0)
            self.session.key("F7", rows)
            dialog = self.assert_box(player, PICK_FILE)
            self.type_into(dialog, added)
            self.assertTrue(player.gone(dialog))
            self.assert_story(player, rows, self.tracks + [added])
        self.session.key("F7", rows)
        self.answer(player, "Escape", PICK_FILE)
        self.assert_story(player, rows, self.tracks + [added])
        self.assert_a_reload_changes_nothing(player, rows)

    def test_f9_opens_the_folder_of_one_row_only(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.session.key("F9", rows)
        self.assertTrue(wait_for(self.opened, 30))
        self.assertEqual([folder.rstrip("/") for folder in self.opened()], [self.music])
        self.click_row(player, rows, 2, held="ctrl")
        self.session.key("F9", rows)
        self.answer(player, "Return", "不支持开启一个以上的文件目录！")
        self.assertEqual(len(self.opened()), 1)

    def test_f10_wants_a_selection(self):
        player, _, rows = self.start_with_list()
        self.session.key("F10", rows)
        self.answer(player, "Return", NOTHING_CHOSEN)
        self.assert_story(player, rows, self.tracks)

    def test_f8_hides_f12_shows_the_maker_and_esc_ends(self):
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        self.session.key("F12", rows)
        about = player.form(ABOUT)
        self.assertTrue(about)
        player.click(about, "close", form=ABOUT)
        self.assertTrue(player.gone(about))
        self.click_row(player, rows, 0)
        self.session.key("F8", rows)
        self.assertTrue(player.gone(rows))
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.click_row(player, rows, 0)
        self.session.key("Escape", rows)
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)
        self.assert_list(self.tracks)


class Scrolling(ListTest):
    count = 40

    def play_at(self, player, main, rows, line, number):
        """The row at a line of the window is the one with that number."""
        self.click_row(player, rows, line)
        self.session.key("F2", rows)
        self.assert_title(player, main, f"{number}/{self.count}")

    def start_scrolled(self):
        player, main, rows = self.start_with_list()
        # The bar comes with the tick that finds more rows than fit.
        left, top, width, _ = LIST["P4"]
        self.assertTrue(wait_for(lambda: max(player.picture(
            rows, left, top, width, 30) or b"\0") > 60, 30), "no scroll bar")
        return player, main, rows

    def test_the_arrows_move_by_one_row(self):
        player, main, rows = self.start_scrolled()
        for _ in range(3):
            player.click(rows, "P3", form=LIST)
        self.play_at(player, main, rows, 0, 4)
        player.click(rows, "P1", form=LIST)
        self.play_at(player, main, rows, 1, 4)

    def test_the_wheel_moves_by_three_rows(self):
        player, main, rows = self.start_scrolled()
        player.click_at(rows, LIST_LEFT + 60, LIST_TOP + 100, button=5, times=2)
        self.play_at(player, main, rows, 0, 7)

    def test_the_thumb_drawn_to_the_bottom_shows_the_last_rows(self):
        player, main, rows = self.start_scrolled()
        left, top, width, height = LIST["P4"]
        player.tool("mousemove", *player.point(rows, left + width / 2, top + 10))
        player.tool("mousedown", 1)
        for step in range(1, 11):
            player.tool("mousemove", *player.point(rows, left + width / 2,
                                                   top + 10 + step * (height - 20) / 10))
        player.tool("mousemove_relative", "--", 0, 40)
        player.tool("mouseup", 1)
        self.play_at(player, main, rows, 16, 40)
        self.assert_list(self.tracks)

    def test_the_tip_tells_the_whole_path(self):
        player, _, rows = self.start_scrolled()
        player.tool("mousemove", *player.point(rows, LIST_LEFT + 60, LIST_TOP + ROW * 2 + 9))
        player.tool("mousemove_relative", "--", 3, 2)

        def tip():
            return next((number for number in player.windows() if player.size(number)[1] < 40 and
                         player.size(number)[0] > 100 and player.unmanaged(number)), None)
        self.assertTrue(wait_for(tip, 30), "no tip comes up")
        self.assertEqual(player.words(tip()), [self.tracks[2]])


class Selecting(ListTest):
    def remove_selected(self, player, rows, expected):
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, expected)

    def test_shift_takes_all_between(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.click_row(player, rows, 3, held="shift")
        self.remove_selected(player, rows, self.tracks[:1])

    def test_ctrl_takes_away_again(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.click_row(player, rows, 2, held="ctrl")
        self.click_row(player, rows, 1, held="ctrl")
        self.remove_selected(player, rows, self.tracks[:2] + self.tracks[3:])

    def test_a_drag_takes_what_it_crosses(self):
        player, _, rows = self.start_with_list()
        x, y = player.point(rows, LIST_LEFT + 60, LIST_TOP + 9)
        player.tool("mousemove", x, y)
        player.tool("mousedown", 1)
        for step in range(1, 10):
            player.tool("mousemove", x, y + step * 4)
        player.tool("mouseup", 1)
        self.remove_selected(player, rows, self.tracks[3:])


class Dropping(ListTest):
    def make(self, *names):
        paths = []
        for name in names:
            paths.append(self.music + "/" + os.fsdecode(name))
            os.makedirs(os.path.dirname(paths[-1]), exist_ok=True)
            silence(paths[-1])
        return paths

    def test_files_go_in_at_the_row_each_before_the_last(self):
        player, _, rows = self.start_with_list()
        one, two, three = self.make("a b%20c.wav", "灯火 100%.wav", "été #1?.wav")
        self.assertEqual(self.drop_at_row(player, rows, 1, [one, two, three]), "XdndActionCopy")
        self.assert_story(player, rows,
                          [self.tracks[0], three, two, one] + self.tracks[1:])
        self.assert_a_reload_changes_nothing(player, rows)

    def test_below_the_last_row_means_the_top(self):
        player, _, rows = self.start_with_list()
        added, = self.make("new.wav")
        self.drop_at_row(player, rows, 10, [added])
        self.assert_story(player, rows, [added] + self.tracks)

    def test_a_folder_is_taken_flat_and_appended(self):
        player, _, rows = self.start_with_list()
        tracks = self.make("新しい 100%/夜のうみ.wav", "新しい 100%/b [x] {y}.wav")
        self.make("新しい 100%/inner/deep.wav")
        open(self.music + "/新しい 100%/cover.jpg", "w").close()
        self.drop_at_row(player, rows, 1, [self.music + "/新しい 100%"])
        self.assertTrue(wait_for(lambda: len(self.list_lines()) == 6, 30))
        self.assertEqual(self.list_lines()[:4], self.tracks)
        self.assert_story(player, rows, self.tracks + sorted(tracks))
        self.assert_a_reload_changes_nothing(player, rows)

    def test_names_that_are_hard_to_write_down_survive(self):
        player, main, rows = self.start_with_list()
        hard = self.make(b"quo\"te's.wav", b"line\nbreak\r.wav", b"back\\slash.wav",
                         b"no \xff\xfe text.wav", "مرحبا 🎵.wav".encode(), b"n" * 251 + b".wav",
                         b"%41%zz.wav", b"-rf.wav")
        for path in hard:
            before = len(self.list_lines())
            self.drop_at_row(player, rows, 16, [path])
            self.assertTrue(wait_for(lambda: len(self.list_lines()) == before + 1, 30), repr(path))
        expected = hard[::-1] + self.tracks
        self.assert_story(player, rows, expected)
        self.assert_a_reload_changes_nothing(player, rows)
        for number in range(len(hard)):
            self.click_row(player, rows, number)
            self.session.key("F2", rows)
            self.assert_title(player, main, f"{number + 1}/{len(expected)}")
        self.session.key("Escape", rows)
        self.assertTrue(player.ended())
        player, _, rows = self.start_with_list()
        self.assert_story(player, rows, expected)

    def test_what_is_no_track_gone_or_there_already_is_passed_over(self):
        player, _, rows = self.start_with_list()
        added, = self.make("new.wav")
        text = self.music + "/notes.txt"
        open(text, "w").close()
        self.drop_at_row(player, rows, 0, [text, self.music + "/gone.wav", self.tracks[2], added])
        self.assert_story(player, rows, [added] + self.tracks)

    def test_other_data_and_other_places_are_refused(self):
        player, main, rows = self.start_with_list()
        at = (LIST_LEFT + 60, LIST_TOP + ROW)
        self.assertIsNone(self.drag(player, rows, *at, data="file:///x.wav", kind="text/plain"))
        self.assertIsNone(self.drag(player, main, 100, 60, self.tracks[:1]))
        self.assertIsNone(self.drag(player, rows, 20, 360, self.tracks[:1]))
        self.assert_story(player, rows, self.tracks)

    def test_a_list_that_waits_for_an_answer_refuses(self):
        player, _, rows = self.start_with_list()
        added, = self.make("new.wav")
        self.click_row(player, rows, 0)
        player.click(rows, "Search", form=LIST)
        ask = player.form(ASK)
        self.assertTrue(ask)
        x, y = player.place(ask)
        player.move(ask, x, y + 300)
        self.assertIsNone(self.drop_at_row(player, rows, 1, [added]))
        player.click(ask, "Cancel", form=ASK)
        self.assertTrue(player.gone(ask))
        self.assertEqual(self.drop_at_row(player, rows, 0, [added]), "XdndActionCopy")
        self.assert_story(player, rows, [added] + self.tracks)


class ListMenu(ListTest):
    def open_menu(self, player, rows, row):
        self.click_row(player, rows, row, button=3)
        menus = player.menus()
        self.assertTrue(menus, "no menu comes up")
        return menus[0]

    def choose(self, *keys):
        for key in keys:
            self.session.key(key)

    def test_the_mouse_plays_by_the_first_entry_and_hides_by_the_last(self):
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 0)
        menu = self.open_menu(player, rows, 2)  # the right button chooses its row
        self.assertFalse(self.is_selected(player, rows, 0))
        player.click_at(menu, 30, 14)
        self.assert_title(player, main, "3/4")
        menu = self.open_menu(player, rows, 0)
        player.click_at(menu, 30, -14)
        self.assertTrue(player.gone(rows))

    def test_the_keyboard_removes_from_the_list(self):
        player, _, rows = self.start_with_list()
        self.click_row(player, rows, 2)
        self.click_row(player, rows, 3, held="shift")
        self.open_menu(player, rows, 3)  # a row of the selection, which stays
        self.choose("Down", "Down", "Down", "Right")
        self.assertTrue(player.menus(2), "no submenu comes up")
        self.choose("Return")
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[:2])
        self.open_menu(player, rows, 0)
        self.choose("Down", "Down", "Down", "Right", "Down", "Return")  # the whole list
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertTrue(all(os.path.exists(track) for track in self.tracks))

    def test_the_keyboard_deletes_all_from_the_disk(self):
        player, _, rows = self.start_with_list()
        self.open_menu(player, rows, 0)
        self.choose("Down", "Down", "Down", "Down", "Right", "Down", "Return")
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertFalse(any(os.path.exists(track) for track in self.tracks))
        self.assertTrue(wait_for(self.opened, 30), "the log is not shown")

    def test_search_selects_what_holds_the_text(self):
        player, _, rows = self.start_with_list()
        self.open_menu(player, rows, 0)
        self.choose(*["Down"] * 6, "Return")
        ask = player.form(ASK)
        self.assertTrue(ask, "no question comes up")
        self.write_into(player, ask, "k 2")
        player.click(ask, "OK", form=ASK)
        self.assertTrue(player.gone(ask))
        self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 2), 30), "no hit")
        self.session.key("Delete", rows)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[:2] + self.tracks[3:])

    def test_reload_reads_what_another_program_wrote(self):
        player, _, rows = self.start_with_list()
        self.write_list(self.tracks[1:3])
        self.open_menu(player, rows, 0)
        self.choose(*["Down"] * 5, "Return")
        self.assert_story(player, rows, self.tracks[1:3])

    def test_esc_closes_the_menu_alone(self):
        player, main, rows = self.start_with_list()
        self.open_menu(player, rows, 0)
        self.choose("Escape")
        self.assertIsNotNone(player.menus(0))
        self.assertIsNone(player.child.poll())
        self.assert_story(player, rows, self.tracks)


if __name__ == "__main__":
    run(sys.argv[5:])
