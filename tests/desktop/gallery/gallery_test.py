"""Every window through the real view in every language, at once and twice the usual density.

    gallery_test.py GALLERY FOLDER

The pictures stay: FOLDER/<language>-<density>/<window>.png. A fractional density and a language with
long words are looked at together, so that seams and cut texts show.
"""

import os
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from session import Session, quiet  # noqa: E402

LANGUAGES = {"zh": "0", "en": "1", "fr": "2", "ja": "3"}
RUNS = [(f"{name}-{scale}x", scale, number) for name, number in LANGUAGES.items()
        for scale in ("1", "2")] + [("fr-1.25x", "1.25", "2"), ("ja-1.5x", "1.5", "3")]
PICTURES = 36  # 24 of windows, 12 of boxes, menus and dialogs
RUN_LIMIT_S = 120


def keep(gallery, session, target, scale, language):
    """What is wrong with one run, or None."""
    shutil.rmtree(target, ignore_errors=True)
    os.makedirs(target)
    env = dict(session.env, QT_SCALE_FACTOR=scale)
    try:
        done = subprocess.run([gallery, target, language], env=env, timeout=RUN_LIMIT_S,
                              check=False, stderr=subprocess.PIPE, text=True)
    except subprocess.TimeoutExpired:
        return f"not done after {RUN_LIMIT_S} s"
    pictures = [entry for entry in os.listdir(target) if entry.endswith(".png")]
    if done.returncode != 0 or len(pictures) < PICTURES:
        return f"status {done.returncode}, {len(pictures)} pictures\n{done.stderr}"
    return None


def main():
    gallery, folder = sys.argv[1:3]
    failed = 0
    session = Session(window_manager=False, sound=False)
    try:
        # Out of the way: what the pointer is over looks hot.
        quiet("xdotool", "mousemove", "1279", "799", env=session.env)
        for name, scale, language in RUNS:
            wrong = keep(gallery, session, os.path.join(folder, name), scale, language)
            if wrong:
                print(f"{name}: {wrong}")
                failed = 1
    finally:
        session.close()
    return failed


sys.exit(main())
