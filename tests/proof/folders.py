"""The folder that an operation works in: what lies in it at the beginning, and what was made of it."""

import os
import shutil
import sqlite3
import stat
import subprocess

HIVE = 0x80000002
PROGRAM = 'home/.local/share/velmora/Program Files/Norvane软件/Velmora'
LIST = PROGRAM + '/List/zkPlayList.m3u'
LYRICS = PROGRAM + '/Lyrics'
CACHE = PROGRAM + '/Cache'
REGISTRY = 'home/.config/velmora/registry.sqlite'
REPORT = 'home/Documents/Norvane/Velmora/DelFilesLog/delFile.log'
TEMPORARY = 'run/velmora'
# The program's, but not there until it is needed.
LATER = ['home/.cache', 'home/.cache/velmora']
SETTINGS = 'SOFTWARE\\Norvane\\zkPlayer\\playSet'
PARAMETERS = 'SOFTWARE\\Norvane\\zkPlayer\\playParameters'
HOSTS = 'SOFTWARE\\Norvane\\zkPlayer\\hosts'

LISTED = ['music/Alpha.mp3', 'music/Beta.mp3', 'music/Gamma.mp3', 'music/Delta.mp3', 'music/晚风.mp3']


def sound(name):
    """What a track holds is not looked at; no two are alike, and none fits into one small write."""
    return (name.encode() + b' is sound. ') * 700


def lyric(words, end=b'\r\n'):
    return end.join(b'[00:0%d.0]' % at + word for at, word in enumerate(words)) + end


BESIDE = ['晚风'.encode('gbk'), b'second', b'', b'third']  # of a track whose lyric was not copied yet


class Entry:
    """A file, folder or link as it lies there."""

    def __init__(self, kind, mode=0, data=b''):
        self.kind, self.mode, self.data = kind, mode, data

    def __eq__(self, other):
        return isinstance(other, Entry) and vars(self) == vars(other)

    def __repr__(self):
        return f'<{self.kind} {self.mode:o} {self.data[:60]!r}{"..." if len(self.data) > 60 else ""} {len(self.data)}>'


def look(root):
    """Everything below a folder: {path: Entry}."""
    found = {}
    pending = [b'']
    base = os.fsencode(root)
    while pending:
        folder = pending.pop()
        with os.scandir(os.path.join(base, folder)) as entries:
            for entry in entries:
                below = os.path.join(folder, entry.name)
                info = entry.stat(follow_symlinks=False)
                name = os.fsdecode(below)
                if stat.S_ISDIR(info.st_mode):
                    found[name] = Entry('folder', stat.S_IMODE(info.st_mode))
                    pending.append(below)
                elif stat.S_ISLNK(info.st_mode):
                    found[name] = Entry('link', 0, os.readlink(entry.path))
                elif stat.S_ISREG(info.st_mode):
                    with open(entry.path, 'rb') as file:
                        found[name] = Entry('file', stat.S_IMODE(info.st_mode), file.read())
                else:
                    found[name] = Entry('other', stat.S_IMODE(info.st_mode))
    return found


def lay(root, tree):
    """Makes a folder hold exactly this."""
    if os.path.isdir(root):
        shutil.rmtree(root)
    os.makedirs(root)
    for name in sorted(tree):
        entry, path = tree[name], os.path.join(root, name)
        if entry.kind == 'folder':
            os.mkdir(path)
        elif entry.kind == 'link':
            try:
                os.symlink(entry.data, path)
            except OSError:
                pass  # this disk knows no links
        else:
            handle = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600)
            os.write(handle, entry.data)
            os.close(handle)
        if entry.kind != 'link':
            try:
                os.chmod(path, entry.mode)
            except PermissionError:
                pass  # nor modes


def environment(root):
    """Of the driver: homes in the folder, and nothing of the person who runs this."""
    return {'HOME': f'{root}/home', 'XDG_RUNTIME_DIR': f'{root}/run', 'LANG': 'C.UTF-8', 'TZ': 'UTC',
            'PATH': os.environ.get('PATH', '/usr/bin:/bin')}


