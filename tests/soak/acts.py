"""What is done in a long run. Each act brings its own state about, looks whether it took effect, and leaves the main
window alone or with what plays; what it chooses comes from the run's seed."""

import os
import signal

from hand import (ABOUT, CHECK, EDITOR, INFO, LIST, LYRIC_SEARCH, MAIN, MINI, SEEN_S, SETTINGS, SONGS, WELCOME, WHOLE,
                  need)
from measures import MPRIS
from player import ASK
from session import let_pass, quiet, rest, wait_for
from settings_window import FRAME, LANGUAGE_ROWS, PAGES

ACTS = {}
WEIGHTS = {}
LONGEST_LIST, SHORTEST_LIST = 140, 60
TAKEN_S = 10  # what a press does is seen by then
TRAY = ["trayer", "--edge", "top", "--align", "left", "--widthtype", "pixel", "--width", "60", "--heighttype", "pixel",
        "--height", "30"]


def act(weight=1):
    def keep(routine):
        name = routine.__name__.replace("_", " ")
        ACTS[name], WEIGHTS[name] = routine, weight
        return routine
    return keep


# --- what plays ------------------------------------------------------------------------------------

def another_track(hand, chance, key, button, what):
    """What is told of is whole, at the end of its fade-in: its place would be seen before its name and length."""
    before = len(hand.played())

    def is_played():
        return len(hand.played()) > before
    if chance.random() < 0.5:
        hand.key(key)
    else:
        hand.press(button)
        # A film that was begun just before comes up over the whole screen, and may have taken the press.
        if not wait_for(is_played, TAKEN_S) and hand.film_window():
            hand.key(key)
    need(wait_for(is_played, SEEN_S), what)


@act(4)
def next_track(hand, chance):
    another_track(hand, chance, "F6", "nextButton", "no next track")


@act(2)
def previous_track(hand, chance):
    for _ in range(2):  # ahead of the first there is none
        next_track(hand, chance)
    if hand.played()[-1].endswith(hand.list_lines()[0]):  # behind the last comes the first
        next_track(hand, chance)
    another_track(hand, chance, "F5", "upButton", "no track before")


@act(6)
def a_file_from_outside(hand, chance):
    hand.play(chance.choice(hand.media.good))


@act(2)
def what_is_no_medium(hand, chance):
    """It may be played as far as it goes, or refused; either way what played before plays no longer."""
    hand.play_long(chance)
    before = len(hand.played())
    need(hand.open_tool(chance.choice(hand.media.bad)).returncode in (0, 1), "it takes no file")
    need(wait_for(lambda: len(hand.played()) > before or hand.status()[0] == "Stopped" or hand.player.boxes(), SEEN_S),
         "nothing becomes of it")
    hand.answers()
    for box in hand.player.boxes():
        hand.session.reply("Return", box)
        need(hand.player.gone(box, SEEN_S), "the box stays")


@act(4)
def seek(hand, chance):
    hand.play_long(chance)
    share = chance.uniform(0.05, 0.8)
    before = hand.status()
    hand.press("play_Time")  # off the bar
    hand.player.click(hand.main, "load_Played_BG", share)
    length = before[3]

    def there():
        place = hand.status()[2]
        return length * share - 8 <= place <= length * share + SEEN_S
    need(wait_for(there, SEEN_S), f"it stands at {hand.status()[2]}, not at {length * share:.0f} of {length}")


@act(3)
def seek_from_outside(hand, chance):
    hand.play_long(chance)
    place = chance.randrange(10, 480)
    hand.open_tool("--seek", str(place))
    need(wait_for(lambda: place - 5 <= hand.status()[2] <= place + SEEN_S, SEEN_S),
         f"it stands at {hand.status()[2]}, not at {place}")


@act(4)
def pause_and_go_on(hand, chance):
    hand.play_long(chance)
    way = chance.randrange(3)

    def switch(key, button, word):
        if way == 0:
            hand.key(key)
        elif way == 1:
            hand.press(button)
        else:
            hand.open_tool(word)
    switch("F3", "pauseButton", "--pause")
    hand.comes("Paused")
    switch("F2", "playButton", "--play")
    hand.comes("Playing")


