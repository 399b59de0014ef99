"""Disks of other kinds, mounted for the proof where the machine lets it."""

import os
import subprocess


def ask(*command):
    # The tools of disks lie where an ordinary user's shell does not look.
    path = os.environ.get('PATH', '') + ':/usr/sbin:/sbin'
    done = subprocess.run(command, env={**os.environ, 'PATH': path}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        said = done.stdout.strip().splitlines()
        raise OSError(said[0] if said else f'{command[0]} ended with {done.returncode}')


def privileged(*command):
    """What only the superuser may: as such, or by a sudo that asks for no password."""
    if os.geteuid() == 0:
        ask(*command)
        return
    try:
        ask('sudo', '-n', *command)
    except OSError as error:
        raise OSError('only the superuser may') from error


def owner():
    return f'uid={os.geteuid()},gid={os.getegid()}'


def image(folder, size, *maker):
    path = os.path.join(folder, 'image')
    with open(path, 'wb') as file:
        file.truncate(size)
    ask(*maker, path)
    return path


def small(folder, mount):
    privileged('mount', '-t', 'tmpfs', '-o', f'size=2m,mode=755,{owner()}', 'proof', mount)


def vfat(folder, mount):
    privileged('mount', '-t', 'vfat', '-o', f'loop,utf8=1,umask=022,{owner()}', image(folder, 1 << 26, 'mkfs.vfat'), mount)


def exfat(folder, mount):
    privileged('mount', '-t', 'exfat-fuse', '-o', f'loop,umask=022,{owner()}', image(folder, 1 << 26, 'mkfs.exfat'), mount)


def owned(folder, mount):
    below = os.path.join(folder, 'below')
    os.mkdir(below)
    ask('bindfs', '--no-allow-other', '--chmod-deny', '--chown-deny', below, mount)


class Place:
    def __init__(self, name, maker, is_small=False):
        self.name, self.maker, self.is_small = name, maker, is_small

    def make(self, folder):
        """Mounts it in a folder of its own; answers where. Raises OSError where this machine cannot."""
        mount = os.path.join(folder, 'mount')
        os.makedirs(mount)
        self.maker(folder, mount)
        if not os.path.ismount(mount):
            raise OSError('nothing was mounted')
        return mount


ALL = [
    Place('a tmpfs that is full', small, is_small=True),
    Place('vfat: no modes, no case', vfat),
    Place('exfat by FUSE: no links, no case', exfat),
    Place('FUSE that refuses modes', owned),
]


def mounted_below(folder):
    with open('/proc/self/mounts', encoding='utf-8') as mounts:
        points = [line.split()[1].encode().decode('unicode_escape') for line in mounts]
    return [point for point in reversed(points) if point.startswith(folder + '/')]


def unmount_below(folder, at_any_price=False):
    """Leaves what somebody is at work in, or takes that out of sight: the disk goes with the last who is."""
    for point in mounted_below(folder):
        try:
            privileged('umount', *(['-l'] if at_any_price else []), point)
        except OSError:
            subprocess.run(['fusermount', '-u', *(['-z'] if at_any_price else []), point], stderr=subprocess.DEVNULL,
                           check=False)


class Filler:
    """Takes all room of a small disk but some pages."""

    def __init__(self, mount):
        self.path = os.path.join(mount, 'filler')

    def fill(self, free_pages):
        page = b'\0' * 4096
        with open(self.path, 'wb', buffering=0) as file:
            try:
                while file.write(page) == len(page):
                    pass
            except OSError:
                pass
            file.truncate(max(file.tell() // 4096 - free_pages, 0) * 4096)

    def clear(self):
        if os.path.exists(self.path):
            os.unlink(self.path)
