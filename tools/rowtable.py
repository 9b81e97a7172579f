#!/usr/bin/env python3
"""Turns a table of integer rows into a C++ header.

Input lines are "J V1 V2 ... Vc" ('#' starts a comment): J numbers the rows
1, 2, 3, ... in order, and every row has the same number of integer values.
The header holds them as `rows[J - 1][0..c)` (int64) in the given namespace,
with `count` = the number of rows, so a table of constants is read by the
build rather than typed into the source.

Usage: rowtable.py INPUT OUTPUT.hpp NAMESPACE
"""
import sys

from genutil import data_lines, write_if_changed


def main():
    source, target, namespace = sys.argv[1:4]
    rows = []
    for number, line in data_lines(source):
        fields = [int(v) for v in line.split()]
        if fields[0] != len(rows) + 1:
            sys.exit(f"{source}:{number}: row {fields[0]} out of order")
        if rows and len(fields) - 1 != len(rows[0]):
            sys.exit(f"{source}:{number}: expected {len(rows[0])} values")
        if any(abs(v) >= 2**63 for v in fields):
            sys.exit(f"{source}:{number}: value outside int64")
        rows.append(fields[1:])
    if not rows:
        sys.exit(f"{source}: no rows")
    out = [f"// Generated from {source.split('/')[-1]} by tools/rowtable.py: do not edit.",
           "#pragma once", "", "#include <cstdint>", "", f"namespace {namespace} {{", "",
           f"inline constexpr int count = {len(rows)};",
           f"inline constexpr int64_t rows[{len(rows)}][{len(rows[0])}] = {{"]
    out += ["    {" + ", ".join(str(v) for v in row) + "}," for row in rows]
    out += ["};", "", f"}}  // namespace {namespace}", ""]
    text = "\n".join(out)
    write_if_changed(target, text)


if __name__ == "__main__":
    main()