def put(registry, key, name, text):
    """A text into the registry's file, by hand: as docs/registry.md tells it."""
    path = ''
    for part in key.split('\\'):
        path += ('\\' if path else '') + part
        registry.execute('INSERT OR IGNORE INTO keys (hive, folded, path) VALUES (?, ?, ?)',
                         (HIVE, path.upper(), path))
    number, = registry.execute('SELECT id FROM keys WHERE hive = ? AND folded = ?', (HIVE, key.upper())).fetchone()
    registry.execute('INSERT OR REPLACE INTO entries (key, folded, name, type, bytes, data) VALUES (?, ?, ?, 1, ?, ?)',
                     (number, name.upper(), name, len(text.encode()), text.encode()))


def prepare(root, driver, address):
    """The beginning: a player that has been used, beside things of the person that look like its own."""
    tree = {}

    def folder(*names, mode=0o755):
        for name in names:
            parts = name.split('/')
            for depth in range(1, len(parts) + 1):
                tree.setdefault('/'.join(parts[:depth]), Entry('folder', mode))

    def file(name, data, mode=0o644):
        folder(os.path.dirname(name))
        tree[name] = Entry('file', mode, data)

    folder('home', 'run/velmora', 'new', mode=0o700)
    folder(TEMPORARY, mode=0o700)
    for name in ['Alpha', 'Beta', 'Gamma', 'Delta', '晚风', 'new/Eta', 'new/Theta', 'more/Iota', 'more/Kappa']:
        file(f'music/{name}.mp3', sound(name))
    tree['music/Gamma.mp3'].mode = 0o444  # a deletion that fails by design
    file('music/Delta.lrc', lyric(BESIDE))
    file('music/cover.jpg', b'a picture')
    file('stick/Beta.mp3', sound('an older Beta'))
    file('stick/old.lrc', lyric([b'old']), 0o600)
    file('stick/holiday.txt', b'beach')
    file('lists/zkPlayList.m3u', b'/elsewhere/one.mp3\r\n/elsewhere/two.mp3\r\n')
    file('program/velmora', b'the program')
    file(LIST, b''.join(f'{root}/{name}\r\n'.encode() for name in LISTED), 0o640)
    file(LYRICS + '/Alpha.lrc', lyric([b'alpha']))
    file(LYRICS + '/Beta.lrc', lyric([b'one', '晚'.encode(), b'three']), 0o640)
    file(CACHE + '/SINGER NAME.MP3', sound('fetched before'))
    file(REPORT, b'the report before\r\n')
    # What only looks as if the program had left it.
    for place in [os.path.dirname(LIST), LYRICS, CACHE, 'music', 'stick', 'lists', TEMPORARY, 'home/.config/velmora']:
        file(place + '/.velmora-notes', b'mine')
        file(place + '/.velmora-1234-a', b'mine, too')
        file(place + '/zkPlayList.tmp', b'mine as well')
    tree['home/notes'] = Entry('link', 0, '../stick/holiday.txt')
    lay(root, tree)
    # Its own start makes the rest.
    subprocess.run([driver, 'look', root], env=environment(root), stdout=subprocess.DEVNULL, check=True)
    registry = sqlite3.connect(os.path.join(root, REGISTRY))
    with registry:
        put(registry, SETTINGS, 'isAutoPlay', '1')
        put(registry, SETTINGS, 'Language', '1')
        put(registry, SETTINGS, 'PlayMode', '0')
        put(registry, PARAMETERS, 'lastPlayFileName', f'{root}/music/Alpha.mp3')
        for host in ['lrcSearch', 'lrcSiteA', 'lrcSiteB', 'songSearch', 'maker']:
            put(registry, HOSTS, host, address)
    registry.close()
    return look(root)
