#!/usr/bin/env python3
"""Breaks the program in one random place at a time and sees whether the unit tests notice.

    scripts/mutate.py SEED COUNT FOLDER...     folders below src: playback platform/backends/media ..., or sources
    scripts/mutate.py --all FOLDER...          each mutant that there is of them, one source behind the other
    scripts/mutate.py --again FILE             the mutants of such a file once more, against the tests of now

Works on a copy of the tree as it is now, in build/mutate; the tree itself is not touched and may be edited
meanwhile. Each mutant is compiled beside the copy, and its object linked instead of the true one: nothing has to be
put back, whatever ends the run. The programs of tests/unit that hold the source are linked and run one after the other,
those that most likely notice first, until one fails. Mutants are compiled without optimization, behind a precompiled
header of all that their folder reads. Two are tried at a time, or VELMORA_MUTANTS_AT_ONCE.

COUNT mutants that compile are tried. Prints a line for each and a sum; those that survived are written as diffs to
build/mutate/survivors-SEED.diff (survivors-all.diff, survivors-again.diff). A survivor is a hole in the tests, a rule that nobody holds, or an equivalent program.
The same seed gives the same mutants as long as the sources are the same. Status 0 when none survived, 1 when some did.
"""

import collections
import concurrent.futures
import difflib
import fcntl
import itertools
import json
import os
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SOURCE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ROOM = os.path.join(SOURCE, "build", "mutate")
TREE = os.path.join(ROOM, "tree")
BUILD = os.path.join(TREE, "build", "dev")
MEMORY = 4 << 30  # bytes that a mutant which loops may take
WORKERS = int(os.environ.get("VELMORA_MUTANTS_AT_ONCE", "2"))
CALMLY = ["nice", "-n", "5"]

TOKEN = re.compile(
    r"""(?P<blank>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<text>(?:u8|[uUL])?(?:R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\])*"|'(?:\\.|[^'\\])*'))
      | (?P<number>\.?\d(?:'?[\w.])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<sign><=>|<<=|>>=|->|\+\+|--|::|<<|>>|&&|\|\||[-+*/%&|^=!<>]=|.)""",
    re.S | re.M | re.X,
)
Token = collections.namedtuple("Token", "kind text start end")
Mutant = collections.namedtuple("Mutant", "path kind start end other")

# Signs of two operands; clang-format puts a blank on either side of these, and of no bracket of a template.
SIGNS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "+=": ["-="], "-=": ["+="],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "&&": ["||"], "||": ["&&"],
}  # fmt: skip
KINDS = {"==": "comparison", "!=": "comparison", "&&": "boolean", "||": "boolean"}
KINDS.update(dict.fromkeys(["<", "<=", ">", ">="], "comparison"))
CLOSING = {"(": ")", "[": "]", "{": "}"}


