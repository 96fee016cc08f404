#!/usr/bin/python3
"""Reference values for the cubic equation-of-state back-end.

Independent implementation of the two-parameter cubic equations of state
(Peng-Robinson with the Stryjek-Vera or the 1978 alpha, Soave-Redlich-Kwong),
van der Waals one-fluid mixing with kij and Wong-Sandler mixing with NRTL, and
of the phase-equilibrium problems solved with them: pure-fluid saturation,
fugacity coefficients, PT flash, bubble pressure, dew temperature.

Every derivative comes from one function, the reduced residual Helmholtz energy
F(T, V, n) = A^r/(RT), evaluated in second-order Taylor arithmetic: F, its
gradient and its Hessian in (T, V, n_1..n_N) are exact up to rounding.  The
equilibrium solutions are polished by Newton steps until the fugacity residuals
are at rounding level, and each table row is checked before it is written.

Run: /usr/bin/python3 data/varimol/reference.py  (rewrites the CSV tables of
this folder deterministically; needs NumPy only).
"""

import csv
import math
import os
import sys

import numpy as np

R = 8.314462618          # J/(mol K): CODATA 2018 N_A k_B to ten digits, as in the back-end
T_REF = 298.15           # K, ideal-gas reference temperature
P_REF = 101325.0         # Pa, ideal-gas reference pressure

HERE = os.path.dirname(os.path.abspath(__file__))
FLUIDS = os.path.join(HERE, '..', 'fluids')
NMAX = 5                 # widest mixture written to the tables

# Tolerances checked before a row is written.
TOL_EQ = 1e-13           # max |ln f_i' - ln f_i''| (relative fugacity difference)


# --------------------------------------------------------------------------
# Second-order Taylor arithmetic (value, gradient, Hessian) on numpy arrays.
# A T2 of shape S holds v (S), g (S + (m,)) and H (S + (m, m)).
# --------------------------------------------------------------------------
class T2:
    __slots__ = ('v', 'g', 'H')
    __array_ufunc__ = None      # numpy arrays defer to the T2 operators

    def __init__(self, v, g, H):
        self.v, self.g, self.H = v, g, H

    @staticmethod
    def const(c, m):
        c = np.asarray(c, dtype=float)
        return T2(c, np.zeros(c.shape + (m,)), np.zeros(c.shape + (m, m)))

    def __getitem__(self, idx):
        return T2(self.v[idx], self.g[idx], self.H[idx])

    def __neg__(self):
        return T2(-self.v, -self.g, -self.H)

    def __add__(self, o):
        if isinstance(o, T2):
            return T2(self.v + o.v, self.g + o.g, self.H + o.H)
        o = np.asarray(o, dtype=float)
        return T2(self.v + o, self.g + np.zeros(o.shape + (1,)), self.H + np.zeros(o.shape + (1, 1)))

    __radd__ = __add__

    def __sub__(self, o):
        return self + (-o)

    def __rsub__(self, o):
        return (-self) + o

    def __mul__(self, o):
        if isinstance(o, T2):
            a, b = self, o
            v = a.v * b.v
            g = a.v[..., None] * b.g + b.v[..., None] * a.g
            H = (a.v[..., None, None] * b.H + b.v[..., None, None] * a.H
                 + a.g[..., :, None] * b.g[..., None, :] + b.g[..., :, None] * a.g[..., None, :])
            return T2(v, g, H)
        o = np.asarray(o, dtype=float)
        return T2(self.v * o, self.g * o[..., None], self.H * o[..., None, None])

    __rmul__ = __mul__

    def _unary(self, f0, f1, f2):
        g = f1[..., None] * self.g
        H = f1[..., None, None] * self.H + f2[..., None, None] * self.g[..., :, None] * self.g[..., None, :]
        return T2(f0, g, H)

    def recip(self):
        r = 1.0 / self.v
        return self._unary(r, -r * r, 2.0 * r * r * r)

    def __truediv__(self, o):
        if isinstance(o, T2):
            return self * o.recip()
        return self * (1.0 / np.asarray(o, dtype=float))

    def __rtruediv__(self, o):
        return self.recip() * o

    def log(self):
        r = 1.0 / self.v
        return self._unary(np.log(self.v), r, -r * r)

    def exp(self):
        e = np.exp(self.v)
        return self._unary(e, e, e)

    def sqrt(self):
        s = np.sqrt(self.v)
        return self._unary(s, 0.5 / s, -0.25 / (s * self.v))

    def sum(self, axis=None):
        if axis is None:
            nd = self.v.ndim
            ax = tuple(range(nd))
            return T2(self.v.sum(axis=ax) if nd else self.v, self.g.sum(axis=ax) if nd else self.g,
                      self.H.sum(axis=ax) if nd else self.H)
        return T2(self.v.sum(axis=axis), self.g.sum(axis=axis), self.H.sum(axis=axis))


def variables(values):
    """Independent variables: one scalar T2 per entry of values (scalars or 1-D arrays)."""
    flat = []
    for v in values:
        flat.extend(np.atleast_1d(np.asarray(v, dtype=float)))
    m = len(flat)
    out, k = [], 0
    for v in values:
        arr = np.asarray(v, dtype=float)
        size = arr.size
        g = np.zeros(arr.shape + (m,))
        if arr.ndim == 0:
            g[k] = 1.0
        else:
            for i in range(size):
                g[i, k + i] = 1.0
        out.append(T2(arr.copy(), g, np.zeros(arr.shape + (m, m))))
        k += size
    return out


# --------------------------------------------------------------------------
# Cubic equations of state: p = RT/(v - b) - a/((v + d1 b)(v + d2 b))
# --------------------------------------------------------------------------
def critical_omegas(d1, d2):
    """Omega_a, Omega_b and Zc from the criticality conditions of the generic cubic.

    In Z = pv/RT the cubic is Z^3 + ((u-1)B - 1) Z^2 + ((w-u)B^2 - uB + A) Z
    - (w B^3 + w B^2 + A B) = 0 with u = d1 + d2, w = d1 d2, A = a p/(RT)^2,
    B = b p/(RT).  At the critical point it has the triple root Zc, so
    -3Zc, 3Zc^2 and -Zc^3 equal its three coefficients.  Eliminating Zc and A
    leaves a cubic in B = Omega_b with one root in (0, 1/3)."""
    u, w = d1 + d2, d1 * d2

    def parts(B):
        Zc = (1.0 - (u - 1.0) * B) / 3.0
        A = 3.0 * Zc * Zc - (w - u) * B * B + u * B
        return Zc, A, Zc ** 3 - w * B ** 3 - w * B * B - A * B

    # polynomial coefficients of the residual in B, from four exact samples
    xs = np.array([0.0, 0.1, 0.2, 0.3])
    coef = np.polyfit(xs, [parts(x)[2] for x in xs], 3)
    cands = [r.real for r in np.roots(coef) if abs(r.imag) < 1e-9 and 0.0 < r.real < 1.0 / 3.0]
    assert len(cands) == 1
    B = cands[0]
    for _ in range(50):   # Newton polish on the exact residual
        h = 1e-6
        r = parts(B)[2]
        dr = (parts(B + h)[2] - parts(B - h)[2]) / (2 * h)
        step = r / dr
        B -= step
        if abs(step) < 1e-18:
            break
    Zc, A, _ = parts(B)
    return A, B, Zc


SQ2 = math.sqrt(2.0)
CUBICS = {
    'PR': dict(d1=1.0 + SQ2, d2=1.0 - SQ2),
    'SRK': dict(d1=1.0, d2=0.0),
}
for _name, _c in CUBICS.items():
    _c['Oa'], _c['Ob'], _c['Zc'] = critical_omegas(_c['d1'], _c['d2'])

# the published values; the criticality conditions must give them
_STATED = {'PR': (0.4572355289213822, 0.07779607390388846),
           'SRK': (1.0 / (9.0 * (2.0 ** (1.0 / 3.0) - 1.0)), (2.0 ** (1.0 / 3.0) - 1.0) / 3.0)}
