#!/usr/bin/env python3
"""Each rule of scripts/check.sh fails, by its name, on a breach of it that is planted in a small tree of its own.

    check_test.py SCRIPT
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv[1]
FINE = "check: format, layers, sizes, globals and scripts are fine\n"


def rooms():
    """The table as it stands in the script: a room and what it may include."""
    with open(SCRIPT) as file:
        table = file.read().split("rooms <<'END'\n")[1].split("\nEND\n")[0]
    return {words[0]: words[1:] for words in map(str.split, table.splitlines())}


def folder(room):
    if room in ("base", "text"):
        return f"src/{room}"
    if room in ("forms", "contracts"):
        return f"src/platform/{room}"
    if room == "program":
        return "src/playback"
    return room if room.startswith("tools/") else f"src/platform/backends/{room}"


def included(room):
    """What an include of a header of that room says."""
    return folder(room).removeprefix("src/").removeprefix("tools/") + "/thing.h"


class Check(unittest.TestCase):
    def setUp(self):
        self.tree = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.tree)
        self.write("scripts/long-files.txt", "src/base/allowed.cpp # a table\n")
        self.write("src/main.cpp", "int main() { return 0; }\n")
        shutil.copy(SCRIPT, f"{self.tree}/scripts/check.sh")
        shutil.copy(f"{os.path.dirname(SCRIPT)}/../.clang-format", self.tree)
        self.git("init", "-q")

    def write(self, path, text):
        os.makedirs(os.path.dirname(f"{self.tree}/{path}"), exist_ok=True)
        with open(f"{self.tree}/{path}", "w") as file:
            file.write(text)

    def git(self, *words):
        subprocess.run(["git", *words], cwd=self.tree, check=True, env={**os.environ, "GIT_DIR": f"{self.tree}/.git"})

    def check(self):
        self.git("add", "-A")
        environment = {**os.environ, "GIT_DIR": f"{self.tree}/.git", "GIT_WORK_TREE": self.tree}
        done = subprocess.run(["bash", f"{self.tree}/scripts/check.sh"], env=environment, capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stdout

    def refused(self, complaint, *details):
        status, said = self.check()
        self.assertEqual(status, 1, said)
        self.assertIn(f"check: {complaint}\n", said)
        for detail in details:
            self.assertIn(detail, said)

    def test_nothing_is_said_of_a_tree_that_keeps_to_the_rules(self):
        table = rooms()
        for room, may in table.items():
            if room == "main":
                continue
            lines = "".join(f'#include "{included(other)}"\n' for other in sorted(may, key=included))
            self.write(f"{folder(room)}/thing.h", "#pragma once\n" + (lines and "\n" + lines))
        self.assertEqual(self.check(), (0, FINE))

    def test_each_room_is_kept_from_every_room_that_is_not_in_its_line(self):
        table = rooms()
        for room, may in table.items():
            forbidden = [other for other in table if other not in (room, "main", *may)
                         and not (room.startswith("tools/") and other.startswith("tools/"))]
            if "*" in may:
                continue
            for some in (forbidden[:10], forbidden[10:20], forbidden[20:]):
                path = f"{folder(room)}/breach.h"
                names = [included(other).replace("/thing.h", "") for other in some]
                lines = [f'#include "{name}/thing.h"\n' for name in sorted(names)]
                self.write(path, "#pragma once\n\n" + "".join(lines))
                with self.subTest(room=room, some=some):
                    for other in some:
                        if not other.startswith("tools/"):
                            self.refused("a room includes what it may not see",
                                         f"{room} includes {other} ({included(other)})")
            os.remove(f"{self.tree}/{path}")

    def test_the_walls_of_the_house_stand(self):
        # Not read from the table: who widens it there meets these.
        for room, other in (("base", "forms"), ("base", "text"), ("forms", "contracts"), ("contracts", "program"),
                            ("text", "forms"), ("program", "linux"), ("program", "text"), ("program", "qt/window"),
                            ("linux", "registry"), ("registry", "curl"), ("media", "sound/device"),
                            ("sound/readers", "sound/output"), ("sound/output", "sound/device"), ("picture", "linux"),
                            ("qt/screen", "qt/paint"), ("qt/paint", "qt/scene"), ("qt/scene", "qt/window"),
                            ("qt/window", "qt/boxes"), ("qt/boxes", "qt/system"), ("qt/system", "registry"),
                            ("tools/formc", "forms"), ("tools/skinc", "text")):
            with self.subTest(room=room, other=other):
                self.write("src/main.cpp", "int main() { return 0; }\n")
                path = f"{folder(room)}/breach.cpp"
                self.write(path, f'#include "{included(other)}"\n')
                self.refused("a room includes what it may not see",
                             f"{path}:1: {room} includes {other} ({included(other)})")
                os.remove(f"{self.tree}/{path}")

    def test_a_folder_that_is_no_room_is_refused(self):
        self.write("src/attic/thing.cpp", '#include "base/text.h"\n')
        self.refused("a room includes what it may not see", "src/attic/thing.cpp:1: stands in no room of the house")

    def test_the_plain_rooms_see_no_system_and_no_toolkit(self):
        for room in ("base", "program", "forms", "contracts", "media"):
            for header in ("QString", "unistd.h", "dlfcn.h", "filesystem", "thread"):
                with self.subTest(room=room, header=header):
                    path = f"{folder(room)}/breach.cpp"
                    self.write(path, f"#include <{header}>\n")
                    self.refused("a room includes what it may not see", f"{path}:1:#include <{header}>")
                    os.remove(f"{self.tree}/{path}")

    def test_the_program_has_no_conditional_code(self):
        self.write("src/ui/breach.cpp", "#ifdef __linux__\n#endif\n")
        self.refused("a room includes what it may not see", "src/ui/breach.cpp:1:#ifdef __linux__")

    def test_a_long_file_needs_a_reason(self):
        self.write("src/base/allowed.cpp", "int a();\n" * 501)
        self.assertEqual(self.check(), (0, FINE))
        self.write("src/base/longer.cpp", "int a();\n" * 501)
        self.refused("files of more than 500 lines", "src/base/longer.cpp: 501 lines")

    def test_the_program_has_no_mutable_globals(self):
        self.write("src/playlist/state.cpp", "const int fixed = 1;\n")
        self.assertEqual(self.check(), (0, FINE))
        self.write("src/playlist/state.cpp", "static int counter = 0;\n")
        self.refused("mutable globals in the program", "src/playlist/state.cpp:1:static int counter = 0;")

    def test_the_format_is_the_projects(self):
        self.write("src/base/untidy.cpp", "int  a( );\n")
        self.refused("not formatted (clang-format -i FILE)", "src/base/untidy.cpp")

    def test_a_heading_stays_on_its_line_above_what_it_heads(self):
        heading = "// --- start " + "-" * 88
        self.write("src/base/headed.h", f"#pragma once\n\n{heading}\n// What stands below is a comment of its own.\nint a();\n")
        self.assertEqual(self.check(), (0, FINE))

    def test_scripts_parse(self):
        self.write("scripts/broken.sh", "if true; then\n")
        self.refused("scripts/broken.sh does not parse")

    def test_without_an_answer_of_git_nothing_is_fine(self):
        shutil.rmtree(f"{self.tree}/.git")
        done = subprocess.run(["bash", f"{self.tree}/scripts/check.sh"], capture_output=True, text=True, check=False,
                              env={**os.environ, "GIT_CEILING_DIRECTORIES": os.path.dirname(self.tree)})
        self.assertEqual(done.returncode, 1)
        self.assertIn("git does not tell which files are the project's", done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
