#!/usr/bin/env python3
"""Mutation testing: plants one fault at a time in the library's C++ sources
and reports whether the tests catch it.

Each mutant is one small edit of a standard kind:

  comparison   a comparison or logical connector flipped (< to >=, == to !=,
               && to ||)
  off_by_one   a bound moved (< to <=, > to >=) or a small integer in an
               index or a sum changed by one
  swap         the operands of a non-commutative operator, or the two
               arguments of a call, swapped
  drop         a statement dropped (an assignment, a call, a one-line
               guarded return such as an argument check)
  constant     a numeric constant perturbed in its last digit

Candidates are found in the library folders (frame, roots, quad, rng,
specfun, sort, opt, and any given with --chapter), outside comments, strings
and preprocessor lines.  The run is seeded: the same seed over the same
sources plants the same mutants in the same order.  Mutants are spread over
the chapters in proportion to their code (at least --min-per-chapter each)
and, within a chapter, over the five kinds in turn.

For each mutant the script edits the file, rebuilds incrementally (a mutant
that does not compile is passed over and replaced by the next candidate),
runs the chapter's own test program first and then the others (or only its
own with --own-only), and restores the file.  A test program that fails,
crashes or runs past its time limit catches the mutant.

Usage:
  tools/mutants.py [--build DIR] [--seed N] [--count N] [--chapter C ...]
                   [--own-only] [--list] [--report FILE]

The build directory is configured (Release, tests on) when it has no
build.ninja yet.  Standard library only.
"""

import argparse
import os
import random
import re
import subprocess
import sys
import time
import zlib

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CHAPTERS = ["frame", "roots", "quad", "rng", "specfun", "sort", "opt"]
KINDS = ["comparison", "off_by_one", "swap", "drop", "constant"]
SOURCE = re.compile(r"\.(cpp|hpp|c|h)$")


# ----------------------------------------------------------------------------
# Finding candidates

def code_masks(lines):
    """For each line, the line with comments, string and character literals
    and preprocessor directives blanked, so that patterns match code only."""
    masks, in_block = [], False
    for line in lines:
        out, i, n = [], 0, len(line)
        if not in_block and line.lstrip().startswith("#"):
            masks.append(" " * n)
            continue
        while i < n:
            if in_block:
                end = line.find("*/", i)
                if end < 0:
                    out.append(" " * (n - i))
                    i = n
                else:
                    out.append(" " * (end + 2 - i))
                    i = end + 2
                    in_block = False
            elif line.startswith("//", i):
                out.append(" " * (n - i))
                i = n
            elif line.startswith("/*", i):
                in_block = True
            elif line[i] in "\"'":
                quote, j = line[i], i + 1
                while j < n and line[j] != quote:
                    j += 2 if line[j] == "\\" else 1
                j = min(j + 1, n)
                out.append(" " * (j - i))
                i = j
            else:
                out.append(line[i])
                i += 1
        masks.append("".join(out))
    return masks


FLIP = {" < ": " >= ", " <= ": " > ", " > ": " <= ", " >= ": " < ", " == ": " != ",
        " != ": " == ", " && ": " || ", " || ": " && "}
