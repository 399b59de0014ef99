"""The walk in front of a locker of the screen that raises itself above all."""

import os
import re
import sys

from locker import COLOUR
from player import MINI, said
from scaled import FILM, Tour, desk
from session import over, quiet, rest, wait_for
from walk import need

COLUMNS = {"a locker that raises itself": None}
CLOCK = re.compile(r"\d\d:\d\d")
LOOKED_S = 4
PATIENCE = 3  # percent of a processor that the program may take more than before


class LockedWalk(Tour):
    def strip_stays(self):
        self.enter_mini()
        self.strip_comes()
        self.player.click(self.strip, "auto_Hide_Lock_False", form=MINI)
        self.player.tool("mousemove", 640, 400)
        self.seen_before = need(over(self.desk, self.player.child.pid, LOOKED_S), "no figures")

    def colours(self):
        """Of a place in the strip, one in the line's window, and the middle of the screen."""
        x, y, wide, high = self.area(self.strip)
        return [self.session.pixel(x + wide * n // 8, y + high // 2) for n in range(1, 8)]

    def is_hidden(self):
        lock = tuple(COLOUR >> shift & 0xFF for shift in (16, 8, 0))
        return all(colour == lock for colour in self.colours()) and self.bright() == 0

    def bright(self):
        return self.letters()

    def is_locked(self):
        self.told = self.desk.home + "/locker"
        self.locker = self.desk.spawn([sys.executable, os.path.join(os.path.dirname(__file__), "locker.py"), self.told])
        need(wait_for(self.is_hidden), "the strip or the line is seen")

    def raises(self):
        return os.path.getsize(self.told)

    def no_fight(self):
        first = self.raises()
        figures = over(self.desk, self.player.child.pid, LOOKED_S)
        count = self.raises() - first
        print(f"{self.desk.name}: locked, it came up {count} times in {LOOKED_S} s; the program took "
              f"{figures['cpu']:.1f} % of a processor, before {self.seen_before['cpu']:.1f} %; the screen's server "
              f"{figures['x']:.1f} %, before {self.seen_before['x']:.1f} %")
        # Each line of a lyric may be one.
        need(count <= 3 * LOOKED_S, f"it had to come up {count} times in {LOOKED_S} s")
        need(figures["cpu"] < self.seen_before["cpu"] + PATIENCE and figures["x"] < self.seen_before["x"] + PATIENCE,
             f"processor time: {figures}, and before {self.seen_before}")
        need(wait_for(self.is_hidden), "the strip or the line is seen")

    def clock(self):
        return next((text for window in self.player.told() for text in said(window) if CLOCK.match(text)), None)

    def next_track(self):
        """A media key works there; the track that begins has both put above the other windows."""
        first = self.raises()
        quiet("playerctl", "next", env=self.desk.env)
        need(self.sized(FILM), "no film begins")
        need(rest(self.raises, still=2), "it comes up again and again")
        count = self.raises() - first
        print(f"{self.desk.name}: locked, it came up {count} times for the next track")
        need(count == 0, f"it had to come up {count} times")
        need(wait_for(self.is_hidden), "the strip or the line is seen")
        quiet("playerctl", "previous", env=self.desk.env)

    def goes_on(self):
        was = need(wait_for(self.clock), "no clock")
        need(wait_for(lambda: self.clock() not in (None, was)), "the clock stands still")
        for key in ("shift",):  # what a person types at a locker reaches nobody
            self.desk.key(key)
        need(wait_for(self.is_hidden), "the strip or the line is seen")

    def is_unlocked(self):
        self.desk.stop(self.locker)
        need(wait_for(lambda: self.letters() > 200, 60), "the line does not come back")
        need(wait_for(lambda: len(set(self.colours())) > 1), "the strip does not come back")

    def works_again(self):
        self.strip_comes()
        self.player.click(self.strip, "auto_Hide_Lock_True", form=MINI)
        self.strip_hides()
        self.strip_comes()
        left, top, width, height = MINI["mini_Button"]
        self.click_strip(left + width / 2, top + height / 2)
        self.main = need(self.player.window(), "the main window does not come back")

    def rows(self):
        yield "start", self.start
        yield "a track with a lyric", self.plays_the_track
        yield "the line", self.line
        yield "the strip, held at the edge", self.strip_stays
        yield "the screen is locked: nothing of both is seen", self.is_locked
        yield "neither fights for the top", self.no_fight
        yield "what ticks goes on", self.goes_on
        yield "a media key begins the next track: the locker stays on top", self.next_track
        yield "unlocked, both are back", self.is_unlocked
        yield "the strip slides and its button brings the main window", self.works_again
        yield "end", self.end


def start(manager, _column):
    return LockedWalk(desk(manager, (1280, 800)))


