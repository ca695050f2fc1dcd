"""Sizes: lengths of files and functions, and the share of the tests."""
import ast

from . import cpp


def _python_functions(source):
    try:
        tree = ast.parse(source.text)
    except SyntaxError as error:
        return [('?', error.lineno or 1, 0)]
    kinds = (ast.FunctionDef, ast.AsyncFunctionDef)
    return [(n.name, n.lineno, n.end_lineno - n.lineno + 1) for n in ast.walk(tree) if isinstance(n, kinds)]


def function_lengths(source):
    """(name, first line, lines) of every function."""
    if source.name.endswith('.py'):
        return _python_functions(source)
    if not source.is_cpp:
        return []
    found = []
    for name, start, _, end in cpp.functions(source.code):
        first = source.line(start)
        found.append((name, first, source.line(end) - first + 1))
    return found


def code_lines(source):
    return sum(1 for line in source.text.split('\n') if line.strip())


def test_share(sources):
    tests = sum(code_lines(s) for s in sources if s.is_code and s.is_test)
    every = sum(code_lines(s) for s in sources if s.is_code)
    return tests, every


def check_sizes(sources, rules):
    sizes = rules['sizes']
    lengths = []
    for source in sources:
        if not source.is_code:
            continue
        lines = source.text.count('\n') + (not source.text.endswith('\n'))
        if lines > sizes['fileLines']:
            yield (source.name, 1, f"{lines} lines, a file has at most {sizes['fileLines']}")
        for name, line, length in function_lengths(source):
            lengths.append((length, source.name, line, name))
            if length > sizes['functionLines']:
                yield (source.name, line, f"{name}: {length} lines, a function has at most {sizes['functionLines']}")
    yield from _tails(sorted(lengths, reverse=True), sizes)
    tests, every = test_share(sources)
    share = tests / every if every else 0
    bounds = sizes['testShare']
    if not bounds['from'] <= share <= bounds['to']:
        yield ('tests', 1, f"{share:.1%} of the code lines are tests ({tests} of {every}), "
                           f"it should be {bounds['from']:.0%} to {bounds['to']:.0%}")


def _tails(lengths, sizes):
    for tail in sizes['tails']:
        long = [row for row in lengths if row[0] >= tail['below']]
        if len(long) <= (1 - tail['share']) * len(lengths):
            continue
        worst = ', '.join(f'{name} ({length})' for length, _, _, name in long[:5])
        yield (long[0][1], long[0][2], f"{len(long)} of {len(lengths)} functions have {tail['below']} lines or more, "
                                       f"at most {1 - tail['share']:.0%} may; the longest: {worst}")


def summary(sources):
    lengths = sorted(row[2] for s in sources if s.is_code for row in function_lengths(s))
    tests, every = test_share(sources)
    if not lengths or not every:
        return 'no code'
    at = lambda share: lengths[min(int(share * len(lengths)), len(lengths) - 1)]
    return (f'{every} lines of code, {tests / every:.1%} of them tests; {len(lengths)} functions, '
            f'9 in 10 within {at(0.9)} lines, 99 in 100 within {at(0.99)}, the longest {lengths[-1]}')