for _name, (_oa, _ob) in _STATED.items():
    assert abs(CUBICS[_name]['Oa'] / _oa - 1) < 4e-16, (_name, CUBICS[_name]['Oa'], _oa)
    assert abs(CUBICS[_name]['Ob'] / _ob - 1) < 4e-16, (_name, CUBICS[_name]['Ob'], _ob)
    CUBICS[_name]['Oa'], CUBICS[_name]['Ob'] = _oa, _ob

# Wong-Sandler constant of the Peng-Robinson family: C = ln(sqrt2 - 1)/sqrt2
C_WS_PR = math.log(SQ2 - 1.0) / SQ2

MODELS = {
    # name: (cubic, alpha function, mixing rule)
    'PRSV': ('PR', 'PRSV', 'vdW'),
    'PR': ('PR', 'PR78', 'vdW'),
    'SRK': ('SRK', 'SRK', 'vdW'),
    'PRSV-WS': ('PR', 'PRSV', 'WS'),
    'PR-WS': ('PR', 'PR78', 'WS'),
}


# --------------------------------------------------------------------------
# Fluid data
# --------------------------------------------------------------------------
def _read_csv(name):
    with open(os.path.join(FLUIDS, name), newline='') as f:
        return list(csv.DictReader(f))


COMPONENTS = {r['short_name']: r for r in _read_csv('components.csv') if r['short_name']}
KAPPA1 = {r['short_name']: float(r['kappa1']) for r in _read_csv('prsv_kappa1.csv') if r['short_name']}
KIJ = {}
for _r in _read_csv('pr_kij.csv'):
    if _r['short_name1'] and _r['short_name2']:
        KIJ[(_r['short_name1'], _r['short_name2'])] = float(_r['kij'])
        KIJ[(_r['short_name2'], _r['short_name1'])] = float(_r['kij'])


def component(name):
    r = COMPONENTS[name]
    return dict(name=name, tc=float(r['tc_K']), pc=float(r['pc_Pa']), w=float(r['acentric']),
                mm=float(r['molar_mass_kg_per_mol']), kappa1=KAPPA1.get(name, 0.0),
                cp=[float(r['cp0_a%d' % k]) for k in range(5)])


def kij_of(n1, n2):
    return 0.0 if n1 == n2 else KIJ.get((n1, n2), 0.0)


class Model:
    """A cubic equation of state with its alpha function and mixing rule for
    a fixed list of components.  ws = dict(tau, alpha, k) holds the NRTL tau_ij,
    the NRTL alpha_ij and the Wong-Sandler k_ij as N x N arrays."""

    def __init__(self, name, names, ws=None, kij=None):
        self.name = name
        cubic, self.alpha_kind, self.mixing = MODELS[name]
        c = CUBICS[cubic]
        self.d1, self.d2 = c['d1'], c['d2']
        self.names = list(names)
        comps = [component(n) for n in names]
        self.N = N = len(comps)
        self.tc = np.array([q['tc'] for q in comps])
        self.pc = np.array([q['pc'] for q in comps])
        self.w = np.array([q['w'] for q in comps])
        self.mm = np.array([q['mm'] for q in comps])
        self.kappa1 = np.array([q['kappa1'] for q in comps]) if self.alpha_kind == 'PRSV' else np.zeros(N)
        self.cp = np.array([q['cp'] for q in comps])           # cp0/R coefficients a0..a4
        self.ac = c['Oa'] * (R * self.tc) ** 2 / self.pc
        self.b = c['Ob'] * R * self.tc / self.pc
        w = self.w
        if self.alpha_kind == 'PRSV':
            self.kappa0 = 0.378893 + 1.4897153 * w - 0.17131848 * w ** 2 + 0.0196554 * w ** 3
        elif self.alpha_kind == 'PR78':
            self.kappa0 = np.where(w <= 0.491, 0.37464 + 1.54226 * w - 0.26992 * w ** 2,
                                   0.379642 + 1.48503 * w - 0.164423 * w ** 2 + 0.016666 * w ** 3)
        else:
            self.kappa0 = 0.480 + 1.574 * w - 0.176 * w ** 2
        if kij is None:
            kij = np.array([[kij_of(a, b) for b in names] for a in names])
        self.kij = np.asarray(kij, dtype=float)
        if self.mixing == 'WS':
            assert ws is not None and cubic == 'PR'
            self.tau = np.asarray(ws['tau'], dtype=float)
            self.nrtl_alpha = np.asarray(ws['alpha'], dtype=float)
            self.kws = np.asarray(ws['k'], dtype=float)
            self.G = np.exp(-self.nrtl_alpha * self.tau)
            self.C = C_WS_PR

    # ---- pure-component energy parameter a_i(T) as T2 of shape (N,)
    def a_pure(self, T):
        Tr = T * (1.0 / self.tc)
        sTr = Tr.sqrt()
        kappa = T2.const(self.kappa0, T.g.shape[-1])
        if self.alpha_kind == 'PRSV':
            below = (Tr.v < 0.7).astype(float)   # kappa1 term acts below Tr = 0.7 only
            kappa = kappa + (self.kappa1 * below) * ((1.0 + sTr) * (0.7 - Tr))
        m = 1.0 + kappa * (1.0 - sTr)
        return (m * m) * self.ac

    # ---- B = n b_m and D = n^2 a_m as T2 scalars
    def mix(self, T, n):
        a = self.a_pure(T)
        if self.mixing == 'vdW':
            sa = a.sqrt()
            aij = (sa[:, None] * sa[None, :]) * (1.0 - self.kij)
            D = ((n[:, None] * n[None, :]) * aij).sum()
            B = (n * self.b).sum()
            return B, D
        # Wong-Sandler (AIChE J. 38 (1992) 671) with the NRTL excess Helmholtz energy
        ntot = n.sum()
        x = n * ntot.recip()
        RT = T * R
        q = self.b - a / RT                                   # (b - a/RT)_i
        qij = (q[:, None] + q[None, :]) * (0.5 * (1.0 - self.kws))
        Q = ((x[:, None] * x[None, :]) * qij).sum()
        num = (x[:, None] * (self.tau * self.G)).sum(axis=0)  # sum_j x_j tau_ji G_ji
        den = (x[:, None] * self.G).sum(axis=0)               # sum_k x_k G_ki
        AE_RT = (x * num / den).sum()
        Dw = (x * a / (RT * self.b)).sum() + AE_RT / self.C
        bm = Q / (1.0 - Dw)
        am = RT * bm * Dw
        return ntot * bm, ntot * ntot * am

    # ---- reduced residual Helmholtz energy F = A^r/(RT) with derivatives in (T, V, n)
    def helmholtz(self, T, V, n):
        Tt, Vt, nt = variables([T, V, np.asarray(n, dtype=float)])
        B, D = self.mix(Tt, nt)
        ntot = nt.sum()
        g = (1.0 - B / Vt).log()
        f = ((Vt + self.d1 * B) / (Vt + self.d2 * B)).log() / (B * (R * (self.d1 - self.d2)))
        return -(ntot * g) - D / Tt * f

    def ab_values(self, T, x):
        """Mixture a_m (Pa m6/mol2) and b_m (m3/mol) at T for mole fractions x."""
        Tt, nt = variables([T, np.asarray(x, dtype=float)])
        B, D = self.mix(Tt, nt)
        s = float(np.sum(x))
        return float(D.v) / s ** 2, float(B.v) / s

    # ---- ideal gas, per component: h0 = s0 = 0 at T_REF, P_REF
    def ideal(self, T):
        a = self.cp
        cp = R * (a[:, 0] + a[:, 1] * T + a[:, 2] * T ** 2 + a[:, 3] * T ** 3 + a[:, 4] * T ** 4)
        h = R * sum(a[:, k] * (T ** (k + 1) - T_REF ** (k + 1)) / (k + 1) for k in range(5))
        s = R * (a[:, 0] * math.log(T / T_REF)
                 + sum(a[:, k] * (T ** k - T_REF ** k) / k for k in range(1, 5)))
        return cp, h, s

    # ---- volume roots at (T, p, x)
    def volume_roots(self, T, p, x):
        a, b = self.ab_values(T, x)
        A, B = a * p / (R * T) ** 2, b * p / (R * T)
        u, w = self.d1 + self.d2, self.d1 * self.d2
        coef = [1.0, (u - 1.0) * B - 1.0, (w - u) * B * B - u * B + A, -(w * B ** 3 + w * B * B + A * B)]
        zs = sorted(z.real for z in np.roots(coef) if abs(z.imag) <= 1e-7 * abs(z) and z.real > B)
        d1, d2 = self.d1, self.d2
        out = []
        for z in zs:
            v = z * R * T / p
            for _ in range(100):
                q1, q2 = v + d1 * b, v + d2 * b
                f = R * T / (v - b) - a / (q1 * q2) - p
                df = -R * T / (v - b) ** 2 + a * (q1 + q2) / (q1 * q2) ** 2
                if df >= 0:     # not on a mechanically stable branch
                    break
                dv = f / df
                v -= dv
                if abs(dv) <= 1e-16 * v:
                    break
            if df < 0 and v > b and all(abs(v / o - 1) > 1e-9 for o in out):
                out.append(v)
        return sorted(out)

    # ---- every property of one homogeneous phase at (T, molar V, x)
    def phase(self, T, v, x, p=None):
        """With p given (the pressure the root was solved for), ln phi and h use it:
        ln f_i = F_ni + ln(x_i RT/v) depends on v only, and a liquid's pressure
        recomputed from v carries the rounding of v times its large bulk modulus."""
        x = np.asarray(x, dtype=float)
        F = self.helmholtz(T, v, x)      # n = x (one mole), V = v
        g, H = F.g, F.H
        RT = R * T
        n = 1.0
        FT, FV, Fn = g[0], g[1], g[2:]
        FTT, FTV, FVV = H[0, 0], H[0, 1], H[1, 1]
        FTn, FVn, Fnn = H[0, 2:], H[1, 2:], H[2:, 2:]
        p_calc = RT * (n / v - FV)
        p = p_calc if p is None else p
        Z = p * v / RT
        lnphi = Fn - math.log(Z)
        PV = -RT * FVV - n * RT / v ** 2
        PT = p / T - RT * FTV
        Pn = RT * (1.0 / v - FVn)
        dlnphi_dn = Fnn + 1.0 / n + np.outer(Pn, Pn) / (RT * PV)     # d ln phi_i / d n_j at T, p
        dlnphi_dT = FTn + 1.0 / T + Pn * PT / (RT * PV)               # at p, n
        dlnphi_dp = -Pn / (PV * RT) - 1.0 / p                         # at T, n
        cp0, h0, s0 = self.ideal(T)
        xl = np.where(x > 0, x, 1.0)
        ur = -RT * T * FT
        sr = -R * (T * FT + F.v)
        h = float(x @ h0) + ur + p * v - RT
        s = float(x @ s0) - R * math.log(RT / (v * P_REF)) - R * float(x @ np.log(xl)) + sr
        cv = float(x @ cp0) - R - R * (2.0 * T * FT + T * T * FTT)
        cp = cv - T * PT ** 2 / PV
        return dict(T=T, v=v, p=p, p_calc=p_calc, Z=Z, lnphi=lnphi, dlnphi_dn=dlnphi_dn, dlnphi_dT=dlnphi_dT,
                    dlnphi_dp=dlnphi_dp, h=h, s=s, u=h - p * v, cv=cv, cp=cp, dpdv=PV, dpdt=PT,
                    g_res=float(x @ (np.log(xl) + lnphi)))

    def phase_tp(self, T, p, x, root='stable'):
        """Phase at (T, p) on the liquid-like ('L', smallest), vapour-like ('V', largest)
        or lowest-Gibbs-energy ('stable') root of the cubic."""
        vs = self.volume_roots(T, p, x)
        if not vs:
            raise ValueError('no volume root at T=%r p=%r' % (T, p))
        if root == 'L':
            return self.phase(T, vs[0], x, p)
        if root == 'V':
            return self.phase(T, vs[-1], x, p)
        phs = [self.phase(T, v, x, p) for v in (vs[0], vs[-1])]
        return min(phs, key=lambda q: q['g_res'])


