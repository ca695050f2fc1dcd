"""Rules on single statements: mutable globals, printf patterns that aren't literals, tests that can't fail."""
import re

from . import cpp

_NO_VARIABLE = re.compile(
    r'(?:using|typedef|namespace|template|static_assert|friend|return|class|struct|union|enum|public|private|protected|'
    r'case|default|break|continue|goto|throw|delete|new|else|if|for|while|do|switch|co_\w+)\b')
_STORAGE = re.compile(r'\b(?:static|thread_local|extern|inline|constinit|mutable)\b')
_PATTERN_PLACE = {'printf': 0, 'vprintf': 0, 'formatted': 0, 'fprintf': 1, 'vfprintf': 1, 'sprintf': 1, 'vsprintf': 1,
                  'dprintf': 1, 'snprintf': 2, 'vsnprintf': 2}
_TEST = re.compile(r'\b(TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P|RC_GTEST_PROP|RC_GTEST_FIXTURE_PROP)\s*\(')
_CHECK = re.compile(r'\b(?:(?:EXPECT|ASSERT)_\w+|RC_ASSERT\w*|RC_FAIL|FAIL|ADD_FAILURE\w*)\s*\(')
_EMPTY_CHECK = re.compile(r'\b(?:EXPECT|ASSERT)_(?:TRUE\s*\(\s*true|FALSE\s*\(\s*false)\s*\)')
_PAIR_CHECK = re.compile(r'\b(?:EXPECT|ASSERT)_(?:EQ|STREQ|DOUBLE_EQ|FLOAT_EQ|NEAR|LE|GE)\s*\(')


def _declared(text):
    """The part of a statement that declares: up to its initialiser."""
    text = re.sub(r'\b(?:public|private|protected)\s*:', ' ', text)
    text = re.sub(r'\[\[[^\]]*\]\]', ' ', text)
    return re.split(r'(?<![=!<>])=(?!=)|\{', text, maxsplit=1)[0]


def _is_constant(declared):
    """`const int*` changes; `const int* const`, `constexpr` and references bound once don't."""
    if re.search(r'\bconstexpr\b', declared):
        return True
    without_arguments = declared
    while re.search(r'<[^<>]*>', without_arguments):
        without_arguments = re.sub(r'<[^<>]*>', ' ', without_arguments)
    if '*' in without_arguments:
        return bool(re.search(r'\*\s*const\b', without_arguments))
    return bool(re.search(r'\bconst\b', without_arguments)) or '&' in without_arguments


def _variable(statement):
    """Name of the changing variable that lives as long as the program, if the statement declares one."""
    declared = _declared(statement.text)
    text = declared.strip()
    if not text or _NO_VARIABLE.match(text) or _is_constant(text):
        return None
    inside = [kind for kind in statement.outer if kind not in ('namespace',)]
    if inside and not re.match(r'(?:inline\s+)?(?:static|thread_local|constinit)\b', text):
        return None
    plain = _STORAGE.sub(' ', text).strip()
    if re.search(r'\(', plain) and not re.match(r'[\w:<>,\s&*]+\s+\w+\s*\(\s*["\d]', plain):
        return None  # a function's declaration
    match = re.fullmatch(r'(?:[\w:]+|<.*>|[\s*&])+?[\s*&>](\w+)\s*(?:\[.*\]|\(.*)?', plain, re.S)
    return match.group(1) if match else None


def check_globals(sources, rules):
    allowed = {(row['file'], name) for row in rules['globals'] for name in row['names']}
    for source in sources:
        if not (source.is_cpp and source.under('src')):
            continue
        for statement in cpp.parse(source.code)[1]:
            name = _variable(statement)
            if name and (source.name, name) not in allowed:
                at = statement.start + cpp.first_word(statement.text)
                yield (source.name, source.line(at), f'mutable global or static: {name}')


def check_patterns(sources, _rules):
    call = re.compile(r'(?<![\w.>])(?:std::)?(' + '|'.join(_PATTERN_PLACE) + r')\s*\(')
    for source in sources:
        if not source.is_cpp or source.under('src/host/platform', 'tests/host/platform'):
            continue
        for match in call.finditer(source.code):
            parts, _ = cpp.arguments(source.code, match.end() - 1)
            place = _PATTERN_PLACE[match.group(1)]
            if place < len(parts) and parts[place].strip()[:1] not in ('"', ''):
                yield (source.name, source.line(match.start()),
                       f'{match.group(1)} with a pattern that is no literal: use formatChecked')


def _test_bodies(source):
    for match in _TEST.finditer(source.code):
        _, behind = cpp.arguments(source.code, match.end() - 1)
        opening = re.compile(r'\s*(?:\([^{;]*\)\s*)?\{').match(source.code, behind)
        if opening:
            brace = opening.end() - 1
            yield match, brace, cpp.arguments(source.code, brace)[1]


def _checking_functions(sources):
    """Names of the functions under tests/ that check something, themselves or through others."""
    bodies = {}
    for source in sources:
        if source.is_cpp and source.is_test:
            for name, _, brace, end in cpp.functions(source.code):
                bodies.setdefault(name.split(':')[-1], []).append(source.code[brace:end])
    for reserved in ('TEST', 'TEST_F', 'TEST_P', 'RC_GTEST_PROP', 'SetUp', 'TearDown'):
        bodies.pop(reserved, None)
    checking = {name for name, texts in bodies.items() if any(_CHECK.search(t) for t in texts)}
    while True:
        more = {name for name, texts in bodies.items() if name not in checking
                and any(_calls_one_of(t, checking) for t in texts)}
        if not more:
            return checking
        checking |= more


def _calls_one_of(text, names):
    return any(match.group(1) in names for match in re.finditer(r'(\w+)\s*(?:<[^;()]*>)?\(', text))


def check_tests(sources, _rules):
    checking = _checking_functions(sources)
    for source in sources:
        if not (source.is_cpp and source.is_test):
            continue
        for match, brace, end in _test_bodies(source):
            body, line = source.code[brace:end], source.line(match.start())
            if not _CHECK.search(body) and not _calls_one_of(body, checking):
                yield (source.name, line, 'a test without a check can\'t fail')
            if 'GTEST_SKIP' in body and 'TARNEX_LONG' not in source.text[brace:end]:
                yield (source.name, line, 'a test that skips itself can\'t fail')
            if 'DISABLED_' in source.code[match.start():brace]:
                yield (source.name, line, 'a disabled test can\'t fail')
        for match in _EMPTY_CHECK.finditer(source.code):
            yield (source.name, source.line(match.start()), 'a check that is always true')
        for match in _PAIR_CHECK.finditer(source.code):
            end = cpp.arguments(source.code, match.end() - 1)[1]
            parts = _written_arguments(source, match.end() - 1, end)
            if len(parts) > 1 and parts[0] == parts[1] and parts[0]:
                yield (source.name, source.line(match.start()), 'a value compared with itself')


def _written_arguments(source, opening, end):
    """The arguments with their literals, for literals tell two apart that are alike without them."""
    parts, at = [], opening + 1
    for part in cpp.arguments(source.code, opening)[0]:
        parts.append(re.sub(r'\s+', '', source.text[at:at + len(part)]))
        at += len(part) + 1
    return parts if at <= end + 1 else []
