#!/usr/bin/env python3
"""The sound-card check of the real program against what the sound server's own tool tells.

    test_sound_check.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import sys

from cases import run
from player import CHECK, NO_SOUND_CARD, TITLE, Player, PlayerTest
from session import quiet, wait_for

MONO = ["   11.025Khz,Mono,8bit,11Kb/Ps", "   11.025Khz,Mono,16bit,22Kb/Ps",
        "   22.05Khz,Mono,8bit,22Kb/Ps", "   22.05Khz,Mono,16bit,43Kb/Ps",
        "   44.1Khz,Mono,8bit,43Kb/Ps", "   44.1Khz,Mono,16bit,86Kb/Ps"]
BOTH = ["   11.025Khz,Mono,8bit,11Kb/Ps", "   11.025Khz,Stereo,8bit,22Kb/Ps",
        "   11.025Khz,Mono,16bit,22Kb/Ps", "   11.025Khz,Stereo,16bit,43Kb/Ps",
        "   22.05Khz,Mono,8bit,22Kb/Ps", "   22.05Khz,Stereo,8bit,43Kb/Ps",
        "   22.05Khz,Mono,16bit,43Kb/Ps", "   22.05Khz,Stereo,16bit,86Kb/Ps",
        "   44.1Khz,Mono,8bit,43Kb/Ps", "   44.1Khz,Stereo,8bit,86Kb/Ps",
        "   44.1Khz,Mono,16bit,86Kb/Ps", "   44.1Khz,Stereo,16bit,172Kb/Ps"]


def shades(player, main, control):
    """How many shades of grey an image of the main window has; a bare ground has few."""
    return len(set(player.look(main, control)))


def choose_in_menu(test, player, main):
    """Walks to the check's entry of the main menu and chooses it."""
    player.click(main, "title", button=3)
    test.assertTrue(player.menus(), "no menu comes up")
    for key in ["Down"] * 9 + ["Return"]:
        test.session.key(key)