SHIFT = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > "}
OPERATOR = re.compile(r" (<=|>=|==|!=|&&|\|\||<|>) ")
SIMPLE = r"[A-Za-z_][\w.]*(?:\[[^\[\]]+\])?|\d+(?:\.\d*)?(?:e[-+]?\d+)?"
SWAP_BINARY = re.compile(rf"(?<![\w.\]\)])({SIMPLE}) (-|/|%|<<|>>) ({SIMPLE})(?![\w.\[\(])")
SWAP_CALL = re.compile(r"\b([A-Za-z_][\w:]*)\(([A-Za-z_][\w.]*), ([A-Za-z_][\w.]*)\)")
INDEX_INT = re.compile(r"(\[[^\[\]]*?\b|[-+] )(\d{1,2})\b(?![.\w])")
FLOAT = re.compile(r"(?<![\w.])(\d+\.\d+(?:[eE][-+]?\d+)?|\d+[eE][-+]?\d+)(?![\w.])")
HEX_OR_BIG = re.compile(r"(?<![\w.])(0x[0-9a-fA-F]+|\d{3,})(?:u?ll|ULL|LL|u|U|L)?(?![\w.])")
ASSIGNMENT = re.compile(r"^\s*[\w.\[\]>*()-]+ (=|\+=|-=|\*=|/=|\|=|&=|\^=|<<=|>>=) .*;\s*$")
INCREMENT = re.compile(r"^\s*(\+\+|--)?[\w.\[\]>-]+(\+\+|--)?;\s*$")
CALL = re.compile(r"^\s*[\w:.>-]+\(.*\);\s*$")
GUARD = re.compile(r"^\s*if \(.*\) (return\b.*|[\w.\[\]]+ [-+*/]?= .*|\w+\(.*\));\s*$")
DECLARES = re.compile(r"^\s*(const |static |constexpr |inline )*[\w:<>,*& ]*[\w>*&] [\w*&]+( =|\(|\[|;)")
ARRAY_DECLARATION = re.compile(r"^\s*(static |const |constexpr |thread_local )*[\w:<>]+[ *&]+\w+\[")
CONTROL = re.compile(r"^\s*(return|break|continue|case|default|else|for|while|do|switch|goto)\b")


def last_digit_changed(text):
    """The literal with its last mantissa digit moved by one (9 goes down)."""
    mantissa = re.match(r"[0-9.x a-fA-F]*", text).group(0)
    for i in range(len(mantissa) - 1, -1, -1):
        if mantissa[i].isdigit():
            d = int(mantissa[i])
            return text[:i] + str(d - 1 if d == 9 else d + 1) + text[i + 1:]
    return None


def balanced(text):
    return text.count("(") == text.count(")") and text.count("[") == text.count("]")


def candidates_in(path, rel):
    """Every mutant the file offers, as (kind, line index, column, old, new)."""
    with open(path) as f:
        lines = f.read().split("\n")
    masks = code_masks(lines)
    found = []
    for number, (line, mask) in enumerate(zip(lines, masks)):
        if not mask.strip() or "static_assert" in mask or "template" in mask:
            continue
        for m in OPERATOR.finditer(mask):
            op = m.group(0)
            found.append(("comparison", number, m.start(), op, FLIP[op]))
            if op in SHIFT:
                found.append(("off_by_one", number, m.start(), op, SHIFT[op]))
        # Array sizes in declarations are left alone: a buffer one longer
        # changes nothing a test could see.
        sized = bool(ARRAY_DECLARATION.match(mask))
        for m in INDEX_INT.finditer(mask):
            if not (sized and m.group(1).startswith("[")):
                found.append(("off_by_one", number, m.start(2), m.group(2), str(int(m.group(2)) + 1)))
        for m in SWAP_BINARY.finditer(mask):
            a, op, b = m.group(1), m.group(2), m.group(3)
            if a != b:
                found.append(("swap", number, m.start(), m.group(0), f"{b} {op} {a}"))
        for m in SWAP_CALL.finditer(mask):
            a, b = m.group(2), m.group(3)
            if a != b and m.group(1) not in ("if", "while", "for", "switch", "return", "sizeof"):
                found.append(("swap", number, m.start(), m.group(0), f"{m.group(1)}({b}, {a})"))
        for m in FLOAT.finditer(mask):
            new = last_digit_changed(m.group(1))
            if new:
                found.append(("constant", number, m.start(1), m.group(1), new))
        for m in HEX_OR_BIG.finditer(mask):
            new = last_digit_changed(m.group(1))
            if new and not (sized and mask[:m.start()].rstrip().endswith("[")):
                found.append(("constant", number, m.start(1), m.group(1), new))
        stripped = mask.strip()
        droppable = (GUARD.match(mask) or
                     (not CONTROL.match(mask) and not DECLARES.match(mask) and
                      (ASSIGNMENT.match(mask) or INCREMENT.match(mask) or CALL.match(mask))))
        if droppable and balanced(stripped) and stripped.endswith(";"):
            found.append(("drop", number, 0, line, ""))
    return [(rel, kind, number, col, old, new) for kind, number, col, old, new in found]


