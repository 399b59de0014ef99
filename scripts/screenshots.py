#!/usr/bin/env python3
"""Makes the pictures of docs/screenshots anew, by the real program on a screen of its own.

    scripts/screenshots.py BUILD_FOLDER [PICTURE_FOLDER]

The build has to hold velmora, demo_piece and velmora-catalogue. Plays the demonstration piece, a
film and a household's catalogue, opens the windows by keys and mouse, and keeps what the screen
shows. Status 0 when every window came up.
"""

import os
import shutil
import sqlite3
import subprocess
import sys
import time

SOURCE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.abspath(sys.argv[1])
TARGET = os.path.abspath(sys.argv[2] if len(sys.argv) > 2 else f"{SOURCE}/docs/screenshots")
PIECE = f"{BUILD}/tools/demo_piece/demo_piece"
CATALOGUE = f"{BUILD}/tools/catalogue/velmora-catalogue"
sys.path[:0] = [f"{SOURCE}/tests/desktop", f"{SOURCE}/tests/desktop/program"]
# What the helpers of the desktop tests expect to be called with.
sys.argv = [sys.argv[0], f"{BUILD}/src/velmora", PIECE, SOURCE, ""]
from player import APP, FORM_SIZES, LIST, MAIN, MINI, SETTINGS, VIDEO, WELCOME, Player, design  # noqa: E402
from session import Session, quiet, wait_for  # noqa: E402

EDITOR = design("src/lyrics/doLrcForm.form")
SONGS = design("src/network/search_Song_Internet_Form.form")
FORM_SIZES.add(tuple(int(side) for side in EDITOR["form"][2:4]))
TRACKS = ["01 灯火", "Nocturne in blue", "La chanson du port", "Harbour Lights", "夜のうみ",
          "Morning tram", "雨后的街", "Un été sans fin", "Glass mountain (live)", "春を待つ",
          "Field recording 07", "风筝", "Last boat home", "Les toits", "Paper stars", "远山",
          "Interlude", "Coda", "尾声", "Silence"]
PLAYED = TRACKS.index("Harbour Lights")
FOUND = ["Hello from the harbour", "Harbour in winter", "The old harbour"]  # by the search
EDGE = 12  # of the desktop around a window
SETTLE_S = 0.6
PAGE = """[welcome]
title=Our music
provider=The house
banner0=Films on Friday, at eight|http://127.0.0.1:9/
tab0=New
tab1=Words
tab2=Films
"""
# A flat harbour at dusk: bands of sky, houses with lit windows, their light on the water.
DUSK = ("0x16233a", "0x1d3049", "0x274a63", "0x2f7f86", "0xd9a441", "0x12202b")
FILM = (f"color=c={DUSK[0]}:s=730x444:r=25:d=30," + ",".join(
    [f"drawbox=0:{60 + 60 * band}:730:444:{colour}:fill" for band, colour in enumerate(DUSK[1:5])] +
    [f"drawbox=0:300:730:144:{DUSK[5]}:fill"] +
    [f"drawbox={x}:{300 - high}:{wide}:{high}:{DUSK[0]}:fill" for x, wide, high in
     ((0, 90, 60), (90, 60, 110), (150, 110, 45), (330, 70, 80), (400, 50, 130), (450, 120, 55),
      (640, 90, 95))] +
    [f"drawbox={x}:{y}:8:10:0xffd65a:fill,drawbox={x}:{330 + (300 - y) // 2}:8:24:0x8a7036:fill"
     for x, y in ((20, 255), (104, 215), (126, 245), (180, 270), (350, 235), (414, 185), (430, 225),
                  (480, 260), (530, 275), (664, 220), (696, 260))]))


class Small(Session):
    """The player, its list and the line on the desktop just fill it."""
    screen = "1024x768x24"


class Large(Session):
    """With room for a window beside the player."""
    screen = "1800x1200x24"


