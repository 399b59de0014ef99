#!/usr/bin/env python3
"""The real program on servers that do what servers do, of every kind: tables of behaviours, many of
them in one run of the program.

    test_servers.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

Behind each the window answers, or a limit has ended the transfer; nothing is left of what did not come
whole. Those that take a limit of half a minute and more are tried only with VELMORA_WHOLE=1. The
catalogue's program, which tells the player where its hosts are, is named by the environment:
VELMORA_CATALOGUE.
"""

import gzip
import os
import shutil
import socket
import ssl
import subprocess
import sys
import threading
import time
import wave

import misbehaving
import test_trouble
from cases import run
from misbehaving import OK, SOUND, answer, length, redirect
from player import PROGRAM, WELCOME, design
from session import wait_for

LYRICS = design("src/network/search_Lrc_Internet_Form.form")
WHOLE = "VELMORA_WHOLE" in os.environ
ROW = 27
SEARCH, FILE, MAKER = "/m?", "/lrcdown/", "/source/mini/"
HTML = b"Content-Type: text/html\r\n"
# What the windows say.
FOUND, NONE = "搜索到可提供下载的歌词", "可能服务器无法链接"
FETCHED, NOT_FETCHED = "下载成功！", "无法下载改歌词"
REFUSED = "远程数据传输错误！"
# What a transfer may take before a limit ends it, on a machine that is busy.
LIMIT = 100 if WHOLE else 40


def slowly(pieces, pause):
    """Sends one piece after the other; goes on until the client goes away."""
    def talk_to(talk):
        for piece in pieces() if callable(pieces) else pieces:
            talk.sendall(piece)
            time.sleep(pause)
    return talk_to


def for_ever(beginning, piece, pause=0.0):
    def pieces():
        yield beginning
        while True:
            yield piece
    return slowly(pieces, pause)


def silent(beginning):
    """Says so much, and then nothing until the client goes away."""
    def talk_to(talk):
        talk.sendall(beginning)
        talk.recv(1)
    return talk_to


def after(seconds, reply):
    def talk_to(talk):
        time.sleep(seconds)
        talk.sendall(reply)
    return talk_to


def closed_port():
    with socket.create_server(("127.0.0.1", 0)) as closed:
        return closed.getsockname()[1]


def outside_address():
    """An address of this machine that is not its loopback's; None where there is none."""
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as asked:
        try:
            asked.connect(("192.0.2.1", 9))
            return asked.getsockname()[0]
        except OSError:
            return None


