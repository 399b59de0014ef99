#!/usr/bin/env python3
"""What a screen reader meets further: the tag, welcome and video windows, menus and boxes in four
languages, the mini strip at work, and rows that come and go.

    test_accessible_more.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import sys

import test_accessible as base
from cases import run
from films import make_film
from household import HouseholdTest
from listing import ListTest
from player import FORM_SIZES, LIST, MAIN, MINI, VIDEO, WELCOME, design
from session import quiet, rest, wait_for

TAG = design("src/playlist/another_PlayInfo_Form.form")
FORM_SIZES.add(tuple(int(side) for side in TAG["form"][2:4]))
# It stands in a frame of its form.
base.INFO["anotherInfo_Button"] = [(150 + 6060) / 15, (480 + 1200) / 15, 26, 26]
PAGE = """[welcome]
title=Our music
provider=The house
providerLink=http://127.0.0.1:9/house
banner0=Short words|http://127.0.0.1:9/short
tab0=New
tab1=Words
tab2=Films
tab0_line0=The first line|http://127.0.0.1:9/first
"""


class Further(base.Walk, HouseholdTest):
    def setUp(self):
        super().setUp()
        self.watch_desktop()
        with open(self.served + "/catalogue.ini", "w", encoding="utf-8") as file:
            file.write(PAGE)
        self.serve()
        self.tagged = self.music + "/tagged.mp3"
        quiet("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "sine=300", "-t", "60", "-write_id3v1", "1",
              "-metadata", "title=Song", "-metadata", "artist=Singer", self.tagged)
        self.film = self.music + "/film.mp4"
        make_film(self.film)

    def begin_in(self, language, tracks):
        self.write_list(tracks)
        player, main = self.start()
        player.tool("windowfocus", "--sync", main)
        self.session.stop(player.child)
        self.store({"Language": (1, base.LANGUAGES[language]), "VideoInterface": (1, "1"),
                    "AutoShowWelcome": (1, "0")})
        return self.begin()

    def assert_question(self, reader, number, what):
        nodes = wait_for(lambda: reader.nodes(reader.place(number)), 120)
        self.assertTrue(nodes, f"{what} is not told of")
        self.assertEqual(nodes[0][1]["role"], "dialog")
        self.assertTrue(any(node["role"] == "label" and node["name"] for _, node in nodes), nodes)
        self.assert_readable(reader, number, what)
        return nodes

    def menu(self, player, reader, main, what):
        """The open menu: every entry has a name and something to do."""
        player.click(main, "title", button=3)
        self.assertTrue(player.menus(), "no menu comes up")
        self.session.key("Down")

        def opened():
            told = reader.ask(do="around")
            return told if told and told["role"] == "popup menu" else None
        told = wait_for(opened, 120)
        self.assertTrue(told, f"{what} is not told of")
        entries = [node for node in told["children"] if node["role"] != "separator"]
        self.assertGreater(len(entries), 5)
        for node in entries:
            self.assertEqual(node["role"], "menu item")
            self.assertTrue(node["name"], f"{what}: an entry has no name")
            self.assertTrue(node["actions"], f"{what}: {node['name']} has no action")
            self.assertIn("showing", node["states"])
        return told["children"]

    def walk(self, language):
        player, main, reader = self.begin_in(language, [self.tagged, self.film])
        self.assert_readable(reader, main, f"{language}: the main window")
        welcome = self.open(reader, main, MAIN, "welcome", WELCOME)
        self.assert_readable(reader, welcome, f"{language}: the welcome window")
        reader.press(welcome, WELCOME, "close")
        self.assertTrue(player.gone(welcome))
        entries = self.menu(player, reader, main, f"{language}: the menu")
        about = next(node["number"] for node in entries if "F12" in node["name"])
        reader.ask(do="act", which=about, action="Press")
        number = player.form(base.ABOUT)
        self.assertTrue(number, "the menu's entry opens nothing")
        reader.press(number, base.ABOUT, "close")
        self.assertTrue(player.gone(number))
        rows = self.open(reader, main, MAIN, "playListButton", LIST)
        reader.press(rows, LIST, "delAll")
        box = wait_for(player.boxes, 120)[0]
        nodes = self.assert_question(reader, box, f"{language}: a box")
        which, no = [each for each in nodes if each[1]["role"] == "push button"][-1]
        reader.ask(do="act", which=which, action="Press")
        self.assertTrue(player.gone(box), f"{no['name']} leaves the box")
        self.assertEqual(self.list_lines(), [self.tagged, self.film])
        self.play_first(reader, main)
        info = self.open(reader, main, MAIN, "playInfo", base.INFO)
        tag = self.open(reader, info, base.INFO, "anotherInfo_Button", TAG)
        told = self.assert_readable(reader, tag, f"{language}: the tag")
        self.assertIn("Singer", [node["text"] for _, node in told])
        reader.press(tag, TAG, "close")
        self.assertTrue(player.gone(tag))
        reader.press(main, MAIN, "nextButton")
        video = player.form(VIDEO)
        self.assertTrue(video, "no film shows")
        self.assert_readable(reader, video, f"{language}: the video window")

        def named(key):
            return next((which for which, node in reader.nodes(reader.place(video))
                         if node["role"] == "push button" and f"({key})" in node["name"] and
                         "showing" in node["states"]), None)
        pause = wait_for(lambda: named("F3"), 120)
        self.assertTrue(pause, "a film that plays offers no pause")
        reader.ask(do="act", which=pause, action="Press")
        self.assertTrue(wait_for(lambda: named("F2"), 120), "the film goes on")


class Changes(base.AccessibleTest, ListTest):
    def test_rows_that_come_and_go_are_told_of(self):
        player, main, reader = self.begin()
        rows = self.open(reader, main, MAIN, "playListButton", LIST)
        reader.nodes(reader.place(rows))  # nothing is told of what nobody has looked at
        heard = []

        def comes(kind, count):
            """For each list of the window, of which one is hidden: it counts each."""
            heard.extend(reader.ask(do="events"))
            return any(event["type"] == f"object:children-changed:{kind}" and
                       event["role"] == "list" for event in heard) and all(
                           node["count"] == count for _, node in reader.nodes(reader.place(rows))
                           if node["role"] == "list")
        player.click_at(rows, LIST["playList_Item"][0] + 20, LIST["playList_Item"][1] + 8)
        reader.press(rows, LIST, "delIndx")
        box = wait_for(player.boxes, 120)[0]
        which = wait_for(lambda: next((at for at, node in reader.nodes(reader.place(box))
                                      if node["role"] == "push button"), None), 120)
        reader.ask(do="act", which=which, action="Press")
        self.assertTrue(wait_for(lambda: comes("remove", 2), 120), heard)
        heard.clear()

        added = self.session.home + "/more"
        os.makedirs(added)
        for number in range(40):
            base.stairs(f"{added}/{number:02}.wav", 1, step=0)
        left, top, width, height = LIST["playList_Item"]
        self.drag(player, rows, left + width / 2, top + height - 20,
                  [f"{added}/{number:02}.wav" for number in range(40)])
        self.assertTrue(wait_for(lambda: comes("add", 42), 120), heard)

    def test_the_strip_steers_the_player(self):
        player, main, reader = self.begin()
        self.play_first(reader, main)
        reader.press(main, MAIN, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip, "the strip does not come")
        # With the pointer elsewhere it slides away, and is as usable there.
        self.assertTrue(rest(lambda: player.place(strip)))
        reader.press(strip, MINI, "pauseButton")
        reader.press(strip, MINI, "playButton")
        reader.at(strip, MINI, "pauseButton")


if __name__ == "__main__":
    run(sys.argv[5:])
