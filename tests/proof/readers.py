"""What the program's files say: readers of their own, that share nothing with the program's."""

import os
import shutil
import sqlite3
import tempfile

import folders


def rows(data):
    """The rows of a play list, as the next start has to show them."""
    found = []
    for line in data.replace(b'\r\n', b'\n').replace(b'\r', b'\n').split(b'\n'):
        line = line.strip(b' ')
        if line.startswith(b'"'):
            line = line[1:]
        if line.endswith(b'"'):
            line = line[:-1]
        row = line.strip(b' ').decode('utf-8', 'surrogateescape')
        if row and row not in found:
            found.append(row)
    return found


def deletions(data):
    """{path: whether the report calls it deleted}, or None for what is no whole report."""
    lines = data.decode('utf-8', 'replace').split('\r\n')
    if len(lines) < 7 or lines[2] != 'DelFiles List:' or lines[1] != '-' * 66 or lines[4] != lines[1] or lines[-1]:
        return None
    entries = lines[6:-1]
    if len(entries) % 2 or not lines[5] == '':
        return None
    found = {}
    for what, path in zip(entries[::2], entries[1::2]):
        if not path.startswith('    '):
            return None
        if what == '【Successful】：':
            found[path[4:]] = True
        elif what.startswith('【Unsuccessful】： ---->') and what[-1] != '>':
            found[path[4:]] = False
        else:
            return None
    return found


class Registry:
    """The values of a registry file, read from a copy: {(key, name): (type, bytes, data)}."""

    def __init__(self, root, name=folders.REGISTRY, scratch=None):
        self.values, self.keys, self.trouble = {}, set(), None
        path = os.path.join(root, name)
        if not os.path.exists(path):
            return
        with tempfile.TemporaryDirectory(dir=scratch) as place:
            for suffix in ['', '-wal']:
                if os.path.exists(path + suffix):
                    shutil.copyfile(path + suffix, os.path.join(place, 'copy' + suffix))
            file = sqlite3.connect(os.path.join(place, 'copy'))
            file.text_factory = bytes
            try:
                sound = file.execute('PRAGMA integrity_check').fetchone()[0]
                if sound != b'ok':
                    self.trouble = sound.decode()
                    return
                if not file.execute("SELECT 1 FROM sqlite_master WHERE name = 'entries'").fetchone():
                    return  # nothing has been kept yet
                keys = {number: path.decode() for number, path in file.execute('SELECT id, path FROM keys')}
                self.keys = set(keys.values())
                for key, name, kind, count, data in file.execute('SELECT key, name, type, bytes, data FROM entries'):
                    self.values[keys[key], name.decode()] = (kind, count, data)
            except (sqlite3.DatabaseError, KeyError) as error:
                self.trouble = repr(error)
            finally:
                file.close()

    def text(self, key, name):
        value = self.values.get((key, name))
        return None if value is None else value[2].decode('utf-8', 'surrogateescape')
