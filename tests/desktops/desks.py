"""Real desktop sessions on private screens: a window manager on its own screen, or a Wayland compositor nested in one,
with the guest server it brings. A hand on the outer screen is what a person's is, and the compositor sees it."""

import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "desktop"))
from session import BOUND, Session, quiet, wait_for  # noqa: E402


class Desk(Session):
    """A window manager on a bare screen."""
    command = ()
    answers = True  # whether its manager answers when it is asked for the extents of a frame to come
    tells_above = True  # whether it says of a window over the whole screen that it is kept on top
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
        if not wait_for(lambda: "window id" in quiet(
                "xprop", "-root", "_NET_SUPPORTING_WM_CHECK", env=self.env), 30):
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


class Sway(Desk):
    """Nested: its windows float, as they do where a person asks for it. It refuses to run as the superuser."""
    name, command, tells_above = "sway", ("sway",), False

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
        child = subprocess.Popen(
            [*user, *BOUND, "sway", "-c", self.nest + "/config"],
            env=dict(self.hands, HOME=self.nest, XDG_RUNTIME_DIR=runtime, WLR_BACKENDS="x11",
                     WLR_RENDERER="pixman"), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True)
        self.children.append(child)

        def display():
            try:
                with open(told, encoding="utf-8") as file:
                    return file.read().strip()
            except OSError:
                return None
        self.env["DISPLAY"] = wait_for(display, 30) or ""
        if not self.env["DISPLAY"]:
            raise RuntimeError("no guest server")
        Session.live[self.env["DISPLAY"]] = self
        self.wait_for_manager()

    def close(self):
        super().close()
        shutil.rmtree(getattr(self, "nest", ""), ignore_errors=True)


DESKS = {desk.name: desk for desk in (Openbox, Xfwm4, Sway, Icewm, I3, Mutter, Kwin)}