class Code:
    """One source file: its tokens, the bracket that each stands in, and where that bracket ends."""

    def __init__(self, path):
        self.path = path
        with open(os.path.join(TREE, path), encoding="utf-8", newline="") as file:
            self.text = file.read()
        found = (Token(m.lastgroup, m.group(), m.start(), m.end()) for m in TOKEN.finditer(self.text))
        self.tokens = [t._replace(kind="text") if t.kind == "mark" else t for t in found if t.kind != "blank"]
        self.within, self.partner, opened = [], {}, []
        for at, token in enumerate(self.tokens):
            if token.kind == "sign" and opened and token.text == CLOSING[self.tokens[opened[-1]].text]:
                self.partner[opened.pop()] = at
            self.within.append(opened[-1] if opened else None)
            if token.kind == "sign" and token.text in CLOSING:
                opened.append(at)

    def word(self, at):
        return self.tokens[at].text if 0 <= at < len(self.tokens) else ""

    def spaced(self, at):
        token = self.tokens[at]
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def mutants(self, pick):
        """The mutants of each place; which of several, the pick says."""
        for at, token in enumerate(self.tokens):
            kind, others = self.of_token(at)
            for other in pick(others) if others else []:
                yield Mutant(self.path, kind, token.start, token.end, other)
            if token.kind == "sign":
                yield from self.of_bracket(at, pick)
            end = self.end_of_statement(at)
            if end is not None:
                yield Mutant(self.path, "statement", token.start, self.tokens[end].end, ";")

    def of_token(self, at):
        token = self.tokens[at]
        if token.kind == "sign" and token.text in SIGNS and self.spaced(at) and self.word(at - 1) != "operator":
            return KINDS.get(token.text, "arithmetic"), SIGNS[token.text]
        if token.text in ("++", "--"):
            return "arithmetic", ["--" if token.text == "++" else "++"]
        if token.text == "!":
            return "boolean", [" "]
        if token.text in ("true", "false"):
            return "boolean", ["false" if token.text == "true" else "true"]
        if token.kind == "number":
            return "constant", self.other_numbers(token.text)
        return "", []

    @staticmethod
    def other_numbers(text):
        whole = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlLzZ]*)", text)
        if whole is None:  # 0.5, 1e3
            return [f"({text} + 1)", f"({text} / 2)"]
        if text == "0":
            return ["1"]
        value = int(whole[1].replace("'", ""), 16 if whole[1][1:2] in ("x", "X") else 10)
        return [f"{value + 1}{whole[2]}"] + ([f"{value - 1}{whole[2]}"] if value > 0 else [])

    def of_bracket(self, at, pick):
        """The condition of an "if", and two arguments that change places."""
        end = self.partner.get(at)
        if self.word(at) != "(" or end is None or end == at + 1:
            return
        first, last = self.tokens[at + 1].start, self.tokens[end - 1].end
        before = self.tokens[at - 1]
        if before.text == "if" or (before.text == "constexpr" and self.word(at - 2) == "if"):
            if ";" not in (self.word(i) for i in range(at, end)):
                # What the condition does besides stays done.
                inner = self.text[first:last]
                for other in pick([f"(({inner}), true)", f"(({inner}), false)"]):
                    yield Mutant(self.path, "condition", first, last, other)
        elif before.kind == "name" and before.text not in ("while", "for", "switch", "catch", "return"):
            commas = [i for i in range(at, end) if self.word(i) == "," and self.within[i] == at]
            edges = [at] + commas + [end]
            parts = [self.text[self.tokens[a].end : self.tokens[b].start].strip() for a, b in zip(edges, edges[1:])]
            pairs = [i for i in range(len(parts) - 1) if parts[i] != parts[i + 1]]
            for i in pick(pairs) if pairs else []:
                others = [*parts[:i], parts[i + 1], parts[i], *parts[i + 2 :]]
                yield Mutant(self.path, "arguments", first, last, ", ".join(others))

    def end_of_statement(self, at):
        """The ";" of a call, an assignment, or a jump without a value that begins here; else none."""
        inside = self.within[at]
        if inside is None or self.word(inside) != "{" or self.word(at - 1) not in (";", "{", "}", ")", "else", ":"):
            return None
        if self.word(at - 1) == ":" and self.word(at - 2) == ")":  # a constructor's members
            return None
        if self.word(at) in ("return", "break", "continue") and self.word(at + 1) == ";":
            return at + 1
        if self.word(at) in ("++", "--", "*") or self.word(at) == "(":
            following = at
        else:
            if self.tokens[at].kind != "name":
                return None
            following = at + 1
            while self.word(following) == "::":
                following += 2
            if self.word(following) not in ("(", "[", ".", "->", "=", "+=", "-=", "|=", "&=", "++", "--"):
                return None
            if self.word(at) in ("if", "for", "while", "switch", "using", "namespace", "catch", "sizeof"):
                return None
        while following < len(self.tokens):
            if self.word(following) == ";" and self.within[following] == inside:
                return following
            if self.word(following) == "}" and following == self.partner.get(inside):
                return None
            if following in self.partner and self.word(following) == "{" and self.word(following - 1) == ")":
                # The body of a routine or a lambda; only behind a lambda does the statement go on.
                if self.within[following] == inside and self.word(self.partner[following] + 1) not in (";", "(", ")"):
                    return None
            following = self.partner.get(following, following) + 1
        return None


