#!/usr/bin/env python3
"""Prints what each unit adds to a library, out of the linker's map file: unitsizes.py MAP.

Counted is what ends up in the file, without debug information: code, constants, data, tables for exceptions. What
templates of the standard library become counts for the unit that comes first.
"""
import re
import sys
from collections import Counter

PLACED = re.compile(r"^ \.(text|rdata|data|eh_frame|idata|edata|tls|CRT|rsrc)\S*\s+0x\S+\s+(0x\S+)\s+(\S.*)$")


def unit_of(source):
    target = re.match(r"(?:sdk|src)/.*CMakeFiles/([^/]+)\.dir/", source)
    target = target or re.match(r"(?:sdk|src)/.*/lib([^/]+)\.a\(", source)
    return target[1] if target else "compiler's run-time"


def sizes(lines):
    total = Counter()
    placing = False
    pending = ""
    for line in lines:
        placing |= line.startswith("Linker script and memory map")
        line = pending + line.rstrip("\n")
        # A long section name has a line for itself.
        pending = line if re.fullmatch(r" \.\S+", line) else ""
        found = PLACED.match(line) if placing else None
        if found:
            total[unit_of(found[3])] += int(found[2], 16)
    return total


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        total = sizes(file)
    whole = sum(total.values())
    for unit, size in total.most_common():
        print(f"| {unit:<30} | {size / 1024:8.1f} KB | {100 * size / whole:5.1f} % |")


if __name__ == "__main__":
    main()
