#!/usr/bin/env python3
"""The player as other programs meet it on a session bus: media keys, files, and keeping awake.

    test_remote.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile

from cases import run
from player import PROGRAM, PlayerTest, Player, stairs
from session import quiet, wait_for

NAME = "org.mpris.MediaPlayer2.velmora"
ROOT = "org.mpris.MediaPlayer2"
PLAYER = "org.mpris.MediaPlayer2.Player"
PATH = "/org/mpris/MediaPlayer2"
ID = "example.norvane.velmora"

# What the convention asks for: kind, arguments or type, and for properties how changes are told.
TOLD = {
    ROOT: {
        ".Quit": ("method", "-", "-"), ".Raise": ("method", "-", "-"),
        ".CanQuit": ("property", "b", "const"), ".CanRaise": ("property", "b", "const"),
        ".CanSetFullscreen": ("property", "b", "emits-change"),
        ".DesktopEntry": ("property", "s", "const"),
        ".Fullscreen": ("property", "b", "emits-change writable"),
        ".HasTrackList": ("property", "b", "const"), ".Identity": ("property", "s", "const"),
        ".SupportedMimeTypes": ("property", "as", "const"),
        ".SupportedUriSchemes": ("property", "as", "const"),
    },
    PLAYER: {
        ".Next": ("method", "-", "-"), ".OpenUri": ("method", "s", "-"),
        ".Pause": ("method", "-", "-"), ".Play": ("method", "-", "-"),
        ".PlayPause": ("method", "-", "-"), ".Previous": ("method", "-", "-"),
        ".Seek": ("method", "x", "-"), ".SetPosition": ("method", "ox", "-"),
        ".Stop": ("method", "-", "-"), ".Seeked": ("signal", "x", "-"),
        ".CanControl": ("property", "b", ""), ".CanGoNext": ("property", "b", "emits-change"),
        ".CanGoPrevious": ("property", "b", "emits-change"),
        ".CanPause": ("property", "b", "emits-change"),
        ".CanPlay": ("property", "b", "emits-change"),
        ".CanSeek": ("property", "b", "emits-change"),
        ".LoopStatus": ("property", "s", "emits-change writable"),
        ".MaximumRate": ("property", "d", "emits-change"),
        ".Metadata": ("property", "a{sv}", "emits-change"),
        ".MinimumRate": ("property", "d", "emits-change"),
        ".PlaybackStatus": ("property", "s", "emits-change"), ".Position": ("property", "x", ""),
        ".Rate": ("property", "d", "emits-change writable"),
        ".Shuffle": ("property", "b", "emits-change writable"),
        ".Volume": ("property", "d", "emits-change writable"),
    },
}


class BusTest(PlayerTest):
    """A player with three tracks, and a bus."""

    def setUp(self):
        super().setUp()
        self.bus = self.session.start_bus()
        self.tracks = [f"{self.music}/{name}.wav" for name in ("one", "two 100%", "drei")]
        for track in self.tracks:
            stairs(track, 60, step=0)
        self.write_list(self.tracks)

    def ask(self, *words):
        return subprocess.run(words, env=self.session.env, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, timeout=60)

    def control(self, *words):
        return self.ask("playerctl", "-p", "velmora", *words).stdout.strip()

    def property(self, name, interface=PLAYER):
        return self.ask("busctl", "--user", "get-property", NAME, PATH, interface, name).stdout.strip()

    def assert_comes(self, value, *words):
        self.assertTrue(wait_for(lambda: self.control(*words) == value, 60),
                        f"{words} tells {self.control(*words)!r}, not {value!r}")

    def names(self):
        told = self.ask("busctl", "--user", "list", "--no-legend", "--no-pager").stdout
        return {line.split()[0] for line in told.splitlines() if line}

    def start_there(self):
        """A client asks for no next track before it is told that there is one."""
        player, main = self.start()
        self.assertTrue(wait_for(lambda: NAME in self.names(), 60), "the player is not on the bus")
        self.assertTrue(wait_for(lambda: self.property("CanGoNext") == "b true", 60),
                        "the list is not told of")
        return player, main

    def play_first(self):
        self.control("next")
        self.assert_comes("Playing", "status")


class Remote(BusTest):
    def test_every_member_is_there_with_the_types_of_the_convention(self):
        self.start_there()
        for interface, members in TOLD.items():
            told = self.ask("busctl", "--user", "introspect", "--no-pager", "--no-legend", NAME, PATH,
                            interface).stdout
            found = {}
            for line in told.splitlines():
                match = re.match(r"(\.\S+)\s+(method|property|signal)\s+(\S+)\s+(.*)", line)
                if match is None:
                    continue
                name, kind, types, rest = match.groups()
                flags = re.search(r"((?:emits-change|const|writable| )*)$", rest).group(1).strip()
                found[name] = (kind, types, flags if kind == "property" else "-")
            self.assertEqual(found, members)

    def test_a_key_plays_pauses_and_steps(self):
        with open(self.music + "/Cover.jpg", "wb") as picture:
            picture.write(b"picture")
        self.start_there()
        self.play_first()
        self.assert_comes("Playing", "status")
        self.assert_comes("one", "metadata", "xesam:title")
        self.control("play-pause")
        self.assert_comes("Paused", "status")
        self.control("play")
        self.assert_comes("Playing", "status")
        self.control("next")
        self.assert_comes("two 100%", "metadata", "xesam:title")
        self.assertEqual(self.control("metadata", "xesam:url"),
                         "file://" + self.tracks[1].replace("%", "%25").replace(" ", "%20"))
        self.assertEqual(self.control("metadata", "mpris:length"), "60000000")
        self.assertEqual(self.control("metadata", "mpris:artUrl"), f"file://{self.music}/Cover.jpg")
        self.control("position", "30")
        self.assertTrue(wait_for(lambda: float(self.control("position")) >= 30, 25))
        self.control("volume", "0.5")
        self.assertTrue(wait_for(lambda: abs(float(self.control("volume")) - 0.5) < 0.02, 60))
        self.control("loop", "Track")
        self.assert_comes("Track", "loop")
        self.assert_stored("PlayMode", "2")
        self.control("shuffle", "On")
        self.assert_comes("On", "shuffle")
        self.control("stop")
        self.assert_comes("Stopped", "status")

    def test_the_picture_in_a_track_s_tag_is_shown_to_whoever_asks(self):
        picture, track = self.session.home + "/red.png", self.music + "/tagged.mp3"
        self.ask("convert", "-size", "32x32", "xc:red", picture)
        self.ask("lame", "--quiet", "--ti", picture, "--tt", "Tagged", self.tracks[0], track)
        self.write_list([track, self.tracks[0]])
        self.start_there()
        self.play_first()
        self.assert_comes("Tagged", "metadata", "xesam:title")
        art = self.control("metadata", "mpris:artUrl")
        self.assertTrue(art.startswith(f"file://{self.session.env['XDG_CACHE_HOME']}/"), art)
        with open(art.removeprefix("file://"), "rb") as kept, open(picture, "rb") as inside:
            self.assertEqual(kept.read(), inside.read())
        # A track without one shows none, and back the same file serves again.
        self.control("next")
        self.assert_comes("one", "metadata", "xesam:title")
        self.assertNotIn("mpris:artUrl", self.property("Metadata"))
        self.control("previous")
        self.assert_comes(art, "metadata", "mpris:artUrl")
        self.assertEqual(len(os.listdir(os.path.dirname(art.removeprefix("file://")))), 1)
        # One beside the track goes ahead of it.
        shutil.copy(picture, self.music + "/folder.png")
        self.control("next")
        self.assert_comes(f"file://{self.music}/folder.png", "metadata", "mpris:artUrl")
        self.control("previous")
        self.assert_comes("Tagged", "metadata", "xesam:title")
        self.assertEqual(self.control("metadata", "mpris:artUrl"), f"file://{self.music}/folder.png")

    def test_playing_is_told_of_once_and_then_nothing_is(self):
        self.start_there()
        self.play_first()
        self.assert_comes("Playing", "status")
        log = self.session.home + "/log"
        with open(log, "wb") as out:
            watching = subprocess.Popen(
                ["dbus-monitor", "--session", f"type='signal',path='{PATH}'"],
                env=self.session.env, stdout=out, stderr=subprocess.DEVNULL, start_new_session=True)
        self.session.children.append(watching)

        def signals():
            with open(log, encoding="utf-8", errors="replace") as file:
                return file.read()
        self.assertTrue(wait_for(lambda: "NameAcquired" in signals(), 60))
        before = float(self.control("position"))
        self.assertTrue(wait_for(lambda: float(self.control("position")) > before + 4, 30))
        self.assertNotIn("PropertiesChanged", signals())
        self.control("position", "30")
        self.assertTrue(wait_for(lambda: signals().count("member=Seeked") == 1, 60))
        self.control("next")
        self.assertTrue(wait_for(lambda: "two 100%" in signals(), 25))
        self.control("volume", "0.25")
        self.assertTrue(wait_for(lambda: '"Volume"' in signals(), 60))
        self.assertEqual(signals().count('"Metadata"'), 1)
        self.assertEqual(signals().count("member=Seeked"), 1)
        self.assertNotIn('"Position"', signals())

    def test_a_place_in_another_track_is_not_gone_to(self):
        self.start_there()
        self.play_first()
        self.assert_comes("Playing", "status")
        self.ask("busctl", "--user", "call", NAME, PATH, PLAYER, "SetPosition", "ox",
                 "/example/norvane/velmora/track/999", "50000000")
        self.ask("busctl", "--user", "call", NAME, PATH, PLAYER, "SetPosition", "ox",
                 self.control("metadata", "mpris:trackid").strip("'"), "-1")
        self.assertLess(float(self.control("position")), 40)
        track = self.control("metadata", "mpris:trackid").strip("'")
        self.ask("busctl", "--user", "call", NAME, PATH, PLAYER, "SetPosition", "ox", track, "50000000")
        self.assertTrue(wait_for(lambda: float(self.control("position")) >= 50, 25))

    def test_asking_for_everything_a_thousand_times_skips_no_track(self):
        for track in self.tracks:
            stairs(track, 3, step=0)
        self.start_there()
        self.play_first()
        script = ("import dbus,sys\nbus=dbus.SessionBus()\n"
                  f"player=dbus.Interface(bus.get_object('{NAME}','{PATH}'),"
                  "'org.freedesktop.DBus.Properties')\nlast=None\n"
                  "for _ in range(1000):\n"
                  f" now=player.GetAll('{PLAYER}')\n title=now['Metadata'].get('xesam:title')\n"
                  " if title!=last: print(title,flush=True)\n last=title\n")
        titles = []

        def three():
            told = self.ask("/usr/bin/python3", "-c", script).stdout.splitlines()
            titles.extend(title for title in told if not titles or title != titles[-1])
            return len(titles) >= 3
        wait_for(three, 60, 0)  # a thousand take no longer than a quick machine's second
        self.assertEqual(titles[:3], ["one", "two 100%", "drei"])

    def test_files_come_from_outside_and_one_player_serves_them(self):
        player, _ = self.start_there()
        odd = os.fsencode(self.music) + b"/\xff odd.wav"
        with open(self.tracks[0], "rb") as one, open(odd, "wb") as out:
            out.write(one.read())
        self.ask("gdbus", "call", "--session", "--dest", ID, "--object-path",
                 "/example/norvane/velmora", "--method", "org.freedesktop.Application.Open",
                 f"['file://{self.music}/%FF%20odd.wav']", "{}")
        self.assert_comes("Playing", "status")
        self.assertTrue(wait_for(lambda: len(self.list_lines()) == 4, 60))
        self.assertIn("%FF%20odd.wav", self.control("metadata", "xesam:url"))
        many = [f"file:///gone/{number}.wav" for number in range(10_000)]
        script = ("import dbus,sys\nbus=dbus.SessionBus()\n"
                  f"app=dbus.Interface(bus.get_object('{ID}','/example/norvane/velmora'),"
                  "'org.freedesktop.Application')\n"
                  "app.Open([f'file:///gone/{n}.wav' for n in range(10000)],"
                  "dbus.Dictionary(signature='sv'))\n")
        self.assertEqual(self.ask("/usr/bin/python3", "-c", script).returncode, 0)
        self.assertEqual(len(many), 10_000)
        refused = self.ask("busctl", "--user", "call", NAME, PATH, PLAYER, "OpenUri", "s",
                           "https://example.org/a.mp3")
        self.assertNotEqual(refused.returncode, 0)
        self.assertIsNone(player.child.poll())
        self.assertEqual(self.control("status"), "Playing")

    def test_a_second_start_that_is_refused_shows_the_first(self):
        player, main = self.start_there()
        quiet("xdotool", "windowminimize", "--sync", main, env=self.session.env)
        second = Player(self.session)
        self.assertTrue(wait_for(lambda: main in player.windows(), 30), "the first stays away")
        self.session.stop(second.child)

    def test_two_homes_have_two_names(self):
        self.start_there()
        other = dict(self.session.env)
        for name in ("CONFIG", "DATA", "CACHE"):
            other[f"XDG_{name}_HOME"] = f"{self.session.home}/other-{name}"
        second = subprocess.Popen([os.path.abspath(PROGRAM)], env=other, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, start_new_session=True)
        self.session.children.append(second)
        name = f"{NAME}.instance{second.pid}"
        self.assertTrue(wait_for(lambda: {NAME, name} <= self.names(), 30), str(self.names()))

    def test_a_player_that_was_killed_leaves_no_name(self):
        player, _ = self.start_there()
        self.session.stop(player.child)
        self.assertTrue(wait_for(lambda: not {NAME, ID} & self.names(), 60))

    def test_a_bus_that_hangs_or_dies_does_no_harm(self):
        player, main = self.start_there()
        self.control("next")
        self.assert_comes("Playing", "status")
        self.bus.send_signal(signal.SIGSTOP)
        player.click(main, "nextButton")
        self.assert_title(player, main, "two")  # what is only being opened takes no pause
        player.click(main, "pauseButton")
        self.assertTrue(player.took(main))
        self.bus.send_signal(signal.SIGCONT)
        self.assert_comes("two 100%", "metadata", "xesam:title")
        self.assert_comes("Paused", "status")
        self.session.stop(self.bus)
        player.click(main, "stopButton")
        player.click(main, "nextButton")
        self.assertTrue(player.took(main))
        self.assertIsNone(player.child.poll())
        with open(self.session.home + "/errors.log", encoding="utf-8") as errors:
            self.assertEqual(errors.read(), "")

    def test_the_mixer_knows_the_program_by_its_id(self):
        self.start_there()
        self.play_first()

        def streams():
            return quiet("pactl", "list", "sink-inputs", env=self.session.env)
        self.assertTrue(wait_for(lambda: f'application.id = "{ID}"' in streams(), 60), streams())
        self.assertIn(f'application.icon_name = "{ID}"', streams())

    def test_quitting_from_outside_is_the_close_button(self):
        player, _ = self.start_there()
        self.ask("busctl", "--user", "call", NAME, PATH, ROOT, "Quit")
        self.assertTrue(player.ended(20))
        self.assertEqual(player.child.returncode, 0)


class Opened(BusTest):
    """The command line, with the player started by the bus where none runs."""

    OPEN = os.path.join(os.path.dirname(os.path.abspath(PROGRAM)), "../tools/open/velmora-open")

    def setUp(self):
        services = tempfile.mkdtemp(prefix="velmora-services-")
        self.addCleanup(shutil.rmtree, services)
        os.makedirs(services + "/dbus-1/services")
        with open(f"{services}/dbus-1/services/{ID}.service", "w", encoding="utf-8") as file:
            file.write(f"[D-BUS Service]\nName={ID}\nExec={os.path.abspath(PROGRAM)}\n")
        self.services = services
        super().setUp()

    def start_bus_with_services(self):
        self.session.env["XDG_DATA_DIRS"] = self.services
        self.bus = self.session.start_bus()

    def open(self, *words):
        return self.ask(self.OPEN, *words)

    def end_it(self):
        self.open("--quit")

    def test_a_file_starts_the_player_and_is_played(self):
        self.start_bus_with_services()
        self.addCleanup(self.end_it)
        done = self.open(self.tracks[1])
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        self.assertTrue(wait_for(lambda: "two 100%" in self.open("--status").stdout, 30))
        self.assertTrue(wait_for(lambda: self.open("--status").stdout.startswith("Playing"), 30))

    def test_what_is_asked_for_during_the_start_that_it_causes_is_done(self):
        self.start_bus_with_services()
        self.addCleanup(self.end_it)
        self.ask("gdbus", "call", "--session", "--dest", ID, "--object-path", PATH, "--method",
                 PLAYER + ".Next")
        self.assertTrue(wait_for(lambda: self.open("--status").stdout.startswith("Playing"), 30),
                        self.open("--status").stdout)

    def test_it_steers_and_says_what_plays(self):
        self.start_there()
        self.assertEqual(self.open("--next").returncode, 0)
        self.assertTrue(wait_for(lambda: re.match(r"Playing\none\n0:\d\d / 1:00\n",
                                                  self.open("--status").stdout), 60))
        self.open("--pause")
        self.assertTrue(wait_for(lambda: self.open("--status").stdout.startswith("Paused"), 60))
        self.open("--seek", "0:40")
        self.assertTrue(wait_for(lambda: re.search(r"\n0:4\d", self.open("--status").stdout), 25))
        self.open("--volume", "50")
        self.assertTrue(wait_for(lambda: abs(float(self.control("volume")) - 0.5) < 0.02, 60))
        more = self.music + "/more.wav"
        shutil.copy(self.tracks[0], more)
        self.assertEqual(self.open("--enqueue", more).returncode, 0)
        self.assertTrue(wait_for(lambda: more in self.list_lines(), 60))
        self.assertIn("one", self.open("--status").stdout)

    def test_each_line_of_the_lyric_comes_in_its_time(self):
        with open(self.tracks[0].replace(".wav", ".lrc"), "w", encoding="utf-8") as file:
            file.write("[00:01.00]first\n[00:03.00]second\n")
        self.start_there()
        log = self.session.home + "/lines"
        with open(log, "wb") as out:
            child = subprocess.Popen([self.OPEN, "--lyrics"], env=self.session.env, stdout=out,
                                     start_new_session=True)
        self.session.children.append(child)
        self.open("--next")

        def lines():
            with open(log, encoding="utf-8") as file:
                return file.read().split("\n")
        self.assertTrue(wait_for(lambda: "second" in lines(), 30), str(lines()))
        self.assertEqual([line for line in lines() if line], ["first", "second"])
        self.open("--quit")
        self.assertTrue(wait_for(lambda: child.poll() == 0, 60))

    def test_what_cannot_be_reached_is_one_line_and_status_1(self):
        for words in (["--pause"], ["--status"], [self.tracks[0]]):
            done = self.open(*words)
            self.assertEqual((done.returncode, done.stdout.count("\n")), (1, 1), done.stdout)
        done = self.open("/gone.mp3")
        self.assertEqual((done.returncode, done.stdout.count("\n")), (1, 1), done.stdout)
        self.session.env["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nowhere"
        done = self.open("--play")
        self.assertEqual((done.returncode, done.stdout.count("\n")), (1, 1), done.stdout)


class Mixer(BusTest):
    def streams(self):
        return re.findall(r'media\.name = "([^"]*)"',
                          self.ask("pactl", "list", "sink-inputs").stdout)

    def test_a_track_has_its_name_in_the_mixer(self):
        self.start_there()
        self.play_first()
        self.assertTrue(wait_for(lambda: self.streams() == ["one"], 60), str(self.streams()))
        self.control("next")
        self.assertTrue(wait_for(lambda: self.streams() == ["two 100%"], 40), str(self.streams()))

    def test_a_call_pauses_and_its_end_goes_on(self):
        self.ask("pactl", "load-module", "module-role-cork")
        self.start_there()
        self.play_first()
        for _ in range(2):
            call = self.session.spawn(["paplay", "--property=media.role=phone", self.tracks[2]])
            self.assert_comes("Paused", "status")
            self.session.stop(call)
            self.assert_comes("Playing", "status")
        # What a person paused stays so.
        self.control("pause")
        self.assert_comes("Paused", "status")
        call = self.session.spawn(["paplay", "--property=media.role=phone", self.tracks[2]])
        self.assertTrue(wait_for(lambda: len(self.streams()) == 2, 60), str(self.streams()))
        self.session.stop(call)
        self.assertTrue(wait_for(lambda: len(self.streams()) == 1, 60), str(self.streams()))
        self.assertEqual(self.control("status"), "Paused")


class Awake(PlayerTest):
    """The services that keep a machine awake, of which the log counts the calls."""

    def setUp(self):
        super().setUp()
        self.session.start_bus()
        self.tracks = [f"{self.music}/{name}.wav" for name in ("one", "two")]
        for track in self.tracks:
            stairs(track, 4, step=0)
        self.write_list(self.tracks)

    def mock(self, name, path, interface, *methods):
        log = f"{self.session.home}/{name}.log"
        with open(log, "wb") as out:
            child = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--session", name, path,
                                      interface], env=self.session.env, stdout=out,
                                     stderr=subprocess.DEVNULL, start_new_session=True)
        self.session.children.append(child)
        self.assertTrue(wait_for(lambda: quiet("busctl", "--user", "status", name,
                                               env=self.session.env), 60))
        for method, takes, gives, code in methods:
            done = subprocess.run(
                ["gdbus", "call", "--session", "--dest", name, "--object-path", path, "--method",
                 "org.freedesktop.DBus.Mock.AddMethod", interface, method, takes, gives, code],
                env=self.session.env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
            self.assertEqual(done.returncode, 0, done.stdout)

        def calls():
            with open(log, encoding="utf-8") as file:
                return re.findall(r"^[0-9.]+ (\w+)", file.read(), re.M)
        return child, calls

    def manager(self):
        return self.mock("org.gnome.SessionManager", "/org/gnome/SessionManager",
                         "org.gnome.SessionManager", ("Inhibit", "susu", "u", "ret = 7"),
                         ("Uninhibit", "u", "", ""))

    def test_a_playing_track_keeps_the_machine_awake_without_a_gap(self):
        _, calls = self.manager()
        player, main = self.start()
        player.click(main, "nextButton")
        self.assertTrue(wait_for(lambda: calls() == ["Inhibit"], 60), str(calls()))
        # Into the second track, which begins by itself.
        def title():
            return quiet("playerctl", "-p", "velmora", "metadata", "xesam:title",
                         env=self.session.env).strip()
        self.assertTrue(wait_for(lambda: title() == "two", 30))
        self.assertEqual(calls(), ["Inhibit"])
        player.click(main, "pauseButton")
        self.assertTrue(wait_for(lambda: calls() == ["Inhibit", "Uninhibit"], 60), str(calls()))

    def test_the_portal_comes_first_and_its_request_is_closed(self):
        path = "/org/freedesktop/portal/desktop"
        portal, calls = self.mock(
            "org.freedesktop.portal.Desktop", path, "org.freedesktop.portal.Inhibit",
            ("Inhibit", "sua{sv}", "o",
             "self.AddObject('/request', 'org.freedesktop.portal.Request', {}, "
             "[('Close', '', '', '')]) if '/request' not in __import__('dbusmock').get_objects() "
             "else None\nret = dbus.ObjectPath('/request')"))
        _, others = self.manager()
        player, main = self.start()
        player.click(main, "nextButton")
        self.assertTrue(wait_for(lambda: "Inhibit" in calls(), 60), str(calls()))
        player.click(main, "stopButton")
        self.assertTrue(wait_for(lambda: "Close" in calls(), 60), str(calls()))
        self.assertEqual(others(), [])
        self.assertIsNone(portal.poll())

    def real_manager(self, number):
        """One that answers from its first moment on the bus, and writes down what it is asked."""
        log = f"{self.session.home}/manager{number}.log"
        script = (
            "import dbus, dbus.service, dbus.mainloop.glib\nfrom gi.repository import GLib\n"
            "dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)\n"
            "N = 'org.gnome.SessionManager'\n"
            "class Manager(dbus.service.Object):\n"
            "    @dbus.service.method(N, 'susu', 'u')\n"
            "    def Inhibit(self, app, window, why, what):\n"
            "        print('Inhibit', flush=True)\n        return 3\n"
            "    @dbus.service.method(N, 'u', '')\n"
            "    def Uninhibit(self, cookie):\n        print('Uninhibit', flush=True)\n"
            "bus = dbus.SessionBus()\nmanager = Manager(bus, '/org/gnome/SessionManager')\n"
            "name = dbus.service.BusName(N, bus)\nprint('there', flush=True)\n"
            "GLib.MainLoop().run()\n")
        with open(log, "wb") as out:
            child = subprocess.Popen(["/usr/bin/python3", "-c", script], env=self.session.env,
                                     stdout=out, start_new_session=True)
        self.session.children.append(child)

        def calls():
            with open(log, encoding="utf-8") as file:
                return file.read().split()
        self.assertTrue(wait_for(lambda: "there" in calls(), 60))
        return child, calls

    def test_a_service_that_comes_back_is_asked_again(self):
        stairs(self.tracks[0], 60, step=0)
        first, calls = self.real_manager(1)
        player, main = self.start()
        player.click(main, "nextButton")
        self.assertTrue(wait_for(lambda: calls() == ["there", "Inhibit"], 60), str(calls()))
        self.session.stop(first)
        _, again = self.real_manager(2)
        self.assertTrue(wait_for(lambda: again() == ["there", "Inhibit"], 60), str(again()))
        player.click(main, "stopButton")
        self.assertTrue(wait_for(lambda: again() == ["there", "Inhibit", "Uninhibit"], 60),
                        str(again()))


if __name__ == "__main__":
    run(sys.argv[5:])
