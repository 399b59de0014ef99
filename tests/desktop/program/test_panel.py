#!/usr/bin/env python3
"""The icon in a panel that draws it and its menu itself, on a private bus; panels that come and go.

    test_panel.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import json
import os
import signal
import subprocess
import sys

from cases import run
from player import LIST, MINI, SETTINGS, SOURCE, stairs
from session import quiet, wait_for
from settings_window import FRAME, LANGUAGE_ROWS, SettingsTest
from test_tray import TRAY

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM, ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
MENU, MENU_PATH = "com.canonical.dbusmenu", "/StatusNotifierItem/Menu"

# What the conventions ask for.
ITEM_MEMBERS = {
    "Category": "s", "Id": "s", "Title": "s", "Status": "s", "WindowId": "i", "IconName": "s",
    "IconThemePath": "s", "IconPixmap": "a(iiay)", "OverlayIconName": "s",
    "OverlayIconPixmap": "a(iiay)", "AttentionIconName": "s", "AttentionIconPixmap": "a(iiay)",
    "AttentionMovieName": "s", "ToolTip": "(sa(iiay)ss)", "ItemIsMenu": "b", "Menu": "o",
    "ContextMenu": "ii", "Activate": "ii", "SecondaryActivate": "ii", "Scroll": "is",
    "ProvideXdgActivationToken": "s", "NewTitle": "-", "NewIcon": "-", "NewAttentionIcon": "-",
    "NewOverlayIcon": "-", "NewToolTip": "-", "NewMenu": "-", "NewStatus": "s",
}
MENU_MEMBERS = {
    "GetLayout": ("iias", "u(ia{sv}av)"), "GetGroupProperties": ("aias", "a(ia{sv})"),
    "GetProperty": ("is", "v"), "Event": ("isvu", "-"), "EventGroup": ("a(isvu)", "ai"),
    "AboutToShow": ("i", "b"), "AboutToShowGroup": ("ai", "aiai"), "Version": ("u", None),
    "TextDirection": ("s", None), "Status": ("s", None), "IconThemePath": ("as", None),
    "ItemsPropertiesUpdated": ("a(ia{sv})a(ias)", "-"), "LayoutUpdated": ("ui", "-"),
    "ItemActivationRequested": ("iu", "-"),
}


class PanelTest(SettingsTest):
    """A player with a track, a bus, and on it a panel as soon as a test wants one."""
    reads = False

    def setUp(self):
        super().setUp()
        self.bus = self.session.start_bus()
        self.track = f"{self.music}/track.wav"
        stairs(self.track, 60, step=0)
        self.write_list([self.track])

    def ask(self, *words):
        return subprocess.run(words, env=self.session.env, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, timeout=60).stdout.strip()

    def call(self, name, path, interface, member, *words):
        told = self.ask("busctl", "--user", "--json=short", "call", "--", name, path, interface,
                        member, *[str(word) for word in words])
        self.assertTrue(not told or told.startswith("{"), f"{member}: {told}")
        return json.loads(told)["data"] if told else None

    def start_panel(self):
        self.panel = self.session.spawn(
            ["/usr/bin/python3", os.path.join(SOURCE, "tests/desktop/program/panel.py")])
        self.assertTrue(wait_for(lambda: self.items() is not None, 30), "no panel")

    def items(self):
        told = self.ask("busctl", "--user", "--json=short", "get-property", WATCHER,
                        "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")
        return json.loads(told)["data"] if told.startswith("{") else None

    def there(self):
        """The icon's name on the bus, once it has been offered."""
        self.assertTrue(wait_for(self.items, 30), "the panel was offered nothing")
        return self.items()[-1]

    def begin_in_panel(self):
        self.start_panel()
        self.begin()
        self.item = self.there()

    def of_item(self, name):
        told = self.ask("busctl", "--user", "--json=short", "get-property", self.item, ITEM_PATH,
                        ITEM, name)
        return json.loads(told)["data"]

    def entries(self):
        """Number, properties and entries of each entry of the menu."""
        def plain(entry):
            number, properties, inner = entry
            return (number, {name: value["data"] for name, value in properties.items()},
                    [plain(one["data"]) for one in inner])
        self.revision, root = self.call(self.item, MENU_PATH, MENU, "GetLayout", "iias", 0, -1, 0)
        self.assertEqual(root[0], 0)
        return plain(root)[2]

    def numbers(self):
        """The numbers of all that can be chosen, in the order of the design."""
        def leaves(entries):
            for number, properties, inner in entries:
                if inner:
                    yield from leaves(inner)
                elif properties.get("type") != "separator":
                    yield number
        names = ("play", "pause", "stop", "next", "previous", "mode", "list", "settings", "line",
                 "info", "locate", "editor", "sound", "search", "update", "about", "help", "exit")
        return dict(zip(names, leaves(self.entries()), strict=True))

    def choose(self, name):
        self.call(self.item, MENU_PATH, MENU, "Event", "isvu", self.numbers()[name], "clicked", "i",
                  0, 0)

    def do(self, member, *words):
        self.call(self.item, ITEM_PATH, ITEM, member, *words)

    def told(self, words):
        """A list that grows by the lines of what the bus carries."""
        log = self.session.home + "/log"
        with open(log, "wb") as out:
            self.session.children.append(subprocess.Popen(
                ["dbus-monitor", "--session", words], env=self.session.env, stdout=out,
                stderr=subprocess.DEVNULL, start_new_session=True))

        def lines():
            with open(log, encoding="utf-8", errors="replace") as file:
                return file.read().splitlines()
        self.assertTrue(wait_for(lambda: "NameAcquired" in "".join(lines()), 60))
        return lines

    def start_tray(self):
        self.tray = self.session.spawn(TRAY)

    def embedded(self):
        found = quiet("xdotool", "search", "--onlyvisible", "--class", "trayer",
                      env=self.session.env).split()
        return any('"velmora"' in quiet("xwininfo", "-tree", "-id", number, env=self.session.env)
                   for number in found)

    def assert_embedded(self, wanted):
        self.assertTrue(wait_for(lambda: self.embedded() == wanted, 30),
                        f"an icon in the older tray: {not wanted}")


