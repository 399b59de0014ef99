"""What a program holds and does at a moment: memory, descriptors, threads, timers, what the display, the bus and the
sound server keep for it, and how often it wakes while nothing is asked of it."""

import os
import re
import time

from session import cpu_seconds, quiet, wakeups
from x_resources import Resources

MPRIS = "org.mpris.MediaPlayer2.velmora"

# Each series: its unit, and the growth an hour that is borne whatever the fit says. A week is 168 hours.
#   memory       64 KB an hour are 10 MB in a week: a third of what the program takes at rest
#   counts       half of one an hour: one that is gained in two hours, and stays so, is found
#   pixmaps      64 KB, as memory
#   wake-ups     a tick that is left behind wakes it at least once a second
#   processor    0.1 % of a core, a fiftieth of what a film takes
SERIES = {
    "private memory": ("KB", 64), "proportional memory": ("KB", 64), "descriptors": ("", 0.5), "threads": ("", 0.5),
    "timers": ("", 0.5), "mappings": ("", 4), "X windows": ("", 0.5), "X pixmaps": ("", 0.5),
    "X pixmap bytes": ("B", 65536), "X contexts": ("", 0.5), "X others": ("", 0.5), "X connections": ("", 0.5),
    "bus matches": ("", 0.5), "bus names": ("", 0.5), "sound clients": ("", 0.5), "sound streams": ("", 0.5),
    "wake-ups": ("1/s", 0.5), "processor": ("%", 0.1),
    "catalogue memory": ("KB", 64), "catalogue descriptors": ("", 0.5), "catalogue threads": ("", 0.5),
}
REST_S = 3  # wake-ups and processor are counted over so long


def memory(process):
    """KB that are this process's alone, and its share of all it has mapped."""
    told = {}
    with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as file:
        for line in file.read().splitlines()[1:]:
            words = line.split()
            told[words[0]] = int(words[1])
    return told["Private_Dirty:"], told["Pss:"]


def descriptors(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def threads(process):
    return len(os.listdir(f"/proc/{process}/task"))


def timers(process):
    """Those that the system knows: descriptors that fire, and timers that send a signal."""
    count = 0
    for number in os.listdir(f"/proc/{process}/fd"):
        try:
            count += "timerfd" in os.readlink(f"/proc/{process}/fd/{number}")
        except FileNotFoundError:
            pass  # closed meanwhile
    with open(f"/proc/{process}/timers", encoding="ascii") as file:
        return count + file.read().count("ID:")


def mappings(process):
    with open(f"/proc/{process}/maps", encoding="utf-8", errors="replace") as file:
        return file.read().count("\n")


class Measures:
    """Of one run of the program in a session, and of the catalogue beside it."""

    def __init__(self, session, process, catalogue):
        self.session, self.process, self.catalogue = session, process, catalogue
        self.display = Resources(session.env["DISPLAY"])

    def close(self):
        self.display.close()

    def busy(self):
        """What costs next to nothing to ask for, between two acts."""
        private, share = memory(self.process)
        return {"private memory": private, "proportional memory": share,
                "descriptors": descriptors(self.process), "threads": threads(self.process)}

    def rest(self):
        """All of it, of a program that has come to rest."""
        before = wakeups(self.process), cpu_seconds(self.process), time.monotonic()
        time.sleep(REST_S)  # the time itself is what is measured
        after = wakeups(self.process), cpu_seconds(self.process), time.monotonic()
        span = after[2] - before[2]
        found = self.busy()
        found |= {"wake-ups": (after[0] - before[0]) / span, "processor": 100 * (after[1] - before[1]) / span,
                  "timers": timers(self.process), "mappings": mappings(self.process)}
        return found | self._display() | self._bus() | self._sound() | self._catalogue()

    def _display(self):
        held = self.display.of(self.process)
        apart = {"X windows": "WINDOW", "X pixmaps": "PIXMAP", "X contexts": "GC",
                 "X pixmap bytes": "pixmap bytes", "X connections": "connections"}
        found = {name: held.pop(kind, 0) for name, kind in apart.items()}
        return found | {"X others": sum(held.values())}

    def _bus(self):
        told = quiet("busctl", "--user", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                     "org.freedesktop.DBus.Debug.Stats", "GetConnectionStats", "s", MPRIS, env=self.session.env)
        return {name: int(found[1]) for name, found in
                (("bus matches", re.search(r'"MatchRules" u (\d+)', told)),
                 ("bus names", re.search(r'"BusNames" u (\d+)', told))) if found}

    def _sound(self):
        def count(kind):
            told = quiet("pactl", "list", "short", kind, env=self.session.env)
            return sum("pactl" not in line for line in told.splitlines())
        return {"sound clients": count("clients"), "sound streams": count("sink-inputs")}

    def _catalogue(self):
        return {"catalogue memory": memory(self.catalogue)[0], "catalogue descriptors": descriptors(self.catalogue),
                "catalogue threads": threads(self.catalogue)}
