#!/usr/bin/env python3
"""A player beside a household's catalogue, as the script starts both, and in each language.

    test_catalogue.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

The catalogue's program is named by the environment: VELMORA_CATALOGUE. Pictures are kept in the
folder that VELMORA_ARTIFACTS names, if it does.
"""

import os
import re
import shutil
import sqlite3
import sys
import urllib.error
import urllib.request

from cases import run
from household import HouseholdTest
from player import PROGRAM, SOURCE, WELCOME, Player, PlayerTest, design, stairs
from session import quiet, rest, wait_for

LYRICS = design("src/network/search_Lrc_Internet_Form.form")
SONGS = design("src/network/search_Song_Internet_Form.form")


class ScriptPlayer(Player):
    """Started by a script: its windows are not those of the process that was started."""

    def windows(self):
        return self.tool("search", "--onlyvisible", "--class", "velmora").split()


class Script(PlayerTest):
    def setUp(self):
        super().setUp()
        # The script keeps everything beside itself.
        self.place = self.session.home + "/place"
        os.makedirs(self.place + "/scripts")
        self.script = shutil.copy(SOURCE + "/scripts/with_catalogue.sh", self.place + "/scripts")
        stairs(self.music + "/Low tone.wav", 5)

    def begin(self):
        starter = self.session.home + "/start"
        build = os.path.dirname(os.path.dirname(PROGRAM))
        with open(starter, "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\nexec '{self.script}' '{os.path.realpath(build)}' "
                       f"'{self.place}/catalogue-home' '{self.music}'\n")
        os.chmod(starter, 0o755)
        player = ScriptPlayer(self.session, starter)
        main = player.window()
        self.assertTrue(main, "the main window does not come up")
        with open(self.place + "/catalogue-home/catalogue.log", encoding="utf-8") as log:
            address = re.search(r"http://[^\s/]+", log.read())[0]
        return player, main, address

    @staticmethod
    def answers(address):
        try:
            with urllib.request.urlopen(address, timeout=5) as page:
                return page.status == 200
        except (urllib.error.URLError, OSError):
            return False

    def test_it_serves_a_player_of_its_own_and_ends_with_it(self):
        for _ in range(2):  # at another port each time
            player, main, address = self.begin()
            self.assertTrue(address.startswith("http://127.0.0.1:"), address)
            self.assertTrue(self.answers(address))
            player.click(main, "search_Song_Internet")
            window = player.form(SONGS)
            self.assertTrue(window)
            player.click(window, "songName_Text", form=SONGS)
            quiet("xdotool", "windowfocus", "--sync", window, env=self.session.env)
            quiet("xdotool", "type", "Low", env=self.session.env)
            player.click(window, "search_Button", form=SONGS)
            left, top, _, _ = SONGS["search_Song_List"]
            self.assertTrue(wait_for(lambda: any(pixel > 110 for pixel in player.picture(
                window, left + 4, top + 4, 200, 18)), 30), "nothing is found")
            self.session.key("Escape", main)
            self.assertTrue(player.ended(), "the script goes on")
            self.assertEqual(player.child.returncode, 0)
            self.assertTrue(wait_for(lambda: not self.answers(address), 30), "it serves on")
        # Nothing of it is in the user's own folders.
        self.assertFalse(os.path.exists(self.session.env["XDG_CONFIG_HOME"] + "/velmora"))
        self.assertFalse(os.path.exists(self.session.env["XDG_DATA_HOME"] + "/velmora"))