class Members(PanelTest):
    def test_every_member_is_there_with_the_types_of_the_conventions(self):
        self.begin_in_panel()
        for path, interface, members in ((ITEM_PATH, ITEM, ITEM_MEMBERS),
                                         (MENU_PATH, MENU, MENU_MEMBERS)):
            told = self.ask("gdbus", "introspect", "--session", "--xml", "--dest", self.item,
                            "--object-path", path)
            self.assertTrue(told)
            found = {}
            for line in self.ask("busctl", "--user", "introspect", "--no-pager", "--no-legend",
                                 self.item, path, interface).splitlines():
                name, _, signature, result = line.split()[:4]
                if name.startswith("."):
                    found[name[1:]] = (signature, result)
            self.assertEqual(set(found), set(members))
            for name, wanted in members.items():
                signature, result = wanted if isinstance(wanted, tuple) else (wanted, None)
                self.assertEqual(found[name][0], signature, name)
                if result:
                    self.assertEqual(found[name][1], result, name)

    def test_it_says_what_it_is_and_shows_its_picture_in_each_size(self):
        self.begin_in_panel()
        self.assertEqual(self.of_item("Category"), "ApplicationStatus")
        self.assertEqual(self.of_item("Status"), "Active")
        self.assertEqual(self.of_item("Menu"), MENU_PATH)
        self.assertFalse(self.of_item("ItemIsMenu"))
        pictures = self.of_item("IconPixmap")
        self.assertEqual([width for width, _, _ in pictures], [16, 22, 24, 32, 44, 48, 64, 96])
        for width, height, pixels in pictures:
            self.assertEqual((height, len(pixels)), (width, 4 * width * height))
            alpha, red, green, _ = (pixels[colour::4] for colour in range(4))
            self.assertIn(255, alpha)
            self.assertIn(0, alpha)
            # In the order of the network: what shows is green and not red.
            lit = [at for at in range(width * height) if alpha[at] == 255 and green[at] > 0x90]
            self.assertTrue(lit)
            self.assertTrue(any(red[at] < 0x70 for at in lit))

    def test_the_tip_follows_the_track_and_nothing_else_is_told_while_it_plays(self):
        self.begin_in_panel()
        told = self.told(f"type='signal',path='{ITEM_PATH}'")
        self.choose("next")
        self.assert_title(self.player, self.window, "track")
        self.assertTrue(wait_for(lambda: "track" in self.of_item("ToolTip")[2], 30))
        self.assertEqual(self.of_item("ToolTip")[2].count("\r"), 0)

        def signals():
            return [line for line in told() if f"path={ITEM_PATH};" in line]
        self.assertTrue(wait_for(signals, 30), "the change is not told")
        before = len(signals())
        self.assertTrue(wait_for(lambda: self.position() > 6, 60))
        self.assertEqual(len(signals()), before, "\n".join(signals()))
        self.assertTrue(all("NewToolTip" in line for line in signals()))

    def position(self):
        told = quiet("playerctl", "-p", "velmora", "position", env=self.session.env)
        return float(told) if told else 0


