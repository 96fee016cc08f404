#!/usr/bin/python3
"""Writes the fluid database "Fluids" (SQLite) from the fluid data of this folder.

Contents (layouts in README.md):
- every fluid of components.csv with Tc, Pc, acentric factor, molar mass and an ideal-gas cp0
  polynomial as a Varimol fluid text "<short name>.vmx", and the predefined mixtures of
  mixtures.csv as fluid texts of their own;
- "binaries.vmb", the Peng-Robinson kij of every pair of pr_kij.csv whose fluids are both in
  components.csv;
- the transport texts "<short name>.trn" of every fluid with Tc, Vc, acentric factor, dipole moment
  and molar mass.

Tables: Fluids(FluidName, LibraryName) lists the fluids per library ("Varimol", "liteVarimol",
"Transport"); FluidData(FluidName, Data) holds one row per line of each text, in line order. Fluid
names and lines are scrambled with the key of the library's database reader, read from its source
file, so both always agree. The output depends only on the CSV files, the key and this script:
rows are written in the same order every run, into a temporary file renamed at the end.

Usage: /usr/bin/python3 make_fluid_database.py [--output PATH] [--key-source PATH]
"""
import argparse
import csv
import fractions
import os
import pathlib
import re
import sqlite3
import sys
import unicodedata

HERE = pathlib.Path(__file__).resolve().parent
KEY_SOURCE = HERE.parent.parent / "src" / "fluiddb" / "sqlite.cpp"

NAME_LENGTH = 63  # characters of a fluid name that take part in a lookup
MAX_COMPONENTS = 20
LITE_MAX_COMPONENTS = 10  # the reduced back-end holds at most 10 components
COMPONENT_ROWS = 16
BINARY_KINDS = 5
MODEL_PRSV_VDW = 1  # Peng-Robinson-Stryjek-Vera with van der Waals one-fluid mixing
R = 8.314462618  # J/(mol K)

VARIMOL_COLUMNS = ["tc_K", "pc_Pa", "acentric", "molar_mass_kg_per_mol"]
CP0_COLUMNS = ["cp0_a0", "cp0_a1", "cp0_a2", "cp0_a3", "cp0_a4"]
TRANSPORT_COLUMNS = ["tc_K", "vc_m3_per_mol", "acentric", "dipole_debye", "molar_mass_kg_per_mol"]
# Largest deviation allowed between a fitted cp0 polynomial and the Planck-Einstein form it
# replaces (relative).
CP0_FIT_TOLERANCE = 1e-3


# ---------------------------------------------------------------------------------------------
# Reading the data


def read_csv(name):
    with (HERE / name).open(newline="", encoding="utf-8") as f:
        return list(csv.DictReader(f))


def ascii_text(text):
    """The texts of a fluid file are ASCII: accents dropped, anything else replaced by '?'."""
    text = unicodedata.normalize("NFKD", text)
    return "".join(c if c.isascii() else ("" if unicodedata.combining(c) else "?") for c in text)


def number(text):
    """A number of the fluid texts: repr-exact (Python repr of the float)."""
    return repr(float(text))


def cas_id(cas):
    """Identifying number of a component: its CAS registry number without dashes."""
    digits = cas.replace("-", "")
    if not digits.isdigit():
        sys.exit(f"CAS number {cas!r} is not of digits and dashes")
    return int(digits)


def read_key(path):
    """The 16 values of the scrambling key, from the line `... key = {v1, ..., v16};`."""
    text = pathlib.Path(path).read_text(encoding="utf-8")
    match = re.search(r"\bkey\s*=\s*\{([^}]*)\}", text)
    if not match:
        sys.exit(f"no scrambling key found in {path}")
    key = [int(v) for v in match.group(1).split(",")]
    if len(key) != 16 or not all(1 <= k <= 126 for k in key):
        sys.exit(f"the key in {path} must be 16 integers from 1 to 126")
    return key


# ---------------------------------------------------------------------------------------------
# Scrambling, as the database reader undoes it


def scramble(text, key):
    """Bytes of the scrambled text (trailing blanks dropped): code + key value, wrapped above 127;
    an apostrophe becomes 128 and a blank 129."""
    data = text.rstrip(" ").encode("ascii")
    out = bytearray()
    for i, c in enumerate(data):
        k = key[i % 16]
        s = c + k
        if s > 127:
            s = c - 127 + k
        if s == 39:
            s = 128
        elif s == 32:
            s = 129
        out.append(s)
    return bytes(out)


