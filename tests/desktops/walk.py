#!/usr/bin/env python3
"""One walk through the program, the same on every desktop, and a table of what came of it.

    walk.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [--rows PATTERN] DESKTOP...

Writes desktops.md and a picture of each desktop into the folder that VELMORA_ARTIFACTS names. Fails where a cell of the
table is wrong; a known limit has its reason in LIMITS. With a pattern only the rows that it finds are walked through:
the strip's alone, say, by '^(start|a double|the strip|the upper edge b|its|end)'.
"""

import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
DESKTOPS = sys.argv[5:]
ROWS = DESKTOPS.pop(1) if DESKTOPS[:1] == ["--rows"] else ""
DESKTOPS = [name for name in DESKTOPS if name != "--rows"]
sys.path[:0] = [HERE, os.path.join(HERE, "..", "desktop", "program")]
from desks import DESKS  # noqa: E402
import session  # noqa: E402
from films import HEIGHT, WIDTH, make_film  # noqa: E402
from player import LIST, MAIN, MINI, Player, PlayerTest, Stranger, stairs  # noqa: E402
from session import let_pass, quiet, rest, wait_for  # noqa: E402
from tables import table  # noqa: E402

SKIPPED = 77
SCREEN = (1280, 800)
PATIENCE, BRIEF = 30, 4  # seconds: with what is expected, and with what a known limit holds back
FILM_PATIENCE = 90  # until the next film shows, or the keys mean another thing, on a busy machine
FADE = 10  # seconds, that of the sound included
GROUND = (0, 60, SCREEN[0], 640)  # where the main window comes: below the strip, above every task bar
TASK_BAR = (640, 780)
WHITE = b"\xff\xff\xff"
STRIP = int(MINI["form"][3])
HAND = {"mousemove", "mousemove_relative", "mousedown", "mouseup", "click", "key"}
PLACED = "the compositor keeps floating windows where it puts them, whatever place they ask for"
UNMINIMISED = "nothing is minimised there: the window stays"
NO_ENTRY = "what stands for it is a minimised window, and nothing is minimised there: its edge and the tray remain"
STAYS = "its X side leaves a window that is shown where it is, whatever place it asks for"
FOREMOST = "its X side puts the window with the keyboard above the line in its server's order alone: that has the click"
SHIFTED = "the compositor sets back what was over the whole screen, off by the 32 pixels of the edge around it"
UNLISTED = "what stands in no list of windows is not minimised there"
TAKES = "whatever comes up gets the keyboard there, also where it does not ask for it"
EDGES = {"left": (-700, 0), "right": (700, 0), "upper": (0, -420), "lower": (0, 420)}
LIMITS = {
    **{(name, row): reason for name, reason in (("sway", PLACED), ("weston", STAYS)) for row in (
        "the list opens beside the main window", *(f"both dragged beyond the {edge} edge and back" for edge in EDGES))},
    ("sway", "clicks pass between its letters, and not through them"): PLACED,
    **{(name, "the next one while another program has the keyboard"): TAKES for name in ("sway", "icewm", "weston")},
    **{(name, row): UNMINIMISED for name in ("sway", "i3", "weston") for row in (
        "the list, minimised by another program, comes back by its button", "minimise and back",
        "after that, mini mode and back")},
    ("mutter", "the list, minimised by another program, comes back by its button"): UNLISTED,
    **{(f"gnome-shell on {server}", "the list, minimised by another program, comes back by its button"): UNLISTED
       for server in ("Xorg", "Wayland")},
    **{(name, "called up from the list of windows, the strip gives way to the main window"): NO_ENTRY
       for name in ("i3", "sway", "weston")},
    ("weston", "clicks pass between its letters, and not through them"): FOREMOST,
    ("weston", "over the whole screen and back"): SHIFTED,
}
LIMITS.update({("i3 with picom", row): reason for (name, row), reason in list(LIMITS.items()) if name == "i3"})


class Walker(Player):
    """The hand is where the desktop's person has it."""

    def tool(self, *words):
        if words[0] not in HAND:
            return super().tool(*words)
        return self.session.hand(*words)

    def geometry(self, number):
        # The other tool counts a window's place in a frame twice.
        told = quiet("xwininfo", "-id", number, env=self.session.env)
        names = {"X": "Absolute upper-left X", "Y": "Absolute upper-left Y", "WIDTH": "Width", "HEIGHT": "Height"}
        found = {key: re.search(name + r": +(-?\d+)", told) for key, name in names.items()}
        return {key: int(each[1]) for key, each in found.items()} if all(found.values()) else {}


