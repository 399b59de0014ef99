#!/usr/bin/env python3
"""Every entry of both popup menus, by mouse and by keyboard, and every button of the two windows.

    test_menus.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import subprocess
import sys

import misbehaving
from cases import run
from listing import DEEPER, SURE, ListTest, silence
from player import (ABOUT, ASK, CHECK, FORM_SIZES, HELP_PAGE, LIST, LYRIC_SEARCH, MAIN, MINI,
                    PICK_FILE, PICK_FOLDER, SETTINGS, SOURCE, TITLE, design)
from session import Session, wait_for

EDITOR = design("src/lyrics/doLrcForm.form")
INFO = design("src/playlist/playInfo_Form.form")
FORM_SIZES.update(tuple(int(side) for side in form["form"][2:4]) for form in (EDITOR, INFO))
ROW, SEPARATOR, MARGIN = 26, 9, 5  # of a menu, in pixels


def menu_tree():
    """The entries of each menu by its name, in order: None for a separator, else name and entries."""
    root, stack = {}, []
    with open(f"{SOURCE}/src/playback/MenuForm.form") as file:
        for line in file:
            words = line.split()
            if not words:
                continue
            depth = (len(line) - len(line.lstrip())) // 4
            if words[0] == "Menu":
                entry = [words[1], []]
                del stack[depth:]
                if stack:
                    stack[-1][1].append(entry)
                else:
                    root[words[1]] = entry[1]
                stack.append(entry)
            elif words[0] == "separator":
                stack[-1][0] = None
    return root


TREE = menu_tree()


class LargeSession(Session):
    """With room for every window beside the main one."""
    screen = "1800x1200x24"


class MenuTest(ListTest):
    count = 3
    session_kind = LargeSession

    def start_aside(self):
        """At the top, where no other window comes to lie over it; without a sound to fade in."""
        player, main = self.start()
        player.move(main, 700, 0)
        player.click(main, "Volume_ICO")
        return player, main

    def open_menu(self, player, window, row):
        """By the right button on the window's title or a row of the list, which it chooses."""
        if window == self.rows:
            self.click_row(player, window, row, button=3)
        else:
            player.click(window, "title", button=3)
        menus = player.menus()
        self.assertTrue(menus, "no menu comes up")
        return menus[0]

    def choose(self, player, window, *path, row=0):
        menu = self.open_menu(player, window, row)
        entries = TREE["playlist_Menu" if window == self.rows else "menu"]
        for level, name in enumerate(path):
            names = [entry[0] for entry in entries]
            at = names.index(name)
            if self.by_mouse:
                y = MARGIN + sum(ROW if each else SEPARATOR for each in names[:at]) + ROW // 2
                player.click_at(menu, 30, y)
            else:
                before = sum(1 for each in names[:at] if each)
                # A menu that a key opened stands on its first entry.
                keys = ["Down"] * (before + (1 if level == 0 else 0))
                last = level == len(path) - 1
                for key in keys + ["Return" if last else "Right"]:
                    self.session.key(key)
            entries = entries[at][1]
            if entries:
                menus = player.menus(level + 2)
                self.assertTrue(menus, f"{name} opens no menu of its own")
                menu = menus[-1]
        self.assertIsNotNone(player.menus(0), f"{path} leaves the menu open")

    def assert_window(self, player, form, says=None):
        """The window of a form; of two that are as large the one that says this."""
        window = player.form(form)
        self.assertTrue(window, "the window does not come up")
        if says:
            self.assertTrue(player.says(window, says), f"it is not the one that says {says}")
        return window

    def close(self, player, window, form, control="close"):
        player.click(window, control, form=form)
        self.assertTrue(player.gone(window), "the window stays")

    def write_lyric(self):
        """The same words in each second of the first track."""
        with open(self.tracks[0].replace(".wav", ".lrc"), "w", newline="") as file:
            file.write("".join(f"[00:{second:02}.00]Along the quiet shore\r\n"
                               for second in range(60)))

    def assert_lyric(self, player, main):
        self.assertTrue(player.says(main, "Along the quiet shore", 30), "no lyric")

    def line(self):
        """The lowest part of the screen, where nothing but the desktop line is."""
        return subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", "1800x72+0+1128", "-depth", "8",
             "gray:-"], env=self.session.env, stdout=subprocess.PIPE, check=False).stdout

    def assert_switches_the_line(self, switch):
        bare = self.line()
        self.assertTrue(bare)
        switch()
        self.assertTrue(wait_for(lambda: self.line() != bare), "no line on the desktop")
        switch()
        self.assertTrue(wait_for(lambda: self.line() == bare), "the line stays")


