"""What a power cut can leave, worked out from what an operation asked of the file system.

Only what was synced is sure to be there afterwards: the content of a file as it was when the file was last synced, the
names in a folder as they were when the folder was. Everything else may have reached the disk or not, so that for each
moment of an operation there are these worlds:

  nothing  of what was not synced: neither contents nor names
  names    all names, but only synced contents (a new file that was never synced is empty)
  data     all contents, but only synced names
  all      both: what a process that is killed leaves

Of the steps of an operation that saves often only the content is waited for, and on ext4 not that either: there a file
that takes another's name has its content on the disk before the name.
"""

import os
import re

from folders import Entry

CALL = re.compile(r'\d+ +(\w+)\((.*)\) += (-?\d+)')
TEXT = re.compile(r'"((?:\\x[0-9a-f]{2})*)"')
# What has to be seen to follow an operation. Reading changes nothing.
FOLLOWED = ('openat open creat close write pwrite64 lseek ftruncate rename renameat renameat2 link linkat unlink unlinkat '
            'mkdir mkdirat rmdir fsync fdatasync fchmod dup fcntl').split()
# Changes that nothing here understands: none may come.
STRANGE = ('writev pwritev pwritev2 copy_file_range sendfile fallocate truncate symlink symlinkat sync_file_range '
           'mknod mknodat').split()


class File:
    def __init__(self, mode, data):
        self.mode, self.data, self.synced = mode, data, data
        self.replaced = False  # it took another file's name


