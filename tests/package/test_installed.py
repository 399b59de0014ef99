#!/usr/bin/env python3
"""What is installed where, and whether desktops, manuals and package managers can use it.

    test_installed.py CMAKE BUILD SOURCE VERSION [unittest options]
"""

import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, SOURCE, VERSION = sys.argv[1:5]
ID = "example.norvane.velmora"
PROGRAMS = ("velmora", "velmora-catalogue", "velmora-open", "velmora-registry")
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
COMPLETED = ("velmora-open", "velmora-catalogue")
EXPECTED = {
    *(f"bin/{name}" for name in PROGRAMS),
    *(f"share/man/man1/{name}.1" for name in PROGRAMS),
    "share/man/man5/catalogue.ini.5",
    f"share/applications/{ID}.desktop",
    f"share/dbus-1/services/{ID}.service",
    *(f"share/bash-completion/completions/{name}" for name in COMPLETED),
    *(f"share/zsh/site-functions/_{name}" for name in COMPLETED),
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
    *(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in SIZES),
    "lib/systemd/user/velmora-catalogue.service",
    *(f"share/doc/velmora/{name}" for name in ("README.md", "CHANGELOG.md", "LICENSE", "registry.md")),
}


def run(*words, **options):
    return subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False, **options)


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def packages_of(field):
    """The names in a field of debian/control, alternatives too."""
    text = read(SOURCE, "debian/control").split("\nPackage: velmora\n")[1].split("\nPackage:")[0]
    found = re.search(rf"^{field}:(.*?)^(?=\S)", text, re.M | re.S).group(1)
    return set(re.findall(r"[a-z0-9][a-z0-9.+-]+(?=[\s,|]|$)", re.sub(r"\$\{.*?\}", "", found)))


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="velmora-installed-")
        cls.root = cls.folder.name
        done = run(CMAKE, "--install", BUILD, "--prefix", cls.root)
        assert done.returncode == 0, done.stdout

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def at(self, name):
        return os.path.join(self.root, name)

    def test_everything_lies_where_it_is_looked_for_and_nothing_else_does(self):
        found = {os.path.relpath(os.path.join(folder, name), self.root)
                 for folder, _, names in os.walk(self.root) for name in names}
        pictures = {name for name in found if name.startswith("share/doc/velmora/docs/screenshots/")}
        self.assertEqual(found - pictures, EXPECTED)
        shown = set(re.findall(r"\((docs/screenshots/[a-z_0-9]+\.png)\)", read(SOURCE, "README.md")))
        self.assertEqual({name.split("velmora/", 1)[1] for name in pictures}, shown)

    def test_each_program_tells_its_version_and_helps_on_standard_output(self):
        for name in PROGRAMS[1:]:
            told = subprocess.run([self.at(f"bin/{name}"), "--version"], stdout=subprocess.PIPE,
                                  text=True, check=True).stdout
            self.assertEqual(told, f"{name} {VERSION}\n")
            helped = subprocess.run([self.at(f"bin/{name}"), "-h"], stdout=subprocess.PIPE, text=True,
                                    check=True).stdout
            self.assertTrue(helped.startswith(f"Usage: {name} "), helped)

    def test_a_wrong_option_is_named_with_status_2(self):
        for name in PROGRAMS[1:]:
            # Without a word the player is brought to the front.
            for words in (["--nonsense"], ["-z"], *([] if name == "velmora-open" else [[]])):
                done = run(self.at(f"bin/{name}"), *words)
                self.assertEqual(done.returncode, 2, done.stdout)
                self.assertTrue(done.stdout.startswith((name, self.at(f"bin/{name}"))), done.stdout)
                for word in words:
                    self.assertIn(word.lstrip("-"), done.stdout)

    def test_no_program_looks_for_libraries_in_the_folder_it_was_built_in(self):
        for name in PROGRAMS:
            told = run("readelf", "-d", self.at(f"bin/{name}"))
            self.assertEqual(told.returncode, 0, told.stdout)
            self.assertNotRegex(told.stdout, "R(UN)?PATH")

    def test_the_desktop_file_is_right(self):
        done = run("desktop-file-validate", self.at(f"share/applications/{ID}.desktop"))
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_the_description_for_software_centres_is_right(self):
        done = run("appstreamcli", "validate", "--pedantic", "--no-net",
                   self.at(f"share/metainfo/{ID}.metainfo.xml"))
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertNotRegex(done.stdout, r"(?m)^[EW]:")

    def test_the_desktop_and_software_centres_are_told_of_the_same_media(self):
        listed = [line for line in read(SOURCE, "assets/media-types.txt").split("\n") if re.match("[a-z]", line)]
        self.assertGreater(len(listed), 20)
        desktop = re.search(r"^MimeType=(.*)$", read(self.root, f"share/applications/{ID}.desktop"), re.M).group(1)
        self.assertEqual(desktop.strip(";").split(";"), listed)
        described = read(self.root, f"share/metainfo/{ID}.metainfo.xml")
        self.assertEqual(re.findall(r"<mediatype>(.*?)</mediatype>", described), listed)

    def test_a_software_centre_finds_the_desktop_file_and_the_icon(self):
        done = run("appstreamcli", "validate-tree", "--no-net", self.root)
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_the_manuals_have_no_mistakes(self):
        for name in [f"man1/{each}.1" for each in PROGRAMS] + ["man5/catalogue.ini.5"]:
            done = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", self.at(f"share/man/{name}"),
                       env=dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="80"))
            self.assertEqual(done.returncode, 0)
            self.assertNotIn("warning:", done.stdout)
            self.assertIn("DESCRIPTION", re.sub("\x1b[^m]*m|.\b", "", done.stdout))

    def test_the_manuals_name_every_option_that_the_help_names(self):
        for name in PROGRAMS[1:]:
            manual = read(self.root, "share/man/man1", f"{name}.1").replace("\\-", "-")
            helped = run(self.at(f"bin/{name}"), "--help").stdout
            for option in set(re.findall(r"--[a-z]+", helped)):
                self.assertIn(option, manual, name)

    def test_the_shells_complete_every_option_that_the_help_names_and_no_other(self):
        for name in COMPLETED:
            helped = run(self.at(f"bin/{name}"), "--help").stdout
            options = set(re.findall(r"(?m)^ +(?:-\w, )?(--[a-z-]+)", helped))
            self.assertGreater(len(options), 9, name)
            file = self.at(f"share/bash-completion/completions/{name}")
            function = "_" + name.replace("-", "_")
            for cursor, expected in (("--", options), ("--h", {"--help"})):
                done = run("bash", "-c", f'. "$1" && COMP_WORDS=({name} {cursor}) COMP_CWORD=1 && {function} && '
                           'printf "%s\n" "${COMPREPLY[@]}"', "bash", file)
                self.assertEqual(set(done.stdout.split()), expected, name)
            told = read(self.root, f"share/zsh/site-functions/_{name}")
            self.assertEqual(set(re.findall(r"(?:'\*?|,)(--[a-z-]+)(?=[\[}])", told)), options, name)

    def test_the_icons_have_the_size_of_their_folder(self):
        for size in SIZES:
            with open(self.at(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png"), "rb") as file:
                self.assertEqual(struct.unpack(">II", file.read(24)[16:]), (size, size))

    def test_the_unit_of_the_catalogue_is_right(self):
        unit = self.at("lib/systemd/user/velmora-catalogue.service")
        text = read(unit)
        program = re.search(r"^ExecStart=(\S+)", text, re.M).group(1)
        self.assertTrue(program.endswith("/bin/velmora-catalogue"), program)
        # What it starts lies elsewhere in this test.
        with open(unit, "w", encoding="utf-8") as file:
            file.write(text.replace(program, self.at("bin/velmora-catalogue")))
        with tempfile.TemporaryDirectory() as runtime:
            done = run("systemd-analyze", "--user", "verify", "--man=no", unit,
                       env=dict(os.environ, XDG_RUNTIME_DIR=runtime))
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertNotIn("velmora-catalogue.service:", done.stdout)


class Described(unittest.TestCase):
    def test_the_version_is_one_everywhere(self):
        self.assertEqual(re.match(r"velmora \((.*?)\)", read(SOURCE, "debian/changelog")).group(1), VERSION)
        self.assertEqual(re.search(r'<release version="(.*?)"',
                                   read(SOURCE, f"assets/desktop/{ID}.metainfo.xml.in")).group(1), VERSION)
        self.assertEqual(re.search(r"^## (\S+)", read(SOURCE, "CHANGELOG.md"), re.M).group(1), VERSION)

    def test_the_package_names_every_library_that_is_loaded_at_its_first_use(self):
        names = set()
        for folder, _, files in os.walk(os.path.join(SOURCE, "src")):
            for name in files:
                if name.endswith((".cpp", ".h")):
                    text = read(folder, name)
                    names |= set(re.findall(r'"(lib[a-zA-Z0-9-]+)\.so\.([0-9]+)"', text))
                    # Of the major version that was built against.
                    for each in re.findall(r'versioned\("(lib[a-z]+)"', text):
                        header = f"/usr/include/x86_64-linux-gnu/{each}/version_major.h"
                        major = re.search(r"VERSION_MAJOR\s+(\d+)", read(
                            header if os.path.exists(header) else header.replace("_major", "")))
                        names.add((each, major.group(1)))
        # Only looked at where the toolkit has loaded it already.
        names.remove(("libX11", "6"))
        # A library's package has its name and number, with a dash behind a digit and none for these.
        packages = {"libcurl-gnutls4": "libcurl3-gnutls"}
        wanted = set()
        for name, number in names:
            package = name.lower() + ("-" if name[-1].isdigit() else "") + number
            wanted.add(packages.get(package, package))
        self.assertGreaterEqual(len(wanted), 9)
        depends, recommends = packages_of("Depends"), packages_of("Recommends")
        self.assertEqual(wanted - depends - recommends, set())
        # What plays mp3, flac, ogg and wav is there without anything that is only recommended.
        self.assertLessEqual({"libpulse0", "libmpg123-0", "libsndfile1"}, depends)
        listed = {name for name in depends | recommends if re.match(r"lib.*[0-9]", name)}
        self.assertEqual(listed - wanted - {"libcurl3-gnutls"}, set(), "nothing loads these")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[5:], verbosity=2)
