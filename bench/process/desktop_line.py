#!/usr/bin/env python3
"""What the lyric on the desktop costs while a line too long for the screen rolls; prints Markdown.

    desktop_line.py VELMORA [--quick]
"""

import os
import sys
import wave

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from session import Session, cpu_seconds, over, quiet, wait_for

SECONDS = 8 if "--quick" in sys.argv else 60
APP = "Program Files/Norvane软件/Velmora"
SHORT = "A line that stands"
LINE = "A line that is far too long for the screen rolls to its end and back, 月亮代表我的心 " * 2


def silence(path, seconds):
    with wave.open(path, "wb") as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(44100)
        out.writeframes(bytes(4 * 44100 * seconds))


def switch_place(source):
    """The middle of the switch in the main window's design."""
    with open(source, encoding="utf-8") as file:
        text = file.read().split("Image desktop_Lrc")[1].split()
    left, top, width, height = (float(text[n]) / 15 for n in (1, 2, 4, 5))
    return int(left + width / 2), int(top + height / 2)


def measure(program, compositor, rolling, line=LINE):
    session = Session(window_manager=True, bus=True)
    try:
        painter = None
        if compositor:
            painter = session.spawn(["picom", "--backend", "xrender", "--config", "/dev/null"])
            wait_for(lambda: quiet("xdotool", "search", "--class", "picom", env=session.env))
        track = session.home + "/long.wav"
        silence(track, 120)
        with open(session.home + "/long.lrc", "w", encoding="utf-8") as file:
            file.write(f"[00:00.00]{line}\r\n")
        folder = f"{session.home}/data/velmora/{APP}/List"
        os.makedirs(folder)
        with open(folder + "/zkPlayList.m3u", "w", newline="", encoding="utf-8") as file:
            file.write(track + "\r\n")
        child = session.spawn([program])
        wait_for(lambda: "480" in quiet("xdotool", "search", "--onlyvisible", "--name", "Velmora",
                                        "getwindowgeometry", env=session.env), 20)
        window = session.window("velmora")
        session.key("F6", window)
        wait_for(lambda: "long" in quiet("xdotool", "getwindowname", window, env=session.env))
        wait_for(lambda: False, 3)
        if rolling:
            place = switch_place(os.path.join(os.path.dirname(__file__),
                                              "../../src/playback/Main.form"))
            quiet("xdotool", "mousemove", "--window", window, *[str(at) for at in place], "click",
                  "1", env=session.env)
        wait_for(lambda: False, 2)
        before = cpu_seconds(painter.pid) if painter else 0
        result = over(session, child.pid, SECONDS)
        after = cpu_seconds(painter.pid) if painter else 0
        result["painter"] = 100 * (after - before) / SECONDS
        return result
    finally:
        session.close()


def main():
    print("\n## The lyric on the desktop\n")
    print(f"A line that stands, and one of twice the screen's width that rolls, each for {SECONDS} s while a track "
          "plays, on a session bus. CPU in "
          "percent of one core.\n")
    print("| screen | line | player | X server | compositor | wake-ups/s |\n|---|---|---|---|---|---|")
    for compositor in (False, True):
        for state, line in (("off", SHORT), ("stands", SHORT), ("rolls", LINE)):
            cost = measure(sys.argv[1], compositor, state != "off", line)
            print(f"| {'with' if compositor else 'without'} a compositor | "
                  f"{state} | {cost['cpu']:.2f} | {cost['x']:.2f} | "
                  f"{cost['painter']:.2f} | {cost['wakeups']:.0f} |", flush=True)


if __name__ == "__main__":
    main()
