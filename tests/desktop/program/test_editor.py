#!/usr/bin/env python3
"""The lyric editor by real keys while music plays: type, stamp, save, save as, open.

    test_editor.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import re
import shutil
import sys

from cases import run
from player import FORM_SIZES, PlayerTest, design, stairs
from session import quiet, rest, wait_for

EDITOR = design("src/lyrics/doLrcForm.form")
FORM_SIZES.add(tuple(int(side) for side in EDITOR["form"][2:4]))
ROW = 18
# What the editor's boxes and dialogs say.
THERE = "该歌词文件已存在，是否覆盖？"
SAVED = "已成功保存"
PICK_TARGET = "选择要保存歌词同步文件的地址"
STAMP = r"\[00:(\d\d)\.(\d{1,2})\]"


class EditorTest(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.have_track("song")

    def have_track(self, name):
        self.name = name
        self.track = f"{self.music}/{name}.wav"
        stairs(self.track, 60, level=0.05, step=0)
        self.write_list([self.track])

    def edit(self, *lines):
        """Plays the track with this lyric and opens the editor on it."""
        self.write_lyric(f"{self.music}/{self.name}.lrc", *lines)
        player, main = self.start()
        self.session.key("F6", main)
        # Loaded, after the fade, and then copied: a load while the editor is open fills it anew.
        self.assertTrue(self.lyric_file())
        player.click(main, "do_Lrc")
        editor = player.form(EDITOR)
        self.assertTrue(editor, "no editor comes up")
        # Side by side, so that both can be seen.
        for window, place in ((main, (0, 0)), (editor, (600, 300))):
            player.move(window, *place)
        self.choose(player, editor, 0)
        return player, main, editor

    @staticmethod
    def choose(player, editor, row):
        left, top, _, _ = EDITOR["lrcList"]
        player.click_at(editor, left + 60, top + row * ROW + ROW // 2)

    @staticmethod
    def write_lyric(path, *lines):
        with open(path, "w", newline="", encoding="utf-8") as file:
            file.write("".join(line + "\r\n" for line in lines))

    def saved(self, path):
        with open(path, newline="", encoding="utf-8") as file:
            return file.read().split("\r\n")[:-1]

    def lyric_file(self):
        """The lyric's file in the lyric folder, once it is there."""
        def look():
            for folder, _, names in os.walk(self.session.env["XDG_DATA_HOME"]):
                for name in names:
                    if name.lower() == self.name.lower() + ".lrc":
                        return os.path.join(folder, name)
            return None
        return wait_for(look, 30)

    def press(self, *keys):
        for key in keys:
            self.session.key(key)

    def save(self, player, editor):
        """Ctrl+S over the lyric that is there already, and the word that it was saved."""
        self.session.key("ctrl+s", editor)
        self.answer(player, "y", THERE)
        self.answer(player, "Return", SAVED)


class Editing(EditorTest):
    LINES = ("[Ti:Song]", "[00:00.00]start", "[00:03.00]go", "one", "two", "three")

    def test_lines_stamped_with_f9_are_saved_matched_and_shown(self):
        player, main, editor = self.edit(*self.LINES)
        start = player.look(main, "lrcBox")
        self.assertTrue(wait_for(lambda: player.look(main, "lrcBox") != start, 30))
        self.choose(player, editor, 2)
        self.press("F9", "F9", "F9")
        self.save(player, editor)
        path = self.lyric_file()
        lines = [line for line in self.saved(path) if re.match(STAMP, line)]
        self.assertEqual([re.sub(STAMP, "", line) for line in lines],
                         ["start", "go", "one", "two", "three"])
        stamps = [int(re.match(STAMP, line)[1]) for line in lines[2:]]
        self.assertEqual(stamps, sorted(stamps))
        self.assertTrue(2 <= stamps[0] and stamps[-1] < 40, stamps)  # 3 comes up half a second early
        # Matched: behind the labels the waiting text stands; back at them their line comes.
        before = player.look(main, "lrcBox")
        player.click(main, "load_Played_BG", share=(stamps[0] + 1.5) / 60)
        self.assertTrue(wait_for(lambda: player.look(main, "lrcBox") != before, 30))
        waiting = rest(lambda: player.look(main, "lrcBox"))
        self.assertTrue(waiting, "the line never comes to rest")
        player.click(main, "load_Played_BG", share=max(0.5, stamps[0] - 1.5) / 60)
        self.assertTrue(wait_for(lambda: player.look(main, "lrcBox") != waiting, 30),
                        "the saved lyric is not shown")

    def test_a_typed_line_is_saved_and_f10_takes_a_stamp_back(self):
        player, _, editor = self.edit("[00:01.00]first", "[00:02.50]second")
        player.click(editor, "lrc_Index_Text", form=EDITOR)
        self.press("ctrl+a", "Delete")
        quiet("xdotool", "type", "--delay", "8", "[00:09.25]typed by hand", env=self.session.env)
        self.choose(player, editor, 1)
        self.press("F10")
        self.save(player, editor)
        lines = self.saved(self.lyric_file())
        self.assertIn("[00:09.25]typed by hand", lines)
        self.assertIn("second", lines)

    def test_shift_s_saves_elsewhere_and_ctrl_o_opens_it_again(self):
        player, _, editor = self.edit("[00:01.00]first")
        other = self.session.home + "/elsewhere.lrc"
        self.session.key("shift+s", editor)
        self.type_into(self.assert_box(player, PICK_TARGET), other)
        self.assertTrue(wait_for(lambda: os.path.exists(other), 30))
        self.answer(player, "Return", SAVED)
        self.assertIn("[00:01.00]first", self.saved(other))
        self.write_lyric(other, "[00:07.00]from another file")
        self.choose(player, editor, 0)
        self.session.key("ctrl+o", editor)
        dialog = self.assert_box(player, "选择歌词同步文件 - ")
        self.type_into(dialog, other)
        self.assertTrue(player.gone(dialog))
        self.save(player, editor)
        self.assertIn("[00:07.00]from another file", self.saved(self.lyric_file()))

    def test_save_as_gives_a_title_with_a_point_in_it_the_extension(self):
        self.have_track("Mr. Blue")
        player, _, editor = self.edit("[00:01.00]first")
        self.session.key("shift+s", editor)
        # The name that it proposes, in the working folder.
        self.answer(player, "Return", PICK_TARGET)
        path = self.session.home + "/Mr. Blue"
        self.assertTrue(wait_for(lambda: os.path.exists(path + ".lrc"), 30))
        self.answer(player, "Return", SAVED)
        self.assertIn("[00:01.00]first", self.saved(path + ".lrc"))
        self.assertFalse(os.path.exists(path))

    def test_a_save_into_a_folder_that_is_gone_tells_of_it_and_keeps_the_lines(self):
        player, _, editor = self.edit("[00:01.00]first")
        path = self.lyric_file()
        folder = os.path.dirname(path)
        shutil.rmtree(folder)
        with open(folder, "w", encoding="utf-8"):
            pass  # no folder can be made there now
        self.choose(player, editor, 0)
        self.session.key("ctrl+s", editor)
        self.answer(player, "Return", "保存失败，请确定您有写入权限！")
        self.assertIsNone(player.child.poll())
        # The lines are still there: saved elsewhere they come out whole.
        other = self.session.home + "/rescued.lrc"
        self.session.key("shift+s", editor)
        self.type_into(self.assert_box(player, PICK_TARGET), other)
        self.assertTrue(wait_for(lambda: os.path.exists(other), 30))
        self.assertIn("[00:01.00]first", self.saved(other))


if __name__ == "__main__":
    run(sys.argv[5:])
