"""One run of the real program on a private screen: its windows, boxes and menus, keys and mouse.

A test script that imports this is called as

    test_X.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import functools
import glob
import json
import math
import os
import re
import shlex
import sqlite3
import struct
import subprocess
import sys
import unittest
import wave

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import designs  # noqa: E402
import session  # noqa: E402
from session import RATE, Recorder, Session, quiet, wait_for  # noqa: E402

PROGRAM, PIECE, SOURCE, DRAG = sys.argv[1:5]
if DRAG:  # scripts that only look at the program have none of the tests' tools
    session.TAKEN = os.path.join(os.path.dirname(os.path.abspath(DRAG)), "velmora_taken")
WORDS = os.path.join(os.path.dirname(os.path.abspath(DRAG)), "velmora_words")
# Where everything may be read and written, the program runs without that right.
PLAIN_USER = ["setpriv", "--bounding-set", "-dac_override,-dac_read_search"]
APP = "Program Files/Norvane软件/Velmora"
TITLE = "Velmora 2011"
HELP_PAGE = "Velmora 是一款小巧的媒体播放器"  # its first words
# What boxes and dialogs say.
PICK_FILE = "添加媒体文件"
PICK_FOLDER = "请选择一个文件夹"
PICK_FONT = "Select Font"
PICK_COLOUR = "Select Color"
NO_SOUND_CARD = "您的系统未安装声卡或声卡驱动无效"


def design(name):
    """Rectangles of a form's own controls, in pixels, by control name."""
    return designs.places(PIECE, SOURCE, name)


MAIN = design("src/playback/Main.form")
SPLASH = design("src/playback/startLoad_Form.form")
MINI = design("src/playback/miniForm.form")
LIST = design("src/playlist/playList_Form.form")
ASK = design("src/playlist/listControl_Form.form")
SETTINGS = design("src/settings/playSetForm.form")
ABOUT = design("src/ui/aboutForm.form")
VIDEO = design("src/playback/VideoScreen_Form.form")
CHECK = design("src/playback/check_SoundDriver_Form.form")
LYRIC_SEARCH = design("src/network/search_Lrc_Internet_Form.form")  # the song search is as large
WELCOME = design("src/network/welcomeForm.form")
FORM_SIZES = {tuple(int(side) for side in form["form"][2:4])
              for form in (MAIN, SPLASH, MINI, LIST, ASK, SETTINGS, ABOUT, CHECK, LYRIC_SEARCH,
                           WELCOME)}


def said(control):
    """The names and texts of what shows in a window or control as told to assistive technology."""
    if control["showing"]:
        yield from (text for text in (control["name"], control.get("text")) if text)
    for child in control["children"]:
        yield from said(child)


@functools.lru_cache(maxsize=None)
def tone_second(frequency, level):
    """A second of a tone of so many whole Hz, so that another one may follow."""
    frames, phase = bytearray(), 0.0
    for _ in range(RATE):
        phase += 2 * math.pi * frequency / RATE
        value = int(32767 * level * math.sin(phase))
        frames += struct.pack("<hh", value, value)
    return bytes(frames)


def stairs(path, seconds, level=0.5, base=200, step=100):
    """A WAV whose tone tells the second: base + second * step Hz."""
    with wave.open(path, "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(b"".join(tone_second(base + number * step, level)
                                 for number in range(seconds)))


def pitch(samples):
    """Frequency by rising zero crossings of one channel."""
    crossings = [n for n in range(1, len(samples)) if samples[n - 1] < 0 <= samples[n]]
    if len(crossings) < 2:
        return 0.0
    return RATE * (len(crossings) - 1) / (crossings[-1] - crossings[0])


