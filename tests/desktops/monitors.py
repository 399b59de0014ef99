"""The walk over two monitors of each density, which change and go while the program runs."""

from player import LIST, SETTINGS, Stranger
from scaled import FILM, Tour, desk, inside, near
from session import let_pass, quiet, rest, wait_for
from settings_window import DESKTOP_COLOUR, DESKTOP_FONT
from walk import need

STEPS = 20  # of a hand
BAR = 40  # pixels that a panel keeps

# What stands where: the primary monitor first.
SIDES = {"left": (("left", 0, 0), ("right", 1, 0)), "right": (("right", 1, 0), ("left", 0, 0)),
         "lower": (("lower", 0, 1), ("upper", 0, 0))}
SIZES = {1: (1280, 800), 1.5: (1600, 1200), 2: (1920, 1440)}
WAYS = {"1": ("toolkit", 1), "1.5 by Xft.dpi": ("resources", 1.5), "2 by QT_SCALE_FACTOR": ("toolkit", 2)}
COLUMNS = {f"{side}, {way}": (side, *told) for side in SIDES for way, told in WAYS.items()}


class MonitorWalk(Tour):
    def __init__(self, session):
        super().__init__(session)
        self.both = dict(session.monitors)
        self.panels = {}

    @property
    def other(self):
        return list(self.session.monitors.values())[1]

    def free(self):
        x, y, wide, high = self.monitor
        return x, y, wide, high - (BAR if self.monitor in self.panels else 0)

    def over_there(self, place):
        """The place on the other monitor that one on the primary has."""
        return place[0] + self.other[0] - self.monitor[0], place[1] + self.other[1] - self.monitor[1]

    # --- what a person does -------------------------------------------------------------------------

    def over_to_the_other(self):
        grip = self.take(self.main)
        there = self.over_there(grip)
        self.carry(grip, there)
        self.player.tool("mouseup", 1)
        self.stands(self.main, self.over_there(self.home), "dragged there it")
        self.touching()

    def answers_there(self):
        """Each docking puts the main window onto the primary monitor's columns: it goes over once more."""
        self.answers()
        home = need(rest(lambda: self.player.place(self.main)), "it never comes to rest")
        if self.monitor_of(self.main) == self.other:
            self.home = tuple(2 * a - b for a, b in zip(home, self.over_there(home)))
            self.touching()
        else:
            self.home = home
            self.over_to_the_other()

    def there_and_back(self):
        """Slowly over the border and back, without letting go; wherever the hand rests, both are under it."""
        grip = self.take(self.main)
        back = tuple(2 * a - b for a, b in zip(grip, self.over_there(grip)))
        there = self.player.place(self.main)
        try:
            for way in ((grip, back), (back, grip)):
                for step in range(1, STEPS + 1):
                    at = [round(a + (b - a) * step / STEPS) for a, b in zip(*way)]
                    self.player.tool("mousemove", *at)
                    # A manager that keeps windows whole on the screen may hold one of them.
                    if all(0 < a < side for a, side in zip(at, self.whole_screen())):
                        self.under_the_hand([a + b - c for a, b, c in zip(at, there, grip)])
        finally:
            self.player.tool("mouseup", 1)
        self.stands(self.main, self.over_there(self.home), "back again it")
        self.touching()

    def whole_screen(self):
        return [int(side) for side in self.session.screen.split("x")[:2]]

    def under_the_hand(self, place):
        def both():
            wide = self.player.size(self.main)[0]
            return near(self.player.place(self.main), place, 1) and \
                near(self.player.place(self.list), (place[0] + wide, place[1]), 2)
        need(wait_for(both), f"dragged to {place} main stands at {self.player.place(self.main)}, "
                             f"the list at {self.player.place(self.list)}")

    def back_from_the_other(self):
        grip = self.take(self.main)
        back = tuple(2 * a - b for a, b in zip(grip, self.over_there(grip)))
        self.carry(grip, back)
        self.player.tool("mouseup", 1)
        self.stands(self.main, self.home, "dragged back it")
        self.touching()

    def boxes_there(self):
        self.question()
        self.to_front(self.main)
        self.player.tool("mousemove", *self.middle(self.monitor))  # a hand may be anywhere
        area = self.box(lambda: self.desk.key("F7", self.main), "Escape")
        need(inside(area, self.other), f"the dialog for files opens at {area}")
        area = self.box(lambda: self.player.click(self.list, "addDir", form=LIST), "Escape")
        need(inside(area, self.other), f"the dialog for folders opens at {area}")

    def choices(self):
        """The settings' dialogs come up where their window stands, also where a hand has dragged it."""
        self.to_front(self.main)
        self.desk.key("ctrl+s", self.main)
        settings = need(self.player.form(SETTINGS), "no settings")
        try:
            self.player.click(settings, "lrcSet", form=SETTINGS)
            for there in (self.monitor, self.other):
                x, y, wide, high = there
                self.drag(settings, (x + wide // 8, y + high // 8))
                self.player.tool("mousemove", *self.middle(self.monitor))
                for name, place in (("fonts", DESKTOP_FONT), ("colours", DESKTOP_COLOUR)):
                    area = self.box(lambda place=place: self.player.click_at(settings, *place), "Escape")
                    need(inside(area, there), f"with the settings on {there} the dialog for {name} opens at {area}")
        finally:
            self.player.click(settings, "close", form=SETTINGS)
        need(self.player.gone(settings), "the settings stay")
        rest(lambda: self.player.place(self.main), still=1)
        self.drag(self.main, self.over_there(self.home))  # closing the settings is a docking, too
        self.touching()

    def drag(self, window, place):
        """A window to a place, by what is in sight of its title when most of it is beyond the edge."""
        grip = self.take(window, 380)
        at = self.player.place(window)
        self.carry(grip, [a + b - c for a, b, c in zip(grip, place, at)])
        self.player.tool("mouseup", 1)
        self.stands(window, place, "dragged, it")

    @staticmethod
    def middle(area):
        x, y, wide, high = area
        return x + wide // 2, y + high // 2

    def panel(self, monitor, name):
        """Another program's bar at the foot of a monitor, which no window is to lie over."""
        x, y, wide, high = monitor
        bar = Stranger(self.desk, x, y + high - BAR, wide, BAR, name=name)
        root = [int(side) for side in self.session.screen.split("x")[:2]]
        depth = root[1] - (y + high) + BAR
        for what, kind, value in (("_NET_WM_WINDOW_TYPE", "32a", "_NET_WM_WINDOW_TYPE_DOCK"),
                                  ("_NET_WM_STRUT_PARTIAL", "32c", f"0,0,0,{depth},0,0,0,0,0,0,{x},{x + wide - 1}")):
            quiet("xprop", "-id", bar.window, "-f", what, kind, "-set", what, value, env=self.session.env)
        return bar

    def panel_there(self):
        bar = self.panel(self.other, "there")
        try:
            rest(lambda: self.player.place(self.line_window), still=1)
            self.line_stands()
        finally:
            self.desk.stop(bar.child)

    def panel_here(self):
        if self.monitor[1] + self.monitor[3] < int(self.session.screen.split("x")[1]):
            return  # a bar in the midst of the screen's height is no strut
        bar = self.panel(self.monitor, "here")
        self.panels[self.monitor] = bar
        try:
            self.line_stands()
        finally:
            self.desk.stop(bar.child)
            self.panels.clear()
        self.line_stands()

    def film_from_the_other(self):
        x, y, wide, high = self.other
        home = x + wide // 8, y + high // 8
        let_pass(1.5)  # what comes sooner behind the way back is taken for the manager's answer
        self.player.move(self.film, *home)
        self.stretched(self.picture_in(self.film))
        self.whole()
        self.whole_back(home)

    def change(self, monitors):
        """Another primary monitor, or none but one."""
        self.session.monitors = dict(monitors)
        self.session.part(monitors)
        self.monitor = next(iter(monitors.values()))

    def other_is_primary(self):
        self.film_stops()  # once over the whole screen it lies above the main window
        before = self.player.place(self.main)
        self.change(dict(reversed(self.session.monitors.items())))
        self.line_stands()
        self.stands(self.main, before, "the main window")
        self.answers()

    def film_over_that(self):
        self.desk.key("F2", self.main)
        self.film = need(self.sized(self.design(*FILM)), "no window of its size")
        self.stretched(self.picture_in(self.film))
        self.whole()

    def strip_is_there(self):
        self.player.click(self.main, "playListButton")
        need(self.player.gone(self.list), "the list stays")
        rest(lambda: self.player.place(self.main), still=1)  # without the list it stands elsewhere
        self.mini_and_back()
        self.player.click(self.main, "playListButton")
        self.list = need(self.player.form(LIST), "no list")

    def one_goes(self):
        """The monitor that has the film, the line, the main window and the list is unplugged; what is left begins at
        the screen's corner."""
        wide, high = self.other[2:]
        self.go_to(wide, high)
        self.line_stands()

    def go_to(self, wide, high):
        env, name = self.session.env, f"{wide}x{high}"
        self.session.part({})
        quiet("xrandr", "--newmode", name, "65", *[str(wide + more) for more in (0, 24, 160, 320)],
              *[str(high + more) for more in (0, 3, 9, 38)], env=env)
        quiet("xrandr", "--addmode", "screen", name, env=env)
        quiet("xrandr", "--output", "screen", "--mode", name, env=env)
        self.session.monitors = {}
        self.monitor = (0, 0, wide, high)
        need(wait_for(lambda: quiet("xdotool", "getdisplaygeometry", env=env).split() == [str(wide), str(high)]),
             "the screen stays as it is")

    def film_is_whole_there(self):
        self.film = need(self.sized(self.monitor[2:]), "it is not as large as the monitor that is left")
        self.stands(self.film, (0, 0))
        self.stretched(self.whole_picture())
        self.key_to_film("Return")
        self.film = need(self.sized(self.design(*FILM)), "no way back")
        area = rest(lambda: self.area(self.film))
        need(area[0] < self.monitor[2] - 20 and area[1] < self.monitor[3] - 20, f"it comes back to {area}")
        self.stretched(self.picture_in(self.film))

    def main_is_there(self):
        area = need(rest(lambda: self.area(self.main)), "it never comes to rest")
        # How much of it must stay in sight is the manager's to say.
        need(area[0] < self.monitor[2] - 20 and area[1] < self.monitor[3] - 20, f"the main window is left at {area}")
        self.key_to_film("F4")
        self.to_front(self.main)
        self.player.move(self.main, 5, 150)
        self.answers()

    def strip_after(self):
        self.mini_and_back()

    def plugged_in(self):
        screen = [int(side) for side in self.session.screen.split("x")[:2]]
        env = self.session.env
        quiet("xrandr", "--output", "screen", "--mode", "{}x{}".format(*screen), env=env)
        need(wait_for(lambda: quiet("xdotool", "getdisplaygeometry", env=env).split() == [str(side) for side in screen]),
             "the screen stays small")
        self.change(self.both)
        self.line_stands()
        self.to_front(self.main)
        self.answers()

    def rows(self):
        yield "start, in the middle of the primary monitor", self.start
        yield "the list opens beside the main window", self.open_list
        yield "both dragged over to the other monitor, to the pixel", self.over_to_the_other
        yield "a button of the main window there", self.answers_there
        yield "slowly over the border and back in one drag", self.there_and_back
        yield "the menu opens there at the pointer", self.menu
        yield "boxes and dialogs open there", self.boxes_there
        yield "dialogs for fonts and colours open where the settings stand", self.choices
        yield "both dragged back", self.back_from_the_other
        yield "boxes open on the primary monitor", self.question
        yield "the strip at the primary monitor's edge, out of sight and back", self.strip_is_there
        yield "a track with a lyric", self.plays_the_track
        yield "the line is as wide as the primary monitor and ends at its foot", self.line
        yield "a panel on the other monitor leaves it there", self.panel_there
        yield "above a panel on its own monitor, and down again", self.panel_here
        yield "a film fills its window", self.film_shows
        yield "over the primary monitor, filled, and back", self.whole_and_back
        yield "from the other monitor over the primary one, and back", self.film_from_the_other
        yield "the other monitor becomes the primary one: the line goes over, the windows stay", self.other_is_primary
        yield "a film over that one", self.film_over_that
        yield "that one is unplugged: the line", self.one_goes
        yield "the film is over what is left, and comes back", self.film_is_whole_there
        yield "the main window and its buttons", self.main_is_there
        yield "the strip", self.strip_after
        yield "plugged in again: the line, and a button", self.plugged_in
        yield "end", self.end


class Border(MonitorWalk):
    """What was wrong at densities beyond one, by itself."""

    def question_over_the_border(self):
        """A box is dragged by its title to the primary monitor and stays under the hand."""
        before = set(self.player.boxes())
        self.player.click_at(self.list, 60, 60)
        self.desk.key("Delete", self.list)
        box = need(wait_for(lambda: next((each for each in self.player.boxes() if each not in before), None)),
                   "no question")
        x, y = need(rest(lambda: self.player.place(box)), "it never comes to rest")
        grip = self.player.point(box, 40, 12)
        self.player.tool("mousemove", *grip)
        self.player.tool("mousedown", 1)
        try:
            for step in range(1, STEPS + 1):
                by = (self.monitor[0] - self.other[0]) * step // STEPS
                self.player.tool("mousemove", grip[0] + by, grip[1])
                self.stands(box, (x + by, y), "dragged, it")
        finally:
            self.player.tool("mouseup", 1)
            self.desk.reply("n", box)
        need(self.player.gone(box), "it stays")

    def rows(self):
        for row, step in super().rows():
            yield row, step
            if step == self.boxes_there:
                break
        yield "a question is dragged over the border", self.question_over_the_border
        yield "end", self.end


def start(manager, column, kind=MonitorWalk):
    side, by, scale = COLUMNS[column]
    wide, high = SIZES[scale]
    monitors = {name: (right * wide, down * high, wide, high) for name, right, down in SIDES[side]}
    screen = max(x + wide for x, _, _, _ in monitors.values()), max(y + high for _, y, _, _ in monitors.values())
    return kind(desk(manager, screen, by, scale, monitors))