# --------------------------------------------------------------------------
# Pure-fluid saturation
# --------------------------------------------------------------------------
def spinodal_pressures(m, T):
    a, b = m.ab_values(T, [1.0])
    d1, d2 = m.d1, m.d2
    # dp/dv = 0:  RT ((v+d1 b)(v+d2 b))^2 - a (2v + (d1+d2) b)(v - b)^2 = 0
    P = np.polynomial.polynomial
    q = P.polymul([d1 * b, 1.0], [d2 * b, 1.0])
    poly = P.polysub(R * T * P.polymul(q, q), a * P.polymul([(d1 + d2) * b, 2.0], P.polymul([-b, 1.0], [-b, 1.0])))
    vs = sorted(r.real for r in P.polyroots(poly) if abs(r.imag) < 1e-9 * abs(r) and r.real > b)
    if len(vs) < 2:
        return None
    pr = lambda v: R * T / (v - b) - a / ((v + d1 * b) * (v + d2 * b))
    return pr(vs[-2]), pr(vs[-1])


def pure_saturation(m, T):
    """Saturation pressure of a pure fluid: ln phi_L = ln phi_V, solved by bracketed
    Newton in p (d(ln phi_L - ln phi_V)/dp = (v_L - v_V)/RT < 0)."""
    pmin, pmax = spinodal_pressures(m, T)
    lo, hi = max(pmin, 0.0), pmax
    tc, pc, w = m.tc[0], m.pc[0], m.w[0]
    p = pc * 10.0 ** (7.0 / 3.0 * (1.0 + w) * (1.0 - tc / T))
    if not lo < p < hi:
        p = 0.5 * (lo + hi) if lo > 0 else hi * 0.5
    x = [1.0]
    best = None
    for it in range(200):
        vs = m.volume_roots(T, p, x)
        if len(vs) < 2:   # numerically on a spinodal: bisect the bracket
            p = 0.5 * (lo + hi) if lo > 0 else 0.5 * min(p, hi)
            continue
        L, V = m.phase(T, vs[0], x, p), m.phase(T, vs[-1], x, p)
        G = L['lnphi'][0] - V['lnphi'][0]
        if best is None or abs(G) < abs(best[0]):
            best = (G, p, L, V)
        if G > 0:
            lo = max(lo, p)
        else:
            hi = min(hi, p)
        if abs(G) < 1e-16 or (it > 5 and abs(G) < 4e-15 and abs(best[0]) <= abs(G)):
            break
        pn = p - G * R * T / (L['v'] - V['v'])
        if not lo < pn < hi:   # Newton left the bracket: bisect (halve p while lo is 0)
            pn = 0.5 * (lo + hi) if lo > 0 else 0.5 * p
        if abs(pn - p) <= 1e-17 * p:
            break
        p = pn
    G, p, L, V = best
    assert abs(G) < TOL_EQ, (m.name, m.names, T, G)
    return p, L, V, abs(G)


# --------------------------------------------------------------------------
# Mixture equilibria
# --------------------------------------------------------------------------
def wilson_k(m, T, p):
    return m.pc / p * np.exp(5.373 * (1.0 + m.w) * (1.0 - m.tc / T))


def rachford_rice(z, K):
    """Vapour fraction from sum z (K-1)/(1 + beta (K-1)) = 0 inside the window where
    all phase amounts are positive (bracketed Newton)."""
    c = K - 1.0
    lo, hi = 1.0 / (1.0 - K.max()), 1.0 / (1.0 - K.min())
    beta = min(max(0.5, lo + 1e-3 * (hi - lo)), hi - 1e-3 * (hi - lo))
    for _ in range(200):
        d = 1.0 + beta * c
        f = float(np.sum(z * c / d))
        df = -float(np.sum(z * c * c / (d * d)))
        if f > 0:
            lo = beta
        else:
            hi = beta
        bn = beta - f / df
        if not lo < bn < hi:
            bn = 0.5 * (lo + hi)
        if abs(bn - beta) <= 1e-16 * max(abs(beta), 1e-300):
            beta = bn
            break
        beta = bn
    return beta