class Player:
    """One run of the program in a session."""

    def __init__(self, session, program=PROGRAM):
        self.session = session
        self.screen_width = int(session.screen.split("x")[0])
        self.errors = open(session.home + "/errors.log", "ab")
        self.child = subprocess.Popen([os.path.abspath(program)], env=session.env,
                                      stderr=self.errors, stdout=subprocess.DEVNULL,
                                      start_new_session=True, cwd=session.home)
        self.errors.close()
        session.children.append(self.child)

    def tool(self, *words):
        return quiet("xdotool", *[str(word) for word in words], env=self.session.env)

    def situation(self):
        """What is worth knowing where it does not come up."""
        with open(self.session.home + "/errors.log", encoding="utf-8", errors="replace") as file:
            said = file.read()
        waits = ""
        for thread in glob.glob(f"/proc/{self.child.pid}/task/*/"):
            for name in ("comm", "wchan"):
                try:
                    with open(thread + name, encoding="utf-8") as file:
                        waits += file.read().strip() + " "
                except OSError:
                    pass
        return f"status {self.child.poll()}, waits {waits}, said {said!r}, screen:\n" + \
            quiet("xwininfo", "-root", "-tree", env=self.session.env)

    def windows(self):
        """The program's visible windows."""
        return self.tool("search", "--onlyvisible", "--pid", self.child.pid).split()

    def form(self, places, seconds=30):
        """The visible window of a form, known by the size of its design."""
        return wait_for(lambda: next((number for number in self.windows()
                                      if self.is_form(number, places)), None), seconds)

    def is_form(self, number, places):
        return self.size(number) == tuple(int(side) for side in places["form"][2:4])

    def gone(self, number, seconds=30):
        """Once a window is no longer there, and the others take input again."""
        gone = wait_for(lambda: number not in self.windows(), seconds)
        for other in self.windows()[:1]:
            self.took(other)
        return gone

    def window(self, seconds=30):
        """The main window (the splash has the same title)."""
        return self.form(MAIN, seconds)

    def others(self, unmanaged):
        """The windows that are no forms: boxes and dialogs, or what the manager has no part in."""
        found = []
        for number in self.windows():
            width, height = self.size(number)
            if (width, height) not in FORM_SIZES and width > 100 and height > 40 and \
                    self.unmanaged(number) == unmanaged:
                found.append(number)
        return found

    def unmanaged(self, number):
        return "Override Redirect State: yes" in quiet("xwininfo", "-id", number,
                                                       env=self.session.env)

    def boxes(self):
        """The message boxes and dialogs that are up, whatever they say."""
        return self.others(unmanaged=False)

    def box(self, says, seconds=30):
        """The message box that says this, or the dialog with this in its title."""
        assert "QT_LINUX_ACCESSIBILITY_ALWAYS_ON" in self.session.env, "these tests do not read"
        return wait_for(lambda: next((number for number in self.boxes()
                                      if says in self.title(number) or
                                      self.says(number, says, 0.1)), None), seconds)

    def stays_away(self, look, window):
        """Whether `look` finds nothing once all that was sent to the window is done, and the window
        manager has shown what it brought up."""
        return self.done(window) and not look()

    def done(self, window):
        """Once all that was sent to a window is done, and the window manager did its part of it."""
        return self.took(window) and self.took(window)

    def menus(self, count=1, seconds=30):
        """The open popup menus, outermost first, once there are so many; None if there never are."""
        def look():
            # The desktop's line of lyric, empty or not, is as wide as the screen.
            found = [number for number in self.others(unmanaged=True)
                     if self.size(number)[0] < self.screen_width]
            return (sorted(found, key=int),) if len(found) == count else None
        found = wait_for(look, seconds)
        return found[0] if found else None

    def title(self, number):
        return self.tool("getwindowname", number)

    def geometry(self, number):
        out = self.tool("getwindowgeometry", "--shell", number)
        return {key: int(value) for key, value in re.findall(r"(\w+)=(-?\d+)", out)}

    def place(self, number):
        shape = self.geometry(number)
        return shape.get("X"), shape.get("Y")

    def size(self, number):
        shape = self.geometry(number)
        return shape.get("WIDTH", 0), shape.get("HEIGHT", 0)

    def move(self, number, x, y):
        """Moves a window, and returns once it stands there: xdotool takes any move for this one."""
        self.tool("windowmove", number, x, y)
        assert wait_for(lambda: self.place(number) == (x, y)), \
            f"the window stands at {self.place(number)}, not at {(x, y)}"

    def point(self, number, x, y):
        """A place in a window as a place on the screen; negative ones count from its far edges."""
        shape = self.geometry(number)
        return (shape["X"] + int(x) + (shape["WIDTH"] if x < 0 else 0),
                shape["Y"] + int(y) + (shape["HEIGHT"] if y < 0 else 0))

    def click_at(self, number, x, y, button=1, times=1):
        self.tool("mousemove", *self.point(number, x, y))
        if times == 1:
            self.tool("click", button)
        else:
            session.click_in_one_breath(times, button, self.session.env)

    def click(self, number, control, share=0.5, button=1, form=None):
        left, top, width, height = (form or MAIN)[control]
        self.click_at(number, left + width * share, top + height / 2, button)

    def picture(self, number, left, top, width, height):
        """What the screen shows of a part of a window: a byte of grey for each pixel, in rows."""
        x, y = self.place(number)
        return subprocess.run(
            ["import", "-silent", "-window", "root", "-crop",
             f"{int(width)}x{int(height)}+{int(x + left)}+{int(y + top)}", "-depth", "8", "gray:-"],
            env=self.session.env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            check=False).stdout

    def look(self, number, control, form=None):
        return self.picture(number, *(form or MAIN)[control])

    def told(self, place=()):
        """What the program tells assistive technology: its windows, or the one at a place, each a
        tree of controls."""
        return json.loads(quiet(WORDS, str(self.child.pid), *[str(side) for side in place],
                                env=self.session.env) or "[]")

    def words(self, number, seconds=30):
        """Every name and text that shows in a window, in order; none if it tells of none."""
        def look():
            found = self.told((*self.place(number), *self.size(number)))
            return list(said(found[0])) if found else None
        return wait_for(look, seconds) or []

    def says(self, number, text, seconds=30):
        """Whether it comes to stand in a window."""
        return bool(wait_for(lambda: any(text in each for each in self.words(number, 1)), seconds))

    def took(self, number):
        """Once the program has begun to handle every key and click sent before."""
        return session.taken(number, env=self.session.env)

    def ended(self, seconds=30):
        return wait_for(lambda: self.child.poll() is not None, seconds)


