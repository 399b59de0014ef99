"""A household's catalogue beside the program, known to it from its first start on.

The catalogue's program is named by the environment: VELMORA_CATALOGUE.
"""

import os

from player import APP, MAIN, PlayerTest
from session import wait_for


class HouseholdTest(PlayerTest):
    reads = True

    def setUp(self):
        super().setUp()
        self.served = self.session.home + "/served"
        os.makedirs(self.served)
        config = self.session.env["XDG_CONFIG_HOME"] + "/velmora"
        os.makedirs(config, exist_ok=True)
        self.registry = config + "/registry.sqlite"
        # What the server offers as an update, apart from what it serves.
        self.updates = self.session.home + "/updates"
        os.makedirs(self.updates)
        self.player = self.window = self.server = None

    def app(self, *names):
        return "/".join([self.session.env["XDG_DATA_HOME"], "velmora", APP, *names])

    def serve(self):
        """The catalogue on a port of its own, known to the player from its first start on."""
        self.server = self.session.spawn(
            [os.environ["VELMORA_CATALOGUE"], self.served, "--port", "0", "--introduce",
             self.registry, "--offer-updates", self.updates])
        self.assertTrue(wait_for(lambda: os.path.exists(self.registry) and
                                 b"maker" in self.registry_bytes()),
                        "the catalogue does not come up")

    def registry_bytes(self):
        found = b""
        for ending in ("", "-wal"):
            if os.path.exists(self.registry + ending):
                with open(self.registry + ending, "rb") as file:
                    found += file.read()
        return found

    def begin(self):
        self.player, self.window = self.start()

    def open(self, control, form):
        self.player.click(self.window, control, form=MAIN)
        found = self.player.form(form)
        self.assertTrue(found, f"{control} opens nothing")
        return found

    @staticmethod
    def content(path):
        if not os.path.exists(path):
            return None
        with open(path, "rb") as file:
            return file.read()

    def assert_content(self, path, expected, seconds=30):
        self.assertTrue(wait_for(lambda: self.content(path) == expected, seconds),
                        f"{path} holds {(self.content(path) or b'nothing')[:80]}")