class Menu(PanelTest):
    def test_the_entries_are_those_of_the_menu_and_do_what_they_say(self):
        self.begin_in_panel()
        entries = self.entries()
        self.assertEqual(entries[0][1]["children-display"], "submenu")
        self.assertEqual([properties.get("type") for _, properties, _ in entries].count("separator"), 4)
        self.choose("next")
        self.assert_title(self.player, self.window, "track")
        self.assert_status("Playing")
        self.choose("pause")
        self.assert_status("Paused")
        self.choose("play")
        self.assert_status("Playing")
        self.choose("stop")
        self.assert_status("Stopped")
        self.choose("list")
        rows = self.player.form(LIST)
        self.assertTrue(rows, "no list")
        self.choose("list")
        self.assertTrue(self.player.gone(rows))
        self.choose("mode")
        mini = self.player.form(MINI)
        self.assertTrue(mini, "no mini window")
        self.choose("mode")
        self.assertTrue(self.player.gone(mini))
        self.choose("settings")
        settings = self.player.form(SETTINGS)
        self.assertTrue(settings, "no settings")
        self.choose("exit")
        self.assertTrue(self.player.ended())
        self.assertEqual(self.player.child.returncode, 0)
        self.assertNotIn(self.item, self.ask("busctl", "--user", "list", "--no-pager"))

    def assert_status(self, status):
        def now():
            return quiet("playerctl", "-p", "velmora", "status", env=self.session.env)
        self.assertTrue(wait_for(lambda: now() == status, 30), f"{now()}, not {status}")

    def test_another_language_reaches_the_menu_at_once(self):
        self.begin_in_panel()
        told = self.told(f"type='signal',path='{MENU_PATH}'")

        def labels():
            return [properties.get("label") for _, properties, _ in self.entries()]
        seen = [labels()]
        revisions = [self.revision]
        settings = self.open()
        self.click(settings, SETTINGS, "languageSet")
        self.steady_page(settings)
        for count, language in enumerate(("English", "French"), 1):
            self.press(settings, FRAME[0] + 40, FRAME[1] + (LANGUAGE_ROWS[language] + 165) / 15)
            self.click(settings, SETTINGS, "yy")
            self.assertTrue(wait_for(
                lambda: sum("LayoutUpdated" in line for line in told()) == count, 30),
                f"{language} is not told of")
            seen.append(labels())
            revisions.append(self.revision)
        self.assertTrue(any("PlayerSet" in (label or "") for label in seen[1]), seen[1])
        self.assertEqual(len({str(one) for one in seen}), 3)
        self.assertEqual(revisions, sorted(set(revisions)))

    def test_what_a_panel_asks_wrongly_is_answered(self):
        self.begin_in_panel()
        exit_number = self.numbers()["exit"]
        self.assertEqual(self.call(self.item, MENU_PATH, MENU, "GetProperty", "is", exit_number,
                                   "visible")[0]["data"], True)
        for words in (("GetLayout", "iias", 999, -1, 0), ("GetProperty", "is", 999, "label"),
                      ("GetProperty", "is", exit_number, "colour"),
                      ("Event", "isvu", 999, "clicked", "s", "", 0)):
            self.assertIn("no such", self.ask("busctl", "--user", "call", "--", self.item, MENU_PATH,
                                              MENU, *[str(word) for word in words]))
        self.assertEqual(self.call(self.item, MENU_PATH, MENU, "EventGroup", "a(isvu)", 2, 999,
                                   "clicked", "s", "", 0, exit_number, "hovered", "s", "", 0), [[999]])
        self.assertEqual(self.call(self.item, MENU_PATH, MENU, "AboutToShowGroup", "ai", 2, 0, 999),
                         [[], [999]])
        self.assertEqual(self.call(self.item, MENU_PATH, MENU, "AboutToShow", "i", 0), [False])
        # One level alone, and of it the texts.
        root = self.call(self.item, MENU_PATH, MENU, "GetLayout", "iias", 0, 1, 1, "label")[1]
        self.assertTrue(all(not entry["data"][2] for entry in root[2]))
        self.assertTrue(all(set(entry["data"][1]) <= {"label"} for entry in root[2]))
        self.assertIsNone(self.player.child.poll())