def tpd_min(m, T, p, z, extra_trials=()):
    """Michelsen's tangent-plane test by successive substitution from Wilson
    vapour/liquid-like starts, near-pure starts of every component and extra
    trial compositions.  Returns (min tm, its trial composition)."""
    z = np.asarray(z, dtype=float)
    feed = m.phase_tp(T, p, z)
    d = np.log(np.where(z > 0, z, 1e-300)) + feed['lnphi']
    K = wilson_k(m, T, p)
    trials = [z * K, z / K]
    for i in range(m.N):
        w = np.full(m.N, 1e-3 / max(m.N - 1, 1))
        w[i] = 1.0 - 1e-3
        trials.append(w)
    trials.extend(np.asarray(t, dtype=float) for t in extra_trials)
    best = (np.inf, None)
    for W in trials:
        lnW = np.log(W)
        tm = np.inf
        for _ in range(300):
            wn = np.exp(lnW) / np.exp(lnW).sum()
            ph = m.phase_tp(T, p, wn)
            new = d - ph['lnphi']
            tm = 1.0 + float(np.exp(new) @ (new + ph['lnphi'] - d - 1.0))
            step = np.max(np.abs(new - lnW))
            lnW = new
            if step < 1e-10:
                break
        W = np.exp(lnW)
        wn = W / W.sum()
        ph = m.phase_tp(T, p, wn)
        tm = 1.0 + float(W @ (np.log(W) + ph['lnphi'] - d - 1.0))
        if tm < best[0]:
            best = (tm, wn)
    return best


def flash_residual(m, T, p, vmol, lmol):
    V, L = vmol.sum(), lmol.sum()
    y, x = vmol / V, lmol / L
    pv, pl = m.phase_tp(T, p, y), m.phase_tp(T, p, x)
    gres = np.log(y) + pv['lnphi'] - np.log(x) - pl['lnphi']
    return gres, pv, pl


def pt_flash(m, T, p, z, K0=None):
    """Two-phase PT flash: stability test for the start, successive substitution with
    Rachford-Rice, then Newton on the phase mole numbers (the less abundant phase's
    amounts are the unknowns, so both phase amounts stay exact)."""
    z = np.asarray(z, dtype=float)
    if K0 is None:
        tm, w = tpd_min(m, T, p, z)
        if tm >= -1e-12:
            raise ValueError('stable single phase at T=%r p=%r' % (T, p))
        feed = m.phase_tp(T, p, z)
        # the trial phase is the incipient one; take its side from its volume
        trial = m.phase_tp(T, p, w)
        K = w / z if trial['v'] > feed['v'] else z / w
    else:
        K = np.asarray(K0, dtype=float)
    for it in range(500):
        if K.max() <= 1.0 or K.min() >= 1.0:
            raise ValueError('trivial K at T=%r p=%r' % (T, p))
        beta = rachford_rice(z, K)
        x = z / (1.0 + beta * (K - 1.0))
        y = K * x
        x, y = x / x.sum(), y / y.sum()
        pl, pv = m.phase_tp(T, p, x), m.phase_tp(T, p, y)
        lnK = pl['lnphi'] - pv['lnphi']
        step = np.max(np.abs(lnK - np.log(K)))
        K = np.exp(lnK)
        if step < 1e-7 or it >= 40:
            break
    beta = rachford_rice(z, K)
    if not 0.0 < beta < 1.0:
        raise ValueError('flash beta %r outside (0,1) at T=%r p=%r' % (beta, T, p))
    x = z / (1.0 + beta * (K - 1.0))
    y = K * x
    vmol = beta * y
    use_v = beta <= 0.5
    unk = vmol.copy() if use_v else z - vmol

    def split(u):
        return (u, z - u) if use_v else (z - u, u)

    def gibbs(vm, lm, pv, pl):
        return float(vm @ (np.log(vm / vm.sum()) + pv['lnphi']) + lm @ (np.log(lm / lm.sum()) + pl['lnphi']))

    best = None
    stall = 0
    vmol, lmol = split(unk)
    gres, pv, pl = flash_residual(m, T, p, vmol, lmol)
    G = gibbs(vmol, lmol, pv, pl)
    for it in range(200):
        err = np.max(np.abs(gres))
        if best is None or err < best[0]:
            best = (err, vmol.copy(), lmol.copy(), pv, pl)
            stall = 0
        else:
            stall += 1
        if err == 0.0 or stall >= 3:
            break
        V, L = vmol.sum(), lmol.sum()
        # Hessian of the Gibbs energy in the vapour mole numbers
        J = (np.diag(1.0 / vmol) - 1.0 / V + pv['dlnphi_dn'] / V
             + np.diag(1.0 / lmol) - 1.0 / L + pl['dlnphi_dn'] / L)
        J = 0.5 * (J + J.T)
        lam = np.linalg.eigvalsh(J)
        if lam.min() <= 0:   # not convex here: shift to a descent direction
            J = J + (1e-8 * np.max(np.abs(lam)) - lam.min()) * np.eye(m.N)
        dv = -np.linalg.solve(J, gres)
        d = dv if use_v else -dv
        t = 1.0
        for i in range(m.N):   # keep every mole number positive
            if unk[i] + t * d[i] <= 0:
                t = min(t, -0.5 * unk[i] / d[i])
            oth = z[i] - unk[i]
            if oth - t * d[i] <= 0:
                t = min(t, 0.5 * oth / d[i])
        for _ in range(40):   # backtrack on the Gibbs energy while far from the solution
            un = unk + t * d
            vm, lm = split(un)
            gr, pvn, pln = flash_residual(m, T, p, vm, lm)
            Gn = gibbs(vm, lm, pvn, pln)
            if err < 1e-8 or Gn <= G + 1e-14 * abs(G):
                break
            t *= 0.5
        unk, vmol, lmol, gres, pv, pl, G = un, vm, lm, gr, pvn, pln, Gn
    err, vmol, lmol, pv, pl = best
    # name the phases by mass density: the vapour is the less dense one (by molar volume
    # a methane-rich phase can be the denser one beside a decane-rich liquid)
    if float(m.mm @ vmol) / vmol.sum() / pv['v'] > float(m.mm @ lmol) / lmol.sum() / pl['v']:
        vmol, lmol, pv, pl = lmol, vmol, pl, pv
        err = float(np.max(np.abs(flash_residual(m, T, p, vmol, lmol)[0])))
    return dict(beta=float(vmol.sum()), x=lmol / lmol.sum(), y=vmol / vmol.sum(), L=pl, V=pv,
                residual=float(err), vmol=vmol, lmol=lmol)


def saturation_point(m, z, kind, given, value, guess=None, max_it=200):
    """Bubble or dew point of feed z at given T (given='T', unknown p) or given p
    (given='p', unknown T).  Newton on (ln K_i, ln S), S the unknown of p or T.
    Without a guess, starts from Wilson K-values at the Wilson estimate of S and,
    if that ends in the trivial solution, at S scaled away from it.
    Returns dict(S, T, p, inc (incipient composition), lnK, residual)."""
    z = np.asarray(z, dtype=float)
    if guess is not None:
        return _saturation_newton(m, z, kind, given, value, np.array(guess[0], dtype=float), math.log(guess[1]), max_it,
                                  False)
    if given == 'T':
        T = value
        c = m.pc * np.exp(5.373 * (1 + m.w) * (1 - m.tc / T))
        S0 = float(z @ c) if kind == 'bubble' else 1.0 / float(z @ (1.0 / c))
        factors = (1.0, 0.3, 0.1, 0.03, 3.0)
    else:
        p = value

        def fw(T):
            K = wilson_k(m, T, p)
            return float(z @ K) - 1.0 if kind == 'bubble' else float(z @ (1.0 / K)) - 1.0
        lo, hi = 20.0, 2000.0
        for _ in range(200):
            mid = 0.5 * (lo + hi)
            if (fw(mid) > 0) == (kind == 'bubble'):
                hi = mid
            else:
                lo = mid
        S0 = 0.5 * (lo + hi)
        factors = (1.0, 1.1, 0.9, 1.25, 0.8)
    last = None
    for f in factors:
        S = S0 * f
        T, p = (value, S) if given == 'T' else (S, value)
        try:
            sol = _saturation_newton(m, z, kind, given, value, np.log(wilson_k(m, T, p)), math.log(S), max_it, True)
        except (ValueError, np.linalg.LinAlgError) as e:
            last = e
            continue
        if sol['residual'] < TOL_EQ and np.max(np.abs(sol['lnK'])) > 1e-3:
            return sol
        last = sol
    if isinstance(last, dict):
        return last
    raise ValueError('no %s point found: %s' % (kind, last))


