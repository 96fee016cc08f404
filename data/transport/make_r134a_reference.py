#!/usr/bin/python3
"""Evaluates the published thermal-conductivity correlation of R134a at fixed (T, rho) states, the
reference against which the library's own corresponding-states model is checked on R134a.

No printed checking table of that correlation was found, so its published coefficients are
evaluated here, from the equations of the papers:
- conductivity: R. A. Perkins, A. Laesecke, J. Howley, M. L. V. Ramires, A. N. Gurova, L. Cusco,
  "Experimental thermal conductivity values for the IUPAC round-robin sample of
  1,1,1,2-tetrafluoroethane (R134a)", NIST IR 6605 (2000): dilute gas linear in T, a residual
  polynomial in density, and the simplified critical enhancement of Olchowy and Sengers,
  Int. J. Thermophys. 10 (1989) 417;
- the thermodynamic properties that the critical enhancement needs (cp, cv, (d rho/d p)_T): the
  equation of state of R. Tillner-Roth, H. D. Baehr, J. Phys. Chem. Ref. Data 23 (1994) 657
  (its ideal-gas and residual Helmholtz energy);
- the viscosity in the enhancement's denominator: M. L. Huber, A. Laesecke, R. A. Perkins,
  Ind. Eng. Chem. Res. 42 (2003) 3163 (the R134a viscosity correlation of that paper).
The enhancement is a few per cent of the conductivity near the saturated liquid and negligible in
the dilute gas, where the value is the dilute-gas line alone.

Run with Debian's Python: /usr/bin/python3 data/transport/make_r134a_reference.py
It prints CSV rows in the columns of reference_values.csv (tag PL2000) and the pressure and share
of the critical enhancement of each state on standard error. With --check it compares instead the
equation of state with Tillner-Roth and Baehr's saturation table and the conductivity and viscosity
with the values of an open property code's test list (see README.md); exit code 0 when all agree.
"""
import math
import sys

from scipy.optimize import fsolve

R = 8.314471  # J/(mol K), of the equation of state
M = 102.032e-3  # kg/mol
K_B = 1.380649e-23  # J/K

# ---- Tillner-Roth and Baehr (1994): residual Helmholtz energy ------------------------------------
TC_EOS, RHOC_EOS = 374.18, 508.0  # K, kg/m3: reducing parameters of the equation
# (n_i, d_i, t_i, c_i); c_i = 0: polynomial term
EOS_TERMS = [
    (0.5586817e-1, 2, -0.5, 0),
    (0.4982230e0, 1, 0.0, 0),
    (0.2458698e-1, 3, 0.0, 0),
    (0.8570145e-3, 6, 0.0, 0),
    (0.4788584e-3, 6, 1.5, 0),
    (-0.1800808e1, 1, 1.5, 0),
    (0.2671641e0, 1, 2.0, 0),
    (-0.4781652e-1, 2, 2.0, 0),
    (0.1423987e-1, 5, 1.0, 1),
    (0.3324062e0, 2, 3.0, 1),
    (-0.7485907e-2, 2, 5.0, 1),
    (0.1017263e-3, 4, 1.0, 2),
    (-0.5184567e0, 1, 5.0, 2),
    (-0.8692288e-1, 4, 5.0, 2),
    (0.2057144e0, 1, 6.0, 2),
    (-0.5000457e-2, 2, 10.0, 2),
    (0.4603262e-3, 4, 10.0, 2),
    (-0.3497836e-2, 1, 10.0, 3),
    (0.6995038e-2, 5, 18.0, 3),
    (-0.1452184e-1, 3, 22.0, 3),
    (-0.1285458e-3, 10, 50.0, 4),
]
# ideal part: a1 + a2 tau + a3 ln tau + a4 tau^-1/2 + a5 tau^-3/4 + ln delta
A3, A4, A5 = -1.629789, -9.723916, -3.927170


def residual(delta, tau):
    """alpha^r and its derivatives: (a_d, a_dd, a_tt, a_dt), each times the powers of delta/tau
    that make them dimensionless (delta a_d, delta^2 a_dd, tau^2 a_tt, delta tau a_dt)."""
    d1 = d2 = t2 = dt = 0.0
    for n, d, t, c in EOS_TERMS:
        term = n * delta**d * tau**t
        if c == 0:
            g, dg, ddg = d, d * (d - 1), 0.0
        else:
            dc = delta**c
            term *= math.exp(-dc)
            g = d - c * dc
            ddg = -c * c * dc  # delta d/d(delta) of g
            dg = g * (g - 1) + ddg
        d1 += term * g
        d2 += term * dg
        t2 += term * t * (t - 1)
        dt += term * g * t
    return d1, d2, t2, dt


