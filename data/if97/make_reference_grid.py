#!/usr/bin/python3
"""Writes data/if97/reference_grid.csv: IAPWS-IF97 states computed with python3-iapws (Debian).

Every row is one state over the whole range of IF97 (regions 1, 2, 3, 5, the two-phase region 4
and the saturation lines), with the properties python3-iapws computes and the input pairs by
which a program may reach the state. Run with Debian's Python: /usr/bin/python3 <this file>.
The output is reproducible: a fixed seed drives the sampling. data/if97/README.md describes it.
"""

import math
import os
import random
import sys
import warnings
from types import SimpleNamespace

import iapws
from iapws import IAPWS97
from iapws._iapws import _ThCond, _Tension, _Viscosity
from iapws.iapws97 import (Pmin, Ps_623, _Backward3_sat_v_P, _Backward3_v_PT, _P23_T,
                           _PSat_T, _Region1, _Region2, _Region3, _Region5, _t_P)

SEED = 1997
TC, RHOC = 647.096, 322.0
T_MIN, T_13, T_B23_MAX, T_25, T_MAX = 273.15, 623.15, 863.15, 1073.15, 2273.15
P_MAX, P_MAX_5 = 100.0, 50.0

COLUMNS = ["zone", "tag", "pairs", "P_MPa", "T_K", "v_m3_kg", "h_kJ_kg", "s_kJ_kgK", "u_kJ_kg",
           "x", "cv_kJ_kgK", "cp_kJ_kgK", "w_m_s", "eta_Pa_s", "lambda_W_mK", "sigma_N_m",
           "drho_dp_T_kg_m3MPa"]
SINGLE_PAIRS = ["PT", "Ph", "Ps", "Pu", "Tv", "hs", "Pv", "Ts", "vh", "vs", "vu"]
TWO_PHASE_PAIRS = ["Px", "Tx", "Ph", "Ps", "hs", "Pv", "Pu", "Tv", "Ts", "vh", "vs", "vu", "vx"]
# In liquid water below about 17 °C the density maximum makes v(T) and s(p) fold, so these pairs
# have two solutions there; such states are offered only through the other pairs.
FOLDING_PAIRS = {"Pv", "Ts", "vh", "vs", "vu"}
T_FOLD = 290.0


class Skip(Exception):
    """A draw not kept: outside the region it was drawn for, or not solvable with python3-iapws."""


# --- states from python3-iapws's equations ------------------------------------------------

def single_phase(props, zone, tag):
    """A row from a region-1/2/3/5 property dict of python3-iapws, with its transport values."""
    T, P, v = props["T"], props["P"], props["v"]
    rho = 1.0 / v
    if not (props["kt"] > 0.0 and props["cv"] > 0.0):
        raise Skip("mechanically or thermally unstable")
    drho_dp = rho * props["kt"]
    mu = _Viscosity(rho, T)
    phase = SimpleNamespace(cp=props["cp"], cp_cv=props["cp"] / props["cv"], mu=mu,
                            drhodP_T=drho_dp)
    return {"zone": zone, "tag": tag, "P_MPa": P, "T_K": T, "v_m3_kg": v, "h_kJ_kg": props["h"],
            "s_kJ_kgK": props["s"], "u_kJ_kg": props["h"] - 1000.0 * P * v, "x": None,
            "cv_kJ_kgK": props["cv"], "cp_kJ_kgK": props["cp"], "w_m_s": props["w"],
            "eta_Pa_s": mu, "lambda_W_mK": _ThCond(rho, T, phase),
            "sigma_N_m": _Tension(T) if T < TC else None, "drho_dp_T_kg_m3MPa": drho_dp}


def region3_rho(T, P, rho):
    """Density of region 3 at (T, P) by Newton steps on p3(rho, T) from a start value, to the
    last bit: once a step falls below 1e-13 relative, one more step ends the iteration."""
    converged = False
    for _ in range(100):
        r = _Region3(rho, T)
        if not r["kt"] > 0.0:
            raise Skip("region-3 iteration left the stable branch")
        step = (P - r["P"]) * rho * r["kt"]
        rho += step
        if converged:
            return rho
        converged = abs(step) <= 1e-13 * rho
    raise Skip("region-3 density did not converge")