def _saturation_newton(m, z, kind, given, value, lnK, lnS, max_it, presolve):
    N = m.N
    # the feed on its own side of the cubic, the incipient phase on the other
    rf, ri = ('L', 'V') if kind == 'bubble' else ('V', 'L')
    if presolve:
        # successive substitution in ln K with a Newton step in ln S on the summation
        # condition, to get near the solution before the full Newton
        for it in range(100):
            S = math.exp(lnS)
            T, p = (value, S) if given == 'T' else (S, value)
            K = np.exp(lnK)
            wv = z * K if kind == 'bubble' else z / K
            inc = wv / wv.sum()
            ph_f, ph_i = m.phase_tp(T, p, z, rf), m.phase_tp(T, p, inc, ri)
            phV, phL = (ph_i, ph_f) if kind == 'bubble' else (ph_f, ph_i)
            lnK_new = phL['lnphi'] - phV['lnphi']
            if given == 'T':
                dlnK = p * (phL['dlnphi_dp'] - phV['dlnphi_dp'])
            else:
                dlnK = T * (phL['dlnphi_dT'] - phV['dlnphi_dT'])
            if kind == 'bubble':
                wn = z * np.exp(lnK_new)
                f, df = math.log(wn.sum()), float((wn / wn.sum()) @ dlnK)
            else:
                wn = z / np.exp(lnK_new)
                f, df = math.log(wn.sum()), -float((wn / wn.sum()) @ dlnK)
            dS = -f / df if df != 0 else 0.0
            dS = max(-0.1, min(0.1, dS))
            change = max(np.max(np.abs(lnK_new - lnK)), abs(dS))
            lnK, lnS = lnK_new, lnS + dS
            if change < 1e-8:
                break
    best = None
    stall = 0
    for it in range(max_it):
        S = math.exp(lnS)
        T, p = (value, S) if given == 'T' else (S, value)
        K = np.exp(lnK)
        if kind == 'bubble':
            wv = z * K
            inc = wv / wv.sum()
            feedp, incp = m.phase_tp(T, p, z, rf), m.phase_tp(T, p, inc, ri)
            lnphiV, lnphiL = incp, feedp
        else:
            wv = z / K
            inc = wv / wv.sum()
            feedp, incp = m.phase_tp(T, p, z, rf), m.phase_tp(T, p, inc, ri)
            lnphiV, lnphiL = feedp, incp
        E = np.empty(N + 1)
        E[:N] = lnK + lnphiV['lnphi'] - lnphiL['lnphi']
        E[N] = wv.sum() - 1.0
        err = np.max(np.abs(E))
        if best is None or err < best[0]:
            best = (err, S, inc.copy(), lnK.copy(), T, p)
            stall = 0
        else:
            stall += 1
        if err == 0.0 or (err < 1e-14 and stall >= 2) or stall >= 6:
            break
        J = np.zeros((N + 1, N + 1))
        if kind == 'bubble':
            J[:N, :N] = np.eye(N) + incp['dlnphi_dn'] * inc[None, :]
            J[N, :N] = wv
        else:
            J[:N, :N] = np.eye(N) + incp['dlnphi_dn'] * inc[None, :]
            J[N, :N] = -wv
        if given == 'T':
            J[:N, N] = p * (lnphiV['dlnphi_dp'] - lnphiL['dlnphi_dp'])
        else:
            J[:N, N] = T * (lnphiV['dlnphi_dT'] - lnphiL['dlnphi_dT'])
        d = -np.linalg.solve(J, E)
        t = 1.0
        big = max(np.max(np.abs(d[:N])) / 1.0, abs(d[N]) / 0.2)
        if big > 1.0:
            t = 1.0 / big
        lnK = lnK + t * d[:N]
        lnS = lnS + t * d[N]
    err, S, inc, lnK, T, p = best
    # the roots used must be the stable ones of each phase
    for comp, root in ((z, rf), (inc, ri)):
        if abs(m.phase_tp(T, p, comp, root)['v'] / m.phase_tp(T, p, comp)['v'] - 1) > 1e-12:
            raise ValueError('%s point at T=%r p=%r is on a metastable root' % (kind, T, p))
    return dict(S=S, T=T, p=p, inc=inc, lnK=lnK, residual=float(err))


# --------------------------------------------------------------------------
# Output helpers
# --------------------------------------------------------------------------
def r(x):
    return repr(float(x))


def padded(prefix, values, fmt=r):
    vals = list(values)
    return {('%s%d' % (prefix, i + 1)): (fmt(vals[i]) if i < len(vals) else '') for i in range(NMAX)}


def write_csv(name, header, rows):
    with open(os.path.join(HERE, name), 'w', newline='') as f:
        wr = csv.DictWriter(f, fieldnames=header, lineterminator='\n')
        wr.writeheader()
        for row in rows:
            wr.writerow(row)
    print('wrote %s (%d rows)' % (name, len(rows)))


def cols(prefix):
    return ['%s%d' % (prefix, i + 1) for i in range(NMAX)]


MAXRES = {}


def note_res(table, res):
    MAXRES[table] = max(MAXRES.get(table, 0.0), float(res))


# --------------------------------------------------------------------------
# The mixtures and states of the tables
# --------------------------------------------------------------------------
PURE_FLUIDS = ['CH4', 'C2H6', 'C3H8', 'nC6', 'CO2', 'N2', 'H2O', 'R134a']
PURE_TR = [0.5, 0.6, 0.68, 0.8, 0.9, 0.98, 0.999, 0.9999, 0.99999]   # T/Tc; 0.7 (kink of the PRSV kappa) avoided
VDW_MODELS = ['PRSV', 'PR', 'SRK']

MIXTURES = {
    # name: (components, mole fractions, flash temperature K)
    'CH4/C2H6': (['CH4', 'C2H6'], [0.6, 0.4], 220.0),
    'CH4/nC10': (['CH4', 'nC10'], [0.7, 0.3], 400.0),
    'gas5': (['CH4', 'C2H6', 'C3H8', 'N2', 'CO2'], [0.85, 0.06, 0.03, 0.04, 0.02], 180.0),
    'air': (['N2', 'O2', 'Ar'], [0.7812, 0.2096, 0.0092], 85.0),
    'R32/R125': (['R32', 'R125'], [0.5, 0.5], 280.0),
}


def mix_cols(m, z):
    row = {'model': m.name, 'nc': str(m.N)}
    row.update(padded('fluid', m.names, fmt=str))
    row.update(padded('z', z))
    return row


def check_phase(ph, x):
    # Gibbs-Duhem at constant T and p: sum_i x_i d ln phi_i / d n_j = 0
    gd = np.max(np.abs(np.asarray(x) @ ph['dlnphi_dn']))
    scale = max(1.0, np.max(np.abs(ph['dlnphi_dn'])))
    assert gd < 1e-11 * scale, gd