@act(2)
def stop_and_start(hand, chance):
    hand.play_long(chance)
    hand.stop()

    def plays():
        """A press within the fade of what was stopped is passed over, as the stop would be."""
        if hand.status()[0] != "Playing":
            hand.press("playButton")
        return hand.status()[0] == "Playing"
    need(wait_for(plays, SEEN_S, 0.5), "it does not play")


@act(2)
def volume(hand, chance):
    hand.undisturbed(chance)
    share = chance.uniform(0.1, 0.9)
    hand.front()
    hand.player.click(hand.main, "Volume_Set_BG", share)
    need(wait_for(lambda: abs(hand.volume() - share) < 0.06, SEEN_S), f"the volume is {hand.volume()}, not {share:.2f}")


@act(1)
def mute_and_back(hand, chance):
    hand.undisturbed(chance)
    hand.press("Volume_ICO")
    need(wait_for(lambda: hand.volume() < 0.02, SEEN_S), f"it is not muted: {hand.volume()}")
    share = chance.uniform(0.3, 0.8)
    hand.player.click(hand.main, "Volume_Set_BG", share)
    need(wait_for(lambda: abs(hand.volume() - share) < 0.06, SEEN_S), f"the volume is {hand.volume()}, not {share:.2f}")


@act(1)
def channels(hand, chance):
    hand.play_long(chance)
    for _ in range(3):
        hand.press("AudioSource_H")  # the three lie on each other
    hand.answers()


@act(3)
def a_film(hand, chance):
    hand.play_long(chance, film=True)
    window = need(wait_for(hand.film_window, SEEN_S), "the film has no window")
    hand.front(window)
    # The keys mean what they say once the sound has faded in.
    need(wait_for(lambda: hand.status()[2] >= 3, SEEN_S), "the film stands still")
    if chance.random() < 0.5:
        hand.key("F3", window)
        hand.comes("Paused")
        hand.key("F2", window)
        hand.comes("Playing")
    hand.open_tool("--seek", str(chance.randrange(20, 400)))
    for _ in range(2):
        if chance.random() < 0.7:
            change_the_size_of_the_film(hand)
    hand.stop()


def change_the_size_of_the_film(hand):
    """Over the whole screen or back; the key means that once the sound has faded in."""
    before = hand.player.size(hand.film_window())

    def changed():
        window = hand.film_window()
        if window and hand.player.size(window) == before:
            hand.key("Return", window)
        return window and hand.player.size(window) != before
    need(wait_for(changed, SEEN_S, 1), f"the film stays at {before}")


@act(1)
def a_huge_film(hand, chance):
    hand.play(f"{hand.music}/picture huge_picture.mp4")
    hand.answers()
    hand.stop()


# --- windows ---------------------------------------------------------------------------------------

@act(3)
def the_line_on_the_desktop(hand, chance):
    hand.play_long(chance)
    hand.line_on()
    let_pass(chance.uniform(0.5, 4))  # it rolls
    hand.line_off()


@act(3)
def mini_mode(hand, chance):
    hand.play_long(chance)
    hand.press("mini_Button")
    strip = need(hand.player.form(MINI, SEEN_S), "no strip")
    need(hand.player.gone(hand.main, SEEN_S), "the main window stays")
    hand.lock_strip(hand.player, strip)
    if chance.random() < 0.5:
        hand.player.click(strip, "pauseButton", form=MINI)
        hand.comes("Paused")
        hand.player.click(strip, "playButton", form=MINI)
        hand.comes("Playing")
    hand.player.click(strip, "auto_Hide_Lock_True", form=MINI)
    if chance.random() < 0.5:
        hand.player.tool("mousemove", 640, 600)
        need(wait_for(lambda: hand.player.place(strip)[1] < -20, SEEN_S), "the strip stays")
    hand.player.tool("mousemove", hand.player.place(strip)[0] + 40, 0)
    need(wait_for(lambda: hand.player.place(strip)[1] == 0, SEEN_S), "the strip is lost")
    hand.player.click(strip, "mini_Button", form=MINI)
    hand.main = need(hand.player.window(SEEN_S), "the main window does not come back")
    need(hand.player.gone(strip, SEEN_S), "the strip stays")


