#!/usr/bin/env python3
"""Holds every #include against the table of rooms in docs/internals.md: check_rooms.py SOURCES"""
import fnmatch
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
rooms, faults = {}, []
table = (root / 'docs/internals.md').read_text()
for room, patterns in re.findall(r'^\| `(\S+)` \| [^|]+ \| ([^|]*) ?\|$', table, re.MULTILINE):
    rooms[room] = {room}
    for pattern in re.findall(r'`(\S+)`', patterns):
        above = fnmatch.filter(list(rooms)[:-1], pattern)
        rooms[room].update(above)
        if not above:
            faults.append(f'docs/internals.md: no room above {room} is {pattern}')


def room_of(path):
    return next((str(p) for p in (path, *path.parents) if str(p) in rooms), None)


for source in sorted(root.rglob('*.[ch]')) + sorted(root.rglob('*.cpp')):
    path = source.relative_to(root)
    if path.parts[0].startswith(('build', '.')):
        continue
    if not room_of(path):
        faults.append(f'{path}: its folder is no room of docs/internals.md')
        continue
    includes = re.findall(r'^ *# *include (["<])(\S+)[">]', source.read_text(), re.MULTILINE)
    for kind, name in includes:
        if kind == '<':
            name = 'include/' + name  # of ours or else of a library
        if (root / name).is_file():
            if room_of(pathlib.Path(name)) not in rooms[room_of(path)]:
                faults.append(f'{path}: its room may not include {name}')
        elif kind == '"':
            faults.append(f'{path}: {name} is not written from the top folder')

sys.exit('\n'.join(faults) or 0)
