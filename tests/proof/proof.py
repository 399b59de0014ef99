#!/usr/bin/env python3
"""Proves that nothing is lost.

    proof.py DRIVER [--every N] [--workers N] [--only OPERATION]... [--disk NAME]

Every operation that writes is done in a folder of its own, over the real disk, registry and network, and

  - is killed ahead of each of its calls to the file system, and once beyond the last,
  - has each of these calls refused in six ways,
  - loses its power at each moment, by what it has asked to be synced until then,
  - works on disks of other kinds, and on one with no room, page by page.

Then readers that share nothing with the program look at what is left, and the program starts once more. Each file has
to be the old or the new one, whole; what was not chosen as it was; nothing may be left behind that this start does not
clear; it has to show what lies there; and a failure that is to be told must have been told.

Prints for each operation its calls, the runs that it took, and how many of them fell short, each with its reason; then
the disks. With --every, only each Nth call is struck; with --disk, only what is done on that one is. The exit status is 0 where nothing fell short.
"""

import argparse
import concurrent.futures
import ctypes
import fcntl
import multiprocessing
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # the tree stays as it is

import bench
import operations
import places
from server import Server

CHUNK = 24  # runs that a worker takes at a time
GROUND = 'here'
ENDS = [signal.SIGTERM, signal.SIGINT, signal.SIGHUP]
NAMED = 'velmora-proof-'  # how the folders begin that the work is done in
NOT_HERE = 77  # the exit status where the one disk that is asked for cannot be had
PATIENCE = 30  # seconds for what was ended to let go of the disks

worker = {}


# --- in a worker ---

def start_worker(driver, base, parent):
    for end in ENDS:
        signal.signal(end, signal.SIG_DFL if end != signal.SIGINT else signal.SIG_IGN)
    end_with_parent = 1
    ctypes.CDLL(None).prctl(end_with_parent, signal.SIGKILL)
    if os.getppid() != parent:
        os._exit(1)
    folder = tempfile.mkdtemp(prefix='worker-', dir=base)
    os.mkdir(os.path.join(folder, 'scratch'))
    worker.update(driver=driver, folder=folder, server=Server(), benches={})


def bench_at(place):
    """This worker's bench on a disk, made when it is first needed."""
    if place not in worker['benches']:
        folder = os.path.join(worker['folder'], f'place-{len(worker["benches"])}')
        found = next((one for one in places.ALL if one.name == place), None)
        root = found.make(folder) if found else folder
        worker['benches'][place] = bench.Bench(worker['driver'], os.path.join(root, 'world'), worker['server'].address,
                                               os.path.join(worker['folder'], 'scratch')), root
    return worker['benches'][place]


def named(name):
    return next(one for one in operations.ALL if one.name == name)


def judged(what, work):
    """What is wrong, as (what was done, texts); a bench that breaks has not proved anything."""
    try:
        return [(what, texts)] if (texts := work()) else []
    except Exception as error:
        return [(what, [f'could not be judged: {error!r}'])]


def count(place, name):
    """An operation's calls, and what is wrong where nothing strikes it."""
    one, operation = bench_at(place)[0], named(name)
    counted = one.count(operation)

    def whole():
        one.begin(operation)
        return one.wrong(operation, one.execute(operation), is_whole=True)
    return counted, judged('whole', whole)


def strike(place, name, strikes):
    one, operation = bench_at(place)[0], named(name)
    calls, short = one.count(operation).calls, []
    for call, n, fault in strikes:
        def struck():
            one.begin(operation)
            run = one.execute(operation, (call, n, fault))
            beyond = n > calls.get(call, 0)
            missed = ['this call came, which did not come before'] if run.struck and beyond else \
                ['this call never came'] if not run.struck and not beyond else []
            return one.wrong(operation, run) + missed
        short += judged(f'{call} {n} {fault}', struck)
    return len(strikes), short


def cut_power(name, every, offset):
    one, operation, short, number = bench_at(GROUND)[0], named(name), [], 0
    for at, (line, kind, tree, last) in enumerate(list(one.worlds(operation))):
        if (at + offset) % every == 0 or last:
            number += 1
            short += judged(f'power cut behind {line}: {kind}', lambda: one.wrong_world(operation, kind, tree, last))
    return number, short


def fill(place, name, every, offset):
    """With no page free, one, two and so on, until it is done in whole."""
    (one, mount), operation = bench_at(place), named(name)
    filler, short, number = places.Filler(mount), [], 0
    one.count(operation)
    for pages in range(64):
        number += 1
        done = []

        def full():
            one.begin(operation)
            run = one.execute(operation, ready=lambda _: filler.fill(pages))
            done.append(one.is_done(operation))
            found = one.wrong_after(operation, run) + one.wrong_full_start(operation)
            filler.clear()
            return found + one.wrong_start(operation)
        short += judged(f'{pages} pages free', full)
        filler.clear()
        if done == [True]:
            break
    return number, short


# --- the whole ---

class Row:
    def __init__(self, name):
        self.name, self.calls, self.runs, self.short = name, 0, 0, []

    def add(self, number, short, prefix=''):
        self.runs += number
        self.short += [(prefix + what, texts) for what, texts in short]

    def show(self):
        for what, texts in self.short:
            for text in texts:
                print(f'    {what}: {text}')
        print(f'{self.name:34} {self.calls:6} {self.runs:6} {len(self.short):6}', flush=True)


def chunks(place, name, strikes):
    strikes = list(strikes)
    return [(place, name, strikes[at:at + CHUNK]) for at in range(0, len(strikes), CHUNK)]