class MainMenu(MenuTest):
    by_mouse = True

    def test_each_entry_does_its_work(self):
        self.rows = None
        self.write_lyric()
        # A maker that has nothing, so that a check for updates is known by its question alone.
        maker = misbehaving.Server()
        self.addCleanup(maker.close)
        self.introduce(maker.at)
        player, main = self.start_aside()

        def choose(*path):
            self.choose(player, main, *path)
        choose("playControl", "nextSong")
        self.assert_title(player, main, "track 0")
        choose("playControl", "nextSong")
        self.assert_title(player, main, "track 1")
        choose("playControl", "upSong")
        self.assert_title(player, main, "track 0")
        self.assert_lyric(player, main)
        playing = player.look(main, "playButton")
        choose("playControl", "pause")
        self.assertTrue(wait_for(lambda: player.look(main, "playButton") != playing), "no pause")
        choose("playControl", "play")
        self.assertTrue(wait_for(lambda: player.look(main, "playButton") == playing), "no play")

        self.assert_switches_the_line(lambda: choose("desktop_Lrc"))
        for entry, form, says in (("song_Info", INFO, None), ("doLrc", EDITOR, None),
                                  ("search_Lrc_To_Internet", LYRIC_SEARCH, "歌词搜索")):
            choose(entry)
            window = self.assert_window(player, form, says)
            choose(entry)
            self.assertTrue(player.gone(window), f"{entry} does not take its window away")
        choose("song_GoTo_List")
        rows = self.assert_window(player, LIST)
        self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 0)), "the row is not shown")
        choose("playlist")
        self.assertTrue(player.gone(rows))
        choose("playlist")
        rows = self.assert_window(player, LIST)
        self.assert_touching(player, main, rows)
        choose("playlist")  # each docking would take the main window further to the left
        self.assertTrue(player.gone(rows))
        choose("check_SoundDriver")
        self.close(player, self.assert_window(player, CHECK), CHECK)

        asked = len(maker.asked)
        choose("detection_Update")
        self.assertTrue(wait_for(lambda: any("zkPlayerUpdate" in path
                                             for path in maker.asked[asked:])), "no check")
        for entry, form, says in (("about", ABOUT, None), ("help", SETTINGS, HELP_PAGE),
                                  ("playSet", SETTINGS, "自动播放")):
            choose(entry)
            self.close(player, self.assert_window(player, form, says), form)
        choose("mode")
        strip = self.assert_window(player, MINI)
        self.assertTrue(player.gone(main))
        self.lock_strip(player, strip)
        player.click(strip, "mini_Button", form=MINI)
        self.assertTrue(player.window(), "the main window does not come back")

        choose("playControl", "stop")
        self.assertTrue(wait_for(lambda: player.title(main) == TITLE), "no stop")
        choose("close")
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)


class MainMenuByKeyboard(MainMenu):
    by_mouse = False


