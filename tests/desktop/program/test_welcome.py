#!/usr/bin/env python3
"""The welcome page and the update of the real program, by mouse and keyboard, on a household's own
catalogue.

    test_welcome.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]

Pictures are kept in the folder that VELMORA_ARTIFACTS names, if it does.
"""

import os
import shutil
import signal
import sys
import time

from cases import run
from household import HouseholdTest
from player import MAIN, PROGRAM, SETTINGS, WELCOME, Player
from session import quiet, rest, wait_for

TABS = ("tabButton_0", "tabButton_1", "tabButton_2")
AT = "http://127.0.0.1:9/"
PAGE = f"""[welcome]
title=Our music
provider=The house
providerLink={AT}house
banner0=Short words|{AT}short
banner1=Some others|{AT}others
tab0=New
tab1=Words
tab2=Films
tab0_line0=The first line|{AT}first
tab0_line1=The second line|{AT}second
tab1_line0=A line of the second page|{AT}words
tab2_line0=A film|{AT}film
"""
LONG = f"banner2={'A line that is wider than its glass has to roll by. ' * 2}|{AT}long\n"
LINE = (100 / 15, 210 / 15)  # top and height of a page's first line; each starts as far below
LANGUAGES = {"English": 960, "French": 1440, "Japanese": 1920, "Chinese": 480}
SETTINGS_FRAME = (2280 / 15, 480 / 15)
# What the update's boxes say.
ASKS = "是否将程序升级到：【99.0.0】"
FETCHED = "Velmora升级完毕，是否启动新程序？"
LATEST = "您当前的版本已最新，无需升级！"
NO_MAKER = "远程数据传输错误！"  # of the page
QUESTIONS = {"English": "Whether to upgrade to the program：【99.0.0】",
             "French": "Mettre le programme à jour vers la version 【99.0.0】",
             "Japanese": "次のバージョンに更新しますか：【99.0.0】", "Chinese": ASKS}
OFFER = """[update]
version=99.0.0
program=programs/newer
chinese=更多功能|更少错误
english=What is new|and what is better
french=Du nouveau|et du meilleur
japanese=新しい機能|と修正
"""


class MakerTest(HouseholdTest):
    """What the program gets from its maker, whose part the catalogue plays."""

    def setUp(self):
        super().setUp()
        self.watch_desktop()

    def configure(self, text):
        for folder in (self.served, self.updates):
            with open(folder + "/catalogue.ini", "w", encoding="utf-8") as file:
                file.write(text)

    def fetched(self, name):
        return f"{self.session.runtime}/velmora/{name}"

    def rest(self, window):
        """What a window shows, once it has been the same for a while: it comes up before it is
        painted."""
        found = rest(lambda: self.player.picture(window, 0, 0, *self.player.size(window)))
        self.assertTrue(found, "the window is never at rest")
        return found

    def keep(self, name, window):
        """A picture of a window for whoever wants to see it."""
        folder = os.environ.get("VELMORA_ARTIFACTS")
        self.rest(window)
        if folder:
            os.makedirs(folder + "/welcome", exist_ok=True)
            quiet("import", "-window", window, f"{folder}/welcome/{name}.png", env=self.session.env)