def scramble_name(name, key):
    return scramble(name[:NAME_LENGTH], key)


# ---------------------------------------------------------------------------------------------
# The ideal-gas cp0 polynomial of a fluid that has only the Planck-Einstein form


def planck_einstein_cp0(row, t):
    """cp0/R = c0 + sum v_k (theta_k/T)^2 exp(theta_k/T) / (exp(theta_k/T) - 1)^2."""
    import math

    value = float(row["c0"])
    for k in range(1, int(row["n_terms"]) + 1):
        v, theta = float(row[f"v{k}"]), float(row[f"theta{k}_K"])
        u = theta / t
        value += v * u * u * math.exp(u) / math.expm1(u) ** 2
    return value


def fitted_cp0_polynomial(row):
    """Least-squares polynomial cp0/R = a0 + ... + a4 T^4 of the Planck-Einstein cp0 of `row`
    over the range of its equation of state, sampled every kelvin. Solved in exact rational
    arithmetic, so the coefficients do not depend on the platform's rounding."""
    tmin, tmax = float(row["eos_tmin_K"]), float(row["eos_tmax_K"])
    ts = [tmin + i for i in range(int(tmax - tmin) + 1)]
    ys = [fractions.Fraction(planck_einstein_cp0(row, t)) for t in ts]
    xs = [fractions.Fraction(t) for t in ts]
    n = 5
    a = [[sum(x ** (i + j) for x in xs) for j in range(n)] for i in range(n)]
    b = [sum(y * x**i for x, y in zip(xs, ys)) for i in range(n)]
    for col in range(n):  # Gauss-Jordan elimination, exact
        pivot = next(r for r in range(col, n) if a[r][col] != 0)
        a[col], a[pivot] = a[pivot], a[col]
        b[col], b[pivot] = b[pivot], b[col]
        for r in range(n):
            if r != col and a[r][col] != 0:
                f = a[r][col] / a[col][col]
                a[r] = [ar - f * ac for ar, ac in zip(a[r], a[col])]
                b[r] -= f * b[col]
    coefficients = [float(b[i] / a[i][i]) for i in range(n)]
    worst = max(
        abs(sum(c * t**i for i, c in enumerate(coefficients)) / planck_einstein_cp0(row, t) - 1)
        for t in ts
    )
    if worst > CP0_FIT_TOLERANCE:
        sys.exit(f"cp0 polynomial of {row['short_name']} deviates by {worst:.2e}")
    return coefficients, tmin, tmax, worst


# ---------------------------------------------------------------------------------------------
# The fluids


class Data:
    def __init__(self):
        self.components = read_csv("components.csv")
        self.by_short = {c["short_name"]: c for c in self.components}
        self.kappa1 = {r["cas"]: r for r in read_csv("prsv_kappa1.csv")}
        self.planck_einstein = {r["cas"]: r for r in read_csv("cp0_planck_einstein.csv")}
        self.kij = {}
        self.kij_rows = []
        for r in read_csv("pr_kij.csv"):
            if r["both_in_components"] == "1":
                self.kij[frozenset((r["cas1"], r["cas2"]))] = r["kij"]
                self.kij_rows.append(r)
        self.mixtures = {}
        for r in read_csv("mixtures.csv"):
            self.mixtures.setdefault(r["mixture"], []).append(r)
        self.fitted_cp0 = {}
        for rows in self.mixtures.values():
            for r in rows:
                c = self.by_short.get(r["component"])
                if c is None:
                    sys.exit(f"mixture component {r['component']} is not in components.csv")
                if not has_cp0_polynomial(c) and c["cas"] not in self.fitted_cp0:
                    if c["cas"] not in self.planck_einstein or not has_columns(c, VARIMOL_COLUMNS):
                        sys.exit(f"mixture component {r['component']} lacks cubic EOS data")
                    self.fitted_cp0[c["cas"]] = fitted_cp0_polynomial(
                        self.planck_einstein[c["cas"]]
                    )


def has_columns(c, columns):
    return all(c[k].strip() for k in columns)


def has_cp0_polynomial(c):
    return has_columns(c, VARIMOL_COLUMNS + CP0_COLUMNS)


