#!/usr/bin/env python3
"""Hours of use of the real program, by a hand that a seed leads, and what becomes of memory and all else meanwhile.

    soak.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [--minutes N] [--seed N] [--out FOLDER] [--made FOLDER]
            [--only ACT] [--pace SECONDS] [--sanitized]

First every act is done once, then they come by their weights, a thousand an hour. After every few the program comes to
rest, and it is measured there: what a film or a search takes for the moment says nothing of a leak. The acts, their
order and all that they choose follow from the seed; when a server answers and where a track stands do not. With
--sanitized nothing is judged but the acts and what a sanitizer has to say.

Leaves table.md, picture.svg, samples.csv and acts.log in the output folder, and the screen after each act that failed.
The catalogue's program is named by the environment: VELMORA_CATALOGUE.
"""

import argparse
import csv
import os
import pathlib
import random
import subprocess
import sys
import time
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "../desktop/program"), os.path.join(HERE, "../desktop")]

import media  # noqa: E402
import report  # noqa: E402
from acts import ACTS, WEIGHTS  # noqa: E402
from hand import Hand  # noqa: E402
from measures import SERIES, Measures  # noqa: E402

PACE_S = 3.6  # a thousand acts an hour
BETWEEN_RESTS = 20
BETWEEN_RESTS_IN_A_SHORT_RUN = 5
SHORT_MINUTES = 15


class Run:
    def __init__(self, arguments, hand, log):
        self.minutes, self.seed, self.only, self.pace = (arguments.minutes, arguments.seed, arguments.only,
                                                         arguments.pace)
        self.hand, self.log = hand, log
        self.rests, self.busy, self.faults, self.done = [], [], [], {}
        self.begun = time.monotonic()
        self.measures = None if arguments.sanitized else Measures(hand.session, hand.player.child.pid, hand.server.pid)

    def hours(self):
        return (time.monotonic() - self.begun) / 3600

    def order(self):
        """Every act once, and then by weight for ever."""
        if self.only:
            while True:
                yield self.only
        first = sorted(ACTS)
        random.Random(self.seed).shuffle(first)
        yield from first
        number = 0
        names = sorted(ACTS)
        while True:
            number += 1
            yield random.Random(f"{self.seed} order {number}").choices(names, [WEIGHTS[name] for name in names])[0]

    def say(self, words):
        self.log.write(words + "\n")
        self.log.flush()

    def ended(self):
        return self.hand.player.child.poll() is not None

    def act(self, number, name):
        begun = time.monotonic()
        try:
            ACTS[name](self.hand, random.Random(f"{self.seed} {number}"))
            what = "done"
        except Exception as error:  # whatever it is, the run goes on and tells of it
            what = f"{type(error).__name__}: {error}"
            self.faults.append(f"act {number}, {name}, at {self.hours():.2f} h: {what}")
            self.say(traceback.format_exc())
            self.say(self.hand.situation())
            self.keep_screen(number)
        spent = time.monotonic() - begun
        place = None if self.ended() else self.hand.player.place(self.hand.main)
        self.say(f"{self.hours():7.4f} {number} {name} {spent:.1f} s, main at {place}: {what}")
        count, seconds = self.done.get(name, (0, 0))
        self.done[name] = count + 1, seconds + spent
        if what != "done" and not self.ended():
            self.recover()
        return spent

    def recover(self):
        try:
            self.hand.recover()
        except Exception as error:
            self.faults.append(f"nothing brings it back: {error}")

    def keep_screen(self, number):
        folder = os.path.dirname(self.log.name)
        subprocess.run(["import", "-silent", "-window", "root", f"{folder}/fault-{number}.png"],
                       env=self.hand.session.env, check=False, stderr=subprocess.DEVNULL)

    def rest(self):
        try:
            self.hand.rest()
            if self.measures:
                self.rests.append({"hours": self.hours()} | self.measures.rest())
                self.say(f"{self.hours():7.4f} at rest: {self.rests[-1]}")
        except Exception as error:
            self.faults.append(f"at rest, at {self.hours():.2f} h: {type(error).__name__}: {error}")
            self.say(traceback.format_exc())
            self.recover()

    def go(self):
        end = self.begun + 60 * self.minutes
        every = BETWEEN_RESTS if self.minutes > SHORT_MINUTES else BETWEEN_RESTS_IN_A_SHORT_RUN
        next_at = self.begun
        for number, name in enumerate(self.order()):
            if time.monotonic() > end or self.ended():
                break
            self.act(number, name)
            if self.measures and not self.ended():
                self.busy.append({"hours": self.hours()} | self.measures.busy())
            if number % every == every - 1 and not self.ended():
                self.rest()
            # What lasted longer is made up for by the quicker ones, within reason.
            next_at = max(next_at + self.pace, time.monotonic() - 60)
            time.sleep(max(0, next_at - time.monotonic()))

    def leave(self):
        """The end of the program, in order, with nothing said and nothing broken."""
        child = self.hand.player.child
        if self.ended():
            self.faults.append(f"the program ended by itself with status {child.returncode}")
        else:
            self.hand.open_tool("--quit")
            if not self.hand.player.ended(60):
                self.faults.append("the program does not end")
            elif child.returncode != 0:
                self.faults.append(f"the program ended with status {child.returncode}")
        with open(self.hand.session.home + "/errors.log", encoding="utf-8", errors="replace") as file:
            said = file.read()
        if said:
            self.say("--- what the program said\n" + said)
            self.faults.append("the program said: " + said.strip().splitlines()[0])


