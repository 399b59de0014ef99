"""Runs one operation once, whole or struck at one of its calls, and says what is wrong with what it left."""

import collections
import json
import os
import re
import signal
import socket
import stat
import subprocess
import time

import folders
import power
import readers
from operations import After

# Every call of the file system that the operations make or could make, so that a new one is not missed.
CALLS = ('access chmod chown close copy_file_range creat fallocate fchmod fchmodat fchown fchownat fcntl fdatasync '
         'flock fstat fstatfs fsync ftruncate futimesat getdents getdents64 lchown link linkat lseek lstat mkdir mkdirat '
         'mknod mknodat newfstatat open openat openat2 pread64 preadv preadv2 pwrite64 pwritev pwritev2 read readahead '
         'readlink readlinkat readv rename renameat renameat2 rmdir sendfile stat statfs statx symlink symlinkat '
         'sync_file_range syncfs truncate unlink unlinkat utime utimensat utimes write writev faccessat faccessat2 '
         'getxattr setxattr fgetxattr fsetxattr lgetxattr lsetxattr').split()
KILL = 'KILL'
FAULTS = [KILL, 'ENOSPC', 'EIO', 'EROFS', 'EDQUOT', 'EACCES', 'EINTR']
PATIENCE = 120  # seconds for one run: for a machine that does other things as well
STILL = 20      # seconds after which a person would take it for dead

REGISTRY_FILES = {folders.REGISTRY, folders.REGISTRY + '-wal', folders.REGISTRY + '-shm'}
# Where a process noted that it may leave something; the next start reads and removes it.
NOTES = re.compile(r'home/\.cache/velmora/unfinished-\d+')
DAMAGED = re.compile(re.escape(folders.REGISTRY) + r'\.damaged-\d{8}-\d{6}(-\d+)?')


def joined(trace):
    """The lines of a trace, with those made one that another thread came between."""
    begun, lines = {}, []
    for line in trace:
        thread, _, text = line.partition(' ')
        if text.endswith('<unfinished ...>'):
            begun[thread] = line[:-len('<unfinished ...>')].rstrip()
            continue
        resumed = re.match(r' *<\.\.\. \w+ resumed>', text)
        lines.append(begun.pop(thread, thread) + text[resumed.end():] if resumed else line)
    return lines + list(begun.values())


class Run:
    """How one run went: whether it was struck, and what the driver told (None where it was killed)."""

    def __init__(self, struck, report, status, trace, seconds):
        self.struck, self.report, self.status, self.trace, self.seconds = struck, report, status, trace, seconds


class Counted:
    """`calls`: {call: how often}; `releases`: those that let a lock go, which nothing can refuse."""

    def __init__(self, calls, releases):
        self.calls, self.releases = calls, releases

    @property
    def number(self):
        return sum(self.calls.values())

    def strikes(self, every=1, offset=0):
        """Each call at each of its turns, in each way, and once beyond the last: (call, n, fault)."""
        turns = [(call, n) for call in sorted(self.calls) for n in range(1, self.calls[call] + 1)]
        for at, turn in enumerate(turns):
            if (at + offset) % every == 0:
                for fault in [KILL] if turn in self.releases else FAULTS:
                    yield *turn, fault
        for call in sorted(self.calls)[offset % every::every]:
            yield call, self.calls[call] + 1, KILL


def takes_modes(folder):
    """Whether a file keeps the mode that it is given there: elsewhere it has what the mount gives."""
    path = os.path.join(folder, 'mode')
    try:
        with open(path, 'wb'):
            os.chmod(path, 0o640)
        return stat.S_IMODE(os.stat(path).st_mode) == 0o640
    except OSError:
        return False
    finally:
        if os.path.exists(path):
            os.unlink(path)


def puts_content_first(folder):
    """Whether the disk itself has a file's content ahead of another's name that the file takes."""
    return subprocess.run(['stat', '-f', '-c', '%T', folder], stdout=subprocess.PIPE, check=True).stdout == b'ext2/ext3\n'