def thermo(t, rho):
    """p (Pa), cv, cp (J/(kg K)) and (d rho/d p)_T (kg/(m3 Pa)) at t (K), rho (kg/m3)."""
    r = R / M
    delta, tau = rho / RHOC_EOS, TC_EOS / t
    d1, d2, t2, dt = residual(delta, tau)
    ideal_t2 = -A3 + 0.75 * A4 * tau**-0.5 + 1.3125 * A5 * tau**-0.75  # tau^2 alpha0_tt
    cv = -r * (ideal_t2 + t2)
    dp_drho = r * t * (1 + 2 * d1 + d2)
    cp = cv + r * (1 + d1 - dt) ** 2 / (1 + 2 * d1 + d2)
    return rho * r * t * (1 + d1), cv, cp, 1.0 / dp_drho


def saturation(t):
    """Liquid and vapour densities (kg/m3) at t (K): equal pressure and Gibbs energy, solved in
    the logarithms of the densities from the guesses of a vapour-pressure estimate."""
    def gibbs(rho):  # g/(RT) less a function of T alone
        delta, tau = rho / RHOC_EOS, TC_EOS / t
        ar = sum(n * delta**d * tau**tt * (math.exp(-delta**c) if c else 1.0)
                 for n, d, tt, c in EOS_TERMS)
        return ar + residual(delta, tau)[0] + math.log(delta)

    def equations(x):
        rl, rv = math.exp(x[0]), math.exp(x[1])
        scale = R / M * t * RHOC_EOS
        return [(thermo(t, rl)[0] - thermo(t, rv)[0]) / scale, gibbs(rl) - gibbs(rv)]

    theta = 1 - t / TC
    p_guess = PC * math.exp(TC / t * (-7.7513 * theta + 2.9263 * theta**1.5 - 2.6622 * theta**1.9
                                      - 3.9711 * theta**4.25))
    guess_v = p_guess / (R / M * t) * 1.1
    guess_l = RHOC_EOS * (1 + 2.6 * theta**0.35)
    x = fsolve(equations, [math.log(guess_l), math.log(guess_v)], xtol=1e-12)
    return math.exp(x[0]), math.exp(x[1])


# ---- Huber, Laesecke and Perkins (2003): viscosity of R134a, Pa s ---------------------------------
def viscosity(t, rho):
    sigma, eps_k, m_g = 0.46893, 299.363, 102.031  # nm, K, g/mol
    tstar = t / eps_k
    ln_t = math.log(tstar)
    omega = math.exp(0.355404 - 0.464337 * ln_t + 0.257353e-1 * ln_t**2)
    eta0 = 0.021357 * math.sqrt(m_g * t) / (sigma**2 * omega)  # uPa s
    # second viscosity virial coefficient of Rainwater and Friend, reduced by N_A sigma^3
    b = [(-19.572881, 0), (219.73999, -0.25), (-1015.3226, -0.5), (2471.0125, -0.75),
         (-3375.1717, -1.0), (2491.6597, -1.25), (-787.26086, -1.5), (14.085455, -2.5),
         (-0.34664158, -5.5)]
    b_star = sum(c * tstar**e for c, e in b)
    n_a_sigma3 = 6.0221408e23 * (sigma * 1e-9) ** 3  # m3/mol
    rho_molar = rho / (m_g * 1e-3)
    eta1 = eta0 * b_star * n_a_sigma3 * rho_molar
    # higher-density terms in mPa s, with tau = 374.21 K / T and delta = rho / 511.9 kg/m3; the
    # close-packed density delta0 is a function of T / 374.21 K
    tau, delta, tr = 374.21 / t, rho / 511.9, t / 374.21
    e = [(-0.206900719e-1, 0, 1), (0.356029549e-3, 6, 2), (0.211101816e-2, 2, 2),
         (0.139601415e-1, 0.5, 2), (-0.456435020e-2, -2, 2), (-0.351593275e-2, 0, 3)]
    eta_h = sum(c * tau**ti * delta**di for c, ti, di in e)
    delta0 = 3.163695636 / (1 - 0.890173375e-1 * tr + 0.100035295 * tr**2)
    eta_cp = 0.214763320 / (delta0 - delta) - 0.214763320 / delta0
    return 1e-6 * (eta0 + eta1) + 1e-3 * (eta_h + eta_cp)


# ---- Perkins et al. (2000): thermal conductivity of R134a, W/(m K) -------------------------------
RHO_REF = 5.049886 * 102.031  # kg/m3
TC, PC, RHOC = 374.21, 4.05928e6, 511.9  # K, Pa, kg/m3: critical point of the enhancement
T_REF = 561.411  # K, 1.5 Tc
NU, GAMMA, R0, XI0, BIG_GAMMA, QD_INV = 0.63, 1.239, 1.03, 0.194e-9, 0.0496, 5.285356e-10


def dilute(t):
    return -1.05248e-2 + 8.00982e-5 * t


def background(rho):
    delta = rho / RHO_REF
    b = [1.836526, 5.126143, -1.436883, 0.6261441]
    return 2.055e-3 * sum(bi * delta ** (i + 1) for i, bi in enumerate(b))


