#!/usr/bin/env python3
"""Plants one fault of each kind in a small sound tree and sees that the check of the house's rules finds it.

usage: house_rules.py CHECK_SCRIPT"""
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.abspath(sys.argv.pop(1))

SOUND = {
    'src/host/geometry/values.h': '#pragma once\nstruct Point { double x = 0; static constexpr int kSize = 2; };\n'
                                  'inline const double kPi = 3.14;\nPoint operator+(Point a, Point b);\n',
    'src/host/platform/clock.cpp': '#include <unistd.h>\n#include "host/platform/clock.h"\n',
    'src/host/platform/clock.h': '#pragma once\nlong now();\nconst char* nameOf(int (&room)[3]);\n',
    'src/frame/module.h': '#pragma once\n#include "host/geometry/values.h"\n#include "host/platform/clock.h"\n'
                          'class Module {\n public:\n  Module(int a) : a_{a}, b_(a) { ++b_; }\n'
                          '  static Module* made();\n private:\n  int a_, b_ = 1\'000;\n};\n',
    # Looks like faults, but is none: in comments and texts, constants, and calls with a literal.
    'src/frame/module.cpp': '#include "frame/module.h"\n/* static int gone; */\n// getenv("X")\n'
                            'namespace {\nconstexpr const char* kName = "static int x; }";\n'
                            'const char* const kTable[] = {"a", "b"};\nconst auto twice = [](int v) { return 2 * v; };\n'
                            'constexpr char kQuote = \'"\';\nstruct Row { int a; };\nconstexpr Row kRows[] = {{1}, {2}};\n'
                            'int later(int a, const char* b);\n}\n'
                            'int work(int n) {\n  static const int kOnce = twice(n);\n  int changing = 0;\n'
                            '  for (int i = 0; i < n; ++i) changing += i;\n  std::printf("%d", changing);\n'
                            '  return changing + kOnce;\n}\n',
    'tests/frame/module.cpp': 'void expectWork(int n) { EXPECT_EQ(work(n), 1); }\nvoid expectBoth() { expectWork(1); }\n'
                              'TEST(Module, Works) {\n  expectBoth();\n}\nTEST(Module, Differs) {\n'
                              '  EXPECT_EQ(f("a"), f("b"));\n}\nTEST(Module, Counts) {\n  for (int i = 0; i < 3; ++i) expectWork(i);\n}\n',
}


def lines(count):
    return ''.join(f'  n += {i};\n' for i in range(count))


