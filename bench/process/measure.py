#!/usr/bin/env python3
"""Measures the player as a whole process beside the players that are installed; prints Markdown.

    measure.py VELMORA WINDOW_WATCH DEMO_PIECE [--quick]
"""

import os
import re
import shutil
import sqlite3
import subprocess
import sys
import time
import urllib.parse

# The screen, the sound server and the measures are the tests' own.
sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from designs import places  # noqa: E402
from session import Session, over, quiet, wait_for  # noqa: E402
from heard import key_cost, latencies, make_tracks  # noqa: E402
from mapped import by_group  # noqa: E402
from pairs import told  # noqa: E402

QUICK = "--quick" in sys.argv
RUNS = 3 if QUICK else 9
ROUNDS = 1 if QUICK else 3
STRETCH = 4 if QUICK else 12

APP = "Program Files/Norvane软件/Velmora"


def bar_places(tool, shares):
    """Places on the main window's seek bar, in pixels."""
    source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../..")
    left, top, width, height = places(tool, source, "src/playback/Main.form")["load_Played_BG"]
    return [(int(left + width * share), int(top + height / 2)) for share in shares]


class Velmora:
    name = "Velmora"
    key_class = "velmora"

    def __init__(self, program, demo_piece, language=None):
        self.program = program
        self.keys = {"next": "F6", "pause": "F3", "play": "F2",
                     "seek": bar_places(demo_piece, (0.3, 0.6, 0.2, 0.7))}
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
    is_heard = True


class Peer:
    windows = 1
    is_heard = True

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


class BareWindow:
    """No player: two windows of its sizes that do nothing."""

    name = "bare windows"
    key_class = "bare_window"
    windows = 2

    def __init__(self, watch, kind="", *line):
        self.name += kind
        self.command = [os.path.join(os.path.dirname(watch), "bare_window"), *line]

    def idle(self, session, paths):
        return self.command


class ShownPlaying(BareWindow):
    """What is seen of a player at work, without any sound."""

    is_heard = False

    def __init__(self, watch):
        super().__init__(watch, ", what is seen of playing")

    def play(self, session, paths):
        return [*self.command, "--plays"]

    def start_playing(self, session, window):
        pass


class SkinnedAudacious(Peer):
    """With the window that its skins draw. It keeps which one that is only when it is left."""

    def __init__(self, *about):
        super().__init__("Audacious with its skin", ["audacious", "-Q"], *about)

    def dress(self, session):
        registry = f"{session.home}/config/audacious/plugin-registry"
        if os.path.exists(registry):
            return
        child = session.spawn(self.command)
        session.window(self.key_class)
        quiet("audtool", "shutdown", env=session.env)
        if not wait_for(lambda: child.poll() is not None and os.path.exists(registry)):
            raise RuntimeError("Audacious does not end")
        session.children.remove(child)
        with open(registry) as file:
            plugins = re.split(r"(?m)^(?=[a-z]+ /)", file.read())
        with open(registry, "w") as file:
            for plugin in plugins:
                if plugin.startswith("iface "):
                    chosen = "/skins-qt.so" in plugin
                    plugin = re.sub(r"(?m)^enabled \d", f"enabled {int(chosen)}", plugin)
                file.write(plugin)

    def idle(self, session, paths):
        self.dress(session)
        return self.command

    def play(self, session, paths):
        self.dress(session)
        return self.command + paths


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
        keys = {"next": "b", "pause": "c", "play": "c", "seek": ["Right"]}
        found.append(Peer("Audacious", ["audacious", "-Q"], "audacious", keys, audacious_list))
        found.append(SkinnedAudacious("audacious", keys))
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


def start_times(watch, player, paths):
    """Milliseconds to each painted window, of warm starts on a bare display: a list a window."""
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
    return [list(column) for column in zip(*times)] or [[]] * player.windows


def look(player, state, paths):
    """Memory, CPU and wake-ups of one run; nothing where it cannot be had."""
    session = Session(window_manager=True, bus=True)
    try:
        command = player.idle(session, paths) if state == "idle" else player.play(session, paths)
        child = session.spawn(command)
        window = session.window(player.key_class)
        if not window:
            return {}
        time.sleep(2)
        if state == "playing":
            player.start_playing(session, window)
            if player.is_heard:
                wait_for(lambda: quiet("pactl", "list", "short", "sink-inputs", env=session.env))
            time.sleep(3)
        figures = {name: kilobytes / 1024 for name, kilobytes in memory(child.pid).items()}
        figures["groups"] = by_group(child.pid)
        return {**figures, **over(session, child.pid, STRETCH)}
    finally:
        session.close()


def memory(pid):
    """In kB: pages of its own, which no file backs, so that nobody else's use of libraries moves them;
    and the proportional share of all."""
    found = {}
    with open(f"/proc/{pid}/smaps_rollup") as file:
        for line in file:
            words = line.split()
            if words[-1] == "kB":
                found[words[0]] = int(words[1])
    return {"own": found["Anonymous:"], "pss": found["Pss:"]}


def steady(players, paths):
    """{(player, state, figure): values}: all players in turn, several times over."""
    found = {}
    for _ in range(ROUNDS):
        for player in players:
            for state in ("idle", "playing"):
                if state == "playing" and not hasattr(player, "play"):
                    continue
                for figure, value in look(player, state, paths).items():
                    found.setdefault((player, state, figure), []).append(value)
    return found


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


