"""Who includes whom: floors, cycles of files, cycles of folders, and where the operating system is called."""
import os
import re

_INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]+)"|<([^>\n]+)>)', re.M)
_PLATFORM = ('src/host/platform', 'tests/host/platform')


def _folder(name):
    """src/host/dxf/reader.h: host/dxf; src/apps/tarnex/main.cpp: apps/tarnex; src/frame/module.h: frame."""
    parts = name.split('/')[1:-1]
    return '/'.join(parts[:2] if parts[:1] in (['host'], ['apps']) else parts[:1])


def _includes(source, known):
    """(line, name of the included file) of the quoted includes that the tree holds."""
    for match in _INCLUDE.finditer(source.text):
        if not match.group(1):
            continue
        beside = os.path.normpath(os.path.join(os.path.dirname(source.name), match.group(1)))
        for target in ('src/' + match.group(1), beside):
            if target in known:
                yield source.line(match.start()), target
                break


def _floor(folder, rules):
    for row in rules['floors']:
        if folder == row['folder'] or (row['folder'] == 'apps' and folder.startswith('apps')):
            return row
    return None


def _wrong_way(source, line, target, rules):
    here, there = _floor(_folder(source.name), rules), _floor(_folder(target), rules)
    if here is None or there is None or here is there:
        return None
    if there['floor'] <= here.get('reaches', here['floor'] - 1):
        return None
    return (source.name, line, f"{here['folder']} may not include from {there['folder']}: {target}")


def _cycle(edges):
    """One cycle of a graph {node: {node: (file, line)}} as a list of nodes, the first again at the end."""
    done, path, place = set(), [], {}
    for first in sorted(edges):
        stack = [(first, iter(sorted(edges[first])))] if first not in done else []
        if stack:
            place[first] = 0
            path.append(first)
        while stack:
            node, rest = stack[-1]
            follower = next(rest, None)
            if follower is None:
                stack.pop()
                path.pop()
                del place[node]
                done.add(node)
            elif follower in place:
                return path[place[follower]:] + [follower]
            elif follower not in done:
                place[follower] = len(path)
                path.append(follower)
                stack.append((follower, iter(sorted(edges.get(follower, ())))))
    return None


def check_includes(sources, rules):
    known = {s.name for s in sources}
    files, folders = {}, {}
    for source in sources:
        if not (source.under('src') and source.is_cpp):
            continue
        if _floor(_folder(source.name), rules) is None:
            yield (source.name, 1, 'this folder has no floor in tools/house_rules.json')
        for line, target in _includes(source, known):
            files.setdefault(source.name, {})[target] = (source.name, line)
            here, there = _folder(source.name), _folder(target)
            if here != there:
                folders.setdefault(here, {}).setdefault(there, (source.name, line))
            wrong = _wrong_way(source, line, target, rules)
            if wrong:
                yield wrong
    for what, edges in (('files', files), ('folders', folders)):
        cycle = _cycle(edges)
        if cycle:
            place = edges[cycle[0]][cycle[1]]
            yield (*place, f"cycle of {what}: " + ' -> '.join(cycle))


def check_system(sources, rules):
    """The operating system is called in host/platform; in src, files are not opened by hand either."""
    system = rules['system']
    everywhere = re.compile('|'.join(f'(?:{h})' for h in system['headers']))
    in_src = re.compile('|'.join(f'(?:{h})' for h in system['sourceHeaders']))
    calls = re.compile(r'(?<![\w.>:])(?:std::|::)?(' + '|'.join(system['sourceCalls']) + r')\s*\(')
    for source in sources:
        if not source.is_cpp or source.under(*_PLATFORM) or source.name in system['allowed']:
            continue
        for match in _INCLUDE.finditer(source.text):
            header = match.group(2) or ''
            if everywhere.fullmatch(header) or (source.under('src') and in_src.fullmatch(header)):
                yield (source.name, source.line(match.start()), f'<{header}> belongs in host/platform')
        if source.under('src'):
            for match in calls.finditer(source.code):
                yield (source.name, source.line(match.start()), f'{match.group(1)}() belongs in host/platform')