class HouseRules(unittest.TestCase):
    def check(self, **changes):
        """(exit code, output) of the check on the sound tree with these files added or replaced."""
        with tempfile.TemporaryDirectory() as root:
            for name, text in {**SOUND, **changes.pop('files', {})}.items():
                os.makedirs(os.path.dirname(os.path.join(root, name)), exist_ok=True)
                with open(os.path.join(root, name), 'w', encoding='utf-8') as file:
                    file.write(text)
            done = subprocess.run([sys.executable, SCRIPT, '--root', root], capture_output=True, text=True)
            return done.returncode, done.stdout + done.stderr

    def found(self, name, text, message, line=None):
        code, output = self.check(files={name: text})
        place = name + (f':{line}:' if line else ':')
        hits = [row for row in output.split('\n') if row.startswith(place) and message in row]
        self.assertTrue(hits, f'{place} {message} not found in:\n{output}')
        self.assertEqual(code, 1)

    def test_sound_tree_has_no_fault(self):
        code, output = self.check()
        self.assertIn('house rules: 0 faults', output)
        self.assertEqual(code, 0, output)

    def test_include_from_a_lower_room(self):
        self.found('src/host/database/a.h', '#pragma once\n#include "frame/module.h"\n', 'may not include from frame', 2)
        self.found('src/host/platform/a.h', '#include "host/geometry/values.h"\n', 'may not include', 1)
        self.found('src/attic/a.h', '#pragma once\n', 'no floor')

    def test_loadable_module_reaches_only_the_tool_path(self):
        code, output = self.check(files={'src/pathcmd/p.h': '#pragma once\n', 'src/toolpath/t.h': '#pragma once\n',
                                         'src/quillet/q.cpp': '#include "toolpath/t.h"\n#include "pathcmd/p.h"\n'})
        self.assertIn('src/quillet/q.cpp:2: quillet may not include from pathcmd', output)
        self.assertNotIn('src/quillet/q.cpp:1:', output)
        self.assertEqual(code, 1)

    def test_cycles(self):
        code, output = self.check(files={'src/frame/a.h': '#include "frame/b.h"\n', 'src/frame/b.h': '#include "a.h"\n'})
        self.assertIn('cycle of files: src/frame/a.h -> src/frame/b.h -> src/frame/a.h', output)
        self.assertEqual(code, 1)
        code, output = self.check(files={
            'src/apps/one/a.h': '#include "apps/two/a.h"\n', 'src/apps/two/a.h': '',
            'src/apps/two/b.h': '#include "apps/one/b.h"\n', 'src/apps/one/b.h': ''})
        self.assertIn('cycle of folders: apps/one -> apps/two -> apps/one', output)
        self.assertEqual(code, 1)

    def test_mutable_globals(self):
        for declaration in ('int counter;', 'static int counter = 0;', 'std::vector<int> counter{1, 2};',
                            'const char* counter = "x";', 'thread_local int counter;', 'extern int counter;',
                            'std::map<std::string, int> counter;', 'inline std::atomic<int> counter{0};',
                            'Point counter("x");', 'int counter[3] = {1, 2, 3};', 'unsigned long counter = 1;'):
            with self.subTest(declaration):
                self.found('src/frame/g.cpp', f'namespace tarnex {{\nnamespace {{\n{declaration}\n}}\n}}\n',
                           'mutable global or static: counter', 3)
        self.found('src/frame/g.cpp', 'int next() {\n  static int counter = 0;\n  return ++counter;\n}\n', 'counter', 2)
        self.found('src/frame/g.h', '#pragma once\nclass A {\n  static int counter;\n};\n', 'counter', 3)

    def test_words_and_file_names(self):
        for text in ('the sp' + 'ec says', 'see Par' + 't 6.1', 'in /wo' + 'rk/main', '"/tm' + 'p/x"',
                     'made in ses' + 'sion 4', 'an A' + 'I assistant'):
            with self.subTest(text):
                self.found('docs/a.md', f'first line\n{text}\n', '": ', 2)
        self.found('docs/par' + 't-6.1.md', 'x\n', 'file name')

    def test_operating_system_outside_the_platform(self):
        for header in ('unistd.h', 'sys/stat.h', 'windows.h', 'dlfcn.h', 'fcntl.h'):
            self.found('src/frame/s.cpp', f'#include <{header}>\n', 'belongs in host/platform', 1)
        self.found('tests/frame/s.cpp', '#include <unistd.h>\n', 'belongs in host/platform', 1)
        self.found('src/frame/s.cpp', '#include <fstream>\n', 'belongs in host/platform', 1)
        self.found('src/frame/s.cpp', 'void f() {\n  auto home = std::getenv("HOME");\n}\n', 'getenv()', 2)

    def test_patterns_from_data(self):
        for call in ('std::printf(text)', 'snprintf(room, sizeof room, pattern.c_str(), 1)', 'fprintf(file, getMessage(3))',
                     'formatted(text.c_str(), 1)', 'sprintf(room, text)'):
            with self.subTest(call):
                self.found('src/frame/p.cpp', f'void f() {{\n  {call};\n}}\n', 'no literal', 2)

    def test_tests_that_cannot_fail(self):
        for body, message in (('work(1);', 'without a check'), ('SUCCEED();', 'without a check'),
                              ('EXPECT_TRUE(true);', 'always true'), ('EXPECT_EQ(work(1), work(1));', 'with itself'),
                              ('if (!there()) GTEST_SKIP(); EXPECT_EQ(work(1), 1);', 'skips itself')):
            with self.subTest(body):
                self.found('tests/frame/t.cpp', f'TEST(A, B) {{ {body} }}\n', message, 1)
        self.found('tests/frame/t.cpp', 'TEST(A, DISABLED_B) { EXPECT_EQ(work(1), 1); }\n', 'disabled', 1)
        self.found('tests/frame/t.cpp', 'RC_GTEST_PROP(A, B, (int n)) { work(n); }\n', 'without a check', 1)

    def test_sizes(self):
        function = 'int grow(int n) {\n' + lines(100) + '  return n;\n}\n'
        self.found('src/frame/f.cpp', '// a\n// b\n' + function, 'grow: 103 lines, a function has at most 100', 3)
        self.found('src/frame/f.cpp', '// a\n' * 801, '801 lines, a file has at most 800')
        self.found('src/frame/f.cpp', 'int grow(int n) {\n' + lines(74) + '  return n;\n}\n', 'have 75 lines or more')
        tables = 'constexpr int kTable[] = {\n' + '  1,\n' * 200 + '};\n'
        _, output = self.check(files={'src/frame/f.cpp': tables})
        self.assertNotIn('at most 100', output)

    def test_share_of_tests(self):
        _, output = self.check(files={'src/frame/f.h': '// a\n' * 100})
        self.assertIn('of the code lines are tests', output)
        _, output = self.check(files={'tests/frame/f.h': '// a\n' * 100})
        self.assertIn('of the code lines are tests', output)


if __name__ == '__main__':
    unittest.main()
