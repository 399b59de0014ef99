#!/usr/bin/env python3
"""What a screen reader meets: every window in four languages, presses, values, rows, and changes.

    test_accessible.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import json
import os
import select
import subprocess
import sys

from cases import run
from player import (ABOUT, ASK, CHECK, FORM_SIZES, LIST, LYRIC_SEARCH, MAIN, MINI, SETTINGS, PlayerTest,
                    design, stairs)
from session import wait_for

INFO = design("src/playlist/playInfo_Form.form")
EDITOR = design("src/lyrics/doLrcForm.form")
SONG_SEARCH = design("src/network/search_Song_Internet_Form.form")
FORM_SIZES.update(tuple(int(side) for side in form["form"][2:4]) for form in (INFO, EDITOR))
READER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "accessible_reader.py")
# What a person can do something with, however it is told.
PRESSED = {"push button", "button", "link", "check box", "radio button", "page tab", "list item",
           "menu item", "toggle button"}
VALUED = {"slider", "scroll bar", "progress bar"}
# A language's number, and what the button for the list is called in it.
LANGUAGES = {"Chinese": "0", "English": "1", "French": "2", "Japanese": "3"}


class Reader:
    """The program's windows as told on its bus."""

    def __init__(self, player):
        self.player = player
        self.child = subprocess.Popen(["/usr/bin/python3", READER, str(player.child.pid)],
                                      env=player.session.env, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, text=True, start_new_session=True)
        player.session.children.append(self.child)
        self.child.stdout.readline()

    def ask(self, **wish):
        self.child.stdin.write(json.dumps(wish) + "\n")
        self.child.stdin.flush()
        assert select.select([self.child.stdout], [], [], 300)[0], f"no answer to {wish}"
        line = self.child.stdout.readline()
        assert line, "the reader has ended"
        told = json.loads(line)
        if wish["do"] in ("act", "set"):
            assert told is True, f"{wish}: {told}"
        return told

    def close(self):
        self.child.stdin.close()
        self.child.stdout.close()

    def windows(self):
        told = self.ask(do="tree")
        return told if isinstance(told, list) else []

    def nodes(self, window=None):
        """Everything in the windows, or in the one at this place, each with its number."""
        found = []

        def add(node):
            found.append((node["number"], node))
            for child in node["children"]:
                add(child)
        for each in self.windows():
            if window is None or each["place"] == window:
                add(each)
        return found

    def place(self, number):
        return [*self.player.place(number), *self.player.size(number)]

    def at(self, number, form, control):
        """The number and node of a form's own control: whatever the language, it stands there."""
        x, y, width, height = form[control]

        def look():
            """The window may still be on its way to its place."""
            window = self.place(number)
            wanted = [round(window[0] + x), round(window[1] + y), round(width), round(height)]
            return next(((which, node) for which, node in self.nodes(window)
                         if node["place"] and all(abs(a - b) <= 1 for a, b in
                                                  zip(node["place"], wanted)) and
                         "showing" in node["states"]), None)
        found = wait_for(look, 120)
        assert found, f"{control} is not told of"
        return found

    def press(self, number, form, control, action="Press"):
        which, _ = self.at(number, form, control)
        self.ask(do="act", which=which, action=action)


