#!/usr/bin/env python3
"""The packages, from their building to their removal.

    packages.py SOURCE WORK_FOLDER

Builds them twice in two folders and has them looked at, then installs them on this machine, starts the player from
where it was installed, plays a file and takes the packages away again. The second half needs the rights of the
superuser and a machine on which Velmora is not installed; without them it is left out by name.
"""

import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request
import wave

SOURCE, WORK = (os.path.abspath(path) for path in sys.argv[1:3])
sys.path.insert(0, os.path.join(SOURCE, "tests/desktop"))
from session import Recorder, Session, quiet, wait_for  # noqa: E402

ID = "example.norvane.velmora"
NAMES = ("velmora", "velmora-catalogue")
# What belongs to no package but is made anew of what all packages bring.
CACHES = re.compile(r"/(icon-theme\.cache|mimeinfo\.cache|mime\.cache|index\.db|\.cache)$|/var/cache/")


def run(*words, **options):
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    return done.returncode, done.stdout


def installed(name):
    return "installed" in run("dpkg-query", "-W", "-f=${db:Status-Status}", name)[1].split()


def running():
    """The players that were started from where the package put the program."""
    found = []
    for link in glob.glob("/proc/[0-9]*/exe"):
        try:
            if os.readlink(link) == "/usr/bin/velmora":
                found.append(link)
        except OSError:
            pass
    return found


def needed(*names):
    """These packages and all that they cannot do without, as far as it is installed."""
    told = run("apt-cache", "depends", "--recurse", "--installed", "--no-recommends", "--no-suggests", "--no-conflicts",
               "--no-breaks", "--no-replaces", "--no-enhances", *names)[1]
    return {line for line in told.splitlines() if line and not line.startswith((" ", "<"))}


def libraries_of(names):
    """The files that a program would load from these packages."""
    told = run("dpkg-query", "-L", *names)[1]
    return sorted(path for path in told.splitlines() if ".so" in path and os.path.isfile(path)
                  and not os.path.islink(path))


def system_files():
    found = set()
    for root in ("/usr", "/etc", "/var/lib"):
        for folder, folders, names in os.walk(root):
            if folder.startswith(("/var/lib/dpkg", "/var/lib/apt", "/usr/local")):
                folders.clear()
                continue
            found |= {path for path in (os.path.join(folder, name) for name in names + folders)
                      if not CACHES.search(path)}
    return found


# No blank in them: dpkg then leaves the folder in what the compiler writes down.
FOLDERS = (WORK + "/one", WORK + "/somewhere-else")
BUILT = set()


def build(folder):
    """Whichever half of the tests comes first."""
    if folder not in BUILT:
        code, told = run(SOURCE + "/scripts/build_packages.sh", folder)
        assert code == 0, told
        BUILT.add(folder)


class Packages(unittest.TestCase):
    folders = FOLDERS

    @classmethod
    def setUpClass(cls):
        for folder in cls.folders:
            build(folder)

    def packages(self, folder):
        return [glob.glob(f"{glob.escape(folder)}/{name}_*.deb")[0] for name in NAMES]

    def test_there_is_one_for_the_player_and_one_for_the_catalogue_with_debug_symbols_beside(self):
        names = {os.path.basename(path).split("_")[0] for path in glob.glob(self.folders[0] + "/*.deb")
                 if "-dbgsym" not in path}
        self.assertEqual(names, set(NAMES))
        self.assertEqual(len(glob.glob(self.folders[0] + "/*-dbgsym_*.deb")), 2)

    def test_nothing_is_amiss_for_lintian(self):
        changes = glob.glob(self.folders[0] + "/*.changes")
        code, told = run("lintian", "--allow-root", "--pedantic", "--fail-on", "error,warning,pedantic", *changes)
        self.assertEqual((code, told), (0, ""))

    def test_everything_was_compiled_with_what_makes_it_hard_to_break(self):
        code, told = run("blhc", "--all", self.folders[0] + "/build.log")
        self.assertEqual(code, 0, told)

    def test_two_builds_in_two_folders_are_the_same(self):
        for one, other in zip(self.packages(self.folders[0]), self.packages(self.folders[1])):
            code, told = run("diffoscope", one, other)
            self.assertEqual((code, told[:4000]), (0, ""))

    def test_the_catalogue_needs_no_toolkit(self):
        told = run("dpkg-deb", "-f", self.packages(self.folders[0])[1], "Depends")[1]
        self.assertNotIn("qt", told.lower())

    def test_nothing_runs_when_they_are_installed_or_removed(self):
        for package in self.packages(self.folders[0]):
            folder = WORK + "/control"
            shutil.rmtree(folder, ignore_errors=True)
            run("dpkg-deb", "-e", package, folder)
            self.assertEqual(set(os.listdir(folder)) - {"control", "md5sums"}, set())


