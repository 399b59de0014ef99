"""What each operation may make of the folder: which files are its own, and which versions of each are whole.

Everything that an operation does not name has to stay as it was, to the byte.
"""

import os

import folders
import readers
import server
from folders import CACHE, LIST, LYRICS, PARAMETERS, REGISTRY, REPORT, SETTINGS, TEMPORARY

CRITICAL = 1


class After:
    """What a run left: the tree, the registry, and what the driver told (None where it was killed)."""

    def __init__(self, world, tree, registry, report):
        self.world, self.tree, self.registry, self.report = world, tree, registry, report

    def data(self, path):
        entry = self.tree.get(path)
        return entry.data if entry and entry.kind == 'file' else None

    def told(self, part):
        return any(part in text for _, _, text in self.report['boxes'])

    def failed(self):
        return any(icon == CRITICAL for icon, _, _ in self.report['boxes'])


class Operation:
    """`files`: {path: [versions, oldest first]}, None for "not there". `settings`: {(key, name): [versions]},
    in the order in which they are written. `check(after)` tells what else is wrong."""

    def __init__(self, name, files=None, settings=None, check=None, folders=(), passing=(), together=(), first=None,
                 lasting=None,
                 steps=False):
        self.name = name
        self.files = files or (lambda world: {})
        self.settings = settings or (lambda world: {})
        self.check = check
        self.folders = set(folders)      # that may be new
        self.passing = set(passing)      # files that the next start, or this run's end, takes away
        self.together = set(together)    # settings that go in one
        self.first = first               # changes the beginning: first(tree)
        self.steps = steps               # it saves the list often, and waits for the last save alone
        self.lasting = lasting           # what it waits for on the disk; all of its files, where it says nothing else

    def __str__(self):
        return self.name


def listed(world, *names):
    return b''.join(f'{world.root}/{name}\r\n'.encode() for name in names)


def whole(world):
    return listed(world, *folders.LISTED)


ETA, THETA = 'music/new/Eta.mp3', 'music/new/Theta.mp3'
ALPHA, BETA, GAMMA, DELTA, WIND = folders.LISTED
RENAMED = 'music/晚霞.mp3'
OTHER = 'lists/zkPlayList.m3u'


def text(value):
    return (1, len(value.encode()), value.encode())


def last_played(*tracks):
    return lambda world: {(PARAMETERS, 'lastPlayFileName'): [text(f'{world.root}/{track}') for track in tracks]}


def one_more(world):
    return {LIST: [whole(world), whole(world) + listed(world, ETA)]}


# --- the list and the tracks ---

def after_reload(after):
    now, old = after.data(LIST), after.data(LIST + '.old')
    if now in one_more(after.world)[LIST]:
        return
    # It could not be read to its end: what was not read lies in the file that was kept.
    taken = readers.rows(now)[:-1]
    if taken != readers.rows(whole(after.world))[:len(taken)]:
        yield 'the list holds rows that were never in it'
    if old != whole(after.world):
        yield 'rows that were not read are lost'


def reloaded(world):
    parts = [listed(world, *folders.LISTED[:count], ETA) for count in range(len(folders.LISTED))]
    return {LIST: [whole(world)] + parts + [whole(world) + listed(world, ETA)], LIST + '.old': [None, whole(world)]}


ELSEWHERE = b'/elsewhere/one.mp3\r\n/elsewhere/two.mp3\r\n'


def after_other_list(after):
    if after.data(OTHER) != ELSEWHERE and after.data(OTHER + '.old') != ELSEWHERE:
        yield 'the list that lay in the folder is lost'


def sound_of(path):
    return folders.sound(os.path.basename(path)[:-4])


def gone_by_deletion(world):
    """The second of the three has no write bit, where the disk knows of such."""
    return [path for path in [BETA, GAMMA, DELTA] if world.template[path].mode & 0o222]


def deleted(world):
    def report(data):
        return readers.deletions(data) is not None
    return {LIST: [whole(world), listed(world, ALPHA, GAMMA, DELTA, WIND), listed(world, ALPHA, DELTA, WIND),
                   listed(world, ALPHA, WIND)],
            **{path: [sound_of(path), None] for path in gone_by_deletion(world)},
            REPORT: [b'the report before\r\n', report]}


def after_deletion(after):
    report = after.data(REPORT) or b''
    there = {path: path in after.tree for path in [BETA, GAMMA, DELTA]}
    entries = readers.deletions(report)
    if entries is not None:
        if entries != {f'{after.world.root}/{path}': not is_there for path, is_there in there.items()}:
            yield f'the report does not tell what happened: {entries}'
    rows = readers.rows(after.data(LIST))
    for path in gone_by_deletion(after.world):
        if after.report is None and f'{after.world.root}/{path}' not in rows and there[path]:
            yield f'{path} left the list before it was deleted'
    if after.report is not None and entries is None and after.report['opened']:
        yield 'the report of an earlier deletion is shown for this one'


