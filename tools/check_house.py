#!/usr/bin/env python3
"""Checks the rules of the house (docs/architecture.md) on every file that git keeps or would keep.

usage: check_house.py [--root FOLDER]

Prints one line "file:line: what is wrong" per fault and a summary; exit code 1 when there is a fault.
The rules' figures and lists stand in house_rules.json beside this script."""
import argparse
import json
import os
import sys

sys.dont_write_bytecode = True  # the tree stays as it was
HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)

from house import code, layers, sizes, tree, words  # noqa: E402

CHECKS = (layers.check_includes, layers.check_system, code.check_globals, code.check_patterns, code.check_tests,
          sizes.check_sizes, words.check_words)


def main():
    options = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    options.add_argument('--root', default=os.path.dirname(HERE), help='folder to check, the project by default')
    root = options.parse_args().root
    with open(os.path.join(HERE, 'house_rules.json'), encoding='utf-8') as file:
        rules = json.load(file)
    sources = tree.load(root)
    faults = sorted({fault for check in CHECKS for fault in check(sources, rules)})
    for name, line, what in faults:
        print(f'{name}:{line}: {what}')
    print(f'house rules: {len(faults)} faults in {len(sources)} files; {sizes.summary(sources)}')
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
