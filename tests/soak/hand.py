"""A person's hand on the program through a long run: how each state is reached from any other."""

import os
import re
import subprocess
import urllib.parse

import media as media_module
from household import HouseholdTest
from listing import LIST_LEFT, LIST_TOP, ROW
from measures import MPRIS
from player import (ABOUT, CHECK, DRAG, FORM_SIZES, LIST, LYRIC_SEARCH, MAIN, MINI, PROGRAM, SETTINGS, VIDEO, Player, design,
                    stairs)
from session import let_pass, quiet, wait_for

BUILD = os.path.dirname(os.path.dirname(os.path.abspath(PROGRAM)))
OPEN = BUILD + "/tools/open/velmora-open"
EDITOR = design("src/lyrics/doLrcForm.form")
INFO = design("src/playlist/playInfo_Form.form")
SONGS = design("src/network/search_Song_Internet_Form.form")
WELCOME = design("src/network/welcomeForm.form")
FORM_SIZES.update(tuple(int(side) for side in form["form"][2:4]) for form in (EDITOR, INFO, SONGS, VIDEO, WELCOME))
WHOLE = (1280, 800)
SEEN_S = 60  # whatever is waited for; the machine may be busy with something else


class Fault(AssertionError):
    """What an act was to bring about did not come."""


def need(found, what):
    if not found:
        raise Fault(what)
    return found


