#!/usr/bin/env python3
"""The icon in the panels of real desktops, which draw it and its menu themselves or have the program's in their tray.

    test_panels.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

A panel that is not installed is skipped by name. Pictures of their menus go into the folder that VELMORA_ARTIFACTS names.
"""

import os
import shutil
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "desktop", "program"))
from player import PlayerTest, stairs  # noqa: E402
from session import quiet, wait_for  # noqa: E402

BAR = 40  # pixels at the screen's foot in which the panel lies

XFCE = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=640;y=780"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
"""
LXQT = """panels=panel1
[panel1]
alignment=-1
iconSize=22
length=100
lengthInPercents=true
panelSize=32
plugins=statusnotifier
position=Bottom
[statusnotifier]
type=statusnotifier
"""
TINT2 = """panel_items = S
panel_monitor = all
panel_position = bottom center horizontal
panel_size = 100% 32
panel_background_id = 1
systray_padding = 4 4 4
systray_icon_size = 22
rounded = 0
border_width = 0
background_color = #202020 100
"""


class Panel:
    """What every panel's test does."""
    program = config = text = None

    def setUp(self):
        if not shutil.which(self.program):
            self.skipTest(f"{self.program} is not installed")
        super().setUp()
        self.session.start_bus()
        stairs(f"{self.music}/track.wav", 60, step=0)
        self.write_list([f"{self.music}/track.wav"])
        path = f"{self.session.env['XDG_CONFIG_HOME']}/{self.config}"
        os.makedirs(os.path.dirname(path))
        with open(path, "w", encoding="utf-8") as file:
            file.write(self.text)

    def start_panel(self):
        self.panel = self.session.spawn([self.program])

    def icon(self):
        """Where the panel shows it: what is lit green in the panel's bar."""
        def look():
            wide, high = self.screen()
            seen = subprocess.run(
                ["import", "-silent", "-window", "root", "-crop", f"{wide}x{BAR}+0+{high - BAR}", "-depth", "8",
                 "rgb:-"], env=self.session.env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False).stdout
            lit = [at for at in range(len(seen) // 3)
                   if seen[3 * at] < 0x70 and seen[3 * at + 1] > 0x90 and seen[3 * at + 2] > 0x70]
            if len(lit) < 20:
                return None
            return sum(at % wide for at in lit) // len(lit), high - BAR + sum(at // wide for at in lit) // len(lit)
        found = wait_for(look, 60)
        self.assertTrue(found, "no icon in the panel")
        return found

    def click(self, player, button):
        self.place = self.icon()
        player.tool("mousemove", *self.place)
        player.tool("click", button)

    def menu(self):
        """The panel's own menu: a window above the bar that reaches the icon's column."""
        def look():
            for line in quiet("xwininfo", "-root", "-tree", env=self.session.env).splitlines():
                words = line.split()
                if not words or not words[0].startswith("0x"):
                    continue
                shape = quiet("xwininfo", "-id", words[0], env=self.session.env)
                if "IsViewable" not in shape or "Override Redirect State: yes" not in shape:
                    continue
                x, y, wide, high = (int(shape.split(name + ":")[1].split()[0]) for name in (
                    "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
                if 100 < wide < 600 and high > 200:
                    return x, y, wide, high
            return None
        return wait_for(look, 30)

    def keep_picture(self):
        folder = os.environ.get("VELMORA_ARTIFACTS")
        if folder:
            os.makedirs(folder, exist_ok=True)
            quiet("import", "-silent", "-window", "root", f"{folder}/panel-{self.program}.png",
                  env=self.session.env)

    def assert_menu_works(self, player):
        self.click(player, 3)
        shape = self.menu()
        self.assertTrue(shape, "the panel shows no menu")
        self.keep_picture()
        x, y, wide, high = shape
        # At the icon, whole, and above the bar.
        self.assertTrue(x <= self.place[0] + 40 and self.place[0] - 40 <= x + wide, f"{shape}, {self.place}")
        self.assertTrue(self.screen()[1] - 80 <= y + high <= self.screen()[1], f"{shape}")
        for key in ("Up", "Return"):  # the last entry
            self.session.key(key)
        self.assertTrue(player.ended(), "its last entry does not end the program")
        self.assertEqual(player.child.returncode, 0)

    def test_it_draws_the_icon_and_the_menu_and_both_work(self):
        self.start_panel()
        player, main = self.start()
        player.click(main, "minimizeButton")
        self.assertTrue(player.gone(main))
        self.click(player, 1)
        self.assertTrue(player.window(), "it stays minimised")
        self.assert_menu_works(player)

    def test_a_panel_that_comes_late_or_again_shows_it(self):
        player, _ = self.start()
        self.start_panel()
        self.icon()
        self.session.stop(self.panel)
        self.start_panel()
        self.assert_menu_works(player)


class Xfce(Panel, PlayerTest):
    program, text = "xfce4-panel", XFCE
    config = "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"


class Lxqt(Panel, PlayerTest):
    program, text = "lxqt-panel", LXQT
    config = "lxqt/panel.conf"


class Tint2(Panel, PlayerTest):
    """A tray of the older kind: the icon is a window of the program's, and so is the menu."""
    program, text = "tint2", TINT2
    config = "tint2/tint2rc"


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]] + sys.argv[5:], verbosity=2)
