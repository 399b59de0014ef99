"""What the tests of the play list share: its rows on the screen, drops, boxes and what the desktop
was asked to open."""

import os
import subprocess
import urllib.parse
import wave

from player import DRAG, LIST, PlayerTest
from session import wait_for

ROW = 18  # pixels
# What the boxes of the list say.
SURE = "是否决定该操作？"
DEEPER = "包含子文件夹吗？"
NOT_COPIED = "拷贝文件到指定的目录错误"
NOTHING_CHOSEN = "请选择至少一个文件"
LIST_LEFT, LIST_TOP, LIST_WIDTH, LIST_HEIGHT = (int(side) for side in LIST["playList_Item"])
TEXT_LEFT = 6
DARK = 35  # the ground of a row that is not selected is darker
BRIGHT = 150  # letters are brighter, the ground of a selected row is darker


def silence(path, seconds=60):
    """A track that lasts longer than any test looks at it, and is small."""
    with wave.open(path, "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(1)
        out.setframerate(8000)
        out.writeframes(b"\x80" * (8000 * seconds))


def line_of(path):
    """A path as the list holds it: bytes that are no text, and line breaks, as units of their own."""
    text = os.fsencode(path).decode("utf-8", "surrogateescape")
    return text.replace("\r", "\udc0d").replace("\n", "\udc0a")


class ListTest(PlayerTest):
    reads = True
    count = 4

    def setUp(self):
        super().setUp()
        self.tracks = []
        for number in range(self.count):
            self.tracks.append(f"{self.music}/track {number}.wav")
            silence(self.tracks[-1])
        self.write_list(self.tracks)
        self.watch_desktop()

    def press_row(self, player, rows, row, button=1, times=1):
        player.click_at(rows, LIST_LEFT + 60, LIST_TOP + ROW * row + ROW // 2, button, times)

    def click_row(self, player, rows, row, button=1, held=None, times=1):
        if held:
            player.tool("keydown", held)
        self.press_row(player, rows, row, button, times)
        if held:
            player.tool("keyup", held)
        elif button == 1:
            self.assertTrue(wait_for(lambda: self.is_selected(player, rows, row), 30),
                            "a click does not select its row")

    def list_picture(self, player, rows):
        return player.picture(rows, LIST_LEFT + TEXT_LEFT, LIST_TOP, LIST_WIDTH - TEXT_LEFT - 4,
                              LIST_HEIGHT)

    def rows_shown(self, player, rows):
        """The number of rows with letters in them."""
        width = LIST_WIDTH - TEXT_LEFT - 4
        picture = self.list_picture(player, rows)
        strip = width * ROW
        return sum(1 for start in range(0, len(picture), strip)
                   if any(value > BRIGHT for value in picture[start + 2 * width:start + strip]))

    def assert_story(self, player, rows, paths):
        """The saved list and the rows on the screen are these."""
        self.assert_list([line_of(path) for path in paths])
        self.assertTrue(wait_for(lambda: self.rows_shown(player, rows) == len(paths), 30),
                        f"{self.rows_shown(player, rows)} rows on the screen instead of "
                        f"{len(paths)}")

    def is_selected(self, player, rows, row):
        """By the right end of the row: the ground alone."""
        ground = player.picture(rows, LIST_LEFT + LIST_WIDTH - 10, LIST_TOP + ROW * row + 4, 1, 1)
        return len(ground) == 1 and ground[0] > DARK

    def select_all(self, player, rows):
        """Returns once the list takes keys again: what is pressed meanwhile is lost."""
        live = player.look(rows, "addFile", form=LIST)
        self.session.key("ctrl+a", rows)
        self.assertTrue(wait_for(lambda: self.is_selected(player, rows, 0) and
                                 player.look(rows, "addFile", form=LIST) == live, 30),
                        "the rows are not selected")

    def assert_a_reload_changes_nothing(self, player, rows):
        """The rows on the screen are those that the saved list gives."""
        self.select_all(player, rows)
        before = self.list_picture(player, rows)
        player.click(rows, "afresh_Load", form=LIST)
        self.assertTrue(wait_for(lambda: not self.is_selected(player, rows, 0), 30), "no reload")

        def as_before():
            after = self.list_picture(player, rows)
            lit = [(a > BRIGHT, b > BRIGHT) for a, b in zip(before, after)]
            either = sum(1 for a, b in lit if a or b)
            return sum(1 for a, b in lit if a != b) < 0.3 * either
        # The list is empty first.
        self.assertTrue(wait_for(as_before, 30), "the rows were not those of the saved list")

    def drag(self, player, window, x, y, paths=None, data=None, kind="text/uri-list"):
        """Drops files, or other data, as another program; answers the action, None if refused."""
        if data is None:
            data = "".join("file://" + urllib.parse.quote(os.fsencode(path)) + "\r\n"
                           for path in paths)
        at = player.point(window, x, y)
        done = subprocess.run([DRAG, window, str(at[0]), str(at[1]), kind], input=data.encode(),
                              env=self.session.env, stdout=subprocess.PIPE, check=False, timeout=90)
        return done.stdout.decode().strip() if done.returncode == 0 else None

    def drop_at_row(self, player, rows, row, paths):
        return self.drag(player, rows, LIST_LEFT + 60, LIST_TOP + ROW * row + ROW // 2, paths)
