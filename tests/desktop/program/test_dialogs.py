#!/usr/bin/env python3
"""The desktop's own dialogs for files and folders, through its portal, in the real program.

    test_dialogs.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import json
import os
import signal
import sys
import urllib.parse

from cases import run
from listing import DEEPER
from player import LIST, PICK_FILE, SOURCE, stairs
from session import wait_for
from test_remote import BusTest

PORTAL = f"{SOURCE}/tests/desktop/dialogs/portal.py"


class Dialogs(BusTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.session.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.folder = self.session.home + "/portal"
        os.makedirs(self.folder)
        self.added = self.music + "/added 100%.wav"
        stairs(self.added, 30, step=0)

    def start_portal(self, *answers):
        with open(self.folder + "/script.json", "w") as file:
            json.dump({"answers": answers}, file)
        portal = self.session.spawn(["/usr/bin/python3", PORTAL, self.folder])
        self.assertTrue(self.asked("ready"), "no portal")
        return portal

    def calls(self):
        try:
            with open(self.folder + "/calls.json") as file:
                return [json.loads(line) for line in file.read().splitlines()]
        except FileNotFoundError:
            return []

    def asked(self, kind, count=1):
        """The calls of a kind, once there are so many."""
        def look():
            found = [call for call in self.calls() if kind in call]
            return found if len(found) >= count else None
        return wait_for(look, 60)

    @staticmethod
    def uri(path):
        return "file://" + urllib.parse.quote(path)

    def test_the_open_button_plays_what_the_desktops_dialog_gives(self):
        self.start_portal({"uris": [self.uri(self.added)]})
        player, main = self.start_there()
        player.click(main, "openFile_Button")
        call, = self.asked("call")
        self.assertEqual(call["parent"], f"x11:{int(main):x}")
        self.assertEqual(call["title"], "添加媒体文件  -  Velmora 2010")
        self.assertIn([0, "*.[mM][pP]3"], call["options"]["filters"][0][1])
        self.assert_list(self.tracks + [self.added])
        self.assert_comes("added 100%", "metadata", "xesam:title")

    def test_a_folder_is_added_and_a_refused_dialog_changes_nothing(self):
        self.start_portal({"response": 1}, {"uris": [self.uri(self.music)]})
        player, _, rows = self.start_with_list()
        player.click(rows, "addDir", form=LIST)
        self.asked("call")
        self.assertTrue(player.done(rows))
        self.assert_list(self.tracks)
        player.click(rows, "addDir", form=LIST)
        self.answer(player, "n", DEEPER)
        self.assert_list(self.tracks + [self.added])
        self.assertTrue(all(call["options"]["directory"] for call in self.asked("call", 2)))

    def test_the_tracks_go_on_while_it_is_up_and_no_window_takes_input(self):
        for track in self.tracks:
            stairs(track, 4, step=0)
        self.start_portal({"hold": True})
        player, main = self.start_there()
        self.play_first()
        self.assert_comes("one", "metadata", "xesam:title")
        player.click(main, "openFile_Button")
        self.asked("call")
        player.click(main, "stopButton")
        self.session.key("F6", main)
        self.assert_comes("two 100%", "metadata", "xesam:title")
        # A media key is such a click, too.
        self.control("stop")
        self.assert_comes("drei", "metadata", "xesam:title")
        self.assertEqual(self.control("status"), "Playing")

    def test_the_end_of_the_program_takes_it_away(self):
        self.start_portal({"hold": True})
        player, main = self.start_there()
        player.click(main, "openFile_Button")
        call, = self.asked("call")
        player.child.send_signal(signal.SIGTERM)
        self.assertTrue(player.ended(), "the program stays")
        self.assertEqual(player.child.returncode, 0)
        self.assertEqual([one["closed"] for one in self.asked("closed") or []], [call["path"]])

    def test_a_portal_that_dies_leaves_the_programs_own_dialog(self):
        portal = self.start_portal({"hold": True})
        player, main = self.start_there()
        player.click(main, "openFile_Button")
        self.asked("call")
        self.session.stop(portal)
        self.type_into(self.assert_box(player, PICK_FILE), self.added)
        self.assert_list(self.tracks + [self.added])


if __name__ == "__main__":
    run(sys.argv[5:])
