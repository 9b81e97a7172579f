#!/usr/bin/env python3
"""Turns the option registry (opt/option_table.txt) into constant tables.

The registry is one data table: a typed row per option, keyword sets and
aliases (the file's header explains the columns).  This script checks it and
writes only shape:

  --header FILE      a C++ header: the rows in registry order, the keyword
                     lists, the names sorted for binary search, and one typed
                     slot constant per option (kor::opt::slot::print_level)
  --docs FILE        the reference page listing every option
  --check-docs FILE  fails unless that page is current

Usage: optiongen.py TABLE [--header FILE] [--docs FILE | --check-docs FILE]
Standard library only.
"""

import argparse
import os
import re
import sys

from genutil import write_if_changed

EPS = 2.0 ** -53
MAX_NAME = 30


class TableError(Exception):
    pass


class Bound:
    def __init__(self, relation, value, text):
        self.relation = relation  # ">=", ">", "<=", "<"
        self.value = value
        self.text = text

    @property
    def strict(self):
        return self.relation in (">", "<")

    @property
    def lower(self):
        return self.relation.startswith(">")


class Option:
    def __init__(self, row, number, where):
        self.number = number
        self.where = where
        self.name = row[0]
        self.key = row[1]
        self.type = row[2]
        self.default_text = row[3]
        self.bounds_text = row[4]
        self.visibility = row[5]
        self.keywords_text = row[6]
        self.group = ""
        self.keywords = []          # (word, code)
        self.bounds = []
        self.default = None         # int, float, or index into keywords
        self.default_is_unit = False
        self.slot = -1


def fail(where, message):
    raise TableError(f"{where}: {message}")


def check_name(where, name, what):
    if not re.fullmatch(r"[A-Z0-9][A-Z0-9_\-]*( [A-Z0-9_\-]+)*", name):
        fail(where, f"{what} {name!r} is not upper-case words separated by single blanks")
    if len(name) > MAX_NAME:
        fail(where, f"{what} {name!r} is longer than {MAX_NAME} characters")


def real_value(where, text):
    """A real from the table: a number, eps, or eps^(p/q)."""
    text = text.strip()
    if text == "eps":
        return EPS
    m = re.fullmatch(r"eps\^\((\d+)/(\d+)\)", text)
    if m:
        return EPS ** (int(m.group(1)) / int(m.group(2)))
    try:
        value = float(text)
    except ValueError:
        fail(where, f"{text!r} is not a real")
    if value != value or value in (float("inf"), float("-inf")):
        fail(where, f"{text!r} is not finite")
    return value


def integer_value(where, text):
    if not re.fullmatch(r"-?\d+", text.strip()):
        fail(where, f"{text!r} is not an integer")
    value = int(text)
    if not -2**63 <= value < 2**63:
        fail(where, f"{text!r} does not fit 64 bits")
    return value


def parse_keywords(where, text, sets):
    text = text.strip()
    if text.startswith("$"):
        if text[1:] not in sets:
            fail(where, f"unknown keyword set {text}")
        return list(sets[text[1:]])
    words = []
    for item in text.split(","):
        if ":" not in item:
            fail(where, f"keyword {item.strip()!r} has no code")
        word, code = item.rsplit(":", 1)
        word = word.strip()
        check_name(where, word, "keyword")
        words.append((word, integer_value(where, code)))
    seen = [w for w, _ in words]
    if len(set(seen)) != len(seen):
        fail(where, "a keyword repeats")
    if not words:
        fail(where, "no keywords")
    return words