@act(2)
def a_language(hand, chance):
    hand.undisturbed(chance)
    name = chance.choice(list(LANGUAGE_ROWS))
    number = str(list(LANGUAGE_ROWS).index(name))
    hand.front()
    hand.key("ctrl+s")
    settings = need(hand.player.form(SETTINGS, SEEN_S), "no settings")
    hand.player.click(settings, "languageSet", form=SETTINGS)
    need(rest(lambda: hand.player.picture(settings, *FRAME, 430, 330), SEEN_S), "the page is never still")
    hand.player.click_at(settings, FRAME[0] + 40, FRAME[1] + (LANGUAGE_ROWS[name] + 165) / 15)
    hand.player.click(settings, "qd", form=SETTINGS)
    need(hand.player.gone(settings, SEEN_S), "the settings stay")
    need(wait_for(lambda: hand.stored("Language") == number, SEEN_S),
         f"the language is {hand.stored('Language')}, not {number} for {name}")


@act(1)
def the_pages_of_the_settings(hand, chance):
    hand.undisturbed(chance)
    hand.front()
    hand.key("ctrl+s")
    settings = need(hand.player.form(SETTINGS, SEEN_S), "no settings")
    for page in chance.sample(PAGES, 3):
        hand.player.click(settings, page, form=SETTINGS)
        need(hand.player.took(settings), "a page does not come")
    hand.close_by(settings, SETTINGS, "qx")


def window_act(name, control, form, weight=1, playing=True):
    def routine(hand, chance):
        if playing:
            hand.play_long(chance)
        else:
            hand.undisturbed(chance)
        window = hand.opened_by(control, form)
        need(hand.player.took(window), "the window does not answer")
        hand.close_by(window, form)
    routine.__name__ = name
    act(weight)(routine)


window_act("about", "CopyRight_ICO", ABOUT, playing=False)
window_act("the_editor", "do_Lrc", EDITOR)
window_act("the_check_of_the_sound", "check_SoundDriver", CHECK)
window_act("the_welcome_page", "welcome", WELCOME, playing=False)


@act(2)
def what_is_known_of_the_track(hand, chance):
    hand.play_long(chance)
    info = hand.opened_by("playInfo", INFO)
    hand.press("playInfo")
    need(hand.player.gone(info, SEEN_S), "it stays")


@act(2)
def a_menu(hand, chance):
    hand.undisturbed(chance)
    hand.front()
    hand.player.click(hand.main, "title", button=3)
    need(hand.player.menus(1, SEEN_S), "no menu")
    for _ in range(chance.randrange(1, 12)):
        hand.player.tool("key", "Down")
    hand.player.tool("key", "Escape")
    need(wait_for(lambda: not hand.player.menus(1, 0.05), SEEN_S), "the menu stays")


@act(1)
def tips(hand, chance):
    hand.front()
    for control in chance.sample(["playButton", "stopButton", "nextButton", "do_Lrc", "playSet_Button"], 3):
        left, top, width, height = MAIN[control]
        hand.player.tool("mousemove", *hand.player.point(hand.main, left + width / 2, top + height / 2))
        hand.player.tool("mousemove_relative", "--", 1, 1)
        let_pass(0.8)
    hand.aside()
    hand.answers()


@act(1)
def minimise_and_back(hand, chance):
    hand.undisturbed(chance)
    hand.press("minimizeButton")
    need(wait_for(lambda: hand.main not in hand.player.windows(), SEEN_S), "it is not minimised")
    hand.open_tool("--raise")
    need(wait_for(lambda: hand.main in hand.player.windows(), SEEN_S), "it stays minimised")


@act(2)
def drag_the_windows(hand, chance):
    hand.list_window()
    hand.front()
    before = hand.player.place(hand.main)
    steps = [(chance.randrange(-9, 10), chance.randrange(-9, 10)) for _ in range(10)]
    hand.player.tool("mousemove", *hand.player.point(hand.main, 150, 13))
    hand.player.tool("mousedown", 1)
    need(hand.player.took(hand.main), "the press is not handled")
    for step in steps:
        hand.player.tool("mousemove_relative", "--", *step)
    target = before[0] + sum(x for x, _ in steps), before[1] + sum(y for _, y in steps)
    moved = wait_for(lambda: hand.player.place(hand.main) == target, SEEN_S)
    hand.player.tool("mouseup", 1)
    need(moved, f"it stands at {hand.player.place(hand.main)}, not at {target}")
    hand.player.done(hand.main)
    hand.close_list()
    hand.player.move(hand.main, 400, 290)


