"""A private screen, sound server and home to run programs in, and what can be measured of them.

Everything is started by this module and ended by `Session.close`; nothing of the user's is touched.
"""

import atexit
import ctypes
import glob
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

RATE = 44100
CHUNK = 441 * 4  # 10 ms of 16-bit stereo


def wait_for(condition, seconds=30, step=0.02):
    """Polls until `condition` gives something true; None when the time is up."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(step)
    return None


def rest(look, seconds=30, still=0.4):
    """What `look` gives once it has been the same, and something, for a while; None if it never is."""
    since = [None, 0.0]

    def steady():
        now = look()
        if now != since[0]:
            since[:] = now, time.monotonic()
        return now if time.monotonic() - since[1] > still else None
    return wait_for(steady, seconds)


# The tool that waits for the window manager; scripts that only measure go on without it.
TAKEN = None
# After these the window manager may hold back a press, or move the keyboard to another window.
HELD = {"click", "mousedown", "mouseup", "windowfocus"}
# VELMORA_SLOW=manager or =program makes that one stand still for a moment at every key and press,
# as on a busy machine: a test that fails then did not wait for what it needs.
SLOW = os.environ.get("VELMORA_SLOW")
STILL_S = 0.4
USERS_OWN = {"DBUS_SESSION_BUS_ADDRESS", "LANG", "LANGUAGE", "SESSION_MANAGER", "TZ",
             "WAYLAND_DISPLAY", "XAUTHORITY"}


def let_pass(seconds):
    """Where the time itself is the condition, and nothing that could be looked at tells of it."""
    time.sleep(seconds)


def click_in_one_breath(times, button, env):
    """That many clicks where the pointer is, sent as one piece: what is sent one by one is no double
    click any more where a busy machine stops the sender in between."""
    if SLOW:
        Session.live[env["DISPLAY"]].stand_still()
    x11, test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    display = ctypes.c_void_p(x11.XOpenDisplay(env["DISPLAY"].encode()))
    for _ in range(times):
        test.XTestFakeButtonEvent(display, button, True, 0)
        test.XTestFakeButtonEvent(display, button, False, 0)
    x11.XCloseDisplay(display)  # sends them
    taken(env=env)


def quiet(*command, **options):
    if SLOW and command[0] == "xdotool" and {"key", "type", *HELD}.intersection(command):
        Session.live[options["env"]["DISPLAY"]].stand_still()
    out = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False,
                         text=True, **options).stdout.strip()
    if TAKEN and command[0] == "xdotool" and HELD.intersection(command):
        taken(**options)
    return out


def taken(window=None, env=None):
    """Returns once the window manager, and the program of a window, took in what was sent before.

    Without it keys overtake a press: they go straight to whatever has the keyboard."""
    return bool(TAKEN) and subprocess.run(
        [TAKEN, window] if window else [TAKEN], env=env, stderr=subprocess.DEVNULL,
        check=False).returncode == 0


# What a test starts ends with it, even where the test is killed and can end nothing itself.
BOUND = ["setpriv", "--pdeathsig", "KILL", "--"]
# A test that is asked to end clears up; by itself Python would just stop.
signal.signal(signal.SIGTERM, lambda number, _: sys.exit(128 + number))


class Session:
    screen = "1280x800x24"
    server_options = ()  # further ones of the display server
    live = {}  # by display
    answers = True  # whether its manager answers when it is asked for the extents of a frame to come

    def __init__(self, window_manager, sound=True, bus=False):
        self.home = tempfile.mkdtemp(prefix="velmora-bench-")
        self.runtime = tempfile.mkdtemp(prefix="vb")
        # Of the user's own session nothing counts that programs on a screen go by.
        own = {name: value for name, value in os.environ.items()
               if not name.startswith(("QT_", "XDG_", "LC_", "PULSE_")) and name not in USERS_OWN}
        self.env = dict(own, HOME=self.home, XDG_RUNTIME_DIR=self.runtime,
                        XDG_CONFIG_HOME=self.home + "/config", XDG_DATA_HOME=self.home + "/data",
                        XDG_CACHE_HOME=self.home + "/cache", QT_XCB_GL_INTEGRATION="none",
                        PULSE_SERVER=f"unix:{self.runtime}/native", LC_ALL="C.UTF-8")
        self.server = None
        for folder in ("config", "data", "cache"):
            os.makedirs(f"{self.home}/{folder}")
        self.children = []
        self.pulse = None
        # unittest leaves by Ctrl+C without its cleanups.
        atexit.register(self.close)
        self._display()
        Session.live[self.env["DISPLAY"]] = self
        self.manager = None
        if bus:
            self.start_bus()
        if window_manager:
            self.manager = self.spawn(["openbox"])
            if not self.manager_works():
                self.close()
                raise RuntimeError("no window manager")
        if sound:
            self.start_sound()

    def _display(self):
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            [*BOUND, "Xvfb", "-displayfd", str(writing), "-screen", "0", self.screen, "-nolisten", "tcp",
             "-noreset", *self.server_options],
            pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        number = b""
        while not number.endswith(b"\n"):
            piece = os.read(reading, 16)
            if not piece:
                raise RuntimeError("no virtual display")
            number += piece
        os.close(reading)
        self.env["DISPLAY"] = ":" + number.decode().strip()

    def manager_works(self):
        """Whether a window that comes up now will be managed: a manager tells of itself before it looks at
        events, and one that came up in between stayed unseen for ever. It answers only behind that."""
        return bool(wait_for(lambda: "window id" in quiet(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK", env=self.env), 30)) and (
                not TAKEN or not self.answers or taken(env=self.env))

    def start_sound(self):
        # Without a bus it would begin one for the screen, which outlasts both.
        without_bus = dict(self.env, DBUS_SESSION_BUS_ADDRESS="disabled:")
        self.pulse = subprocess.Popen(
            [*BOUND, "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--log-level=error",
             "-L", f"module-null-sink sink_name=null1 rate={RATE} channels=2",
             "-L", f"module-native-protocol-unix socket={self.runtime}/native"],
            env=without_bus, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if not wait_for(lambda: "null1" in quiet("pactl", "list", "short", "sinks", env=self.env)):
            raise RuntimeError("no sound server")

    def start_bus(self):
        """A bus of this session's own, for the programs started from now on.

        What this machine has for dialogs is not started on it: a test that wants a portal has its own."""
        services = self.env["XDG_DATA_HOME"] + "/dbus-1/services"
        os.makedirs(services, exist_ok=True)
        with open(f"{services}/org.freedesktop.portal.Desktop.service", "w") as service:
            service.write("[D-BUS Service]\nName=org.freedesktop.portal.Desktop\nExec=/bin/false\n")
        reading, writing = os.pipe()
        # Its socket goes with the session's folder: a bus that is killed leaves it where it is.
        folder = urllib.parse.quote(self.runtime, safe="/-_.\\*")
        self.spawn(["dbus-daemon", "--session", "--nofork", f"--print-address={writing}",
                    f"--address=unix:dir={folder}"], pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as told:
            address = told.readline().strip()
        if not address:
            raise RuntimeError("no bus")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address
        return self.children[-1]

    def start_words(self):
        """A bus on which programs started from now on tell what their windows say."""
        self.start_bus()
        self.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"

    def spawn(self, command, **options):
        child = subprocess.Popen([*BOUND, *command], env=self.env, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL, start_new_session=True, **options)
        self.children.append(child)
        return child

    def stop(self, child):
        try:
            os.killpg(child.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        child.wait()
        if child in self.children:
            self.children.remove(child)

    def stand_still(self):
        for child in self.children:
            if (child is self.manager) != (SLOW == "manager") or child.poll() is not None:
                continue
            child.send_signal(signal.SIGSTOP)
            go_on = threading.Timer(STILL_S, child.send_signal, [signal.SIGCONT])
            go_on.daemon = True
            go_on.start()

    def window(self, pid_or_class, seconds=30):
        """The number of a visible window of the class."""
        found = wait_for(lambda: quiet("xdotool", "search", "--onlyvisible", "--class",
                                       pid_or_class, env=self.env), seconds)
        return found.split()[-1] if found else None

    def key(self, key, window=None):
        if window:
            quiet("xdotool", "windowfocus", "--sync", window, env=self.env)
        quiet("xdotool", "key", key, env=self.env)

    def reply(self, key, box):
        """Answers a box; one that came up by itself is deaf to its answers for half a second."""
        let_pass(0.6)
        self.key(key, box)

    def close(self):
        atexit.unregister(self.close)
        Session.live.pop(self.env.get("DISPLAY"), None)
        for child in list(self.children):
            self.stop(child)
        for child in (self.pulse, self.server):
            if child:
                child.kill()
                child.wait()
        shutil.rmtree(self.home, ignore_errors=True)
        shutil.rmtree(self.runtime, ignore_errors=True)


# --- measures of a process and its children ------------------------------------------------------

def family(pid):
    """The process and its descendants."""
    found = [pid]
    for task in glob.glob(f"/proc/{pid}/task/*/children"):
        try:
            with open(task) as file:
                for child in file.read().split():
                    found += family(int(child))
        except OSError:
            pass
    return found


def pss_mb(pid):
    total = 0
    for one in family(pid):
        try:
            with open(f"/proc/{one}/smaps_rollup") as file:
                for line in file:
                    if line.startswith("Pss:"):
                        total += int(line.split()[1])
        except OSError:
            pass
    return total / 1024


def cpu_seconds(pid):
    """Run time by the scheduler's own account, in nanoseconds, of all threads."""
    total = 0
    for one in family(pid):
        for path in glob.glob(f"/proc/{one}/task/*/schedstat"):
            try:
                with open(path) as file:
                    total += int(file.read().split()[0])
            except OSError:
                pass
    return total / 1e9


