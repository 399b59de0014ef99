"""A walk through the program on screens of any density and any number of monitors."""

import os
import re

from desks import DESKS
from films import COLUMNS, FilmSession, FilmTest, HEIGHT, PICTURE, WIDTH, make_film
from player import LIST, MAIN, MINI, PlayerTest, said, stairs
from session import let_pass, quiet, rest, wait_for
from walk import Walk, Walker, need

STRIP = int(MINI["form"][3])
FILM = (WIDTH, HEIGHT)
CONTROLS = 845 / 15  # pixels of the design below the picture


def near(one, other, far):
    return all(abs(a - b) <= far for a, b in zip(one, other))


def inside(inner, outer):
    (x, y, wide, high), (left, top, width, height) = inner, outer
    return left <= x and top <= y and x + wide <= left + width and y + high <= top + height


class Dense(FilmSession):
    """Of a desk: a screen of another size, and a density by one of the ways that there are."""
    by, scale = "toolkit", 1
    parts = ()  # the names of those there are
    called = ""  # what stands behind their names: the server knows no other way to change one
    monitors = {}  # places of parts of the screen, by name; the first is the primary one

    def _display(self):
        super()._display()
        self.part(self.monitors)

    def reds(self, y, left, right):
        """How red (0 to 255) each pixel of a stretch of a row is: letters are, and the ground is black."""
        at = self.first + int(y) * self.line
        return self.frame[at + 4 * int(left):at + 4 * int(right)][2::4]

    def part(self, monitors):
        """Monitors, the first of them the primary one; none for the screen as a whole."""
        before, now = self.names(), list(monitors)
        if len(now) > 1 and set(now) == set(self.parts):
            # None may be missing for a moment: a manager would push its windows onto the others.
            before = [name for name in before if name.rstrip("x") == now[0]]
            self.called += "x"
            self.set_monitor(now[0], monitors)
            self.forget(before)
        else:
            self.forget(before)
            for name, _ in sorted(monitors.items(), key=lambda each: each[1][:2]):
                self.set_monitor(name, monitors)
        self.parts = now

    def forget(self, names):
        for name in set(names).intersection(self.names()):
            quiet("xrandr", "--delmonitor", name, env=self.env)

    def names(self):
        """Of the monitors that somebody made."""
        return re.findall(r"^ *\d+: \*?(\w+) ", quiet("xrandr", "--listmonitors", env=self.env), re.M)

    def set_monitor(self, name, monitors):
        x, y, wide, high = monitors[name]
        star = "*" if name == next(iter(monitors)) else ""
        quiet("xrandr", "--setmonitor", star + name + self.called,
              f"{wide}/{wide * 254 // 960}x{high}/{high * 254 // 960}+{x}+{y}",
              "screen" if (x, y) == (0, 0) else "none", env=self.env)

    def start_desk(self):
        super().start_desk()
        if self.by == "toolkit":
            self.env["QT_SCALE_FACTOR"] = str(self.scale)
        else:
            with open(self.home + "/resources", "w", encoding="utf-8") as file:
                file.write(f"Xft.dpi: {round(96 * self.scale)}\n")
            quiet("xrdb", "-merge", self.home + "/resources", env=self.env)


def desk(name, screen, by="toolkit", scale=1, monitors=None):
    kind = type(name, (Dense, DESKS[name]),
                {"screen": "{}x{}x24".format(*screen), "by": by, "scale": scale, "monitors": monitors or {}})
    return kind()


class ScaledWalker(Walker):
    """Places in windows are those of the design."""

    def __init__(self, session):
        self.scale = session.scale
        super().__init__(session)

    def is_form(self, number, places):
        return near(self.size(number), [side * self.scale for side in places["form"][2:4]], 1)

    def point(self, number, x, y):
        return super().point(number, round(x * self.scale), round(y * self.scale))


