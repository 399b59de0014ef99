#!/usr/bin/env python3
"""Films that are not what they seem, and windows and sound servers that go away under them.

    test_video_faults.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL [unittest options]
"""

import os
import random
import signal
import sys

from cases import run
from films import SECONDS, FilmTest, chart, ffmpeg, make_film, tone
from session import wait_for


class FaultyFilms(FilmTest):
    def assert_answers(self, player, main):
        """The program takes a key and shows what it does."""
        self.session.key("F4", main)
        self.assertTrue(wait_for(lambda: player.title(main) == "Velmora 2011"),
                        "the program does not answer")
        self.assertIsNone(player.child.poll())

    def test_a_film_without_a_picture_stream_is_sound_without_a_window(self):
        ffmpeg("-i", self.film(), "-vn", "-c", "copy", self.film("blind.mp4"))
        recorder = self.recorder()
        player, main = self.play("blind.mp4")
        self.assertIsNotNone(self.heard_second(recorder))
        self.assertIsNone(self.video(player, seconds=1))
        self.assert_button(player, main, False)
        self.assert_answers(player, main)

    def test_a_stream_broken_in_the_middle_is_played_past_the_damage(self):
        make_film(self.film("whole.mp4"), seconds=30)
        with open(self.film("whole.mp4"), "rb") as file:
            data = bytearray(file.read())
        noise = random.Random(7)
        first, last = len(data) * 10 // 30, len(data) * 13 // 30
        data[first:last] = noise.randbytes(last - first)
        with open(self.film("broken.mp4"), "wb") as file:
            file.write(data)
        player, main, window = self.play_in_window("broken.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        player.click_at(window, 365 * 8 / 15, 525 - 845 / 15 + 10)  # shortly ahead of the damage
        self.assertTrue(wait_for(lambda: (self.film_time(rect, 30) or 0) > 15),
                        f"the picture stays at {self.film_time(rect, 30)}")
        self.assert_answers(player, main)

    def test_a_film_cut_short_ends_and_the_next_one_comes(self):
        make_film(self.film("short.ts"), seconds=4, extra=("-f", "mpegts"))
        with open(self.film("short.ts"), "rb+") as file:
            file.truncate(os.path.getsize(self.film("short.ts")) * 2 // 3)
        player, main, _ = self.play_in_window("short.ts", "film.mp4")
        self.assert_title(player, main, "film", 60)
        window = self.video(player)
        self.assert_stretched(self.whole(player, window))

    def test_a_size_that_changes_stays_stretched_over_the_window(self):
        for name, size in (("a.ts", (320, 240)), ("b.ts", (640, 200))):
            make_film(self.film(name), size, seconds=15, extra=("-f", "mpegts"))
        with open(self.film("changing.ts"), "wb") as out:
            for name in ("a.ts", "b.ts"):
                with open(self.film(name), "rb") as file:
                    out.write(file.read())
        player, main, window = self.play_in_window("changing.ts")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        # The second part begins with the mark at the left again.
        self.assertTrue(wait_for(lambda: (self.mark(rect) or 0) > 0.8))
        self.assertTrue(wait_for(lambda: (self.mark(rect) or 1) < 0.5), "no second part")
        self.assert_stretched(rect, 6)
        self.assert_answers(player, main)

    def test_a_rotated_film_is_shown_upright(self):
        ffmpeg("-f", "lavfi", "-i", tone(10), "-filter_complex",
               chart(640, 360, 10) + ",transpose=2,format=yuv420p[v]", "-map", "[v]", "-map", "0:a",
               "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac", self.film("lying.mp4"))
        ffmpeg("-i", self.film("lying.mp4"), "-c", "copy", "-metadata:s:v:0", "rotate=270",
               self.film("rotated.mp4"))
        player, main, window = self.play_in_window("rotated.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        self.assert_answers(player, main)

    def test_an_8k_film_is_shown_and_the_program_answers(self):
        make_film(self.film("8k.mp4"), (7680, 4320), seconds=4, rate=4)
        player, main, window = self.play_in_window("8k.mp4")
        self.assert_stretched(self.whole(player, window), 20)
        self.assert_answers(player, main)


class Hurried(FilmTest):
    def test_keys_in_a_hurry_leave_a_film_that_plays_in_one_window(self):
        player, main = self.play("film.mp4", "film.mp4", "film.mp4")
        for keys in (("F6", "F6", "F5"), ("F6", "F4", "F2"), ("F11", "F6", "F11"), ("F4", "F6"),
                     ("F6", "F11", "F11", "F6")):
            for key in keys:
                self.session.key(key, main)
            self.assertIsNone(player.child.poll(), f"ended at {keys}")
        self.assertTrue(player.took(main), "the keys are not handled")
        self.session.key("F6", main)
        window = self.video(player)
        self.assertTrue(window)
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)

    def either(self, player):
        """The video window in whichever of its sizes."""
        return wait_for(lambda: self.video(player, seconds=0.05) or
                        self.video(player, (1280, 800), 0.05))

    def test_the_window_closed_and_reopened_while_a_film_opens(self):
        player, main, window = self.play_in_window("film.mp4", "film.mp4")
        for _ in range(3):
            old = self.either(player)
            self.session.key("F6", main)  # unloads it and makes it anew
            self.assertTrue(player.gone(old))
            window = self.either(player)
            self.assertTrue(window)
            self.session.key("F11", window)  # while the sound fades in
            self.assertTrue(player.gone(window))
            self.session.key("F11", main)
            window = self.either(player)
            self.assertTrue(window, "it does not come back")
            self.session.key("Return", window)  # full screen, or back
            self.session.key("F4", self.either(player))
            self.assertTrue(wait_for(lambda: not self.video(player, (1280, 800), 0.05) and
                                     not self.video(player, seconds=0.05)))
            self.assertIsNone(player.child.poll())
            # A stop within the fade leaves the player in use: the next film comes all the same.
            self.session.key("F6", main)
            self.assertTrue(self.either(player), "no window after a stop")


class SoundServer(FilmTest):
    def test_a_server_that_goes_away_leaves_the_picture_going_and_the_next_film_is_heard(self):
        player, main, window = self.play_in_window("film.mp4", "film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        self.assert_moves(rect)
        self.session.pulse.kill()
        self.session.pulse.wait()
        at = self.film_time(rect)
        self.assertTrue(wait_for(lambda: (self.film_time(rect) or 0) > at + 2),
                        f"the picture stands still at {self.film_time(rect)} of {SECONDS}")
        self.session.start_sound()
        recorder = self.recorder()
        self.session.key("F6", main)
        window = self.video(player)
        self.assertTrue(window)
        self.assert_stretched(self.whole(player, window))
        self.assertIsNotNone(self.heard_second(recorder), "the next film is not heard")
        self.assertIsNone(player.child.poll())

    def test_a_server_that_hangs_does_not_hold_the_program(self):
        player, main, window = self.play_in_window("film.mp4")
        rect = self.whole(player, window)
        self.assert_stretched(rect)
        os.kill(self.session.pulse.pid, signal.SIGSTOP)
        try:
            self.session.key("F4", main)
            self.assertTrue(wait_for(lambda: player.title(main) == "Velmora 2011", 60),
                            "the program hangs")
        finally:
            os.kill(self.session.pulse.pid, signal.SIGCONT)
        self.session.key("F2", main)
        self.assertTrue(self.video(player))


if __name__ == "__main__":
    run(sys.argv[5:])