def whole_process(players, watch, paths):
    print("## Whole process\n")
    print(f"Of {RUNS} warm starts on a private virtual display with a session bus, and of {ROUNDS} runs of all in turn; "
          "medians and half of what the middle half spans. Playing is a 192 kbit/s mp3 on a null sink. "
          "Memory in MB: of its own (no file behind it), and the proportional share of all; CPU in percent of one "
          "core. The bare windows are two empty ones of this player's sizes and a timer of its pace; the second ones show "
          "what the toolkit takes for the first line of Chinese alone; the third ones do what is seen of playing (the name "
          "rolls, the time and the bar go on) without any sound.\n")
    print("| player | first window, ms | main window, ms | own idle | own playing | PSS idle | PSS playing | "
          "CPU idle | CPU playing | X playing | wake-ups/s idle | wake-ups/s playing |")
    print("|---" * 12 + "|", flush=True)
    states = steady(players, paths)
    for player in players:
        starts = start_times(watch, player, paths)
        cells = [told(starts[0]), told(starts[-1])]
        for figure, digits in (("own", 1), ("pss", 1), ("cpu", 2)):
            cells += [told(states.get((player, state, figure), []), digits)
                      for state in ("idle", "playing")]
        cells.append(told(states.get((player, "playing", "x"), []), 2))
        cells += [told(states.get((player, state, "wakeups"), [])) for state in ("idle", "playing")]
        print(f"| {player.name} | {' | '.join(cells)} |", flush=True)
    return states


def where_it_lies(states, wanted):
    """The last round's memory by what is mapped, a column for each of (title, player, state)."""
    print("\n## Where the memory lies\n")
    print("MB of the proportional share; in brackets what no file has. Files that were read are the system's to take "
          "back. Of fonts the player gives back at the end of its start what it read for its picture: what of it is "
          "read again, by a title or the list, is there in the columns of playing.\n")
    columns = [(title, states[player, state, "groups"][-1]) for title, player, state in wanted
               if states.get((player, state, "groups"))]
    print(f"| mapped | {' | '.join(title for title, _ in columns)} |")
    print("|---" * (len(columns) + 1) + "|")
    groups = {group for _, found in columns for group in found}
    size = {group: max(found.get(group, (0, 0))[0] for _, found in columns) for group in groups}
    for group in sorted(groups, key=lambda name: -size[name]):
        cells = [found.get(group, (0, 0)) for _, found in columns]
        print(f"| {group} | " + " | ".join(f"{share / 1024:.2f} ({own / 1024:.2f})" for share, own in cells) + " |")
    sums = [[sum(pair[of] for pair in found.values()) / 1024 for of in (0, 1)] for _, found in columns]
    print("| all | " + " | ".join(f"{share:.2f} ({own:.2f})" for share, own in sums) + " |", flush=True)


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
    velmora = Velmora(program, piece)
    speaking = [Velmora(program, piece, language)
                for language in ((1, "English"), (0, "Chinese"), (2, "French"), (3, "Japanese"))]
    bare = BareWindow(watch)
    chinese = BareWindow(watch, ", a line of Chinese", "一个窗口而已")
    others = peers()

    states = whole_process([*speaking, bare, chinese, ShownPlaying(watch), *others], watch, [mp3])
    where_it_lies(states, [("bare windows", bare, "idle"), ("the same, a line of Chinese", chinese, "idle"),
                           *((f"idle, {one.language[1]}", one, "idle") for one in speaking[:2]),
                           *((f"playing, {one.language[1]}", one, "playing") for one in speaking)])
    tracks, long = make_tracks(music)
    print("\n## Heard\n")
    print("From the start of the tool that presses the key or the mouse to the recorded sound: of the "
          "next track, of another place in it (in this player after its fade-in's first step), and to "
          f"silence. The tool itself takes {key_cost():.1f} ms. Tracks are mp3 files of 192 kbit/s; "
          "medians and half of the middle half.\n")
    print("| player | next track heard, ms | seek heard, ms | pause silent, ms |\n|---|---|---|---|")
    for player in [velmora, *others]:
        figures = latencies(player, tracks, long, 3 if QUICK else 9)
        print(f"| {player.name} | {told(figures['next'])} | {told(figures['seek'])} | "
              f"{told(figures['pause'])} |", flush=True)

    print("\n## The sound device by itself\n", flush=True)
    subprocess.run([os.path.join(os.path.dirname(watch), "sound_probe"), f"{music}/piece.wav",
                    "4" if QUICK else "15"], check=False)

    print("\n## Settings\n")
    print("To the painted windows, with the main window, the list and the settings on the screen.\n")
    print("| what | ms, median | largest | first |\n|---|---|---|---|")
    for row in probe_rows(os.path.join(os.path.dirname(watch), "settings_probe")):
        print(f"| {' | '.join(row)} |", flush=True)

    print("\n## A song of 1 GB through its window\n")
    print("The floor is the least program: the same library and writes, and a bare window that tells of the packets.\n")
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
        print(f"| {row[0][0]:,} | {' | '.join(told(figures) for _, figures in row)} |", flush=True)
    shutil.rmtree(music, ignore_errors=True)


if __name__ == "__main__":
    main()