def approach_critical(m, z, T0, kmax=0.05, kmin=0.01):
    """Walk up the bubble curve of z from T0 (then in p if T turns back) until the
    K-values are within kmax (and not within kmin) of 1; returns the last bubble point reached."""
    z = np.asarray(z, dtype=float)
    sol = saturation_point(m, z, 'bubble', 'T', T0)
    assert sol['residual'] < 1e-12 and np.max(np.abs(sol['lnK'])) > 1e-3
    for given in ('T', 'p'):
        step = 2.0 if given == 'T' else 0.02      # K, or relative p
        while step > (1e-5 if given == 'T' else 1e-7):
            cur = np.max(np.abs(sol['lnK']))
            if cur < kmax:
                return sol
            if given == 'T':
                val, guess = sol['T'] + step, (sol['lnK'], sol['p'])
            else:
                val, guess = sol['p'] * (1.0 + step), (sol['lnK'], sol['T'])
            try:
                new = saturation_point(m, z, 'bubble', given, val, guess=guess)
            except (ValueError, np.linalg.LinAlgError):
                new = None
            ok = (new is not None and new['residual'] < 1e-13 and kmin < np.max(np.abs(new['lnK'])) < cur
                  and abs(math.log(new['S'] / sol['S'])) < 0.5)
            if ok:
                sol = new
                step *= 1.5
            else:
                step *= 0.5
    return sol


def table_pure():
    rows = []
    for mn in VDW_MODELS:
        for fl in PURE_FLUIDS:
            m = Model(mn, [fl])
            for tr in PURE_TR:
                T = tr * m.tc[0]
                p, L, V, res = pure_saturation(m, T)
                note_res('pure_saturation', res)
                rows.append(dict(model=mn, fluid=fl, T_K=r(T), Tr=r(tr), psat_Pa=r(p), vL_m3_per_mol=r(L['v']),
                                 vV_m3_per_mol=r(V['v']), hL_J_per_mol=r(L['h']), hV_J_per_mol=r(V['h']),
                                 sL_J_per_molK=r(L['s']), sV_J_per_molK=r(V['s']), residual=r(res)))
    write_csv('pure_saturation.csv', list(rows[0].keys()), rows)


def table_lnphi():
    rows = []
    for mn in VDW_MODELS:
        for name, (names, z, _) in MIXTURES.items():
            m = Model(mn, names)
            z = np.array(z)
            tpc, ppc = float(z @ m.tc), float(z @ m.pc)
            for tf in (0.7, 1.1):
                for pf in (0.05, 0.5, 2.0):
                    T, p = tf * tpc, pf * ppc
                    vs = m.volume_roots(T, p, z)
                    kinds = [('single', vs[0])] if len(vs) == 1 else [('L', vs[0]), ('V', vs[-1])]
                    for kind, v in kinds:
                        ph = m.phase(T, v, z, p)
                        check_phase(ph, z)
                        assert abs(ph['p_calc'] / p - 1) < 1e-9
                        row = mix_cols(m, z)
                        row.update(mixture=name, T_K=r(T), p_Pa=r(p), root=kind, n_roots=str(len(vs)),
                                   v_m3_per_mol=r(v), h_J_per_mol=r(ph['h']), s_J_per_molK=r(ph['s']),
                                   cv_J_per_molK=r(ph['cv']), cp_J_per_molK=r(ph['cp']))
                        row.update(padded('lnphi', ph['lnphi']))
                        rows.append(row)
    hdr = ['model', 'mixture', 'nc'] + cols('fluid') + cols('z') + ['T_K', 'p_Pa', 'root', 'n_roots', 'v_m3_per_mol',
                                                                    'h_J_per_mol', 's_J_per_molK', 'cv_J_per_molK',
                                                                    'cp_J_per_molK'] + cols('lnphi')
    write_csv('mixture_lnphi.csv', hdr, rows)


def flash_row(m, name, case, T, p, z, K0=None):
    fl = pt_flash(m, T, p, z, K0)
    assert fl['residual'] < TOL_EQ, (m.name, name, case, fl['residual'])
    note_res('flash_pt', fl['residual'])
    x, y, beta = fl['x'], fl['y'], fl['beta']
    # mass balance and stability of the result
    mb = np.max(np.abs(fl['vmol'] + fl['lmol'] - z))
    assert mb < 1e-15, mb
    tm, _ = tpd_min(m, T, p, x, extra_trials=[y])
    assert tm > -1e-10, (m.name, name, case, tm)
    assert np.max(np.abs(x - y)) > 1e-4
    L, V = fl['L'], fl['V']
    row = mix_cols(m, z)
    row.update(mixture=name, case=case, T_K=r(T), p_Pa=r(p), beta=r(beta), vL_m3_per_mol=r(L['v']),
               vV_m3_per_mol=r(V['v']), h_J_per_mol=r((1 - beta) * L['h'] + beta * V['h']),
               s_J_per_molK=r((1 - beta) * L['s'] + beta * V['s']), residual=r(fl['residual']), tpd_min=r(tm))
    row.update(padded('x', x))
    row.update(padded('y', y))
    return row


def table_flash():
    rows = []
    for mn in VDW_MODELS:
        for name, (names, z, T) in MIXTURES.items():
            m = Model(mn, names)
            z = np.array(z)
            bub = saturation_point(m, z, 'bubble', 'T', T)
            dew = saturation_point(m, z, 'dew', 'T', T)
            assert bub['residual'] < TOL_EQ and dew['residual'] < TOL_EQ, (mn, name, bub['residual'], dew['residual'])
            pb, pd = bub['p'], dew['p']
            assert pb > pd * (1 + 1e-6), (mn, name, pb, pd)
            gap = pb - pd
            cases = [('near_dew_1e-6', pd + 1e-6 * gap), ('near_dew_1e-3', pd + 1e-3 * gap), ('middle', pd + 0.5 * gap),
                     ('near_bubble_1e-3', pb - 1e-3 * gap), ('near_bubble_1e-6', pb - 1e-6 * gap)]
            for case, p in cases:
                rows.append(flash_row(m, name, case, T, p, z))
            crit = approach_critical(m, z, T)
            zc = 0.5 * (z + crit['inc'])
            # started from the bubble point's K (a tangent-plane test this close to the
            # critical point converges too slowly to seed the flash); the result is
            # checked for stability like every other row
            rows.append(flash_row(m, name, 'near_critical', crit['T'], crit['p'], zc, K0=np.exp(crit['lnK'])))
            print(mn, name, 'near-critical K spread', np.max(np.abs(crit['lnK'])), crit['T'], crit['p'])
    hdr = ['model', 'mixture', 'case', 'nc'] + cols('fluid') + cols('z') + ['T_K', 'p_Pa', 'beta'] + cols('x') + cols('y') + [
        'vL_m3_per_mol', 'vV_m3_per_mol', 'h_J_per_mol', 's_J_per_molK', 'residual', 'tpd_min']
    write_csv('flash_pt.csv', hdr, rows)


BUBDEW = {
    # mixture: (temperatures of the bubble pressures K, pressures of the dew temperatures Pa)
    'CH4/C2H6': ([180.0, 240.0], [1.0e6, 4.0e6]),
    'CH4/nC10': ([300.0, 380.0], [1.0e6, 5.0e6]),
    'gas5': ([150.0, 190.0], [1.0e6, 4.0e6]),
    'air': ([80.0, 110.0], [101325.0, 1.5e6]),
    'R32/R125': ([250.0, 320.0], [5.0e5, 2.5e6]),
}


def bubdew_row(m, mixture, kind, z, T=None, p=None, extra=None):
    given, value = ('T', T) if T is not None else ('p', p)
    sol = saturation_point(m, z, kind, given, value)
    assert sol['residual'] < TOL_EQ, (m.name, mixture, kind, value, sol['residual'])
    assert np.max(np.abs(sol['lnK'])) > 1e-3
    note_res('bubble_dew', sol['residual'])
    T, p = sol['T'], sol['p']
    feed = m.phase_tp(T, p, z)
    inc = m.phase_tp(T, p, sol['inc'])
    # the incipient phase's tangent plane: the feed must be stable at its own bubble/dew point
    tm, _ = tpd_min(m, T, p, z, extra_trials=[sol['inc']])
    assert tm > -1e-10, (m.name, mixture, kind, tm)
    row = mix_cols(m, z)
    row.update(mixture=mixture, kind='bubble_p' if kind == 'bubble' else 'dew_T',
               T_K=r(T), p_Pa=r(p), v_feed_m3_per_mol=r(feed['v']), v_incipient_m3_per_mol=r(inc['v']),
               residual=r(sol['residual']))
    row.update(padded('w', sol['inc']))
    if extra:
        row.update(extra)
    return row