def renamed(world):
    return {LIST: [whole(world), listed(world, ALPHA, RENAMED, GAMMA, DELTA, WIND)],
            BETA: [folders.sound('Beta'), None], RENAMED: [None, folders.sound('Beta')]}


def after_renaming(after):
    old, new = BETA in after.tree, RENAMED in after.tree
    if not old and not new:
        yield 'the file is gone under both names'
    if after.report is None:
        return
    if old and new:
        yield 'the file has two names'
    if old and not after.failed():
        yield 'the file was not renamed, and nobody was told'
    if new and not old and after.failed():
        yield 'the file was renamed, and an error told'


def copied(world):
    return {'stick/Alpha.mp3': [None, folders.sound('Alpha')],
            'stick/Beta.mp3': [folders.sound('an older Beta'), folders.sound('Beta')]}


def after_copying(after):
    for path, name in [('stick/Alpha.mp3', 'Alpha'), ('stick/Beta.mp3', 'Beta')]:
        if after.report is not None and after.data(path) != folders.sound(name) and not after.failed():
            yield f'{path} was not copied, and nobody was told'


# --- lyrics ---

EDITED = '[Ti:霞]\r\n[Ar:]\r\n[Al:]\r\n[By:]\r\n[00:01.0]changed\r\n[00:01.0]晚\r\n[00:02.0]three\r\n\r\n'.encode()


def lyric_saved(path, before, spelt=None):
    def check(after):
        if after.report is None:
            return
        saved = EDITED in [after.data(path), after.data(spelt)]
        if after.told('已成功保存') and not saved:
            yield 'told as saved, and not saved'
        if not saved and not after.told('保存失败'):
            yield 'not saved, and nobody was told'
    # Where it cannot be told what lies there, that is kept first, or the new one stands beside it as the program spells it.
    beside = {spelt: [None, EDITED]} if spelt else {}
    return {'files': lambda world: {path: [before, EDITED], path + '.old': [None, before], **beside}, 'check': check}


def copied_lyric(world):
    lines = [line for line in folders.lyric(folders.BESIDE).split(b'\r\n') if line.strip(b' ')]
    return {LYRICS + '/Delta.Lrc': [None, b''.join(line + b'\r\n' for line in lines)]}


# --- settings ---

def applied(world):
    numbers = {'AutoUpadate': ('', '0'), 'isAutoPlay': ('1', '1'), 'PlayMode': ('0', '2'), 'Language': ('1', '2'),
               'VideoInterface': ('', '1')}
    values = {}
    for name, (old, new) in numbers.items():
        # Set by hand with its length, by the program with its terminating zero.
        values[SETTINGS, name] = [text(old) if old else None, (1, 2, new.encode())]
    program = f'{world.root}/{folders.PROGRAM}'
    for name, folder in [('LrcSaveFolder', f'{world.root}/new/lyrics'), ('PlayListSaveFolder', program + '/List'),
                         ('PlayCacheSaveFolder', f'{world.root}/new/cache')]:
        values[SETTINGS, name] = [None, text(folder)]
    values[SETTINGS, 'Desktop_Lrc_AutoOpen'] = [None, (1, 1, b'1')]
    for prefix in ['Desktop', 'Other']:
        for stem in ['Bold', 'Charset', 'Italic', 'Name', 'Size', 'Strikethrough', 'Underline', 'Weight', 'ForeColor',
                     'BackColor']:
            values[SETTINGS, f'{prefix}_Lrc_{stem}'] = [None, whole_font_value]
    return values


def whole_font_value(value):
    kind, count, data = value
    return (kind == 4 and count == 4 and isinstance(data, int)) or (kind == 1 and len(data) == count > 0)


def restored(world):
    return {(SETTINGS, name): [text(value), None]
            for name, value in [('isAutoPlay', '1'), ('Language', '1'), ('PlayMode', '0')]}


MARKER = TEMPORARY + '/RestartZkPlayer.tmp'


def after_restoring(after):
    gone = not any(key == SETTINGS for key, _ in after.registry.values)
    if after.report is None:
        return
    if after.report['opened'] and (not gone or MARKER not in after.tree):
        yield 'started anew with the settings of before, or without the marker'
    if not after.report['opened'] and not after.failed():
        yield 'not restored or not started anew, and nobody was told'


def nothing_yet(tree):
    for name in [name for name in tree if name.startswith('home/') or name.startswith('run/')]:
        del tree[name]


def everything_new(world):
    return {}


GARBAGE = b'SQLite format 3\0' + b'this is no database any more. ' * 400


def damaged(tree):
    tree[REGISTRY].data = GARBAGE
    for suffix in ['-wal', '-shm']:
        tree.pop(REGISTRY + suffix, None)


def after_repair(after):
    kept = [name for name, entry in after.tree.items() if entry.data == GARBAGE]
    if not kept:
        yield 'the damaged file was not kept'


# --- the network ---

FETCHED = CACHE + '/SINGER NAME.MP3'