class Clicks(PanelTest):
    def test_a_click_does_what_it_does_on_the_older_icon(self):
        self.begin_in_panel()
        self.player.click(self.window, "minimizeButton")
        self.assertTrue(self.player.gone(self.window))
        self.do("Scroll", "is", 120, "vertical")
        self.do("SecondaryActivate", "ii", 10, 10)
        self.do("ProvideXdgActivationToken", "s", "token")
        self.assertTrue(self.player.stays_away(lambda: self.player.window(0.1), self.window))
        self.do("Activate", "ii", 10, 10)
        self.assertTrue(self.player.window(), "it stays minimised")
        self.player.click(self.window, "mini_Button")
        mini = self.player.form(MINI)
        self.assertTrue(mini)
        self.do("Activate", "ii", 10, 10)
        self.assertTrue(self.player.gone(mini))

    def test_a_panel_that_draws_no_menus_gets_the_player_s_own_where_it_says(self):
        self.begin_in_panel()
        self.player.tool("mousemove", 5, 5)
        self.do("ContextMenu", "ii", 700, 300)
        menus = self.player.menus()
        self.assertTrue(menus, "no menu")
        self.assertEqual(self.player.place(menus[0]), (700, 300))
        self.session.key("Escape")
        self.assertIsNotNone(self.player.menus(0))


class ComingAndGoing(PanelTest):
    def test_a_panel_that_comes_late_gets_it_and_one_that_goes_leaves_it_to_the_older_tray(self):
        self.start_tray()
        self.begin()
        self.assert_embedded(True)
        self.start_panel()
        self.item = self.there()
        self.assert_embedded(False)
        self.choose("list")
        self.assertTrue(self.player.form(LIST))
        self.session.stop(self.panel)
        self.assert_embedded(True)
        self.start_panel()
        self.item = self.there()
        self.assert_embedded(False)
        self.do("Activate", "ii", 1, 1)
        self.assertIsNone(self.player.child.poll())

    def test_a_watcher_without_a_panel_leaves_it_to_the_older_tray(self):
        self.start_tray()
        self.begin()
        self.assert_embedded(True)
        self.start_panel()
        self.assert_embedded(False)
        for there in ("false", "true", "false"):
            self.call(WATCHER, "/StatusNotifierWatcher", WATCHER, "SetPanel", "b", there)
            self.assert_embedded(there == "false")

    def test_a_bus_that_dies_leaves_it_to_the_older_tray(self):
        self.start_tray()
        self.begin_in_panel()
        self.assert_embedded(False)
        self.session.stop(self.bus)
        self.assert_embedded(True)
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "track")

    def test_a_bus_that_answers_late_holds_nothing_up(self):
        self.start_panel()
        self.bus.send_signal(signal.SIGSTOP)
        self.begin()
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "track")
        self.bus.send_signal(signal.SIGCONT)
        self.assertTrue(self.there())

    def test_a_panel_that_hangs_does_no_harm(self):
        self.start_panel()
        self.panel.send_signal(signal.SIGSTOP)
        self.begin()
        self.session.key("F6", self.window)
        self.assert_title(self.player, self.window, "track")
        self.panel.send_signal(signal.SIGCONT)
        self.assertTrue(self.there())


if __name__ == "__main__":
    run(sys.argv[5:])
