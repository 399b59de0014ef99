#!/usr/bin/env python3
"""Measures films in the video window, the way to full screen, and the idle mini strip; prints Markdown.

    video.py VELMORA DEMO_PIECE SOURCE_FOLDER [--quick]

The film's cost is measured against the engine's own player, like with like: the same file from its
beginning, in a window whose picture has the same size in pixels, drawn by the same output with its
standard scaler and decoded by as many threads, with sound, each on a display server, a window manager
and a sound server of its own. They play side by side, so that whatever else the machine does burdens
each of them alike. One player has the engine's standard sound buffer of 100 ms ("bare engine"), the
other the short one that the program needs so that a change of volume is heard within 30 ms ("engine,
quickly heard"): what lies between these two is the price of that, and what lies above the latter is
the program's own.

The film has moving detail, some grain and the data rate of usual films, and it is long: decoding it
costs what decoding does, and the bars of the windows move as slowly as they do in a film.
"""

import concurrent.futures
import glob
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
from films import PICTURE, WIDTH, HEIGHT, FilmSession, ffmpeg, make_film, near  # noqa: E402
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
        "--audio-file-auto=no", "--ao=pulse", "--keepaspect=no", "--hr-seek=yes", "--cache=no",
        "--keep-open=yes", "--keep-open-pause=no", "--audio-format=float",
        "--vo=" + ("gpu,x11" if glob.glob("/dev/dri/renderD*") else "x11")]
# And what it needs of the engine so that a volume is heard at once, and the end in time.
QUICKLY_HEARD = ["--pulse-buffer=25", "--gapless-audio=no"]


def make_usual_film(path):
    """Twenty minutes of 720p, 25 frames a second, 3 Mbit/s."""
    ffmpeg("-f", "lavfi", "-i", "testsrc2=s=1280x720:r=25:d=20,noise=alls=8:allf=t,format=yuv420p",
           "-f", "lavfi", "-i", "sine=f=440:d=20,aformat=channel_layouts=stereo",
           "-c:v", "libx264", "-preset", "fast", "-b:v", "3M", "-c:a", "aac", path + ".part.mp4")
    ffmpeg("-stream_loop", 59, "-i", path + ".part.mp4", "-c", "copy", path)
    os.remove(path + ".part.mp4")


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


def play_in_the_window(session, film):
    player, main = start(session, film)
    session.key("F6", main)
    if not window_of(player, (WIDTH, HEIGHT)):
        raise RuntimeError("the video window does not come up")
    return player.child.pid


def play_by_the_engine(session, film, options=()):
    width, height = PICTURE[2:]
    child = session.spawn(BARE + [*options, f"--geometry={width}x{height}", film])
    window = session.window("mpv")
    shape = quiet("xdotool", "getwindowgeometry", window, env=session.env) if window else ""
    if f"{width}x{height}" not in shape:
        raise RuntimeError("the engine's window has not the size of the picture: " + shape)
    return child.pid


def side_by_side(film):
    """What the program, the engine quickly heard and the bare engine cost in the same stretch."""
    sessions = []
    try:
        pids = []
        for play in (play_in_the_window,
                     lambda *place: play_by_the_engine(*place, QUICKLY_HEARD), play_by_the_engine):
            sessions.append(FilmSession(window_manager=True, bus=True))
            pids.append(play(sessions[-1], film))
        time.sleep(3)
        with concurrent.futures.ThreadPoolExecutor() as pool:
            return list(pool.map(over, sessions, pids, [STRETCH] * len(pids)))
    finally:
        for session in sessions:
            session.close()


def full_screen_switches(film):
    """Milliseconds from the key to the first picture of the new size."""
    session = FilmSession(window_manager=True, bus=True)
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
    session = FilmSession(window_manager=True, bus=True)
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
        usual, film = folder + "/usual.mp4", folder + "/film720.mp4"
        make_usual_film(usual)
        make_film(film, (1280, 720), seconds=90)
        print("## Films\n")
        print("A 720p film of 25 frames a second and 3 Mbit/s in the video window (730 x 445 pixels), "
              "and side by side with it the same film by the engine in a window of that size, with "
              "the short sound buffer that lets a volume be heard at once, and by the bare engine "
              "with its standard one. CPU in percent of one core, X the display server's.\n")
        print("| round | Velmora | X | engine, quickly heard | X | ratio | bare engine | X | ratio |")
        print("|---|---|---|---|---|---|---|---|---|", flush=True)
        ratios = []
        for number in range(ROUNDS):
            own, alike, bare = side_by_side(usual)
            ratios.append((own["cpu"] / alike["cpu"], own["cpu"] / bare["cpu"]))
            print(f"| {number + 1} | {own['cpu']:.2f} | {own['x']:.2f} | {alike['cpu']:.2f} | "
                  f"{alike['x']:.2f} | {ratios[-1][0]:.2f} | {bare['cpu']:.2f} | {bare['x']:.2f} | "
                  f"{ratios[-1][1]:.2f} |", flush=True)
        alike, bare = (statistics.median(column) for column in zip(*ratios))
        print(f"| median | | | | | {alike:.2f} | | | {bare:.2f} |\n", flush=True)
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