def enhancement(t, rho):
    if rho <= 0.0:
        return 0.0
    _, cv, cp, drho_dp = thermo(t, rho)
    drho_dp_ref = thermo(T_REF, rho)[3]
    chi = PC * rho / RHOC**2 * (drho_dp - T_REF / t * drho_dp_ref)
    if chi <= 0.0:
        return 0.0
    xi = XI0 * (chi / BIG_GAMMA) ** (NU / GAMMA)
    y = xi / QD_INV
    omega = 2 / math.pi * ((cp - cv) / cp * math.atan(y) + cv / cp * y)
    omega0 = 2 / math.pi * (1 - math.exp(-1 / (1 / y + (y * RHOC / rho) ** 2 / 3)))
    return rho * cp * R0 * K_B * t / (6 * math.pi * viscosity(t, rho) * xi) * (omega - omega0)


def conductivity(t, rho):
    return dilute(t) + background(rho) + enhancement(t, rho)


# (phase, T K, rho kg/m3): the dilute gas, vapour at about 0.1 MPa and 1 MPa, compressed liquid
# from near the triple point to 0.88 Tc (densities above the saturated liquid's)
STATES = [
    ("gas", 250.0, 0.0),
    ("gas", 300.0, 0.0),
    ("gas", 400.0, 0.0),
    ("gas", 300.0, 4.2),
    ("gas", 350.0, 40.0),
    ("liquid", 200.0, 1520.0),
    ("liquid", 250.0, 1380.0),
    ("liquid", 300.0, 1210.0),
    ("liquid", 330.0, 1100.0),
]

# Values of the same correlations at four states, restated in the transport validation list of an
# open property code (CoolProp, src/Tests/CoolProp-Tests.cpp), where they were computed with
# another program: (what, T K, saturated phase or None for the dilute gas, value in SI units).
# --check reproduces them; the saturated densities come from the equation of state above.
CHECK = [
    ("lambda", 240.0, None, 0.008698768),
    ("lambda", 330.0, None, 0.015907606),
    ("lambda", 330.0, "liquid", 0.06746432253),
    ("lambda", 240.0, "vapour", 0.00873242359),
    ("eta", 185.0, "liquid", 0.0012698376398294414),
    ("eta", 185.0, "vapour", 7.4290821400170869e-06),
    ("eta", 360.0, "liquid", 7.8146319978982133e-05),
    ("eta", 360.0, "vapour", 1.7140264998576107e-05),
]


# Tillner-Roth and Baehr (1994), Table 8 (saturation): T K, p MPa, liquid and vapour density
# kg/m3, liquid cv and cp, vapour cv and cp kJ/(kg K), with the number of decimals printed there.
TABLE8 = [
    (250.0, 0.11561, 1367.9, 5.9546, 0.8515, 1.2865, 0.6962, 0.8044),
    (300.0, 0.70282, 1199.7, 34.193, 0.9144, 1.4324, 0.8426, 1.0438),
    (350.0, 2.4611, 951.32, 140.99, 1.0037, 1.9614, 1.0301, 1.8494),
]


def decimals(printed):
    text = repr(printed)
    return len(text.split(".")[1]) if "." in text else 0


def check():
    failures = 0
    for row in TABLE8:
        t = row[0]
        rl, rv = saturation(t)
        pl, cvl, cpl, _ = thermo(t, rl)
        _, cvv, cpv, _ = thermo(t, rv)
        computed = (1e-6 * pl, rl, rv, 1e-3 * cvl, 1e-3 * cpl, 1e-3 * cvv, 1e-3 * cpv)
        for value, printed in zip(computed, row[1:]):
            if round(value, decimals(printed)) != printed:
                failures += 1
                print("Table 8 at %g K: %.8g does not round to %r" % (t, value, printed))
    print("Table 8 (saturation at 250, 300, 350 K): %d of %d values off" % (failures, 21))
    worst = 0.0
    for what, t, phase, expected in CHECK:
        rho = 0.0 if phase is None else saturation(t)[0 if phase == "liquid" else 1]
        value = conductivity(t, rho) if what == "lambda" else viscosity(t, rho)
        deviation = value / expected - 1
        worst = max(worst, abs(deviation))
        print("%-6s T %6.2f K  rho %10.4f kg/m3  %.10g  listed %.10g  %+.1e" % (
            what, t, rho, value, expected, deviation))
    return 0 if worst < 1e-4 and failures == 0 else 1


def main():
    if "--check" in sys.argv:
        return check()
    for phase, t, rho in STATES:
        lam = conductivity(t, rho)
        print("R134a,PL2000,%s,%g,%g,kg/m3,,%.5g" % (phase, t, rho, 1e3 * lam))
        print("#   p %.4f MPa, critical enhancement %.2f %%" % (
            1e-6 * thermo(t, rho)[0] if rho > 0 else 0.0, 100 * enhancement(t, rho) / lam),
            file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main())