def need(found, what):
    if not found:
        raise AssertionError(what)
    return found


class Walk:
    patience = PATIENCE

    def __init__(self, desk):
        self.desk = self.session = desk
        music = desk.home + "/music"
        os.makedirs(music)
        tracks = [f"{music}/{name}" for name in ("track.wav", "short.mp4", "film.mp4")]
        stairs(tracks[0], 300, step=0)
        with open(music + "/track.lrc", "w", encoding="utf-8") as file:
            for second in range(300):
                file.write(f"[{second // 60:02}:{second % 60:02}.00]Words to be seen\n")
        make_film(tracks[1], seconds=8)
        make_film(tracks[2], seconds=240, rate=10)  # outlasts all that is waited for
        PlayerTest.write_list(self, tracks)
        self.player = self.main = self.list = self.film = None

    def list_file(self):
        return PlayerTest.list_file(self)

    def registry_file(self):
        return PlayerTest.registry_file(self)

    def haul(self, by, steps=12):
        for _ in range(steps):
            self.player.tool("mousemove_relative", "--", round(by[0] / steps), round(by[1] / steps))

    def start(self):
        first = Walker(self.desk)  # makes the settings that are set then
        self.desk.key("Escape", need(first.window(), "no main window"))
        need(first.ended(), "it does not end by a key")
        PlayerTest.store(self, {"VideoInterface": (1, "1")})
        self.player = Walker(self.desk)
        self.main = need(self.player.window(), "no main window")
        self.home = need(rest(lambda: self.player.place(self.main)), "it never comes to rest")

    def open_list(self):
        self.player.click(self.main, "playListButton")
        self.list = need(self.player.form(LIST), "no list")
        self.touching()
        self.home = rest(lambda: self.player.place(self.main))

    def touching(self):
        def touch():
            (x, y), (list_x, list_y) = self.player.place(self.main), self.player.place(self.list)
            return (list_x, list_y) == (x + int(MAIN["form"][2]), y)
        need(wait_for(touch, self.patience),
             f"list at {self.player.place(self.list)}, main at {self.player.place(self.main)}")

    def out_and_back(self, out):
        grip = self.player.point(self.main, 150, 12)
        self.player.tool("mousemove", *grip)
        self.player.tool("mousedown", 1)
        self.haul(out)
        for step in (1, -1) * 3:
            rest(lambda: (self.player.place(self.main), self.player.place(self.list)), still=0.1)
            self.player.tool("mousemove_relative", "--", step, step)
        self.haul((-out[0], -out[1]))

        def at_home():
            # A hand comes to rest by small steps; the last great one may be told before the window stands.
            self.player.tool("mousemove", grip[0] + 1, grip[1])
            self.player.tool("mousemove", *grip)
            return rest(lambda: self.player.place(self.main), still=0.2) == self.home
        wait_for(at_home, self.patience)
        self.player.tool("mouseup", 1)
        self.touching()
        need(wait_for(lambda: self.player.place(self.main) == self.home, self.patience),
             f"from {self.home} it came back to {self.player.place(self.main)}")

    def is_minimised(self, window):
        # Some compositors go on drawing what they have minimised, for their overviews.
        return wait_for(lambda: window not in self.player.windows() or "Iconic" in quiet(
            "xprop", "-id", window, "WM_STATE", env=self.desk.env), 3)

    def is_back(self, window):
        return wait_for(lambda: window in self.player.windows() and "Iconic" not in quiet(
            "xprop", "-id", window, "WM_STATE", env=self.desk.env), self.patience)

    def in_sight(self, area, without):
        """What the window system calls shown, or gone, may not be so on the screen yet, and then clicks go astray."""
        wait_for(lambda: self.seen(*area) != without, 15)
        rest(lambda: self.seen(*area), 10)
        if not self.desk.tells_place:
            let_pass(2)  # the program asks the server about a second after it has shown a window

    def minimised_list(self):
        title = (*self.player.place(self.list), 300, 30)
        quiet("xdotool", "windowminimize", self.list, env=self.desk.env)
        need(self.is_minimised(self.list), "nothing minimises it")
        without = rest(lambda: self.seen(*title))
        for _ in range(2):
            self.player.click(self.main, "playListButton")
            if self.is_back(self.list):
                break
        need(self.is_back(self.list), "the list is lost")
        self.in_sight(title, without)

    def hide_list(self):
        self.player.click(self.list, "close", form=LIST)
        need(self.player.gone(self.list), "the list stays")
        rest(lambda: self.player.place(self.main))

    def enter_mini(self):
        self.player.click_at(self.main, 150, 12, times=2)
        self.strip = need(self.player.form(MINI), "no strip")
        need(self.player.gone(self.main), "the main window stays")

    def strip_hides(self):
        self.player.tool("mousemove", 640, 600)
        need(wait_for(lambda: self.player.place(self.strip)[1] <= -STRIP), "the strip stays")

    def strip_comes(self):
        def along_the_edge():
            # A hand does not stand still there.
            self.player.tool("mousemove", 301, 0)
            self.player.tool("mousemove", 300, 0)
            return self.player.place(self.strip)[1] == 0
        need(wait_for(along_the_edge), "the strip is lost")
        self.player.tool("mousemove", 300, 20)

    def click_strip(self, x, y, button=1):
        self.player.tool("mousemove", *self.player.point(self.strip, x, y))
        let_pass(1)  # where a panel has the pointer, the strip takes it at its next look
        self.player.tool("click", button)

    def strips_menu(self):
        inside = (*self.player.point(self.strip, 6, 25), 40, 40)
        without = rest(lambda: self.seen(*inside), 10)
        self.click_strip(4, 23, button=3)
        need(self.player.menus(), "no menu")
        self.in_sight(inside, without)
        self.player.tool("mousemove", 640, 600)
        self.player.tool("click", 1)
        closed = wait_for(lambda: not self.player.menus(1, 0.1))
        if not closed:
            self.player.click_at(self.strip, 4, 23)  # what follows goes on without it
        self.strip_comes()
        need(closed, "the menu stays")

    def listed(self):
        told = quiet("xprop", "-root", "_NET_CLIENT_LIST", env=self.desk.env)
        return next((each for each in re.findall("0x[0-9a-f]+", told) if "Iconic" in quiet(
            "xprop", "-id", each, "WM_STATE", env=self.desk.env)), None)

    def called_up(self):
        self.player.click(self.main, "mini_Button")
        self.strip = need(self.player.form(MINI), "no strip")
        without = rest(lambda: self.seen(*GROUND), 10)
        try:
            entry = need(rest(self.listed, 10, still=1), "no list of windows has it")
            quiet("xdotool", "windowactivate", entry, env=self.desk.env)
            need(self.player.gone(self.strip, self.patience), "the strip stays")
        finally:
            if self.strip in self.player.windows():
                self.strip_comes()
                self.leave_mini()
            self.main = need(self.player.window(), "the main window does not come")
        self.in_sight(GROUND, without)

    def leave_mini(self):
        left, top, width, height = MINI["mini_Button"]
        without = rest(lambda: self.seen(*GROUND), 10)
        self.click_strip(left + width / 2, top + height / 2)
        self.main = need(self.player.window(), "the main window does not come back")
        self.in_sight(GROUND, without)

    def minimise(self):
        title = (*self.player.place(self.main), 300, 30)
        self.player.click(self.main, "minimizeButton")
        need(self.is_minimised(self.main), "nothing is minimised")
        self.player.tool("mousemove", *TASK_BAR)  # where a hand goes to call it back
        without = rest(lambda: self.seen(*title))
        quiet("xdotool", "windowactivate", self.main, env=self.desk.env)
        need(self.is_back(self.main), "it stays minimised")
        self.in_sight(title, without)

    def mini_after_minimise(self):
        self.minimise()
        self.mini_and_back()
        need(self.is_back(self.main), "it comes up minimised")

    def mini_and_back(self):
        self.player.click(self.main, "mini_Button")
        self.strip = need(self.player.form(MINI), "no strip")
        self.strip_comes()
        self.leave_mini()

    def menu(self):
        inside = (*self.player.point(self.main, 7, 152), 40, 40)
        without = rest(lambda: self.seen(*inside), 10)
        self.player.click_at(self.main, 5, 150, button=3)
        need(self.player.menus(), "no menu")
        self.in_sight(inside, without)
        self.player.tool("key", "Escape")
        need(wait_for(lambda: not self.player.menus(1, 0.1)), "the menu stays")

    def seen(self, x, y, width, height):
        """The screen's colours there, row by row."""
        return subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth",
             "8", "rgb:-"], env=self.desk.hands or self.desk.env, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, check=False).stdout

    def line(self):
        self.player.click(self.main, "nextButton")
        if self.desk.hands:
            let_pass(FADE)  # what the window says is not read through the compositor
        else:
            need(self.player.says(self.main, "Words to be seen", 60), "no lyric in the main window")
        self.player.click(self.main, "desktop_Lrc")
        strip = need(wait_for(lambda: next(
            (each for each in self.player.windows() if self.player.unmanaged(each) and
             self.player.size(each)[0] == SCREEN[0]), None)), "no line")
        (left, top), (wide, high) = self.player.place(strip), self.player.size(strip)
        need(left == 0 and SCREEN[1] - 60 < top + high <= SCREEN[1], f"it stands at {left}, {top}")

        self.below = Stranger(self.desk, 0, 500, 1280, 300)

        def places():
            data = self.seen(left, top, wide, high)
            white = [[data[3 * (y * wide + x):3 * (y * wide + x) + 3] == WHITE for x in range(wide)]
                     for y in range(high)]
            columns = [x for x in range(300, wide - 300) if not all(row[x] for row in white)]
            found = {}
            for y in range(6, high - 6, 2):
                for x in columns:
                    around = {white[y + dy][x + dx] for dy in range(-2, 3) for dx in range(-2, 3)}
                    if len(around) == 1:
                        found.setdefault(around.pop(), (left + x, top + y))
            return found if len(found) == 2 else None
        self.spots = need(wait_for(places, 20), "no letters with ground between them")

    def through_the_line(self):
        try:
            self.click_letters()
        finally:
            self.desk.stop(self.below.child)
            quiet("xdotool", "windowactivate", "--sync", self.main, env=self.desk.env)
            self.player.click(self.main, "desktop_Lrc")

    def click_letters(self):
        self.player.tool("mousemove", *self.spots[True])
        self.player.tool("click", 1)
        need(wait_for(lambda: self.below.presses() == [self.spots[True]], self.patience),
             "a click between the letters does not pass")
        self.player.tool("mousemove", *self.spots[False])
        self.player.tool("click", 1)
        self.player.tool("mousemove", *self.spots[True])
        self.player.tool("click", 1)
        need(wait_for(lambda: self.below.presses() == [self.spots[True]] * 2, self.patience),
             "a click on a letter passes")

    def video(self, size=(WIDTH, HEIGHT), other=None):
        return wait_for(lambda: next((each for each in self.player.windows()
                                      if each != other and self.player.size(each) == size), None), FILM_PATIENCE)

    def film_shows(self):
        self.player.click(self.main, "nextButton")
        self.film = need(self.video(), "no window")

    def next_film(self):
        stranger = Stranger(self.desk, 10, 10, 200, 150, name="Writing")
        quiet("xdotool", "windowactivate", "--sync", stranger.window, env=self.desk.env)
        self.film = need(self.video(other=self.film), "no window of the next film")
        rest(lambda: self.player.place(self.film))
        active = quiet("xdotool", "getactivewindow", env=self.desk.env)
        self.desk.stop(stranger.child)
        need(active == stranger.window, "it takes the keyboard")

    def whole_and_back(self):
        home = rest(lambda: self.player.place(self.film))
        self.key_to_film("Return", self.film)
        whole = need(self.video(SCREEN), "no full screen")
        need(wait_for(lambda: self.player.place(whole) == (0, 0)), "it is not at the corner")
        # The keys mean full screen once the sound has faded in, and then the window is on top.
        if not self.desk.tells_above:
            let_pass(FADE)
        else:
            need(wait_for(lambda: "ABOVE" in quiet("xprop", "-id", whole, "_NET_WM_STATE",
                                                   env=self.desk.env), FILM_PATIENCE), "it is not on top")
        self.key_to_film("Return", whole)
        self.film = need(self.video(), "no way back")
        need(wait_for(lambda: self.player.place(self.film) == home, self.patience),
             f"it comes back to {self.player.place(self.film)}, not to {home}")

    def key_to_film(self, key, window):
        self.player.click_at(window, 20, 300)  # it has the keyboard then, whoever gives it
        self.player.tool("key", key)

    def film_stops(self):
        self.key_to_film("F4", self.film)
        need(self.player.gone(self.film), "its window stays")

    def second_start(self):
        second = Walker(self.desk)
        box = need(wait_for(second.boxes), "no word of the first")[0]
        area = (*self.player.place(box), *self.player.size(box))
        shown = rest(lambda: self.seen(*area), 10)
        self.desk.reply("Return", box)
        need(second.ended(), "the second one stays")
        self.in_sight(area, shown)
        need(self.player.window(5), "the first one is gone")

    def end(self):
        self.player.click(self.main, "closeButton")
        need(self.player.ended(), "it does not end")
        need(self.player.child.returncode == 0, "it does not end in order")

    def rows(self):
        yield "start", self.start
        yield "the list opens beside the main window", self.open_list
        for name, out in EDGES.items():
            yield f"both dragged beyond the {name} edge and back", lambda out=out: self.out_and_back(out)
        yield "the list, minimised by another program, comes back by its button", self.minimised_list
        yield "the list hides", self.hide_list
        yield "a double click on the title brings the strip", self.enter_mini
        yield "the strip slides out of sight", self.strip_hides
        yield "the upper edge brings it back", self.strip_comes
        yield "its menu opens, and a click elsewhere closes it", self.strips_menu
        yield "its button brings the main window", self.leave_mini
        yield "called up from the list of windows, the strip gives way to the main window", self.called_up
        yield "minimise and back", self.minimise
        yield "after that, mini mode and back", self.mini_after_minimise
        yield "the menu opens and closes", self.menu
        yield "the line on the desktop stands above the task bar", self.line
        yield "clicks pass between its letters, and not through them", self.through_the_line
        yield "a film in its window", self.film_shows
        yield "the next one while another program has the keyboard", self.next_film
        yield "over the whole screen and back", self.whole_and_back
        yield "stopped", self.film_stops
        yield "a second start says so and leaves the first", self.second_start
        yield "end", self.end


