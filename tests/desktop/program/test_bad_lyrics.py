#!/usr/bin/env python3
"""Lyrics that are broken, huge, unreadable or none, and saves that fail, under the real program.

    test_bad_lyrics.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import shutil
import sqlite3
import subprocess
import sys

from cases import run
from player import APP, FORM_SIZES, PROGRAM, PlayerTest, design, stairs
from session import Recorder, quiet, wait_for

EDITOR = design("src/lyrics/doLrcForm.form")
FORM_SIZES.add(tuple(int(side) for side in EDITOR["form"][2:4]))
MARK = b"\xef\xbb\xbf"


class LyricsTest(PlayerTest):
    def lyric_folder(self, *names):
        return "/".join([self.session.env["XDG_DATA_HOME"], "velmora", APP, "Lyrics", *names])

    def track(self, name, lyric=None, seconds=20, **tone):
        """A track, and beside it its lyric of these bytes."""
        path = f"{self.music}/{name}.wav"
        stairs(path, seconds, **tone)
        if lyric is not None:
            with open(f"{self.music}/{name}.lrc", "wb") as file:
                file.write(lyric)
        return path

    def copied(self, name):
        """What stands in the lyric folder under a track's name."""
        try:
            with open(self.lyric_folder(name + ".Lrc"), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def memory(self, player):
        with open(f"/proc/{player.child.pid}/status", encoding="utf-8") as file:
            return next(int(line.split()[1]) // 1024 for line in file if line.startswith("VmHWM"))

    def assert_fit(self, player, main):
        self.assertIsNone(player.child.poll(), "the program ended")
        self.session.key("Escape", main)
        self.assertTrue(player.ended(), "the program does not end")
        self.assertEqual(player.child.returncode, 0)


class Playing(LyricsTest):
    reads = True

    def test_each_is_copied_as_far_as_it_is_a_lyric_and_the_next_track_is_right(self):
        words = b"[00:01.00]words"
        many = b"".join(b"[%02d:%02d.00]line\r\n" % (n // 60 % 100, n % 60) for n in range(40_000))
        long = b"[00:01.00]" + b"la " * 5_000_000 + b"la\r\n"
        lyrics = {  # by name: the bytes, and the copy of them; None where there is to be none
            "first": (words + b"\r\n", words + b"\r\n"),
            "manylines": (many, None),
            "longline": (long, long),
            "nuls": (words + b"\0\0\0\r\n\0\r\n", words + b"\0\0\0\r\n\0\r\n"),
            "marked": (MARK + words + b"\r\n", MARK + words + b"\r\n"),
            "legacy": ("[00:01.00]月亮".encode("gb18030") + b"\n",
                       "[00:01.00]月亮".encode("gb18030") + b"\r\n"),
            "elsewhere": ("[00:01.00]テ☆".encode("cp932") + b"\xff",
                          "[00:01.00]テ☆".encode("cp932") + b"\xff\r\n"),
            "mixed": (words + b"\r" + words + b"\n\n\r" + words + b"\r\n" + words,
                      (words + b"\r\n") * 4),
            "empty": (b"", b""),
        }
        tracks = [self.track(name, content) for name, (content, _) in lyrics.items()]
        tracks.append(self.track("wide", "[00:01.00]words\r\n".encode("utf-16")))
        tracks.append(self.track("folder"))
        os.mkdir(self.music + "/folder.lrc")
        tracks.append(self.track("dangling"))
        os.symlink("nowhere", self.music + "/dangling.lrc")
        tracks.append(self.track("othercase"))
        with open(self.music + "/OtherCase.LRC", "wb") as file:
            file.write(words)
        tracks.append(self.track("huge", b""))
        os.truncate(self.music + "/huge.lrc", 200_000_000)
        tracks.append(self.track("last", words))
        self.write_list(tracks)
        copies = {name: copy for name, (_, copy) in lyrics.items() if copy is not None}
        copies["wide"] = "[00:01.00]words".encode("utf-16") + b"\r\n\0\r\n\0\r\n"
        copies["othercase"] = words + b"\r\n"
        player, main = self.start()
        for track in tracks:
            name = os.path.basename(track)[:-4]
            self.session.key("F6", main)
            self.assert_title(player, main, name)
            # The copy is made after the fade: a track that is left within it gets none.
            if name in copies:
                self.assertTrue(wait_for(lambda: self.copied(name) == copies[name], 30), name)
        # The last one's copy is made after its fade; behind it nothing comes any more.
        self.assertTrue(wait_for(lambda: self.copied("last") == words + b"\r\n", 30))
        for name in ("manylines", "folder", "dangling", "huge"):
            self.assertIsNone(self.copied(name), name)
        self.assertLess(self.memory(player), 400)
        self.assert_fit(player, main)

    def test_a_line_without_end_rolls_by_in_the_window_and_across_the_desktop(self):
        # Its first second may be over by the time that it has been read.
        line = b"[00:00.00][00:03.00][00:06.00]" + b"la " * 5_000_000 + b"la\r\n"
        self.write_list([self.track("endless", line, 60)])
        player, main = self.start()
        self.session.key("F6", main)

        def letters():
            return any(pixel > 110 for pixel in player.look(main, "lrcBox"))
        self.assertTrue(wait_for(letters, 60), "it does not come up")
        player.click(main, "desktop_Lrc")
        strips = set()

        def rolls():
            strips.add(player.picture(main, -player.place(main)[0], 745 - player.place(main)[1],
                                      player.screen_width, 50))
            return len(strips) > 4 and all(max(strip) > 60 for strip in list(strips)[-3:])
        self.assertTrue(wait_for(rolls, 60), "it does not roll")
        self.assertTrue(letters())
        self.assertLess(self.memory(player), 600)
        self.assert_fit(player, main)

    def test_one_that_cannot_be_read_leaves_the_music_and_the_next_track_right(self):
        program = self.plain_program()
        tracks = [self.track(name, b"[00:01.00]" + name.encode() + b"\r\n", 30, base=base, step=0)
                  for name, base in (("one", 300), ("locked", 600), ("three", 900))]
        os.chmod(self.music + "/locked.lrc", 0)
        self.write_list(tracks)
        player, main = self.start(program)
        recorder = Recorder(self.session)
        self.addCleanup(recorder.close)
        for name, tone in (("one", 300), ("locked", 600), ("three", 900)):
            self.session.key("F6", main)
            self.assert_title(player, main, name)
            self.assertTrue(wait_for(lambda: abs((self.now_playing(recorder, 1) or 0) - tone) < 40,
                                     30), f"{name} is not heard")
        # Behind the fade; nothing of the one before comes any more then.
        self.assertTrue(wait_for(lambda: self.copied("three") == b"[00:01.00]three\r\n", 30))
        self.assertIsNone(self.copied("locked"))
        self.assert_fit(player, main)

    def test_a_lyric_folder_that_vanishes_while_a_track_plays_does_no_harm(self):
        # A line is shown in its own second alone: on a busy machine the first comes after it.
        tracks = [self.track(name, "".join(f"[00:{second:02}.00]words of {name}\r\n"
                                           for second in range(60)).encode(), 60)
                  for name in ("one", "two", "three")]
        self.write_list(tracks)
        player, main = self.start()
        self.session.key("F6", main)
        self.assertTrue(wait_for(lambda: self.copied("one"), 30))
        self.assertTrue(player.says(main, "words of one"))
        shutil.rmtree(self.lyric_folder())
        self.session.key("F6", main)
        self.assert_title(player, main, "two")
        # What lies beside the track is shown, wherever its copy goes or does not go.
        self.assertTrue(player.says(main, "words of two"))
        shutil.rmtree(self.lyric_folder(), ignore_errors=True)
        with open(self.lyric_folder(), "wb"):
            pass  # and now no folder can be made there
        self.session.key("F6", main)
        self.assert_title(player, main, "three")
        self.assertTrue(player.says(main, "words of three"))
        self.assert_fit(player, main)


class EditedTest(LyricsTest):
    reads = True
    OLD = b"[00:01.00]old words\r\n"

    def edit(self, program=PROGRAM):
        """The editor over a track whose lyric was copied into the lyric folder."""
        os.makedirs(self.lyric_folder(), exist_ok=True)
        self.write_list([self.track("song", self.OLD, 60, level=0.05, step=0)])
        player, main = self.start(program)
        self.session.key("F6", main)
        # Loaded, after the fade, and then copied: a load while the editor is open fills it anew.
        self.assertTrue(wait_for(lambda: self.copied("song") == self.OLD, 30))
        player.click(main, "do_Lrc")
        editor = player.form(EDITOR)
        self.assertTrue(editor, "no editor comes up")
        for window, place in ((main, (0, 0)), (editor, (600, 300))):
            player.move(window, *place)
        self.choose_first(player, editor)
        player.click(editor, "lrc_Index_Text", form=EDITOR)
        self.session.key("ctrl+a")
        quiet("xdotool", "type", "--delay", "8", "[00:02.00]new words", env=self.session.env)
        self.choose_first(player, editor)  # the keys are the list's
        return player, main, editor

    @staticmethod
    def choose_first(player, editor):
        left, top, _, _ = EDITOR["lrcList"]
        player.click_at(editor, left + 60, top + 9)

    def assert_save_fails(self, player, editor):
        """It asks, it fails and says so; the old lyric is whole and nothing lies beside it."""
        self.session.key("ctrl+s", editor)
        self.answer(player, "y", "该歌词文件已存在，是否覆盖？")
        self.answer(player, "Return", "保存失败")
        self.assertEqual(self.copied("song"), self.OLD)
        self.assertEqual([name for name in os.listdir(self.lyric_folder()) if name != "filler"],
                         ["song.Lrc"])

    def assert_lines_are_kept(self, player, editor):
        """Saved where there is room they come out as they were typed."""
        self.session.key("ctrl+s", editor)
        self.answer(player, "y", "该歌词文件已存在，是否覆盖？")
        self.answer(player, "Return", "已成功保存")
        self.assertIn(b"[00:02.00]new words\r\n", self.copied("song"))


class Saving(EditedTest):
    def test_over_bytes_that_are_no_text_keeps_them_beside_the_new_lyric(self):
        self.OLD = b"[00:01.00]\xff\xfe words\r\n"
        player, main, editor = self.edit()
        for _ in range(2):
            self.assert_lines_are_kept(player, editor)
            self.choose_first(player, editor)
        with open(self.lyric_folder("song.Lrc.old"), "rb") as file:
            self.assertEqual(file.read(), self.OLD)
        self.assertEqual(sorted(os.listdir(self.lyric_folder())), ["song.Lrc", "song.Lrc.old"])
        self.assert_fit(player, main)

    def test_onto_a_full_disk_leaves_the_old_lyric_and_the_lines(self):
        os.makedirs(self.lyric_folder())
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", self.lyric_folder()],
                          stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("a small disk cannot be made here")
        self.addCleanup(subprocess.run, ["umount", "-l", self.lyric_folder()], check=False)
        player, main, editor = self.edit()
        with open(self.lyric_folder("filler"), "wb", buffering=0) as file:
            try:
                while file.write(bytes(4096)):
                    pass
            except OSError:
                pass
        self.assert_save_fails(player, editor)
        os.remove(self.lyric_folder("filler"))
        self.assert_lines_are_kept(player, editor)
        self.assert_fit(player, main)

    def test_onto_a_read_only_folder_leaves_the_old_lyric_and_the_lines(self):
        player, main, editor = self.edit(self.plain_program())
        os.chmod(self.lyric_folder(), 0o555)
        self.assert_save_fails(player, editor)
        os.chmod(self.lyric_folder(), 0o755)
        self.assert_lines_are_kept(player, editor)
        self.assert_fit(player, main)


class Pages(EditedTest):
    """A lyric in the old page of Japan, edited and saved: the new file tells how it was read."""
    LINE = "[00:05.00]テ☆"
    OLD = b"[00:01.00]old words\r\n" + LINE.encode("cp932") + b"\r\n"

    def set_page(self, page):
        """As a person does, once there is a registry."""
        player, main = self.start()
        self.session.key("Escape", main)
        self.assertTrue(player.ended())
        key = "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage"
        with sqlite3.connect(self.registry_file()) as database:
            database.execute("insert into keys (hive, folded, path) values (2147483650, ?, ?)",
                             (key.upper(), key))
            database.execute("insert into entries (key, folded, name, type, bytes, data) "
                             "select id, 'ACP', 'ACP', 1, ?, ? from keys where folded = ?",
                             (len(page), page, key.upper()))
        database.close()

    def saved_line(self):
        player, main, editor = self.edit()
        self.assert_lines_are_kept(player, editor)
        self.assert_fit(player, main)
        return next(line for line in self.copied("song").split(b"\r\n")
                    if line.startswith(b"[00:05"))

    def test_the_systems_language_tells_the_page(self):
        self.session.env["LC_ALL"] = "ja_JP.UTF-8"
        self.assertEqual(self.saved_line(), self.LINE.encode())

    def test_a_page_that_is_set_is_read_and_written(self):
        self.set_page("932")
        self.assertEqual(self.saved_line(), self.LINE.encode("cp932"))
        self.assertFalse(os.path.exists(self.lyric_folder("song.Lrc.old")), "nothing was lost")

    def test_65001_reads_no_page(self):
        self.session.env["LC_ALL"] = "ja_JP.UTF-8"
        self.set_page("65001")
        lost = self.LINE.encode("cp932").decode("utf-8", "replace")
        self.assertEqual(self.saved_line(), lost.encode())


if __name__ == "__main__":
    run(sys.argv[5:])