def quiet(command, **more):
    """The command's status and all that it said. A list of words: no shell reads it, nothing needs to be quoted."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    return done.returncode, done.stdout


def demand(command, **more):
    status, said = quiet(command, **more)
    if status != 0:
        sys.exit(f"{said}\n{shlex.join(command)}: status {status}")
    return said


def command_of(target):
    """The command that makes a program or an archive, without the words of the shell around it."""
    words = shlex.split(demand(["ninja", "-C", BUILD, "-t", "commands", "-s", target]))
    return [word for word in words if word not in (":", "&&")]


def exchanged(words, instead):
    return [instead.get(word, word) for word in words]


def copy_tree():
    """The tree as it lies there, less what git ignores. What is the same keeps its time, so that little is built."""
    listed = demand(["git", "ls-files", "-z", "-co", "--exclude-standard"], cwd=SOURCE)
    wanted = {name for name in listed.split("\0") if os.path.isfile(os.path.join(SOURCE, name))}
    for folder, inner, names in os.walk(TREE):
        if folder == TREE and "build" in inner:
            inner.remove("build")
        for name in names:
            if os.path.relpath(os.path.join(folder, name), TREE) not in wanted:
                os.unlink(os.path.join(folder, name))
    for name in wanted:
        source, target = os.path.join(SOURCE, name), os.path.join(TREE, name)
        with open(source, "rb") as file:
            content = file.read()
        if os.path.isfile(target):
            with open(target, "rb") as file:
                if file.read() == content:
                    continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copyfile(source, target)
        shutil.copymode(source, target)


class Program:
    """A program of tests/unit."""

    def __init__(self, name):
        self.name = name
        self.inputs = set(demand(["ninja", "-C", BUILD, "-t", "inputs", name]).split("\n"))
        self.link_command = command_of(name)
        self.usual = 0.0  # seconds

    def run(self, path, limit):
        """Runs the file at path. None when all is well, else the first failure or what ended it."""
        with tempfile.TemporaryDirectory(prefix="velmora-mutate-") as home:
            # Tests that give up the superuser's rights go on working in there.
            os.chmod(home, 0o755)
            own = {f"XDG_{what}_HOME": f"{home}/{what}" for what in ("CONFIG", "DATA", "CACHE", "STATE")}
            program = subprocess.Popen(
                CALMLY + ["prlimit", f"--as={MEMORY}", "--core=0", path, "--gtest_fail_fast", "--gtest_brief=1"],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, errors="replace", cwd=home,
                env={**os.environ, **own, "HOME": home, "TMPDIR": home, "XDG_RUNTIME_DIR": home},
                start_new_session=True,
            )  # fmt: skip
            try:
                said = program.communicate(timeout=limit)[0]
            except subprocess.TimeoutExpired:
                return f"ran longer than {limit:.0f} s"
            finally:
                # Whatever it started goes with it.
                try:
                    os.killpg(program.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                program.communicate()
        if program.returncode == 0:
            return None
        failed = re.search(r"\[  FAILED  \] ([\w./]+)", said)
        return failed[1] if failed else f"ended with status {program.returncode}"


class Bench:
    """The copy, built, and the programs that hold each source."""

    def __init__(self, folders):
        self.folders = folders
        copy_tree()
        flags = {"LDFLAGS": "-fuse-ld=mold"} if shutil.which("mold") else {}
        # Precompiled headers are of no use here, and keep a cache of compiled objects from serving.
        demand(["cmake", "--preset", "dev", "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON"], cwd=TREE,
               env={**os.environ, **flags})  # fmt: skip
        rules = demand(["ninja", "-C", BUILD, "-t", "targets", "all"])
        programs = re.findall(r"^(tests/unit/\S+): CXX_EXECUTABLE", rules, re.M)
        # Of those that mount disks, one that is ended at its limit would leave them mounted.
        programs = [Program(name) for name in sorted(programs) if not name.startswith("tests/unit/disks/")]
        sources = {os.path.join(TREE, path) for path in self.sources()}
        self.programs = [program for program in programs if program.inputs & sources]
        # The objects of each archive.
        self.archives = {}
        for name in re.findall(r"^(src/\S+\.a): CXX_STATIC_LIBRARY", rules, re.M):
            self.archives[name] = [word for word in command_of(name) if word.endswith(".o")]
        print(f"building {len(self.programs)} programs in {BUILD}", flush=True)
        demand(CALMLY + ["ninja", "-C", BUILD, "-j2"] + [program.name for program in self.programs])
        for program in self.programs:
            begun = time.time()
            failure = program.run(os.path.join(BUILD, program.name), 600)
            program.usual = time.time() - begun
            if failure:
                sys.exit(f"{program.name}: {failure}, with nothing broken yet")
        with open(os.path.join(BUILD, "compile_commands.json"), encoding="utf-8") as file:
            self.compile_commands = {c["file"]: shlex.split(c["command"]) for c in json.load(file)}
        self.kills = collections.Counter()
        self.precompiled = self.precompile()

    def precompile(self):
        """A header of what the sources of a way to compile read of the tree and the system, for each such way."""
        ways = collections.defaultdict(set)
        for source in self.sources():
            command, _ = self.compilation(os.path.join(TREE, source))
            with open(os.path.join(TREE, source), encoding="utf-8") as file:
                ways[tuple(command)].update(re.findall(r"^#include .*", file.read(), re.M))
        headers = {}
        for command, lines in ways.items():
            header = os.path.join(ROOM, "precompiled", f"{len(headers)}.h")
            os.makedirs(os.path.dirname(header), exist_ok=True)
            with open(header, "w", encoding="utf-8") as file:
                file.write("\n".join(sorted(lines)))
            status, _ = quiet([*CALMLY, *command, "-x", "c++-header", header, "-o", f"{header}.gch"], cwd=BUILD)
            # Headers that do not get on with each other are read by each mutant anew.
            headers[command] = ["-include", header] if status == 0 else []
        return headers

    def compilation(self, source):
        """The words that compile a mutant of the source, less those that name the files; the true object."""
        command = list(self.compile_commands[source])
        place = command.index("-o")
        true_object = command[place + 1]
        del command[place : place + 2]
        # Warnings (an unused variable, a fall through) would stop what is to be tried.
        return [word for word in command if word not in ("-c", source)] + ["-w", "-O0", "-g0"], true_object

    def sources(self):
        for folder in self.folders:
            top = os.path.join(TREE, "src", folder)
            if os.path.isfile(top):
                yield os.path.relpath(top, TREE)
                continue
            if not os.path.isdir(top):
                sys.exit(f"src/{folder} is no folder")
            for place, _, names in sorted(os.walk(top)):
                yield from (os.path.relpath(os.path.join(place, n), TREE) for n in sorted(names) if n.endswith(".cpp"))

    def likely(self, path):
        """The programs that hold the source: those that killed of it, then of its folder, then the namesake."""
        folder = os.path.dirname(path)

        def rank(program):
            namesake = os.path.basename(folder) in program.name.split("/")[2]
            return -self.kills[program, path], -self.kills[program, folder], not namesake, program.usual

        return sorted((p for p in self.programs if os.path.join(TREE, path) in p.inputs), key=rank)

    def try_out(self, mutant, text):
        """What noticed the mutant; None where nothing did, False where it does not compile."""
        with tempfile.TemporaryDirectory(prefix="velmora-mutant-") as room:
            true_source = os.path.join(TREE, mutant.path)
            broken_source = os.path.join(room, os.path.basename(mutant.path))
            with open(broken_source, "w", encoding="utf-8", newline="") as file:
                file.write(text)
            broken_object = os.path.join(room, "broken.o")
            command, true_object = self.compilation(true_source)
            command += self.precompiled[tuple(command)]
            command += ["-iquote", os.path.dirname(true_source), "-c", broken_source, "-o", broken_object]
            if quiet(CALMLY + command, cwd=BUILD)[0] != 0:
                return False
            instead = {true_object: broken_object}
            for archive, objects in self.archives.items():
                if true_object in objects:
                    instead[archive] = os.path.join(room, "broken.a")
                    demand(["ar", "qcs", instead[archive]] + exchanged(objects, instead), cwd=BUILD)
            return self.run_with(mutant.path, instead, os.path.join(room, "broken"))

    def run_with(self, path, instead, broken):
        for program in self.likely(path):
            if quiet(CALMLY + exchanged(program.link_command, {**instead, program.name: broken}), cwd=BUILD)[0] != 0:
                return False
            noticed = program.run(broken, 10 + 20 * program.usual)
            if noticed:
                self.kills[program, path] += 1
                self.kills[program, os.path.dirname(path)] += 1
                return noticed
        return None


def difference(mutant, old, new):
    lines = difflib.unified_diff(old.splitlines(True), new.splitlines(True), f"a/{mutant.path}", f"b/{mutant.path}")
    return "".join(lines)


def made(bench, pick):
    for path in bench.sources():
        code = Code(path)
        for mutant in code.mutants(pick):
            yield mutant, code.text


def with_texts(mutants):
    """Each mutant with the whole text of its source before and after."""
    for mutant, text in mutants:
        yield mutant, text, text[: mutant.start] + mutant.other + text[mutant.end :]


def chosen(bench, dice):
    """One mutant of each place, in random order."""
    every = list(made(bench, lambda others: [dice.choice(others)]))
    dice.shuffle(every)
    return with_texts(every)


def of_file(name):
    """The mutants of a file of survivors whose lines still stand somewhere in their source."""
    with open(name, encoding="utf-8") as file:
        parts = re.split(r"^# (\w+) .*\n", file.read(), flags=re.M)[1:]
    for kind, diff in zip(parts[::2], parts[1::2]):
        path = re.search(r"^--- a/(.*)$", diff, re.M)[1].strip()
        hunk = re.split(r"^@@.*\n", diff, flags=re.M)[1].splitlines(True)
        before = "".join(line[1:] for line in hunk if line[0] in " -")
        after = "".join(line[1:] for line in hunk if line[0] in " +")
        with open(os.path.join(SOURCE, path), encoding="utf-8", newline="") as file:
            text = file.read()
        at = text.find(before)
        if at < 0:
            print(f"gone      {path}: these lines do not stand there any more:\n{diff}")
            continue
        yield Mutant(path, kind, at, at + len(before), after), text, text[:at] + after + text[at + len(before) :]


def campaign(bench, mutants, count, survivors):
    tally = collections.Counter()

    def tried(candidate):
        begun = time.time()
        return *candidate, bench.try_out(candidate[0], candidate[2]), time.time() - begun

    with concurrent.futures.ThreadPoolExecutor(WORKERS) as workers:
        todo = collections.deque(workers.submit(tried, next_one) for next_one in itertools.islice(mutants, WORKERS))
        try:
            while todo and tally["killed"] + tally["survived"] < count:
                record(*todo.popleft().result(), tally, survivors)
                todo.extend(workers.submit(tried, next_one) for next_one in itertools.islice(mutants, 1))
        finally:
            for left in todo:
                left.cancel()
    return tally


def record(mutant, old, new, noticed, seconds, tally, survivors):
    verdict = "did not compile" if noticed is False else "killed" if noticed else "survived"
    tally[verdict] += 1
    diff = difference(mutant, old, new)
    line = next(i for i, (a, b) in enumerate(zip(old.split("\n"), new.split("\n")), 1) if a != b)
    if verdict == "survived":
        with open(survivors, "a", encoding="utf-8") as file:
            file.write(f"# {mutant.kind} {mutant.path}:{line}\n{diff}\n")
    print(f"{verdict:<9} {mutant.path}:{line} {mutant.kind}, {seconds:.1f} s: {noticed or ''}")
    changed = (text for text in diff.splitlines()[3:] if text[0] in "-+")
    print(*(f"    {text[0]} {text[1:].strip()[:150]}" for text in changed), sep="\n", flush=True)


def main():
    again = len(sys.argv) == 3 and sys.argv[1] == "--again"
    whole = len(sys.argv) > 2 and sys.argv[1] == "--all"
    numbers = sys.argv[1:3]
    if not again and not whole and not (len(sys.argv) > 3 and all(re.fullmatch(r"\d+", number) for number in numbers)):
        sys.exit(__doc__)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    os.makedirs(TREE, exist_ok=True)
    with open(os.path.join(ROOM, "lock"), "w", encoding="utf-8") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit("another run is at work here")
        begun = time.time()
        if again:
            todo = list(of_file(sys.argv[2]))
            survivors = os.path.join(ROOM, "survivors-again.diff")
            bench = Bench(sorted({os.path.dirname(m.path)[len("src/") :] for m, _, _ in todo}))
            mutants, count = iter(todo), len(todo) + 1
        elif whole:
            survivors = os.path.join(ROOM, "survivors-all.diff")
            bench = Bench(sys.argv[2:])
            mutants, count = with_texts(made(bench, list)), sys.maxsize
        else:
            survivors = os.path.join(ROOM, f"survivors-{sys.argv[1]}.diff")
            bench = Bench(sys.argv[3:])
            mutants, count = chosen(bench, random.Random(int(sys.argv[1]))), int(sys.argv[2])
        open(survivors, "w", encoding="utf-8").close()
        try:
            tally = campaign(bench, mutants, count, survivors)
        except KeyboardInterrupt:
            sys.exit(f"interrupted; what survived so far: {survivors}")
        print(f"killed {tally['killed']}, survived {tally['survived']}, did not compile {tally['did not compile']}; "
              f"{time.time() - begun:.0f} s; survivors: {survivors}")  # fmt: skip
        sys.exit(1 if tally["survived"] else 0)


if __name__ == "__main__":
    main()