def picture(desk, path):
    subprocess.run(["import", "-silent", "-window", "root", path], env=desk.hands or desk.env, check=False)


def walk(name, artifacts):
    """What became of each row; the walk ends where nothing is left to go on with."""
    desk = DESKS[name]()
    if desk.hands or not desk.answers:
        session.TAKEN = None  # the outer screen has no window manager to wait for
    cells = {}
    try:
        steps = Walk(desk)
        for row, step in steps.rows():
            if not re.search(ROWS, row):
                continue
            limit = LIMITS.get((name, row))
            steps.patience = BRIEF if limit else PATIENCE
            try:
                step()
                cells[row] = "ok"
            except (AssertionError, AttributeError, KeyError, TypeError) as error:
                cells[row] = f"limit: {limit}" if limit else f"**wrong**: {error}"
            print(f"{name}: {row}: {cells[row]}", flush=True)
            if artifacts and row == "a double click on the title brings the strip":
                picture(desk, f"{artifacts}/desktop-{name}.png")
            if artifacts and "wrong" in cells[row]:
                picture(desk, f"{artifacts}/desktop-{name}-wrong-{len(cells)}.png")
    finally:
        desk.close()
    return cells


def main():
    artifacts = os.environ.get("VELMORA_ARTIFACTS")
    if artifacts:
        os.makedirs(artifacts, exist_ok=True)
    columns = {}
    for name in DESKTOPS:
        missing = DESKS[name].missing()
        if missing:
            print(f"skipped: {name} needs {', '.join(missing)}")
            continue
        columns[name] = walk(name, artifacts)
    if not columns:
        return SKIPPED
    text = table(columns)
    print(text)
    if artifacts:
        with open(f"{artifacts}/desktops-{'-'.join(columns)}.md", "w", encoding="utf-8") as file:
            file.write(text)
    return int(any("**wrong**" in cell for cells in columns.values() for cell in cells.values()))


if __name__ == "__main__":
    sys.exit(main())
