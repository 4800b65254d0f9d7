#!/usr/bin/env python3
"""Writes torva35/base/case_tables.inc from Unicode's UnicodeData.txt (Debian: package unicode-data).

Only mappings from one 16-bit unit to one 16-bit unit are kept. A row covers the units first, first + step, ...,
last, which all move by the same distance.
"""
import sys

upper, lower = {}, {}
for line in open(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode/UnicodeData.txt"):
    field = line.split(";")
    unit = int(field[0], 16)
    for table, text in ((upper, field[12]), (lower, field[13])):
        if text and unit <= 0xFFFF and int(text, 16) <= 0xFFFF:
            table[unit] = int(text, 16)


def rows(table):
    result = []
    for unit in sorted(table):
        move = (table[unit] - unit) & 0xFFFF
        if result:
            first, last, step, distance = result[-1]
            gap = unit - last
            if distance == move and gap <= 2 and step in (0, gap):
                result[-1] = (first, unit, gap, distance)
                continue
        result.append((unit, unit, 0, move))
    return [(first, last, step or 1, distance) for first, last, step, distance in result]


print("// Written by scripts/make_case_tables.py; not edited by hand.")
for name, table in (("kToUpper", upper), ("kToLower", lower)):
    print(f"constexpr CaseRange {name}[] = {{")
    for first, last, step, distance in rows(table):
        print(f"    {{0x{first:04X}, 0x{last:04X}, {step}, 0x{distance:04X}}},")
    print("};")
