#!/usr/bin/env python3
"""Runs all fuzz targets together on the cores of this machine, most of the time those that still find something.

    fuzz.py BUILD_FOLDER [--runs N] [--minutes N] [--jobs N] [--keep] [--only TARGET...]

The folder is one of the preset "fuzz". Ends after so many inputs in all (a hundred million) or so many minutes,
whichever comes first. With --keep what reaches something new goes into the targets' corpora, minimised and bounded. A
finding ends the run; its input lies in the build folder.
"""

import argparse
import concurrent.futures
import glob
import os
import re
import shutil
import subprocess
import sys
import time

from targets import targets

SLICE_S = 20
# What hangs for this long hangs; the machine may be busy with something else.
HANGS_S = 60
# Of what a target was worth before, this much is believed beside its last slice: a lucky one is soon forgotten, and
# one that found nothing for a while comes back only by the share below.
MEMORY = 0.5
# Every target has this share of an even division whatever it finds.
EVEN_SHARE = 0.3
LARGEST_CORPUS = 300_000  # bytes


class Target:
    def __init__(self, name, program, corpus):
        self.name, self.program, self.corpus = name, program, corpus
        self.found = os.path.join(os.path.dirname(program), name + "_found")
        os.makedirs(self.found, exist_ok=True)
        self.worth = float("inf")  # new features a second; each target is looked at once first
        self.seconds, self.runs, self.new = 0.0, 0, 0
        self.broken = None

    def slice(self, seconds):
        begun = time.monotonic()
        done = subprocess.run(
            [self.program, f"-max_total_time={seconds}", f"-timeout={HANGS_S}", "-rss_limit_mb=2048", "-print_final_stats=1",
             f"-artifact_prefix={self.found}-", self.found, self.corpus],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        spent = time.monotonic() - begun
        self.take(done.stdout.decode(errors="replace"), spent)
        if done.returncode != 0:
            self.broken = done.stdout.decode(errors="replace")[-4000:]
        return self

    def take(self, said, spent):
        """What a slice says of itself: features once it has read the corpus and at its last line, and its inputs. What
        it says ahead of that is of what was found before: a corpus that takes long to read would be the best of all."""
        behind = "".join(said.partition("INITED")[1:])
        features = [int(each) for each in re.findall(r"(?:INITED|NEW|REDUCE|pulse|DONE).* ft: (\d+)", behind)]
        new = features[-1] - features[0] if features else 0
        runs = re.search(r"number_of_executed_units: (\d+)", said)
        self.runs += int(runs[1]) if runs else 0
        self.new += new
        self.seconds += spent
        worth = new / spent
        self.worth = worth if self.worth == float("inf") else MEMORY * self.worth + (1 - MEMORY) * worth


def choose(waiting, everyone):
    """The one that is owed its even share, most of it first; else the one that finds most."""
    whole = sum(each.seconds for each in everyone)
    share = EVEN_SHARE * whole / len(everyone)
    owed = [each for each in waiting if each.seconds < share]
    if owed:
        return min(owed, key=lambda each: each.seconds)
    return max(waiting, key=lambda each: each.worth)


def run(everyone, goal, end, jobs):
    waiting, under_way = list(everyone), set()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        while True:
            over = sum(each.runs for each in everyone) >= goal or time.monotonic() >= end or \
                any(each.broken for each in everyone)
            while not over and waiting and len(under_way) < jobs:
                chosen = choose(waiting, everyone)
                waiting.remove(chosen)
                seconds = max(1, min(SLICE_S, int(end - time.monotonic())))
                under_way.add(pool.submit(chosen.slice, seconds))
            if not under_way:
                return
            done, under_way = concurrent.futures.wait(under_way, return_when=concurrent.futures.FIRST_COMPLETED)
            waiting += [each.result() for each in done]


def size_of(folder):
    return sum(os.path.getsize(path) for path in glob.glob(folder + "/**", recursive=True) if os.path.isfile(path))


def keep(target):
    """Adds to the corpus what reaches more, the smallest inputs that do, as long as there is room."""
    least = target.found + "_least"
    shutil.rmtree(least, ignore_errors=True)
    shutil.copytree(target.corpus, least)
    there = set(os.listdir(least))
    # How often a place is reached is no reason to keep an input for ever, only that it is.
    subprocess.run([target.program, "-merge=1", "-use_counters=0", f"-timeout={HANGS_S}", "-rss_limit_mb=2048", least,
                    target.found], check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    room, kept = LARGEST_CORPUS - size_of(target.corpus), 0
    for name in sorted(set(os.listdir(least)) - there, key=lambda each: os.path.getsize(f"{least}/{each}")):
        room -= os.path.getsize(f"{least}/{name}")
        if room < 0:
            break
        shutil.copy(f"{least}/{name}", target.corpus)
        kept += 1
    shutil.rmtree(least)
    return kept


def main():
    parser = argparse.ArgumentParser(prog="fuzz.py")
    parser.add_argument("build")
    parser.add_argument("--runs", type=float, default=1e8)
    parser.add_argument("--minutes", type=float, default=24 * 60)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("--only", nargs="+")
    arguments = parser.parse_args()
    everyone = [Target(name, *where) for name, where in sorted(targets(os.path.abspath(arguments.build)).items())
                if not arguments.only or name in arguments.only]
    run(everyone, arguments.runs, time.monotonic() + 60 * arguments.minutes, arguments.jobs)
    print("| target | inputs | seconds | new features | kept |\n|---|---|---|---|---|")
    for each in everyone:
        kept = keep(each) if arguments.keep and not each.broken else 0
        print(f"| {each.name} | {each.runs} | {each.seconds:.0f} | {each.new} | {kept} |")
    print(f"{sum(each.runs for each in everyone):.3g} inputs in all")
    broken = [each for each in everyone if each.broken]
    for each in broken:
        print(f"--- {each.name}: {' '.join(glob.glob(each.found + '-*'))}\n{each.broken}")
    return int(bool(broken))


if __name__ == "__main__":
    sys.exit(main())