class SoundCheck(PlayerTest):
    def pactl(self, *words):
        return quiet("pactl", *words, env=self.session.env)

    def add_sink(self, name, description, channels, properties=""):
        self.assertTrue(self.pactl(
            "load-module", "module-null-sink", f"sink_name={name}", f"channels={channels}",
            f"sink_properties=\"device.description='{description}' {properties}\""))

    def told(self):
        """What the server's tool says of the default sink."""
        default = re.search(r"Default Sink: (.*)", self.pactl("info"))[1]
        for sink in self.pactl("list", "sinks").split("\n\n"):
            if re.search(rf"^\s*Name: {re.escape(default)}$", sink, re.M):
                def number(name, text=sink):
                    found = re.search(rf'{name} = "(?:0x)?([0-9a-f]+)"', text)
                    value = int(found[1], 16) if found else 0
                    return value - 0x10000 if value > 0x7FFF else value
                return {"name": re.search(r"Description: (.*)", sink)[1][:31],
                        "channels": len(re.search(r"Channel Map: (.*)", sink)[1].split(",")),
                        "vendor": number(r"device\.vendor\.id"),
                        "product": number(r"device\.product\.id")}
        return None

    def expected(self):
        told = self.told()
        version = re.search(r"^Server Version: (\d+\.\d+)", self.pactl("info"), re.M)[1]
        stereo = told["channels"] >= 2
        return [f"产品名称：{told['name']}", f"产品 Id：{told['product']}",
                f"驱动程序 Id：{told['vendor']}", f"驱动程序版本：{version}",
                f"输出声道：{told['channels']}", "", "支持格式列表：", *(BOTH if stereo else MONO), "",
                "扩展输出功能列表：", "   Support Volume Control",
                *(["   Support Left-Right Channals"] if stereo else [])]

    def open_check(self):
        player, main = self.start()
        player.click(main, "check_SoundDriver")
        window = player.form(CHECK)
        self.assertTrue(window, "the window does not come up")
        return player, window

    def printed(self, player, window):
        """The lines of the text box, by way of the clipboard."""
        player.click(window, "checkResult_Text", form=CHECK)
        quiet("xdotool", "key", "ctrl+a", "ctrl+c", env=self.session.env)
        return quiet("xclip", "-o", "-selection", "clipboard", env=self.session.env).split("\n")

    def assert_prints(self, player, window, lines):
        while lines and not lines[-1]:
            lines = lines[:-1]
        self.assertTrue(wait_for(lambda: self.printed(player, window) == lines),
                        f"{self.printed(player, window)} instead of {lines}")

    def press(self, player, window):
        player.click(window, "check", form=CHECK)

    def test_prints_what_the_servers_tool_says_of_the_one_sink(self):
        player, window = self.open_check()
        self.press(player, window)
        self.assertEqual(self.told()["channels"], 2)
        self.assert_prints(player, window, self.expected())
        self.press(player, window)
        self.assert_prints(player, window, self.expected())

    def test_prints_the_default_one_of_two_sinks_with_different_channels(self):
        self.add_sink("single", "One Speaker", 1,
                      "device.vendor.id=8086 device.product.id=a0c8")
        self.add_sink("many", "A name that is longer than its place in the record", 6)
        player, window = self.open_check()
        for sink, channels in (("single", 1), ("null1", 2), ("many", 6), ("single", 1)):
            with self.subTest(sink=sink):
                self.pactl("set-default-sink", sink)
                self.assertEqual(self.told()["channels"], channels)
                self.assertEqual(self.told()["product"], -24376 if channels == 1 else 0)
                self.press(player, window)
                self.assert_prints(player, window, self.expected())

    def test_button_and_menu_entry_stand_where_there_is_a_device(self):
        player, main = self.start()
        self.assertTrue(wait_for(lambda: shades(player, main, "check_SoundDriver") > 8))
        choose_in_menu(self, player, main)
        self.assertTrue(player.form(CHECK), "the entry does not show the window")

    def test_a_server_that_has_gone_leaves_the_text_and_says_nothing(self):
        player, window = self.open_check()
        self.press(player, window)
        lines = self.expected()
        self.assert_prints(player, window, lines)
        self.session.pulse.kill()
        self.session.pulse.wait()
        self.press(player, window)
        self.assertTrue(player.stays_away(player.boxes, window), "a message comes up")
        self.assert_prints(player, window, lines)

    def test_close_hides_the_window_and_the_button_brings_it_back_with_its_text(self):
        player, window = self.open_check()
        self.press(player, window)
        lines = self.expected()
        self.assert_prints(player, window, lines)
        player.click(window, "close", form=CHECK)
        self.assertTrue(player.gone(window))
        self.assertIsNone(player.child.poll())
        player.click(player.window(), "check_SoundDriver")
        again = player.form(CHECK)
        self.assertTrue(again)
        self.assert_prints(player, again, lines)


class WithoutDevice(PlayerTest):
    reads = True
    sound = False

    def test_the_message_comes_and_button_and_menu_entry_are_gone(self):
        player = Player(self.session)
        box = self.assert_box(player, NO_SOUND_CARD)
        self.assertEqual(player.title(box), TITLE)
        self.session.reply("Return", box)
        main = player.window()
        self.assertTrue(main, "the start does not go on")
        self.assertTrue(wait_for(lambda: shades(player, main, "desktop_Lrc") > 8))
        self.assertLess(shades(player, main, "check_SoundDriver"), 8, "the button is there")
        player.click(main, "check_SoundDriver")
        self.assertTrue(player.stays_away(lambda: player.form(CHECK, 0.1), main))
        choose_in_menu(self, player, main)
        self.assertTrue(player.stays_away(lambda: player.form(CHECK, 0.1), main),
                        "the entry is not disabled")


if __name__ == "__main__":
    run(sys.argv[5:])
