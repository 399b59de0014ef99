"""The fuzz targets of a build folder, as ctest knows them."""

import json
import os
import subprocess


def targets(build):
    """By name: the program and its corpus."""
    told = subprocess.run(["ctest", "--test-dir", build, "-L", "fuzz", "--show-only=json-v1"], check=True,
                          stdout=subprocess.PIPE, text=True).stdout
    return {test["name"]: (os.path.join(build, test["command"][0]), test["command"][-1])
            for test in json.loads(told)["tests"]}
