#!/usr/bin/env python3
"""Walks over screens of every density and over two monitors, a screen that is locked and a session that ends.

    screens.py VELMORA DEMO_PIECE SOURCE_FOLDER DRAG_TOOL MANAGERS [TABLE[:COLUMN]...]

MANAGERS are names of desks with commas between; without a TABLE all are walked (but for the
border, which is a part of one). Writes TABLE.md and a picture of each cell that is wrong into the
folder that VELMORA_ARTIFACTS names. A cell tells what came of a row under every manager; one that is wrong fails.
"""

import os
import sys
import traceback

MANAGERS, CHOSEN = sys.argv[5].split(","), sys.argv[6:]
HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..", "desktop", "program")]
import border  # noqa: E402
import densities  # noqa: E402
import ends  # noqa: E402
import locked  # noqa: E402
import monitors  # noqa: E402
import session  # noqa: E402
from desks import DESKS  # noqa: E402
from tables import table  # noqa: E402
from walk import SKIPPED, picture  # noqa: E402

# By name: a module with a start(), and its columns.
TABLES = {"densities": (densities, densities.DENSITIES), "monitors": (monitors, monitors.COLUMNS),
          "border": (border, border.COLUMNS), "locked": (locked, locked.COLUMNS), "ends": (ends, ends.COLUMNS)}
TAKEN = session.TAKEN


def walk(module, manager, column, artifacts):
    session.TAKEN = TAKEN if DESKS[manager].answers else None
    tour = module.start(manager, column)
    cells = {}
    try:
        for row, step in tour.rows():
            try:
                step()
                cells[row] = "ok"
            except (AssertionError, AttributeError, KeyError, TypeError) as error:
                cells[row] = f"**wrong** on {manager}: {error}"
                if not isinstance(error, AssertionError):
                    traceback.print_exc()
                if artifacts:
                    picture(tour.desk, f"{artifacts}/screens-{manager}-{column}-{len(cells)}.png".replace(" ", "-"))
            print(f"{manager}, {column}: {row}: {cells[row]}", flush=True)
            if artifacts and row in getattr(tour, "pictures", ()):
                picture(tour.desk, f"{artifacts}/screens-{manager}-{column}-{row[:20]}.png".replace(" ", "-"))
    finally:
        tour.desk.close()
    return cells


def merged(walks):
    """One column of what came of each row under every manager."""
    cells = {}
    for each in walks:
        for row, cell in each.items():
            if row not in cells or cells[row] == "ok":
                cells[row] = cell
            elif cell != "ok":
                cells[row] += "; " + cell
    return cells


def main():
    artifacts = os.environ.get("VELMORA_ARTIFACTS")
    if artifacts:
        os.makedirs(artifacts, exist_ok=True)
    managers = []
    for name in MANAGERS:
        missing = DESKS[name].missing()
        if missing:
            print(f"skipped: {name} needs {', '.join(missing)}")
        else:
            managers.append(name)
    if not managers:
        return SKIPPED
    failed = False
    for name, (module, columns) in TABLES.items():
        chosen = [column for column in columns
                  if (not CHOSEN and name != "border") or name in CHOSEN or f"{name}:{column}" in CHOSEN]
        if not chosen:
            continue
        found = {column: merged([walk(module, manager, column, artifacts) for manager in managers])
                 for column in chosen}
        text = table(found)
        print(text)
        failed = failed or "**wrong**" in text
        if artifacts:
            with open(f"{artifacts}/{name}.md", "w", encoding="utf-8") as file:
                file.write(text)
    return int(failed)


if __name__ == "__main__":
    sys.exit(main())