class Model:
    """Files and names, as they are and as they are sure to be. Paths are relative to the root."""

    def __init__(self, root, tree, descriptors, ordered):
        self.root, self.ordered = root, ordered
        self.fixed = {path: entry for path, entry in tree.items() if entry.kind == 'link'}
        self.names = {path: File(entry.mode, entry.data) for path, entry in tree.items() if entry.kind == 'file'}
        self.names.update({path: File(entry.mode, None) for path, entry in tree.items() if entry.kind == 'folder'})
        self.sure = dict(self.names)
        self.open = {}  # descriptor: [file or None, path or None, position, appends]
        for number, path in descriptors.items():
            below = self.below(path)
            self.open[number] = [self.names.get(below), below, 0, False]

    def below(self, path):
        base = self.root + '/'
        return os.path.normpath(path[len(base):]) if path.startswith(base) else None

    # --- the calls ---

    def take(self, line):
        """Follows one line of a trace. Whether something changed."""
        found = CALL.match(line)
        if not found or int(found.group(3)) < 0:
            return False
        name, arguments, result = found.group(1), found.group(2), int(found.group(3))
        if name in STRANGE:
            raise ValueError(f'a call that cannot be followed: {line[:100]}')
        texts = [bytes.fromhex(text.replace('\\x', '')) for text in TEXT.findall(arguments)]
        rest = TEXT.sub('@', arguments).split(', ')
        return bool(getattr(self, 'on_' + {'open': 'openat', 'creat': 'openat', 'renameat': 'rename', 'renameat2': 'rename',
                                           'link': 'linkat', 'unlinkat': 'unlink', 'mkdirat': 'mkdir',
                                           'fdatasync': 'fsync'}.get(name, name))(texts, rest, result))

    def place(self, text):
        return self.below(os.fsdecode(text))

    def on_openat(self, texts, rest, result):
        path, flags = self.place(texts[0]), next((part for part in rest if part.startswith('O_')), '')
        file = self.names.get(path) if path else None
        changed = False
        if 'O_TMPFILE' in flags:
            file, path = File(int(rest[-1], 8), b''), None
            changed = True
        elif path and file is None and 'O_CREAT' in flags:
            file = self.names[path] = File(int(rest[-1], 8) & ~0o022, b'')
            file.synced = b''
            changed = True
        elif file and 'O_TRUNC' in flags:
            file.data, changed = b'', True
        self.open[result] = [file, path, 0, 'O_APPEND' in flags]
        return changed

    def on_close(self, texts, rest, result):
        self.open.pop(int(rest[0]), None)

    def on_dup(self, texts, rest, result):
        self.open[result] = self.open.get(int(rest[0]), [None, None, 0, False])

    def on_fcntl(self, texts, rest, result):
        if len(rest) > 1 and rest[1].startswith('F_DUPFD'):
            self.on_dup(texts, rest, result)

    def put(self, file, at, data):
        file.data = file.data[:at].ljust(at, b'\0') + data + file.data[at + len(data):]

    def on_write(self, texts, rest, result):
        opened = self.open.get(int(rest[0]))
        if not opened or not opened[0] or opened[0].data is None:
            return False
        file, _, at, appends = opened
        at = len(file.data) if appends else at
        self.put(file, at, texts[0][:result])
        opened[2] = at + result
        return True

    def on_pwrite64(self, texts, rest, result):
        opened = self.open.get(int(rest[0]))
        if not opened or not opened[0]:
            return False
        self.put(opened[0], int(rest[3]), texts[0][:result])
        return True

    def on_lseek(self, texts, rest, result):
        if int(rest[0]) in self.open:
            self.open[int(rest[0])][2] = result

    def on_ftruncate(self, texts, rest, result):
        file = self.open.get(int(rest[0]), [None])[0]
        if file:
            size = int(rest[1])
            file.data = file.data[:size].ljust(size, b'\0')
        return file is not None

    def on_fchmod(self, texts, rest, result):
        file = self.open.get(int(rest[0]), [None])[0]
        if file:
            file.mode = int(rest[1], 8)

    def on_rename(self, texts, rest, result):
        old, new = self.place(texts[0]), self.place(texts[1])
        if old in self.names:
            replaced = new in self.names
            self.names[new] = self.names.pop(old)
            self.names[new].replaced = replaced
            for opened in self.open.values():
                if opened[1] == old:
                    opened[1] = new
            return True

    def on_linkat(self, texts, rest, result):
        itself = re.match(rb'/proc/self/fd/(\d+)$', texts[0])
        file = self.open[int(itself.group(1))][0] if itself else self.names.get(self.place(texts[0]))
        self.names[self.place(texts[1])] = file
        return True

    def on_unlink(self, texts, rest, result):
        return self.names.pop(self.place(texts[0]), None) is not None

    on_rmdir = on_unlink

    def on_mkdir(self, texts, rest, result):
        path = self.place(texts[0])
        if path:
            self.names[path] = File(int(rest[-1], 8) & ~0o022, None)
        return path is not None

    def on_fsync(self, texts, rest, result):
        file, path = self.open.get(int(rest[0]), [None, None])[:2]
        if file is None:
            return False
        if file.data is not None:
            file.synced = file.data
            return True
        # A folder: its names, and that it is there itself.
        for name in [name for name in self.sure if os.path.dirname(name) == path]:
            del self.sure[name]
        self.sure.update({name: one for name, one in self.names.items() if os.path.dirname(name) == path})
        return True

    # --- the worlds ---

    def worlds(self):
        yield 'nothing', self.world(self.sure, synced=True)
        yield 'names', self.world(self.names, synced=True)
        yield 'data', self.world(self.sure, synced=False)
        yield 'all', self.world(self.names, synced=False)

    def world(self, names, synced):
        tree = dict(self.fixed)
        for path, file in names.items():
            if path.endswith('-shm'):
                continue  # never read from a disk
            folder = os.path.dirname(path)
            while folder:  # a name in a folder that did not come to be there is not there either
                if folder not in names:
                    break
                folder = os.path.dirname(folder)
            if folder:
                continue
            tree[path] = (Entry('folder', file.mode) if file.data is None
                          else Entry('file', file.mode, file.synced if synced and not (self.ordered and file.replaced)
                                else file.data))
        return tree