def write(run, head, folder):
    verdicts = report.judged(run.rests)
    text = report.table(head, run.rests, verdicts, run.done, run.faults)
    with open(f"{folder}/table.md", "w", encoding="utf-8") as file:
        file.write(text)
    if run.rests:
        with open(f"{folder}/picture.svg", "w", encoding="utf-8") as file:
            file.write(report.picture(head, run.rests, run.busy, verdicts))
        with open(f"{folder}/samples.csv", "w", encoding="utf-8", newline="") as file:
            out = csv.DictWriter(file, ["hours", *SERIES])
            out.writeheader()
            out.writerows(run.rests)
    return text, [name for name, verdict in verdicts.items() if verdict.grows]


def clear(folder):
    """Takes away what an earlier run has left: its pictures of faults would be taken for those of this one."""
    for pattern in ("table.md", "picture.svg", "samples.csv", "acts.log", "fault-*.png"):
        for old in pathlib.Path(folder).glob(pattern):
            old.unlink()


def main():
    parser = argparse.ArgumentParser(prog="soak.py")
    parser.add_argument("--minutes", type=float, default=120)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1_000_000))
    parser.add_argument("--out", default="soak")
    parser.add_argument("--made", help="where the media are kept from one run to the next")
    parser.add_argument("--only", choices=sorted(ACTS))
    parser.add_argument("--pace", type=float, default=PACE_S, help="seconds from one act to the next")
    parser.add_argument("--sanitized", action="store_true")
    arguments = parser.parse_args(sys.argv[5:])
    out = os.path.abspath(arguments.out)
    made = os.path.abspath(arguments.made or out + "/media")
    os.makedirs(out, exist_ok=True)
    os.makedirs(made, exist_ok=True)
    clear(out)
    head = f"{arguments.minutes:g} minutes with the seed {arguments.seed}"
    print(head, flush=True)
    media.make(made, sys.argv[3])
    hand = Hand()
    try:
        hand.begin_run(made)
        with open(f"{out}/acts.log", "w", encoding="utf-8") as log:
            run = Run(arguments, hand, log)
            try:
                run.go()
                run.leave()
            finally:
                text, growing = write(run, head, out)
    finally:
        hand.doCleanups()
    print(text)
    print(f"The table, the picture and each act: {out}")
    return int(bool(growing or run.faults))


if __name__ == "__main__":
    sys.exit(main())