def load(path):
    options, aliases, sets, upper = [], [], {}, set()
    group = ""
    with open(path, encoding="ascii") as f:
        lines = f.read().splitlines()
    for number, line in enumerate(lines, 1):
        where = f"{os.path.basename(path)}:{number}"
        stripped = line.strip()
        if stripped.startswith("# ---"):
            group = stripped[5:].strip()
            continue
        if not stripped or stripped.startswith("#"):
            continue
        if stripped.startswith("upper "):
            upper.update(stripped.split()[1:])
            continue
        if stripped.startswith("set "):
            m = re.fullmatch(r"set ([A-Z0-9]+) = (.+)", stripped)
            if not m:
                fail(where, "malformed keyword set")
            sets[m.group(1)] = parse_keywords(where, m.group(2), sets)
            continue
        if stripped.startswith("alias "):
            m = re.fullmatch(r"alias (.+?) = (.+)", stripped)
            if not m:
                fail(where, "malformed alias")
            aliases.append((m.group(1).strip(), m.group(2).strip(), where))
            continue
        row = [c.strip() for c in line.split("|")]
        if len(row) != 7:
            fail(where, f"a row has 7 columns, this one {len(row)}")
        option = Option(row, len(options), where)
        option.group = group
        options.append(option)

    for o in options:
        w = o.where
        check_name(w, o.name, "long name")
        check_name(w, o.key, "short key")
        if o.type not in ("integer", "real", "keyword"):
            fail(w, f"unknown type {o.type}")
        if o.visibility not in ("shown", "hidden"):
            fail(w, f"visibility is shown or hidden, not {o.visibility}")
        if o.type == "keyword":
            if o.bounds_text:
                fail(w, "a keyword option has no bounds")
            o.keywords = parse_keywords(w, o.keywords_text, sets)
            words = [k for k, _ in o.keywords]
            if o.default_text not in words:
                fail(w, f"default {o.default_text!r} is not one of its keywords")
            o.default = words.index(o.default_text)
            continue
        if o.keywords_text:
            fail(w, "only keyword options have keywords")
        read = integer_value if o.type == "integer" else real_value
        for part in filter(None, (p.strip() for p in o.bounds_text.split(","))):
            m = re.fullmatch(r"(>=|>|<=|<) *(.+)", part)
            if not m:
                fail(w, f"bound {part!r} is not a relation and a value")
            o.bounds.append(Bound(m.group(1), read(w, m.group(2)), m.group(2).strip()))
        if sum(b.lower for b in o.bounds) > 1 or sum(not b.lower for b in o.bounds) > 1:
            fail(w, "at most one lower and one upper bound")
        if o.default_text == "advisory unit":
            if o.type != "integer":
                fail(w, "only an integer option can default to the advisory unit")
            o.default_is_unit = True
            o.default = 6  # checked against the bounds as the usual unit
        else:
            o.default = read(w, o.default_text)
        for b in o.bounds:
            if not satisfies(o.default, b):
                fail(w, f"default {o.default_text} violates {b.relation} {b.text}")

    # Every name a caller may write must lead to one option: long names
    # first, then short keys, then aliases, so a key may only repeat its
    # own option's long name.
    long_names = {o.name: o for o in options}
    if len(long_names) != len(options):
        fail(path, "a long name repeats")
    keys = {}
    for o in options:
        if o.key in keys:
            fail(o.where, f"short key {o.key} repeats")
        if o.key in long_names and long_names[o.key] is not o:
            fail(o.where, f"short key {o.key} is another option's long name")
        keys[o.key] = o
    resolved = []
    for alias, target, where in aliases:
        check_name(where, alias, "alias")
        if target not in long_names:
            fail(where, f"alias target {target} is not a long name")
        if alias in long_names or alias in keys or alias in [a for a, _ in resolved]:
            fail(where, f"alias {alias} is already a name")
        resolved.append((alias, long_names[target]))

    counts = {"integer": 0, "real": 0, "keyword": 0}
    for o in options:
        o.slot = counts[o.type]
        counts[o.type] += 1
    return options, resolved, upper, counts


def satisfies(value, bound):
    return {">=": value >= bound.value, ">": value > bound.value,
            "<=": value <= bound.value, "<": value < bound.value}[bound.relation]


def display_name(name, upper):
    """The name as messages write it: 'Print Level', 'DFO Trust Region Tolerance'."""
    return " ".join(w if w in upper else w[0] + w[1:].lower() for w in name.split(" "))


def identifier(name):
    return re.sub(r"[^a-z0-9]+", "_", name.lower()).strip("_")


