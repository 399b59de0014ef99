#!/usr/bin/env python3
"""Runs two builds of the player in turn and says which figures became worse; prints Markdown.

    against.py OLD_BUILD NEW_BUILD [--quick] [PART...]

A build is a folder of the preset "bench". The parts are start, steady, line, heard and parts; all of them
where none is named. Ends with 1 where a figure is worse by more than its spread.
"""

import csv
import io
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../tests/desktop"))
from session import Session, quiet  # noqa: E402
from bus import BUS, steady  # noqa: E402
from desktop_line import measure  # noqa: E402
from heard import latencies, make_tracks, median  # noqa: E402
from measure import Velmora  # noqa: E402
from pairs import judge  # noqa: E402

QUICK = "--quick" in sys.argv
# Fewer pairs than eight show nothing, whatever they say.
PAIRS = 8 if QUICK else 12
STARTS = 12 if QUICK else 40
# By unit, the smallest change that is one: the step of the measure, or what nobody could notice.
GRAINS = {"ms": 1.0, "kB": 40, "%": 0.03, "/s": 0.5, "ns": 0}


class Build:
    def __init__(self, folder, tools):
        self.folder = folder
        self.player = Velmora(f"{folder}/src/velmora", f"{tools}/tools/demo_piece/demo_piece")

    def tool(self, name):
        return f"{self.folder}/{name}"


def in_turn(builds, number):
    """Who is first changes from pair to pair: what the first leaves behind is shared out."""
    return builds if number % 2 == 0 else builds[::-1]


def start(builds, watch, paths):
    """Milliseconds to the painted splash and to the painted main window, of warm starts."""
    found = {}
    session = Session(window_manager=False, bus=True)
    try:
        for number in range(STARTS + 1):
            pair = {}
            for build in in_turn(builds, number):
                out = quiet(watch, "--windows", str(build.player.windows), "--seconds", "20", "--",
                            *build.player.idle(session, paths), env=session.env)
                times = [float(line.split()[1]) for line in out.splitlines()
                         if line.startswith("painted")]
                if len(times) == build.player.windows:
                    pair[build] = {("start: splash", "ms"): times[0],
                                   ("start: main window", "ms"): times[-1]}
            if number:  # the first is cold
                keep(found, builds, pair)
    finally:
        session.close()
    return found


def keep(found, builds, pair):
    """Adds what both builds of a pair gave."""
    old, new = (pair.get(build, {}) for build in builds)
    for name in old.keys() & new.keys():
        if old[name] is not None and new[name] is not None:
            found.setdefault(name, []).append((old[name], new[name]))


def paired(builds, look):
    """What `look` says of each build, in turn; {(name, unit): [(old, new), ...]}."""
    found = {}
    for number in range(PAIRS):
        keep(found, builds, {build: look(build) for build in in_turn(builds, number)})
    return found


UNITS = {"own": "kB", "pss": "kB", "cpu": "%", "x": "%", "wakeups": "/s"}


def steady_figures(build, paths):
    found = steady(build.player, BUS, paths)
    return {(name.replace(" x", " X server"), UNITS[name.split()[-1]]): value
            for name, value in found.items()}


def line_figures(build):
    found = measure(build.player.program, compositor=False, rolling=True)
    return {(f"line rolls: {name}", UNITS[key]): found[key]
            for key, name in (("cpu", "player"), ("x", "X server"), ("wakeups", "wake-ups"))}


def heard_figures(build, tracks, long):
    return {(f"heard: {name}", "ms"): median(values)
            for name, values in latencies(build.player, tracks, long, 3).items()}


def part_figures(build):
    """Processor time of each benchmark of the parts, in nanoseconds."""
    found = {}
    folder = build.tool("bench")
    for suite in sorted(name for name in os.listdir(folder) if name.startswith("parts_")):
        if not os.access(f"{folder}/{suite}", os.X_OK) or os.path.isdir(f"{folder}/{suite}"):
            continue
        out = quiet(f"{folder}/{suite}", "--benchmark_format=csv", "--benchmark_min_time=0.05")
        begin = out.find("name,iterations")
        for row in csv.DictReader(io.StringIO(out[max(begin, 0):])):
            scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}.get(row.get("time_unit") or "")
            if scale and row.get("cpu_time"):
                found[row["name"], "ns"] = float(row["cpu_time"]) * scale
    return found


def shown(value, unit):
    if unit == "ns":
        for name, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
            if abs(value) >= size:
                return f"{value / size:.3g} {name}"
        return f"{value:.3g} ns"
    digits = {"ms": 1, "kB": 0, "%": 2, "/s": 1}[unit]
    return f"{value:,.{digits}f} {unit}"


def tell(found):
    """The table; gives the names of what became worse."""
    worse = []
    print("| figure | pairs | before | now | difference | between | |\n|---|---|---|---|---|---|---|")
    for (name, unit), pairs in found.items():
        old, new = zip(*pairs)
        said = judge(old, new, GRAINS[unit])
        if said["verdict"] == "worse":
            worse.append(name)
        cells = [shown(said[key], unit) if abs(said[key]) != float("inf") else "–"
                 for key in ("old", "new", "difference", "low", "high")]
        print(f"| {name} | {len(pairs)} | {cells[0]} | {cells[1]} | {cells[2]} | "
              f"{cells[3]} to {cells[4]} | {said['verdict']} |", flush=True)
    return worse


def main():
    words = [word for word in sys.argv[1:] if not word.startswith("--")]
    builds = [Build(folder, words[1]) for folder in words[:2]]
    chosen = words[2:] or ["start", "steady", "line", "heard", "parts"]
    music = tempfile.mkdtemp(prefix="velmora-bench-against-")
    found = {}
    try:
        subprocess.run([builds[1].tool("tools/demo_piece/demo_piece"), f"{music}/piece.wav"], check=True)
        # Five times the piece, so that no track ends while it is measured.
        subprocess.run(["sox", *[f"{music}/piece.wav"] * 5, f"{music}/long.wav"], check=True,
                       stderr=subprocess.DEVNULL)
        subprocess.run(["lame", "--quiet", "-b", "192", f"{music}/long.wav", f"{music}/piece.mp3"],
                       check=True)
        paths = [f"{music}/piece.mp3"]
        if "start" in chosen:
            found.update(start(builds, builds[1].tool("bench/window_watch"), paths))
        if "steady" in chosen:
            found.update(paired(builds, lambda build: steady_figures(build, paths)))
        if "line" in chosen:
            found.update(paired(builds, line_figures))
        if "heard" in chosen:
            tracks, long = make_tracks(music)
            found.update(paired(builds, lambda build: heard_figures(build, tracks, long)))
        if "parts" in chosen:
            found.update(paired(builds, part_figures))
    finally:
        shutil.rmtree(music, ignore_errors=True)
    worse = tell(found)
    print()
    print(f"Worse by more than their spread: {', '.join(worse)}." if worse
          else "Nothing became worse by more than its spread.")
    sys.exit(1 if worse or not found else 0)


if __name__ == "__main__":
    main()
