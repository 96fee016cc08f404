#!/usr/bin/python3
"""Writes iapws_water.csv: reference properties of water and steam from python3-iapws (IAPWS-IF97
with the IAPWS industrial transport properties), for the tests of the property interface.

Run with Debian's Python: /usr/bin/python3 data/props/make_iapws_reference.py
The output is reproducible: fixed states, values printed with 12 significant digits.
"""
import csv
import os

import iapws
from iapws import IAPWS97

HERE = os.path.dirname(os.path.abspath(__file__))

# Single-phase states (MPa, K) over regions 1, 2, 3 and 5, away from the saturation line.
PRESSURES = [0.001, 0.01, 0.1, 1.0, 5.0, 10.0, 20.0, 25.0, 40.0, 80.0]
TEMPERATURES = [275.0, 300.0, 350.0, 400.0, 450.0, 500.0, 550.0, 600.0, 650.0, 700.0, 800.0,
                1000.0, 1200.0, 1600.0, 2000.0]
# Two-phase states: pressure (MPa) and vapour quality.
TWO_PHASE_PRESSURES = [0.01, 0.1, 1.0, 5.0, 10.0, 15.0, 20.0]
QUALITIES = [0.1, 0.5, 0.9]
# Relative pressure step of the central differences along the saturation line.
STEP = 1e-4


def fmt(value):
    return "%.12g" % value


def single_phase(writer):
    for p in PRESSURES:
        for t in TEMPERATURES:
            if t > 1073.15 and p > 50.0:
                continue
            if p < 22.064:
                tsat = IAPWS97(P=p, x=0.0).T
                if abs(t - tsat) < 2.0:
                    continue
            st = IAPWS97(P=p, T=t)
            if not st.status:
                continue
            rows = {"v": st.v, "d": st.rho, "h": st.h, "s": st.s, "u": st.u, "cp": st.cp,
                    "cv": st.cv, "c": st.w, "eta": st.mu, "lambda": st.k}
            for prop, value in rows.items():
                writer.writerow(["PT", fmt(p), fmt(t), prop, fmt(value), st.region])


def two_phase(writer):
    for p in TWO_PHASE_PRESSURES:
        for x in QUALITIES:
            st = IAPWS97(P=p, x=x)
            rows = {"T": st.T, "v": st.v, "h": st.h, "s": st.s, "u": st.u}
            for prop, value in rows.items():
                writer.writerow(["Pq", fmt(p), fmt(x), prop, fmt(value), 4])


def saturated(p):
    liq, vap = IAPWS97(P=p, x=0.0), IAPWS97(P=p, x=1.0)
    return liq.rho, vap.rho, liq.h, vap.h, liq.T


def saturation_line(writer):
    """Saturated densities, enthalpies and temperature with their derivatives by pressure
    (per MPa) from central differences, and the surface tension at the saturation temperature."""
    names = ["d_liq", "d_vap", "h_liq", "h_vap", "t_sat"]
    for p in TWO_PHASE_PRESSURES:
        here = saturated(p)
        up, down = saturated(p * (1 + STEP)), saturated(p * (1 - STEP))
        for name, value, hi, lo in zip(names, here, up, down):
            writer.writerow(["Psat", fmt(p), "", name, fmt(value), 4])
            writer.writerow(["Psat", fmt(p), "", "d" + name + "_dp",
                             fmt((hi - lo) / (2 * STEP * p)), 4])
        writer.writerow(["Psat", fmt(p), "", "sigma", fmt(IAPWS97(P=p, x=0.0).sigma), 4])


def main():
    path = os.path.join(HERE, "iapws_water.csv")
    with open(path, "w", newline="") as out:
        out.write("# python3-iapws %s, IAPWS97 class; units MPa, K, m3/kg, kg/m3, kJ/kg, "
                  "kJ/(kg K), m/s, Pa s, W/(m K), N/m; derivatives per MPa\n" % iapws.__version__)
        writer = csv.writer(out, lineterminator="\n")
        writer.writerow(["pair", "in1", "in2", "property", "value", "region"])
        single_phase(writer)
        two_phase(writer)
        saturation_line(writer)


if __name__ == "__main__":
    main()
