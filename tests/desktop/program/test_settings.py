#!/usr/bin/env python3
"""The settings window of the real program, used by mouse and by keyboard alone.

    test_settings.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import sys

from cases import run
from player import ABOUT, LIST, PICK_COLOUR, PICK_FOLDER, PICK_FONT, PROGRAM, SETTINGS, stairs
from session import quiet, wait_for
from settings_window import FRAME, INFO, LANGUAGE_ROWS, PAGES, SettingsTest


class ByMouse(SettingsTest):
    def test_each_tab_shows_a_page_of_its_own(self):
        self.begin()
        settings = self.open()
        pages = []
        for tab in PAGES:
            self.click(settings, SETTINGS, tab)
            pages.append(self.another_page(settings, pages))
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
        self.player.move(info, 0, 300)
        self.player.click(self.window, "playListButton")
        rows = self.player.form(LIST)
        settings = self.open()
        self.player.move(settings, 1280 - 600, 380)
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
        # A drag begins where the pointer is when the press is handled.
        self.assertTrue(self.player.took(settings), "the press is not handled")
        for dx, dy in ((60, 40), (80, 50)):
            quiet("xdotool", "mousemove", str(x + dx), str(y + dy), env=self.session.env)
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

    def focused_box(self, says):
        box = self.assert_box(self.player, says)
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
            pages.append(self.another_page(settings, pages))
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
        self.assertTrue(wait_for(lambda: self.steady(settings, "qd") != plain),
                        "nothing marks the button")
        self.on(1)
        self.assertTrue(wait_for(lambda: self.steady(settings, "qd") == plain), "the mark stays")

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

    def test_a_folder_typed_with_a_tilde_is_made_in_the_home(self):
        elsewhere = self.session.home + "/elsewhere"
        os.makedirs(elsewhere)
        starter = self.session.home + "/starter"
        with open(starter, "w") as script:
            script.write(f'#!/bin/sh\ncd "{elsewhere}" && exec "{os.path.abspath(PROGRAM)}"\n')
        os.chmod(starter, 0o755)
        self.player, self.window = self.start(starter)
        self.open_page("folderSet")
        self.on(2)
        self.keys("ctrl+a")
        quiet("xdotool", "type", "--delay", "10", "~/my lists", env=self.session.env)
        self.keys("ctrl+s")
        self.assert_closed()
        self.assert_stored("PlayListSaveFolder", "~/my lists")
        self.assertTrue(wait_for(lambda: os.path.isdir(self.session.home + "/my lists")),
                        "the folder is not made in the home")
        self.assertEqual(os.listdir(elsewhere), [])

    def test_each_folder_is_chosen_in_its_dialog_without_a_mouse(self):
        names = ("LrcSaveFolder", "PlayListSaveFolder", "PlayCacheSaveFolder")
        self.begin()
        self.open_page("folderSet")
        for name in names:
            os.makedirs(f"{self.session.home}/{name}")
            self.on(1)
            self.keys("Return")
            box = self.focused_box(PICK_FOLDER)
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
            box = self.focused_box(PICK_FONT)
            self.keys("alt+s", "ctrl+a")
            quiet("xdotool", "type", str(size), env=self.session.env)
            self.keys("Return")
            self.assert_back(box)
            self.on(1)
            self.keys("space")
            box = self.focused_box(PICK_COLOUR)
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
            self.assertTrue(self.another_page(settings, [top]) != top, f"{tab} does not scroll")
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
        box = self.focused_box("您确定要删除以前的设置来恢复吗？")
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


if __name__ == "__main__":
    run(sys.argv[5:])
