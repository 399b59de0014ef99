"""Films that tell place and time by their picture, and a look at what the screen shows of them.

A film has four columns of colour above, and below a white mark that walks from the left edge to the
right in the film's length. Its sound is a tone that is higher every second.
"""

import hashlib
import mmap
import os
import shutil
import struct
import subprocess
import sqlite3
import tempfile
import time

from player import LIST, MAIN, VIDEO, Player, PlayerTest
from session import Recorder, Session, wait_for

SECONDS = 120  # longer than a test that does not wait for its end, on a busy machine
COLUMNS = ((255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0))

# The window's parts, in pixels: the picture stands between the title row and the strip.
WIDTH, HEIGHT = 730, 525
STRIP = 845 / 15
PICTURE_TOP = 24
PICTURE = (0, PICTURE_TOP, WIDTH, (7875 - 350 - 845) // 15)
SHOWN_HEIGHT = HEIGHT - STRIP - PICTURE_TOP


def ffmpeg(*words):
    subprocess.run(["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-y",
                    *[str(word) for word in words]], check=True)


def chart(width, height, seconds=SECONDS, rate=25):
    """The picture as a filter graph; its output has no name."""
    quarter, high = width // 4, height * 3 // 4
    columns = ",".join(f"drawbox={number * quarter}:0:{width}:{high}:{colour}:fill" for
                       number, colour in enumerate(("red", "lime", "blue", "yellow")))
    mark = max(width // 16, 2)
    return (f"color=c=black:s={width}x{height}:r={rate}:d={seconds},{columns}[g];"
            f"color=c=white:s={mark}x{max(height // 8, 2)}:r={rate}:d={seconds}[m];"
            f"[g][m]overlay=x='(W-w)*t/{seconds}':y=H-h-H/16:shortest=1")


def tone(seconds=SECONDS, base=300):
    return f"aevalsrc='0.5*sin(2*PI*({base}+100*floor(t))*t)':s=44100:d={seconds}"


# Where films are kept from one test to the next; without it each is made anew.
KEPT = os.environ.get("VELMORA_FILMS")


def make_film(path, size=(640, 360), video=("libx264", "-preset", "ultrafast", "-g", "25"),
              sound=("aac",), seconds=SECONDS, base=300, extra=(), rate=25):
    inputs = ["-f", "lavfi", "-i", tone(seconds, base)] if sound else []
    codecs = ["-c:a", *sound] if sound else []
    mapped = ["-map", "[v]"] + (["-map", "0:a"] if sound else [])
    words = [*inputs, "-filter_complex", chart(*size, seconds, rate) + ",format=yuv420p[v]", *mapped,
             "-c:v", *video, *codecs, *extra]
    if KEPT is None:
        ffmpeg(*words, path)
        return
    # Known by what it is made of, so that another recipe is another film. Several tests may make one at
    # once; whichever is done last stays.
    ending = os.path.splitext(path)[1]
    kept = f"{KEPT}/{hashlib.sha256(repr(words).encode()).hexdigest()[:20]}{ending}"
    if not os.path.exists(kept):
        os.makedirs(KEPT, exist_ok=True)
        own = f"{KEPT}/{os.getpid()}{ending}"
        ffmpeg(*words, own)
        os.replace(own, kept)
    shutil.copyfile(kept, path)


class FilmSession(Session):
    """Its frame buffer is a file, so that a look at a pixel costs nothing."""

    def _display(self):
        self.server_options = (*self.server_options, "-fbdir", self.home)
        super()._display()
        path = f"{self.home}/Xvfb_screen0"
        if not wait_for(lambda: os.path.exists(path) and os.path.getsize(path) > 4096):
            raise RuntimeError("no frame buffer")
        with open(path, "rb") as file:
            self.frame = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        head = struct.unpack(">25I", self.frame[:100])
        self.line, self.first = head[12], head[0] + 12 * head[19]

    def pixel(self, x, y):
        at = self.first + int(y) * self.line + 4 * int(x)
        blue, green, red = self.frame[at:at + 3]
        return red, green, blue

    def row(self, y, left, right):
        """Brightness (0 to 255) of a stretch of a row."""
        at = self.first + int(y) * self.line
        part = self.frame[at + 4 * int(left):at + 4 * int(right)]
        return part[1::4]


def near(one, other, far=90):
    return all(abs(a - b) <= far for a, b in zip(one, other))


class FilmTest(PlayerTest):
    session_kind = FilmSession
    configured = None  # a configuration folder with the program's own video window
    interface = "1"
    made = None

    @classmethod
    def setUpClass(cls):
        cls.made = tempfile.mkdtemp(prefix="velmora-films-")
        cls.addClassCleanup(shutil.rmtree, cls.made, True)
        make_film(f"{cls.made}/film.mp4")

    def setUp(self):
        super().setUp()
        self.configure()

    def configure(self):
        """Stores the choice of the video window, in a registry that the program has made itself."""
        player, main = self.start()
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        database = sqlite3.connect(self.registry_file())
        with database:
            (key,) = database.execute("select id from keys where folded like '%PLAYSET'").fetchone() \
                or database.execute("select id from keys").fetchone()
            database.execute("insert or replace into entries values (?, ?, ?, ?, ?, ?)",
                             (key, "VIDEOINTERFACE", "VideoInterface", 1, 1, self.interface))
        database.close()

    def film(self, name="film.mp4"):
        return f"{self.made}/{name}"

    def play(self, *films):
        """Starts with a list of the films and plays the first."""
        self.write_list([self.film(film) for film in films])
        player, main = self.start()
        self.session.key("F6", main)
        return player, main

    def play_in_window(self, *films):
        player, main = self.play(*films)
        window = self.video(player)
        self.assertTrue(window, "the video window does not come up")
        return player, main, window

    def video(self, player, size=(WIDTH, HEIGHT), seconds=30):
        def look():
            return next((number for number in player.windows()
                         if player.size(number) == size), None)
        return wait_for(look, seconds)

    # --- what the screen shows ------------------------------------------------------------------

    def whole(self, player, window, picture=PICTURE):
        """The picture's rectangle on the screen."""
        x, y = player.place(window)
        return x + picture[0], y + picture[1], picture[2], picture[3]

    def stretched_over(self, rect):
        """Whether the four columns divide the rectangle, up to its edges."""
        left, top, width, height = rect
        for number, colour in enumerate(COLUMNS):
            for inside in (0.08, 0.5, 0.92):
                for down in (0.03, 0.4, 0.68):
                    x, y = left + width * (number + inside) / 4, top + height * down
                    if not near(self.session.pixel(x, y), colour):
                        return False
        return True

    def assert_stretched(self, rect, seconds=30):
        def seen():
            left, top, width, height = rect
            return [self.session.pixel(left + width * (number + 0.5) / 4, top + height * 0.4)
                    for number in range(4)]
        self.assertTrue(wait_for(lambda: self.stretched_over(rect), seconds),
                        f"the picture is not stretched over {rect} but shows {seen()}")

    def mark(self, rect):
        """Where the white mark's left edge stands, as a share of its way; None if it is not seen."""
        left, top, width, height = rect
        row = self.session.row(top + height * (1 - 1 / 8), left, left + width)
        bright = [x for x, value in enumerate(row) if value > 128]
        return bright[0] / (width * 15 / 16) if bright else None

    def film_time(self, rect, seconds=SECONDS):
        share = self.mark(rect)
        return None if share is None else share * seconds

    def assert_button(self, player, main, there):
        """Whether the main window, brought forward, has its button for the video window."""
        player.tool("windowactivate", "--sync", main)
        self.assertTrue(
            wait_for(lambda: (len(set(player.look(main, "videoScreen_Button"))) > 8) == there),
            "the button for the video window is " + ("not " if there else "") + "there")

    def assert_moves(self, rect):
        seen = []

        def goes_on():
            now = self.mark(rect)
            if now is not None:
                seen.append(now)
            # The first may be the end of a film that another one follows.
            return seen and seen[-1] > min(seen) + 0.01
        self.assertTrue(wait_for(goes_on), f"the picture stands still at {seen[-1:]}")

    def assert_still(self, rect):
        """Waits until the mark has stopped."""
        def look():
            before = self.mark(rect)
            time.sleep(0.3)  # several frames: this is the condition itself
            return before is not None and self.mark(rect) == before
        self.assertTrue(wait_for(look), "the picture goes on")

    def recorder(self):
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        return recorder

    def heard_second(self, recorder, base=300):
        """The second of the film that is heard."""
        frequency = self.now_playing(recorder)
        return None if frequency is None else (frequency - base) / 100


__all__ = ["COLUMNS", "FilmSession", "FilmTest", "HEIGHT", "LIST", "MAIN", "PICTURE", "Player",
           "SECONDS", "STRIP", "VIDEO", "WIDTH", "ffmpeg", "make_film", "near", "chart", "tone"]
