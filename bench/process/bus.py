#!/usr/bin/env python3
"""What a session bus, and a panel on it, cost the player; prints Markdown.

    bus.py VELMORA WINDOW_WATCH DEMO_PIECE [--quick]
"""

import os
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from session import Session, over, quiet, wait_for  # noqa: E402
from measure import Velmora, memory  # noqa: E402
from heard import median  # noqa: E402

QUICK = "--quick" in sys.argv
ROUNDS = 2 if QUICK else 7
STARTS = 5 if QUICK else 40
STRETCH = 4 if QUICK else 15
PANEL = os.path.join(os.path.dirname(__file__), "../../tests/desktop/program/panel.py")
WITHOUT, BUS, WITH_PANEL = "no bus", "a bus", "a bus with a panel"
KINDS = (WITHOUT, BUS, WITH_PANEL)


def session_of(kind, window_manager):
    session = Session(window_manager=window_manager, bus=kind != WITHOUT)
    if kind == WITH_PANEL:
        session.spawn(["/usr/bin/python3", PANEL])
        if not wait_for(lambda: "org.kde.StatusNotifierWatcher" in quiet(
                "busctl", "--user", "list", "--no-pager", env=session.env)):
            raise RuntimeError("no panel")
    return session


def steady(player, kind, paths):
    session = session_of(kind, window_manager=True)
    try:
        child = session.spawn(player.idle(session, paths))
        window = session.window(player.key_class)
        time.sleep(3)
        result = {}
        for state in ("idle", "playing"):
            if state == "playing":
                player.start_playing(session, window)
                wait_for(lambda: quiet("pactl", "list", "short", "sink-inputs", env=session.env))
                time.sleep(4)
            figures = {**memory(child.pid), **over(session, child.pid, STRETCH)}
            result.update({f"{state} {name}": value for name, value in figures.items()})
        return result
    finally:
        session.close()


def start_times(watch, player, paths):
    """Milliseconds to the painted main window by kind: in turn, so that the machine's mood is shared."""
    sessions = {kind: session_of(kind, window_manager=False) for kind in KINDS}
    times = {kind: [] for kind in KINDS}
    try:
        for run in range(STARTS + 1):
            for kind, session in sessions.items():
                out = quiet(watch, "--windows", str(player.windows), "--seconds", "10", "--",
                            *player.idle(session, paths), env=session.env)
                painted = [float(line.split()[1]) for line in out.splitlines()
                           if line.startswith("painted")]
                if run and len(painted) == player.windows:
                    times[kind].append(painted[-1])
    finally:
        for session in sessions.values():
            session.close()
    return {kind: median(found) for kind, found in times.items()}


def main():
    program, watch, piece = sys.argv[1:4]
    music = tempfile.mkdtemp(prefix="velmora-bench-bus-")
    try:
        subprocess.run([piece, f"{music}/piece.wav"], check=True)
        subprocess.run(["lame", "--quiet", "-b", "192", f"{music}/piece.wav", f"{music}/piece.mp3"],
                       check=True)
        paths = [f"{music}/piece.mp3"]
        player = Velmora(program, piece)
        rounds = {kind: [] for kind in KINDS}
        for _ in range(ROUNDS):
            for kind in KINDS:
                rounds[kind].append(steady(player, kind, paths))
        starts = start_times(watch, player, paths)
    finally:
        shutil.rmtree(music, ignore_errors=True)

    def figure(kind, name):
        return median([one[name] for one in rounds[kind]])

    print("\n## The session bus\n")
    print(f"Medians of {ROUNDS} runs of each kind in turn, of {STARTS} for the start. In kB the "
          "pages of its own, which no file backs, and PSS.\n")
    columns = [f"{state} {name}" for state in ("idle", "playing")
               for name in ("own", "pss", "wakeups")]
    print("| with | main window, ms | " + " | ".join(
        column.replace("wakeups", "wake-ups/s") for column in columns) + " |")
    print("|---" * (2 + len(columns)) + "|")
    for kind in KINDS:
        cells = [f"{figure(kind, column):,.{1 if 'wakeups' in column else 0}f}" for column in columns]
        print(f"| {kind} | {starts[kind]:.1f} | {' | '.join(cells)} |", flush=True)


if __name__ == "__main__":
    main()
