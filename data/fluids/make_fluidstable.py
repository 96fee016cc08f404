#!/usr/bin/python3
"""Writes FluidsTable.txt, the fluid name table of the library, from components.csv.

Layout: one header line, then one line per fluid of nine fields of exactly 32 characters
(left-aligned, blank-padded, no separators): long name, short name, CAS number, then the fluid's
name in the TPSI, Varimol, Aerolt, RefProp, Kelvora and PCP-SAFT back-ends. "-" marks a fluid that
a back-end does not offer; a back-end that is not shipped yet offers none. Texts longer than 32
characters are cut to 32; the library cuts the caller's names the same way before comparing.

The Varimol column names every fluid of the fluid database (make_fluid_database.py) by its short
name. The predefined mixtures of mixtures.csv follow the fluids as rows of their own: long name and
short name are the mixture's name, the CAS number is "-".

Run from anywhere: /usr/bin/python3 data/fluids/make_fluidstable.py
The output depends only on the CSV files and the two scripts.
"""
import pathlib
import sys

sys.dont_write_bytecode = True  # no __pycache__ in the source tree
import make_fluid_database  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
TARGET = HERE / "FluidsTable.txt"
WIDTH = 32
MAX_FLUIDS = 1000
NOT_OFFERED = "-"

# Back-end columns in table order, each with the function that gives a fluid's name in that
# back-end (None: the back-end is not shipped yet, so it offers no fluid).
VARIMOL = set()  # short names of the Varimol fluids, filled in main()
BACKENDS = [
    ("TPSI", None),
    ("Varimol", lambda c: c["short_name"] if c["short_name"] in VARIMOL else NOT_OFFERED),
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


def rows(components, mixtures):
    for name in mixtures:
        components.append({"long_name": name, "short_name": name, "cas": NOT_OFFERED})
    for c in components:
        names = [c["long_name"], c["short_name"], c["cas"]]
        for _, name_of in BACKENDS:
            names.append(name_of(c) if name_of else NOT_OFFERED)
        yield [field(n) for n in names]


def check_unique(table):
    """A caller's name must find one fluid: the cut names of different rows must differ."""
    owner = {}
    for i, row in enumerate(table):
        for text in {cell.strip().lower() for cell in row[:3]} - {NOT_OFFERED}:
            if owner.setdefault(text, i) != i:
                sys.exit(f"name {text!r} appears for two fluids (rows {owner[text] + 1}, {i + 1})")


def main():
    data = make_fluid_database.Data()
    VARIMOL.update(c["short_name"] for c in make_fluid_database.varimol_pure_fluids(data))
    VARIMOL.update(data.mixtures)
    table = list(rows(list(data.components), list(data.mixtures)))
    if len(table) > MAX_FLUIDS:
        sys.exit(f"{len(table)} fluids: the library reads at most {MAX_FLUIDS}")
    check_unique(table)
    lines = ["".join(field(h) for h in HEADER)] + ["".join(row) for row in table]
    TARGET.write_text("\n".join(lines) + "\n", encoding="ascii")
    print(f"{TARGET.name}: {len(table)} fluids")


if __name__ == "__main__":
    main()