def library_files(chapters):
    files = subprocess.run(["git", "ls-files", "--", *chapters], cwd=TOP, check=True,
                           capture_output=True, text=True).stdout.split()
    return sorted(f for f in files if SOURCE.search(f) and "/data/" not in f)


def code_lines(path):
    with open(os.path.join(TOP, path)) as f:
        return sum(1 for line in f if line.strip())


def choose(chapters, count, seed, min_per_chapter):
    """The mutants to try, chapter by chapter, each chapter's list long enough
    to replace the mutants that do not compile."""
    files = library_files(chapters)
    size = {c: sum(code_lines(f) for f in files if f.startswith(c + "/")) for c in chapters}
    total = sum(size.values()) or 1
    quota = {c: max(min_per_chapter, round(count * size[c] / total)) for c in chapters if size[c]}
    plan = {}
    for c in quota:
        rng = random.Random(seed * 1000003 + zlib.crc32(c.encode()))
        by_kind = {k: [] for k in KINDS}
        for f in files:
            if f.startswith(c + "/"):
                for cand in candidates_in(os.path.join(TOP, f), f):
                    by_kind[cand[1]].append(cand)
        for k in KINDS:
            rng.shuffle(by_kind[k])
        order = []
        while any(by_kind.values()):
            for k in KINDS:
                if by_kind[k]:
                    order.append(by_kind[k].pop())
        plan[c] = order
    return quota, plan


# ----------------------------------------------------------------------------
# Running

def run(cmd, timeout=None, cwd=TOP):
    try:
        p = subprocess.run(cmd, cwd=cwd, capture_output=True, text=True, errors="replace",
                           timeout=timeout)
        return p.returncode, p.stdout + p.stderr
    except subprocess.TimeoutExpired:
        return None, "timeout"


def build(build_dir, targets=()):
    code, out = run(["cmake", "--build", build_dir] + (["--target", *targets] if targets else []))
    return code == 0, out


def test_programs(build_dir):
    d = os.path.join(build_dir, "tests")
    return {name[len("kor_test_"):]: os.path.join(d, name) for name in sorted(os.listdir(d))
            if name.startswith("kor_test_") and os.access(os.path.join(d, name), os.X_OK)
            and "." not in name and "[" not in name}


def run_tests(programs, order, limits):
    """(caught, by whom): the first program in `order` that fails catches."""
    for chapter in order:
        code, _ = run([programs[chapter], "--gtest_brief=1", "--gtest_fail_fast"],
                      timeout=limits[chapter])
        if code is None:
            return True, f"{chapter} (time limit)"
        if code != 0:
            return True, chapter
    return False, ""


def apply(path, number, col, old, new, kind):
    with open(path) as f:
        original = f.read()
    lines = original.split("\n")
    line = lines[number]
    if kind == "drop":
        lines[number] = ""
    else:
        assert line[col:col + len(old)] == old, (path, number, line, old)
        lines[number] = line[:col] + new + line[col + len(old):]
    with open(path, "w") as f:
        f.write("\n".join(lines))
    return original