@unittest.skipIf(os.geteuid() != 0, "only the superuser can install packages")
@unittest.skipIf(any(installed(name) for name in NAMES), "Velmora is installed on this machine")
class OnThisMachine(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        build(FOLDERS[0])

    def setUp(self):
        self.before = system_files()
        debs = [path for path in glob.glob(FOLDERS[0] + "/*.deb") if "-dbgsym" not in path]
        self.assertEqual(len(debs), 2)
        code, told = run("apt-get", "install", "-y", "--no-install-recommends", "--no-remove", *debs,
                         env=dict(os.environ, DEBIAN_FRONTEND="noninteractive"))
        self.addCleanup(run, "apt-get", "purge", "-y", *NAMES)
        self.assertEqual(code, 0, told)

    def test_starts_from_the_menu_plays_and_leaves_nothing_but_what_the_person_made(self):
        session = Session(window_manager=True)
        self.addCleanup(session.close)
        session.start_words()
        song = session.home + "/song.wav"
        with wave.open(song, "wb") as out:
            out.setparams((2, 2, 44100, 0, "NONE", ""))
            out.writeframes((b"\x00\x20\x00\x20" * 50 + b"\x00\xe0\x00\xe0" * 50) * (441 * 60))
        quiet("gio", "launch", f"/usr/share/applications/{ID}.desktop", env=session.env)
        self.assertTrue(session.window("velmora", 30), "no window comes up")
        self.assertEqual(len(running()), 1)

        # A file manager's double click.
        quiet("gio", "mime", "audio/x-wav", f"{ID}.desktop", env=session.env)
        quiet("gio", "open", song, env=session.env)
        self.assertTrue(wait_for(lambda: "song" in quiet("velmora-open", "--status", env=session.env), 30),
                        "the file is not opened")
        recorder = Recorder(session)
        self.addCleanup(recorder.close)
        self.assertTrue(wait_for(lambda: recorder.blocks and Recorder.loud(recorder.blocks[-1][1], 200), 20),
                        "nothing is heard")
        self.assertEqual(len(running()), 1, "one player is enough")

        quiet("velmora-open", "--quit", env=session.env)
        self.assertTrue(wait_for(lambda: not running(), 15), "it does not end")

        code, told = run("apt-get", "purge", "-y", *NAMES)
        self.assertEqual(code, 0, told)
        self.assertEqual(system_files() - self.before, set())
        self.assertTrue(os.path.exists(session.home + "/config/velmora/registry.sqlite"))

    def test_without_what_is_recommended_it_plays_mp3_flac_ogg_and_wav(self):
        told = run("dpkg-query", "-W", "-f=${Recommends}", "velmora")[1]
        recommended = [name for name in re.split(r"[,|\s]+", told) if name and installed(name)]
        self.assertIn("libmpv2", recommended)
        alone = needed("velmora")
        # The machine has more; this player must not see it. The bus is what velmora-open reaches it by.
        hidden = libraries_of(needed(*recommended) - alone - needed("libsystemd0"))
        self.assertTrue(any("libmpv" in path for path in hidden), hidden)
        session = Session(window_manager=True)
        self.addCleanup(session.close)
        session.start_bus()
        hide = "".join(f"mount --bind /dev/null '{path}' && " for path in hidden)
        session.children.append(subprocess.Popen(
            ["unshare", "--mount", "sh", "-c", hide + "exec /usr/bin/velmora"], env=session.env,
            start_new_session=True))
        self.assertTrue(session.window("velmora", 30), "no window comes up")
        recorder = Recorder(session)
        self.addCleanup(recorder.close)
        for form in ("mp3", "flac", "ogg", "wav"):
            song = f"{session.home}/song.{form}"
            run("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "sine=frequency=440:duration=4", song)
            quiet("velmora-open", song, env=session.env)
            self.assertTrue(wait_for(lambda: recorder.blocks and Recorder.loud(recorder.blocks[-1][1], 200), 20),
                            f"{form} is not heard")
            quiet("velmora-open", "--stop", env=session.env)
            self.assertTrue(wait_for(lambda: not Recorder.loud(recorder.blocks[-1][1], 200), 20), "it goes on")
        quiet("velmora-open", "--quit", env=session.env)

    def test_the_catalogues_unit_serves_the_folder_that_its_settings_name(self):
        manager = UserManager()
        self.addCleanup(manager.close)
        music = manager.home + "/My Music"
        os.makedirs(music)
        with wave.open(music + "/song.wav", "wb") as out:
            out.setparams((1, 2, 8000, 0, "NONE", ""))
            out.writeframes(bytes(16000))
        os.makedirs(manager.home + "/.config/velmora")
        with open(manager.home + "/.config/velmora/catalogue.env", "w", encoding="utf-8") as settings:
            settings.write(f"FOLDER={music}\nOPTIONS=--port 18427\n")
        manager.own()
        self.assertNotEqual(manager.control("is-active", "velmora-catalogue")[0], 0, "nobody has switched it on")
        code, told = manager.control("start", "velmora-catalogue")
        self.assertEqual(code, 0, told)

        def page():
            try:
                with urllib.request.urlopen("http://127.0.0.1:18427/", timeout=5) as answer:
                    return answer.read().decode("gb18030", "replace")
            except OSError:
                return ""
        self.assertTrue(wait_for(lambda: "song" in page(), 30), page() + manager.control("status", "-n", "20",
                                                                                        "velmora-catalogue")[1])
        begin = time.monotonic()
        self.assertEqual(manager.control("stop", "velmora-catalogue")[0], 0)
        self.assertLess(time.monotonic() - begin, 10)
        self.assertEqual(page(), "")


class UserManager:
    """A manager of units for an ordinary user, apart from the machine's own: a space of its own for what is mounted,
    with the files that tell of a running systemd and a hierarchy of groups to be handed on."""

    SETUP = """mount -t tmpfs tmpfs /run && mkdir -p /run/systemd/system && mount -t tmpfs tmpfs /sys/fs/cgroup &&
        mount -t cgroup2 none /sys/fs/cgroup && mkdir -p /sys/fs/cgroup/velmora-test &&
        chown -R 65534 /sys/fs/cgroup/velmora-test && echo $$ >/sys/fs/cgroup/velmora-test/cgroup.procs && exec """

    def __init__(self):
        self.home = tempfile.mkdtemp(prefix="velmora-user-")
        self.runtime = self.home + "/run"
        os.makedirs(self.runtime, 0o700)
        self.own()
        self.plain = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "env", "-i",
                      "HOME=" + self.home, "XDG_RUNTIME_DIR=" + self.runtime, "PATH=/usr/bin:/bin"]
        self.log = open(self.home + "/log", "wb")
        self.child = subprocess.Popen(
            ["unshare", "--mount", "--propagation", "private", "sh", "-c",
             self.SETUP + " ".join(self.plain) + " /lib/systemd/systemd --user"],
            stdout=self.log, stderr=subprocess.STDOUT, start_new_session=True)
        if not wait_for(lambda: os.path.exists(self.runtime + "/systemd/private"), 20):
            self.close()
            raise RuntimeError("no manager of units for a user runs here")

    def own(self):
        run("chown", "-R", "65534:65534", self.home)
        os.chmod(self.home, 0o755)

    def control(self, *words):
        return run(*self.plain, "systemctl", "--user", *words)

    def close(self):
        self.child.terminate()
        self.child.wait()
        self.log.close()
        shutil.rmtree(self.home, ignore_errors=True)


if __name__ == "__main__":
    os.makedirs(WORK, exist_ok=True)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
