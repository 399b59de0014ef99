#!/usr/bin/env python3
"""Measures the player as a whole process beside the players that are installed; prints Markdown.

    measure.py VELMORA WINDOW_WATCH DEMO_PIECE [--quick]
"""

import os
import shutil
import statistics
import subprocess
import sys
import time

# The screen, the sound server and the measures are the tests' own.
sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from session import Recorder, Session, over, pss_mb, quiet, wait_for

QUICK = "--quick" in sys.argv
RUNS = 3 if QUICK else 9
STRETCH = 4 if QUICK else 15

APP = "Program Files/Norvane软件/Velmora"


class Velmora:
    name = "Velmora"
    key_class = "velmora"

    def __init__(self, program):
        self.program = program

    def home(self, session):
        return f"{session.home}/data/velmora/{APP}"

    def write_list(self, session, paths):
        os.makedirs(self.home(session) + "/List", exist_ok=True)
        with open(self.home(session) + "/List/zkPlayList.m3u", "w", newline="") as file:
            file.write("".join(path + "\r\n" for path in paths))

    def idle(self, session, paths):
        self.write_list(session, paths)
        return [self.program]

    def play(self, session, paths):
        return self.idle(session, paths)

    def start_playing(self, session, window):
        session.key("F6", window)

    windows = 2  # the splash, then the main window


class Peer:
    windows = 1

    def __init__(self, name, command, key_class, play):
        self.name = name
        self.command = command
        self.key_class = key_class
        self.play_options = play

    def idle(self, session, paths):
        return self.command

    def play(self, session, paths):
        return self.command + self.play_options + paths[:1]

    def start_playing(self, session, window):
        pass


def peers():
    found = []
    if shutil.which("audacious"):
        found.append(Peer("Audacious", ["audacious"], "audacious", []))
    if shutil.which("qmmp"):
        found.append(Peer("Qmmp", ["qmmp"], "qmmp", []))
    if shutil.which("mpv"):
        found.append(Peer("mpv", ["mpv", "--force-window=yes", "--idle=yes", "--no-config",
                                  "--audio-display=no", "--vo=x11"], "mpv", []))
    if shutil.which("vlc"):
        found.append(Peer("VLC", ["vlc"], "vlc", []))
    return found


def median(values):
    values = [value for value in values if value is not None]
    return statistics.median(values) if values else None


def shown(value, digits=1):
    return "–" if value is None else f"{value:.{digits}f}"


def start_times(watch, player, paths):
    """Milliseconds to each painted window, medians of warm starts on a bare display."""
    session = Session(window_manager=False)
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
        session = Session(window_manager=True)
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


def heard(player, paths):
    """Velmora's own latencies by its keys: open to sound, pause to silence, resume to sound."""
    session = Session(window_manager=True)
    result = {"open": [], "pause": []}
    try:
        session.spawn(player.play(session, paths))
        window = session.window(player.key_class)
        recorder = Recorder(session)
        time.sleep(1)
        for _ in range(3 if QUICK else 7):
            quiet("xdotool", "windowfocus", "--sync", window, env=session.env)
            begun = time.monotonic()
            session.key("F6")
            result["open"].append(recorder.first(begun))
            time.sleep(1.2)
            begun = time.monotonic()
            session.key("F3")
            result["pause"].append(recorder.first(begun, loud=False, run=5))
            time.sleep(0.3)
            session.key("F4")
            time.sleep(0.3)
        # What the tool that sends the keys costs by itself.
        begun = time.monotonic()
        for _ in range(10):
            session.key("F24")
        result["key"] = 100 * (time.monotonic() - begun)
        recorder.close()
    finally:
        session.close()
    return result


def list_starts(watch, velmora, music):
    rows = []
    for count in (0, 1000, 10000, 32767):
        paths = [f"{music}/{number:05d} A song with a name of usual length.mp3"
                 for number in range(count)]
        rows.append((count, start_times(watch, velmora, paths)))
    return rows


def probe_rows(*probe):
    """What a probe on a screen of its own says, line by line, as words."""
    session = Session(window_manager=True, sound=False)
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
    everyone = [velmora] + peers()

    print("## Whole process\n")
    print("Medians of warm starts on a private virtual display; playing is a 192 kbit/s mp3 on a null"
          " sink. PSS in MB, CPU in percent of one core.\n")
    print("| player | first window, ms | main window, ms | PSS idle | PSS playing | CPU idle | "
          "CPU playing | X playing | wake-ups/s idle | wake-ups/s playing |")
    print("|---|---|---|---|---|---|---|---|---|---|", flush=True)
    for player in everyone:
        starts = start_times(watch, player, [mp3])
        states = steady(player, [mp3])
        idle, playing = states.get("idle", {}), states.get("playing", {})
        print(f"| {player.name} | {shown(starts[0])} | {shown(starts[-1])} | "
              f"{shown(idle.get('pss'))} | {shown(playing.get('pss'))} | "
              f"{shown(idle.get('cpu'), 2)} | {shown(playing.get('cpu'), 2)} | "
              f"{shown(playing.get('x'), 2)} | {shown(idle.get('wakeups'))} | "
              f"{shown(playing.get('wakeups'))} |", flush=True)

    latencies = heard(velmora, [mp3])
    print("\n## Heard\n")
    print("From the start of the tool that presses the key to the recorded sound; the tool itself "
          f"takes {shown(latencies.get('key'))} ms.\n")
    print("| change | ms |\n|---|---|")
    print(f"| next track to first sound | {shown(median(latencies['open']))} |")
    print(f"| pause to silence | {shown(median(latencies['pause']))} |")

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
    print("| entries | main window, ms |\n|---|---|")
    for count, starts in list_starts(watch, velmora, music):
        print(f"| {count:,} | {shown(starts[-1])} |", flush=True)
    shutil.rmtree(music, ignore_errors=True)


if __name__ == "__main__":
    main()