def varimol_pure_fluids(data):
    """The pure Varimol fluids, in the order of components.csv: those with a cp0 polynomial, and
    the components of predefined mixtures whose polynomial was fitted."""
    return [c for c in data.components if has_cp0_polynomial(c) or c["cas"] in data.fitted_cp0]


def transport_fluids(data):
    return [c for c in data.components if has_columns(c, TRANSPORT_COLUMNS)]


def mole_fractions(rows, data):
    """Mole fractions of a mixture from its amounts: mass percentages are divided by the molar
    masses of components.csv and normalised; mole amounts are taken as given and must sum to 1."""
    basis = {r["basis"] for r in rows}
    if len(basis) != 1:
        sys.exit(f"mixture {rows[0]['mixture']} mixes bases {sorted(basis)}")
    basis = basis.pop()
    amounts = [float(r["amount"]) for r in rows]
    if basis == "mass_percent":
        moles = [
            a / float(data.by_short[r["component"]]["molar_mass_kg_per_mol"])
            for a, r in zip(amounts, rows)
        ]
        return [m / sum(moles) for m in moles]
    if basis not in ("mole_fraction", "mole_percent"):
        sys.exit(f"unknown basis {basis!r}")
    x = [a / 100 for a in amounts] if basis == "mole_percent" else amounts
    if abs(sum(x) - 1) > 1e-9:
        sys.exit(f"mole fractions of {rows[0]['mixture']} sum to {sum(x)}")
    return x


def component_lines(c, x, data):
    """The 16 parameter lines of one component."""
    if c["cas"] in data.fitted_cp0:
        cp0, tmin, tmax, _ = data.fitted_cp0[c["cas"]]
        cp0 = [repr(v) for v in cp0]
        trange = [repr(tmin), repr(tmax)]
    else:
        cp0 = [number(c[k]) for k in CP0_COLUMNS]
        # no stated range (the constant cp0/R = 2.5 of the monatomic gases): 0 and 0
        trange = [number(c["cp0_tmin_K"] or 0), number(c["cp0_tmax_K"] or 0)]
    kappa1 = data.kappa1.get(c["cas"])
    return (
        [str(cas_id(c["cas"])), repr(float(x))]
        + [number(c[k]) for k in VARIMOL_COLUMNS]
        + [number(kappa1["kappa1"]) if kappa1 else "0.0"]
        + cp0
        + trange
        + [number(c["ttriple_K"] or 0), number(c["vc_m3_per_mol"] or 0)]
    )


def binary_lines(members, data):
    """The binary block: for kind 1..5, for i = 1..20, the 20 values of the pair (i, j). Kind 1
    is the van der Waals kij of pr_kij.csv; the Wong-Sandler kinds (NRTL tau, alpha, k_ij) have no
    data yet and stay 0."""
    n = MAX_COMPONENTS
    values = [[[0.0] * n for _ in range(n)] for _ in range(BINARY_KINDS)]
    for i, ci in enumerate(members):
        for j, cj in enumerate(members):
            if i != j:
                kij = data.kij.get(frozenset((ci["cas"], cj["cas"])))
                if kij is not None:
                    values[0][i][j] = float(kij)
    return [" ".join(repr(v) for v in values[k][i]) for k in range(BINARY_KINDS) for i in range(n)]


def vmx_pure(c, data):
    sources = "components.csv: " + c["sources"]
    if c["cas"] in data.fitted_cp0:
        _, tmin, tmax, worst = data.fitted_cp0[c["cas"]]
        sources += (
            f"; cp0 polynomial fitted to the Planck-Einstein cp0 of cp0_planck_einstein.csv, "
            f"{tmin:g}-{tmax:g} K, max. deviation {worst:.1e}"
        )
    kappa1 = data.kappa1.get(c["cas"])
    sources += "; kappa1: " + (kappa1["source"] if kappa1 else "none (0)")
    header = [c["short_name"], c["long_name"], sources]
    return (
        [f"{MODEL_PRSV_VDW} 1"]
        + [ascii_text(h) for h in header]
        + component_lines(c, 1.0, data)
        + binary_lines([c], data)
    )


def vmx_mixture(name, rows, data):
    members = [data.by_short[r["component"]] for r in rows]
    if len(members) > MAX_COMPONENTS:
        sys.exit(f"mixture {name} has more than {MAX_COMPONENTS} components")
    x = mole_fractions(rows, data)
    sources = sorted({r["source"] for r in rows})
    header = [name, rows[0]["description"], "; ".join(sources) + "; kij: pr_kij.csv (0 if none)"]
    lines = [f"{MODEL_PRSV_VDW} {len(members)}"] + [ascii_text(h) for h in header]
    for c, xi in zip(members, x):
        lines += component_lines(c, xi, data)
    return lines + binary_lines(members, data)