class AccessibleTest(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.tracks = [f"{self.music}/{name}.wav" for name in ("one", "two", "three")]
        for track in self.tracks:
            stairs(track, 60, step=0)
        self.write_list(self.tracks)

    def begin(self):
        player, main = self.start()
        reader = Reader(player)
        self.addCleanup(reader.close)
        return player, main, reader

    def play_first(self, reader, main):
        """The next track, up to its words: what asks for one finds none ahead of the end of its
        fade-in, which takes what it takes, and behind it they are looked for."""
        reader.press(main, MAIN, "nextButton")

        def words():
            window = reader.place(main)
            return any(node["role"] == "label" and node["name"] and "showing" in node["states"] and
                       60 < node["place"][1] - window[1] < 90 for _, node in reader.nodes(window))
        self.assertTrue(wait_for(words, 120), "nothing plays")

    def open(self, reader, number, form, control, wanted):
        reader.press(number, form, control)
        found = reader.player.form(wanted)
        self.assertTrue(found, f"{control} opens nothing")
        return found


class Walk(AccessibleTest):
    def assert_readable(self, reader, number, what):
        """Nothing that can be acted on is without name, role and action, and only what shows says
        that it does."""
        nodes = wait_for(lambda: reader.nodes(reader.place(number)), 120)
        self.assertTrue(nodes, f"{what} is not told of")
        acting = 0
        for _, node in nodes:
            if "showing" not in node["states"] or not node["place"] or node["place"][2] == 0:
                continue
            self.assertNotIn(node["role"], ("invalid", "unknown"), f"{what}: {node['name']}")
            acts = [action for action in node["actions"] if action != "SetFocus"]
            takes = acts or node["role"] in PRESSED | VALUED or "editable" in node["states"] or \
                "focusable" in node["states"] and node["role"] not in ("frame", "window")
            if not takes:
                continue
            acting += 1
            self.assertTrue(node["name"], f"{what}: {node['role']} at {node['place']} has no name")
            if node["role"] in PRESSED:
                self.assertTrue(acts, f"{what}: {node['name']} has no action")
            if node["role"] in VALUED:
                self.assertIsNotNone(node["value"], f"{what}: {node['name']} has no value")
            self.assertTrue(acts or node["role"] in VALUED or node["text"] is not None or
                            node["role"] in ("list", "scroll pane"),
                            f"{what}: {node['role']} {node['name']} can do nothing")
        self.assertGreater(acting, 0, f"nothing can be done in {what}")
        return nodes

    def walk(self, language):
        player, main = self.start()
        player.tool("windowfocus", "--sync", main)
        self.session.stop(player.child)
        self.store({"Language": (1, LANGUAGES[language])})
        player, main, reader = self.begin()
        self.assert_readable(reader, main, f"{language}: the main window")
        names = {name: reader.at(main, MAIN, name)[1] for name in ("load_Played_BG", "nextButton")}
        self.assertEqual(names["load_Played_BG"]["role"], "slider")
        rows = self.open(reader, main, MAIN, "playListButton", LIST)
        told = self.assert_readable(reader, rows, f"{language}: the list")
        self.assertEqual([node["name"] for _, node in told if node["role"] == "list item" and
                          "showing" in node["states"]], ["one", "two", "three"])
        ask = self.open(reader, rows, LIST, "Search", ASK)
        self.assert_readable(reader, ask, f"{language}: the question")
        reader.press(ask, ASK, "Cancel")
        self.assertTrue(player.gone(ask))
        self.play_first(reader, main)  # a track, for what needs one
        for control, form in (("playInfo", INFO), ("do_Lrc", EDITOR),
                              ("search_Lrc_Internet", LYRIC_SEARCH),
                              ("check_SoundDriver", CHECK), ("CopyRight_ICO", ABOUT)):
            number = self.open(reader, main, MAIN, control, form)
            self.assert_readable(reader, number, f"{language}: what {control} opens")
            reader.press(number, form, "close")
            self.assertTrue(player.gone(number), f"{control}'s window stays")
        number = self.open(reader, main, MAIN, "search_Song_Internet", SONG_SEARCH)
        self.assert_readable(reader, number, f"{language}: the song search")
        reader.press(number, SONG_SEARCH, "close")
        self.assertTrue(player.gone(number))
        settings = self.open(reader, main, MAIN, "playSet_Button", SETTINGS)
        for tab in ("playSet", "lrcSet", "folderSet", "languageSet", "Shortcuts", "help"):
            reader.press(settings, SETTINGS, tab)
            self.assertTrue(wait_for(lambda tab=tab: "selected" in reader.at(
                settings, SETTINGS, tab)[1]["states"], 120), f"{tab} is not told as open")
            told = self.assert_readable(reader, settings, f"{language}: {tab}")
            self.assertEqual(sum("selected" in node["states"] for _, node in told
                                 if node["role"] == "page tab"), 1)
        reader.press(settings, SETTINGS, "qx")
        self.assertTrue(player.gone(settings))
        reader.press(main, MAIN, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip, "the strip does not come")
        self.assert_readable(reader, strip, f"{language}: the strip")
        reader.press(strip, MINI, "pauseButton")
        reader.at(strip, MINI, "playButton")
        reader.press(strip, MINI, "mini_Button")
        self.assertTrue(player.form(MAIN))
        return [node["name"] for _, node in self.assert_readable(reader, player.form(MAIN), language)]

    def test_every_window_can_be_read_and_steered_in_chinese(self):
        self.walk("Chinese")

    def test_every_window_can_be_read_and_steered_in_english(self):
        self.walk("English")

    def test_every_window_can_be_read_and_steered_in_french(self):
        self.walk("French")

    def test_every_window_can_be_read_and_steered_in_japanese(self):
        self.walk("Japanese")


class Doing(AccessibleTest):
    def value(self, reader, number, form, control):
        return reader.at(number, form, control)[1]["value"]

    def test_bars_are_sliders_that_can_be_set(self):
        _, main, reader = self.begin()
        reader.press(main, MAIN, "nextButton")
        reader.at(main, MAIN, "pauseButton")
        for control in ("Volume_Set_BG", "load_Played_BG"):
            which, node = reader.at(main, MAIN, control)
            self.assertEqual(node["role"], "slider")
            self.assertNotIn("Press", node["actions"])
            reader.ask(do="set", which=which, value=50)
            self.assertTrue(wait_for(lambda control=control: abs(
                self.value(reader, main, MAIN, control) - 50) < 5, 20),
                f"{control} is at {self.value(reader, main, MAIN, control)}")

    def test_a_row_is_chosen_and_played_and_tells_of_it(self):
        player, main, reader = self.begin()
        rows = self.open(reader, main, MAIN, "playListButton", LIST)

        def row(name):
            found = wait_for(lambda: next((
                (which, node) for which, node in reader.nodes(reader.place(rows))
                if node["role"] == "list item" and node["name"] == name and "showing" in node["states"]), None), 60)
            self.assertTrue(found, f"no row {name}")
            return found
        which, node = row("two")
        self.assertEqual(node["actions"], ["Press", "Toggle", "SetFocus"])
        reader.ask(do="events")
        reader.ask(do="act", which=which, action="SetFocus")
        self.assertTrue(wait_for(lambda: "selected" in row("two")[1]["states"], 120))
        heard = []

        def comes(kind, name, on=1):
            heard.extend(reader.ask(do="events"))
            return any(event["type"] == kind and event["name"] == name and event["on"] == on
                       for event in heard)
        self.assertTrue(wait_for(lambda: comes("object:state-changed:selected", "two"), 120), heard)
        self.assertTrue(wait_for(lambda: comes("object:state-changed:focused", "two"), 120), heard)
        reader.ask(do="act", which=row("three")[0], action="Toggle")
        self.assertTrue(wait_for(lambda: "selected" in row("three")[1]["states"] and
                                 "selected" in row("two")[1]["states"], 120))
        reader.ask(do="act", which=row("three")[0], action="Press")
        self.assert_title(player, main, "three")
        # Arrow keys are heard, too.
        heard.clear()
        player.tool("windowfocus", "--sync", rows)
        player.tool("key", "Home")
        self.assertTrue(wait_for(lambda: comes("object:state-changed:focused", "one"), 120), heard)

    def test_a_list_that_does_not_show_has_no_rows_that_do(self):
        _, main, reader = self.begin()
        rows = self.open(reader, main, MAIN, "playListButton", LIST)

        def shown():
            return [node["name"] for _, node in reader.nodes(reader.place(rows))
                    if node["role"] == "list item" and "showing" in node["states"]]
        self.assertTrue(wait_for(lambda: shown() == ["one", "two", "three"], 120), shown())
        self.assertEqual([node for _, node in reader.nodes(reader.place(rows))
                          if node["role"] == "list item" and "/" in node["name"] and
                          "showing" in node["states"]], [])

    def test_what_changes_is_told_and_a_clock_that_goes_on_is_not(self):
        with open(self.tracks[0].replace(".wav", ".lrc"), "w", encoding="utf-8") as file:
            file.write("[00:04.00]first line\n[00:06.00]second line\n")
        _, main, reader = self.begin()
        reader.nodes()  # nothing is told of what nobody has looked at
        heard = []

        def comes(kind, name):
            heard.extend(reader.ask(do="events"))
            return any(event["type"] == kind and event["name"] == name for event in heard)
        reader.press(main, MAIN, "nextButton")
        for line in ("first line", "second line"):
            self.assertTrue(wait_for(lambda line=line: comes(
                "object:property-change:accessible-name", line), 120), heard)
        self.assertTrue(any(event["type"] == "object:property-change:accessible-value" and
                            event["role"] == "slider" for event in heard), heard)
        self.assertTrue(any(event["type"] == "object:state-changed:showing" and event["on"] == 1 and
                            "F3" in event["name"] for event in heard), heard)
        clocks = [event for event in heard if event["type"].endswith("accessible-name") and
                  "00:00:0" in event["name"]]
        self.assertLessEqual(len(clocks), 2, clocks)

    def test_the_line_on_the_desktop_can_be_read(self):
        with open(self.tracks[0].replace(".wav", ".lrc"), "w", encoding="utf-8") as file:
            file.write("[00:04.00]over all windows\n")
        player, main, reader = self.begin()
        self.play_first(reader, main)
        reader.press(main, MAIN, "desktop_Lrc")

        def line():
            return any(node["name"] == "over all windows" and "showing" in node["states"]
                       for window in reader.windows() if window["place"][2] >= player.screen_width
                       for node in window["children"])
        self.assertTrue(wait_for(line, 120), "the line is not told of")

    def test_names_follow_the_language(self):
        _, main, reader = self.begin()
        settings = self.open(reader, main, MAIN, "playSet_Button", SETTINGS)

        def names(roles):
            return [node["name"] for _, node in reader.nodes(reader.place(settings))
                    if node["role"] in roles and "showing" in node["states"]]
        reader.press(settings, SETTINGS, "folderSet")
        self.assertTrue(wait_for(lambda: len(names({"text"})) == 3, 120), names({"text"}))
        before = names({"text"})
        reader.press(settings, SETTINGS, "languageSet")

        def english():
            return next((which for which, node in reader.nodes(reader.place(settings))
                         if node["role"] == "radio button" and node["name"] == "English" and
                         "showing" in node["states"]), None)
        which = wait_for(english, 120)
        self.assertTrue(which)
        node = next(node for at, node in reader.nodes(reader.place(settings)) if at == which)
        reader.ask(do="act", which=which, action=next(
            action for action in node["actions"] if action != "SetFocus"))
        self.assertTrue(wait_for(lambda: any("checked" in node["states"] for at, node in
                                             reader.nodes(reader.place(settings)) if at == which), 120))
        reader.press(settings, SETTINGS, "yy")
        reader.press(settings, SETTINGS, "folderSet")
        self.assertTrue(wait_for(lambda: len(names({"text"})) == 3 and
                                 all("directory" in name.lower() or name.isascii()
                                     for name in names({"text"})), 30), names({"text"}))
        self.assertNotEqual(names({"text"}), before)
        reader.press(settings, SETTINGS, "playSet")
        self.assertTrue(wait_for(lambda: names({"check box"}) and
                                 all(name.isascii() for name in names({"check box"})), 120),
                        names({"check box"}))


if __name__ == "__main__":
    run(sys.argv[5:])
