#!/usr/bin/env python3
"""What the settings' dialogs choose, restore to defaults, and a registry with odd things in it.

    test_settings_stored.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import signal
import subprocess
import sys

from cases import run
from player import APP, PICK_COLOUR, PICK_FOLDER, PICK_FONT, SETTINGS, stairs
from session import quiet, wait_for
from settings_window import DESKTOP_COLOUR, DESKTOP_FONT, FRAME, LANGUAGE_ROWS, PAGES, SettingsTest


class Dialogs(SettingsTest):
    """The system's dialogs behind the buttons, and what they change on the screen."""

    # Places within the window, in pixels.
    OTHER_FONT = (FRAME[0] + (150 + 210 + 1425) / 15, FRAME[1] + (3000 + 1320 + 180) / 15)
    OTHER_COLOUR = (FRAME[0] + (150 + 3210 + 1425) / 15, FRAME[1] + (3000 + 1320 + 180) / 15)
    AUTO_OPEN = (FRAME[0] + (150 + 210 + 100) / 15, FRAME[1] + (300 + 300 + 165) / 15)
    LIST_FOLDER = (FRAME[0] + (5820 + 240) / 15, FRAME[1] + (1845 + 240) / 15)

    def dialog(self, window, place):
        says = {DESKTOP_FONT: PICK_FONT, self.OTHER_FONT: PICK_FONT,
                DESKTOP_COLOUR: PICK_COLOUR, self.OTHER_COLOUR: PICK_COLOUR,
                self.LIST_FOLDER: PICK_FOLDER}[place]
        self.press(window, *place)
        box = self.assert_box(self.player, says)
        quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
        return box

    def assert_gone(self, box):
        """The dialog is away, and the settings stand as they will."""
        self.assertTrue(self.player.gone(box), "the dialog stays")
        settings = self.player.form(SETTINGS)
        quiet("xdotool", "windowfocus", "--sync", settings, env=self.session.env)
        self.steady_page(settings)

    def lyrics(self):
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "lrcSet")
        self.steady_page(settings)
        return settings

    def test_a_colour_is_chosen_shown_in_the_preview_and_stored_on_apply(self):
        settings = self.lyrics()
        before = self.steady_page(settings)
        box = self.dialog(settings, DESKTOP_COLOUR)
        self.keys("alt+h", "ctrl+a")
        quiet("xdotool", "type", "#10ff20", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.assertTrue(wait_for(lambda: self.page(settings) != before),
                        "the preview keeps its colour")
        self.assertIsNone(self.stored("Desktop_Lrc_ForeColor"))
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Desktop_Lrc_ForeColor", 0x20FF10)

    def test_a_cancelled_colour_changes_nothing(self):
        settings = self.lyrics()
        preview = (FRAME[0] + (150 + 210) / 15, FRAME[1] + (3000 + 270) / 15, 390, 34)
        before = self.look(settings, *preview)
        box = self.dialog(settings, self.OTHER_COLOUR)
        self.keys("Escape")
        self.assert_gone(box)
        self.assertTrue(self.look(settings, *preview) == before, "the preview has changed")

    def test_a_font_size_is_chosen_and_stored_on_apply(self):
        settings = self.lyrics()
        box = self.dialog(settings, DESKTOP_FONT)
        self.keys("alt+s", "ctrl+a")
        quiet("xdotool", "type", "20", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Desktop_Lrc_Size", 20)
        self.assertEqual(self.stored("Desktop_Lrc_Name"), "微软雅黑")

    def test_the_first_face_that_is_chosen_is_stored(self):
        """Also the one that stands in for the face of the design, which is not installed."""
        face = subprocess.run(["fc-match", "-f", "%{family[0]}", "微软雅黑"],
                              env=self.session.env, stdout=subprocess.PIPE, text=True,
                              check=True).stdout
        settings = self.lyrics()
        box = self.dialog(settings, DESKTOP_FONT)
        self.keys("alt+f")
        quiet("xdotool", "type", face, env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Desktop_Lrc_Name", face)

    def test_the_other_lyrics_keep_their_size(self):
        settings = self.lyrics()
        box = self.dialog(settings, self.OTHER_FONT)
        self.keys("alt+s", "ctrl+a")
        quiet("xdotool", "type", "30", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Other_Lrc_Size", 14)

    def test_a_folder_is_chosen(self):
        folder = self.session.home + "/lists of mine"
        os.makedirs(folder)
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "folderSet")
        self.steady_page(settings)
        box = self.dialog(settings, self.LIST_FOLDER)
        self.type_into(box, folder)
        self.assert_gone(box)
        self.click(settings, SETTINGS, "qd")
        self.assert_closed()
        self.assert_stored("PlayListSaveFolder", folder + "/")

    def test_the_lyric_lines_change_on_apply_while_a_track_plays(self):
        track = f"{self.music}/song.wav"
        stairs(track, 120)
        with open(f"{self.music}/song.lrc", "w", newline="") as file:
            for second in range(1, 120):
                file.write(f"[{second // 60:02}:{second % 60:02}.00]All along the quiet shore\r\n")
        self.write_list([track])
        settings = self.lyrics()

        def desktop_line():
            """The lowest part of the screen, where nothing but the desktop line is."""
            return subprocess.run(
                ["import", "-silent", "-window", "root", "-crop", "1280x70+0+730", "-depth", "8",
                 "rgb:-"], env=self.session.env, stdout=subprocess.PIPE, check=False).stdout
        bare = desktop_line()
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "song")
        plain = self.player.look(self.window, "lrcBox")
        settings = self.open()
        self.assertTrue(desktop_line() == bare, "the line is there already")
        self.press(settings, *self.AUTO_OPEN)
        box = self.dialog(settings, self.OTHER_COLOUR)
        self.keys("alt+h", "ctrl+a")
        quiet("xdotool", "type", "#ff00ff", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.click(settings, SETTINGS, "yy")
        self.assertTrue(wait_for(lambda: desktop_line() != bare), "the desktop line does not show")
        self.assertTrue(wait_for(lambda: self.player.look(self.window, "lrcBox") != plain),
                        "the line of the main window keeps its colour")
        self.press(settings, *self.AUTO_OPEN)
        self.click(settings, SETTINGS, "yy")
        self.assertTrue(wait_for(lambda: desktop_line() == bare), "the desktop line stays")


class Restoring(SettingsTest):
    def test_restore_to_defaults_restarts_the_program(self):
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "languageSet")
        self.press(settings, FRAME[0] + 40, FRAME[1] + (LANGUAGE_ROWS["English"] + 165) / 15)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Language", "1")
        self.click(settings, SETTINGS, "playSet_Resume")
        for question in ("Are you sure you want to delete the previous settings",
                         "Do you close the player to restart now?"):
            box = self.assert_box(self.player, question)
            quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
            self.keys("Return")
            self.assertTrue(wait_for(lambda: not self.alive(box)), "the question stays")
        self.assertTrue(self.player.ended(), "the old program goes on")
        self.assertEqual(self.player.child.returncode, 0)
        new = wait_for(self.new_program, 30)
        self.assertTrue(new, "the new program does not come up")
        self.addCleanup(self.end, new)
        self.assertIsNone(self.stored("Language"))

    def alive(self, window):
        return "IsViewable" in quiet("xwininfo", "-id", window, env=self.session.env)

    def new_program(self):
        """The process of a visible window that is not the old program's."""
        for number in quiet("xdotool", "search", "--onlyvisible", "--class", "velmora",
                            env=self.session.env).split():
            pid = quiet("xdotool", "getwindowpid", number, env=self.session.env)
            if pid and int(pid) != self.player.child.pid:
                return int(pid)
        return None

    @staticmethod
    def end(pid):
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def test_a_no_keeps_everything(self):
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("PlayMode", "0")
        self.click(settings, SETTINGS, "playSet_Resume")
        box = self.assert_box(self.player, "您确定要删除以前的设置来恢复吗？")
        quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
        self.keys("n")
        self.assertTrue(wait_for(lambda: not self.alive(box)))
        self.assertEqual(self.stored("PlayMode"), "0")
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()


class WithOddSettings(SettingsTest):
    """Whatever the registry holds, the window opens, applies and closes; what the program takes of
    it is stored as it was, the rest gives way to what the program has.
    """

    FLAGS = ("Bold", "Italic", "Strikethrough", "Underline")

    def run_with(self, values):
        self.begin()
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended())
        self.store(values)
        self.begin()
        settings = self.open()
        for tab in PAGES:
            self.click(settings, SETTINGS, tab)
        self.click(settings, SETTINGS, "yy")
        self.assertTrue(wait_for(lambda: self.stored("VideoInterface") == "0"))
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()
        self.assertIsNone(self.player.child.poll())

    def assert_all_stored(self, expected):
        self.assertEqual({name: self.stored(name) for name in expected}, expected)

    def default_folder(self, name):
        return f"{self.session.env['XDG_DATA_HOME']}/velmora/{APP}/{name}"

    def assert_on_the_screen(self):
        """The desktop's line, which is as wide as the screen, lies within its height."""
        width, height = self.screen()
        lines = [number for number in self.player.windows() if self.player.size(number)[0] == width]
        self.assertEqual(len(lines), 1)
        (_, top), (_, high) = self.player.place(lines[0]), self.player.size(lines[0])
        self.assertGreaterEqual(top, 0)
        self.assertLessEqual(top + high, height)
        return high

    def font(self, name, size):
        values = {}
        for which in ("Desktop", "Other"):
            for stem in ("Bold", "Charset", "Italic", "Strikethrough", "Underline", "Weight"):
                values[f"{which}_Lrc_{stem}"] = (4, 0xFFFFFFFF)
            values[f"{which}_Lrc_ForeColor"] = (4, 0xFFFFFFFF)
            values[f"{which}_Lrc_BackColor"] = (4, 0x80000000)
            values[f"{which}_Lrc_Name"] = (1, name)
            values[f"{which}_Lrc_Size"] = (4, size)
        values["Desktop_Lrc_AutoOpen"] = (1, "1")
        return values

    def test_the_largest_size_of_a_face_that_is_not_installed(self):
        self.run_with(self.font("No Such Face", 2160))
        self.assert_all_stored({"Desktop_Lrc_Name": "No Such Face", "Desktop_Lrc_Size": 2160,
                                "Other_Lrc_Name": "No Such Face", "Other_Lrc_Size": 2160,
                                "Desktop_Lrc_ForeColor": 0xFFFFFFFF, "Desktop_Lrc_AutoOpen": "1"} |
                               {f"Desktop_Lrc_{flag}": 0 for flag in self.FLAGS})
        self.assertGreater(self.assert_on_the_screen(), self.screen()[1] * 0.7)

    def test_a_size_out_of_range_and_an_endless_name(self):
        self.run_with(self.font("x" * 100000, 5000))
        self.assert_all_stored({"Desktop_Lrc_Name": "x" * 100000, "Desktop_Lrc_Size": 36,
                                "Other_Lrc_Name": "x" * 100000, "Other_Lrc_Size": 14})
        self.assertLess(self.assert_on_the_screen(), self.screen()[1] / 4)

    def test_texts_for_numbers_and_numbers_for_texts(self):
        values = {name: (4, 3) for name in
                  ("AutoUpadate", "isAutoPlay", "PlayMode", "Language", "VideoInterface",
                   "LrcSaveFolder", "PlayListSaveFolder", "PlayCacheSaveFolder")}
        self.run_with(values | {"Desktop_Lrc_Size": (1, "36"), "Desktop_Lrc_AutoOpen": (4, 1)})
        self.assert_all_stored({"AutoUpadate": "0", "isAutoPlay": "0", "PlayMode": "0",
                                "Language": "0", "Desktop_Lrc_AutoOpen": "0",
                                "LrcSaveFolder": self.default_folder("Lyrics"),
                                "PlayListSaveFolder": self.default_folder("List"),
                                "PlayCacheSaveFolder": self.default_folder("Cache"),
                                "Desktop_Lrc_Name": "微软雅黑", "Desktop_Lrc_Size": 36,
                                "Desktop_Lrc_ForeColor": 0x0000FF})

    def test_numbers_out_of_range(self):
        self.run_with({"AutoUpadate": (1, "99999999999"), "isAutoPlay": (1, "-3"),
                       "PlayMode": (1, "77"), "Language": (1, "9"), "VideoInterface": (1, "-1"),
                       "AutoShowWelcome": (1, "x"), "Desktop_Lrc_AutoOpen": (1, "7")})
        # What is no state of a box leaves it as it is designed; a mode that is none is kept.
        self.assert_all_stored({"AutoUpadate": "0", "isAutoPlay": "1", "PlayMode": "77",
                                "Language": "0", "AutoShowWelcome": "x",
                                "Desktop_Lrc_AutoOpen": "0"})

    def test_folders_that_are_files_relative_or_end_in_separators(self):
        file = self.session.home + "/a file"
        with open(file, "w") as out:
            out.write("kept")
        self.run_with({"LrcSaveFolder": (1, file), "PlayListSaveFolder": (1, "lists of mine/"),
                       "PlayCacheSaveFolder": (1, self.session.home + "/cached//")})
        with open(file) as kept:
            self.assertEqual(kept.read(), "kept")
        self.assertEqual(self.stored("LrcSaveFolder"), file)
        self.assertTrue(os.path.isdir(self.session.home + "/cached"))
        # A relative one counts from where the program was started.
        self.assertTrue(os.path.isdir(self.session.home + "/lists of mine"))

    def test_folders_that_cannot_be(self):
        endless = "/" + "long" * 30000
        self.run_with({"LrcSaveFolder": (1, "/proc/nowhere/lyrics"),
                       "PlayListSaveFolder": (1, "a\r\nb\x00c//"),
                       "PlayCacheSaveFolder": (1, endless)})
        self.assert_all_stored({"LrcSaveFolder": "/proc/nowhere/lyrics",
                                "PlayListSaveFolder": "a\r\nb", "PlayCacheSaveFolder": endless})


if __name__ == "__main__":
    run(sys.argv[5:])