def table_bubdew():
    rows = []
    for mn in VDW_MODELS:
        for name, (names, z, _) in MIXTURES.items():
            m = Model(mn, names)
            z = np.array(z)
            Ts, ps = BUBDEW[name]
            for T in Ts:
                rows.append(bubdew_row(m, name, 'bubble', z, T=T))
            for p in ps:
                rows.append(bubdew_row(m, name, 'dew', z, p=p))
    hdr = ['model', 'mixture', 'kind', 'nc'] + cols('fluid') + cols('z') + ['T_K', 'p_Pa'] + cols('w') + [
        'v_feed_m3_per_mol', 'v_incipient_m3_per_mol', 'residual']
    write_csv('bubble_dew.csv', hdr, rows)


# Wong-Sandler binaries: illustrative NRTL parameters (constant, dimensionless tau_ij),
# chosen for a strongly non-ideal aqueous pair and a mildly non-ideal organic pair.
WS_BINARIES = {
    'H2O/EtOH': dict(names=['H2O', 'EtOH'], tau12=1.3, tau21=-0.1, alpha=0.3, k12=0.3, T=[350.0, 450.0]),
    'acetone/H2O': dict(names=['acetone', 'H2O'], tau12=0.6, tau21=1.6, alpha=0.3, k12=0.25, T=[330.0, 420.0]),
    'CO2/nC6': dict(names=['CO2', 'nC6'], tau12=0.4, tau21=0.2, alpha=0.3, k12=0.1, T=[280.0, 330.0]),
}


def ws_model(mn, b):
    N = 2
    tau = np.array([[0.0, b['tau12']], [b['tau21'], 0.0]])
    alpha = np.array([[0.0, b['alpha']], [b['alpha'], 0.0]])
    k = np.array([[0.0, b['k12']], [b['k12'], 0.0]])
    return Model(mn, b['names'], ws=dict(tau=tau, alpha=alpha, k=k), kij=np.zeros((N, N)))


def table_ws():
    rows = []
    for mn in ('PR-WS', 'PRSV-WS'):
        for name, b in WS_BINARIES.items():
            m = ws_model(mn, b)
            par = dict(model=mn, binary=name, fluid1=b['names'][0], fluid2=b['names'][1], tau12=r(b['tau12']),
                       tau21=r(b['tau21']), alpha12=r(b['alpha']), alpha21=r(b['alpha']), kws12=r(b['k12']))
            # fugacity coefficients and properties of both roots
            for T in b['T']:
                for x1 in (0.2, 0.7):
                    z = np.array([x1, 1.0 - x1])
                    bub = saturation_point(m, z, 'bubble', 'T', T)
                    assert bub['residual'] < TOL_EQ, (mn, name, T, x1, bub['residual'])
                    assert np.max(np.abs(bub['lnK'])) > 1e-3
                    note_res('wong_sandler', bub['residual'])
                    tm, _ = tpd_min(m, T, bub['p'], z, extra_trials=[bub['inc']])
                    assert tm > -1e-10, (mn, name, T, x1, tm)
                    row = dict(par, kind='bubble_p', x1=r(z[0]), x2=r(z[1]), T_K=r(T), p_Pa=r(bub['p']),
                               y1=r(bub['inc'][0]), y2=r(bub['inc'][1]), residual=r(bub['residual']))
                    rows.append(row)
                    # a single-phase state at half the bubble pressure, both roots where they exist
                    p = 0.5 * bub['p']
                    vs = m.volume_roots(T, p, z)
                    kinds = [('single', vs[0])] if len(vs) == 1 else [('L', vs[0]), ('V', vs[-1])]
                    for kind, v in kinds:
                        ph = m.phase(T, v, z, p)
                        check_phase(ph, z)
                        rows.append(dict(par, kind='lnphi_' + kind, x1=r(z[0]), x2=r(z[1]), T_K=r(T), p_Pa=r(p),
                                         v_m3_per_mol=r(v), h_J_per_mol=r(ph['h']), s_J_per_molK=r(ph['s']),
                                         cv_J_per_molK=r(ph['cv']), lnphi1=r(ph['lnphi'][0]),
                                         lnphi2=r(ph['lnphi'][1])))
    hdr = ['model', 'binary', 'kind', 'fluid1', 'fluid2', 'tau12', 'tau21', 'alpha12', 'alpha21', 'kws12', 'x1', 'x2',
           'T_K', 'p_Pa', 'y1', 'y2', 'v_m3_per_mol', 'h_J_per_mol', 's_J_per_molK', 'cv_J_per_molK', 'lnphi1',
           'lnphi2', 'residual']
    write_csv('wong_sandler.csv', hdr, rows)


def self_check():
    """Derivatives of the Taylor arithmetic against central differences, and the
    thermodynamic identities the properties must satisfy."""
    ws = WS_BINARIES['H2O/EtOH']
    cases = [(Model('PRSV', ['CH4', 'C2H6', 'CO2']), 200.0, [0.5, 0.3, 0.2]),
             (Model('SRK', ['N2', 'O2', 'Ar']), 100.0, [0.7, 0.2, 0.1]),
             (ws_model('PR-WS', ws), 400.0, [0.4, 0.6]),
             (ws_model('PRSV-WS', ws), 400.0, [0.4, 0.6])]
    for m, T, x in cases:
        x = np.array(x)
        for p in (2e4, 5e6):
            for root in ('L', 'V'):
                ph = m.phase_tp(T, p, x, root)
                v = ph['v']
                X = np.concatenate([[T, v], x])
                F = m.helmholtz(T, v, x)
                for k in range(len(X)):
                    h = 1e-6 * abs(X[k])
                    Xp, Xm = X.copy(), X.copy()
                    Xp[k] += h
                    Xm[k] -= h
                    Fp, Fm = m.helmholtz(Xp[0], Xp[1], Xp[2:]), m.helmholtz(Xm[0], Xm[1], Xm[2:])
                    d1 = (Fp.v - Fm.v) / (2 * h)
                    d2 = (Fp.g - Fm.g) / (2 * h)
                    assert abs(d1 - F.g[k]) <= 1e-7 * max(1.0, abs(F.g[k])) * max(1.0, abs(F.v)), (m.name, k, d1, F.g[k])
                    sc = np.maximum(1.0, np.abs(F.H[k]))
                    assert np.all(np.abs(d2 - F.H[k]) <= 1e-6 * sc * max(1.0, np.max(np.abs(F.g)))), (m.name, k)
                # G^r/RT = sum x ln phi = F + Z - 1 - ln Z (one mole)
                assert abs(float(x @ ph['lnphi']) - (F.v + ph['Z'] - 1 - math.log(ph['Z']))) < 1e-12
                check_phase(ph, x)
                # cv = (du/dT)_v, (ds/dT)_v = cv/T, (ds/dv)_T = (dp/dT)_v
                hT = 1e-4
                a, b = m.phase(T + hT, v, x), m.phase(T - hT, v, x)
                assert abs((a['u'] - b['u']) / (2 * hT) / ph['cv'] - 1) < 1e-7
                assert abs((a['s'] - b['s']) / (2 * hT) * T / ph['cv'] - 1) < 1e-7
                assert abs((a['p_calc'] - b['p_calc']) / (2 * hT) / ph['dpdt'] - 1) < 1e-7
                hv = 1e-6 * v
                a, b = m.phase(T, v + hv, x), m.phase(T, v - hv, x)
                assert abs((a['s'] - b['s']) / (2 * hv) / ph['dpdt'] - 1) < 1e-6
        # ideal-gas limit and reference state: h -> 0, s -> -R sum x ln x at T_REF, P_REF
        vbig = R * T_REF / 1e-3
        ph = m.phase(T_REF, vbig, x)
        assert abs(ph['h']) < 1e-3 and abs(ph['s'] + R * math.log(ph['p'] / P_REF) + R * float(x @ np.log(x))) < 1e-6
    # the Wong-Sandler rule: its second virial coefficient b - a/RT is quadratic in x
    m = ws_model('PR-WS', ws)
    T = 400.0
    for x1 in (0.2, 0.5):
        x = np.array([x1, 1 - x1])
        a, b = m.ab_values(T, x)
        ap = m.a_pure(variables([T])[0]).v
        q = m.b - ap / (R * T)
        qij = 0.5 * (q[:, None] + q[None, :]) * (1 - m.kws)
        assert abs((b - a / (R * T)) - x @ qij @ x) < 1e-18
    print('self-check passed')