class Bench:
    def __init__(self, driver, root, address, scratch):
        """`root` is where the operations work, `scratch` where the bench keeps its own things."""
        self.driver, self.root, self.scratch = driver, root, scratch
        self.template = folders.prepare(root, driver, address)
        self.known = {}
        self.ignores_case = os.path.exists(os.path.join(root, 'HOME'))
        self.keeps_modes = takes_modes(root)
        self.puts_content_first = puts_content_first(root)

    # --- one run ---

    def begin(self, operation):
        tree = {name: folders.Entry(entry.kind, entry.mode, entry.data) for name, entry in self.template.items()}
        if operation.first:
            operation.first(tree)
        folders.lay(self.root, tree)

    def execute(self, operation, strike=None, ready=None, contents=False):
        """`strike`: (call, n, fault). `ready` is called, with the process's number, when everything ahead of the
        operation is done. `contents`: the trace holds every byte."""
        ours, theirs = socket.socketpair()
        ours.settimeout(PATIENCE)
        trace = os.path.join(self.scratch, 'trace')
        driver = subprocess.Popen([self.driver, operation.name, self.root, 'wait'], stdout=theirs, umask=0o022,
                                  stderr=subprocess.DEVNULL, env=folders.environment(self.root))
        theirs.close()
        told = ours.makefile('rb')
        tracer = None
        try:
            if told.readline() != b'ready\n':
                raise RuntimeError(f'{operation}: the driver did not come to its beginning')
            if ready:
                ready(driver.pid)
            calls = strike[0] if strike else ','.join(power.FOLLOWED + power.STRANGE if contents else CALLS)
            command = ['strace', '-f', '-o', trace, '-e', 'signal=none', '-e', f'trace={calls}']
            if contents:
                command += ['-xx', '-s', '10000000']
            if strike:
                what = 'signal=KILL' if strike[2] == KILL else f'error={strike[2]}'
                command += ['-e', f'inject={calls}:{what}:when={strike[1]}']
            tracer = subprocess.Popen(command + ['-p', str(driver.pid)], stderr=subprocess.PIPE)
            if b'attached' not in tracer.stderr.readline():
                raise RuntimeError('strace cannot trace here')
            began = time.monotonic()
            driver.send_signal(signal.SIGUSR1)
            line = told.readline()
            status = driver.wait(PATIENCE)
            tracer.wait(PATIENCE)
        finally:
            for process in filter(None, [driver, tracer]):
                if process.poll() is None:
                    process.kill()
                    process.wait()
            if tracer:
                tracer.stderr.close()
            told.close()
            ours.close()
        with open(trace, encoding='utf-8', errors='replace') as file:
            lines = joined(file.read().splitlines())
        struck = status == -signal.SIGKILL if strike and strike[2] == KILL else any('(INJECTED)' in line for line in lines)
        return Run(struck, json.loads(line) if line else None, status, lines, time.monotonic() - began)

    def next_start(self):
        """The next start and its end in order: what it shows. The text is why there is none."""
        ours, theirs = socket.socketpair()
        driver = subprocess.Popen([self.driver, 'look', self.root], stdout=theirs, umask=0o022,
                                  stderr=subprocess.PIPE, env=folders.environment(self.root))
        theirs.close()
        ours.settimeout(PATIENCE)
        with ours, ours.makefile('rb') as told:
            line = told.readline()
        errors = driver.communicate(timeout=PATIENCE)[1].decode('utf-8', 'replace')
        if driver.returncode != 0 or not line:
            return None, f'the next start ended with {driver.returncode}: {errors}'
        return json.loads(line), errors

    # --- what an operation is like ---

    def count(self, operation):
        """Runs it whole: its calls. What is there at its beginning and its end is kept for comparing."""
        if operation.name in self.known:
            return self.known[operation.name][0]
        before = {}

        def ready(_):
            tree = self.names_as(operation, folders.look(self.root))
            before['tree'] = {path: entry for path, entry in tree.items() if not NOTES.fullmatch(path)}
            before['registry'] = readers.Registry(self.root, scratch=self.scratch)

        self.begin(operation)
        run = self.execute(operation, ready=ready)
        # The tracer counts each thread by itself, and strikes the nth call of each.
        threads, releases = collections.defaultdict(collections.Counter), set()
        for line in run.trace:
            found = re.match(r'(\d+) +(\w+)\(', line)
            if found:
                thread, name = found.groups()
                threads[thread][name] += 1
                if 'l_type=F_UNLCK' in line:
                    releases.add((name, threads[thread][name]))
        counts = collections.Counter()
        for of_thread in threads.values():
            counts |= of_thread
        self.known[operation.name] = Counted(dict(counts), releases), before['tree'], before['registry'], self.look(operation, run.report)
        return self.known[operation.name][0]

    def worlds(self, operation):
        """What power cuts can leave, each world once: (what was called last, kind, tree, whether it is the end)."""
        self.count(operation)
        descriptors, before = {}, {}

        def ready(process):
            folder = f'/proc/{process}/fd'
            descriptors.update({int(number): os.readlink(f'{folder}/{number}') for number in os.listdir(folder)})
            before.update(folders.look(self.root))

        self.begin(operation)
        run = self.execute(operation, ready=ready, contents=True)
        model, seen = power.Model(self.root, before, descriptors, operation.steps and self.puts_content_first), set()
        for at, line in enumerate(run.trace):
            last = at + 1 == len(run.trace)
            if not model.take(line) and not last:
                continue
            for kind, tree in model.worlds():
                key = hash(tuple((path, entry.kind, entry.mode, entry.data) for path, entry in sorted(tree.items())))
                if key not in seen or last and kind == 'nothing':
                    seen.add(key)
                    yield line[:60], kind, tree, last

    def wrong_world(self, operation, kind, tree, last):
        """What is wrong after a power cut that left this. At the end of an operation nothing of it may be lost."""
        folders.lay(self.root, tree)
        whole = self.known[operation.name][3]
        lasting = operation.files(self) if operation.lasting is None else operation.lasting
        found = [f'{path} was not waited for' for path in lasting if path not in operation.passing
                 and After(self, tree, None, None).data(path) != whole.data(path)] if last and kind == 'nothing' else []
        return found + self.wrong(operation, Run(True, None, -signal.SIGKILL, [], 0), is_cut=True)

    # --- judging ---

    def names_as(self, operation, tree):
        """Where two spellings are one file, it goes by the one that is known."""
        if not self.ignores_case:
            return tree
        known = {path.upper(): path for path in [*operation.files(self), *self.template]}
        return {known.get(path.upper(), path): entry for path, entry in tree.items()}

    def look(self, operation, report=None):
        return After(self, self.names_as(operation, folders.look(self.root)), readers.Registry(self.root, scratch=self.scratch), report)

    def is_done(self, operation):
        """Whether everything is as the operation leaves it where nothing stands in its way."""
        whole, now = self.known[operation.name][3], self.look(operation)
        return now.registry.values == whole.registry.values and all(
            now.data(path) == whole.data(path) for path in operation.files(self))

    def wrong(self, operation, run, is_whole=False, is_cut=False):
        """What is wrong after a run, as texts. Ends with the next start."""
        found = self.wrong_after(operation, run, is_cut)
        if is_whole and not self.is_done(operation):
            found.append('it does not do the same each time')
        return found + self.wrong_start(operation)

    def wrong_after(self, operation, run, is_cut=False):
        """The same ahead of the next start."""
        _, before, registry, whole = self.known[operation.name]
        after = self.look(operation, run.report)
        found = self.wrong_files(operation, before, whole, after)
        found += self.wrong_settings(operation, registry, whole, after, run)
        # A power cut may take back what nobody waited for.
        if operation.check and not (is_cut and operation.lasting is not None):
            found += operation.check(after)
        if run.report is None and run.status != -signal.SIGKILL:
            found.append(f'the program ended by itself: {run.status}')
        if run.seconds > STILL:
            found.append(f'the program stood still for {run.seconds:.0f} s')
        return found

    def wrong_files(self, operation, before, whole, after):
        own, found = operation.files(self), []
        for path in before.keys() | after.tree.keys() | own.keys():
            if path in REGISTRY_FILES:
                continue
            then, now = before.get(path), after.tree.get(path)
            if path in own:
                data = after.data(path)
                if not any(version(data) if callable(version) and data is not None else version == data
                           for version in own[path]):
                    found.append(f'{path} is no version of itself: {now}')
                elif self.keeps_modes and now and now.mode != (then or whole.tree.get(path) or now).mode:
                    found.append(f'{path} has the mode {now.mode:o}')
            elif then is not None and now != then and path not in operation.passing:
                found.append(f'{path} was not chosen, and is {now} instead of {then}')
        return found

    def left(self, operation, tree):
        """What is new and not the operation's: it has to be gone with the next start."""
        _, before, _, whole = self.known[operation.name]
        return {path for path in tree if path not in before and path not in REGISTRY_FILES and path not in folders.LATER
                and (path in operation.passing or NOTES.fullmatch(path) or path not in whole.tree and path not in operation.files(self)
                     and path not in operation.folders)} | operation.passing

    def wrong_settings(self, operation, before, whole, after, run):
        own, found = operation.settings(self), []
        if after.registry.trouble:
            return [f'the registry cannot be read: {after.registry.trouble}'] if not operation.first else []
        new = []
        for name in before.values.keys() | after.registry.values.keys():
            then, now = before.values.get(name), after.registry.values.get(name)
            if name not in own:
                if now != then and not operation.first:
                    found.append(f'the setting {name} was not chosen, and is {now} instead of {then}')
            elif not any(version(now) if callable(version) and now is not None else version == now
                         for version in own[name]):
                found.append(f'the setting {name} is no version of itself: {now}')
        for name in own:
            new.append(after.registry.values.get(name) == whole.registry.values.get(name) !=
                       before.values.get(name))
        changed = [name for name in own if whole.registry.values.get(name) != before.values.get(name)]
        taken = [after.registry.values.get(name) == whole.registry.values.get(name) for name in changed]
        if run.report is None and taken != sorted(taken, reverse=True):
            found.append('a setting was stored and one before it was not')
        keys = [(key in after.registry.keys) == (key in whole.registry.keys) for key in operation.together
                if (key in before.keys) != (key in whole.registry.keys)]
        if operation.together and len(set(taken + keys)) > 1:
            found.append('a part of what goes together is stored')
        return found

    def wrong_full_start(self, operation):
        """A start while there is still no room: it shows what lies on the disk all the same."""
        shown, errors = self.next_start()
        if shown is None:
            return [errors]
        now = self.look(operation)
        return [f'while there is no room, {text}' for text in self.wrong_reading(shown, now.registry, now.tree)]

    def wrong_start(self, operation):
        after = self.look(operation)
        left = self.left(operation, after.tree)
        shown, errors = self.next_start()
        if shown is None:
            return [errors]
        found, now = [], self.look(operation)
        if errors and not operation.first:
            found.append(f'the next start complains: {errors.strip()}')
        found += [f'{path} is left behind: {now.tree[path]}' for path in sorted(left)
                  if path in now.tree and not DAMAGED.fullmatch(path)]
        found += [f'the next start makes of {path}: {now.tree.get(path)} instead of {entry}'
                  for path, entry in after.tree.items()
                  if path not in REGISTRY_FILES and path not in left and now.tree.get(path) != entry]
        if now.registry.trouble:
            found.append(f'the registry cannot be read behind the next start: {now.registry.trouble}')
        elif not operation.first and now.registry.values != after.registry.values:
            found.append('the next start changes the settings')
        return found + self.wrong_reading(shown, now.registry, now.tree)

    def wrong_reading(self, shown, registry, tree):
        """Whether a start shows what lies on the disk."""
        found = []

        def expect(what, is_shown, lies):
            if is_shown != lies:
                found.append(f'the next start shows {what} {is_shown!r} for {lies!r}')

        program = f'{self.root}/{folders.PROGRAM}'
        names = ['LrcSaveFolder', 'PlayListSaveFolder', 'PlayCacheSaveFolder']
        places = [f'{program}/Lyrics', f'{program}/List', f'{program}/Cache']
        stored = [registry.text(folders.SETTINGS, name) or place for name, place in zip(names, places)]
        expect('the folders', shown['folders'], stored)
        expect('the language', shown['language'], int((registry.text(folders.SETTINGS, 'Language') or '0').strip('\0')))
        expect('the last track', shown['last'], registry.text(folders.PARAMETERS, 'lastPlayFileName') or '')
        path = os.path.relpath(stored[1], self.root) + '/zkPlayList.m3u'
        expect('the list', shown['rows'], readers.rows(tree[path].data) if path in tree else [])
        return found
