"""Real desktop sessions on private screens: a window manager on its own screen, or a Wayland compositor nested in one,
with the guest server it brings. A hand on the outer screen is what a person's is, and the compositor sees it."""

import os
import re
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "desktop"))
from session import BOUND, Session, family, quiet, wait_for  # noqa: E402


class Desk(Session):
    """A window manager on a bare screen."""
    command = ()
    tells_above = True  # whether it says of a window over the whole screen that it is kept on top
    tells_place = True  # whether it says where it has put a window that comes up
    hands = None  # the environment of the screen whose pointer a person moves; that of the programs if none

    @classmethod
    def missing(cls):
        return [name for name in (cls.command[0], "xdotool") if not shutil.which(name)]

    def __init__(self):
        super().__init__(window_manager=False, sound=False)
        try:
            self.start_desk()
            self.start_sound()
        except RuntimeError:
            self.close()
            raise

    def start_desk(self):
        self.start_words()  # window managers of desktops want a bus
        self.manager = self.spawn(list(self.command))
        self.wait_for_manager()

    def wait_for_manager(self):
        if not self.manager_works():
            raise RuntimeError("no window manager")

    def hand(self, *words):
        quiet("xdotool", *[str(word) for word in words], env=self.hands or self.env)


class Openbox(Desk):
    name, command = "openbox", ("openbox",)


class Xfwm4(Desk):
    name, command, tells_above = "xfwm4", ("xfwm4", "--compositor=off"), False


class Icewm(Desk):
    name, command = "icewm", ("icewm",)


class I3(Desk):
    name, command, tells_above = "i3", ("i3",), False

    def start_desk(self):
        config = self.home + "/i3"
        with open(config, "w", encoding="utf-8") as file:
            file.write("font pango:monospace 8\n")
        self.command = ("i3", "-c", config)
        super().start_desk()


class Mutter(Desk):
    name, command = "mutter", ("mutter", "--x11")


class Kwin(Desk):
    name, command, answers = "kwin_x11", ("kwin_x11",), False


class Marco(Desk):
    name, command, answers = "marco", ("marco", "--no-composite"), False


class Picom:
    """With a compositor beside a manager that has none of its own."""
    @classmethod
    def missing(cls):
        return super().missing() + [name for name in ("picom",) if not shutil.which(name)]

    def start_desk(self):
        super().start_desk()
        self.spawn(["picom", "--backend", "xrender", "--config", "/dev/null"])
        if not wait_for(lambda: quiet("xdotool", "search", "--name", "^picom$", env=self.env), 30):
            raise RuntimeError("no compositor")


class OpenboxPicom(Picom, Openbox):
    name = "openbox with picom"


class I3Picom(Picom, I3):
    name = "i3 with picom"


