"""Every window through the real view: Chinese at twice the density, French at 1.25, both kept.

usage: gallery_test.py GALLERY FOLDER
"""

import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from session import Session  # noqa: E402

RUNS = [("zh-1x", "1", "0"), ("zh-2x", "2", "0"), ("fr-1.25x", "1.25", "2"), ("ja-1.5x", "1.5", "3")]


def main():
    gallery, folder = sys.argv[1:3]
    failed = 0
    session = Session(window_manager=False, sound=False)
    try:
        for name, scale, language in RUNS:
            target = os.path.join(folder, name)
            os.makedirs(target, exist_ok=True)
            env = dict(session.env, QT_SCALE_FACTOR=scale)
            done = subprocess.run([gallery, target, language], env=env, timeout=120, check=False)
            pictures = [entry for entry in os.listdir(target) if entry.endswith(".png")]
            if done.returncode != 0 or len(pictures) < 24:
                print(f"{name}: status {done.returncode}, {len(pictures)} pictures")
                failed = 1
    finally:
        session.close()
    return failed


sys.exit(main())