def region3_TP(T, P):
    return _Region3(region3_rho(T, P, 1.0 / _Backward3_v_PT(P, T)), T)


def saturated_rho(T, P, seed, liquid):
    """Saturated density of region 3: the outermost root of p3(rho, T) = P on the liquid or
    vapour side. Scanning from the stable single phase inwards brackets that root before the
    van der Waals loop can offer the middle one; bisection then narrows it to adjacent doubles
    (Newton steps would only amplify rounding where dp/drho vanishes near the critical point)."""
    step = (-1e-4 if liquid else 1e-4) * seed
    rho = seed * (1.05 if liquid else 0.95)
    f = _Region3(rho, T)["P"] - P
    if (f > 0.0) != liquid:
        raise Skip("saturated density start on the wrong side")
    for _ in range(2000):
        rho_next = rho + step
        f_next = _Region3(rho_next, T)["P"] - P
        if (f_next > 0.0) != liquid:
            lo, hi = sorted((rho, rho_next))
            for _ in range(200):
                mid = 0.5 * (lo + hi)
                if mid in (lo, hi):
                    break
                if (_Region3(mid, T)["P"] - P > 0.0) == (_Region3(hi, T)["P"] - P > 0.0):
                    hi = mid
                else:
                    lo = mid
            return 0.5 * (lo + hi)
        rho, f = rho_next, f_next
    raise Skip("saturated density not bracketed")


def saturated(T):
    """Saturated liquid and vapour property dicts at T. Above 623.15 K both phases solve
    p3(rho, T) = ps(T) exactly, rather than stopping at the SR5-05 approximations."""
    P = _PSat_T(T)
    if T <= T_13:
        return _Region1(T, P), _Region2(T, P)
    liquid = _Region3(saturated_rho(T, P, 1.0 / _Backward3_sat_v_P(P, T, 0), True), T)
    vapour = _Region3(saturated_rho(T, P, 1.0 / _Backward3_sat_v_P(P, T, 1), False), T)
    if not (1.0 / liquid["v"] > RHOC > 1.0 / vapour["v"]):
        raise Skip("saturated densities collapsed onto one phase")
    return liquid, vapour


def two_phase(T, x, tag):
    liquid, vapour = saturated(T)
    mix = lambda key: liquid[key] + x * (vapour[key] - liquid[key])
    P = _PSat_T(T)
    return {"zone": "4", "tag": tag, "P_MPa": P, "T_K": T, "v_m3_kg": mix("v"),
            "h_kJ_kg": mix("h"), "s_kJ_kgK": mix("s"), "u_kJ_kg": mix("h") - 1000.0 * P * mix("v"),
            "x": x, "sigma_N_m": _Tension(T)}


def saturated_phase(T, x, tag):
    row = single_phase(saturated(T)[x], "4sat", tag)
    row["x"] = float(x)
    row["P_MPa"] = _PSat_T(T)  # rather than p3 at the saturated density, equal to rounding
    row["u_kJ_kg"] = row["h_kJ_kg"] - 1000.0 * row["P_MPa"] * row["v_m3_kg"]
    return row


def region_of(T, P):
    """The IF97 region of a single-phase (T, P) state, by the release's boundaries."""
    if T > T_25:
        return 5
    if T <= T_13:
        return 1 if P >= _PSat_T(T) else 2
    return 3 if P > _P23_T(T) else 2


def state_TP(T, P, tag):
    region = region_of(T, P)
    props = {1: _Region1, 2: _Region2, 5: _Region5}.get(region, region3_TP)(T, P)
    # region 3 returns p3 at the solved density; keep the pressure asked for (equal to
    # rounding), so that states on the 100 MPa limit stay on it
    props["P"] = P
    return single_phase(props, str(region), tag)


def state_rho_T(rho, T, tag, sat_densities):
    """A region-3 state from (rho, T), kept only when it lies in region 3 and outside the dome."""
    props = _Region3(rho, T)
    P = props["P"]
    if not (T_13 < T and _P23_T(T) < P <= P_MAX):
        raise Skip("outside region 3")
    if T < TC:
        rho_liquid, rho_vapour = sat_densities(T)
        if rho_vapour < rho < rho_liquid:
            raise Skip("inside the two-phase dome")
    return single_phase(props, "3", tag)