class Shots:
    def __init__(self, kind):
        self.session = kind(window_manager=True)
        self.width, self.height = (int(side) for side in kind.screen.split("x")[:2])
        self.env = self.session.env
        self.music = self.session.home + "/music"
        self.registry = self.env["XDG_CONFIG_HOME"] + "/velmora/registry.sqlite"
        self.player = self.main = None
        quiet("hsetroot", "-add", "#33567a", "-add", "#16233a", "-gradient", "180", env=self.env)
        self.make_music()

    def make_music(self):
        os.makedirs(self.music)
        piece = f"{self.music}/{TRACKS[PLAYED]}.wav"
        subprocess.run([PIECE, piece], check=True, stdout=subprocess.DEVNULL)
        shutil.copy(f"{SOURCE}/assets/demo/Harbour Lights.en.lrc",
                    f"{self.music}/Harbour Lights.lrc")
        for name in TRACKS + FOUND:
            if not os.path.exists(f"{self.music}/{name}.wav"):
                os.link(piece, f"{self.music}/{name}.wav")
        with open(self.music + "/catalogue.ini", "w", encoding="utf-8") as file:
            file.write(PAGE)
        self.film = self.session.home + "/Northern shore.mp4"
        subprocess.run(["ffmpeg", "-loglevel", "error", "-nostdin", "-y", "-f", "lavfi", "-i", FILM,
                        "-f", "lavfi", "-i", "anullsrc", "-shortest", "-c:v", "libx264",
                        "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-c:a", "aac", self.film],
                       check=True)

    def must(self, found, what):
        if not found:
            sys.exit(f"{what} did not come up")
        return found

    # --- the player ---

    def list_files(self, paths):
        folder = f"{self.env['XDG_DATA_HOME']}/velmora/{APP}/List"
        os.makedirs(folder, exist_ok=True)
        with open(folder + "/zkPlayList.m3u", "w", newline="", encoding="utf-8") as file:
            file.write("".join(path + "\r\n" for path in paths))

    def begin(self):
        self.player = Player(self.session)
        self.main = self.must(self.player.window(), "the player")
        time.sleep(SETTLE_S)

    def end(self):
        self.session.key("Escape", self.main)
        self.must(self.player.ended(), "the player's end")

    def settings(self, **values):
        """Puts values of the settings while the player is closed."""
        database = sqlite3.connect(self.registry)
        with database:
            (key,) = database.execute(
                "select id from keys where folded like '%PLAYSET'").fetchone()
            for name, value in values.items():
                database.execute("insert or replace into entries values (?, ?, ?, ?, ?, ?)",
                                 (key, name.upper(), name, 1, len(value), value))
        database.close()

    def open(self, control, form, what):
        self.player.click(self.main, control)
        window = self.must(self.player.form(form), what)
        time.sleep(SETTLE_S)
        return window

    # --- pictures ---

    def keep(self, name, left, top, width, height, pointer=None):
        self.player.tool("mousemove", *(pointer or (self.width - 1, self.height - 1)))
        time.sleep(SETTLE_S)
        path = f"{TARGET}/{name}.png"
        subprocess.run(["import", "-silent", "-window", "root", "-crop",
                        f"{width}x{height}+{left}+{top}", "+repage", "-depth", "8", "-strip",
                        "-define", "png:compression-level=9", "-define", "png:compression-filter=5",
                        path], env=self.env, check=True)
        print(f"{path}  {os.path.getsize(path) // 1024} KB")

    def keep_window(self, name, window, pointer=None):
        x, y = self.player.place(window)
        width, height = self.player.size(window)
        top = max(0, y - EDGE)
        self.keep(name, x - EDGE, top, width + 2 * EDGE, y + height + EDGE - top, pointer)

    def aside(self, window):
        """Puts a window where nothing is behind it."""
        self.player.tool("windowmove", window, 2 * EDGE, 2 * EDGE)
        self.player.tool("windowraise", window)
        time.sleep(SETTLE_S)
        return window

    def close(self):
        self.session.close()


def look_at_language(shots):
    """What has to be clicked on in a player that was never started before."""
    def part(name, window, left, top, width, height):
        x, y = shots.player.place(window)
        shots.keep(name, int(x + left) - 4, int(y + top) - 4, int(width) + 8, int(height) + 8)
    part("language_1", shots.main, *MAIN["playSet_Button"])
    shots.session.key("ctrl+s", shots.main)
    window = shots.aside(shots.must(shots.player.form(SETTINGS), "the settings"))
    shots.player.click(window, "languageSet", form=SETTINGS)
    part("language_2", window, *SETTINGS["languageSet"])
    left, top = SETTINGS["Language_Frame"][:2]
    choice = (left + 270 / 15, top + 960 / 15, 80, 330 / 15)
    shots.player.click_at(window, choice[0] + 8, choice[1] + choice[3] / 2)
    part("language_3", window, *choice)
    part("language_4", window, *SETTINGS["qd"])
    shots.player.click(window, "qx", form=SETTINGS)


