#!/usr/bin/env python3
"""Which lines of the parsers the corpora of the fuzz targets reach, and which not.

    coverage.py BUILD_FOLDER [SOURCE_FOLDER]

The folder is one of the preset "coverage". Fails where the corpora alone reach less than 95 % of the lines of a file
that parsers.txt names: what no seed reaches a fuzzer finds late or never.
"""

import json
import os
import subprocess
import sys
import tempfile

from targets import targets

LEAST = 95.0


def tool(name):
    """Debian 12 has the tools of LLVM 14 under that name where the plain package is not installed."""
    for each in (name, name + "-14"):
        if subprocess.run(["which", each], stdout=subprocess.DEVNULL, check=False).returncode == 0:
            return each
    sys.exit(f"coverage: {name} is not installed")


def replay(found, folder):
    """The merged profile of all targets, each with its own corpus."""
    profiles = []
    for name, (program, corpus) in found.items():
        profile = f"{folder}/{name}.profraw"
        subprocess.run([program, corpus], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       env=dict(os.environ, LLVM_PROFILE_FILE=profile))
        profiles.append(profile)
    merged = folder + "/merged"
    subprocess.run([tool("llvm-profdata"), "merge", "-sparse", *profiles, "-o", merged], check=True)
    return merged


def told(found, merged, files, *options):
    programs = [program for program, _ in found.values()]
    objects = [word for program in programs[1:] for word in ("-object", program)]
    return subprocess.run([tool("llvm-cov"), *options, programs[0], *objects, f"-instr-profile={merged}", *files],
                          check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout


def missed(found, merged, file):
    """The numbers of the lines that nothing reaches."""
    numbers = []
    for line in told(found, merged, [file], "show").splitlines():
        parts = line.split("|")
        if len(parts) >= 3 and parts[0].strip().isdigit() and parts[1].strip() == "0":
            numbers.append(int(parts[0]))
    return numbers


def main():
    build = os.path.abspath(sys.argv[1])
    source = os.path.abspath(sys.argv[2] if len(sys.argv) > 2 else ".")
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "parsers.txt"), encoding="utf-8") as file:
        parsers = [line.split("#")[0].strip() for line in file if line.split("#")[0].strip()]
    found = targets(build)
    files = [f"{source}/{name}" for name in parsers]
    with tempfile.TemporaryDirectory() as folder:
        merged = replay(found, folder)
        summary = json.loads(told(found, merged, files, "export", "-summary-only"))
        lines = {each["filename"]: each["summary"]["lines"] for each in summary["data"][0]["files"]}
        failed = 0
        print("| parser | lines | reached | | not reached |\n|---|---|---|---|---|")
        for name, path in zip(parsers, files):
            told_of = lines.get(path, {"count": 0, "covered": 0, "percent": 0.0})
            enough = told_of["percent"] > LEAST
            failed += not enough
            rest = "" if told_of["percent"] == 100 else " ".join(map(str, missed(found, merged, path)))
            print(f"| {name} | {told_of['count']} | {told_of['percent']:.1f} % | {'' if enough else '**too few**'} | {rest} |")
    print(f"{len(parsers) - failed} of {len(parsers)} parsers have more than {LEAST:g} % of their lines reached")
    return int(failed > 0)


if __name__ == "__main__":
    sys.exit(main())
