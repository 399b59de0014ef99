#!/usr/bin/env python3
"""Measures films in the video window, the way to full screen, and the idle mini strip; prints Markdown.

    video.py VELMORA DEMO_PIECE SOURCE_FOLDER [--quick]
"""

import os
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

QUICK = "--quick" in sys.argv
sys.argv = [sys.argv[0], *[word for word in sys.argv[1:] if word != "--quick"], ""]
sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop/program"))
from films import PICTURE, WIDTH, HEIGHT, FilmSession, make_film, near  # noqa: E402
from player import APP, MAIN, MINI, Player  # noqa: E402
from session import over, quiet, wait_for  # noqa: E402

ROUNDS = 2 if QUICK else 5
STRETCH = 5 if QUICK else 15
SWITCHES = 4 if QUICK else 15
FULL_SCREEN = (1280, 800)
FADED = 2  # seconds after which no sound fades in any more: until then Enter means full screen again

# What the program tells its engine, as far as it costs or saves anything.
BARE = ["mpv", "--config=no", "--ytdl=no", "--load-scripts=no", "--osc=no", "--osd-level=0",
        "--load-stats-overlay=no", "--terminal=no", "--input-default-bindings=no",
        "--input-vo-keyboard=no", "--input-cursor=no", "--sid=no", "--sub-auto=no",
        "--audio-file-auto=no", "--vo=x11", "--ao=pulse", "--keepaspect=no", "--hr-seek=yes",
        "--keep-open=yes", "--keep-open-pause=no", "--audio-format=float"]
# And what it needs of the engine so that volume, pause and seek are heard at once.
QUICKLY_HEARD = ["--pulse-buffer=25", "--gapless-audio=no", "--vd-queue-enable=yes",
                 "--vd-queue-max-samples=4", "--ad-queue-enable=yes"]


def start(session, film):
    """The program with its own video window, a list of the one film, and its main window."""
    player = Player(session)
    main = player.window()
    session.key("Escape", main)
    player.ended()
    folder = session.env["XDG_CONFIG_HOME"] + "/velmora"
    registry = next(f"{folder}/{name}" for name in os.listdir(folder) if
                    open(f"{folder}/{name}", "rb").read(15) == b"SQLite format 3")
    database = sqlite3.connect(registry)
    with database:
        (key,) = database.execute("select id from keys where folded like '%PLAYSET'").fetchone()
        database.execute("insert or replace into entries values (?, ?, ?, ?, ?, ?)",
                         (key, "VIDEOINTERFACE", "VideoInterface", 1, 1, "1"))
    database.close()
    listed = f"{session.env['XDG_DATA_HOME']}/velmora/{APP}/List"
    os.makedirs(listed, exist_ok=True)
    with open(listed + "/zkPlayList.m3u", "w", newline="") as file:
        file.write(film + "\r\n")
    player = Player(session)
    return player, player.window()


def window_of(player, size):
    return wait_for(lambda: next((number for number in player.windows()
                                  if player.size(number) == size), None), 15)


def in_the_window(film):
    session = FilmSession(window_manager=True)
    try:
        player, main = start(session, film)
        session.key("F6", main)
        window = window_of(player, (WIDTH, HEIGHT))
        time.sleep(3)
        return over(session, player.child.pid, STRETCH) if window else None
    finally:
        session.close()


def by_the_bare_engine(film, options=()):
    session = FilmSession(window_manager=True)
    try:
        child = session.spawn(BARE + [*options, f"--geometry={PICTURE[2]}x{PICTURE[3]}", film])
        session.window("mpv")
        time.sleep(3)
        return over(session, child.pid, STRETCH)
    finally:
        session.close()


def full_screen_switches(film):
    """Milliseconds from the key to the first picture of the new size."""
    session = FilmSession(window_manager=True)
    times = []
    try:
        player, main = start(session, film)
        session.key("F6", main)
        for _ in range(SWITCHES):
            window = window_of(player, (WIDTH, HEIGHT))
            quiet("xdotool", "windowfocus", "--sync", window, env=session.env)
            time.sleep(FADED)
            # The outermost column ends at the screen's edge in the stretched picture alone.
            begun = time.monotonic()
            session.spawn(["xdotool", "key", "Return"])
            if wait_for(lambda: near(session.pixel(1270, 500), (255, 255, 0)) and
                        near(session.pixel(10, 20), (255, 0, 0)), 5, 0.001):
                times.append(1000 * (time.monotonic() - begun))
            quiet("xdotool", "windowfocus", "--sync", window_of(player, FULL_SCREEN),
                  env=session.env)
            time.sleep(FADED)
            quiet("xdotool", "key", "Return", env=session.env)
            # Back comes the screen's picture, clipped: only the next film has the window's size.
            window_of(player, (WIDTH, HEIGHT))
            session.key("F6", main)
        return times
    finally:
        session.close()


def idle_strip(track):
    session = FilmSession(window_manager=True)
    try:
        player, main = start(session, track)
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        player.tool("mousemove", 640, 600)
        wait_for(lambda: player.place(strip)[1] <= -int(MINI["form"][3]), 5)
        time.sleep(2)
        hidden = over(session, player.child.pid, STRETCH)
        player.tool("mousemove", 60, 0)
        wait_for(lambda: player.place(strip)[1] == 0, 5)
        time.sleep(1)
        return hidden, over(session, player.child.pid, STRETCH)
    finally:
        session.close()


def main():
    folder = tempfile.mkdtemp(prefix="velmora-bench-film-")
    try:
        film = folder + "/film720.mp4"
        make_film(film, (1280, 720), seconds=90)
        print("## Films\n")
        print("A 720p film of 25 frames a second in the video window (730 x 445 pixels), by the "
              "engine alone in a window of that size with the options that let a change be heard at "
              "once, and by the bare engine, by turns. CPU in percent of one core, X the display "
              "server's.\n")
        print("| round | Velmora | X | engine alone | X | ratio | bare engine | X | ratio |")
        print("|---|---|---|---|---|---|---|---|---|", flush=True)
        ratios = []
        for number in range(ROUNDS):
            own, alike, bare = (in_the_window(film), by_the_bare_engine(film, QUICKLY_HEARD),
                                by_the_bare_engine(film))
            ratios.append((own["cpu"] / alike["cpu"], own["cpu"] / bare["cpu"]))
            print(f"| {number + 1} | {own['cpu']:.2f} | {own['x']:.2f} | {alike['cpu']:.2f} | "
                  f"{alike['x']:.2f} | {ratios[-1][0]:.2f} | {bare['cpu']:.2f} | {bare['x']:.2f} | "
                  f"{ratios[-1][1]:.2f} |", flush=True)
        alike, bare = (statistics.median(column) for column in zip(*ratios))
        print(f"| median | | | | | {alike:.2f} | | | {bare:.2f} |\n")
        times = full_screen_switches(film)
        print("| Enter to the first picture of the screen's size | ms |\n|---|---|")
        if times:
            print(f"| median of {len(times)} | {statistics.median(times):.0f} |")
            print(f"| largest | {max(times):.0f} |")
        hidden, seen = idle_strip(film)
        print("\n| mini strip, nothing playing | CPU | X | wake-ups/s |\n|---|---|---|---|")
        for name, state in (("out of sight", hidden), ("on the screen", seen)):
            print(f"| {name} | {state['cpu']:.2f} | {state['x']:.2f} | {state['wakeups']:.0f} |")
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