# --- sampling -----------------------------------------------------------------------------

def log_uniform(rng, lo, hi):
    return math.exp(rng.uniform(math.log(lo), math.log(hi)))


def p_max_vapour(T):
    if T <= T_13:
        return _PSat_T(T)
    if T <= T_B23_MAX:
        return _P23_T(T)
    return P_MAX


def sample_states(rng, sat_densities):
    """Yields (tag, thunk) pairs; the thunk computes the row or raises."""
    # the states of the IAPWS R15-11 verification tables for industrial use (IF97 inputs)
    for table, T, P in (("7", 620.0, 20.0), ("7", 620.0, 50.0), ("8", 650.0, 0.3),
                        ("8", 800.0, 50.0)):
        tag = "R15-11 Table " + table
        yield tag, lambda T=T, P=P, tag=tag: state_TP(T, P, tag)
    for rho in (222.0, 322.0):
        tag = "R15-11 Table 9"
        yield tag, lambda rho=rho, tag=tag: state_rho_T(rho, 647.35, tag, sat_densities)
    for _ in range(2400):  # region 1
        T = rng.uniform(T_MIN, T_13)
        P = log_uniform(rng, _PSat_T(T), P_MAX)
        yield "bulk", lambda T=T, P=P: state_TP(T, P, "bulk")
    for _ in range(2400):  # region 2
        T = rng.uniform(T_MIN + 0.5, T_25)
        P = log_uniform(rng, Pmin, p_max_vapour(T))
        yield "bulk", lambda T=T, P=P: state_TP(T, P, "bulk")
    for _ in range(800):  # region 5
        T = rng.uniform(T_25, T_MAX)
        P = log_uniform(rng, Pmin, P_MAX_5)
        yield "bulk", lambda T=T, P=P: state_TP(T, P, "bulk")
    for _ in range(120):  # very low pressures, regions 2 and 5
        T = rng.uniform(T_MIN, T_MAX)
        P = log_uniform(rng, 1e-5, Pmin)
        yield "low-p", lambda T=T, P=P: state_TP(T, P, "low-p")
    for _ in range(2200):  # region 3 by density and temperature
        T = rng.uniform(T_13, T_B23_MAX)
        rho = rng.uniform(80.0, 800.0)
        yield "bulk", lambda T=T, rho=rho: state_rho_T(rho, T, "bulk", sat_densities)
    for _ in range(900):  # around the critical point
        T = rng.uniform(TC - 3.0, TC + 5.0)
        rho = rng.uniform(0.6 * RHOC, 1.4 * RHOC)
        yield "critical", lambda T=T, rho=rho: state_rho_T(rho, T, "critical", sat_densities)
    for _ in range(1500):  # two-phase mixtures
        T = rng.uniform(T_MIN, TC - 0.5)
        x = rng.uniform(0.0, 1.0)
        yield "bulk", lambda T=T, x=x: two_phase(T, x, "bulk")
    for _ in range(250):  # two-phase mixtures close to the critical point
        T = TC - log_uniform(rng, 0.02, 10.0)
        x = rng.uniform(0.0, 1.0)
        yield "critical", lambda T=T, x=x: two_phase(T, x, "critical")
    for _ in range(400):  # saturated liquid and vapour
        T = rng.uniform(T_MIN, TC - 0.02)
        x = rng.randrange(2)
        yield "bulk", lambda T=T, x=x: saturated_phase(T, x, "bulk")
    for _ in range(500):  # single phase close to saturation, both sides
        T_sat = rng.uniform(T_MIN + 1.0, TC - 0.5)
        side = rng.choice((-1.0, 1.0))
        if T_sat <= T_13:
            T = T_sat + side * log_uniform(rng, 1e-6, 1.0)
            P = _PSat_T(T_sat)
            yield "near-sat", lambda T=T, P=P: state_TP(T, P, "near-sat")
        else:
            rho_liquid, rho_vapour = sat_densities(T_sat)
            eps = log_uniform(rng, 1e-7, 1e-2)
            rho = rho_liquid * (1 + eps) if side > 0 else rho_vapour * (1 - eps)
            yield "near-sat", lambda T=T_sat, rho=rho: state_rho_T(rho, T, "near-sat",
                                                                  sat_densities)
    for _ in range(500):  # either side of the region boundaries
        d = rng.choice((-1.0, 1.0)) * log_uniform(rng, 1e-7, 0.5)
        kind = rng.randrange(3)
        if kind == 0:  # 623.15 K: regions 1/3 above the saturation pressure
            T, P = T_13 + d, rng.uniform(Ps_623 + 0.5, P_MAX)
        elif kind == 1:  # the B23 line: regions 2/3
            P = rng.uniform(Ps_623 + 0.5, P_MAX)
            T = _t_P(P) + d
        else:  # 1073.15 K: regions 2/5
            T, P = T_25 + d, log_uniform(rng, Pmin, P_MAX_5)
        yield "boundary", lambda T=T, P=P: state_TP(T, P, "boundary")
    for _ in range(300):  # the limits of the range
        kind = rng.randrange(5)
        if kind == 0:
            T, P = T_MIN, log_uniform(rng, _PSat_T(T_MIN) * 1.0001, P_MAX)
        elif kind == 1:
            T, P = rng.uniform(T_MIN, T_25), P_MAX
        elif kind == 2:
            T, P = T_25, log_uniform(rng, Pmin, P_MAX)
        elif kind == 3:
            T, P = T_MAX, log_uniform(rng, Pmin, P_MAX_5)
        else:
            T, P = rng.uniform(T_25, T_MAX), P_MAX_5
        yield "limit", lambda T=T, P=P: state_TP(T, P, "limit")