@act(1)
def a_second_start(hand, chance):
    hand.second_start()
    hand.answers()


# --- the list --------------------------------------------------------------------------------------

@act(3)
def add_to_the_list(hand, chance):
    rows = hand.list_window()
    lines = hand.list_lines()
    if len(lines) > LONGEST_LIST:
        return shorten_the_list(hand, chance)
    there = set(lines)
    if chance.random() < 0.4:
        folder = chance.choice(hand.media.folders)
        paths = [folder]
        more = sum(f"{folder}/{name}" not in there for name in os.listdir(folder))
    else:
        left = [path for path in hand.media.listable if path not in there]
        paths = chance.sample(left, min(3, len(left)))
        more = len(paths)
    need(hand.drag_files(rows, 2, paths), "the drop is refused")
    hand.count_becomes(len(lines) + more)
    hand.close_list()


def shorten_the_list(hand, chance):
    """From the list alone, never from the disk."""
    rows = hand.list_window()
    count = len(hand.list_lines())
    need(hand.player.took(rows), "the list does not answer")
    hand.press_row(rows, chance.randrange(0, 12))
    need(hand.player.took(rows), "the list does not answer")
    hand.key("Delete", rows)
    hand.reply_box("y")
    hand.count_becomes(count - 1)
    hand.close_list()


@act(3)
def take_out_of_the_list(hand, chance):
    if len(hand.list_lines()) < SHORTEST_LIST:
        add_to_the_list(hand, chance)
    else:
        shorten_the_list(hand, chance)


@act(1)
def enqueue_from_outside(hand, chance):
    hand.list_window()
    there = set(hand.list_lines())
    path = chance.choice([path for path in hand.media.listable if path not in there] or hand.media.listable)
    hand.open_tool("--enqueue", path)
    hand.count_becomes(len(there | {path}))
    hand.close_list()


@act(2)
def search_in_the_list(hand, chance):
    rows = hand.list_window()
    hand.player.click(rows, "Search", form=LIST)
    ask = need(hand.player.form(ASK, SEEN_S), "no question")
    hand.front(ask)
    hand.write_into(hand.player, ask, chance.choice(("film", "long", "rate", "mp3", "no such track")))
    hand.player.click(ask, "OK", form=ASK)
    hand.answer_boxes_until_gone(ask)
    hand.close_list()


@act(2)
def play_a_row(hand, chance):
    rows = hand.list_window()
    for _ in range(chance.randrange(0, 4)):
        hand.player.click_at(rows, *hand.row_at(rows, 5), button=chance.choice((4, 5)))
    before = len(hand.played())
    hand.press_row(rows, chance.randrange(0, 12))
    hand.key(chance.choice(("F2", "Return")), rows)
    need(wait_for(lambda: len(hand.played()) > before, SEEN_S), "the row is not played")
    hand.stop()  # a film's window may lie over the main one
    hand.close_list()


@act(1)
def reload_the_list(hand, chance):
    rows = hand.list_window()
    before = hand.list_lines()
    hand.key("ctrl+a", rows)
    need(hand.player.took(rows), "the list does not answer")
    hand.player.click(rows, "afresh_Load", form=LIST)
    need(hand.player.done(rows), "the list does not answer")
    need(hand.list_lines() == before, "a reload changes the list")
    hand.close_list()


@act(1)
def the_menu_of_the_list(hand, chance):
    rows = hand.list_window()
    hand.press_row(rows, chance.randrange(0, 10), button=3)
    need(hand.player.menus(1, SEEN_S), "no menu")
    hand.player.tool("key", "Escape")
    need(wait_for(lambda: not hand.player.menus(1, 0.05), SEEN_S), "the menu stays")
    hand.close_list()


# --- the network -----------------------------------------------------------------------------------

def fill(hand, window, form, text):
    for box, words in (("songName_Text", text), ("singer_Str", "")):
        hand.player.click(window, box, form=form)
        quiet("xdotool", "windowfocus", "--sync", window, env=hand.session.env)
        quiet("xdotool", "key", "ctrl+a", "Delete", env=hand.session.env)
        if words:
            quiet("xdotool", "type", "--delay", "8", words, env=hand.session.env)
    hand.player.click(window, "search_Button", form=form)