def wakeups(pid):
    total = 0
    for one in family(pid):
        for path in glob.glob(f"/proc/{one}/task/*/status"):
            try:
                with open(path) as file:
                    for line in file:
                        if line.startswith("voluntary_ctxt_switches"):
                            total += int(line.split()[1])
            except OSError:
                pass
    return total


def over(session, pid, seconds):
    """CPU share, wake-ups a second and the X server's share (percent of a core) over a stretch."""
    before = (cpu_seconds(pid), wakeups(pid), cpu_seconds(session.server.pid), time.monotonic())
    time.sleep(seconds)
    after = (cpu_seconds(pid), wakeups(pid), cpu_seconds(session.server.pid), time.monotonic())
    span = after[3] - before[3]
    return {"cpu": 100 * (after[0] - before[0]) / span, "wakeups": (after[1] - before[1]) / span,
            "x": 100 * (after[2] - before[2]) / span}


# --- what is heard --------------------------------------------------------------------------------

class Recorder:
    """Records the null sink's monitor; every 10 ms block with the time of its arrival."""

    def __init__(self, session):
        self.blocks = []
        self.child = subprocess.Popen(
            ["parec", "-d", "null1.monitor", "--latency-msec=10", "--format=s16le",
             f"--rate={RATE}", "--channels=2"], env=session.env, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL)
        self.thread = threading.Thread(target=self._read, daemon=True)
        self.thread.start()
        # The sink has settled: it renders ahead when idle.
        if not wait_for(lambda: len(self.blocks) > 200):
            raise RuntimeError("nothing is recorded")

    def _read(self):
        while True:
            block = self.child.stdout.read(CHUNK)
            if len(block) < CHUNK:
                return
            self.blocks.append((time.monotonic(), block))

    @staticmethod
    def loud(block, floor=8):
        return any(abs(int.from_bytes(block[i:i + 2], "little", signed=True)) > floor
                   for i in range(0, len(block), 2))

    def first(self, since, loud=True, seconds=20.0, run=1):
        """Milliseconds from `since` to the first of `run` blocks in a row that are loud (or not)."""
        def look():
            count = 0
            for at, block in self.blocks:
                if at < since:
                    continue
                count = count + 1 if self.loud(block) == loud else 0
                if count >= run:
                    return 1000 * (at - since) - 10 * run
            return None
        found = wait_for(lambda: None if look() is None else (look(),), seconds)
        return found[0] if found else None

    def close(self):
        self.child.kill()
        self.child.wait()
        self.thread.join()
        self.child.stdout.close()