class Hand(HouseholdTest):
    """Not a test itself: it has their ways with the program."""
    reads = False
    runTest = None

    def __init__(self):
        super().__init__("runTest")

    def begin_run(self, made):
        self.setUp()
        self.session.start_bus()
        self.watch_desktop()
        self.media = media_module.Media(made, self.music)
        for number in range(3):
            stairs(f"{self.served}/served tone {number}.wav", 3)
            with open(f"{self.served}/served tone {number}.lrc", "w", encoding="utf-8") as file:
                file.write("[00:00.50]words of the catalogue\n")
        self.serve()
        self.write_list(self.media.long + self.media.good)
        self.start_following()
        quiet("hsetroot", "-solid", "#2060a0", env=self.session.env)
        # The first start makes the settings; films have their window from the second one on.
        self.player, self.main = self.start()
        need(wait_for(lambda: self.status()[0], SEEN_S), "the player is not on the bus")
        self.open_tool("--quit")
        need(self.player.ended(SEEN_S), "the program does not end")
        self.store({"VideoInterface": (1, "1")})
        self.player, self.main = self.start()
        need(wait_for(lambda: self.status()[0], SEEN_S), "the player is not on the bus")

    def start_following(self):
        """Every medium that comes to be played is written down, however soon it ends: with its number, by which one that
        begins anew is told from the one before."""
        self.log = self.session.home + "/played"
        with open(self.log, "wb") as out:
            child = subprocess.Popen(["playerctl", "-p", "velmora", "--follow", "metadata", "--format",
                                      "{{mpris:trackid}} {{xesam:url}}"], env=self.session.env, stdout=out,
                                     stderr=subprocess.DEVNULL, start_new_session=True)
        self.session.children.append(child)

    def played(self):
        with open(self.log, encoding="utf-8") as file:
            return [urllib.parse.unquote(line.split(" ")[1]) for line in file.read().splitlines() if " " in line]

    def situation(self):
        """What else is worth knowing where an act has failed: what played last, where the pointer and the keyboard are."""
        said = [f"played: {path}" for path in self.played()[-4:]]
        for words in (("xdotool", "getmouselocation"), ("xdotool", "getwindowfocus"), ("xdotool", "getactivewindow"),
                      ("xprop", "-root", "_NET_CLIENT_LIST_STACKING"), (OPEN, "--status")):
            try:
                said.append(" ".join(words[:2]) + ": " + self.ask(*words).stdout.strip())
            except (OSError, subprocess.TimeoutExpired) as error:
                said.append(f"{words[0]}: {error}")
        return "\n".join(said)

    # --- what it tells ---------------------------------------------------------------------------

    def ask(self, *words):
        return subprocess.run(words, env=self.session.env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False, timeout=120)

    def open_tool(self, *words):
        return self.ask(OPEN, *words)

    def status(self):
        """The state, the title, and the place and length in seconds."""
        lines = self.open_tool("--status").stdout.splitlines()
        found = re.search(r"([\d:]+) / ([\d:]+)$", lines[-1]) if len(lines) > 2 else None

        def seconds(clock):
            total = 0
            for part in clock.split(":"):
                total = 60 * total + int(part)
            return total
        place = (seconds(found[1]), seconds(found[2])) if found else (0, 0)
        return (lines[0] if lines and lines[0] in ("Playing", "Paused", "Stopped") else None,
                lines[1] if len(lines) > 1 else "", *place)

    def volume(self):
        """From 0 to 1."""
        found = re.search(r"d ([\d.]+)", self.ask("busctl", "--user", "get-property", MPRIS, "/org/mpris/MediaPlayer2",
                                                  "org.mpris.MediaPlayer2.Player", "Volume").stdout)
        return float(found[1]) if found else -1

    def comes(self, state):
        need(wait_for(lambda: self.status()[0] == state, SEEN_S), f"it is {self.status()[0]}, not {state}")

    def answers(self):
        """Whether it still takes what is sent to its window, and tells of itself."""
        need(self.player.child.poll() is None, "the program has ended")
        need(self.player.took(self.main) and self.status()[0], "the program does not answer")

    # --- ways to a state -------------------------------------------------------------------------

    def front(self, window=None):
        if window is None:
            self.uncover()
        self.player.tool("windowactivate", "--sync", window or self.main)

    def uncover(self):
        """A film that was over the whole screen stays on top, in its window, too: nobody reaches what lies below."""
        film = self.film_window()
        if film and "_ABOVE" in self.ask("xprop", "-id", film, "_NET_WM_STATE").stdout:
            self.stop()

    def press(self, control):
        self.front()
        self.player.click(self.main, control)

    def key(self, key, window=None):
        self.session.key(key, window or self.main)

    def aside(self):
        """The pointer away from all that shows a tip."""
        self.player.tool("mousemove", 5, 790)

    def play(self, path):
        """From outside, as a file manager does it."""
        before = self.played()
        name = os.path.basename(path)
        self.open_tool(path)  # which gives up sooner than this does
        need(wait_for(lambda: any(each.endswith("/" + name) for each in self.played()[len(before):]), SEEN_S),
             f"{name} is not played")
        # What is new begins as if it had been chosen in the dialog: until it is saved no click is taken.
        need(wait_for(lambda: path in self.list_lines(), SEEN_S), f"{name} is not listed")
        self.answers()  # it is told of ahead of its window, if it is a film

    def play_long(self, chance, film=False):
        """Something that does not end meanwhile; a film shows its window, and hides nothing that is asked for."""
        path = self.media.film if film else chance.choice(self.media.long) if chance else self.media.long[0]
        state, title, place, length = self.status()
        if film or "film" in title or state != "Playing" or length < media_module.LONG_S - 5 or place > media_module.LONG_S - 90:
            self.stop()
            self.play(path)
        self.comes("Playing")
        # Until its sound has faded in, what asks for another place of it may still mean the one before.
        need(wait_for(lambda: self.status()[2] >= 1, SEEN_S), "the track stands still")

    def undisturbed(self, chance):
        """Nothing that plays ends meanwhile: the next might be a film, whose window takes the click."""
        if chance.random() < 0.5:
            self.play_long(chance)
        else:
            self.stop()

    def stop(self):
        """Within the fade a stop leaves the player in use, so that it is asked for until it is done."""
        def stopped():
            if self.status()[0] == "Stopped":
                return True
            self.open_tool("--stop")
            return False
        need(wait_for(stopped, SEEN_S, 0.2), "it does not stop")
        need(wait_for(lambda: not self.film_window(), SEEN_S), "the film's window stays")

    def film_window(self):
        """A film comes up over the whole screen if the last one was there."""
        sizes = {tuple(int(side) for side in VIDEO["form"][2:4]), self.screen()}
        return next((number for number in self.player.windows()
                     if self.player.size(number) in sizes and not self.player.unmanaged(number)), None)

    def shown(self, form):
        return self.player.form(form, 0.05)

    def opened_by(self, control, form):
        """A press is lost where the next film's window comes up between the hand and the button."""
        def look():
            if not self.shown(form):
                if self.film_window():  # over the whole screen it hides every button
                    self.stop()
                self.press(control)
                self.player.done(self.main)  # a second press would close what the first one opens
            return self.player.form(form, 5)
        return need(wait_for(look, SEEN_S), f"{control} opens nothing")

    def close_by(self, window, form, control="close"):
        self.front(window)
        self.player.click(window, control, form=form)
        need(self.player.gone(window, SEEN_S), "the window stays")

    def list_window(self):
        """Over a track that lasts. What is played from outside is a row at once but saved only behind its fade."""
        self.play_long(None)
        begun = self.status()[2]
        need(wait_for(lambda: self.status()[2] >= begun + 3, SEEN_S), "the track stands still")
        rows = self.opened_by("playListButton", LIST)
        self.front(rows)
        return rows

    def close_list(self):
        """By the main window's button, which brings that one back to the middle of the screen."""
        rows = self.shown(LIST)
        if rows:
            self.press("playListButton")
            need(self.player.gone(rows, SEEN_S), "the list stays")

    def reply_box(self, key):
        """Answers whatever box is up."""
        box = need(wait_for(self.player.boxes, SEEN_S), "no box comes up")[0]
        self.session.reply(key, box)
        need(self.player.gone(box, SEEN_S), "the box stays")

    def row_at(self, rows, row):
        return LIST_LEFT + 60, LIST_TOP + ROW * row + ROW // 2

    def press_row(self, rows, row, button=1, times=1):
        self.front(rows)
        self.player.click_at(rows, *self.row_at(rows, row), button, times)

    def count_becomes(self, count):
        need(wait_for(lambda: len(self.list_lines()) == count, SEEN_S),
             f"{len(self.list_lines())} rows, not {count}")

    def drag_files(self, rows, row, paths):
        """Drops files as another program; whether they were taken."""
        data = "".join("file://" + urllib.parse.quote(os.fsencode(path)) + "\r\n" for path in paths)
        at = self.player.point(rows, *self.row_at(rows, row))
        done = subprocess.run([DRAG, rows, str(at[0]), str(at[1]), "text/uri-list"], input=data.encode(),
                              env=self.session.env, stdout=subprocess.PIPE, check=False, timeout=120)
        return done.returncode == 0

    def answer_boxes_until_gone(self, window):
        """A question may be followed by a word that nothing was found."""
        def gone():
            for box in self.player.boxes():
                self.session.reply("Return", box)
            return window not in self.player.windows()
        need(wait_for(gone, SEEN_S), "the question stays")

    def line_shows(self):
        """Whether letters stand on the lowest part of the screen, which nothing else reaches. The line's window is
        there all the time, as wide as the screen."""
        width, height = self.screen()
        return len(set(subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", f"{width}x40+0+{height - 50}", "-depth", "8", "gray:-"],
            env=self.session.env, stdout=subprocess.PIPE, check=False).stdout)) > 1

    def line_on(self):
        """Of a track that has words for each second; they are looked for once the sound has faded in."""
        begun = self.status()[2]
        need(wait_for(lambda: self.status()[2] >= begun + 3, SEEN_S), "the track stands still")
        if not self.line_shows():
            self.press("desktop_Lrc")
        need(wait_for(self.line_shows, SEEN_S), "no line on the desktop")

    def line_off(self):
        if self.line_shows():
            self.press("desktop_Lrc")
        need(wait_for(lambda: not self.line_shows(), SEEN_S), "the line stays")

    def rest(self):
        """Stopped, the main window alone, and time for what ends behind that."""
        self.stop()
        self.close_list()
        self.line_off()
        self.front()
        self.aside()
        self.answers()
        let_pass(2)

    def recover(self):
        """After a fault: whatever is open goes, so that one fault does not bring the next ones."""
        if self.screen() != WHOLE:
            quiet("xrandr", "--output", "screen", "--mode", "1280x800", env=self.session.env)
        strip = self.shown(MINI)
        if strip:
            self.player.tool("mousemove", self.player.place(strip)[0] + 40, 0)
            let_pass(1)
            self.player.click(strip, "mini_Button", form=MINI)
        for number in self.player.windows():
            if number != self.main and not self.player.unmanaged(number):
                quiet("wmctrl", "-i", "-c", number, env=self.session.env)
                self.player.gone(number, 2)
        self.main = need(self.player.window(SEEN_S), "the main window is lost")
        self.player.move(self.main, 400, 290)
        self.stop()

    def second_start(self):
        second = Player(self.session)
        box = need(wait_for(second.boxes, SEEN_S), "a second start says nothing")[0]
        self.session.reply("Return", box)
        need(second.ended(SEEN_S), "a second start stays")
        self.session.children.remove(second.child)


__all__ = ["ABOUT", "CHECK", "EDITOR", "Fault", "Hand", "INFO", "LIST", "LYRIC_SEARCH", "MAIN", "MINI", "SEEN_S", "SETTINGS",
           "SONGS", "VIDEO", "WELCOME", "WHOLE", "need"]
