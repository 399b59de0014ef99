#!/usr/bin/env python3
"""The mini strip of the real program at the screen's edge, under a real pointer.

    test_mini.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import re
import sys
import time

from cases import run
from player import LIST, MAIN, MINI, PlayerTest, Stranger, stairs
from session import taken, wait_for

WIDTH, HEIGHT = (int(side) for side in MINI["form"][2:4])
STEP = 100 / 15  # pixels of a tick
CLOCK = re.compile(r"\d\d:\d\d")


class Mini(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.track = f"{self.music}/track.wav"
        stairs(self.track, 60, step=0)
        self.write_list([self.track])

    def enter(self):
        player, main = self.start()
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip, "the strip does not come up")
        self.assertTrue(player.gone(main))
        # The pointer was below it: a step or two of the slide may have been taken.
        self.touch_edge(player, strip)
        player.tool("mousemove", *self.inside(player, strip))
        self.assert_top(player, strip, 0)
        return player, strip

    def aside(self, player, strip, pixels=200):
        """Drags the strip along the edge, so that there is room to its left."""
        before = player.place(strip)
        player.tool("mousemove", *player.point(strip, 15, 20))
        player.tool("mousedown", 1)
        self.assertTrue(player.took(strip))  # a drag begins where the pointer is when the press is handled
        for _ in range(10):
            player.tool("mousemove_relative", pixels // 10, 0)
        self.assertTrue(wait_for(lambda: player.place(strip)[0] > before[0], 30))
        player.tool("mouseup", 1)
        self.assertTrue(player.done(strip))  # it stands where it was dragged to
        self.touch_edge(player, strip)

    def touch_edge(self, player, strip):
        player.tool("mousemove", player.place(strip)[0] + 40, 0)
        self.assert_top(player, strip, 0)

    def inside(self, player, strip):
        return player.place(strip)[0] + 20, 20

    def slide(self, player, strip, until, seconds=30):
        """Times (from the start, in seconds) and tops as they change, until the condition holds."""
        begun, positions = time.monotonic(), []
        while time.monotonic() - begun < seconds:
            top = player.place(strip)[1]
            if not positions or positions[-1][1] != top:
                positions.append((time.monotonic() - begun, top))
            if until(top):
                break
        return positions

    def assert_top(self, player, strip, top, seconds=30):
        self.assertTrue(wait_for(lambda: player.place(strip)[1] == top, seconds),
                        f"the strip stands at {player.place(strip)[1]}, not at {top}")

    def clock(self, player, strip):
        """The time that the strip shows; it tells it wherever it stands."""
        return next((word for word in player.words(strip) if CLOCK.match(word)), None)

    def ticked(self, player, strip):
        """Once the strip has looked for the pointer, behind all that was sent before: a tick does that
        first, and then shows the time of the track that plays. The first change may be of a tick that
        looked before."""
        for _ in range(2):
            before = self.clock(player, strip)
            if not wait_for(lambda before=before: self.clock(player, strip) != before):
                return False
        return True

    def away(self, player, strip, place=(640, 500)):
        """Moves the pointer away and records the slide out of sight."""
        player.tool("mousemove", *place)
        return self.slide(player, strip, lambda top: top <= -HEIGHT)

    def test_slides_out_step_by_step_within_half_a_second_and_comes_back_at_the_edge(self):
        player, strip = self.enter()
        self.assert_top(player, strip, 0)
        for _ in range(3):
            player.tool("mousemove", *self.inside(player, strip))
            self.assert_top(player, strip, 0)
            positions = self.away(player, strip)
            tops = [top for _, top in positions]
            self.assertLessEqual(tops[-1], -HEIGHT, f"it stays in sight: {positions}")
            self.assertEqual(tops, sorted(tops, reverse=True), "it goes back and forth")
            steps = [before - after for before, after in zip(tops, tops[1:])]
            # A look may miss a step; no step is ever larger than its own.
            self.assertTrue(all(abs(step / STEP - round(step / STEP)) < 0.2 for step in steps),
                            f"steps of {steps} pixels")
            self.assertEqual(tops[-1], round(-7 * STEP))
            # From the first step on: half a second, and what a busy machine adds.
            self.assertLess(positions[-1][0] - positions[1][0], 0.5 + 4.5)
            player.tool("mousemove", *(player.place(strip)[0] + WIDTH // 2, 0))
            self.assert_top(player, strip, 0)

    def test_every_step_of_the_slide_is_seen_when_it_is_watched_from_its_start(self):
        player, strip = self.enter()
        self.assert_top(player, strip, 0)
        seen = set()
        for _ in range(30):  # each look misses some
            if len(seen) >= 6:
                break
            seen.update(top for _, top in self.away(player, strip))
            player.tool("mousemove", *(player.place(strip)[0] + WIDTH // 2, 0))
            self.assert_top(player, strip, 0)
        expected = {round(-number * STEP) for number in range(8)}
        self.assertLessEqual(seen, expected, "it stands where no step ends")
        self.assertGreaterEqual(len(seen), 6, f"steps at {sorted(seen)} only")

    def test_slides_out_to_the_left_and_the_right_of_it_too(self):
        player, strip = self.enter()
        self.aside(player, strip)
        x = player.place(strip)[0]
        for place in ((x - 2, 10), (x + WIDTH + 2, 10)):
            with self.subTest(place=place):
                self.assertLessEqual(self.away(player, strip, place)[-1][1], -HEIGHT)
                self.touch_edge(player, strip)

    def test_the_top_edge_beside_its_columns_does_not_bring_it_back(self):
        player, strip = self.enter()
        player.click(strip, "nextButton", form=MINI)
        self.aside(player, strip)
        self.away(player, strip)
        x = player.place(strip)[0]
        for place in ((x - 5, 0), (x + WIDTH + 5, 0), (x + 50, 2)):
            player.tool("mousemove", *place)
            self.assertTrue(self.ticked(player, strip))
            self.assertLessEqual(player.place(strip)[1], -HEIGHT, f"{place}")
        player.tool("mousemove", x + 1, 0)
        self.assert_top(player, strip, 0)

    def test_a_pointer_that_comes_back_in_time_holds_it(self):
        player, strip = self.enter()
        player.tool("mousemove", 640, 500)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] < 0, 30, 0.005))
        player.tool("mousemove", player.place(strip)[0] + 40, 0)
        self.assert_top(player, strip, 0)

    def test_the_lock_keeps_it_wherever_the_pointer_goes(self):
        player, strip = self.enter()
        player.click(strip, "nextButton", form=MINI)
        player.click(strip, "auto_Hide_Lock_False", form=MINI)
        player.tool("mousemove", 640, 500)
        self.assertTrue(self.ticked(player, strip))
        self.assertEqual(player.place(strip)[1], 0)
        player.click(strip, "auto_Hide_Lock_True", form=MINI)
        self.assertLessEqual(self.away(player, strip)[-1][1], -HEIGHT)

    def test_dragged_away_from_the_edge_it_does_not_slide(self):
        player, strip = self.enter()
        player.click(strip, "nextButton", form=MINI)
        player.click(strip, "auto_Hide_Lock_False", form=MINI)  # a drag takes its time
        player.tool("mousemove", *player.point(strip, 15, 20))
        player.tool("mousedown", 1)
        self.assertTrue(player.took(strip))  # a drag begins where the pointer is when the press is handled
        for _ in range(10):
            player.tool("mousemove_relative", "--", 6, 20)
        self.assertTrue(wait_for(lambda: player.place(strip)[1] > 100, 30))
        player.tool("mouseup", 1)
        self.assertTrue(player.done(strip))
        player.click(strip, "auto_Hide_Lock_True", form=MINI)
        place = player.place(strip)
        player.tool("mousemove", 640, 700)
        self.assertTrue(self.ticked(player, strip))
        self.assertEqual(player.place(strip), place)

    def test_a_screen_that_shrinks_brings_it_back_to_where_it_can_be_reached(self):
        player, strip = self.enter()
        player.click(strip, "auto_Hide_Lock_False", form=MINI)
        self.aside(player, strip, 480)
        self.resize(800, 600)
        self.assertTrue(player.done(strip))
        self.assertEqual(player.place(strip), (480, 0), "it moves though most of it can be seen")
        self.resize(500, 400)
        self.assertTrue(wait_for(lambda: player.place(strip) == (0, 0), 30),
                        f"it stands out of reach at {player.place(strip)}")
        left, top, width, height = MINI["title_ICO"]
        player.click_at(strip, left + width / 2, top + height / 2, times=2)
        self.assertTrue(player.window() and player.gone(strip))

    def test_below_a_panel_it_takes_clicks_though_a_release_was_never_told(self):
        self.session.env["XDG_CURRENT_DESKTOP"] = "GNOME"
        player, strip = self.enter()
        player.click(strip, "nextButton", form=MINI)
        panel = Stranger(self.session, 0, 0, 1280, HEIGHT)
        for words in (("set_window", "--overrideredirect", 1), ("windowunmap", "--sync")):
            player.tool(*words, panel.window)
        # The manager gives it back when it sees that it has gone, and puts it where it had it.
        self.assertTrue(taken(env=self.session.env))
        player.tool("windowmap", "--sync", panel.window, "windowmove", panel.window, 0, 0, "windowraise", panel.window)
        self.assertTrue(wait_for(lambda: player.place(panel.window) == (0, 0)))
        player.tool("mousemove", *self.inside(player, strip))
        self.assertTrue(self.ticked(player, strip))
        player.tool("click", 3)
        self.assertTrue(player.menus(), "the strip takes no click below the panel")
        player.tool("mousemove", 640, 500)
        player.tool("mousedown", 1)
        self.assertTrue(wait_for(lambda: not player.menus(1, 0.1)), "the menu stays")
        player.tool("mouseup", 1)
        self.touch_edge(player, strip)
        left, top, width, height = MINI["mini_Button"]
        player.tool("mousemove", *player.point(strip, left + width / 2, top + height / 2))
        self.assertTrue(self.ticked(player, strip))
        player.tool("click", 1)
        self.assertTrue(player.window(), f"the click is lost to the panel: {panel.presses()}")
        self.assertEqual(panel.presses(), [])

    def test_each_way_back_brings_the_main_window(self):
        player, strip = self.enter()
        for number, place in enumerate(("mini_Button", "title_ICO", (205, 8), (205, 25), (170, 3))):
            with self.subTest(place=place):
                if number == 0:
                    player.click(strip, place, form=MINI)
                elif isinstance(place, str):
                    left, top, width, height = MINI[place]
                    player.click_at(strip, left + width / 2, top + height / 2, times=2)
                else:
                    player.click_at(strip, *place, times=2)
                main = player.window()
                self.assertTrue(main, "the main window does not come back")
                self.assertTrue(player.gone(strip))
                player.click(main, "mini_Button")
                strip = player.form(MINI)
                self.assertTrue(strip)
                self.touch_edge(player, strip)

    def test_leaving_brings_the_list_back_that_was_open(self):
        player, main = self.start()
        player.click(main, "playListButton")
        rows = player.form(LIST)
        self.assertTrue(rows)
        player.click(main, "mini_Button")
        strip = player.form(MINI)
        self.assertTrue(strip and player.gone(main) and player.gone(rows))
        self.touch_edge(player, strip)
        player.click(strip, "mini_Button", form=MINI)
        self.assertTrue(player.form(MAIN))
        self.assertTrue(player.form(LIST), "the list stays away")

    def test_its_transport_plays_and_its_keys_are_none(self):
        player, strip = self.enter()
        before = player.look(strip, "play_Time", MINI)
        player.click(strip, "nextButton", form=MINI)
        self.assertTrue(wait_for(lambda: player.look(strip, "play_Time", MINI) != before, 30),
                        "nothing plays")
        self.session.key("Escape", strip)
        self.assertTrue(player.done(strip))
        self.assertIn(strip, player.windows(), "Esc ends the program from the strip")
        player.click(strip, "close", form=MINI)
        self.assertTrue(player.ended(), "the strip's close does not end the program")
        self.assertEqual(player.child.returncode, 0)


if __name__ == "__main__":
    run(sys.argv[5:])