class Languages(HouseholdTest):
    """A process for each."""

    ERROR = ("错误", "Error", "Erreur", "エラー")
    LATEST = ("您当前的版本已最新", "Your current version of the latest",
              "Votre version est la plus récente", "お使いのバージョンは最新です")

    def speak(self, number):
        database = sqlite3.connect(self.registry)
        with database:
            (key,) = database.execute("select id from keys where folded like '%PLAYSET'").fetchone()
            database.execute("insert or replace into entries values (?, 'LANGUAGE', 'Language', 1, "
                             "1, ?)", (key, str(number)))
        database.close()

    def rest(self, window, control=None, form=None):
        """What a window or control shows, once it has been the same for a while."""
        def look():
            now = self.player.look(window, control, form) if control else \
                self.player.picture(window, 0, 0, *self.player.size(window))
            return now if any(now) else None
        return rest(look)

    def keep(self, name, window):
        folder = os.environ.get("VELMORA_ARTIFACTS")
        if folder:
            os.makedirs(folder + "/languages", exist_ok=True)
            quiet("import", "-window", window, f"{folder}/languages/{name}.png",
                  env=self.session.env)

    def texts(self, number):
        """What one run shows of the network's windows: of the texts with a word for each language,
        and of those that are the same in all."""
        spoken, fixed = {}, {}
        lyrics = self.open("search_Lrc_Internet", LYRICS)
        self.player.tool("mousemove", 1270, 790)
        spoken["lyrics"] = self.rest(lyrics, "title", LYRICS)
        fixed["search"] = self.rest(lyrics, "search_Button", LYRICS)
        self.keep(f"lyrics_{number}", lyrics)
        self.player.click(lyrics, "search_Button", form=LYRICS)
        self.assertTrue(wait_for(lambda: self.found(lyrics), 30))
        self.player.click(lyrics, "save", form=LYRICS)  # without a row chosen
        box = self.assert_box(self.player, "未选择指定下载链接！")
        self.assertEqual(self.player.title(box), self.ERROR[number])
        self.keep(f"no_row_{number}", box)
        self.session.reply("Return", box)
        self.assertTrue(self.player.gone(box))
        self.player.click(lyrics, "close", form=LYRICS)
        self.assertTrue(self.player.gone(lyrics))
        songs = self.open("search_Song_Internet", SONGS)
        self.player.tool("mousemove", 1270, 790)
        fixed["songs"] = self.rest(songs, "title", SONGS)
        self.keep(f"songs_{number}", songs)
        self.player.click(songs, "close", form=SONGS)
        self.assertTrue(self.player.gone(songs))
        page = self.open("welcome", WELCOME)
        fixed["page"] = self.rest(page, "title", WELCOME)
        self.keep(f"welcome_{number}", page)
        self.player.click(page, "close", form=WELCOME)
        self.assertTrue(self.player.gone(page))
        self.player.click(self.window, "title", button=3)
        self.assertTrue(self.player.menus(), "no menu comes up")
        for key in ("Up", "Up", "Up", "Up", "Return"):  # close, help, about, update
            self.session.key(key)
        box = self.assert_box(self.player, self.LATEST[number])
        spoken["latest"] = self.rest(box)
        self.keep(f"latest_{number}", box)
        self.session.reply("Return", box)
        self.assertTrue(self.player.gone(box))
        return spoken, fixed

    def found(self, window):
        left, top, _, _ = LYRICS["search_Lrc_List"]
        return any(pixel > 110 for pixel in self.player.picture(window, left + 4, top + 4, 200, 18))

    def test_each_shows_its_own_words_where_it_has_some(self):
        with open(self.served + "/song.lrc", "w", encoding="utf-8") as file:
            file.write("[00:01.00]words\n")
        stairs(self.music + "/song.wav", 1)
        self.write_list([self.music + "/song.wav"])
        self.serve()
        self.begin()
        self.session.key("F6", self.window)  # what is searched for
        self.assert_content(self.app("Lyrics", "song.LRC"), b"[00:01.00]words\r\n")
        seen = []
        for number in range(4):
            self.session.key("Escape", self.window)
            self.assertTrue(self.player.ended())
            self.speak(number)
            self.begin()
            seen.append(self.texts(number))
        for name in seen[0][0]:
            self.assertEqual(len({spoken[name] for spoken, _ in seen}), 4, name)
        for name in seen[0][1]:
            self.assertEqual(len({fixed[name] for _, fixed in seen}), 1, name)


if __name__ == "__main__":
    run(sys.argv[5:])