def found_rows(hand, window, form, box):
    left, top, _, _ = form[box]
    hand.aside()
    return wait_for(lambda: any(pixel > 110 for pixel in hand.player.picture(window, left + 4, top + 4, 200, 18)),
                    SEEN_S)


@act(2)
def a_song_from_the_catalogue(hand, chance):
    hand.undisturbed(chance)
    number = chance.randrange(3)
    path = hand.app("Cache", f"SERVED TONE {number}.WAV")
    if os.path.exists(path):
        os.remove(path)
    before = len(hand.played())
    window = hand.opened_by("search_Song_Internet", SONGS)
    fill(hand, window, SONGS, f"served tone {number}")
    need(found_rows(hand, window, SONGS, "search_Song_List"), "no song is found")
    left, top, _, _ = SONGS["search_Song_List"]
    hand.player.click_at(window, left + 60, top + 13, times=2)
    size = os.path.getsize(f"{hand.served}/served tone {number}.wav")
    need(wait_for(lambda: os.path.exists(path) and os.path.getsize(path) == size, SEEN_S), "the song does not come")
    need(wait_for(lambda: path in hand.list_lines(), SEEN_S), "the song is not listed")
    need(wait_for(lambda: any(each.endswith(path) for each in hand.played()[before:]), SEEN_S), "the song is not played")
    hand.stop()  # it is short
    hand.close_by(window, SONGS)


@act(2)
def a_lyric_from_the_catalogue(hand, chance):
    hand.play_long(chance)
    window = hand.opened_by("search_Lrc_Internet", LYRIC_SEARCH)
    fill(hand, window, LYRIC_SEARCH, f"served tone {chance.randrange(3)}")
    need(found_rows(hand, window, LYRIC_SEARCH, "search_Lrc_List"), "no lyric is found")
    hand.close_by(window, LYRIC_SEARCH)


# --- the desktop around it -------------------------------------------------------------------------

@act(2)
def another_screen(hand, chance):
    width, height = chance.choice(((1024, 768), (1152, 720), (900, 700)))
    hand.resize(width, height)
    hand.answers()
    hand.resize(*WHOLE)
    hand.answers()


@act(1)
def two_monitors(hand, chance):
    env = hand.session.env
    quiet("xrandr", "--setmonitor", "right", "640/160x800/200+640+0", "none", env=env)
    quiet("xrandr", "--setmonitor", "*left", "640/160x800/200+0+0", "screen", env=env)
    hand.answers()
    if chance.random() < 0.5:
        hand.play_long(chance)
        hand.line_on()
    for name in ("right", "left"):
        quiet("xrandr", "--delmonitor", name, env=env)
    hand.answers()
    hand.line_off()


@act(1)
def a_tray_comes_and_goes(hand, chance):
    tray = hand.session.spawn(TRAY)

    def icon():
        for number in quiet("xdotool", "search", "--onlyvisible", "--class", "trayer", env=hand.session.env).split():
            if '"velmora"' in quiet("xwininfo", "-tree", "-id", number, env=hand.session.env):
                return True
        return False
    shown = wait_for(icon, SEEN_S)
    hand.session.stop(tray)
    need(shown, "no icon in the tray")
    hand.answers()


@act(1)
def a_sound_server_that_dies(hand, chance):
    hand.play_long(chance)
    hand.session.pulse.kill()
    hand.session.pulse.wait()
    let_pass(chance.uniform(0, 2))
    hand.session.start_sound()
    need(wait_for(lambda: quiet("pactl", "list", "short", "sink-inputs", env=hand.session.env), SEEN_S),
         "it is not heard again")
    hand.answers()


@act(1)
def a_sound_server_that_stands_still(hand, chance):
    hand.play_long(chance)
    hand.session.pulse.send_signal(signal.SIGSTOP)
    let_pass(chance.uniform(0.2, 3))
    hand.session.pulse.send_signal(signal.SIGCONT)
    hand.answers()
    hand.comes("Playing")


@act(1)
def a_panel_that_asks(hand, chance):
    for name in ("PlaybackStatus", "Metadata", "Position", "CanGoNext"):
        told = hand.ask("busctl", "--user", "get-property", MPRIS, "/org/mpris/MediaPlayer2",
                        "org.mpris.MediaPlayer2.Player", name)
        need(told.returncode == 0, f"{name} is not told")