class PlayerTest(unittest.TestCase):
    sound = True
    reads = False  # whether it reads what the windows say
    session_kind = Session

    def setUp(self):
        self.session = self.session_kind(window_manager=True, sound=self.sound)
        self.addCleanup(self.session.close)
        if self.reads:
            self.session.start_words()
        self.music = self.session.home + "/music"
        os.makedirs(self.music)

    def list_file(self):
        return f"{self.session.env['XDG_DATA_HOME']}/velmora/{APP}/List/zkPlayList.m3u"

    def write_list(self, paths):
        os.makedirs(os.path.dirname(self.list_file()), exist_ok=True)
        with open(self.list_file(), "w", newline="", encoding="utf-8",
                  errors="surrogatepass") as file:
            file.write("".join(path + "\r\n" for path in paths))

    def read_list(self):
        # What is no text in a file's name stands in the list as a lone half of a pair.
        with open(self.list_file(), newline="", encoding="utf-8", errors="surrogatepass") as file:
            return file.read()

    def list_lines(self):
        return self.read_list().split("\r\n")[:-1]

    def assert_list(self, paths):
        """The saved list holds these, in this order."""
        self.assertTrue(wait_for(lambda: self.list_lines() == paths, 30),
                        f"the list is {self.list_lines()} instead of {paths}")

    def write_into(self, player, ask, text):
        """Writes a text into the box of one line."""
        player.click(ask, "jieGuo", form=ASK)
        quiet("xdotool", "key", "ctrl+a", "Delete", env=self.session.env)
        if text:
            quiet("xdotool", "type", "--delay", "8", text, env=self.session.env)

    def type_into(self, dialog, text):
        """Types a text where a box or dialog has its cursor, and confirms it."""
        quiet("xdotool", "windowfocus", "--sync", dialog, env=self.session.env)
        quiet("xdotool", "key", "ctrl+a", env=self.session.env)
        quiet("xdotool", "type", "--delay", "8", text, env=self.session.env)
        quiet("xdotool", "key", "Return", env=self.session.env)

    def assert_box(self, player, says, seconds=30):
        """The box or dialog that comes up and says this."""
        box = player.box(says, seconds)
        self.assertTrue(box, f"no box comes up that says {says}, but "
                             f"{[player.words(each, 1) for each in player.boxes()]}")
        return box

    def answer(self, player, key, says, seconds=30):
        """Answers the box that comes up and says this, and waits until it has gone."""
        box = self.assert_box(player, says, seconds)
        self.session.reply(key, box)
        self.assertTrue(player.gone(box), "the box stays")

    def plain_program(self):
        """The program as one who is no superuser: what may not be read is not read."""
        script = self.session.home + "/plain"
        before = [] if os.geteuid() != 0 else PLAIN_USER
        if before and subprocess.run(before + ["true"], check=False,
                                     stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("a right cannot be given up here")
        with open(script, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\nexec " + " ".join(before + [shlex.quote(PROGRAM)]) + "\n")
        os.chmod(script, 0o755)
        return script

    def introduce(self, at):
        """Tells the program ahead of its first start where its hosts are; needs the catalogue's
        program, named by VELMORA_CATALOGUE."""
        folder = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        os.makedirs(folder, exist_ok=True)
        subprocess.run([os.environ["VELMORA_CATALOGUE"], "--introduce",
                        folder + "/registry.sqlite", "--at", at], check=True,
                       stdout=subprocess.DEVNULL)

    def registry_file(self):
        folder = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        for name in os.listdir(folder):
            with open(f"{folder}/{name}", "rb") as file:
                if file.read(15) == b"SQLite format 3":
                    return f"{folder}/{name}"
        return None

    def stored(self, name):
        path = self.registry_file()
        if not path:
            return None
        database = sqlite3.connect(path)
        try:
            row = database.execute(
                "select data from entries join keys on keys.id = entries.key "
                "where keys.folded like ? and entries.folded = ?",
                ("%PLAYSET", name.upper())).fetchone()
        finally:
            database.close()
        if row is None:
            return None
        return row[0].decode() if isinstance(row[0], bytes) else row[0]

    def store(self, values):
        """Sets what a program that has ended finds in its settings: a type and a value by name."""
        database = sqlite3.connect(self.registry_file())
        with database:
            (key,) = database.execute("select id from keys where folded like '%PLAYSET'").fetchone()
            for name, (kind, data) in values.items():
                size = 4 if kind == 4 else len(data)
                database.execute("insert or replace into entries values (?, ?, ?, ?, ?, ?)",
                                 (key, name.upper(), name, kind, size, data))
        database.close()

    def assert_stored(self, name, value):
        self.assertTrue(wait_for(lambda: self.stored(name) == value),
                        f"{name} is {self.stored(name)!r}, not {value!r}")

    def watch_desktop(self):
        """Whatever is handed to the desktop is written down instead."""
        folder = self.session.home + "/bin"
        os.makedirs(folder)
        self.opened_log = self.session.home + "/opened"
        with open(folder + "/xdg-open", "w") as script:
            script.write(f'#!/bin/sh\nprintf "%s\\n" "$1" >> "{self.opened_log}"\n')
        os.chmod(folder + "/xdg-open", 0o755)
        self.session.env["PATH"] = folder + ":" + self.session.env["PATH"]

    def opened(self):
        try:
            with open(self.opened_log, errors="surrogateescape") as log:
                return log.read().splitlines()
        except FileNotFoundError:
            return []

    @staticmethod
    def begins(path, beginning):
        with open(path, "rb") as file:
            return file.read(len(beginning)) == beginning

    def screen(self):
        told = quiet("xdotool", "getdisplaygeometry", env=self.session.env).split()
        return int(told[0]), int(told[1])

    def resize(self, width, height):
        """To a smaller resolution than it began with, or back."""
        env = self.session.env
        name = f"{width}x{height}"
        quiet("xrandr", "--newmode", name, "65", *[str(width + more) for more in (0, 24, 160, 320)],
              *[str(height + more) for more in (0, 3, 9, 38)], env=env)
        quiet("xrandr", "--addmode", "screen", name, env=env)
        quiet("xrandr", "--output", "screen", "--mode", name, env=env)
        self.assertTrue(wait_for(lambda: self.screen() == (width, height), 30))

    def start(self, program=PROGRAM):
        player = Player(self.session, program)
        window = player.window()
        if not window:
            self.fail(f"the main window does not come up: {player.situation()}")
        return player, window

    def start_with_list(self, program=PROGRAM):
        """Returns once the two windows stand side by side and the list has the keyboard."""
        player, main = self.start(program)
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assertTrue(rows, "the list does not come up")
        self.assert_touching(player, main, rows)
        self.assertTrue(wait_for(lambda: player.tool("getactivewindow") == rows, 30),
                        "the list does not get the keyboard")
        return player, main, rows

    def lock_strip(self, player, strip):
        """The mini strip stays at the edge: while the pointer is below it, it slides away."""
        player.tool("mousemove", player.place(strip)[0] + 40, 0)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == 0, 30), "the strip does not come back")
        player.click(strip, "auto_Hide_Lock_False", form=MINI)

    def assert_touching(self, player, main, rows):
        def touch():
            (x, y), (list_x, list_y) = player.place(main), player.place(rows)
            return (list_x, list_y) == (x + int(MAIN["form"][2]), y)
        self.assertTrue(wait_for(touch, 30), f"the list at {player.place(rows)} does not touch the "
                                             f"main window at {player.place(main)}")

    def assert_title(self, player, window, text, seconds=30):
        self.assertTrue(wait_for(lambda: text in player.title(window), seconds),
                        f"the title never shows {text!r} but {player.title(window)!r}")

    def now_playing(self, recorder, seconds=30, loud_blocks=20):
        """The frequency of the last quarter second, once it is loud all through."""
        def look():
            blocks = [block for _, block in recorder.blocks[-loud_blocks:]]
            if len(blocks) < loud_blocks or not all(Recorder.loud(block, 200) for block in blocks):
                return None
            data = b"".join(blocks)
            return (pitch(struct.unpack(f"<{len(data) // 2}h", data)[::2]),)
        found = wait_for(look, seconds, 0.05)
        return found[0] if found else None


class Stranger:
    """Another program's plain window (xev), which tells what presses reach it."""

    def __init__(self, session, x, y, width, height, name="Event Tester"):
        self.session = session
        self.log = f"{session.home}/{name}.log"
        with open(self.log, "wb") as log:
            self.child = subprocess.Popen(
                ["stdbuf", "-oL", "xev", "-name", name, "-event", "button", "-event", "structure",
                 "-geometry", f"{width}x{height}+{x}+{y}"], env=session.env, stdout=log,
                stderr=subprocess.DEVNULL, start_new_session=True)
        session.children.append(self.child)
        self.window = wait_for(lambda: quiet("xdotool", "search", "--onlyvisible", "--name", name,
                                             env=session.env))

    def presses(self):
        """Where on the screen it was pressed, in order."""
        with open(self.log, errors="replace") as log:
            events = log.read().split("\n\n")
        found = [re.search(r"root:\((-?\d+),(-?\d+)\)", event) for event in events
                 if "ButtonPress event" in event]
        return [(int(place[1]), int(place[2])) for place in found if place]