# --- which input pairs reach a state unambiguously ------------------------------------------

class SaturationTable:
    """Saturated properties on a fine temperature grid, to find two-phase pairs with two
    solutions (the density maximum of liquid water folds v' and the mixture volume)."""

    def __init__(self):
        n = 3000
        self.rows = []
        for k in range(n + 1):  # closer together towards the critical point
            T = T_MIN + (TC - 0.01 - T_MIN) * (1.0 - (1.0 - k / n) ** 2)
            try:
                liquid, vapour = saturated(T)
            except Skip:
                continue
            for phase in (liquid, vapour):
                phase["u"] = phase["h"] - 1000.0 * phase["P"] * phase["v"]
            self.rows.append((T, liquid, vapour))
        # the critical point closes the dome: a volume line may cross it within the last 0.01 K
        critical = _Region3(RHOC, TC)
        critical["u"] = critical["h"] - 1000.0 * critical["P"] * critical["v"]
        self.rows.append((TC, critical, critical))

    def solutions(self, v, other, value):
        """Number of sign changes of other(T) - value along the line of volume v, where other
        is 'h', 's', 'u' (at the quality that gives v) or 'x' (v at quality value)."""
        signs = []
        for _, liquid, vapour in self.rows:
            dv = vapour["v"] - liquid["v"]
            if other == "x":
                g = liquid["v"] + value * dv - v
            elif dv == 0.0:
                signs.append(None)
                continue
            else:
                x = (v - liquid["v"]) / dv
                if not 0.0 <= x <= 1.0:
                    signs.append(None)
                    continue
                g = liquid[other] + x * (vapour[other] - liquid[other]) - value
            signs.append(g > 0.0)
        changes = 0
        for a, b in zip(signs, signs[1:]):
            if a is not None and b is not None and a != b:
                changes += 1
        return changes


# IF97's regions meet with small inconsistencies: at a boundary the neighbouring equations give
# slightly different v, h, s and u (and heat capacities differing by up to a few tenths of a
# percent). Close to a boundary an input pair other than (P, T) may therefore be met by the
# neighbouring region's equation too, inside that region's closed domain: such a pair has two
# valid answers and is not offered.