class SettingsFromTheMenu(MenuTest):
    by_mouse = True
    rows = None

    def test_ok_in_the_help_changes_no_setting(self):
        player, main = self.start_aside()
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        kept = {"Language": "1", "isAutoPlay": "1", "AutoUpadate": "1", "VideoInterface": "1",
                "PlayMode": "2"}
        self.store({name: (1, text) for name, text in kept.items()})
        player, main = self.start_aside()
        self.choose(player, main, "help")
        self.close(player, self.assert_window(player, SETTINGS), SETTINGS, "qd")
        # What OK does is through when its key has opened the window anew.
        self.session.key("ctrl+s", main)
        self.assert_window(player, SETTINGS)
        self.assertEqual({name: self.stored(name) for name in kept}, kept)
        self.assertIsNotNone(self.stored("LrcSaveFolder"), "OK stored nothing at all")

    def test_the_main_window_stays_away_when_the_settings_of_the_strip_are_left(self):
        player, main = self.start_aside()
        player.click(main, "mini_Button")
        strip = self.assert_window(player, MINI)
        self.assertTrue(player.gone(main))
        self.lock_strip(player, strip)
        for way in ("qd", "qx"):
            self.choose(player, strip, "playSet")
            self.close(player, self.assert_window(player, SETTINGS), SETTINGS, way)
            self.assertEqual([window for window in player.windows() if player.is_form(window, MAIN)],
                             [], "the main window stands beside its strip")
            self.assertIn(strip, player.windows())


class ListMenu(MenuTest):
    by_mouse = True

    def test_each_entry_does_its_work(self):
        player, main, self.rows = self.start_with_list()
        rows = self.rows

        def choose(*path, row=0):
            self.choose(player, rows, *path, row=row)
        choose("playlist_Play", row=1)
        self.assert_title(player, main, "2/3")
        added = self.music + "/added.wav"
        silence(added)
        choose("playlist_Add", "playlist_AddFile")
        self.type_into(self.assert_box(player, PICK_FILE), added)
        self.assert_story(player, rows, self.tracks + [added])
        inner = self.music + "/inner"
        os.mkdir(inner)
        silence(inner + "/deep.wav")
        choose("playlist_Add", "playlist_AddFolder")
        dialog = self.assert_box(player, PICK_FOLDER)
        self.type_into(dialog, inner)
        self.assertTrue(player.gone(dialog))
        self.answer(player, "n", DEEPER)
        self.assert_story(player, rows, self.tracks + [added, inner + "/deep.wav"])

        self.click_row(player, rows, 0)
        choose("playlist_OpenFolder")
        self.assertTrue(wait_for(self.opened), "the folder is not opened")
        self.assertEqual(self.opened()[-1].rstrip("/"), self.music)
        target = self.session.home + "/stick"
        os.mkdir(target)
        choose("playlist_Send")
        self.type_into(self.assert_box(player, PICK_FOLDER), target)
        self.assertTrue(wait_for(lambda: os.listdir(target) == ["track 0.wav"]), "no copy")
        choose("playlist_Search")
        ask = self.assert_window(player, ASK)
        self.write_into(player, ask, "added")
        player.click(ask, "OK", form=ASK)
        self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 3)), "no hit")
        choose("playlist_Alter", row=3)
        ask = self.assert_window(player, ASK)
        player.click(ask, "Cancel", form=ASK)
        self.assertTrue(player.gone(ask))

        self.click_row(player, rows, 0)
        choose("playlist_Del", "playlist_DelSelect")
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[1:] + [added, inner + "/deep.wav"])
        self.click_row(player, rows, 1)
        choose("hardDrive_Del", "hardDrive_DelSelect", row=2)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, self.tracks[1:] + [inner + "/deep.wav"])
        self.assertFalse(os.path.exists(added))
        choose("playlist_Del", "playlist_DelAll")
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.write_list(self.tracks[:2])
        choose("playlist_afreshLoad")
        self.assert_story(player, rows, self.tracks[:2])
        choose("hardDrive_Del", "hardDrive_DelAll")
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertEqual([os.path.exists(track) for track in self.tracks], [False, False, True])
        choose("playlist_Hide")
        self.assertTrue(player.gone(rows))


class ListMenuByKeyboard(ListMenu):
    by_mouse = False