class Welcome(MakerTest):
    def start_page(self, text=PAGE):
        self.configure(text)
        self.serve()
        self.begin()
        return self.open("welcome", WELCOME)

    def away(self):
        self.player.tool("mousemove", 1270, 790)

    def steady(self, window, control):
        """What a control shows, once two looks in a row are the same and not black."""
        self.away()
        before = [None]

        def look():
            now = self.player.look(window, control, WELCOME)
            same, before[0] = now == before[0], now
            return now if same and any(now) else None
        found = wait_for(look)
        self.assertTrue(found, f"{control} is never at rest")
        return found

    def click_line(self, window, tab, number):
        left, top, _, _ = WELCOME[f"FrameDate_{tab}"]
        line_top = (number + 1) * LINE[0] + number * LINE[1]
        self.player.click_at(window, left + 20, top + line_top + LINE[1] / 2)

    def assert_handed(self, *addresses):
        self.assertTrue(wait_for(lambda: self.opened() == list(addresses), 30),
                        f"{self.opened()} is handed to the desktop, not {addresses}")

    def test_each_tab_shows_a_page_of_its_own(self):
        window = self.start_page()
        self.keep("page", window)
        pages = [self.steady(window, "FrameDate_0")]
        for tab in (1, 2):
            self.player.click(window, TABS[tab], form=WELCOME)
            self.assertTrue(wait_for(
                lambda: self.steady(window, "FrameDate_0") not in pages, 30), "no other page comes")
            pages.append(self.steady(window, "FrameDate_0"))
            self.keep(f"page_{tab}", window)
        self.player.click(window, TABS[0], form=WELCOME)
        self.assertTrue(wait_for(lambda: self.steady(window, "FrameDate_0") == pages[0], 30),
                        "the first page does not come again")

    def test_links_and_the_provider_hand_their_addresses_to_the_desktop(self):
        window = self.start_page()
        self.click_line(window, 0, 0)
        self.assert_handed(AT + "first")
        self.click_line(window, 0, 1)
        self.assert_handed(AT + "first", AT + "second")
        first = self.steady(window, "FrameDate_0")
        self.player.click(window, TABS[1], form=WELCOME)
        self.assertTrue(wait_for(lambda: self.steady(window, "FrameDate_0") != first, 30))
        self.click_line(window, 1, 0)
        self.assert_handed(AT + "first", AT + "second", AT + "words")
        self.player.click(window, "provider", share=0.9, form=WELCOME)
        self.assert_handed(AT + "first", AT + "second", AT + "words", AT + "house")

    def banner_states(self, window, rounds):
        """What the banner shows one after the other until the empty pass has come so often.

        A text is its picture; one that rolls is one state of all its places: "rolling"."""
        place = WELCOME["AdvertisingBOX"]
        self.away()
        seen = []

        def kind(picture, seconds):
            if max(picture) < 110:
                return "empty"
            return "rolling" if seconds < 1.5 else picture

        def look():
            now = self.player.picture(window, *place)
            if not seen or seen[-1][0] != now:
                seen.append([now, time.monotonic(), 0])
            seen[-1][2] = time.monotonic()
            empty = [picture for picture, _, _ in seen[:-1] if max(picture) < 110]
            return len(empty) == rounds
        self.assertTrue(wait_for(look, 120), "the empty pass does not come so often")
        states = []
        for picture, first, last in seen[:-1]:
            state = kind(picture, last - first)
            if not states or states[-1] != state:
                states.append(state)
        return states

    def test_the_banner_goes_round_with_an_empty_pass_behind_its_last_text(self):
        window = self.start_page()
        states = self.banner_states(window, 2)
        first, second = self.banner_texts(states)
        self.assertTrue(states[-6:] == [first, second, "empty"] * 2, self.named(states))

    def banner_texts(self, states):
        """The pictures of the two short texts in front of the last empty pass."""
        texts = [state for state in states if state not in ("rolling", "empty")][-2:]
        self.assertEqual(len(set(texts)), 2, "two texts look alike")
        return texts

    def test_a_banner_wider_than_its_glass_rolls_by_behind_the_others(self):
        window = self.start_page(PAGE.replace("tab0=", LONG + "tab0=", 1))
        states = self.banner_states(window, 2)  # the first round may be seen from its middle only
        first, second = self.banner_texts(states)
        self.assertTrue(states[-4:] == [first, second, "rolling", "empty"], self.named(states))

    @staticmethod
    def named(states):
        """Them without what pictures hold: each by the place of its first time."""
        return [state if isinstance(state, str) else states.index(state) for state in states]

    def test_a_click_on_the_banner_hands_over_the_address_of_what_it_shows(self):
        window = self.start_page()
        left, top, _, height = WELCOME["AdvertisingBOX"]

        def handed():
            self.player.click_at(window, left + 20, top + height / 2)
            return wait_for(lambda: AT + "others" in self.opened(), 0.3)
        self.assertTrue(wait_for(handed, 30), "the second address is never handed over")
        self.assertEqual(self.opened()[0], AT + "short")

    def test_the_check_box_is_stored_and_shows_the_page_at_the_next_start(self):
        window = self.start_page()
        self.assertIsNone(self.stored("AutoShowWelcome"))
        for value in ("1", "0", "1"):
            self.player.click(window, "autoShow", share=0.1, form=WELCOME)
            self.assert_stored("AutoShowWelcome", value)
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended())
        self.begin()
        window = self.player.form(WELCOME)
        self.assertTrue(window, "the page does not come by itself")
        self.player.click(window, "autoShow", share=0.1, form=WELCOME)
        self.assert_stored("AutoShowWelcome", "0")  # it was on

    def test_closing_deletes_the_file_and_offers_the_page_again(self):
        for close in (lambda window: self.player.click(window, "close", form=WELCOME),
                      lambda window: quiet("wmctrl", "-i", "-c", window, env=self.session.env)):
            if not self.player:
                window = self.start_page(PAGE.replace("tab0_line1", "unused"))
            else:
                window = self.open("welcome", WELCOME)
            self.assertIn(b"Our music", self.content(self.fetched("zkPlayerWelcome.tmp")))
            close(window)
            self.assertTrue(self.player.gone(window), "the page stays")
            self.assertTrue(wait_for(
                lambda: not os.path.exists(self.fetched("zkPlayerWelcome.tmp")), 30))
        self.assertIsNone(self.player.child.poll())

    def test_a_second_opening_in_one_run_offers_another_try(self):
        window = self.start_page()
        page = self.steady(window, "FrameDate_0")
        self.player.click(window, "close", form=WELCOME)
        self.assertTrue(self.player.gone(window))
        window = self.open("welcome", WELCOME)
        failed = self.steady(window, "FrameDate_0")
        self.keep("second_opening", window)
        self.assertTrue(failed != page, "nothing tells of the failure")
        self.assertGreater(max(self.steady(window, "loadStr")), 110, "there is no text")
        for tab in TABS:
            self.player.click(window, tab, form=WELCOME)
        # The text is a link to another try, which fetches the page anew and meets the same lines.
        os.remove(self.fetched("zkPlayerWelcome.tmp"))
        self.assertTrue(wait_for(lambda: self.steady(window, "FrameDate_0") == failed),
                        "a tab shows its page")
        self.player.click(window, "loadStr", form=WELCOME)
        self.assertTrue(wait_for(
            lambda: os.path.exists(self.fetched("zkPlayerWelcome.tmp")), 30), "it does not try")
        self.assertTrue(wait_for(lambda: self.steady(window, "FrameDate_0") == failed),
                        "the failure is told no more")

    def test_without_a_maker_it_says_so_and_offers_itself_again(self):
        self.begin()
        for _ in range(2):
            self.player.click(self.window, "welcome")
            self.answer(self.player, "Return", NO_MAKER)
            self.assertTrue(self.player.stays_away(lambda: self.player.form(WELCOME, 0.1),
                                                   self.window))