def in_region(region, T, P):
    if not (0.0 < P):
        return False
    if region == 1:
        return T_MIN <= T <= T_13 and _PSat_T(T) <= P <= P_MAX
    if region == 2:
        if T < T_MIN or T > T_25 or P > P_MAX:
            return False
        return P <= p_max_vapour(T)
    if region == 3:
        return T_13 <= T and _P23_T(T) <= P <= P_MAX
    return T_25 <= T <= T_MAX and P <= P_MAX_5


def neighbours(row):
    T, P, zone = row["T_K"], row["P_MPa"], row["zone"]
    near = []
    if zone in ("1", "3") and P > Ps_623 and abs(T - T_13) < 2.0:
        near.append("3" if zone == "1" else "1")
    if zone in ("2", "3") and P >= Ps_623 and abs(T - _t_P(P)) < 2.0:
        near.append("3" if zone == "2" else "2")
    if zone in ("2", "5") and P <= P_MAX_5 and abs(T - T_25) < 2.0:
        near.append("5" if zone == "2" else "2")
    return near


def evaluate(region, a, b):
    """Properties of `region` at its own variables: (T, ln P), or (ln rho, T) for region 3."""
    if region == "3":
        props = _Region3(math.exp(a), b)
    else:
        props = {"1": _Region1, "2": _Region2, "5": _Region5}[region](a, math.exp(b))
    props["u"] = props["h"] - 1000.0 * props["P"] * props["v"]
    return props


def solve_in(region, row, pair):
    """(T, P) of the state of `region`'s equation with the row's values of the pair, or None."""
    names = {"P": "P", "T": "T", "v": "v", "h": "h", "s": "s", "u": "u"}
    target = [row[FIELD[c]] for c in pair]
    if region == "3":
        try:
            start = 1.0 / region3_TP(row["T_K"], row["P_MPa"])["v"]
        except Skip:
            start = 1.0 / row["v_m3_kg"]
        z = [math.log(start), row["T_K"]]
    else:
        z = [row["T_K"], math.log(row["P_MPa"])]

    def residual(z):
        props = evaluate(region, *z)
        return [(props[names[c]] - t) / max(abs(t), 1.0) for c, t in zip(pair, target)], props

    for _ in range(60):
        try:
            r, props = residual(z)
            if max(abs(r[0]), abs(r[1])) < 1e-13:
                return props["T"], props["P"]
            jac = []
            for k in range(2):
                dz = list(z)
                dz[k] += 1e-7 * max(abs(z[k]), 1.0)
                rk, _ = residual(dz)
                jac.append([(rk[i] - r[i]) / (dz[k] - z[k]) for i in range(2)])
            det = jac[0][0] * jac[1][1] - jac[1][0] * jac[0][1]
            step0 = (-r[0] * jac[1][1] + r[1] * jac[1][0]) / det
            step1 = (-r[1] * jac[0][0] + r[0] * jac[0][1]) / det
            z = [z[0] + step0, z[1] + step1]
        except (ZeroDivisionError, OverflowError, ValueError):
            return None
    return None


def has_second_solution(row, pair):
    for region in neighbours(row):
        solution = solve_in(region, row, pair)
        if solution is not None and in_region(int(region), *solution):
            return True
    return False


def pairs_of(row, table):
    key = {"h": "h_kJ_kg", "s": "s_kJ_kgK", "u": "u_kJ_kg", "x": "x"}
    if row["zone"] == "4sat":
        pairs = ["Px", "Tx", "vx"]
    elif row["zone"] == "4":
        pairs = list(TWO_PHASE_PAIRS)
    else:
        pairs = [p for p in SINGLE_PAIRS
                 if not (p in FOLDING_PAIRS and row["zone"] == "1" and row["T_K"] < T_FOLD)
                 and not (p != "PT" and has_second_solution(row, p))]
    if row["zone"] in ("4", "4sat"):
        for pair in ("vh", "vs", "vu", "vx"):
            if pair in pairs and table.solutions(row["v_m3_kg"], pair[1],
                                                 row[key[pair[1]]]) != 1:
                pairs.remove(pair)
    return pairs


# --- python3-iapws's own solvers, as a cross-check -------------------------------------------

CHECKED = {"PT": ("T", "P"), "Ph": ("P", "h"), "Ps": ("P", "s"), "hs": ("h", "s"),
           "Px": ("P", "x"), "Tx": ("T", "x")}
