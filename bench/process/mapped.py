"""Where the memory of a process lies, by what is mapped."""

import os
import re

HEAD = re.compile(r"^[0-9a-f]+-[0-9a-f]+ \S+ \S+ \S+ \S+\s*(.*)")
# The first that fits counts.
GROUPS = [
    ("fonts", r"\.(ttf|ttc|otf|otc)$|/fontconfig/"),
    ("the sound server's shared memory", r"memfd:pulseaudio"),
    ("pictures shared with the X server", r"memfd:xorg|SYSV"),
    ("Qt", r"/libQt6|/qt6/"),
    ("sound libraries", r"pulse|sndfile|mpg123|FLAC|vorbis|opus|ogg|fluidsynth|asyncns|mp3lame|libX?gomp"),
    ("X libraries", r"/lib(X|xcb|xkb|ICE|SM)"),
    ("SQLite and its files", r"sqlite"),
    ("ICU", r"/libicu"),
    ("the GL dispatch that Qt links", r"/lib(GL|EGL|OpenGL)"),
    ("other libraries", r"\.so(\.|$)"),
    ("the heap", r"^\[heap\]$"),
    ("stacks and what the kernel maps", r"^\[(?!anon)"),
    ("anonymous: images, large blocks, arenas of threads", r"^$|^\[anon"),
]


def mappings(lines):
    """[(what is mapped, {figure: kB})]"""
    found = []
    for line in lines:
        head = HEAD.match(line)
        if head:
            found.append((head[1].removesuffix(" (deleted)"), {}))
        elif line.endswith(" kB\n"):
            name, value = line.split(":")
            found[-1][1][name] = int(value.split()[0])
    return found


def group_of(mapped, program):
    if mapped == program:
        return "the program's own file"
    return next((name for name, pattern in GROUPS if re.search(pattern, mapped)), "other files")


def by_group(pid):
    """{group: (kB of the proportional share, kB of it that no file has)}"""
    program = os.path.realpath(f"/proc/{pid}/exe")
    found = {}
    with open(f"/proc/{pid}/smaps") as file:
        for mapped, figures in mappings(file):
            group = group_of(mapped, program)
            share, own = found.get(group, (0, 0))
            found[group] = share + figures.get("Pss", 0), own + figures.get("Anonymous", 0)
    return found