class Tour(Walk):
    """What the walks on screens of all kinds do; a monitor's place is in the server's pixels."""

    def __init__(self, session):
        self.desk = self.session = session
        self.scale = session.scale
        screen = tuple(int(side) for side in session.screen.split("x")[:2])
        self.monitor = next(iter(session.monitors.values()), (0, 0, *screen))
        music = session.home + "/music"
        os.makedirs(music)
        tracks = [f"{music}/{name}" for name in ("track.wav", "film.mp4")]
        stairs(tracks[0], 600, step=0)
        with open(music + "/track.lrc", "w", encoding="utf-8") as file:
            for second in range(600):
                file.write(f"[{second // 60:02}:{second % 60:02}.00]Words to be seen {second}\n")
        make_film(tracks[1])
        PlayerTest.write_list(self, tracks)
        self.player = self.main = self.list = self.film = self.strip = self.line_window = None

    # --- what is looked at --------------------------------------------------------------------------

    def area(self, window):
        return (*self.player.place(window), *self.player.size(window))

    def design(self, *sides):
        return tuple(round(side * self.scale) for side in sides)

    def touching(self):
        def touch():
            x, y, wide, _ = self.area(self.main)
            return self.player.place(self.list) == (x + wide, y)
        need(wait_for(touch), f"list at {self.player.place(self.list)}, main at {self.area(self.main)}")

    def stands(self, window, place, what="it"):
        # A place between two pixels of the design is rounded.
        need(wait_for(lambda: near(self.player.place(window), place, 1)),
             f"{what} stands at {self.player.place(window)}, not at {tuple(place)}")

    def sized(self, size):
        return wait_for(lambda: next((each for each in self.player.windows()
                                      if near(self.player.size(each), size, 1)), None), 30)

    def to_front(self, window):
        quiet("xdotool", "windowactivate", "--sync", window, env=self.desk.env)

    def answers(self):
        """The main window's button for the list, twice."""
        for _ in range(2):
            was = self.player.form(LIST, 0.1)
            self.to_front(self.main)
            self.player.click(self.main, "playListButton")
            need(self.player.gone(was) if was else self.player.form(LIST), "a button of the main window does not answer")
        self.list = self.player.form(LIST, 0.1) or self.list

    def stretched(self, rect):
        """The film's columns divide the place, up to its edges."""
        need(wait_for(lambda: FilmTest.stretched_over(self, rect), 60), f"the picture does not fill {rect}: " + str(
            [self.session.pixel(rect[0] + rect[2] * (n + 0.5) / 4, rect[1] + rect[3] * 0.4) for n in range(len(COLUMNS))]))

    def picture_in(self, film):
        x, y = self.player.place(film)
        left, top, wide, high = (side * self.scale for side in PICTURE)
        return x + left, y + top, wide, high

    def whole_picture(self):
        x, y, wide, high = self.monitor
        return x, y, wide, high - CONTROLS * self.scale

    # --- what a person does -------------------------------------------------------------------------

    def start(self):
        first = ScaledWalker(self.desk)  # makes the settings that are set then
        self.desk.key("Escape", need(first.window(60), "no main window"))
        need(first.ended(), "it does not end by a key")
        PlayerTest.store(self, {"VideoInterface": (1, "1")})
        self.player = ScaledWalker(self.desk)
        self.main = need(self.player.window(60), "no main window of its size")
        self.home = need(rest(lambda: self.player.place(self.main)), "it never comes to rest")
        x, y, wide, high = self.area(self.main)
        free = self.free()
        middle = free[0] + (free[2] - wide) / 2, free[1] + (free[3] - high) / 2
        need(near((x, y), middle, 2 * self.scale), f"it stands at {x}, {y}, and the middle is {middle}")

    def free(self):
        """What panels leave of the primary monitor."""
        return self.monitor

    def take(self, window, column=150):
        grip = self.player.point(window, column, 12)
        self.player.tool("mousemove", *grip)
        self.player.tool("mousedown", 1)
        return grip

    def carry(self, grip, place, steps=16):
        """The held button from one place to another; a hand comes to rest by small steps."""
        for step in range(1, steps + 1):
            self.player.tool("mousemove", *(round(a + (b - a) * step / steps) for a, b in zip(grip, place)))
        for by in (1, 0):
            rest(lambda: (self.player.place(self.main), self.list and self.player.place(self.list)), 30, 0.1)
            self.player.tool("mousemove", place[0] + by, place[1])

    def out_and_back_everywhere(self):
        x, y, wide, high = self.monitor
        for out in ((x, None), (x + wide - 2, None), (None, y), (None, y + high - 2)):
            grip = self.take(self.main)
            far = tuple(at if to is None else to for at, to in zip(grip, out))
            self.carry(grip, far)
            self.carry(far, grip)
            self.player.tool("mouseup", 1)
            self.touching()
            self.stands(self.main, self.home, "back from an edge it")

    def enter_mini(self):
        self.player.click(self.main, "mini_Button")
        self.strip = need(self.player.form(MINI), "no strip")
        need(self.player.gone(self.main), "the main window stays")

    def strip_hides(self):
        x, y, wide, high = self.monitor
        self.player.tool("mousemove", x + wide // 2, y + high * 3 // 4)
        need(wait_for(lambda: self.player.place(self.strip)[1] <= y - STRIP * self.scale), "the strip stays")

    def strip_comes(self):
        column = self.player.place(self.strip)[0] + round(100 * self.scale)

        def along_the_edge():
            self.player.tool("mousemove", column + 1, self.monitor[1])
            self.player.tool("mousemove", column, self.monitor[1])
            return self.player.place(self.strip)[1] == self.monitor[1]
        need(wait_for(along_the_edge), "the strip is lost")
        self.player.tool("mousemove", column, self.monitor[1] + 20)

    def mini_and_back(self):
        self.enter_mini()
        left, _, wide, _ = self.area(self.strip)
        need(self.monitor[0] <= left and left + wide <= self.monitor[0] + self.monitor[2], f"the strip is at {left}")
        for _ in range(2):
            self.strip_hides()
            self.strip_comes()
        left, top, width, height = MINI["mini_Button"]
        self.click_strip(left + width / 2, top + height / 2)
        self.main = need(self.player.window(), "the main window does not come back")
        need(self.player.gone(self.strip), "the strip stays beside it")

    def menu(self):
        # At its right edge: each way back from mini mode puts it further to the left.
        self.player.click_at(self.main, -5, 150, button=3)
        menus = need(self.menus(), "no menu")
        at, area = self.player.point(self.main, -5, 150), self.area(menus[0])
        self.desk.key("Escape")
        need(inside(area, self.monitor_of(self.main)), f"it opens at {area}")
        # Where there is no room for it beside or below, it goes as far as it must.
        need(area[0] - 3 <= at[0] <= area[0] + area[2] + 3 and area[1] - 3 <= at[1] <= area[1] + area[3] + 3,
             f"at {at} it opens at {area}")
        need(wait_for(lambda: not self.menus(0.1)), "the menu stays")

    def menus(self, seconds=30):
        def look():
            return [each for each in self.player.windows() if self.player.unmanaged(each) and
                    60 * self.scale < self.player.size(each)[0] < 500 * self.scale and
                    self.player.size(each)[1] > 100 * self.scale]
        return wait_for(look, seconds)

    def monitor_of(self, window):
        x, y, wide, high = self.area(window)
        middle = (x + wide // 2, y + high // 2, 0, 0)
        return next((each for each in self.session.monitors.values() if inside(middle, each)), self.monitor)

    def plays_the_track(self):
        self.player.click(self.main, "nextButton")
        need(wait_for(lambda: any("Words to be seen" in text for window in self.player.told()
                                  for text in said(window)), 300), "no lyric")

    def line(self):
        self.player.click(self.main, "desktop_Lrc")
        self.line_window = need(wait_for(lambda: next(
            (each for each in self.player.windows() if self.player.unmanaged(each) and
             self.player.size(each)[0] >= self.monitor[2] - 20), None)), "no line")
        self.line_stands()
        need(wait_for(lambda: self.letters() > 200 * self.scale), "no letters are seen")

    def line_stands(self):
        x, _, wide, _ = self.monitor
        floor = self.free()[1] + self.free()[3]

        def fits():
            left, top, width, high = self.area(self.line_window)
            # A task bar's height counts once more, in twips.
            return (left, width) == (x, wide) and floor - 6 * self.scale <= top + high <= floor
        need(wait_for(fits), f"it is {self.area(self.line_window)} on {self.monitor}, free down to {floor}")

    def letters(self):
        """How many bright places there are in the middle of the line, where there is dark ground."""
        left, top, wide, high = self.area(self.line_window)
        return sum(value > 0x60 for y in range(2, high - 2, 2)
                   for value in self.session.reds(top + y, left + wide // 4, left + wide * 3 // 4))

    def line_goes(self):
        self.player.click(self.main, "desktop_Lrc")
        need(wait_for(lambda: self.letters() == 0), "its letters stay")

    def film_shows(self):
        self.player.click(self.main, "nextButton")
        self.film = need(self.sized(self.design(*FILM)), "no window of its size")
        self.stretched(self.picture_in(self.film))

    def key_to_film(self, key):
        self.to_front(self.film)
        self.desk.key(key, self.film)

    def whole(self):
        """Over the primary monitor."""
        self.key_to_film("Return")
        self.film = need(self.sized(self.monitor[2:]), "no full screen")
        self.stands(self.film, self.monitor[:2])
        self.stretched(self.whole_picture())
        # A key that comes sooner means the way there once more.
        rest(lambda: (self.area(self.film), quiet("xprop", "-id", self.film, "_NET_WM_STATE", env=self.desk.env)), still=1)
        if self.desk.tells_above:  # until then the keys mean the way there
            need(wait_for(lambda: "ABOVE" in quiet("xprop", "-id", self.film, "_NET_WM_STATE", env=self.desk.env), 30),
                 "it is not on top")
        else:
            let_pass(10)

    def whole_back(self, home=None):
        self.key_to_film("Return")
        self.film = need(self.sized(self.design(*FILM)), "no way back")
        if home:
            self.stands(self.film, home)
        self.stretched(self.picture_in(self.film))

    def whole_and_back(self):
        home = rest(lambda: self.player.place(self.film))
        self.whole()
        self.whole_back(home)

    def film_stops(self):
        self.key_to_film("F4")
        need(self.player.gone(self.film), "its window stays")

    def box(self, ask, reply, middle=None):
        """What an act brings up, and where: in the middle of a window, or anywhere on its monitor."""
        before = set(self.player.windows())
        ask()
        new = need(wait_for(lambda: next((each for each in self.player.windows() if each not in before and
                                          self.player.size(each)[0] > 100), None)), "nothing comes up")
        area = need(rest(lambda: self.area(new)), "it never comes to rest")
        self.desk.reply(reply, new)
        need(self.player.gone(new), f"it stays, {area}")
        return area

    def question(self):
        if self.list not in self.player.windows():
            self.player.click(self.main, "playListButton")
            self.list = need(self.player.form(LIST), "no list")
        self.player.click_at(self.list, 60, 60)
        x, y, wide, high = self.area(self.list)
        area = self.box(lambda: self.desk.key("Delete", self.list), "n")
        need(inside(area, self.monitor_of(self.list)), f"on the list at {(x, y, wide, high)} it opens at {area}")
        middle = area[0] + area[2] / 2, area[1] + area[3] / 2
        room = self.monitor_of(self.list)
        clamped = area[0] + area[2] >= room[0] + room[2] - 4 or area[1] + area[3] >= room[1] + room[3] - 4
        need(clamped or near(middle, (x + wide / 2, y + high / 2), 3 * self.scale), f"it opens at {area}")

    def open_file(self):
        area = self.box(lambda: self.player.click(self.main, "openFile_Button"), "Escape")
        need(inside(area, self.monitor_of(self.main)), f"it opens at {area}")
        return area

    def end(self):
        self.player.click(self.main, "closeButton")
        need(self.player.ended(), "it does not end")
        need(self.player.child.returncode == 0, "it does not end in order")
