"""Where the controls of the program's windows are, as the compiler of their designs reads them."""

import json
import os
import subprocess

TWIPS = 15  # in a pixel


def places(tool, source, name):
    """Rectangles of the form ("form") and of the controls that lie on it, in pixels, by name.

    `tool` is any tool of the build whose compiler of designs is asked, `name` the design's file in
    the source folder.
    """
    tools = os.path.dirname(os.path.dirname(os.path.abspath(tool)))
    told = subprocess.run([f"{tools}/formc/velmora_formc", f"{source}/{name}", "--skin", f"{source}/assets/skin",
                           "--texts", f"{source}/assets/texts", "--model", f"{source}/src/playback/Main.form", "--places"],
                          stdout=subprocess.PIPE, text=True, check=True).stdout
    return {control: [side / TWIPS for side in sides] for control, sides in json.loads(told).items()}
