"""C++ text as the checks see it: without comments and literals, and taken apart into blocks.

Knows no rule of the house. The measure is approximate: braces and keywords, no preprocessor, no templates."""
import bisect
import re

_LITERAL = re.compile(
    r'//[^\n]*|/\*.*?\*/'
    r'|(?:u8|[uUL])?R"(?P<tag>[^()\\\s]{0,16})\(.*?\)(?P=tag)"'
    r'|"(?:\\.|[^"\\\n])*"'
    r"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'", re.S)
_DIRECTIVE = re.compile(r'^[ \t]*#(?:[^\n\\]|\\\n|\\.)*', re.M)
_CONTROL = re.compile(r'\b(?:if|for|while|switch|catch|do|else|try|return|requires)\b')


def _blank(text):
    return re.sub(r'[^\n]', ' ', text)


def _bare_literal(match):
    text = match.group(0)
    if text.startswith('/'):
        return _blank(text)
    first = text.index('"') if '"' in text else 0
    quote = text[-1]
    return text[:first].replace('R', ' ') + quote + _blank(text[first + 1:-1]) + quote


def bare(text):
    """The text at its old places with comments and the inside of literals blanked."""
    return _LITERAL.sub(_bare_literal, text)


def without_directives(code):
    return _DIRECTIVE.sub(lambda m: _blank(m.group(0)), code)


class Lines:
    def __init__(self, text):
        self.starts = [0] + [m.end() for m in re.finditer('\n', text)]

    def at(self, offset):
        return bisect.bisect_right(self.starts, offset)


class Block:
    """A brace block: kind, the text before its brace, and where it runs."""

    def __init__(self, kind, head, start, brace):
        self.kind, self.head, self.start, self.brace, self.end = kind, head, start, brace, None


class Statement:
    """A declaration or statement that ends in a semicolon; `outer` are the kinds of the blocks around it."""

    def __init__(self, text, start, outer):
        self.text, self.start, self.outer = text, start, outer


def _kind(head, outer):
    head = head.strip()
    if re.search(r'\bnamespace\b[\w\s:]*$', head) or re.search(r'\bextern\s*"\s*"\s*$', head):
        return 'namespace'
    if re.search(r'[=,(\[{]\s*$|\breturn\s*$', head):
        return 'init'
    if re.match(r'(?:template\s*<.*>\s*)?(?:typedef\s+|static\s+|constexpr\s+|const\s+|inline\s+)*(?:enum|class|struct|union)\b', head, re.S) \
            and not re.search(r'\)\s*(?:const|noexcept|override|final|\s)*$', head):
        return 'class'
    if outer and outer[-1] not in ('namespace', 'class'):
        return 'block'
    if _member_init(head):
        return 'init'
    if re.search(r'\)', head) and not re.search(r'=\s*[^=)]*$', re.sub(r'operator\s*[=!<>]=?=?', '', head)):
        return 'function'
    return 'init'


def _member_init(head):
    """A brace in a constructor's list of members, `: a_{1}`, not the one of its body."""
    return re.search(r'\)\s*(?:noexcept\s*)?:(?!:)', head) and re.search(r'[\w>]\s*$', head) \
        and not re.search(r'\)\s*(?:const|noexcept|override|final|\s)*$', head)


def parse(code):
    """(blocks, statements) of bare code without directives."""
    blocks, statements, stack = [], [], []
    start = 0  # of the statement at hand
    for match in re.finditer(r'[{};]', code):
        at, sign = match.start(), match.group(0)
        outer = [b.kind for b in stack]
        if sign == '{':
            block = Block(_kind(code[start:at], outer), code[start:at], start, at)
            stack.append(block)
            blocks.append(block)
            if block.kind != 'init':
                start = at + 1
        elif sign == ';':
            if 'init' not in outer:
                statements.append(Statement(code[start:at], start, outer))
                start = at + 1
        elif stack:
            block = stack.pop()
            block.end = at
            # Behind an initialiser or a class the statement goes on to its semicolon.
            if block.kind not in ('init', 'class'):
                start = at + 1
            elif block.kind == 'class':
                start = at + 1
    return [b for b in blocks if b.end is not None], statements


def first_word(text):
    """Offset of the first character that isn't blank."""
    return len(text) - len(text.lstrip())


def functions(code):
    """(name, first offset, brace offset, end offset) of every function with a body."""
    found = []
    for block in parse(code)[0]:
        if block.kind != 'function' or _CONTROL.match(block.head.strip()):
            continue
        head = re.sub(r'\b(?:public|private|protected)\s*:', lambda m: ' ' * len(m.group(0)), block.head)
        name = re.search(r'([~\w:]+|operator\s*\S+)\s*\(', head)
        found.append((name.group(1) if name else '?', block.start + first_word(head), block.brace, block.end))
    return found


def arguments(code, opening):
    """The arguments of the call whose parenthesis opens at `opening`, and the offset behind its end."""
    depth, start, parts = 0, opening + 1, []
    for at in range(opening, len(code)):
        sign = code[at]
        if sign in '([{':
            depth += 1
        elif sign in ')]}':
            depth -= 1
            if depth == 0:
                parts.append(code[start:at])
                return parts, at + 1
        elif sign == ',' and depth == 1:
            parts.append(code[start:at])
            start = at + 1
    return parts, len(code)