def fetched_song(world):
    # By its design a transfer removes what it replaces, and what it has received stays.
    return {FETCHED: [folders.sound('fetched before'), None, server.SONG.startswith, server.SONG]}


def after_fetched_song(after):
    # Writes that fail are not examined by its design: what is told is of the whole transfer.
    if after.report is not None and '下载成功' in after.report['songTitle'] and after.data(FETCHED) in [
            None, folders.sound('fetched before')]:
        yield 'told as fetched, and the file of before is there, or none'


BETA_LYRIC = folders.lyric([b'one', '晚'.encode(), b'three'])


def after_fetched_lyric(after):
    if after.report is None:
        return
    # Where it cannot be told how the old one is spelt, the new one stands beside it.
    there = server.LYRIC in [after.data(LYRICS + '/Beta.lrc'), after.data(LYRICS + '/Beta.LRC')]
    if '下载成功' in after.report['lyricLabel'] and not there:
        yield 'told as fetched, and not there'
    if not there and not after.report['raised'] and not any(
            part in after.report['lyricLabel'] for part in ['无法下载', '无法创建文件']):
        yield 'not fetched, and nobody was told'


SUCCESSOR = 'program/zkPlayer [9.0.0].exe'


def after_update(after):
    if after.report is None:
        return
    there = after.data(SUCCESSOR) == server.PROGRAM
    if after.report['opened'] and not there:
        yield 'a successor is started that is not whole'
    if after.told('9.0.0') and not there and not after.failed():
        yield 'the program was not fetched, and nobody was told'


ALL = [
    Operation('save the list', one_more),
    Operation('open a new file', one_more, last_played(THETA, ETA), passing=[LYRICS + '/zkPlay.tmp']),
    Operation('add a file', one_more),
    Operation('add a folder', lambda world: {LIST: [whole(world), whole(world) + listed(world, ETA),
                                                   whole(world) + listed(world, ETA, THETA)]}),
    Operation('drop', lambda world: {LIST: [
        whole(world), listed(world, ETA) + whole(world),
        whole(world) + listed(world, 'music/more/Iota.mp3', 'music/more/Kappa.mp3'),
        listed(world, ETA) + whole(world) + listed(world, 'music/more/Iota.mp3', 'music/more/Kappa.mp3')]}),
    Operation('remove rows', lambda world: {LIST: [whole(world), listed(world, ALPHA, GAMMA, DELTA, WIND),
                                                  listed(world, ALPHA, GAMMA, WIND)]}, steps=True),
    Operation('remove all rows', lambda world: {LIST: [whole(world), b'']}),
    Operation('reload and add', reloaded, check=after_reload),
    Operation('save over another list', lambda world: {OTHER: [ELSEWHERE, whole(world) + listed(world, ETA)],
                                                      OTHER + '.old': [None, ELSEWHERE]}, check=after_other_list),
    Operation('delete files', deleted, check=after_deletion, lasting=[LIST, REPORT],
              steps=True),
    Operation('rename a file', renamed, check=after_renaming),
    Operation('copy files', copied, check=after_copying),
    Operation('save a lyric', **lyric_saved(LYRICS + '/Beta.lrc', BETA_LYRIC, LYRICS + '/Beta.Lrc')),
    Operation('save a lyric as a new file', **lyric_saved('stick/new.lrc', None)),
    Operation('save a lyric over a file', **lyric_saved('stick/old.lrc', folders.lyric([b'old']))),
    Operation('copy a lyric', copied_lyric, last_played(ALPHA, DELTA), passing=[LYRICS + '/zkPlay.tmp']),
    Operation('apply the settings', settings=applied, folders=['new/lyrics', 'new/cache']),
    Operation('restore the defaults', lambda world: {MARKER: [None, b'Velmora 2011', b'']}, restored, after_restoring,
              passing=[MARKER], together=[SETTINGS], lasting=[]),
    Operation('end'),
    Operation('start'),
    Operation('first start', first=nothing_yet),
    Operation('repair the registry', first=damaged, check=after_repair),
    Operation('fetch a song', fetched_song, check=after_fetched_song, passing=[CACHE + '/zkPlay.tmp'], lasting=[]),
    Operation('fetch a lyric', lambda world: {LYRICS + '/Beta.lrc': [BETA_LYRIC, server.LYRIC],
                                              LYRICS + '/Beta.lrc.old': [None, BETA_LYRIC],
                                              LYRICS + '/Beta.LRC': [None, server.LYRIC]},
              last_played(ALPHA, BETA), check=after_fetched_lyric, passing=[LYRICS + '/zkPlay.tmp']),
    Operation('update', lambda world: {SUCCESSOR: [None, server.PROGRAM]}, check=after_update,
              passing=[TEMPORARY + '/zkPlay.tmp', TEMPORARY + '/zkPlayerUpdate.tmp']),
    Operation('welcome page', passing=[TEMPORARY + '/zkPlay.tmp', TEMPORARY + '/zkPlayerWelcome.tmp']),
]
