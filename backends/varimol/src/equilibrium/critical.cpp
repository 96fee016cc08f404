#include "equilibrium/critical.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

namespace {

constexpr double R = gas_constant;

// Q_ij = d ln f_i/d n_j at constant T and total volume V for the amounts n (N moles in all).
// ln f is of degree zero in (n, V): Q(n, V) = Q(x, V/N)/N with the one-mole matrix of the model.
bool q_matrix(const fluid& f, const temperature_terms<double>& t, double V, const double* n,
              mat& Q) {
    const int nc = f.n;
    double N = 0.0;
    vec x{};
    for (int i = 0; i < nc; ++i) N += n[i];
    if (!(N > 0.0)) return false;
    for (int i = 0; i < nc; ++i) {
        if (!(n[i] > 0.0)) return false;
        x[i] = n[i] / N;
    }
    double P;
    if (fugacity_derivatives_tv(f, t, V / N, x.data(), P, Q) != 0) return false;
    for (int i = 0; i < nc; ++i)
        for (int j = 0; j < nc; ++j) Q[i * mc + j] /= N;
    return true;
}

// Smallest eigenvalue and its eigenvector of the symmetric n x n matrix a (cyclic Jacobi
// rotations; a is overwritten).
void min_eigen(int n, mat& a, double& lam, vec& u) {
    mat e{};
    for (int i = 0; i < n; ++i) e[i * mc + i] = 1.0;
    for (int sweep = 0; sweep < 60; ++sweep) {
        double off = 0.0, diag = 0.0;
        for (int i = 0; i < n; ++i) {
            diag += a[i * mc + i] * a[i * mc + i];
            for (int j = i + 1; j < n; ++j) off += a[i * mc + j] * a[i * mc + j];
        }
        if (off <= 1e-32 * diag) break;
        for (int p = 0; p < n; ++p)
            for (int q = p + 1; q < n; ++q) {
                const double apq = a[p * mc + q];
                if (apq == 0.0) continue;
                const double theta = (a[q * mc + q] - a[p * mc + p]) / (2.0 * apq);
                const double tn = (theta >= 0.0 ? 1.0 : -1.0) /
                                  (std::abs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(tn * tn + 1.0), s = tn * c;
                for (int k = 0; k < n; ++k) {
                    const double akp = a[k * mc + p], akq = a[k * mc + q];
                    a[k * mc + p] = c * akp - s * akq;
                    a[k * mc + q] = s * akp + c * akq;
                }
                for (int k = 0; k < n; ++k) {
                    const double apk = a[p * mc + k], aqk = a[q * mc + k];
                    a[p * mc + k] = c * apk - s * aqk;
                    a[q * mc + k] = s * apk + c * aqk;
                }
                for (int k = 0; k < n; ++k) {
                    const double ekp = e[k * mc + p], ekq = e[k * mc + q];
                    e[k * mc + p] = c * ekp - s * ekq;
                    e[k * mc + q] = s * ekp + c * ekq;
                }
            }
    }
    int m = 0;
    for (int i = 1; i < n; ++i)
        if (a[i * mc + i] < a[m * mc + m]) m = i;
    lam = a[m * mc + m];
    for (int i = 0; i < n; ++i) u[i] = e[i * mc + m];
}

struct searcher {
    const fluid& f;
    const double* z;
    vec sz{}; // sqrt(z)

    // smallest eigenvalue of B at (T, V) and its eigenvector, oriented so that the amounts
    // dn = sqrt(z) u add moles (sum dn > 0); false where the state cannot be evaluated
    bool eigen(double T, double V, double& lam, vec& u) const {
        mat Q;
        temperature_terms<double> t;
        at_temperature(f, T, t);
        if (!q_matrix(f, t, V, z, Q)) return false;
        const int n = f.n;
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) Q[i * mc + j] *= sz[i] * sz[j];
        min_eigen(n, Q, lam, u);
        double s = 0.0;
        for (int i = 0; i < n; ++i) s += sz[i] * u[i];
        if (s < 0.0)
            for (int i = 0; i < n; ++i) u[i] = -u[i];
        return std::isfinite(lam);
    }

    // temperature of the stability limit at V, from T (grown or shrunk by `factor` until
    // bracketed); Illinois regula falsi, bisection next to states that cannot be evaluated
    int limit_temperature(double V, double& T, double factor, vec& u) const {
        double lam;
        bool ok = eigen(T, V, lam, u);
        double hi = 0.0, lo = 0.0, fhi = 0.0, flo = 0.0;
        bool lo_ok = false;
        if (ok && lam > 0.0) {
            hi = T, fhi = lam;
            double t = T;
            for (int k = 0;; ++k) {
                if (k == 200 || t < 1e-3 * T) return 301;
                t /= factor;
                if (!eigen(t, V, lam, u)) {
                    lo = t;
                    break;
                }
                if (lam <= 0.0) {
                    lo = t, flo = lam, lo_ok = true;
                    break;
                }
                hi = t, fhi = lam;
            }
        } else {
            lo = T, flo = ok ? lam : 0.0, lo_ok = ok;
            double t = T;
            for (int k = 0;; ++k) {
                if (k == 200 || t > 1e3 * T) return 301;
                t *= factor;
                if (!eigen(t, V, lam, u)) {
                    lo = t, lo_ok = false;
                    continue;
                }
                if (lam > 0.0) {
                    hi = t, fhi = lam;
                    break;
                }
                lo = t, flo = lam, lo_ok = true;
            }
        }
        int side = 0;
        for (int it = 0; it < 200; ++it) {
            double t;
            if (lo_ok) {
                t = (lo * fhi - hi * flo) / (fhi - flo);
                if (!(t > lo && t < hi)) t = 0.5 * (lo + hi);
            } else {
                t = 0.5 * (lo + hi);
            }
            if (!eigen(t, V, lam, u)) {
                lo = t, lo_ok = false;
                continue;
            }
            if (lam == 0.0 || hi - lo <= 4e-16 * hi) {
                T = t;
                return 0;
            }
            if (lam > 0.0) {
                hi = t, fhi = lam;
                if (side == 1 && lo_ok) flo *= 0.5;
                side = 1;
            } else {
                lo = t, flo = lam, lo_ok = true;
                if (side == -1) fhi *= 0.5;
                side = -1;
            }
            if (std::abs(lam) < 1e-15 || hi - lo <= 1e-15 * hi) {
                T = t;
                return 0;
            }
        }
        return 302;
    }

    // the cubic form at (T, V) along dn = sqrt(z) u, by a fourth-order central difference of
    // b(s) = dn^T Q(z + s dn) dn
    int cubic_form(double T, double V, const vec& u, double& c) const {
        const int n = f.n;
        vec dn{};
        double h = 1e-3;
        for (int i = 0; i < n; ++i) {
            dn[i] = sz[i] * u[i];
            h = std::min(h, 0.25 * sz[i]);
        }
        temperature_terms<double> t;
        at_temperature(f, T, t);
        double b[4];
        const double s[4] = {-2.0 * h, -h, h, 2.0 * h};
        for (int k = 0; k < 4; ++k) {
            vec nk{};
            for (int i = 0; i < n; ++i) nk[i] = z[i] + s[k] * dn[i];
            mat Q;
            if (!q_matrix(f, t, V, nk.data(), Q)) return 310;
            double sum = 0.0;
            for (int i = 0; i < n; ++i) {
                double r = 0.0;
                for (int j = 0; j < n; ++j) r += Q[i * mc + j] * dn[j];
                sum += dn[i] * r;
            }
            b[k] = sum;
        }
        c = (8.0 * (b[2] - b[1]) - (b[3] - b[0])) / (12.0 * h);
        return std::isfinite(c) ? 0 : 310;
    }

    // the cubic form on the stability limit at V; T carries the start in and the limit out
    int along_limit(double V, double& T, double factor, double& c) const {
        vec u{};
        if (int e = limit_temperature(V, T, factor, u)) return e;
        return cubic_form(T, V, u, c);
    }
};


// Illinois regula falsi in ln(V/b) between two volumes where the cubic form has opposite signs
int refine(const searcher& s, double bmix, double ra, double ca, double ta, double rb, double cb,
           double tb, double& r, double& T) {
    double la = std::log(ra), lb = std::log(rb);
    r = ra, T = ta;
    int side = 0;
    for (int it = 0; it < 100; ++it) {
        double l = (la * cb - lb * ca) / (cb - ca);
        if (!(l > std::min(la, lb) && l < std::max(la, lb))) l = 0.5 * (la + lb);
        double t = std::abs(l - la) < std::abs(l - lb) ? ta : tb, c;
        if (int e = s.along_limit(std::exp(l) * bmix, t, 1.002, c)) return e;
        r = std::exp(l), T = t;
        if (c == 0.0) return 0;
        if ((c > 0.0) == (ca > 0.0)) {
            la = l, ca = c, ta = t;
            if (side == -1) cb *= 0.5;
            side = -1;
        } else {
            lb = l, cb = c, tb = t;
            if (side == 1) ca *= 0.5;
            side = 1;
        }
        if (std::abs(la - lb) < 1e-13) return 0;
    }
    return 304;
}

// the pressure at the solution; false unless it is positive
bool finish(const fluid& f, const double* z, double v, double T, critical_state& out) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    double P;
    mat Q;
    if (fugacity_derivatives_tv(f, t, v, z, P, Q) != 0) return false;
    if (!(P > 0.0) || !std::isfinite(P) || !std::isfinite(T)) return false;
    out.T = T;
    out.P = P;
    out.v = v;
    return true;
}

} // namespace

