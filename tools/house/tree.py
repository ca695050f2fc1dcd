"""The files that the checks look at: what git keeps or would keep.

Knows no rule of the house."""
import os
import subprocess

from . import cpp

CODE = ('.cpp', '.h', '.py', '.sh', '.cmake')
CPP = ('.cpp', '.h')
SCRIPTS = ('run', 'test', '.ci/run')


def _git(root, *arguments):
    done = subprocess.run(['git', '-C', root, *arguments], capture_output=True)
    return done.stdout.decode('utf-8', 'surrogateescape') if done.returncode == 0 else ''


def names(root):
    """Paths below `root`, tracked or new, without what .gitignore leaves out; all files where there is no git."""
    if os.path.realpath(_git(root, 'rev-parse', '--show-toplevel').strip() or '/') == os.path.realpath(root):
        listed = _git(root, 'ls-files', '-z', '-co', '--exclude-standard').split('\0')
        return sorted(n for n in set(listed) if n and os.path.isfile(os.path.join(root, n)))
    found = []
    for folder, inner, files in os.walk(root):
        inner[:] = [d for d in inner if d not in ('build', 'out', '.git', '__pycache__')]
        found += [os.path.relpath(os.path.join(folder, f), root) for f in files]
    return sorted(found)


class Source:
    """One file. `code` is its C++ without comments, literals and directives, at the old places."""

    def __init__(self, root, name):
        self.name = name
        with open(os.path.join(root, name), 'rb') as file:
            self.bytes = file.read()
        self._text = self._bare = self._code = self._lines = None

    @property
    def is_binary(self):
        return b'\0' in self.bytes

    @property
    def text(self):
        if self._text is None:
            self._text = self.bytes.decode('utf-8', 'replace').replace('\r\n', '\n')
        return self._text

    @property
    def bare(self):
        if self._bare is None:
            self._bare = cpp.bare(self.text)
        return self._bare

    @property
    def code(self):
        if self._code is None:
            self._code = cpp.without_directives(self.bare)
        return self._code

    def line(self, offset):
        if self._lines is None:
            self._lines = cpp.Lines(self.text)
        return self._lines.at(offset)

    def under(self, *folders):
        return any(self.name.startswith(folder + '/') for folder in folders)

    @property
    def is_cpp(self):
        return self.name.endswith(CPP)

    @property
    def is_code(self):
        return self.name.endswith(CODE) or self.name in SCRIPTS

    @property
    def is_test(self):
        return self.under('tests')


def load(root):
    return [Source(root, name) for name in names(root)]
