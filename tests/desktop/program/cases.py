"""Runs the cases of a script of desktop tests, tells how long each took, and leaves the long ones to the whole run.

A run in which VELMORA_WHOLE is set takes every case, one that names cases or patterns takes these. Any other leaves out
those that tests/whole.txt names for this script, and says how many.
"""

import os
import sys
import time
import unittest

LEFT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "whole.txt")


def whole():
    return bool(os.environ.get("VELMORA_WHOLE"))


def left_out(script):
    """The names behind that of the script, each Class.test_name or a class."""
    names = set()
    with open(LEFT, encoding="utf-8") as file:
        for line in file:
            words = line.split("#")[0].split()
            if words and words[0] == script:
                names.update(words[1:])
    return names


def each_case(suite):
    for part in suite:
        if isinstance(part, unittest.TestSuite):
            yield from each_case(part)
        else:
            yield part


def thinned(suite, names):
    """Without the named cases; a name that no case has is an error, so that the list stays true."""
    kept, met = unittest.TestSuite(), set()
    for case in each_case(suite):
        kind = type(case).__name__
        its = {kind, f"{kind}.{case._testMethodName}"} & names
        met |= its
        if not its:
            kept.addTest(case)
    if names - met:
        raise SystemExit(f"{LEFT} names what is no case here: {', '.join(sorted(names - met))}")
    return kept


class Timed(unittest.TextTestResult):
    """Says behind each case that was right how long it took."""

    def startTest(self, test):
        self.begun = time.monotonic()
        super().startTest(test)

    def addSuccess(self, test):
        unittest.TestResult.addSuccess(self, test)
        self.stream.writeln(f"ok ({time.monotonic() - self.begun:.1f} s)")
        self.stream.flush()


class Loader(unittest.TestLoader):
    left = 0

    def loadTestsFromModule(self, module, *args, **more):
        suite = super().loadTestsFromModule(module, *args, **more)
        if whole() or self.testNamePatterns:
            return suite
        script = os.path.splitext(os.path.basename(sys.argv[0]))[0]
        kept = thinned(suite, left_out(script.removeprefix("test_")))
        self.left = suite.countTestCases() - kept.countTestCases()
        return kept


def run(arguments):
    """`arguments` are unittest's own. Does not return."""
    loader = Loader()
    runner = unittest.TextTestRunner(verbosity=2, resultclass=Timed)
    done = unittest.main(argv=sys.argv[:1] + arguments, testRunner=runner, testLoader=loader, exit=False)
    if loader.left:
        print(f"{loader.left} cases are left to the whole run.", flush=True)
    sys.exit(not done.result.wasSuccessful())
