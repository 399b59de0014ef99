#!/usr/bin/env python3
"""Makes docs/endurance.md, and the picture beside it, from what the long runs have left.

    page.py SOAK_FOLDER [--sanitized SOAK_FOLDER] [--threads CTEST_LOG] [--fuzz SUMMARY] [--coverage TABLE]

A soak's folder is that of its table.md, picture.svg and acts.log; the summary is what ./test --fuzz prints at its end, the table what
./test --fuzz --coverage prints, the log what ./test --threads prints.
"""

import argparse
import os
import platform
import re
import shutil
import time

DOCS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../docs")
SHOWN = ("private memory", "proportional memory", "descriptors", "threads", "timers", "mappings", "X windows", "X pixmaps",
         "X pixmap bytes", "X contexts", "X others", "X connections", "bus matches", "bus names", "sound clients",
         "sound streams", "wake-ups", "processor", "catalogue memory", "catalogue descriptors", "catalogue threads")


def read(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


def machine():
    model = re.search(r"model name\s*: (.*)", read("/proc/cpuinfo"))
    memory = int(re.search(r"MemTotal:\s*(\d+)", read("/proc/meminfo"))[1]) // 1024 ** 2
    release = re.search(r'PRETTY_NAME="(.*)"', read("/etc/os-release"))
    return f"{os.cpu_count()} processors ({model[1] if model else platform.machine()}), {memory} GB, {release[1]}"


def day(path):
    return time.strftime("%-d %B %Y", time.localtime(os.path.getmtime(path)))


def run_of(folder):
    """The head of a run, its acts and faults, and how long its acts took in all, in hours."""
    table = read(folder + "/table.md")
    acts, faults = (int(each) for each in re.search(r"(\d+) acts, (\d+) faults", table).groups())
    hours = max(float(found) for found in re.findall(r"^ *(\d+\.\d+) \d+ ", read(folder + "/acts.log"), re.M))
    return table.splitlines()[0].lstrip("# "), acts, faults, hours, table


def the_long_run(folder):
    head, acts, faults, hours, table = run_of(folder)
    lines = ["## Hours of use", "",
             f"{head}, {day(folder + '/table.md')}: {acts} acts in {hours:.2f} hours, {acts / hours:.0f} an hour; "
             f"{faults} of them failed. What is held at rest:", "",
             "| at rest | unit | first | last | least | most | growth an hour | |", "|---|---|---|---|---|---|---|---|"]
    for line in table.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) == 11 and cells[0] in SHOWN:
            lines.append("| " + " | ".join(cells[:7] + [cells[10]]) + " |")
    lines += ["", "Growth is the slope behind the first quarter, by Theil and Sen; \"stands\" is what `tests/soak/judge.py` says "
              "of it.", "",
              "![Each of them over the hours: at rest dark, in use light, the warm-up grey](endurance.svg)", ""]
    return lines


def the_sanitized_run(folder):
    head, acts, faults, hours, _ = run_of(folder)
    return ["## Under AddressSanitizer and UBSan", "",
            f"{head}, {day(folder + '/table.md')}: {acts} acts in {hours:.2f} hours, {faults} faults, a report of the "
            "sanitizers among them counted.", ""]


def the_threads(log):
    told = re.search(r"(\d+)% tests passed, (\d+) tests failed out of (\d+)", read(log))
    return ["## Under ThreadSanitizer", "",
            f"{told[3]} test programs, {day(log)}: {told[2]} failed or had a report.", ""]


def the_fuzzing(summary):
    lines = ["## Fuzzing", "", f"{day(summary)}:", ""]
    return lines + [line for line in read(summary).splitlines() if line.startswith("|") or "inputs in all" in line] + [""]


def the_coverage(table):
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in read(table).splitlines()
            if re.match(r"\| (src|tools)/", line)]
    lines = ["## What the corpora alone reach", "", "| parser | lines | reached |", "|---|---|---|"]
    return lines + [f"| `{row[0]}` | {row[1]} | {row[2]} |" for row in rows] + [""]


def main():
    parser = argparse.ArgumentParser(prog="page.py")
    parser.add_argument("soak")
    for name in ("sanitized", "threads", "fuzz", "coverage"):
        parser.add_argument("--" + name)
    given = parser.parse_args()
    lines = ["# Endurance", "",
             f"What was measured last, on {machine()}, made by `tests/soak/page.py` from what the runs left. The runs: "
             "`./test --soak 120`, `./test --soak 30 --sanitizer asan`, `./test --threads`, `./test --fuzz`, "
             "`./test --fuzz --coverage`.", ""]
    lines += the_long_run(given.soak)
    for part, made in ((given.sanitized, the_sanitized_run), (given.threads, the_threads), (given.fuzz, the_fuzzing),
                       (given.coverage, the_coverage)):
        lines += made(part) if part else []
    with open(f"{DOCS}/endurance.md", "w", encoding="utf-8") as page:
        page.write("\n".join(lines).rstrip() + "\n")
    shutil.copyfile(given.soak + "/picture.svg", f"{DOCS}/endurance.svg")


if __name__ == "__main__":
    main()
