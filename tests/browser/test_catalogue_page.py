#!/usr/bin/env python3
"""The catalogue's pages in a real browser, by clicks and keys: headless Chromium and its driver.

    test_catalogue_page.py VELMORA_CATALOGUE [unittest options]

Where the browser is missing everything is skipped. Pictures are kept in the folder that
VELMORA_ARTIFACTS names, if it does.
"""

import base64
import json
import math
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.request
import wave

CATALOGUE = sys.argv[1]
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
PATIENCE = 60
ENTER = "\ue007"
TAB = "\ue004"


def wait_for(look, seconds=PATIENCE):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        found = look()
        if found:
            return found
        time.sleep(0.02)
    return None


def started_driver(home):
    """The driver, and its port: any that is free for ::1, which something else may have at 127.0.0.1."""
    said = "port not available"
    while "port not available" in said:
        driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                  text=True, env=dict(os.environ, HOME=home))
        said = ""
        for line in driver.stdout:
            said += line
            port = re.search(r"successfully on port (\d+)", line)
            if port:
                return driver, port[1]
        driver.stdout.close()
        driver.wait()
    raise AssertionError("the browser's driver does not start: " + said)


class Browser:
    """One window, by the driver's protocol."""

    def __init__(self, home, script=True, language="en"):
        self.driver, port = started_driver(home)
        self.base = f"http://127.0.0.1:{port}"
        prefs = {"intl.accept_languages": language}
        if not script:
            prefs["profile.managed_default_content_settings.javascript"] = 2
        options = {"args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--mute-audio",
                            "--disable-dev-shm-usage", "--window-size=1000,800",
                            f"--user-data-dir={home}/profile"], "prefs": prefs}
        capabilities = {"browserName": "chrome", "goog:chromeOptions": options,
                        "goog:loggingPrefs": {"browser": "ALL"}}
        self.session = ""
        answer = self.post("/session", {"capabilities": {"alwaysMatch": capabilities}})
        self.session = "/session/" + answer["sessionId"]

    def end(self):
        try:
            self.call("DELETE", self.session)
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()

    def call(self, method, path, body=None):
        request = urllib.request.Request(self.base + path, method=method,
                                         data=None if body is None else json.dumps(body).encode(),
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(error.read().decode()) from error

    def post(self, path, body):
        return self.call("POST", path, body)

    def open(self, address):
        self.post(self.session + "/url", {"url": address})

    def address(self):
        return self.call("GET", self.session + "/url")

    def all(self, selector):
        found = self.post(self.session + "/elements", {"using": "css selector", "value": selector})
        return [each[ELEMENT] for each in found]

    def one(self, selector):
        found = wait_for(lambda: self.all(selector))
        if not found:
            raise AssertionError(f"{selector} is not on the page")
        return found[0]

    def link(self, text):
        found = self.post(self.session + "/elements", {"using": "link text", "value": text})
        if not found:
            raise AssertionError(f"no link says {text}")
        return found[0][ELEMENT]

    def click(self, element):
        self.post(f"{self.session}/element/{element}/click", {})

    def type(self, element, text):
        self.post(f"{self.session}/element/{element}/value", {"text": text})

    def keys(self, *keys):
        strokes = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self.post(self.session + "/actions",
                  {"actions": [{"type": "key", "id": "keys", "actions": strokes}]})

    def text(self, element):
        return self.call("GET", f"{self.session}/element/{element}/text")

    def heading(self):
        return self.ask("(document.querySelector('h1') || {}).textContent || ''")

    def ask(self, script):
        return self.post(self.session + "/execute/sync", {"script": "return " + script, "args": []})

    def tell(self, command, **parameters):
        return self.post(self.session + "/goog/cdp/execute",
                         {"cmd": command, "params": parameters})

    def complaints(self):
        return [each["message"] for each in
                self.post(self.session + "/se/log", {"type": "browser"})
                if "favicon" not in each["message"]]

    def keep(self, name):
        folder = os.environ.get("VELMORA_ARTIFACTS")
        if folder:
            os.makedirs(folder + "/browser", exist_ok=True)
            with open(f"{folder}/browser/{name}.png", "wb") as file:
                file.write(base64.b64decode(self.call("GET", self.session + "/screenshot")))


def tone(path, seconds):
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(8000)
        file.writeframes(b"".join(struct.pack("<h", int(8000 * math.sin(i / 3)))
                                  for i in range(8000 * seconds)))


@unittest.skipUnless(shutil.which("chromedriver") and shutil.which("chromium"),
                     "no Chromium with its driver is installed (packages_browser)")
class CataloguePage(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="velmora-browser-")
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        music = self.home + "/music/Singer/Album"
        os.makedirs(music)
        tone(music + "/1 - Singer - Harbour.wav", 120)
        tone(music + "/2 - Singer - Island.wav", 5)
        with open(music + "/1 - Singer - Harbour.lrc", "w", encoding="utf-8") as file:
            file.writelines(f"[00:{second:02}.00]line {second}\n" for second in range(0, 60))
        self.server = subprocess.Popen(
            [CATALOGUE, "--port", "0", "--cache", self.home + "/cache", self.home + "/music"],
            stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.server.stdout.close)
        self.addCleanup(self.server.wait)
        self.addCleanup(self.server.terminate)
        line = self.server.stdout.readline()
        self.address = re.search(r"http://[^\s/]+", line)[0]
        while " songs and " not in line:
            line = self.server.stdout.readline()

    def browser(self, **wishes):
        browser = Browser(self.home, **wishes)
        self.addCleanup(browser.end)
        browser.open(self.address + "/")
        return browser

    def listen(self, browser):
        browser.type(browser.one("input[type=search]"), "harbour" + ENTER)
        # The page it leaves has songs as well.
        self.assertTrue(wait_for(lambda: browser.ask(
            "location.search.includes('harbour') && document.readyState === 'complete'")))
        browser.click(browser.one("ul.songs a[href^='/listen/']"))
        return browser.one("audio")

    def now(self, browser):
        return browser.ask("(document.querySelector('li.now') || {}).textContent || ''")

    def test_a_song_is_found_heard_and_its_lyric_follows(self):
        browser = self.browser()
        browser.keep("home")
        self.listen(browser)
        lines = browser.all("ol.lyric li")
        self.assertEqual(len(lines), 60)
        browser.click(lines[20])  # plays from there
        self.assertTrue(wait_for(lambda: self.now(browser) not in ("", "line 20")),
                        "the lyric does not follow")
        self.assertGreaterEqual(browser.ask("document.querySelector('audio').currentTime"), 20)
        self.assertTrue(wait_for(lambda: browser.ask(
            "(() => { const at = document.querySelector('li.now').getBoundingClientRect();"
            " return at.top >= 0 && at.bottom <= innerHeight })()")), "the line is out of sight")
        browser.keep("listen")
        browser.ask("document.querySelector('audio').pause()")
        browser.ask("void (document.querySelector('audio').currentTime = 5.5)")
        self.assertTrue(wait_for(lambda: self.now(browser) == "line 5"), "not behind a seek")
        self.assertEqual(browser.complaints(), [])

    def test_everything_is_reached_by_keys(self):
        browser = self.browser()
        self.listen(browser)
        for _ in range(60):
            browser.keys(TAB)
            if browser.ask("document.activeElement.textContent") == "line 3":
                break
        self.assertEqual(browser.ask("document.activeElement.textContent"), "line 3")
        browser.keys(ENTER)
        self.assertTrue(wait_for(lambda: browser.ask(
            "document.querySelector('audio').currentTime") >= 3), "Enter does not play")
        self.assertTrue(wait_for(lambda: not browser.ask(
            "document.querySelector('audio').paused")))
        browser.keys(" ")
        self.assertTrue(wait_for(lambda: browser.ask("document.querySelector('audio').paused")),
                        "the space bar does not pause")

    def test_the_next_song_of_the_album_begins_behind_one(self):
        browser = self.browser()
        self.listen(browser)
        browser.ask("document.querySelector('audio').play() && void 0")
        browser.ask("void (document.querySelector('audio').currentTime = 119.5)")
        self.assertTrue(wait_for(lambda: "Island" in browser.heading()), "it ends with the first")

    def test_it_is_whole_without_a_script(self):
        browser = self.browser(script=False)
        browser.click(browser.link("Folders"))
        browser.click(browser.link("Singer/"))
        browser.click(browser.link("Album/"))
        browser.click(browser.link("Singer - Harbour"))
        self.assertEqual(len(browser.all("ol.lyric li")), 60)
        self.assertEqual(len(browser.all("audio[controls]")), 1)
        browser.click(browser.link("Next"))
        self.assertIn("Island", browser.text(browser.one("h1")))

    def test_it_fits_a_phone_and_is_dark_where_that_is_wished(self):
        browser = self.browser()
        browser.tell("Emulation.setDeviceMetricsOverride", width=360, height=640,
                     deviceScaleFactor=2, mobile=True)
        self.listen(browser)
        self.assertLessEqual(browser.ask("document.documentElement.scrollWidth"), 360)
        light = browser.ask("getComputedStyle(document.body).backgroundColor")
        browser.keep("phone")
        browser.tell("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": "dark"}])
        self.assertNotEqual(browser.ask("getComputedStyle(document.body).backgroundColor"), light)
        browser.keep("dark")

    def test_it_speaks_the_languages_of_browsers(self):
        browser = self.browser(language="fr")
        self.assertEqual(browser.ask("document.documentElement.lang"), "fr")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