FIELD = {"T": "T_K", "P": "P_MPa", "h": "h_kJ_kg", "s": "s_kJ_kgK", "x": "x", "v": "v_m3_kg",
         "u": "u_kJ_kg"}


def cross_check(row, stats):
    """Solves the state again through IAPWS97 from each pair it accepts and records the worst
    relative deviation of T, P, v, h and s from the row (python3-iapws's own iterations)."""
    for pair in row["pairs"]:
        if pair not in CHECKED:
            continue
        kwargs = {name: row[FIELD[name]] for name in CHECKED[pair]}
        entry = stats.setdefault((pair, row["zone"]),
                                 {"calls": 0, "failed": 0, "worst": 0.0, "where": None})
        entry["calls"] += 1
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("ignore")
                state = IAPWS97(**kwargs)
            got = {"T": state.T, "P": state.P, "v": state.v, "h": state.h, "s": state.s}
        except Exception:  # noqa: BLE001 - python3-iapws raises several kinds
            entry["failed"] += 1
            continue
        for name, value in got.items():
            if value is None:
                continue
            reference = row[FIELD[name]]
            deviation = abs(value - reference) / max(abs(reference), 1.0)
            if not math.isfinite(deviation):
                entry["failed"] += 1
                break
            if deviation > entry["worst"]:
                entry["worst"] = deviation
                entry["where"] = (row["tag"], name, row["T_K"], row["P_MPa"])


# --- output -------------------------------------------------------------------------------

def text(value):
    if value is None:
        return ""
    if isinstance(value, str):
        return value
    return repr(float(value))


def main():
    out_path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "reference_grid.csv")
    rng = random.Random(SEED)
    table = SaturationTable()
    sat_cache = {}

    def sat_densities(T):
        if T not in sat_cache:
            liquid, vapour = saturated(T)
            sat_cache[T] = (1.0 / liquid["v"], 1.0 / vapour["v"])
        return sat_cache[T]

    rows, skipped, stats = [], {}, {}
    for tag, thunk in sample_states(rng, sat_densities):
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("ignore")
                row = thunk()
        except (Skip, NotImplementedError, ValueError, ZeroDivisionError, OverflowError) as e:
            reason = f"{tag}: {e}" if isinstance(e, Skip) else f"{tag}: {type(e).__name__}"
            skipped[reason] = skipped.get(reason, 0) + 1
            continue
        row["pairs"] = pairs_of(row, table)
        cross_check(row, stats)
        rows.append(row)

    version = getattr(iapws, "__version__", "?")
    with open(out_path, "w", encoding="ascii", newline="\n") as f:
        f.write(f"# IAPWS-IF97 reference states from python3-iapws {version} "
                f"(Debian python3-iapws), written by make_reference_grid.py, seed {SEED}\n")
        f.write("# units: P MPa, T K, v m3/kg, h and u kJ/kg, s cv cp kJ/(kg K), w m/s, "
                "eta Pa s, lambda W/(m K), sigma N/m, drho_dp_T kg/(m3 MPa)\n")
        f.write("# zone: IF97 region 1 2 3 5, 4 two-phase mixture, 4sat saturated liquid (x=0) "
                "or vapour (x=1); pairs: the input pairs that reach the state unambiguously\n")
        f.write(",".join(COLUMNS) + "\n")
        for row in rows:
            row = dict(row, pairs=" ".join(row["pairs"]))
            f.write(",".join(text(row.get(c)) for c in COLUMNS) + "\n")

    zones = {}
    for row in rows:
        zones[row["zone"]] = zones.get(row["zone"], 0) + 1
    print(f"python3-iapws {version}: {len(rows)} states written to {out_path}")
    print("by zone:", dict(sorted(zones.items())))
    print("skipped:", sum(skipped.values()), dict(sorted(skipped.items())))
    for (pair, zone), entry in sorted(stats.items()):
        print(f"IAPWS97({pair}), zone {zone}: {entry['calls']} calls, {entry['failed']} failed, "
              f"worst relative deviation of T, P, v, h, s {entry['worst']:.2e} {entry['where']}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
