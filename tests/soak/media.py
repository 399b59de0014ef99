"""The media that a long run plays: what the tests of the engines record, what other programs make, long ones to seek
in, and what is no medium."""

import os
import shutil
import subprocess

from films import ffmpeg
from listing import silence

# Of the picture tests' folder: what is broken on purpose, or names further files.
NO_MEDIA = ("truncated", "only_header", "empty", "text", "random", "huge_header", "damaged", "list", "edl", "cue",
            "hls", "concat", "still", "cover.png", "complete", "picture.avi")
# What may enter the list by a drop or from outside for later; what is played at once may be anything.
LISTABLE = (".mp3", ".wma", ".wav", ".mid", ".midi", ".ogg", ".rmvb", ".rm", ".mpg", ".avi", ".wmv", ".flv", ".mp4", ".dat",
            ".cd", ".flac", ".tta", ".aiff", ".au", ".ape")
LONG_S = 600
LONG = {"long.wav": (), "long.mp3": ("-c:a", "libmp3lame", "-b:a", "96k"), "long.flac": ("-c:a", "flac"),
        "long.ogg": ("-c:a", "libvorbis"), "long.opus": ("-c:a", "libopus"), "long.m4a": ("-c:a", "aac"),
        "long.wma": ("-c:a", "wmav2")}
# Written by sox, the Vorbis, FLAC and LAME programs: other hands than those that write most of the tests' files.
OTHERS = {"sox.wav": ("sox", "{}", "-b", "24", "{}"), "sox.aiff": ("sox", "{}", "{}"), "sox.au": ("sox", "{}", "{}"),
          "sox.ogg": ("sox", "{}", "{}"), "flac.flac": ("flac", "-s", "-f", "-8", "{}", "-o", "{}"),
          "lame.mp3": ("lame", "--quiet", "--abr", "110", "{}", "{}")}


def make(folder, source):
    """Once for each version of the tests' own scripts; they see to that themselves."""
    subprocess.run([f"{source}/tests/engine/make_sound_media.sh", f"{folder}/sound"], check=True)
    subprocess.run(["sh", f"{source}/tests/engine/picture/make_media.sh", f"{folder}/picture"], check=True)
    longer = f"{folder}/long"
    if os.path.exists(longer + "/complete"):
        return
    shutil.rmtree(longer, ignore_errors=True)
    os.makedirs(longer)
    first = longer + "/long.wav"
    ffmpeg("-f", "lavfi", "-i", f"aevalsrc=0.1*sin(2*PI*440*t)|0.1*sin(2*PI*660*t):s=44100:d={LONG_S}", first)
    for name, codec in LONG.items():
        if codec:
            ffmpeg("-i", first, *codec, f"{longer}/{name}")
    ffmpeg("-f", "lavfi", "-i", f"testsrc=s=320x240:r=15:d={LONG_S}", "-i", longer + "/long.m4a", "-c:v", "libx264",
           "-preset", "ultrafast", "-g", "30", "-pix_fmt", "yuv420p", "-c:a", "copy", "-shortest",
           longer + "/film.mp4")
    for name, command in OTHERS.items():
        words = list(command)
        for path in (f"{folder}/sound/chirp.wav", f"{longer}/{name}"):
            words[words.index("{}")] = path
        subprocess.run(words, check=True, stderr=subprocess.DEVNULL)
    open(longer + "/complete", "w", encoding="ascii").close()


class Media:
    """Copies of them in the session's music folder, so that nothing that is done there reaches the others."""

    def __init__(self, made, music):
        self.music = music
        self.good, self.bad = [], []
        for kind in ("sound", "picture", "long"):
            for name in sorted(os.listdir(f"{made}/{kind}")):
                path = f"{music}/{kind} {name}"
                bad = kind == "picture" and name.startswith(NO_MEDIA)
                if "." not in name:
                    continue
                os.symlink(f"{made}/{kind}/{name}", path)
                if name.startswith("film.mp4") and kind == "long":
                    self.film = path
                elif not name.startswith("huge_picture") and not name.endswith(".png"):
                    (self.bad if bad else self.good).append(path)
        self.long = [f"{music}/long {name}" for name in LONG]
        for path in self.long:
            # For each second: a lyric line comes up behind every seek.
            with open(os.path.splitext(path)[0] + ".lrc", "w", encoding="utf-8") as file:
                file.write("".join(f"[{second // 60:02}:{second % 60:02}.00]How the words of second {second} roll along, "
                                   "farther than the window is wide\r\n" for second in range(LONG_S)))
        self.listable = [path for path in self.good if path.lower().endswith(LISTABLE)]
        self.folders = []
        for number in range(4):
            folder = f"{music}/folder {number}"
            os.makedirs(folder)
            self.folders.append(folder)
            for track in range(3):
                silence(f"{folder}/quiet {number} {track}.wav")