def cpp_string(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def cpp_real(value):
    text = repr(float(value))
    return text if any(c in text for c in ".en") else text + ".0"


# ----------------------------------------------------------------------------

def header(options, aliases, upper, counts, source):
    out = ["// The option registry as constant tables.",
           f"// Generated from {source} by tools/optiongen.py: do not edit.",
           "#pragma once", "",
           "#include <cstdint>", "#include <string_view>", "",
           '#include "opt/options.hpp"', "",
           "namespace kor::opt::table {", "",
           "enum class Type : uint8_t { integer, real, keyword };",
           "",
           "// A bound: absent, inclusive (>=, <=) or strict (>, <).",
           "enum class BoundKind : uint8_t { none, inclusive, strict };",
           "struct Bound {",
           "    BoundKind kind;",
           "    int64_t integer;  // integer options",
           "    double real;      // real options",
           "};",
           "",
           "struct Keyword {",
           "    std::string_view word;",
           "    int64_t code;",
           "};",
           "",
           "struct Row {",
           "    std::string_view name;     // long name",
           "    std::string_view key;      // short key",
           "    std::string_view display;  // the long name as messages write it",
           "    Type type;",
           "    int16_t slot;              // index into the handle's array of its type",
           "    bool hidden;               // listed only in the full listing",
           "    bool default_is_advisory_unit;",
           "    int64_t integer_default;",
           "    double real_default;",
           "    int16_t default_word;      // keyword options: position in its list",
           "    Bound lower, upper;",
           "    int16_t first_keyword, keyword_count;  // into `keywords`",
           "};",
           "",
           f"inline constexpr int option_count = {len(options)};",
           f"inline constexpr int integer_count = {counts['integer']};",
           f"inline constexpr int real_count = {counts['real']};",
           f"inline constexpr int keyword_option_count = {counts['keyword']};",
           f"inline constexpr int alias_count = {len(aliases)};",
           ""]
    out.append("inline constexpr Keyword keywords[] = {")
    first = {}
    n = 0
    for o in options:
        first[o.name] = n
        for word, code in o.keywords:
            out.append(f"    {{{cpp_string(word)}, {code}}},")
            n += 1
    out.append("};")
    out.append("")

    def bound(o, lower):
        for b in o.bounds:
            if b.lower == lower:
                kind = "BoundKind::strict" if b.strict else "BoundKind::inclusive"
                if o.type == "integer":
                    return f"{{{kind}, {b.value}, 0.0}}"
                return f"{{{kind}, 0, {cpp_real(b.value)}}}"
        return "{BoundKind::none, 0, 0.0}"

    out.append(f"inline constexpr Row rows[option_count] = {{")
    for o in options:
        idef = o.default if o.type == "integer" else 0
        rdef = cpp_real(o.default) if o.type == "real" else "0.0"
        word = o.default if o.type == "keyword" else 0
        out.append(f"    {{{cpp_string(o.name)}, {cpp_string(o.key)}, "
                   f"{cpp_string(display_name(o.name, upper))}, Type::{o.type}, {o.slot}, "
                   f"{'true' if o.visibility == 'hidden' else 'false'}, "
                   f"{'true' if o.default_is_unit else 'false'}, {idef}, {rdef}, {word}, "
                   f"{bound(o, True)}, {bound(o, False)}, {first[o.name]}, {len(o.keywords)}}},")
    out.append("};")
    out.append("")
    out.append("// Names sorted byte-wise, for binary search.")
    out.append("struct Name {")
    out.append("    std::string_view name;")
    out.append("    int16_t option;")
    out.append("};")
    for label, pairs in (("long_names", [(o.name, o.number) for o in options]),
                         ("short_keys", [(o.key, o.number) for o in options]),
                         ("aliases", [(a, o.number) for a, o in aliases])):
        out.append(f"inline constexpr Name {label}[] = {{")
        for name, number in sorted(pairs, key=lambda p: p[0].encode()):
            out.append(f"    {{{cpp_string(name)}, {number}}},")
        out.append("};")
    out.append("")
    out.append("}  // namespace kor::opt::table")
    out.append("")
    out.append("// Typed slots: how solvers read their options.")
    out.append("namespace kor::opt::slot {")
    cls = {"integer": "IntegerSlot", "real": "RealSlot", "keyword": "KeywordSlot"}
    for o in options:
        out.append(f"inline constexpr {cls[o.type]} {identifier(o.name)}{{{o.slot}}};")
    out.append("}  // namespace kor::opt::slot")
    out.append("")
    out.append("namespace kor::opt::table {")
    out.append("// Registry row of each slot, per type.")
    for t in ("integer", "real", "keyword"):
        rows = [str(o.number) for o in options if o.type == t]
        out.append(f"inline constexpr int16_t {t}_rows[] = {{{', '.join(rows)}}};")
    out.append("}  // namespace kor::opt::table")
    out.append("")
    return "\n".join(out)


# ----------------------------------------------------------------------------

def doc_real(o, text, value):
    if text.startswith("eps"):
        return f"{text} = {repr(value)}"
    return text


def docs(options, aliases, upper, source):
    out = ["# Optional parameters of the optimization suite", "",
           f"This page is generated from `{source}` by `tools/optiongen.py`;",
           "edit the table, not this page.", "",
           "Every handle holds one value of each option, loaded with the defaults by",
           "`e04rac`. `e04zmc` (`kor_opt_handle_opt_set`) sets one from a string",
           "\"Name = Value\", where Name is the long name, the short key or an older",
           "name below, in any case (no abbreviations); \"Name = Default\" restores one",
           "default and the single word \"Defaults\" all of them. `e04znc` reads a value",
           "back, and `e04zpc` applies the lines between \"Begin\" and \"End\" of a file,",
           "each written \"Name = Value\" with blanks around the \"=\". A failed setting",
           "leaves the option unchanged; a file is applied up to its first failing line.",
           "",
           "`eps` is the machine precision 2^-53. Ranges are inclusive (`>=`, `<=`) or",
           "strict (`>`, `<`). Keyword options list the words they accept, in any case,",
           "with the integer code a solver reads; words with one code are synonyms.",
           "Options marked *hidden* are listed only by `e04ryc` with \"ALL OPTIONS\".", ""]
    group = None
    for o in options:
        if o.group != group:
            group = o.group
            out += [f"## {group[0].upper() + group[1:]}", "",
                    "| Option | Short key | Type | Default | Range or keywords (codes) |",
                    "|---|---|---|---|---|"]
        name = display_name(o.name, upper)
        if o.visibility == "hidden":
            name += " *(hidden)*"
        if o.type == "keyword":
            default = o.keywords[o.default][0]
            rng = ", ".join(f"{w} ({c})" for w, c in o.keywords)
        else:
            if o.default_is_unit:
                default = "the advisory unit"
            elif o.type == "real":
                default = doc_real(o, o.default_text, o.default)
            else:
                default = o.default_text
            rng = ", ".join(f"{b.relation} {b.text}" for b in o.bounds) or "any"
        out.append(f"| {name} | `{o.key}` | {o.type} | {default} | {rng} |")
        nxt = options[o.number + 1].group if o.number + 1 < len(options) else None
        if nxt != group:
            out.append("")
    out += ["## Older names", "",
            "These names of the derivative-free least-squares solver are accepted as",
            "aliases of the current options.", "",
            "| Older name | Option |", "|---|---|"]
    for alias, o in aliases:
        out.append(f"| {alias} | {display_name(o.name, upper)} |")
    out.append("")
    return "\n".join(out)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("table")
    parser.add_argument("--header")
    parser.add_argument("--docs")
    parser.add_argument("--check-docs")
    opts = parser.parse_args()
    source = "opt/" + os.path.basename(opts.table)
    try:
        options, aliases, upper, counts = load(opts.table)
    except (TableError, OSError, UnicodeDecodeError) as err:
        print(f"optiongen: {err}", file=sys.stderr)
        return 1
    if opts.header:
        write_if_changed(opts.header, header(options, aliases, upper, counts, source))
    page = docs(options, aliases, upper, source)
    if opts.docs:
        write_if_changed(opts.docs, page)
    if opts.check_docs:
        if not os.path.exists(opts.check_docs) or open(opts.check_docs).read() != page:
            print(f"optiongen: {opts.check_docs} is out of date (run the docs target)",
                  file=sys.stderr)
            return 1
        print(f"optiongen: {opts.check_docs} current ({len(options)} options)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
