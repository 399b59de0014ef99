#!/usr/bin/env python3
"""Measures the player as a whole process beside the players that are installed; prints Markdown.

    measure.py VELMORA WINDOW_WATCH DEMO_PIECE [--quick]
"""

import os
import shutil
import sqlite3
import statistics
import subprocess
import sys
import time
import urllib.parse

# The screen, the sound server and the measures are the tests' own.
sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from session import Session, over, pss_mb, quiet, wait_for  # noqa: E402
from heard import key_cost, latencies, make_tracks, median  # noqa: E402

QUICK = "--quick" in sys.argv
RUNS = 3 if QUICK else 9
STRETCH = 4 if QUICK else 15

APP = "Program Files/Norvane软件/Velmora"


def bar_place(share):
    """A place on the main window's seek bar, in pixels; its design stands in twips."""
    return int((150 + 6900 * share) / 15), (1560 + 90) // 15


class Velmora:
    name = "Velmora"
    key_class = "velmora"
    keys = {"next": "F6", "pause": "F3", "play": "F2",
            "seek": [bar_place(share) for share in (0.3, 0.6, 0.2, 0.7)]}

    def __init__(self, program, language=None):
        self.program = program
        self.language = language
        if language:
            self.name += f", {language[1]} texts"

    def home(self, session):
        return f"{session.home}/data/velmora/{APP}"

    def write_list(self, session, paths):
        os.makedirs(self.home(session) + "/List", exist_ok=True)
        with open(self.home(session) + "/List/zkPlayList.m3u", "w", newline="") as file:
            file.write("".join(path + "\r\n" for path in paths))

    def speak(self, session):
        """Stores the language, in a registry that the program has made itself."""
        if not self.language or os.path.exists(f"{session.home}/config/velmora"):
            return
        child = session.spawn([self.program])
        session.window(self.key_class)
        time.sleep(0.5)
        session.stop(child)
        database = sqlite3.connect(f"{session.home}/config/velmora/registry.sqlite")
        with database:
            database.execute(
                "insert or replace into entries select id, 'LANGUAGE', 'Language', 1, 1, ? "
                "from keys where folded like '%PLAYSET'", (str(self.language[0]),))
        database.close()

    def idle(self, session, paths):
        self.speak(session)
        self.write_list(session, paths)
        return [self.program]

    def play(self, session, paths):
        return self.idle(session, paths)

    def start_playing(self, session, window):
        session.key("F6", window)

    windows = 2  # the splash, then the main window


class Peer:
    windows = 1

    def __init__(self, name, command, key_class, keys=None, write_list=None):
        self.name = name
        self.command = command
        self.key_class = key_class
        self.keys = keys
        self.write_list = write_list  # of a player that comes up with the list it had

    def idle(self, session, paths):
        return self.command

    def play(self, session, paths):
        return self.command + paths

    def start_playing(self, session, window):
        pass


def audacious_list(session, paths):
    folder = f"{session.home}/config/audacious/playlists"
    os.makedirs(folder, exist_ok=True)
    with open(folder + "/order", "w") as file:
        file.write("1000")
    with open(folder + "/1000.audpl", "w") as file:
        file.write("title=Now%20Playing\n")
        file.write("".join(f"uri=file://{urllib.parse.quote(path)}\n" for path in paths))


def peers():
    found = []
    if shutil.which("audacious"):
        found.append(Peer("Audacious", ["audacious"], "audacious",
                          {"next": "b", "pause": "c", "play": "c", "seek": ["Right"]},
                          audacious_list))
    if shutil.which("qmmp"):
        found.append(Peer("Qmmp", ["qmmp"], "qmmp",
                          {"next": "b", "pause": "c", "play": "c", "seek": ["Right"]}))
    if shutil.which("mpv"):
        found.append(Peer("mpv", ["mpv", "--force-window=yes", "--idle=yes", "--no-config",
                                  "--audio-display=no", "--vo=x11"], "mpv",
                          {"next": "greater", "pause": "space", "play": "space",
                           "seek": ["Right"]}))
    if shutil.which("vlc"):
        found.append(Peer("VLC", ["vlc"], "vlc",
                          {"next": "n", "pause": "space", "play": "space",
                           "seek": ["alt+Right"]}))
    return found


def shown(value, digits=1):
    return "–" if value is None else f"{value:.{digits}f}"


def start_times(watch, player, paths):
    """Milliseconds to each painted window, medians of warm starts on a bare display."""
    session = Session(window_manager=False, bus=True)
    times = []
    try:
        for run in range(RUNS + 1):
            out = quiet(watch, "--windows", str(player.windows), "--seconds", "10", "--",
                        *player.idle(session, paths), env=session.env)
            painted = [float(line.split()[1]) for line in out.splitlines()
                       if line.startswith("painted")]
            if run and len(painted) == player.windows:
                times.append(painted)
    finally:
        session.close()
    if not times:
        return [None] * player.windows
    return [statistics.median(column) for column in zip(*times)]