def describe(m):
    rel, kind, number, col, old, new = m
    if kind == "drop":
        return f"{rel}:{number + 1}: {kind}: {old.strip()}"
    return f"{rel}:{number + 1}: {kind}: {old.strip()} -> {new.strip()}"


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--build", default=os.path.join(TOP, "build-mutants"))
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--count", type=int, default=150)
    ap.add_argument("--min-per-chapter", type=int, default=8)
    ap.add_argument("--chapter", action="append", help="only these library folders")
    ap.add_argument("--own-only", action="store_true", help="run only the chapter's own tests")
    ap.add_argument("--list", action="store_true", help="list the mutants and stop")
    ap.add_argument("--report", help="also write the results to this file")
    opts = ap.parse_args()

    chapters = opts.chapter or CHAPTERS
    quota, plan = choose(chapters, opts.count, opts.seed, opts.min_per_chapter)
    if opts.list:
        for c in quota:
            print(f"# {c}: {quota[c]} of {len(plan[c])} candidates")
            for m in plan[c][:quota[c]]:
                print(describe(m))
        return 0

    if not os.path.exists(os.path.join(opts.build, "build.ninja")):
        code, out = run(["cmake", "-S", TOP, "-B", opts.build, "-G", "Ninja",
                         "-DCMAKE_BUILD_TYPE=Release", "-DKOR_BUILD_TESTS=ON",
                         "-DKOR_BUILD_EXAMPLES=OFF", "-DKOR_BUILD_BENCH=OFF"])
        if code != 0:
            print(out, file=sys.stderr)
            return 2
    # With --own-only just the chapters' own test programs are built and run
    # (other chapters' tests may be failing while they are reworked).
    targets = [f"kor_test_{c}" for c in quota] if opts.own_only else []
    ok, out = build(opts.build, targets)
    if not ok:
        print(out[-4000:], file=sys.stderr)
        print("mutants: the unmutated tree does not build", file=sys.stderr)
        return 2
    programs = test_programs(opts.build)
    if opts.own_only:
        programs = {c: p for c, p in programs.items() if c in quota}
    limits = {}
    for chapter, program in programs.items():
        start = time.time()
        code, out = run([program, "--gtest_brief=1"])
        if code != 0:
            print(out[-4000:], file=sys.stderr)
            print(f"mutants: {chapter}'s tests fail without a mutant", file=sys.stderr)
            return 2
        limits[chapter] = 10 + 5 * (time.time() - start)

    results = []
    report = open(opts.report, "w") if opts.report else None

    def emit(text):
        print(text, flush=True)
        if report:
            report.write(text + "\n")
            report.flush()

    emit(f"# seed {opts.seed}, {sum(quota.values())} mutants, "
         f"{'own chapter' if opts.own_only else 'all'} tests")
    for chapter in quota:
        taken = 0
        own = chapter if chapter in programs else None
        order = ([own] if own else []) + ([] if opts.own_only else
                                          [c for c in programs if c != own])
        for m in plan[chapter]:
            if taken == quota[chapter]:
                break
            rel, kind, number, col, old, new = m
            path = os.path.join(TOP, rel)
            original = apply(path, number, col, old, new, kind)
            try:
                ok, _ = build(opts.build, targets)
                if not ok:
                    continue  # does not compile: not a mutant
                caught, by = run_tests(programs, order, limits)
            finally:
                with open(path, "w") as f:
                    f.write(original)
            taken += 1
            results.append((chapter, kind, caught))
            emit(f"{'caught  ' if caught else 'SURVIVED'} {describe(m)}"
                 + (f"  [{by}]" if caught else ""))
        if taken < quota[chapter]:
            emit(f"# {chapter}: only {taken} compilable mutants")
    build(opts.build, targets)

    def rate(rows):
        n = len(rows)
        k = sum(1 for r in rows if r[2])
        return f"{k}/{n} = {100.0 * k / n:.1f}%" if n else "-"

    emit("")
    for c in quota:
        emit(f"chapter {c:8s} {rate([r for r in results if r[0] == c])}")
    for k in KINDS:
        emit(f"kind    {k:10s} {rate([r for r in results if r[1] == k])}")
    emit(f"kill rate {rate(results)}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