# --------------------------------------------------------------------------
# Critical points of mixtures: the conditions of Heidemann and Khalil (AIChE J.
# 26 (1980) 769) written with the determinant of Q_ij = d ln f_i/d n_j at
# constant T and V, and solved for (T, V) simultaneously by Newton's method with
# a difference Jacobian.  The null vector comes from a singular-value
# decomposition; the cubic form is the s-derivative of dn^T Q(z + s dn) dn,
# from central differences extrapolated by Richardson's rule.
# --------------------------------------------------------------------------
def q_tv(m, T, V, n):
    F = m.helmholtz(T, V, n)
    Q = F.H[2:, 2:].copy()
    Q[np.diag_indices(m.N)] += 1.0 / np.asarray(n, dtype=float)
    return Q


def critical_conditions(m, z, T, V):
    z = np.asarray(z, dtype=float)
    Q = q_tv(m, T, V, z)
    s = np.sqrt(z)
    Bs = Q * np.outer(s, s)
    det = np.linalg.det(Bs)
    _, _, vt = np.linalg.svd(Bs)
    u = vt[-1]
    dn = s * u
    if dn.sum() < 0.0:
        dn = -dn

    def b(h):
        return dn @ q_tv(m, T, V, z + h * dn) @ dn

    def d1(h):
        return (b(h) - b(-h)) / (2.0 * h)
    h = 1e-3 * min(1.0, float(np.sqrt(z.min())))
    c = (4.0 * d1(h / 2.0) - d1(h)) / 3.0
    return det, c


def critical_point(m, z, T0=None, V0=None):
    z = np.asarray(z, dtype=float)
    bm = float(np.dot(z, m.b))
    T = T0 if T0 else float(np.dot(z, m.tc))
    lv = math.log(V0 if V0 else 4.0 * bm)
    for it in range(100):
        f0 = np.array(critical_conditions(m, z, T, math.exp(lv)))
        J = np.empty((2, 2))
        for k, (dT, dl) in enumerate(((1e-6 * T, 0.0), (0.0, 1e-6))):
            fp = np.array(critical_conditions(m, z, T + dT, math.exp(lv + dl)))
            fm = np.array(critical_conditions(m, z, T - dT, math.exp(lv - dl)))
            J[:, k] = (fp - fm) / (2.0 * (dT + dl))
        step = np.linalg.solve(J, -f0)
        lam = min(1.0, 0.1 * T / max(abs(step[0]), 1e-300), 0.3 / max(abs(step[1]), 1e-300))
        T += lam * step[0]
        lv += lam * step[1]
        if abs(step[0]) < 1e-11 * T and abs(step[1]) < 1e-11:
            break
    else:
        raise RuntimeError('critical point: no convergence')
    V = math.exp(lv)
    F = m.helmholtz(T, V, z)
    p = R * T * (1.0 / V - float(F.g[1]))
    # a critical point lies on the limit of stability: one zero eigenvalue, the others positive
    ev = np.linalg.eigvalsh(q_tv(m, T, V, z) * np.outer(np.sqrt(z), np.sqrt(z)))
    assert abs(ev[0]) < 1e-8 * max(1.0, ev[-1]) and (len(ev) == 1 or ev[1] > 0.0), ev
    return T, p, V


CRITICAL_CASES = [
    # (model, components, mole fractions)
    ('PRSV', ['CH4', 'C2H6'], [0.85, 0.15]),
    ('PRSV', ['CH4', 'C2H6'], [0.5, 0.5]),
    ('PR', ['CH4', 'C2H6'], [0.3, 0.7]),
    ('SRK', ['CH4', 'C3H8'], [0.6, 0.4]),
    ('PRSV', ['N2', 'O2', 'Ar'], [0.7812, 0.2096, 0.0092]),
    ('PRSV', ['CH4', 'C2H6', 'C3H8', 'N2', 'CO2'], [0.90, 0.05, 0.02, 0.02, 0.01]),
    ('PRSV', ['CH4', 'C2H6', 'C3H8', 'N2', 'CO2'], [0.85, 0.06, 0.03, 0.04, 0.02]),
    ('PRSV', ['CH4', 'nC10'], [0.9999, 0.0001]),
    ('PRSV', ['CH4', 'nC6'], [0.7, 0.3]),
    ('PRSV', ['CO2', 'C3H8'], [0.5, 0.5]),
    ('PRSV', ['R32', 'R125'], [0.7, 0.3]),
    ('SRK', ['R32', 'R125'], [0.5, 0.5]),
]


def table_critical():
    rows = []
    for model, names, z in CRITICAL_CASES:
        m = Model(model, names)
        tpc = float(np.dot(z, m.tc))
        for f in (1.0, 1.25, 1.5):     # starts along the temperature from Kay's rule
            try:
                T, p, V = critical_point(m, z, T0=f * tpc)
                break
            except (RuntimeError, np.linalg.LinAlgError, AssertionError, ValueError):
                continue
        else:
            raise RuntimeError('critical point of %s not found' % names)
        row = {'model': model, 'nc': str(len(names))}
        row.update(padded('fluid', names, fmt=str))
        row.update(padded('z', z))
        row.update(dict(Tc_K=r(T), Pc_Pa=r(p), Vc_m3_per_mol=r(V)))
        rows.append(row)
    header = ['model', 'nc'] + cols('fluid') + cols('z') + ['Tc_K', 'Pc_Pa', 'Vc_m3_per_mol']
    write_csv('critical_points.csv', header, rows)


def table_inputs():
    """The constants every table was computed with, so a test needs no other file."""
    used = list(PURE_FLUIDS)
    pairs = []
    for names, _, _ in MIXTURES.values():
        used += names
        pairs += [(a, b) for i, a in enumerate(names) for b in names[i + 1:]]
    for b in WS_BINARIES.values():
        used += b['names']
    used = sorted(set(used))
    rows = []
    for n in used:
        c = component(n)
        row = dict(fluid=n, tc_K=r(c['tc']), pc_Pa=r(c['pc']), acentric=r(c['w']), molar_mass_kg_per_mol=r(c['mm']),
                   kappa1=r(c['kappa1']))
        row.update({'cp0_a%d' % k: r(c['cp'][k]) for k in range(5)})
        rows.append(row)
    write_csv('inputs_components.csv', list(rows[0].keys()), rows)
    rows = [dict(fluid1=a, fluid2=b, kij=r(kij_of(a, b))) for a, b in pairs]
    write_csv('inputs_kij.csv', ['fluid1', 'fluid2', 'kij'], rows)


def main(which):
    import time
    t0 = time.time()
    self_check()
    table_inputs()
    if 'pure' in which:
        table_pure()
    if 'lnphi' in which:
        table_lnphi()
    if 'flash' in which:
        table_flash()
    if 'bubdew' in which:
        table_bubdew()
    if 'ws' in which:
        table_ws()
    if 'critical' in which:
        table_critical()
    print('max residuals:', MAXRES, '%.1f s' % (time.time() - t0))


if __name__ == '__main__':
    main(sys.argv[1:] or ['pure', 'lnphi', 'flash', 'bubdew', 'ws', 'critical'])