def steady(player, paths):
    """Memory, CPU and wake-ups, idle and playing."""
    result = {}
    for state in ("idle", "playing"):
        session = Session(window_manager=True, bus=True)
        try:
            command = player.idle(session, paths) if state == "idle" else player.play(session, paths)
            child = session.spawn(command)
            window = session.window(player.key_class)
            if not window:
                continue
            time.sleep(2)
            if state == "playing":
                player.start_playing(session, window)
                wait_for(lambda: quiet("pactl", "list", "short", "sink-inputs", env=session.env))
                time.sleep(3)
            result[state] = over(session, child.pid, STRETCH)
            result[state]["pss"] = pss_mb(child.pid)
        finally:
            session.close()
    return result


class WithList:
    """A player that comes up with this list."""

    def __init__(self, player):
        self.player = player
        self.windows = player.windows

    def idle(self, session, paths):
        self.player.write_list(session, paths)
        return self.player.idle(session, paths)


def list_starts(watch, player, music):
    rows = []
    for count in (0, 1000, 10000, 32767):
        paths = [f"{music}/{number:05d} A song with a name of usual length.mp3"
                 for number in range(count)]
        rows.append((count, start_times(watch, WithList(player), paths)[-1]))
    return rows


def probe_rows(*probe):
    """What a probe on a screen of its own says, line by line, as words."""
    session = Session(window_manager=True, sound=False, bus=True)
    try:
        return [line.split() for line in quiet(*probe, env=session.env).splitlines()]
    finally:
        session.close()


def main():
    program, watch, piece = sys.argv[1:4]
    music = "/tmp/velmora-bench-music"
    os.makedirs(music, exist_ok=True)
    wav, mp3 = f"{music}/piece.wav", f"{music}/piece.mp3"
    subprocess.run([piece, wav], check=True)
    # Four times the piece, so that no track ends while it is measured.
    subprocess.run(["sox", wav, wav, wav, wav, wav, f"{music}/long.wav"], check=True,
                   stderr=subprocess.DEVNULL)
    subprocess.run(["lame", "--quiet", "-b", "192", f"{music}/long.wav", mp3], check=True)
    velmora = Velmora(program)
    english, chinese = (Velmora(program, language)
                        for language in ((1, "English"), (0, "Chinese")))
    others = peers()

    print("## Whole process\n")
    print("Medians of warm starts on a private virtual display with a session bus; playing is a 192 kbit/s mp3 on a null"
          " sink. PSS in MB, CPU in percent of one core.\n")
    print("| player | first window, ms | main window, ms | PSS idle | PSS playing | CPU idle | "
          "CPU playing | X playing | wake-ups/s idle | wake-ups/s playing |")
    print("|---|---|---|---|---|---|---|---|---|---|", flush=True)
    for player in [english, chinese, *others]:
        starts = start_times(watch, player, [mp3])
        states = steady(player, [mp3])
        idle, playing = states.get("idle", {}), states.get("playing", {})
        print(f"| {player.name} | {shown(starts[0])} | {shown(starts[-1])} | "
              f"{shown(idle.get('pss'))} | {shown(playing.get('pss'))} | "
              f"{shown(idle.get('cpu'), 2)} | {shown(playing.get('cpu'), 2)} | "
              f"{shown(playing.get('x'), 2)} | {shown(idle.get('wakeups'))} | "
              f"{shown(playing.get('wakeups'))} |", flush=True)

    tracks, long = make_tracks(music)
    print("\n## Heard\n")
    print("From the start of the tool that presses the key or the mouse to the recorded sound: of the "
          "next track, of another place in it (in this player after its fade-in's first step), and to "
          f"silence. The tool itself takes {shown(key_cost())} ms. Tracks are mp3 files of 192 kbit/s; "
          "medians.\n")
    print("| player | next track heard, ms | seek heard, ms | pause silent, ms |\n|---|---|---|---|")
    for player in [velmora, *others]:
        figures = latencies(player, tracks, long, 3 if QUICK else 9)
        print(f"| {player.name} | {shown(figures['next'])} | {shown(figures['seek'])} | "
              f"{shown(figures['pause'])} |", flush=True)

    print("\n## The sound device by itself\n", flush=True)
    subprocess.run([os.path.join(os.path.dirname(watch), "sound_probe"), f"{music}/piece.wav",
                    "4" if QUICK else "15"], check=False)

    print("\n## Settings\n")
    print("To the painted windows, with the main window, the list and the settings on the screen.\n")
    print("| what | ms, median | largest | first |\n|---|---|---|---|")
    for row in probe_rows(os.path.join(os.path.dirname(watch), "settings_probe")):
        print(f"| {' | '.join(row)} |", flush=True)

    print("\n## A song of 1 GB through its window\n")
    print("| what | wall, s | processor, s |\n|---|---|---|")
    for name, *figures in probe_rows(os.path.join(os.path.dirname(watch), "download_probe"), "1024"):
        if name == "longest":
            print(f"| longest wait for an answer, ms | {figures[0]} | |", flush=True)
        else:
            print(f"| {name} | {' | '.join(figures)} |", flush=True)

    print("\n## The list at start\n")
    keepers = [velmora, *(player for player in others if player.write_list)]
    columns = [list_starts(watch, player, music) for player in keepers]
    print(f"| entries | {' | '.join(f'{player.name}, ms' for player in keepers)} |")
    print("|---" * (len(keepers) + 1) + "|")
    for row in zip(*columns):
        print(f"| {row[0][0]:,} | {' | '.join(shown(figure) for _, figure in row)} |", flush=True)
    shutil.rmtree(music, ignore_errors=True)


if __name__ == "__main__":
    main()