class Shell:
    """GNOME's shell looks for a login manager; it gets one that does nothing, on a bus of its own."""
    current = "GNOME"

    @classmethod
    def missing(cls):
        lacks = subprocess.run(["/usr/bin/python3", "-c", "import dbusmock"], check=False,
                               stderr=subprocess.DEVNULL).returncode
        return super().missing() + (["python3-dbusmock"] if lacks else [])

    def start_login(self):
        self.start_words()
        session = self.env["DBUS_SESSION_BUS_ADDRESS"]
        self.start_bus()
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = self.env["DBUS_SESSION_BUS_ADDRESS"]
        self.env["DBUS_SESSION_BUS_ADDRESS"] = session
        self.env["XDG_CURRENT_DESKTOP"] = self.current
        self.spawn(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"])
        if not wait_for(lambda: "login1" in quiet(
                "dbus-send", f"--bus={self.env['DBUS_SYSTEM_BUS_ADDRESS']}", "--print-reply",
                "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListNames", env=self.env), 30):
            raise RuntimeError("no login manager")

    def ask(self, words):
        return quiet("gdbus", "call", "--session", "--dest", "org.gnome.Shell", "--object-path",
                     "/org/gnome/Shell", "--method", "org.gnome.Shell.Eval", words, env=self.env)

    def leave_overview(self):
        # Its notices would lie where the strip is, and a window that is still on its way takes no click.
        self.ask("imports.gi.St.Settings.get().inhibit_animations()")
        ready = "Main.messageTray.bannerBlocked = true; Main.overview.hide(); " \
                "!Main.layoutManager._startingUp && !Main.overview.visible"
        if not wait_for(lambda: "'true'" in self.ask(ready), 60, 0.5):
            raise RuntimeError("its overview stays")


class GnomeX(Shell, Desk):
    name, command = "gnome-shell on Xorg", ("gnome-shell", "--x11", "--unsafe-mode")

    def start_desk(self):
        self.env["XDG_SESSION_TYPE"] = "x11"
        self.start_login()
        self.manager = self.spawn(list(self.command))
        self.wait_for_manager()
        self.leave_overview()


class Nested(Desk):
    """A Wayland compositor on the screen, with the guest server that it starts itself."""
    answers = False

    @classmethod
    def missing(cls):
        return super().missing() + [name for name in ("Xwayland",) if not shutil.which(name)]

    def nest(self, command, **more):
        self.hands = dict(self.env)
        before = dict(self.env)
        self.env.update(more)
        self.manager = self.spawn(command)
        self.env = before
        guest = wait_for(self.guest, 60)
        if not guest:
            raise RuntimeError("no guest server")
        self.env.update(guest)
        Session.live[self.env["DISPLAY"]] = self
        self.wait_for_manager()

    def guest(self):
        for pid in family(self.manager.pid):
            try:
                with open(f"/proc/{pid}/cmdline", encoding="utf-8") as file:
                    words = file.read().split("\0")
            except OSError:
                continue
            if os.path.basename(words[0]) != "Xwayland":
                continue
            found = {"DISPLAY": next((word for word in words if word.startswith(":")), "")}
            if "-auth" in words:
                found["XAUTHORITY"] = words[words.index("-auth") + 1]
            return found
        return None


class KwinWayland(Nested):
    name, command = "kwin_wayland", ("kwin_wayland",)

    def start_desk(self):
        self.start_words()
        # A copy has no right of its own above those of the user who runs the test.
        own = shutil.copy(shutil.which("kwin_wayland"), self.home + "/kwin_wayland")
        self.nest([own, "--x11-display", self.env["DISPLAY"], "--xwayland", "--width", "1280", "--height",
                   "800", "--socket", "velmora"], KWIN_COMPOSE="Q", LIBGL_ALWAYS_SOFTWARE="1")


class GnomeWayland(Shell, Nested):
    name, command = "gnome-shell on Wayland", ("gnome-shell",)

    def start_desk(self):
        self.start_login()
        self.nest(["gnome-shell", "--wayland", "--nested", "--unsafe-mode"], XDG_SESSION_TYPE="wayland",
                  MUTTER_DEBUG_DUMMY_MODE_SPECS="1280x800", LIBGL_ALWAYS_SOFTWARE="1")
        self.leave_overview()


class Weston(Nested):
    name, command, tells_above = "weston", ("weston",), False
    tells_place = False

    def start_desk(self):
        self.start_words()
        self.log = self.home + "/weston.log"
        config = self.home + "/weston.ini"
        with open(config, "w", encoding="utf-8") as file:
            # Its panel lies above all windows: at the upper edge no hand would reach what slid out there.
            file.write("[shell]\npanel-position=bottom\n")
        self.nest(["weston", "--backend=x11-backend.so", "--use-pixman", "--xwayland", "--width=1280",
                   "--height=800", "--idle-time=0", "--config=" + config, "--log=" + self.log])
        # Its pointer goes by how far the hand moves, and begins elsewhere: the corner is where both stop.
        self.hand("mousemove", 1279, 799)
        self.hand("mousemove", 0, 0)

    def guest(self):
        try:
            with open(self.log, encoding="utf-8", errors="replace") as file:
                found = re.search(r"listening on display (:\d+)", file.read())
        except OSError:
            return None
        return {"DISPLAY": found[1]} if found else None


class Sway(Desk):
    """Nested: its windows float, as they do where a person asks for it. It refuses to run as the superuser."""
    name, command, tells_above, answers = "sway", ("sway",), False, False

    @classmethod
    def missing(cls):
        return super().missing() + [name for name in ("Xwayland", "xhost") if not shutil.which(name)]

    def start_desk(self):
        self.hands = dict(self.env)
        quiet("xhost", "+local:", env=self.hands)
        self.nest = tempfile.mkdtemp(prefix="vsway")
        runtime = self.nest + "/run"
        os.makedirs(runtime, mode=0o700)
        told = self.nest + "/display"
        with open(self.nest + "/config", "w", encoding="utf-8") as file:
            file.write('output * resolution 1280x800\ndefault_border none\nxwayland force\n'
                       'for_window [class=".*"] floating enable, border none\n'
                       f'exec sh -c "xhost +local:; echo $DISPLAY > {told}.new; mv {told}.new {told}"\n')
        user = []
        if os.geteuid() == 0:
            subprocess.run(["chown", "-R", "nobody", self.nest], check=True)
            os.chmod(self.nest, 0o755)
            user = ["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups", "--"]
        with open(self.nest + "/said", "w", encoding="utf-8") as said:
            child = subprocess.Popen(
                [*user, *BOUND, "sway", "-c", self.nest + "/config"],
                env=dict(self.hands, HOME=self.nest, XDG_RUNTIME_DIR=runtime, WLR_BACKENDS="x11",
                         WLR_RENDERER="pixman"), stdout=said, stderr=said, start_new_session=True)
        self.children.append(child)

        def display():
            try:
                with open(told, encoding="utf-8") as file:
                    return file.read().strip()
            except OSError:
                return None
        self.env["DISPLAY"] = wait_for(display, 30) or ""
        if not self.env["DISPLAY"]:
            with open(said.name, encoding="utf-8", errors="replace") as file:
                raise RuntimeError(f"no guest server; sway has status {child.poll()} and said:\n{file.read()}")
        Session.live[self.env["DISPLAY"]] = self
        self.wait_for_manager()

    def close(self):
        super().close()
        shutil.rmtree(getattr(self, "nest", ""), ignore_errors=True)


DESKS = {desk.name: desk for desk in (Openbox, OpenboxPicom, Xfwm4, Marco, Mutter, GnomeX, Kwin, Icewm, I3, I3Picom,
                                      Sway, Weston, KwinWayland, GnomeWayland)}
