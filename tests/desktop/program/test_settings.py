#!/usr/bin/env python3
"""The settings window of the real program, used by mouse and by keyboard alone.

    test_settings.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import signal
import sqlite3
import subprocess
import sys
import unittest

from player import ABOUT, FORM_SIZES, LIST, SETTINGS, PlayerTest, design, stairs
from session import quiet, wait_for

INFO = design("src/playlist/playInfo_Form.form")
FORM_SIZES.add(tuple(int(side) for side in INFO["form"][2:4]))
KEY = "SOFTWARE\\NORVANE\\ZKPLAYER\\PLAYSET"
PAGES = ("playSet", "lrcSet", "folderSet", "languageSet", "Shortcuts", "help")
# The frame of a page, and places inside it, in pixels.
FRAME = (2280 / 15, 480 / 15)
LANGUAGE_ROWS = {"Chinese": 480, "English": 960, "French": 1440, "Japanese": 1920}


class SettingsTest(PlayerTest):
    def setUp(self):
        super().setUp()
        self.player = self.window = None

    def begin(self):
        self.player, self.window = self.start()

    def open(self):
        self.session.key("ctrl+s", self.window)
        settings = self.player.form(SETTINGS)
        self.assertTrue(settings, "the settings window does not come up")
        quiet("xdotool", "windowfocus", "--sync", settings, env=self.session.env)
        return settings

    def visible(self, form):
        return self.player.form(form, 0.1)

    def assert_closed(self):
        self.assertTrue(wait_for(lambda: not self.visible(SETTINGS)), "the settings stay open")

    def message(self):
        return self.player.box()

    # --- mouse, keys, looks --------------------------------------------------------------------

    def press(self, window, x, y):
        shape = self.player.geometry(window)
        quiet("xdotool", "mousemove", str(int(shape["X"] + x)), str(int(shape["Y"] + y)), "click",
              "1", env=self.session.env)

    def click(self, window, form, control):
        left, top, width, height = form[control]
        self.press(window, left + width / 2, top + height / 2)

    def keys(self, *names):
        quiet("xdotool", "key", "--delay", "30", *names, env=self.session.env)

    def look(self, window, left=0, top=0, width=0, height=0):
        """The pixels of a part of a window, without what the pointer makes of it."""
        quiet("xdotool", "mousemove", "1270", "790", env=self.session.env)
        crop = ["-crop", f"{int(width)}x{int(height)}+{int(left)}+{int(top)}"] if width else []
        target = f"{self.session.home}/look.ppm"
        quiet("import", "-window", window, *crop, target, env=self.session.env)
        with open(target, "rb") as file:
            return file.read()

    def page(self, window):
        return self.look(window, FRAME[0], FRAME[1], 430, 330)

    def steady_page(self, window):
        """The page once two looks in a row are the same."""
        before = [self.page(window)]

        def look():
            now = self.page(window)
            same, before[0] = now == before[0], now
            return now if same else None
        return wait_for(look)


class ByMouse(SettingsTest):
    def test_each_tab_shows_a_page_of_its_own(self):
        self.begin()
        settings = self.open()
        pages = []
        for tab in PAGES:
            self.click(settings, SETTINGS, tab)
            pages.append(self.steady_page(settings))
        self.assertEqual(len(set(pages)), len(PAGES), "two pages look alike")

    def test_apply_changes_the_main_window_at_once_and_stays(self):
        self.begin()
        before = self.look(self.window)
        settings = self.open()
        self.click(settings, SETTINGS, "languageSet")
        self.press(settings, FRAME[0] + 40, FRAME[1] + (LANGUAGE_ROWS["English"] + 165) / 15)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Language", "1")
        self.assertTrue(wait_for(lambda: self.look(self.window) != before),
                        "the main window does not change")
        self.assertTrue(self.visible(SETTINGS))

    def test_a_language_reaches_every_open_window_at_once_while_a_track_plays(self):
        track = f"{self.music}/song.wav"
        stairs(track, 60)
        self.write_list([track])
        self.begin()
        self.player.click(self.window, "Volume_ICO")  # no sound to fade in
        empty = self.player.look(self.window, "lrcBox")
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "song")
        # Before it says that there is no lyric there is no information either.
        self.assertTrue(wait_for(lambda: self.player.look(self.window, "lrcBox") != empty))
        self.player.click(self.window, "playInfo")
        info = self.player.form(INFO)
        self.assertTrue(info, "no track information")
        self.player.tool("windowmove", "--sync", info, 0, 300)
        self.player.click(self.window, "playListButton")
        rows = self.player.form(LIST)
        settings = self.open()
        self.player.tool("windowmove", "--sync", settings, 1280 - 600, 380)
        self.click(settings, SETTINGS, "languageSet")
        self.steady_page(settings)
        parts = [(rows, LIST, control) for control in ("title", "addFile", "Search")]
        parts += [(info, INFO, "title"), (info, INFO, "nowPlay_Frame")]
        parts += [(settings, SETTINGS, control) for control in ("title", "qd", "help")]

        def looks():
            return [self.look(window, *form[control]) for window, form, control in parts]
        seen = [looks()]
        for language in ("English", "French", "Japanese"):
            self.press(settings, FRAME[0] + 40, FRAME[1] + (LANGUAGE_ROWS[language] + 165) / 15)
            self.click(settings, SETTINGS, "yy")
            # Confirmation has the same letters in three of the four languages.
            changed = wait_for(lambda: all(
                now != before or (before_part[2] == "qd" and language != "English")
                for now, before, before_part in zip(looks(), seen[-1], parts)))
            self.assertTrue(changed, f"{language} does not reach every window")
            seen.append(looks())
        self.assert_title(self.player, self.window, "song")

    def test_ok_stores_and_leaves_and_cancel_only_leaves(self):
        self.begin()
        settings = self.open()
        self.press(settings, FRAME[0] + 30, FRAME[1] + (2400 + 165) / 15)  # autoUpdate
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()
        self.assertIsNone(self.stored("AutoUpadate"))
        settings = self.open()
        self.press(settings, FRAME[0] + 30, FRAME[1] + (2850 + 165) / 15)  # openVideo_Interface
        self.click(settings, SETTINGS, "qd")
        self.assert_closed()
        self.assert_stored("VideoInterface", "1")
        self.assertEqual(self.stored("AutoUpadate"), "0")

    def test_a_disabled_play_mode_takes_no_click_but_is_stored(self):
        self.begin()
        settings = self.open()
        random_row = (FRAME[0] + 55, FRAME[1] + (1320 + 165) / 15)
        self.press(settings, *random_row)
        self.press(settings, FRAME[0] + 30, FRAME[1] + (450 + 165) / 15)  # isAutoPlay off
        self.press(settings, FRAME[0] + 55, FRAME[1] + (1740 + 165) / 15)  # repeat: disabled
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("isAutoPlay", "1")
        self.assertEqual(self.stored("PlayMode"), "1")

    def test_the_close_button_and_the_window_manager_close_it(self):
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "close")
        self.assert_closed()
        settings = self.open()
        quiet("wmctrl", "-i", "-c", settings, env=self.session.env)
        self.assert_closed()
        self.assertIsNone(self.player.child.poll())

    def test_the_about_window_gives_the_settings_back(self):
        self.begin()
        settings = self.open()
        self.click(settings, SETTINGS, "abount")
        about = self.player.form(ABOUT)
        self.assertTrue(about, "the about window does not come up")
        self.click(about, ABOUT, "close")
        self.assertTrue(wait_for(lambda: not self.visible(ABOUT)))
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()

    def test_a_dragged_window_follows_the_pointer(self):
        self.begin()
        settings = self.open()
        before = self.player.geometry(settings)
        x, y = before["X"] + 200, before["Y"] + 12

        def moved_by(dx, dy):
            now = self.player.geometry(settings)
            return (now["X"] - before["X"], now["Y"] - before["Y"]) == (dx, dy)
        quiet("xdotool", "mousemove", str(x), str(y), "mousedown", "1", env=self.session.env)
        for dx, dy in ((60, 40), (80, 50)):
            # A hand is never faster than the program.
            quiet("xdotool", "sleep", "0.2", "mousemove", str(x + dx), str(y + dy),
                  env=self.session.env)
            self.assertTrue(wait_for(lambda dx=dx, dy=dy: moved_by(dx, dy)),
                            "the window is not where the pointer took it")
        quiet("xdotool", "mouseup", "1", env=self.session.env)


class ByKeyboard(SettingsTest):
    """The keyboard goes through the window as it is designed: close, tabs, about, page, restore, OK,
    Cancel, Apply. On opening it is at the first choice of the page.
    """

    def back(self, steps):
        self.keys(*["shift+Tab"] * steps)

    def on(self, steps):
        self.keys(*["Tab"] * steps)

    def open_page(self, tab):
        """Leaves the keyboard at the first stop of the page."""
        settings = self.open()
        steps = len(PAGES) - PAGES.index(tab)
        self.back(1 + steps)  # about, and the tabs down to this
        self.keys("Return")
        self.steady_page(settings)
        self.on(steps + 1)
        return settings

    def assert_box(self):
        box = self.player.box()
        self.assertTrue(box, "no box comes up")
        quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
        return box

    def assert_back(self, box):
        """The box is away, and the settings have the keyboard again."""
        self.assertTrue(self.player.gone(box), "the box stays")
        settings = self.player.form(SETTINGS)
        quiet("xdotool", "windowfocus", "--sync", settings, env=self.session.env)
        self.steady_page(settings)

    def test_a_language_is_chosen_and_applied_without_a_mouse(self):
        self.begin()
        before = self.look(self.window)
        self.open_page("languageSet")
        self.on(2)  # English, French
        self.keys("space")
        self.on(5)  # Japanese, restore, OK, Cancel, Apply
        self.keys("Return")
        self.assert_stored("Language", "2")
        self.assertTrue(wait_for(lambda: self.look(self.window) != before))

    def test_each_page_is_opened_without_a_mouse(self):
        self.begin()
        settings = self.open()
        self.back(2 + len(PAGES))
        pages = []
        for _ in PAGES:
            self.keys("Tab", "Return")
            pages.append(self.steady_page(settings))
        self.assertEqual(len(set(pages)), len(PAGES), "two pages look alike")

    def test_the_order_goes_round_backwards_too(self):
        self.begin()
        self.open()
        self.back(1 + len(PAGES) + 3)  # about, the tabs, close, Apply, Cancel
        self.keys("space")
        self.assert_closed()
        self.assertIsNone(self.stored("PlayMode"))

    def test_the_close_sign_closes_without_a_mouse(self):
        self.begin()
        self.open()
        self.back(1 + len(PAGES) + 1)
        self.keys("Return")
        self.assert_closed()
        self.assertIsNone(self.stored("PlayMode"))

    def test_what_has_the_keyboard_is_seen(self):
        self.begin()
        settings = self.open()
        plain = self.steady(settings, "qd")
        self.on(7)  # in order, random, repeat, update, video, restore, OK
        self.assertNotEqual(self.steady(settings, "qd"), plain, "nothing marks the button")
        self.on(1)
        self.assertEqual(self.steady(settings, "qd"), plain, "the mark stays")

    def steady(self, settings, control):
        left, top, width, height = SETTINGS[control]
        self.steady_page(settings)
        return self.look(settings, left, top, width, height)

    def test_a_choice_is_made_with_the_space_bar(self):
        self.begin()
        self.open()
        self.on(2)  # in order, random
        self.keys("space")
        self.on(2)  # repeat, update
        self.keys("space")
        self.on(3)  # video, restore, OK
        self.keys("Return")
        self.assert_closed()
        self.assert_stored("PlayMode", "1")
        self.assertEqual(self.stored("AutoUpadate"), "1")

    def test_automatic_play_is_switched_off_and_its_modes_are_passed_by(self):
        self.begin()
        self.open()
        self.keys("space")
        self.on(2)  # update, video
        self.keys("space")
        self.keys("ctrl+s")
        self.assert_closed()
        self.assert_stored("VideoInterface", "1")
        self.assertEqual(self.stored("isAutoPlay"), "1")

    def test_a_typed_folder_is_confirmed_from_its_box_and_made(self):
        self.begin()
        folder = self.session.home + "/my lists"
        self.open_page("folderSet")
        self.on(2)  # the lyrics' folder sign, play list
        self.keys("ctrl+a")
        quiet("xdotool", "type", "--delay", "10", folder, env=self.session.env)
        self.keys("ctrl+s")
        self.assert_closed()
        self.assert_stored("PlayListSaveFolder", folder)
        self.assertTrue(wait_for(lambda: os.path.isdir(folder)), "the folder is not made")

    def test_each_folder_is_chosen_in_its_dialog_without_a_mouse(self):
        names = ("LrcSaveFolder", "PlayListSaveFolder", "PlayCacheSaveFolder")
        self.begin()
        self.open_page("folderSet")
        for name in names:
            os.makedirs(f"{self.session.home}/{name}")
            self.on(1)
            self.keys("Return")
            box = self.assert_box()
            self.type_into(box, f"{self.session.home}/{name}")
            self.assert_back(box)
            self.on(1)
        self.keys("ctrl+s")
        self.assert_closed()
        for name in names:
            self.assert_stored(name, f"{self.session.home}/{name}/")

    def test_fonts_and_colours_are_chosen_without_a_mouse(self):
        self.begin()
        self.open_page("lrcSet")
        self.keys("space")  # open the line by itself
        for size, colour in ((20, "#10ff20"), (30, "#0102ff")):
            self.on(2)  # preview, font
            self.keys("Return")
            box = self.assert_box()
            self.keys("alt+s", "ctrl+a")
            quiet("xdotool", "type", str(size), env=self.session.env)
            self.keys("Return")
            self.assert_back(box)
            self.on(1)
            self.keys("space")
            box = self.assert_box()
            self.keys("alt+h", "ctrl+a")
            quiet("xdotool", "type", colour, env=self.session.env)
            self.keys("Return")
            self.assert_back(box)
        self.keys("ctrl+s")
        self.assert_closed()
        self.assert_stored("Other_Lrc_ForeColor", 0xFF0201)
        stored = {name: self.stored(name) for name in
                  ("Desktop_Lrc_AutoOpen", "Desktop_Lrc_Size", "Desktop_Lrc_ForeColor",
                   "Other_Lrc_Size")}
        self.assertEqual(stored, {"Desktop_Lrc_AutoOpen": "1", "Desktop_Lrc_Size": 20,
                                  "Desktop_Lrc_ForeColor": 0x20FF10, "Other_Lrc_Size": 14})

    def test_the_long_texts_scroll_without_a_mouse(self):
        self.begin()
        for tab in ("help", "Shortcuts"):
            settings = self.open_page(tab)
            top = self.steady_page(settings)
            self.keys("Next", "Next")
            self.assertNotEqual(self.steady_page(settings), top, f"{tab} does not scroll")
            self.keys("ctrl+s")
            self.assert_closed()

    def test_the_about_window_is_opened_and_closed_without_a_mouse(self):
        self.watch_desktop()
        self.begin()
        settings = self.open()
        self.back(1)
        self.keys("Return")
        about = self.player.form(ABOUT)
        self.assertTrue(about, "the about window does not come up")
        quiet("xdotool", "windowfocus", "--sync", about, env=self.session.env)
        self.back(2)  # close, the second address
        self.keys("Return")
        self.assertTrue(wait_for(self.opened), "the address is not handed over")
        self.assertTrue(self.opened()[0].startswith("mailto:"))
        self.on(1)
        self.keys("space")
        self.assertTrue(wait_for(lambda: not self.visible(ABOUT)), "it stays")
        quiet("xdotool", "windowfocus", "--sync", settings, env=self.session.env)
        self.keys("ctrl+s")
        self.assert_closed()

    def test_restore_asks_without_a_mouse(self):
        self.begin()
        self.open()
        self.on(6)  # in order, random, repeat, update, video, restore
        self.keys("Return")
        box = self.assert_box()
        self.keys("n")
        self.assert_back(box)
        self.keys("ctrl+s")
        self.assert_closed()

    def test_ctrl_s_opens_it_and_confirms_it(self):
        self.begin()
        self.open()
        self.keys("ctrl+s")
        self.assert_closed()
        self.assert_stored("PlayMode", "0")


class Dialogs(SettingsTest):
    """The system's dialogs behind the buttons, and what they change on the screen."""

    # Places within the window, in pixels.
    DESKTOP_FONT = (FRAME[0] + (150 + 210 + 1425) / 15, FRAME[1] + (300 + 2100 + 195) / 15)
    DESKTOP_COLOUR = (FRAME[0] + (150 + 3210 + 1425) / 15, FRAME[1] + (300 + 2100 + 195) / 15)
    OTHER_FONT = (FRAME[0] + (150 + 210 + 1425) / 15, FRAME[1] + (3000 + 1320 + 180) / 15)
    OTHER_COLOUR = (FRAME[0] + (150 + 3210 + 1425) / 15, FRAME[1] + (3000 + 1320 + 180) / 15)
    AUTO_OPEN = (FRAME[0] + (150 + 210 + 100) / 15, FRAME[1] + (300 + 300 + 165) / 15)
    LIST_FOLDER = (FRAME[0] + (5820 + 240) / 15, FRAME[1] + (1845 + 240) / 15)

    def dialog(self, window, place):
        self.press(window, *place)
        box = self.message()
        self.assertTrue(box, "no dialog comes up")
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
        box = self.dialog(settings, self.DESKTOP_COLOUR)
        self.keys("alt+h", "ctrl+a")
        quiet("xdotool", "type", "#10ff20", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.assertNotEqual(self.steady_page(settings), before, "the preview keeps its colour")
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
        self.assertEqual(self.look(settings, *preview), before)

    def test_a_font_size_is_chosen_and_stored_on_apply(self):
        settings = self.lyrics()
        box = self.dialog(settings, self.DESKTOP_FONT)
        self.keys("alt+s", "ctrl+a")
        quiet("xdotool", "type", "20", env=self.session.env)
        self.keys("Return")
        self.assert_gone(box)
        self.click(settings, SETTINGS, "yy")
        self.assert_stored("Desktop_Lrc_Size", 20)
        self.assertEqual(self.stored("Desktop_Lrc_Name"), "微软雅黑")

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
        self.assertEqual(desktop_line(), bare)
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
        for question in ("whether", "restart"):
            box = self.message()
            self.assertTrue(box, f"the question {question} does not come up")
            quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
            self.keys("Return")
            self.assertTrue(wait_for(lambda: not self.alive(box)), "the question stays")
        self.assertTrue(self.player.ended(), "the old program goes on")
        self.assertEqual(self.player.child.returncode, 0)
        new = wait_for(self.new_program, 20)
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
        box = self.message()
        self.assertTrue(box)
        quiet("xdotool", "windowfocus", "--sync", box, env=self.session.env)
        self.keys("n")
        self.assertTrue(wait_for(lambda: not self.alive(box)))
        self.assertEqual(self.stored("PlayMode"), "0")
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()


class WithOddSettings(SettingsTest):
    """Whatever the registry holds, the window opens, applies and closes."""

    def write(self, values):
        database = sqlite3.connect(self.registry_file())
        with database:
            (key,) = database.execute("select id from keys where folded like '%PLAYSET'").fetchone()
            for name, (kind, data) in values.items():
                size = 4 if kind == 4 else len(data)
                database.execute("insert or replace into entries values (?, ?, ?, ?, ?, ?)",
                                 (key, name.upper(), name, kind, size, data))
        database.close()

    def run_with(self, values):
        self.begin()
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended())
        self.write(values)
        self.begin()
        settings = self.open()
        for tab in PAGES:
            self.click(settings, SETTINGS, tab)
        self.click(settings, SETTINGS, "yy")
        self.assertTrue(wait_for(lambda: self.stored("VideoInterface") == "0"))
        self.click(settings, SETTINGS, "qx")
        self.assert_closed()
        self.assertIsNone(self.player.child.poll())

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

    def test_a_size_out_of_range_and_an_endless_name(self):
        self.run_with(self.font("x" * 100000, 5000))

    def test_texts_for_numbers_and_numbers_for_texts(self):
        values = {name: (4, 3) for name in
                  ("AutoUpadate", "isAutoPlay", "PlayMode", "Language", "VideoInterface",
                   "LrcSaveFolder", "PlayListSaveFolder", "PlayCacheSaveFolder")}
        self.run_with(values | {"Desktop_Lrc_Size": (1, "36"), "Desktop_Lrc_AutoOpen": (4, 1)})

    def test_numbers_out_of_range(self):
        self.run_with({"AutoUpadate": (1, "99999999999"), "isAutoPlay": (1, "-3"),
                       "PlayMode": (1, "77"), "Language": (1, "9"), "VideoInterface": (1, "-1"),
                       "AutoShowWelcome": (1, "x"), "Desktop_Lrc_AutoOpen": (1, "7")})

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
        self.run_with({"LrcSaveFolder": (1, "/proc/nowhere/lyrics"),
                       "PlayListSaveFolder": (1, "a\r\nb\x00c//"),
                       "PlayCacheSaveFolder": (1, "/" + "long" * 30000)})


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[5:], verbosity=2)