def play_piece(shots):
    """Opens the list and plays the piece from it."""
    rows = shots.open("playListButton", LIST, "the play list")
    left, top = LIST["playList_Item"][:2]
    shots.player.click_at(rows, left + 60, top + 18 * PLAYED + 9, times=2)
    shots.must(wait_for(lambda: "Harbour" in shots.player.title(shots.main), 20), "the piece")
    time.sleep(8)


def look_at_desktop(shots):
    play_piece(shots)
    _, y = shots.player.place(shots.main)
    shots.keep("main", 0, y - EDGE, shots.width, shots.height - y + EDGE)


def look_at_windows(shots):
    player = shots.player
    play_piece(shots)
    window = shots.aside(shots.open("do_Lrc", EDITOR, "the editor"))
    shots.keep_window("editor", window)
    player.click(window, "close", form=EDITOR)
    shots.session.key("ctrl+s", shots.main)
    window = shots.aside(shots.must(player.form(SETTINGS), "the settings"))
    player.click(window, "lrcSet", form=SETTINGS)
    shots.keep_window("settings", window)
    player.click(window, "qx", form=SETTINGS)
    player.gone(window)
    player.click(shots.main, "mini_Button")
    window = shots.must(player.form(MINI), "the mini strip")
    # It stays as long as the pointer is over it.
    x = player.place(window)[0]
    player.tool("mousemove", x + 4, 0)
    shots.must(wait_for(lambda: player.place(window)[1] == 0), "the strip")
    shots.keep_window("mini", window, (x + 4, 0))


def look_at_network(shots):
    player = shots.player
    window = shots.aside(shots.open("welcome", WELCOME, "the welcome page"))
    time.sleep(2)
    shots.keep_window("welcome", window)
    player.click(window, "close", form=WELCOME)
    player.gone(window)
    window = shots.aside(shots.open("search_Song_Internet", SONGS, "the song search"))
    for box, words in (("songName_Text", "harbour"), ("singer_Str", "")):
        player.click(window, box, form=SONGS)
        quiet("xdotool", "windowfocus", "--sync", window, env=shots.env)
        quiet("xdotool", "key", "ctrl+a", "Delete", env=shots.env)
        if words:
            quiet("xdotool", "type", "--delay", "8", words, env=shots.env)
    player.click(window, "search_Button", form=SONGS)
    time.sleep(2)
    left, top = SONGS["search_Song_List"][:2]
    player.click_at(window, left + 60, top + 14)
    shots.keep_window("song_search", window)


def look_at_film(shots):
    shots.session.key("F6", shots.main)
    window = shots.must(shots.player.form(VIDEO), "the video window")
    shots.player.tool("windowmove", shots.main, shots.width // 2, shots.height // 2)
    time.sleep(4)
    shots.keep_window("video", shots.aside(window))


def take(kind, *looks):
    """Each look at a player of its own start, on one screen."""
    shots = Shots(kind)
    try:
        shots.session.spawn([CATALOGUE, shots.music, "--port", "0", "--introduce", shots.registry])
        shots.must(wait_for(lambda: os.path.exists(shots.registry)), "the catalogue")
        time.sleep(2)
        shots.begin()
        if look_at_language in looks:
            look_at_language(shots)
        shots.end()
        shots.settings(Language="1", Desktop_Lrc_AutoOpen="1", VideoInterface="1")
        for look in (each for each in looks if each is not look_at_language):
            shots.list_files([shots.film] if look is look_at_film else
                             [f"{shots.music}/{name}.wav" for name in TRACKS])
            shots.begin()
            look(shots)
            shots.player.child.terminate()
            shots.must(shots.player.ended(), "the player's end")
    finally:
        shots.close()


def main():
    os.makedirs(TARGET, exist_ok=True)
    take(Small, look_at_desktop)
    take(Large, look_at_language, look_at_windows, look_at_network, look_at_film)


main()