def prove_here(workers, chosen, every):
    counted = {one.name: workers.submit(count, GROUND, one.name) for one in chosen}
    pending = []
    for offset, one in enumerate(chosen):
        calls, short = counted[one.name].result()
        row = Row(one.name)
        row.calls = calls.number
        row.add(2, short)
        pending.append((row, [workers.submit(strike, *chunk)
                              for chunk in chunks(GROUND, one.name, calls.strikes(every, offset))]
                        + [workers.submit(cut_power, one.name, every, offset)]))
    for row, results in pending:
        for result in results:
            row.add(*result.result())
        row.show()
        yield row


def prove_at(workers, place, chosen, every):
    row, results = Row(place.name), []
    if place.is_small:
        results = [(one.name, workers.submit(fill, place.name, one.name, every, offset))
                   for offset, one in enumerate(chosen)]
    else:
        counted = [(one, workers.submit(count, place.name, one.name)) for one in chosen]
        for offset, (one, future) in enumerate(counted):
            calls, short = future.result()
            row.calls += calls.number
            row.add(2, short, f'{one.name}: ')
            # Killed at each call as everywhere; refused at some, since the disk refuses by itself.
            strikes = [strike for strike in calls.strikes(every, offset) if strike[2] == bench.KILL]
            strikes += [strike for strike in calls.strikes(7 * every, offset) if strike[2] != bench.KILL]
            results += [(one.name, workers.submit(strike, *chunk)) for chunk in chunks(place.name, one.name, strikes)]
    for name, result in results:
        row.add(*result.result(), f'{name}: ')
    row.show()
    return row


def missing(base, chosen):
    """The disks that cannot be had here: {name: reason}."""
    found = {}
    for number, place in enumerate(chosen):
        folder = os.path.join(base, f'try-{number}')
        try:
            place.make(folder)
        except OSError as error:
            found[place.name] = str(error)
        places.unmount_below(folder)
    return found


def prove(options, base):
    chosen = [one for one in operations.ALL if not options.only or one.name in options.only]
    disks = [place for place in places.ALL if options.disk in [None, place.name]]
    began, skipped = time.monotonic(), missing(base, disks)
    if options.disk in skipped:
        return NOT_HERE
    print(f'{"operation":34} {"calls":>6} {"runs":>6} {"short":>6}', flush=True)
    workers = concurrent.futures.ProcessPoolExecutor(
        options.workers, initializer=start_worker, initargs=(os.path.abspath(options.driver), base, os.getpid()))
    try:
        rows = [] if options.disk else list(prove_here(workers, chosen, options.every))
        rows += [prove_at(workers, place, chosen, options.every) for place in disks if place.name not in skipped]
    finally:
        # At their work or not: what a worker has started ends with it.
        for process in multiprocessing.active_children():
            process.kill()
        workers.shutdown(cancel_futures=True)
    whole = Row('in all')
    for row in rows:
        whole.calls += row.calls
        whole.runs += row.runs
    short = sum(len(row.short) for row in rows)
    print(f'{"in all":34} {whole.calls:6} {whole.runs:6} {short:6}   ({time.monotonic() - began:.0f} s)')
    for name, reason in skipped.items():
        status = prove_in_own_view(name, options) if os.geteuid() != 0 else NOT_HERE
        if status == NOT_HERE:
            print(f'skipped: {name} ({reason})', flush=True)
        else:
            short += status
    return 1 if short else 0


def prove_in_own_view(disk, options):
    """What an ordinary user may not mount for all, he may in a view of the system of his own."""
    command = ['unshare', '--user', '--map-root-user', '--mount', sys.executable, os.path.abspath(__file__), options.driver,
               '--disk', disk, '--every', str(options.every), '--workers', str(options.workers)]
    for name in options.only or []:
        command += ['--only', name]
    status = subprocess.run(command).returncode
    return status if status in [0, NOT_HERE] else 1


# --- leaving nothing behind ---

def stop(number, _):
    for end in ENDS:
        signal.signal(end, signal.SIG_IGN)  # what follows is not to be stopped
    sys.exit(128 + number)


def make_base(above):
    """A folder of this process's own, and what says that somebody is at work in it."""
    base = tempfile.mkdtemp(prefix=NAMED, dir=above)
    lock = open(os.path.join(base, 'making'), 'wb')
    fcntl.flock(lock, fcntl.LOCK_EX)
    os.rename(lock.name, os.path.join(base, 'lock'))
    return base, lock


def remove(base):
    """Takes away a folder and the disks in it, as soon as those who were at work there are gone."""
    until = time.monotonic() + PATIENCE
    while os.path.isdir(base):
        places.unmount_below(base, at_any_price=time.monotonic() > until)
        if not places.mounted_below(base):
            shutil.rmtree(base, ignore_errors=True)
        if os.path.isdir(base):
            if time.monotonic() > until + PATIENCE:
                print(f'{base} could not be removed', file=sys.stderr)
                return
            time.sleep(0.05)


def remove_left(above):
    """The same for those whose process was killed."""
    for name in os.listdir(above):
        try:
            with open(os.path.join(above, name, 'lock') if name.startswith(NAMED) else '', 'r+b') as lock:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                remove(os.path.join(above, name))
        except OSError:
            pass  # another's, or one that is at work


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument('driver')
    options.add_argument('--every', type=int, default=1)
    options.add_argument('--workers', type=int, default=2)
    options.add_argument('--only', action='append')
    options.add_argument('--disk')
    options = options.parse_args()
    # In memory where there is such a place: what waits for a disk would take hours otherwise.
    above = '/dev/shm' if os.access('/dev/shm', os.W_OK) else tempfile.gettempdir()
    remove_left(above)
    for end in ENDS:
        signal.signal(end, stop)
    base, lock = make_base(above)
    try:
        return prove(options, base)
    finally:
        remove(base)
        lock.close()


if __name__ == '__main__':
    sys.exit(main())
