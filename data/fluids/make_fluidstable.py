#!/usr/bin/python3
"""Writes FluidsTable.txt, the fluid name table of the library, from components.csv.

Layout: one header line, then one line per fluid of nine fields of exactly 32 characters
(left-aligned, blank-padded, no separators): long name, short name, CAS number, then the fluid's
name in the TPSI, Varimol, Aerolt, RefProp, Kelvora and PCP-SAFT back-ends. "-" marks a fluid that
a back-end does not offer; a back-end that is not shipped yet offers none. Texts longer than 32
characters are cut to 32; the library cuts the caller's names the same way before comparing.

Run from anywhere: /usr/bin/python3 data/fluids/make_fluidstable.py
The output depends only on components.csv and this script.
"""
import csv
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE / "components.csv"
TARGET = HERE / "FluidsTable.txt"
WIDTH = 32
MAX_FLUIDS = 1000
NOT_OFFERED = "-"

# Back-end columns in table order, each with the function that gives a fluid's name in that
# back-end (None: the back-end is not shipped yet, so it offers no fluid).
BACKENDS = [
    ("TPSI", None),
    ("Varimol", None),
    ("Aerolt", None),
    ("RefProp", None),
    ("Kelvora", None),
    ("PCP-SAFT", None),
]
HEADER = ["Long name", "Short name", "CAS number"] + [name for name, _ in BACKENDS]


def field(text):
    text = text.strip()
    if not text:
        return NOT_OFFERED
    if not text.isascii():
        sys.exit(f"non-ASCII name {text!r}: the table holds ASCII texts")
    return text[:WIDTH].ljust(WIDTH)


def rows(components):
    for c in components:
        names = [c["long_name"], c["short_name"], c["cas"]]
        for _, name_of in BACKENDS:
            names.append(name_of(c) if name_of else NOT_OFFERED)
        yield [field(n) for n in names]


def check_unique(table):
    """A caller's name must find one fluid: the cut names of different rows must differ."""
    owner = {}
    for i, row in enumerate(table):
        for text in {cell.strip().lower() for cell in row[:3]}:
            if owner.setdefault(text, i) != i:
                sys.exit(f"name {text!r} appears for two fluids (rows {owner[text] + 1}, {i + 1})")


def main():
    with SOURCE.open(newline="", encoding="utf-8") as f:
        table = list(rows(csv.DictReader(f)))
    if len(table) > MAX_FLUIDS:
        sys.exit(f"{len(table)} fluids: the library reads at most {MAX_FLUIDS}")
    check_unique(table)
    lines = ["".join(field(h) for h in HEADER)] + ["".join(row) for row in table]
    TARGET.write_text("\n".join(lines) + "\n", encoding="ascii")
    print(f"{TARGET.name}: {len(table)} fluids")


if __name__ == "__main__":
    main()