class Update(MakerTest):
    def setUp(self):
        super().setUp()
        # From a folder of its own, in which the new program comes to lie.
        self.folder = self.session.home + "/installed"
        os.makedirs(self.folder)
        self.program = self.folder + "/velmora"
        shutil.copy(PROGRAM, self.program)
        self.newer = self.folder + "/zkPlayer [99.0.0].exe"
        self.offered = self.updates + "/programs/newer"

    def begin_with_offer(self, program=None):
        os.makedirs(os.path.dirname(self.offered))
        if program is None:
            shutil.copy(PROGRAM, self.offered)
            os.chmod(self.offered, 0o644)  # the player itself makes it a program
        else:
            with open(self.offered, "wb") as file:
                file.write(program)
        self.configure(OFFER)
        self.begin_here()

    def begin_here(self):
        self.serve()
        self.player, self.window = self.start(self.program)

    def ask(self, says=ASKS):
        """By the menu of the main window; returns the box that says this."""
        self.player.click(self.window, "title", button=3)
        self.assertTrue(self.player.menus(), "no menu comes up")
        for key in ("Up", "Up", "Up", "Up", "Return"):  # close, help, about, update
            self.session.key(key)
        return self.assert_box(self.player, says)

    def assert_goes_on(self):
        """It shows its menu and asks the same again."""
        self.ask()
        self.answer(self.player, "n", ASKS)
        self.assertIsNone(self.player.child.poll())

    def successor(self, form=MAIN):
        """The process of a visible main, or any, window of the new program."""
        for number in quiet("xdotool", "search", "--onlyvisible", "--class", "velmora",
                            env=self.session.env).split():
            pid = quiet("xdotool", "getwindowpid", number, env=self.session.env)
            try:
                if os.readlink(f"/proc/{int(pid)}/exe") == self.newer and \
                        (form is None or self.player.is_form(number, form)):
                    return int(pid)
            except (OSError, ValueError):
                pass
        return None

    @staticmethod
    def end(pid):
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def test_a_newer_program_is_fetched_and_takes_over(self):
        self.begin_with_offer()
        self.ask()
        self.assertEqual(os.listdir(self.folder), ["velmora"])
        self.answer(self.player, "y", ASKS)
        box = self.assert_box(self.player, FETCHED)
        self.keep("update_fetched", box)
        self.assertEqual(self.content(self.newer), self.content(self.offered))
        self.assertFalse(os.stat(self.newer).st_mode & 0o111)
        self.assertFalse(os.path.exists(self.fetched("zkPlayerUpdate.tmp")))
        self.session.reply("y", box)
        self.assertTrue(self.player.ended(), "the old program goes on")
        self.assertEqual(self.player.child.returncode, 0)
        new = wait_for(self.successor, 30)
        self.assertTrue(new, "the new program does not come up")
        self.addCleanup(self.end, new)
        self.assertEqual(sorted(os.listdir(self.folder)), ["velmora", "zkPlayer [99.0.0].exe"])

    def test_a_no_fetches_nothing(self):
        self.begin_with_offer()
        self.ask()
        self.answer(self.player, "n", ASKS)
        self.assert_goes_on()
        self.assertEqual(os.listdir(self.folder), ["velmora"])

    def test_a_no_to_the_start_keeps_the_old_program_running_and_the_new_one_on_the_disk(self):
        self.begin_with_offer()
        self.ask()
        self.answer(self.player, "y", ASKS)
        self.answer(self.player, "n", FETCHED)
        self.assert_goes_on()
        self.assertEqual(self.content(self.newer), self.content(self.offered))
        self.assertIsNone(self.successor())

    def test_what_is_no_program_is_not_started_and_the_old_one_goes_on(self):
        self.begin_with_offer(b"\x7fELF and then nothing of the kind")
        self.ask()
        self.answer(self.player, "y", ASKS)
        self.answer(self.player, "y", FETCHED)
        self.answer(self.player, "Return", "无法启动程序")
        self.assert_goes_on()

    def test_a_program_that_is_gone_meanwhile_is_told(self):
        self.begin_with_offer()
        self.ask()
        os.remove(self.offered)
        self.answer(self.player, "y", ASKS)
        self.answer(self.player, "Return", "升级失败")
        self.assertEqual(os.listdir(self.folder), ["velmora"])
        self.assertIsNone(self.player.child.poll())

    def test_a_start_checks_by_itself_when_told_so_and_the_new_program_may_take_over(self):
        self.begin_with_offer()
        settings = self.open_settings()
        self.player.click_at(settings, SETTINGS_FRAME[0] + 30,
                             SETTINGS_FRAME[1] + (2400 + 165) / 15)
        self.player.click(settings, "qd", form=SETTINGS)
        self.assert_stored("AutoUpadate", "1")
        self.assertTrue(self.player.gone(settings))
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended())
        self.player = Player(self.session, self.program)
        self.assert_box(self.player, ASKS)
        self.assertIsNone(self.player.form(MAIN, 0.1), "the start does not wait for the answer")
        self.answer(self.player, "n", ASKS)
        self.window = self.player.window()
        self.assertTrue(self.window, "the start does not go on")
        self.session.key("Escape", self.window)
        self.assertTrue(self.player.ended())
        self.player = Player(self.session, self.program)
        self.answer(self.player, "y", ASKS)
        self.session.reply("y", self.assert_box(self.player, FETCHED))
        self.assertTrue(self.player.ended(), "the old program goes on")
        self.assertEqual(self.player.child.returncode, 0)
        # The new one is offered here again, as the two are alike in truth.
        new = wait_for(lambda: self.successor(None), 30)
        self.assertTrue(new, "the new program does not come up")
        self.addCleanup(self.end, new)

    def test_without_a_newer_program_it_says_so(self):
        self.begin_here()
        self.keep("update_latest", self.ask(LATEST))
        self.answer(self.player, "Return", LATEST)
        self.assertIsNone(self.player.child.poll())
        self.assertEqual(os.listdir(self.folder), ["velmora"])

    def open_settings(self):
        self.session.key("ctrl+s", self.window)
        settings = self.player.form(SETTINGS)
        self.assertTrue(settings, "the settings do not come up")
        return settings

    def speak(self, language):
        settings = self.open_settings()
        self.player.click(settings, "languageSet", form=SETTINGS)
        self.player.click_at(settings, SETTINGS_FRAME[0] + 40,
                             SETTINGS_FRAME[1] + (LANGUAGES[language] + 165) / 15)
        self.player.click(settings, "yy", form=SETTINGS)
        self.assert_stored("Language", str(sorted(LANGUAGES).index(language)))
        self.player.click(settings, "qx", form=SETTINGS)
        self.assertTrue(self.player.gone(settings))

    def test_it_asks_in_each_language(self):
        self.begin_with_offer()
        for language, question in QUESTIONS.items():
            self.speak(language)
            box = self.ask(question)
            self.keep(f"update_{language}", box)
            self.answer(self.player, "n", question)


if __name__ == "__main__":
    run(sys.argv[5:])
