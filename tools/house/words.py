"""Words that don't belong in the tree, in texts and in file names."""
import re


def _patterns(rows):
    return [(re.compile(row['pattern'], re.I), row['why']) for row in rows]


def check_words(sources, rules):
    words, names = _patterns(rules['words']), _patterns(rules['names'])
    for source in sources:
        for pattern, why in names:
            if pattern.search(source.name):
                yield (source.name, 1, f'file name: {why}')
        if source.is_binary:
            continue
        for pattern, why in words:
            for match in pattern.finditer(source.text):
                yield (source.name, source.line(match.start()), f'"{match.group(0)}": {why}')
