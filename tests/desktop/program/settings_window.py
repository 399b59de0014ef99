"""What the tests of the settings window share: opening it, its pages, and what it stored."""

from player import FORM_SIZES, SETTINGS, PlayerTest, design
from session import quiet, wait_for

INFO = design("src/playlist/playInfo_Form.form")
FORM_SIZES.add(tuple(int(side) for side in INFO["form"][2:4]))
KEY = "SOFTWARE\\NORVANE\\ZKPLAYER\\PLAYSET"
PAGES = ("playSet", "lrcSet", "folderSet", "languageSet", "Shortcuts", "help")
# The frame of a page, and places inside it, in pixels.
FRAME = (2280 / 15, 480 / 15)
# On the page of lyrics: the buttons for the font and the colour of the line on the desktop.
DESKTOP_FONT = (FRAME[0] + (150 + 210 + 1425) / 15, FRAME[1] + (300 + 2100 + 195) / 15)
DESKTOP_COLOUR = (FRAME[0] + (150 + 3210 + 1425) / 15, FRAME[1] + (300 + 2100 + 195) / 15)
LANGUAGE_ROWS = {"Chinese": 480, "English": 960, "French": 1440, "Japanese": 1920}


class SettingsTest(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.player = self.window = None

    def begin(self):
        self.player, self.window = self.start()

    def open(self):
        self.session.key("ctrl+s", self.window)
        settings = self.player.form(SETTINGS)
        self.assertTrue(settings, "the settings window does not come up")
        quiet("xdotool", "windowfocus", "--sync", settings, env=self.session.env)
        return settings

    def visible(self, form):
        return self.player.form(form, 0.1)

    def assert_closed(self):
        self.assertTrue(wait_for(lambda: not self.visible(SETTINGS)), "the settings stay open")

    # --- mouse, keys, looks --------------------------------------------------------------------

    def press(self, window, x, y):
        shape = self.player.geometry(window)
        quiet("xdotool", "mousemove", str(int(shape["X"] + x)), str(int(shape["Y"] + y)), "click",
              "1", env=self.session.env)

    def click(self, window, form, control):
        left, top, width, height = form[control]
        self.press(window, left + width / 2, top + height / 2)

    def keys(self, *names):
        quiet("xdotool", "key", "--delay", "30", *names, env=self.session.env)

    def look(self, window, left=0, top=0, width=0, height=0):
        """The pixels of a part of a window, without what the pointer makes of it."""
        quiet("xdotool", "mousemove", "1270", "790", env=self.session.env)
        crop = ["-crop", f"{int(width)}x{int(height)}+{int(left)}+{int(top)}"] if width else []
        target = f"{self.session.home}/look.ppm"
        quiet("import", "-window", window, *crop, target, env=self.session.env)
        with open(target, "rb") as file:
            return file.read()

    def page(self, window):
        return self.look(window, FRAME[0], FRAME[1], 430, 330)

    def steady_page(self, window):
        """The page once two looks in a row are the same."""
        before = [self.page(window)]

        def look():
            now = self.page(window)
            same, before[0] = now == before[0], now
            return now if same else None
        return wait_for(look)

    def another_page(self, window, than):
        """The page once it stands and is none of those; otherwise as it stands in the end."""
        return (wait_for(lambda: (now := self.steady_page(window)) not in than and now)
                or self.steady_page(window))