class Buttons(MenuTest):
    def test_each_of_the_main_windows_windows_comes_and_goes_by_its_button(self):
        self.write_lyric()
        player, main = self.start_aside()
        player.click(main, "playInfo")
        self.answer(player, "Return", "没有播放曲目，无法获得正在播放曲目的信息！")
        player.click(main, "desktop_Lrc")
        self.answer(player, "Return", "没有播放曲目，桌面歌词自动隐藏！")
        player.click(main, "nextButton")
        self.assert_title(player, main, "track 0")
        self.assert_lyric(player, main)
        self.assert_switches_the_line(lambda: player.click(main, "desktop_Lrc"))
        for button, form, says in (("playInfo", INFO, None), ("do_Lrc", EDITOR, None),
                                   ("search_Lrc_Internet", LYRIC_SEARCH, "歌词搜索"),
                                   ("search_Song_Internet", LYRIC_SEARCH, "曲目网络搜索"),
                                   ("playListButton", LIST, None)):
            with self.subTest(button=button):
                player.click(main, button)
                window = self.assert_window(player, form, says)
                player.click(main, button)
                self.assertTrue(player.gone(window), "a second click does not take it away")
        for button, form in (("check_SoundDriver", CHECK), ("playSet_Button", SETTINGS),
                             ("CopyRight_ICO", ABOUT)):
            with self.subTest(button=button):
                player.click(main, button)
                self.close(player, self.assert_window(player, form), form)
        player.click(main, "song_GoTo_List")
        rows = self.assert_window(player, LIST)
        self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 0)), "the row is not shown")
        player.click(main, "link")
        self.assertTrue(wait_for(self.opened), "the address is not handed over")
        player.click(main, "mini_Button")
        strip = self.assert_window(player, MINI)
        self.assertTrue(player.gone(main))
        self.lock_strip(player, strip)
        player.click(strip, "mini_Button", form=MINI)
        self.assertTrue(player.window())
        self.assertTrue(player.form(LIST), "the list does not come back")
        player.click(main, "closeButton")
        self.assertTrue(player.ended())
        self.assertEqual(player.child.returncode, 0)

    def test_the_open_button_adds_a_file_and_plays_it(self):
        player, main = self.start_aside()
        added = self.music + "/added.wav"
        silence(added)
        player.click(main, "openFile_Button")
        self.type_into(self.assert_box(player, PICK_FILE), added)
        self.assert_title(player, main, "4/4")
        self.assert_list(self.tracks + [added])

    def test_the_lists_buttons_work(self):
        player, _, rows = self.start_with_list()
        added = self.music + "/added.wav"
        silence(added)
        player.click(rows, "addFile", form=LIST)
        self.type_into(self.assert_box(player, PICK_FILE), added)
        self.assert_story(player, rows, self.tracks + [added])
        self.click_row(player, rows, 1)
        player.click(rows, "delIndx", form=LIST)
        self.answer(player, "y", SURE)
        left = [self.tracks[0], self.tracks[2], added]
        self.assert_story(player, rows, left)
        player.click(rows, "delAll", form=LIST)
        self.answer(player, "n", SURE)
        self.assert_story(player, rows, left)
        player.click(rows, "delAll", form=LIST)
        self.answer(player, "y", SURE)
        self.assert_story(player, rows, [])
        self.assertTrue(all(os.path.exists(track) for track in self.tracks))
        player.click(rows, "close", form=LIST)
        self.assertTrue(player.gone(rows))

    def test_minimised_it_hides_the_list_and_stands_in_the_middle_afterwards(self):
        player, main, rows = self.start_with_list()
        player.click(main, "minimizeButton")
        self.assertTrue(player.gone(main))
        self.assertTrue(player.gone(rows), "the list stays")
        player.tool("windowactivate", main)
        self.assertTrue(player.window(), "it does not come back")
        centre = (player.screen_width - int(MAIN["form"][2])) // 2
        self.assertTrue(wait_for(lambda: player.place(main)[0] == centre), player.place(main))

    def test_f9_and_f10_in_the_main_window_act_on_the_list(self):
        player, main, rows = self.start_with_list()
        self.click_row(player, rows, 1)
        self.session.key("F9", main)
        self.assertTrue(wait_for(self.opened), "the folder is not opened")
        target = self.session.home + "/stick"
        os.mkdir(target)
        self.session.key("F10", main)
        self.type_into(self.assert_box(player, PICK_FOLDER), target)
        self.assertTrue(wait_for(lambda: os.listdir(target) == ["track 1.wav"]), "no copy")


if __name__ == "__main__":
    run(sys.argv[5:])
