#!/usr/bin/python3
"""Writes water_iapws.csv: viscosity and thermal conductivity of water from python3-iapws, the
independent reference against which the library's own corresponding-states transport model is
checked on water (in the columns of reference_values.csv).

States are given by pressure and temperature; the density comes from IAPWS-95 (class IAPWS95),
the viscosity from IAPWS R12-08 and the thermal conductivity from IAPWS R15-11 (critical
enhancement included), all as python3-iapws evaluates them at that density and temperature.

Run with Debian's Python: /usr/bin/python3 data/transport/make_water_reference.py
The output is reproducible: fixed states, values printed with 12 significant digits.
"""
import csv
import os

import iapws
from iapws import IAPWS95

HERE = os.path.dirname(os.path.abspath(__file__))

# (phase, pressure MPa, temperature K)
STATES = [
    ("gas", 0.001, 300.0),
    ("gas", 0.001, 400.0),
    ("gas", 0.001, 600.0),
    ("gas", 0.001, 1000.0),
    ("gas", 0.1, 400.0),
    ("gas", 1.0, 500.0),
    ("gas", 5.0, 600.0),
    ("liquid", 0.1, 280.0),
    ("liquid", 0.1, 300.0),
    ("liquid", 0.1, 350.0),
    ("liquid", 10.0, 450.0),
    ("liquid", 20.0, 550.0),
    ("supercritical", 25.0, 700.0),
    ("supercritical", 50.0, 900.0),
]


def fmt(value):
    return "%.12g" % value


def main():
    path = os.path.join(HERE, "water_iapws.csv")
    with open(path, "w", newline="") as f:
        f.write("# python3-iapws %s: IAPWS-95 density, IAPWS R12-08 viscosity, "
                "IAPWS R15-11 thermal conductivity\n" % iapws.__version__)
        writer = csv.writer(f, lineterminator="\n")
        writer.writerow(["fluid", "tag", "phase", "p_MPa", "T_K", "rho", "rho_unit", "eta_uPas",
                         "lambda_mWmK"])
        for phase, p, t in STATES:
            st = IAPWS95(P=p, T=t)
            writer.writerow(["H2O", "IAPWS", phase, fmt(p), fmt(t), fmt(st.rho), "kg/m3",
                             fmt(1e6 * st.mu), fmt(1e3 * st.k)])


if __name__ == "__main__":
    main()