int critical_point(const fluid& f, const double* z, double T_guess, double v_guess,
                   critical_state& out) {
    const int n = f.n;
    searcher s{f, z};
    double bmix = 0.0, tpc = 0.0;
    for (int i = 0; i < n; ++i) {
        s.sz[i] = std::sqrt(z[i]);
        bmix += z[i] * f.comp[i].b;
        tpc += z[i] * f.comp[i].tc;
    }
    const bool warm = T_guess > 0.0 && v_guess > bmix;
    double T0 = warm ? T_guess : 1.5 * tpc;
    const double r0 = warm ? v_guess / bmix : 4.0;
    const double tfac = warm ? 1.01 : 1.1, rfac = warm ? 1.03 : 1.15;
    double c0;
    if (int e = s.along_limit(r0 * bmix, T0, tfac, c0)) return e;
    // bracket a sign change of the cubic form in ln(V/b), searching both ways from the start;
    // a root with a pressure that is not positive is passed over and the search goes on
    double rup = r0, cup = c0, tup = T0, rdn = r0, cdn = c0, tdn = T0;
    bool up_open = true, dn_open = true;
    int last = 303;
    if (c0 == 0.0) {
        if (finish(f, z, r0 * bmix, T0, out)) return 0;
    }
    for (int k = 0; k < 60 && (up_open || dn_open); ++k) {
        for (int dir = 0; dir < 2; ++dir) {
            bool& open = dir == 0 ? up_open : dn_open;
            double& rs = dir == 0 ? rup : rdn;
            double& cs = dir == 0 ? cup : cdn;
            double& ts = dir == 0 ? tup : tdn;
            if (!open) continue;
            const double r = dir == 0 ? rs * rfac : rs / rfac;
            double t = ts, c;
            if (r > 40.0 || r < 1.05 || s.along_limit(r * bmix, t, 1.01, c) != 0) {
                open = false;
                continue;
            }
            if ((c > 0.0) != (cs > 0.0)) {
                double rr, tt;
                const int e = refine(s, bmix, rs, cs, ts, r, c, t, rr, tt);
                if (e == 0 && finish(f, z, rr * bmix, tt, out)) return 0;
                last = e ? e : 300;
            }
            rs = r, cs = c, ts = t;
        }
    }
    return last;
}

} // namespace varimol
