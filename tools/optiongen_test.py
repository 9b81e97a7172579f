#!/usr/bin/env python3
"""Checks that tools/optiongen.py refuses registry tables that would make a
name ambiguous or a default unusable, and reads the real table.

Usage: optiongen_test.py OPTION_TABLE   (standard library only)
"""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
GENERATOR = os.path.join(HERE, "optiongen.py")
TABLE = None

GOOD = """\
set YESNO = YES:1, NO:0
# --- group
PRINT LEVEL | PRNLEV | integer | 2 | >= 0, <= 5 | shown |
RCONST | RCONST | real | -0.5 | > -1, < 1 | shown |
PRINT OPTIONS | PRNOPT | keyword | YES | | hidden | $YESNO
alias OLD PRINT LEVEL = PRINT LEVEL
"""


def run(text):
    with tempfile.TemporaryDirectory() as d:
        table = os.path.join(d, "option_table.txt")
        with open(table, "w") as f:
            f.write(text)
        r = subprocess.run([sys.executable, GENERATOR, table, "--header", os.path.join(d, "t.hpp"),
                            "--docs", os.path.join(d, "o.md")], capture_output=True, text=True)
        header = ""
        if r.returncode == 0:
            with open(os.path.join(d, "t.hpp")) as f:
                header = f.read()
        return r.returncode, r.stderr, header


class Refusals(unittest.TestCase):
    def refused(self, text, words):
        code, err, _ = run(text)
        self.assertNotEqual(code, 0, text)
        self.assertIn(words, err)

    def test_good_table(self):
        code, err, header = run(GOOD)
        self.assertEqual(code, 0, err)
        self.assertIn("inline constexpr IntegerSlot print_level{0};", header)
        self.assertIn("inline constexpr KeywordSlot print_options{0};", header)
        self.assertIn('"RCONST", "RCONST", "Rconst", Type::real, 0, false, false, 0, -0.5, 0, '
                      '{BoundKind::strict, 0, -1.0}, {BoundKind::strict, 0, 1.0}', header)

    def test_repeated_key(self):
        self.refused(GOOD + "PRINT FILE | PRNLEV | integer | 6 | | shown |\n", "short key PRNLEV repeats")

    def test_key_naming_another_option(self):
        self.refused(GOOD + "PRINT FILE | PRINT LEVEL | integer | 6 | | shown |\n", "another option's long name")

    def test_alias_already_a_name(self):
        self.refused(GOOD + "alias PRNOPT = PRINT LEVEL\n", "already a name")

    def test_alias_to_nothing(self):
        self.refused(GOOD + "alias OLDER = NO SUCH OPTION\n", "not a long name")

    def test_default_outside_bounds(self):
        self.refused(GOOD + "TIME LIMIT | MAXTIM | real | 0 | > 0 | shown |\n", "violates")

    def test_default_not_a_keyword(self):
        self.refused(GOOD + "TASK | TASK | keyword | UP | | shown | DOWN:0\n", "not one of its keywords")

    def test_long_name(self):
        self.refused(GOOD + "A NAME OF MORE THAN THIRTY CHARS | K | integer | 1 | | shown |\n", "longer than 30")

    def test_lower_case(self):
        self.refused(GOOD + "Time Limit | MAXTIM | real | 1 | | shown |\n", "upper-case words")

    def test_integer_default_not_integer(self):
        self.refused(GOOD + "LIMIT | LIM | integer | 1.5 | | shown |\n", "not an integer")


class RealTable(unittest.TestCase):
    def test_reads(self):
        with open(TABLE) as f:
            code, err, header = run(f.read())
        self.assertEqual(code, 0, err)
        self.assertIn("option_count = 371;", header)


if __name__ == "__main__":
    TABLE = sys.argv.pop(1)
    unittest.main()
