#!/usr/bin/env python3
"""Turns a published-constants file into a C++ header.

Input lines are "NAME INDEX VALUE" ('#' starts a comment).  A name that
appears with an index of 1 or more is an array, emitted in index order from
its lowest index; a name with only index 0 is a scalar.  Values keep every
published digit: the compiler rounds the decimal text to the nearest double.

Usage: tablegen.py INPUT.txt OUTPUT.hpp NAMESPACE
"""
import sys

from genutil import data_lines, write_if_changed


def main():
    source, target, namespace = sys.argv[1:4]
    entries = {}
    order = []
    for number, line in data_lines(source):
        fields = line.split()
        if len(fields) != 3:
            sys.exit(f"{source}:{number}: expected NAME INDEX VALUE")
        name, index, value = fields[0], int(fields[1]), fields[2]
        float(value)  # must read as a number
        if name not in entries:
            entries[name] = {}
            order.append(name)
        if index in entries[name]:
            sys.exit(f"{source}:{number}: {name} {index} given twice")
        entries[name][index] = value
    out = [f"// Generated from {source.split('/')[-1]} by tools/tablegen.py: do not edit.",
           "#pragma once", "", f"namespace {namespace} {{", ""]
    for name in order:
        values = entries[name]
        indices = sorted(values)
        if indices == [0]:
            out.append(f"inline constexpr double {name} = {values[0]};")
            continue
        if indices != list(range(indices[0], indices[-1] + 1)):
            sys.exit(f"{source}: {name} has gaps in its indices")
        out.append(f"// {name}[k] holds the published {name}{indices[0]} + k.")
        out.append(f"inline constexpr double {name}[{len(indices)}] = {{")
        out += [f"    {values[i]}," for i in indices]
        out.append("};")
    out += ["", f"}}  // namespace {namespace}", ""]
    text = "\n".join(out)
    write_if_changed(target, text)


if __name__ == "__main__":
    main()
