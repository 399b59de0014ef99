"""How soon a player is heard after a key or click: the next track, another place, a pause.

Every player gets the same tracks and is driven by its own keys, and what the null sink gives out is
recorded. Two tones alternate from track to track; the place in the long one is told by its pitch.
"""

import os
import statistics
import struct
import subprocess
import time

from session import RATE, Recorder, Session, quiet, wait_for

TONES = (500, 2000)
SLOPE = 40  # Hz a second of the long track


def ffmpeg_tone(path, expression, seconds):
    subprocess.run(["ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-y", "-f", "lavfi",
                    "-i", f"aevalsrc='0.5*sin(2*PI*({expression}))':s={RATE}:d={seconds}", "-ac",
                    "2", "-c:a", "libmp3lame", "-b:a", "192k", path], check=True)


def make_tracks(folder):
    """The alternating list, and the list of the long one."""
    for number, tone in enumerate(TONES):
        ffmpeg_tone(f"{folder}/tone{number}.mp3", f"{tone}*t", 120)
    ffmpeg_tone(f"{folder}/long.mp3", f"300*t+{SLOPE / 2}*t*t", 200)
    tracks = []
    for number in range(24):
        tracks.append(f"{folder}/track{number:02}.mp3")
        if not os.path.lexists(tracks[-1]):
            os.symlink(f"tone{number % 2}.mp3", tracks[-1])
    return tracks, [f"{folder}/long.mp3"]


def pitch(block):
    """Of 10 ms of sound, by its zero crossings; None if they are silent."""
    left = struct.unpack(f"<{len(block) // 2}h", block)[::2]
    if max(map(abs, left)) < 8:
        return None
    rises = [n for n in range(1, len(left)) if left[n - 1] < 0 <= left[n]]
    if len(rises) < 2:
        return 0.0
    return RATE * (len(rises) - 1) / (rises[-1] - rises[0])


class Heard:
    """One player in a session of its own, playing these tracks."""

    def __init__(self, player, tracks):
        self.session = Session(window_manager=True, bus=True)
        self.player = player
        self.recorder = Recorder(self.session)
        self.child = self.session.spawn(player.play(self.session, tracks))
        self.session.window(player.key_class)
        time.sleep(2)  # what comes up first may be a splash
        self.window = self.session.window(player.key_class)
        if self.window:
            quiet("xdotool", "windowfocus", "--sync", self.window, env=self.session.env)
            player.start_playing(self.session, self.window)

    def playing(self):
        """The pitch once it has been steady for a while, so that no fade is in the way."""
        def steady():
            found = [pitch(block) for _, block in self.recorder.blocks[-30:]]
            if None in found or max(found) - min(found) > 120:
                return None
            return (statistics.median(found),)
        found = wait_for(steady, 8)
        return found[0] if found else None

    def until(self, begun, condition, seconds=4.0):
        """Milliseconds to the first 10 ms whose pitch holds the condition."""
        def look():
            for at, block in list(self.recorder.blocks):
                if at > begun and condition(pitch(block)):
                    return (max(1000 * (at - begun) - 10, 0),)
            return None
        found = wait_for(look, seconds, 0.01)
        return found[0] if found else None

    def press(self, what):
        """A key, or a place (shares of the window) that is clicked."""
        if isinstance(what, str):
            begun = time.monotonic()
            quiet("xdotool", "key", what, env=self.session.env)
        else:
            shape = dict(line.split("=") for line in quiet(
                "xdotool", "getwindowgeometry", "--shell", self.window,
                env=self.session.env).splitlines())
            quiet("xdotool", "mousemove", str(int(shape["X"]) + what[0]),
                  str(int(shape["Y"]) + what[1]), env=self.session.env)
            # The bar acts when the button is let go, which the tool does some time after the press.
            quiet("xdotool", "mousedown", "1", env=self.session.env)
            begun = time.monotonic()
            quiet("xdotool", "mouseup", "1", env=self.session.env)
        return begun

    def next(self):
        before = self.playing()
        if before is None:
            return None
        begun = self.press(self.player.keys["next"])
        return self.until(begun, lambda now: now and abs(now - before) > 700)

    def seek(self, number):
        before = self.playing()
        if before is None:
            return None
        ways = self.player.keys["seek"]
        begun = self.press(ways[number % len(ways)])
        return self.until(begun, lambda now: now and abs(now - before) > 140)

    def pause(self):
        if self.playing() is None:
            return None
        begun = self.press(self.player.keys["pause"])
        found = self.until(begun, lambda now: now is None)
        self.press(self.player.keys["play"])
        return found

    def close(self):
        self.recorder.close()
        self.session.close()


def those(values):
    return [value for value in values if value is not None]


def median(values):
    values = those(values)
    return statistics.median(values) if values else None


def latencies(player, tracks, long, runs):
    """Milliseconds of each next, seek and pause that was heard."""
    result = {}
    heard = Heard(player, tracks)
    try:
        result["next"] = those([heard.next() for _ in range(runs)])
        result["pause"] = those([heard.pause() for _ in range(runs)])
    finally:
        heard.close()
    heard = Heard(player, long)
    try:
        result["seek"] = those([heard.seek(number) for number in range(runs)])
    finally:
        heard.close()
    return result


def key_cost():
    """Milliseconds that the tool which presses the keys takes by itself."""
    session = Session(window_manager=False, sound=False)
    try:
        begun = time.monotonic()
        for _ in range(10):
            session.key("F24")
        return 100 * (time.monotonic() - begun)
    finally:
        session.close()