class ServersTest(test_trouble.TroubleTest):
    reads = True
    LYRIC = b"[00:01.00]words\r\n"

    def setUp(self):
        super().setUp()
        self.tried = 0

    def tell_of(self, count, kind):
        self.assertGreaterEqual(self.tried, count)
        print(f"{self.tried} behaviours of {kind}", file=sys.stderr)

    def links(self, paths):
        site = self.net.at
        return ("<html>" + "".join(f'<a href="{site}{path}">x</a>\r\n' for path in paths) +
                f'<a href="{site}/">x</a>').encode()

    def start_beside_a_track(self):
        self.net.answers[SEARCH] = answer(b"<html>")
        track = self.music + "/track.wav"
        with wave.open(track, "wb") as out:  # longer than any of these: a track that begins searches
            out.setnchannels(1)
            out.setsampwidth(2)
            out.setframerate(8000)
            out.writeframes(bytes(2 * 8000 * 1200))
        self.write_list([track])
        self.player, self.window = self.start(self.program())
        self.session.key("F6", self.window)
        self.assertTrue(self.player.says(self.window, "该曲目无对应的LRC格式歌词文件"))
        self.lyrics = self.search("search_Lrc_Internet", LYRICS, "anything")
        self.expect("the first page", NONE)

    def program(self):
        return PROGRAM

    def expect(self, name, text, seconds=LIMIT):
        # One that waits for a limit answers nobody meanwhile, not even who asks what it says.
        self.assertTrue(wait_for(lambda: self.player.took(self.lyrics), seconds), name)
        if not self.player.says(self.lyrics, text, seconds):
            self.fail(f"{name}: {self.player.words(self.lyrics, 1)}, asked for {self.net.asked[-3:]}, "
                      f"{self.player.situation()}")
        self.assertIsNone(self.player.child.poll(), name)

    def try_pages(self, rows):
        for name, reply, expected in rows:
            with self.subTest(name):
                self.tried += 1
                self.net.answers[SEARCH] = reply
                self.player.click(self.lyrics, "search_Button", form=LYRICS)
                self.expect(name, FOUND if expected else NONE)

    def list_files(self, count):
        """A list with so many links, which name what is fetched."""
        self.net.answers[SEARCH] = answer(self.links(
            f"/LrcDown/{number:02}.lrc" for number in range(count)))
        self.player.click(self.lyrics, "search_Button", form=LYRICS)
        self.expect("the list", FOUND + f"：{count}条")

    def fetch(self, number):
        left, top, _, _ = LYRICS["search_Lrc_List"]
        self.player.click_at(self.lyrics, left + 60, top + ROW * (number + 0.5), times=2)

    def lyric_file(self):
        return self.app("Lyrics", "track.LRC")

    def try_files(self, rows):
        """Each is fetched over a lyric that is there; what does not come whole leaves it."""
        os.makedirs(self.app("Lyrics"), exist_ok=True)
        for first in range(0, len(rows), 10):
            some = rows[first:first + 10]
            self.list_files(len(some))
            for number, (name, reply, expected) in enumerate(some):
                with self.subTest(name):
                    self.tried += 1
                    self.net.answers[f"{FILE}{number:02}"] = reply
                    with open(self.lyric_file(), "wb") as file:
                        file.write(b"[00:01.00]old\r\n")
                    self.fetch(number)
                    self.expect(name, FETCHED if expected else NOT_FETCHED)
                    self.assertEqual(self.content(self.lyric_file()), expected or b"[00:01.00]old\r\n")
        left = [name for name in os.listdir(self.app("Lyrics")) if name.startswith(".velmora")]
        self.assertEqual(left, [])

    def try_maker(self, rows):
        for name, reply, expected in rows:
            with self.subTest(name):
                self.tried += 1
                self.net.answers[MAKER] = reply
                self.player.click(self.window, "welcome")
                if expected:
                    page = self.player.form(WELCOME, LIMIT)
                    self.assertTrue(page and self.player.says(page, "Page"), name)
                    self.assertLess(self.memory(), 400, name)
                    self.player.click(page, "close", form=WELCOME)
                    self.assertTrue(self.player.gone(page), name)
                else:
                    self.answer(self.player, "Return", REFUSED, LIMIT)

    def memory(self):
        with open(f"/proc/{self.player.child.pid}/status") as file:
            return next(int(line.split()[1]) // 1024 for line in file if line.startswith("VmHWM"))


class Search(ServersTest):
    """The page of a lyric search."""

    def pages(self):
        good = self.links(["/LrcDown/good.lrc"])
        whole = answer(good)
        packed = gzip.compress(good)
        gzipped = OK + HTML + b"Content-Encoding: gzip\r\n"
        bomb = gzip.compress(bytes(40 << 20))
        self.net.answers["/good"] = whole
        self.net.answers["/late"] = after(1, redirect(b"/good"))
        self.net.answers["/ring"] = redirect(b"/ring")
        for step in range(12):
            self.net.answers[f"/down{step:02}"] = redirect(b"/down%02d" % (step + 1))
        self.net.answers["/down12"] = whole
        rows = [
            ("is whole", whole, True),
            ("is an error's", whole.replace(b"200 OK", b"500 No"), True),
            ("has no length", OK + HTML + b"\r\n" + good, True),
            ("is packed", gzipped + length(len(packed)) + b"\r\n" + packed, True),
            ("is packed and damaged", gzipped + length(30) + b"\r\n" + packed[:10] + bytes(20), False),
            ("is packed to 40 MB", gzipped + length(len(bomb)) + b"\r\n" + bomb, False),
            ("is longer than 16 MB", for_ever(OK + HTML + b"\r\n<html>", bytes(1 << 16)), False),
            ("is cut", OK + HTML + length(9999) + b"\r\n" + good, False),
            ("is empty", OK + HTML + length(0) + b"\r\n", False),
            ("holds nothing but NUL", answer(bytes(5000)), False),
            ("has a length of letters", OK + HTML + b"Content-Length: many\r\n\r\n" + good, False),
            ("comes in pieces", OK + HTML + b"Transfer-Encoding: chunked\r\n\r\n%x\r\n" % len(good) +
             good + b"\r\n0\r\n\r\n", True),
            ("comes in pieces without sense", OK + HTML + b"Transfer-Encoding: chunked\r\n\r\nzz\r\n",
             False),
            ("lies elsewhere", redirect(b"/good"), True),
            ("lies elsewhere, slowly", after(1, redirect(b"/late")), True),
            ("lies behind ten redirects", redirect(b"/down03"), True),
            ("lies behind twelve", redirect(b"/down00"), False),
            ("leads in a ring", redirect(b"/ring"), False),
            ("leads to a file", redirect(b"file:///etc/passwd"), False),
            ("leads to another protocol", redirect(b"ftp://127.0.0.1/x"), False),
            ("leads to nobody", redirect(b"http://127.0.0.1:%d/" % closed_port()), False),
            ("leads to no name", redirect(b"http://no-such-name.invalid/"), False),
            ("leads to no network", redirect(b"http://240.0.0.1/"), False),
            ("drips, and ends", slowly([whole[at:at + 40] for at in range(0, len(whole), 40)], 0.05),
             True),
            ("ends in the middle of its header", OK + b"Content-Ty", False),
            ("is no answer", b"SSH-2.0-OpenSSH_9.2\r\n", False),
            ("is not there: closed without a word", misbehaving.at_once, False),
            ("has a header of a megabyte", OK + b"X: " + b"x" * (1 << 20) + b"\r\n\r\n" + good, False),
            ("comes behind a thousand interim answers",
             b"HTTP/1.1 103 Early Hints\r\n\r\n" * 1000 + whole, True),
        ]
        if WHOLE:
            rows += [
                ("goes on for ever at 1.1 KB/s", for_ever(OK + HTML + b"\r\n", bytes(1126), 1), False),
                ("has a header that drips for ever", for_ever(OK, b"X: y\r\n", 1), False),
                ("ends behind its header", silent(OK + HTML + length(50) + b"\r\n"), False),
                ("comes from a host that is switched off", redirect(b"http://10.255.255.1/"), False),
            ]
        return rows

    def test_of_pages(self):
        self.start_beside_a_track()
        self.try_pages(self.pages())
        self.tell_of(29, "pages")
        self.assert_fit()

    def test_of_pages_without_number(self):
        count = 30_000 if WHOLE else 200
        self.net.answers[SEARCH] = answer(self.links(
            ["/LrcDown/good.lrc", *(f"/m?x={number}&pn=1" for number in range(count))]))
        self.net.answers["/m?x="] = after(0.02, answer(b"<html>")) if WHOLE else answer(b"<html>")
        self.begin()
        self.lyrics = self.search("search_Lrc_Internet", LYRICS, "anything")
        self.expect("pages without number", FOUND + "：1条", 400)
        if WHOLE:
            self.assertLess(sum(path.lower().startswith("/m?x=") for path in self.net.asked), count)
        self.assert_fit()


class Files(ServersTest):
    """The file of a lyric."""

    def files(self):
        lyric = self.LYRIC
        whole = answer(lyric, b"text/plain")
        self.net.answers["/good"] = whole
        self.net.answers["/ring"] = redirect(b"/ring")
        long = b"[00:01.00]" + b"x" * 200_000 + b"\r\n"
        rows = [
            ("is whole", whole, lyric),
            ("is long", answer(long), long),
            ("is not there", whole.replace(b"200 OK", b"404 No"), None),
            ("is of a failing server", whole.replace(b"200 OK", b"503 No"), None),
            ("has no length", OK + b"\r\n" + lyric, lyric),
            ("is cut", OK + length(9999) + b"\r\n" + lyric, None),
            ("is reset", misbehaving.reset, None),
            ("comes in pieces of which one is missing",
             OK + b"Transfer-Encoding: chunked\r\n\r\n11\r\n" + lyric + b"\r\n", None),
            ("is longer than 16 MB", for_ever(OK + b"\r\n", bytes(1 << 16)), None),
            ("says that it is longer than 16 MB", silent(OK + length(1 << 25) + b"\r\n" + lyric)
             if WHOLE else OK + length(1 << 25) + b"\r\n" + lyric, None),
            ("lies elsewhere", redirect(b"/good"), lyric),
            ("leads in a ring", redirect(b"/ring"), None),
            ("leads to a file", redirect(b"file:///etc/passwd"), None),
            ("leads to nobody", redirect(b"http://127.0.0.1:%d/" % closed_port()), None),
            ("drips, and ends", slowly([whole[at:at + 9] for at in range(0, len(whole), 9)], 0.05),
             lyric),
            ("is closed without a word", misbehaving.at_once, None),
            ("is no answer", b"220 mail.example ESMTP\r\n", None),
        ]
        if WHOLE:
            rows += [
                ("goes on for ever at 1.1 KB/s", for_ever(OK + b"\r\n", bytes(1126), 1), None),
                ("drips below any rate", for_ever(OK + b"\r\n", b"x", 1), None),
                ("ends behind its header", silent(OK + length(50) + b"\r\n"), None),
            ]
        return rows

    def test_of_files(self):
        self.start_beside_a_track()
        self.try_files(self.files())
        self.tell_of(17, "lyrics")
        self.assert_fit()

    def mount(self, folder, *options):
        if subprocess.run(["mount", *options, folder], stderr=subprocess.DEVNULL,
                          check=False).returncode != 0:
            self.skipTest("nothing can be mounted here")
        self.addCleanup(subprocess.run, ["umount", "-l", folder], check=False)

    def test_onto_a_full_disk_and_into_a_folder_that_is_not_to_be_written(self):
        self.start_beside_a_track()
        folder = self.app("Lyrics")
        os.makedirs(folder, exist_ok=True)
        self.mount(folder, "-t", "tmpfs", "-o", "size=64k", "tmpfs")
        with open(self.lyric_file(), "wb") as file:
            file.write(b"[00:01.00]old\r\n")
        self.net.answers[FILE] = answer(b"[00:01.00]" + b"x" * 200_000)
        self.list_files(1)
        self.fetch(0)
        self.expect("a full disk", NOT_FETCHED)
        self.assertEqual(self.content(self.lyric_file()), b"[00:01.00]old\r\n")
        self.assertEqual(os.listdir(folder), ["track.LRC"])
        subprocess.run(["mount", "-o", "remount,ro", folder], check=True)
        self.fetch(0)
        self.expect("a folder that is not to be written", "歌词保存目录无法创建文件！")
        self.assertEqual(self.content(self.lyric_file()), b"[00:01.00]old\r\n")
        subprocess.run(["mount", "-o", "remount,rw", folder], check=True)
        self.net.answers[FILE] = answer(self.LYRIC)
        self.fetch(0)
        self.assert_content(self.lyric_file(), self.LYRIC)
        self.assert_fit()


class MakerPages(ServersTest):
    """The file behind the welcome page."""
    PAGE = test_trouble.Maker.PAGE

    def page(self, *lines):
        return answer((self.PAGE + "".join(lines)).encode(), b"text/plain")

    def rows(self):
        whole = self.page()
        banners = "[Advertising]\r\nAdvertisingNumbers=2000000000\r\n"
        self.net.answers["/good"] = whole
        self.net.answers["/ring"] = redirect(b"/ring")
        rows = [
            ("is whole", whole, True),
            ("is not there", whole.replace(b"200 OK", b"404 No"), False),
            ("is cut", whole[:-50], False),
            ("has no length", OK + b"\r\n" + self.PAGE.encode(), True),
            ("says the last of two thousand million banners alone",
             self.page(banners, "index_1999999999_Str=x\r\n"), True),
            ("is full of banners", self.page(banners, *(f"index_{n * 65537}_Str=x\r\n"
                                                        for n in range(30_000))), True),
            ("is full of lines", self.page("a\r\n" * 300_000), True),
            ("is of 16 MB, sparse", self.page("\r\n" * (8 << 20)), False),
            ("is of 16 MB, dense", self.page("a=b\r\n" * (3 << 20)), False),
            ("goes on for ever", for_ever(OK + b"\r\n", bytes(1 << 16)), False),
            ("lies elsewhere", redirect(b"/good"), True),
            ("leads in a ring", redirect(b"/ring"), False),
            ("leads to nobody", redirect(b"http://127.0.0.1:%d/" % closed_port()), False),
            ("leads to no name", redirect(b"http://no-such-name.invalid/"), False),
            ("is closed without a word", misbehaving.at_once, False),
            ("is no answer", b"HELLO\r\n", False),
        ]
        if WHOLE:
            rows += [
                ("goes on for ever at 1.1 KB/s", for_ever(OK + b"\r\n", bytes(1126), 1), False),
                ("has a header that drips", for_ever(OK, b"X: y\r\n", 1), False),
                ("ends behind its header", silent(OK + length(50) + b"\r\n"), False),
            ]
        return rows

    def test_of_the_makers_page(self):
        self.begin()
        self.try_maker(self.rows())
        self.tell_of(16, "the maker's page")
        self.assert_fit()

    def test_onto_a_full_disk_and_into_a_folder_that_is_not_to_be_written(self):
        self.begin()
        self.try_maker([("is whole", self.page(), True)])
        folder = self.session.runtime + "/velmora"
        Files.mount(self, folder, "-t", "tmpfs", "-o", "size=64k,mode=0700", "tmpfs")
        self.try_maker([("onto a full disk", self.page("a=b\r\n" * 30_000), False)])
        self.assertEqual([name for name in os.listdir(folder) if not name.startswith(".")], [])
        subprocess.run(["mount", "-o", "remount,ro", folder], check=True)
        self.try_maker([("into a folder that is not to be written", self.page(), False)])
        subprocess.run(["mount", "-o", "remount,rw", folder], check=True)
        self.try_maker([("is whole again", self.page(), True)])
        self.assert_fit()


class Programs(ServersTest):
    """The newer program that a maker offers."""

    def begin_in(self, folder):
        shutil.copy(PROGRAM, folder + "/velmora")
        self.player, self.window = self.start(folder + "/velmora")

    def offer(self, version):
        self.net.answers["/source/softwareDate/"] = answer(
            f"[check]\r\nvesion={version}\r\ndownload={self.net.at}/program\r\n".encode())

    def assert_refused(self, name, reply):
        with self.subTest(name):
            self.tried += 1
            self.net.answers["/program"] = reply
            self.player.click(self.window, "title", button=3)
            self.assertTrue(self.player.menus(), "no menu comes up")
            for key in ("Up", "Up", "Up", "Up", "Return"):  # close, help, about, update
                self.session.key(key)
            self.answer(self.player, "y", "【9.9.9】")
            self.answer(self.player, "Return", "升级失败", LIMIT)
            self.assertEqual([name for name in os.listdir(self.folder) if "9.9.9" in name], [])

    def test_of_programs(self):
        self.folder = self.session.home + "/program"
        os.makedirs(self.folder)
        room = os.path.getsize(PROGRAM) + (1 << 20)
        Files.mount(self, self.folder, "-t", "tmpfs", "-o", f"size={room}", "tmpfs")
        self.offer("9.9.9")
        self.begin_in(self.folder)
        whole = answer(b"#!/bin/sh\r\n", b"application/octet-stream")
        self.net.answers["/ring"] = redirect(b"/ring")
        self.assert_refused("is not there", whole.replace(b"200 OK", b"404 No"))
        self.assert_refused("is cut", OK + length(9999) + b"\r\nMZ")
        self.assert_refused("is reset", misbehaving.reset)
        self.assert_refused("leads in a ring", redirect(b"/ring"))
        self.assert_refused("is closed without a word", misbehaving.at_once)
        self.assert_refused("is larger than any", OK + length(2 << 30) + b"\r\n" + bytes(1 << 16))
        self.assert_refused("is larger than the disk", answer(bytes(8 << 20)))
        subprocess.run(["mount", "-o", "remount,ro", self.folder], check=True)
        self.assert_refused("into a folder that is not to be written", whole)
        self.tell_of(8, "programs")
        self.assert_fit()


class SongFiles(test_trouble.SongsTest):
    """Songs, beside the behaviours that test_trouble has."""

    def test_what_a_record_holds_is_text_and_nothing_else(self):
        self.net.answers["/"] = OK + misbehaving.AUDIO + length(len(SOUND)) + b"\r\n" + SOUND
        names = {"one\r\ntwo": "ONE\r\nTWO.WAV", "<b>bold</b>": None, "a|b": None,
                 "&amp;": "&AMP;.WAV", "[x]": "[X].WAV"}
        window = self.songs(*[test_trouble.record(name, f"{self.net.at}/{number}")
                              for number, name in enumerate(names)])
        expected = set()
        for number, file in enumerate(names.values()):
            expected |= {file} if file else set()
            self.save(window, number)
            self.at_rest(window, "title")
            self.assertTrue(wait_for(lambda: set(self.cached()) == expected), sorted(self.cached()))
        self.assert_fit()

    def test_a_box_over_a_transfer_does_not_have_a_server_without_patience_cut_it(self):
        self.net.answers[MAKER] = b"HTTP/1.1 404 Not Found\r\n\r\n"
        song = b"RIFF" + bytes(40 << 20)
        boxed, sent = threading.Event(), threading.Event()

        def impatient(talk):
            talk.sendall(OK + misbehaving.AUDIO + length(len(song)) + b"\r\n")
            rest = memoryview(song)
            while not boxed.wait(0.02):  # slowly, so that it goes on until the box is there
                talk.sendall(rest[:4096])
                rest = rest[4096:]
            talk.settimeout(15)  # for whatever part is taken next
            while rest:
                rest = rest[talk.send(rest[:1 << 16]):]
            sent.set()
        self.net.answers["/long"] = impatient
        window = self.songs(test_trouble.record("long", self.net.at + "/long"))
        self.save(window, 0)
        self.assertTrue(wait_for(lambda: self.cached()))
        self.player.tool("windowactivate", "--sync", self.window)
        self.player.click(self.window, "welcome")
        box = self.assert_box(self.player, REFUSED)
        boxed.set()
        self.assertTrue(sent.wait(60), "the server has given up")
        self.session.key("Return", box)
        self.assert_content(self.app("Cache", "LONG.WAV"), song, 60)
        self.assert_fit()

    def test_from_elsewhere_a_song_leads_to_no_service_of_this_machine(self):
        outside = outside_address()
        if outside is None:
            self.skipTest("this machine has no address but its own")
        with socket.create_server((outside, 0)) as listener:
            def lead():
                while True:
                    try:
                        talk, _ = listener.accept()
                    except OSError:
                        return
                    with talk:
                        talk.recv(4096)
                        talk.sendall(redirect(self.net.at.encode() + b"/inside"))
            threading.Thread(target=lead, daemon=True).start()
            self.net.answers["/good"] = OK + misbehaving.AUDIO + length(len(SOUND)) + b"\r\n" + SOUND
            window = self.songs(
                test_trouble.record("led", f"http://{outside}:{listener.getsockname()[1]}/x"),
                test_trouble.record("good", self.net.at + "/good"))
            for number in (0, 1):
                self.save(window, number)
                self.at_rest(window, "title")
            self.assertTrue(wait_for(lambda: list(self.cached()) == ["GOOD.WAV"]))
            self.assertNotIn("/inside", [path.lower() for path in self.net.asked])
            listener.shutdown(socket.SHUT_RDWR)
        self.assert_fit()

    def test_onto_a_full_disk_and_into_a_folder_that_is_not_to_be_written(self):
        self.net.answers["/"] = OK + misbehaving.AUDIO + length(1 << 20) + b"\r\n" + bytes(1 << 20)
        window = self.songs(*[test_trouble.record(name, self.net.at + "/" + name)
                              for name in ("full", "locked", "good")])
        folder = self.app("Cache")
        os.makedirs(folder, exist_ok=True)
        Files.mount(self, folder, "-t", "tmpfs", "-o", "size=64k", "tmpfs")
        self.save(window, 0)
        self.at_rest(window, "title")
        self.assertTrue(wait_for(lambda: "/full" in [path.lower() for path in self.net.asked]))
        self.assertTrue(self.player.took(window))
        for name in os.listdir(folder):
            os.remove(f"{folder}/{name}")
        subprocess.run(["mount", "-o", "remount,ro", folder], check=True)
        self.save(window, 1)
        self.at_rest(window, "title")
        self.assertEqual(os.listdir(folder), [])
        subprocess.run(["mount", "-o", "remount,rw,size=8m", folder], check=True)
        self.save(window, 2)
        self.assert_content(folder + "/GOOD.WAV", bytes(1 << 20))
        self.assert_fit()


class Encrypted(ServersTest):
    """Servers that show a certificate. This run of the program trusts an authority of the test's."""

    def setUp(self):
        super().setUp()
        self.folder = self.session.home + "/certificates"
        os.makedirs(self.folder)
        self.openssl("req", "-x509", *self.KEY, "-days", "2", "-subj", "/CN=Authority", "-keyout",
                     "authority.key", "-out", "authority.pem")

    KEY = ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes")

    def openssl(self, *words):
        subprocess.run(["openssl", *words], cwd=self.folder, check=True, stderr=subprocess.DEVNULL)

    def program(self):
        place = "/etc/ssl/certs/ca-certificates.crt"
        script = self.session.home + "/trusting"
        with open(script, "w") as file:
            file.write("#!/bin/sh\nexec unshare -rm sh -e -c 'mount --bind "
                       f"\"{self.folder}/authority.pem\" {place}; exec \"{PROGRAM}\"'\n")
        os.chmod(script, 0o755)
        if subprocess.run(["unshare", "-rm", "mount", "--bind", "/etc/hostname", place],
                          stderr=subprocess.DEVNULL, check=False).returncode != 0:
            self.skipTest("this system lets no program say what it trusts")
        return script

    def issued(self, name, subject, days):
        with open(f"{self.folder}/{name}.ext", "w") as file:
            file.write(f"subjectAltName={subject}")
        self.openssl("req", *self.KEY, "-subj", "/CN=server", "-keyout", name + ".key", "-out",
                     name + ".csr")
        self.openssl("x509", "-req", "-in", name + ".csr", "-CA", "authority.pem", "-CAkey",
                     "authority.key", "-CAcreateserial", "-extfile", name + ".ext", "-days",
                     str(days), "-out", name + ".crt")
        return name

    def self_made(self):
        self.openssl("req", "-x509", *self.KEY, "-days", "2", "-subj", "/CN=server", "-addext",
                     "subjectAltName=IP:127.0.0.1", "-keyout", "own.key", "-out", "own.crt")
        return "own"

    def encrypted(self, name):
        """The same answers, encrypted."""
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(f"{self.folder}/{name}.crt", f"{self.folder}/{name}.key")
        server = misbehaving.Server(context)
        self.addCleanup(server.close)
        server.answers = self.net.answers
        return f"https://127.0.0.1:{server.port}"

    def test_of_certificates(self):
        servers = {
            "of a trusted authority": self.encrypted(self.issued("good", "IP:127.0.0.1", 2)),
            "for another name": self.encrypted(self.issued("other", "DNS:other.example", 2)),
            "that has ended": self.encrypted(self.issued("ended", "IP:127.0.0.1", -1)),
            "of its own making": self.encrypted(self.self_made()),
            "none, though asked for one": f"https://127.0.0.1:{self.net.port}",
        }
        page = self.links(["/LrcDown/good.lrc"])
        self.net.answers["/page"] = answer(page)
        self.net.answers["/file"] = answer(self.LYRIC)
        self.net.answers["/maker"] = answer(test_trouble.Maker.PAGE.encode())

        def rows(what, good):
            for name, at in servers.items():
                yield name, redirect(f"{at}/{what}".encode()), \
                    good if name == "of a trusted authority" else None
        self.start_beside_a_track()
        self.try_pages(list(rows("page", True)))
        self.try_files(list(rows("file", self.LYRIC)))
        self.player.click(self.lyrics, "close", form=LYRICS)
        self.assertTrue(self.player.gone(self.lyrics))
        self.try_maker(list(rows("maker", True)))
        self.tell_of(15, "certificates")
        self.assert_fit()


if __name__ == "__main__":
    run(sys.argv[5:])
