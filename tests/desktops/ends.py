"""The walk to the end of a session that somebody thinks better of, and to one that is meant."""

import re

from player import said
from scaled import Tour, desk
from session import wait_for
from session_manager import REGISTER, SessionManager
from walk import need

COLUMNS = {"a log out": None}
CLOCK = re.compile(r"\d\d:\d\d")


class EndWalk(Tour):
    def __init__(self, session):
        super().__init__(session)
        self.session_manager = SessionManager(session.home)
        session.env["SESSION_MANAGER"] = self.session_manager.address()

    def start(self):
        super().start()
        need(wait_for(lambda: self.session_manager.told.count(REGISTER) == 2), "the session manager knows it not")
        need(wait_for(lambda: self.session_manager.answers() == 2), "it does not answer its first question")
        self.session_manager.is_saved()

    def goes_on(self, windows):
        need(self.player.child.poll() is None, "it has ended")
        need(set(self.player.windows()) == windows, "its windows are others")

        def clock():
            return next((text for window in self.player.told() for text in said(window) if CLOCK.match(text)), None)
        was = need(wait_for(clock), "no clock")
        need(wait_for(lambda: clock() not in (None, was)), "the track does not go on")
        with open(self.list_file(), newline="", encoding="utf-8") as file:
            need(file.read() == self.listed_before, "its list is another")

    def asked(self, logging_out):
        before = self.session_manager.answers()
        self.session_manager.asks_to_save(logging_out)
        need(wait_for(lambda: self.session_manager.answers() > before), "it does not answer")

    def plays(self):
        self.plays_the_track()
        with open(self.list_file(), newline="", encoding="utf-8") as file:
            self.listed_before = file.read()

    def saved_only(self):
        windows = set(self.player.windows())
        self.asked(False)
        self.session_manager.is_saved()
        self.goes_on(windows)

    def cancelled(self):
        windows = set(self.player.windows())
        for _ in range(2):
            self.asked(True)
            self.session_manager.cancels()
            self.goes_on(windows)
        self.answers()

    def cancelled_at_a_box(self):
        if self.list not in self.player.windows():
            self.answers()
            self.player.click(self.main, "playListButton")
            self.list = need(wait_for(lambda: next(
                (each for each in self.player.windows() if self.player.size(each) == (330, 412)), None)), "no list")

        def log_out():
            self.desk.key("Delete", self.list)
            need(wait_for(self.player.boxes), "no question")
            self.asked(True)
            self.session_manager.cancels()
        self.player.click_at(self.list, 60, 60)
        self.box(log_out, "n")
        self.goes_on(set(self.player.windows()))

    def ended(self):
        self.asked(True)
        self.session_manager.ends_it()
        need(self.player.ended(), "it goes on")
        need(self.player.child.returncode == 0, "it does not end in order")
        need(wait_for(lambda: self.session_manager.told.count(None) == 2), "it does not leave the session manager")
        with open(self.list_file(), newline="", encoding="utf-8") as file:
            need(file.read() == self.listed_before, "its list is another")

    def started_anew(self):
        Tour.start(self)
        self.player.click(self.main, "closeButton")
        need(self.player.ended() and self.player.child.returncode == 0, "it does not end in order")

    def rows(self):
        yield "start", self.start
        yield "a track with a lyric", self.plays
        yield "asked to save while nobody logs out, it goes on", self.saved_only
        yield "a log out that is cancelled: it goes on, with nothing lost", self.cancelled
        yield "while a question is up, too", self.cancelled_at_a_box
        yield "a log out that is meant ends it in order", self.ended
        yield "the next start", self.started_anew


def start(manager, _column):
    return EndWalk(desk(manager, (1280, 800)))