def vmb_binaries(data):
    lines = ["id_i id_j kij: Peng-Robinson kij of pr_kij.csv (ChemSep pr.ipd, DECHEMA)"]
    for r in data.kij_rows:
        lines.append(f"{cas_id(r['cas1'])} {cas_id(r['cas2'])} {number(r['kij'])}")
    return lines


def trn(c, data):
    lines = [c["short_name"]]
    lines += [number(c[k]) for k in TRANSPORT_COLUMNS]
    lines += ["0.0"]  # Chung's association factor kappa: not in the data
    lines += [number(c["tb_K"] or 0), number(c["pc_Pa"] or 0)]
    if has_columns(c, CP0_COLUMNS):
        lines += [number(c[k]) for k in CP0_COLUMNS]
        lines += [number(c["cp0_tmin_K"] or 0), number(c["cp0_tmax_K"] or 0)]
    else:
        lines += ["0.0"] * 7
    pe = data.planck_einstein.get(c["cas"])
    if pe:
        n = int(pe["n_terms"])
        lines += [str(n), number(pe["c0"])]
        for k in range(1, n + 1):
            lines += [number(pe[f"v{k}"]), number(pe[f"theta{k}_K"])]
    else:
        lines += ["0", "0.0"]
    return lines


def texts(data):
    """(library names, key, lines) of every text, in database order."""
    varimol = [(c["short_name"], vmx_pure(c, data)) for c in varimol_pure_fluids(data)]
    varimol += [(name, vmx_mixture(name, rows, data)) for name, rows in data.mixtures.items()]
    out = []
    for name, lines in varimol:
        libraries = ["Varimol"]
        if int(lines[0].split()[1]) <= LITE_MAX_COMPONENTS:
            libraries.append("liteVarimol")
        out.append((name, libraries, name + ".vmx", lines))
    out.append((None, [], "binaries.vmb", vmb_binaries(data)))
    for c in transport_fluids(data):
        out.append((c["short_name"], ["Transport"], c["short_name"] + ".trn", trn(c, data)))
    return out


# ---------------------------------------------------------------------------------------------
# Writing


def write_database(path, key, data):
    path = pathlib.Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    temporary = path.with_name(path.name + ".tmp")
    if temporary.exists():
        temporary.unlink()
    all_texts = texts(data)
    keys = [k for _, _, k, _ in all_texts]
    if len(set(scramble_name(k, key) for k in keys)) != len(keys):
        sys.exit("two texts share a key")
    db = sqlite3.connect(temporary)
    # Scrambled texts are not UTF-8: they go in as blobs cast to TEXT, byte for byte.
    db.executescript(
        "CREATE TABLE Fluids(FluidName TEXT, LibraryName TEXT);"
        "CREATE TABLE FluidData(FluidName TEXT, Data TEXT);"
    )
    fluid_rows = [
        (scramble_name(name, key), library)
        for library in ("Varimol", "liteVarimol", "Transport")
        for name, libraries, _, _ in all_texts
        if library in libraries
    ]
    db.executemany("INSERT INTO Fluids VALUES (CAST(? AS TEXT), ?)", fluid_rows)
    data_rows = [
        (scramble_name(text_key, key), scramble(line, key))
        for _, _, text_key, lines in all_texts
        for line in lines
    ]
    db.executemany("INSERT INTO FluidData VALUES (CAST(? AS TEXT), CAST(? AS TEXT))", data_rows)
    # Rows of one name come back in insertion (rowid) order through this index.
    db.execute("CREATE INDEX FluidDataByName ON FluidData(FluidName)")
    db.commit()
    db.close()
    os.replace(temporary, path)
    counts = {lib: sum(1 for _, l in fluid_rows if l == lib) for lib in ("Varimol", "liteVarimol", "Transport")}
    print(f"{path}: {len(fluid_rows)} fluids {counts}, {len(data_rows)} lines")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output", default=str(HERE / "Fluids"))
    parser.add_argument("--key-source", default=str(KEY_SOURCE))
    args = parser.parse_args()
    write_database(args.output, read_key(args.key_source), Data())


if __name__ == "__main__":
    main()
