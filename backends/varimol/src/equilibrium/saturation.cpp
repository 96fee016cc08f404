#include "equilibrium/saturation.hpp"

#include "equilibrium/linear.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace varimol {

namespace {
// Wilson's form of the vapour pressure, ln(P/Pc) = 5.373 (1 + w)(1 - Tc/T)
double wilson_psat(const component& c, double T) {
    return c.pc * std::exp(5.373 * (1.0 + c.acentric) * (1.0 - c.tc / T));
}

// d ln P/d ln T of the saturation curve at the critical point: the slope of the critical
// isochore, (Tc/Pc)(dP/dT)_v. Close to Tc, ln(Psat/Pc) = m (T/Tc - 1) up to terms of second
// order in (1 - T/Tc), while the window of pressures where the cubic has both roots narrows as
// (1 - T/Tc)^(3/2): the expansion puts the iteration inside the window there, where Wilson's
// form misses it.
double critical_slope(const fluid& f) {
    const component& c = f.comp[0];
    const double x[1] = {1.0};
    state_props sp;
    homogeneous(f, c.tc, f.vcrit, x, sp);
    const double m = sp.dpdt * c.tc / c.pc;
    return std::isfinite(m) && m > 1.0 ? m : 5.373 * (1.0 + c.acentric) * 2.302585092994046;
}

// relative size of the rounding of ln phi_L - ln phi_V: below it the equal-fugacity condition
// cannot tell pressures (or temperatures) apart
double lnphi_noise(const phase& L, const phase& V) {
    return 4e-16 * (1.0 + std::abs(L.lnphi[0]) + std::abs(V.lnphi[0]));
}

// Where the cubic has one root only, the state lies outside the pressures (or temperatures) of
// coexistence; a root smaller than the critical volume is the liquid above the upper spinodal
// pressure, a larger one the vapour below the lower spinodal pressure (the spinodal volumes
// enclose the critical volume below Tc).
bool single_root_is_liquid(const fluid& f, const phase& ph) {
    return ph.v < f.vcrit;
}
} // namespace

int pure_saturation_pressure(const fluid& f, double T, double& P, phase& L, phase& V) {
    const component& c = f.comp[0];
    if (!(T < c.tc)) return 102; // also NaN
    if (!(T > 0.0)) return 103;
    temperature_terms<double> t;
    at_temperature(f, T, t);
    const double x[1] = {1.0};
    const double tr = T / c.tc;
    // unknown y = ln P, bracketed by [lo, hi]; the saturation pressure lies below Pc
    const double inf = std::numeric_limits<double>::infinity();
    double lo = -inf, hi = std::log(c.pc);
    double y = tr > 0.97 ? hi + critical_slope(f) * (tr - 1.0) : std::log(wilson_psat(c, T));
    if (!(y < hi)) y = hi + 2.0 * (tr - 1.0); // also a start that is not finite
    for (int it = 0; it < 300; ++it) {
        const double p = std::exp(y);
        eval_phase(f, t, p, x, root_choice::liquid, L);
        eval_phase(f, t, p, x, root_choice::vapour, V);
        double yn = std::numeric_limits<double>::quiet_NaN();
        if (L.nroots == 2) {
            // g > 0: the liquid root is the less stable one, the pressure lies below Psat;
            // d g/d ln P = Z_L - Z_V < 0
            const double g = L.lnphi[0] - V.lnphi[0];
            if (std::abs(g) <= lnphi_noise(L, V)) {
                P = p;
                return 0;
            }
            (g > 0.0 ? lo : hi) = y;
            const double step = g / (L.Z - V.Z);
            yn = y - step;
            if (std::abs(step) <= 1e-15 * std::max(1.0, std::abs(y))) {
                P = p;
                return 0;
            }
        } else {
            (single_root_is_liquid(f, L) ? hi : lo) = y;
        }
        if (!(yn > lo && yn < hi)) yn = std::isfinite(lo) ? 0.5 * (lo + hi) : std::min(y, hi) - 1.0;
        // a bracket closed to rounding without a pressure of two distinct roots: so close to
        // the critical point that the two phases are one within the precision of the model
        if (hi - lo <= 4e-16 * std::max(1.0, std::abs(hi))) {
            P = std::exp(0.5 * (lo + hi));
            eval_phase(f, t, P, x, root_choice::liquid, L);
            eval_phase(f, t, P, x, root_choice::vapour, V);
            return 0;
        }
        y = yn;
    }
    return 106;
}

int pure_saturation_temperature(const fluid& f, double P, double& T, phase& L, phase& V) {
    const component& c = f.comp[0];
    if (!(P < c.pc)) return 143; // also NaN
    if (!(P > 0.0)) return 144;
    const double x[1] = {1.0};
    // T bracketed by [lo, hi]; the saturation temperature lies below Tc
    double lo = 0.0, hi = c.tc;
    const double lpr = std::log(P / c.pc);
    double tk = P > 0.9 * c.pc ? c.tc * (1.0 + lpr / critical_slope(f))
                               : c.tc / (1.0 - lpr / (5.373 * (1.0 + c.acentric)));
    if (!(tk > lo && tk < hi)) tk = 0.5 * (lo + hi);
    for (int it = 0; it < 300; ++it) {
        temperature_terms<taylor<1>> tt;
        at_temperature(f, taylor<1>::variable(tk), tt);
        vec dtl{}, dtv{};
        eval_phase_t(f, tt, P, x, root_choice::liquid, L, nullptr, nullptr, &dtl);
        eval_phase_t(f, tt, P, x, root_choice::vapour, V, nullptr, nullptr, &dtv);
        double tn = std::numeric_limits<double>::quiet_NaN();
        if (L.nroots == 2) {
            // g < 0 below the saturation temperature (the liquid is stable); g grows with T as
            // the difference of the residual enthalpies, d g/dT = d ln phi_L/dT - d ln phi_V/dT
            const double g = L.lnphi[0] - V.lnphi[0];
            if (std::abs(g) <= lnphi_noise(L, V)) {
                T = tk;
                return 0;
            }
            (g < 0.0 ? lo : hi) = tk;
            const double step = g / (dtl[0] - dtv[0]);
            tn = tk - step;
            if (std::abs(step) <= 1e-15 * tk) {
                T = tk;
                return 0;
            }
        } else {
            (single_root_is_liquid(f, L) ? lo : hi) = tk;
        }
        if (!(tn > lo && tn < hi)) tn = 0.5 * (lo + hi);
        if (hi - lo <= 4e-16 * hi) { // the two phases are one within the model's precision
            T = 0.5 * (lo + hi);
            temperature_terms<double> t;
            at_temperature(f, T, t);
            eval_phase(f, t, P, x, root_choice::liquid, L);
            eval_phase(f, t, P, x, root_choice::vapour, V);
            return 0;
        }
        tk = tn;
    }
    return 106;
}

namespace {
// `substitutions` steps of successive substitution, then Newton on (ln K, ln P or T), from the
// given K-values; 0, 1 (no convergence) or 2 (trivial solution).
int iterate(const fluid& f, bool given_t, double& T, double& P, double q, const double* z,
            vec& lnk, flash_result& out, int substitutions, bool feed_stable = false) {
    const int n = f.n;
    // the roots of the two phases: the incipient one on the root of its kind; the feed (at a
    // bubble or dew point) on the root of its kind, or, started from the traced curve close to
    // the critical point where the kinds can swap, on the root of lower Gibbs energy as the
    // curve was traced
    const root_choice root_l = feed_stable && q == 0.0 ? root_choice::stable : root_choice::liquid;
    const root_choice root_v = feed_stable && q == 1.0 ? root_choice::stable : root_choice::vapour;
    const int base = 0;
    vec K{}, x{}, y{};
    auto rr = [&](const vec& lk, double& dfd) {
        double s = 0.0;
        dfd = 0.0;
        for (int i = 0; i < n; ++i) {
            const double k = std::exp(lk[i]);
            const double den = 1.0 + q * (k - 1.0);
            s += z[i] * (k - 1.0) / den;
            dfd += z[i] * k / (den * den);
        }
        return s;
    };
    phase L, V;
    mat dl, dv;
    vec dpl{}, dpv{}, dtl{}, dtv{};
    // at a given temperature its terms are formed once
    temperature_terms<double> tfix;
    if (given_t) at_temperature(f, T, tfix);
    // successive substitution with the pressure (or temperature) moved on the same sum
    bool converged = false;
    double triv_prev = INFINITY, rn_prev = INFINITY;
    double rn_best = INFINITY;
    int falling = 0, stalled = 0;
    for (int it = 0; it < 80; ++it) {
        double sx = 0.0, sy = 0.0;
        for (int i = 0; i < n; ++i) {
            K[i] = std::exp(lnk[i]);
            x[i] = z[i] / (1.0 + q * (K[i] - 1.0));
            y[i] = K[i] * x[i];
            sx += x[i];
            sy += y[i];
        }
        vec xn{}, yn{};
        for (int i = 0; i < n; ++i) xn[i] = x[i] / sx, yn[i] = y[i] / sy;
        const bool newton = it >= substitutions;
        // the derivatives that the step needs: composition and pressure (or temperature)
        // derivatives for Newton, the temperature ones for a substitution at given P. After a
        // Newton step from a residual below 1e-9 this evaluation only confirms convergence and
        // forms none (they are formed afterwards should it not).
        const bool closing = newton && rn_prev < 1e-9;
        temperature_terms<taylor<1>> tt;
        if (!given_t) at_temperature(f, taylor<1>::variable(T), tt);
        auto evaluate = [&](bool with_dn, bool with_dt) {
            mat* pl = with_dn ? &dl : nullptr;
            mat* pv = with_dn ? &dv : nullptr;
            if (given_t)
                return eval_phase(f, tfix, P, xn.data(), root_l, L, pl,
                                  with_dn ? &dpl : nullptr) ||
                       eval_phase(f, tfix, P, yn.data(), root_v, V, pv,
                                  with_dn ? &dpv : nullptr);
            return eval_phase_t(f, tt, P, xn.data(), root_l, L, pl, nullptr,
                                with_dt ? &dtl : nullptr) ||
                   eval_phase_t(f, tt, P, yn.data(), root_v, V, pv, nullptr,
                                with_dt ? &dtv : nullptr);
        };
        if (closing ? evaluate(false, false) : evaluate(newton, true)) return base + 1;
        vec r{};
        double rn = 0.0, triv = 0.0;
        for (int i = 0; i < n; ++i) {
            r[i] = lnk[i] + V.lnphi[i] - L.lnphi[i];
            rn = std::max(rn, std::abs(r[i]));
            triv += lnk[i] * lnk[i];
        }
        const double rs = sy - sx;
        if (triv < 1e-8) return base + 2;
        // Newton falling onto the trivial solution converges only linearly (the Jacobian is
        // singular there): ln K shrinking steadily while the residual falls by less than a
        // decade per step, several times over, is read as that fall
        if (newton) {
            const bool shrinking = triv < 0.67 * triv_prev && rn > 0.1 * rn_prev;
            falling = shrinking ? falling + 1 : 0;
            if (falling >= 4) return base + 2;
            // no progress: a residual that has not fallen below 0.9 of its best for six steps
            // (steps swinging between the limits of the pressure move) will not converge here
            if (rn < 0.9 * rn_best)
                rn_best = rn, stalled = 0;
            else if (++stalled >= 6)
                return base + 1;
        }
        triv_prev = triv;
        rn_prev = rn;
        if (rn < 1e-12 && std::abs(rs) < 1e-14) {
            // the vapour must be the phase richer in the volatile components: an iteration that
            // ends with the roles exchanged has found the other saturation point of the feed
            // (its dew point in place of its bubble point), which is not asked for
            vec lw{};
            wilson_k(f, T, P, lw.data());
            double orient = 0.0;
            for (int i = 0; i < n; ++i) orient += (yn[i] - xn[i]) * lw[i];
            if (orient < 0.0) return 2;
            converged = true;
            out.x = xn;
            out.y = yn;
            out.liq = L;
            out.vap = V;
            break;
        }
        if (closing && evaluate(true, true)) return base + 1;
        if (!newton) {
            for (int i = 0; i < n; ++i) lnk[i] -= r[i];
            double d;
            const double s = rr(lnk, d);
            if (given_t) {
                // K scales as 1/P at fixed fugacity coefficients
                P *= std::exp(std::clamp(s / d, -1.0, 1.0));
            } else {
                // sum dK/dT through the residual enthalpy difference
                double dd = 0.0;
                for (int i = 0; i < n; ++i) {
                    const double k = std::exp(lnk[i]);
                    const double den = 1.0 + q * (k - 1.0);
                    dd += z[i] * k / (den * den) * (dtl[i] - dtv[i]);
                }
                if (dd != 0.0) T -= std::clamp(s / dd, -0.05 * T, 0.05 * T);
            }
            continue;
        }
        // Newton on (ln K_1..n, ln P or T)
        const int m = n + 1;
        constexpr int ld = mc + 1;
        std::array<double, ld * ld> J{};
        std::array<double, ld> rhs{};
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                const double w = x[j] * y[j] / z[j];
                J[i * ld + j] = (i == j ? 1.0 : 0.0) + dv[i * mc + j] / sy * (1.0 - q) * w +
                                dl[i * mc + j] / sx * q * w;
            }
            J[i * ld + n] = given_t ? P * (dpv[i] - dpl[i]) : dtv[i] - dtl[i];
            rhs[i] = -r[i];
        }
        for (int j = 0; j < n; ++j) J[n * ld + j] = x[j] * y[j] / z[j];
        J[n * ld + n] = 0.0;
        rhs[n] = -rs;
        if (!solve_linear(m, J.data(), ld, rhs.data())) return base + 1;
        double smax = 0.0;
        for (int i = 0; i < n; ++i) smax = std::max(smax, std::abs(rhs[i]));
        double fac = 1.0;
        if (smax > 1.0) fac = 1.0 / smax;
        if (given_t) {
            fac = std::min(fac, 0.5 / std::max(std::abs(rhs[n]), 1e-300));
            for (int i = 0; i < n; ++i) lnk[i] += fac * rhs[i];
            P *= std::exp(fac * rhs[n]);
        } else {
            fac = std::min(fac, 0.05 * T / std::max(std::abs(rhs[n]), 1e-300));
            for (int i = 0; i < n; ++i) lnk[i] += fac * rhs[i];
            T += fac * rhs[n];
        }
        if (!(P > 0.0) || !(T > 0.0)) return base + 1;
    }
    if (!converged) return 1;
    return 0;
}

// From a tie line of vapour fraction qf (its ln K at T, P) to the point of vapour fraction q at
// the same T (or P): continuation in the vapour fraction, each point solved by Newton from the
// previous one, extrapolated linearly. Near the critical point the tie line keeps the phases
// apart, where a direct Newton step to q would fall onto the trivial solution; a step that fails
// is halved. Returns as iterate.
int follow_q(const fluid& f, bool given_t, double& T, double& P, double qf, double q,
             const double* z, vec& lnk, flash_result& out) {
    const int n = f.n;
    double qa = qf, xa = given_t ? std::log(P) : T; // the last solved point
    vec ka = lnk;
    bool have_prev = false;
    double qb = qa, xb = xa; // the one before it
    vec kb = ka;
    double step = 0.7 * (qa - q);
    for (int k = 0; k < 60; ++k) {
        double qn = qa - step;
        if (std::abs(qn - q) < 1e-3 || (qa - q) * (qn - q) <= 0.0) qn = q;
        // linear extrapolation from the last two points
        const double w = have_prev && qa != qb ? (qn - qa) / (qa - qb) : 0.0;
        vec lk{};
        for (int i = 0; i < n; ++i) lk[i] = ka[i] + w * (ka[i] - kb[i]);
        const double xn = xa + w * (xa - xb);
        double Tn = given_t ? T : xn, Pn = given_t ? std::exp(xn) : P;
        const int e = iterate(f, given_t, Tn, Pn, qn, z, lk, out, 0);
        if (e == 0) {
            if (qn == q) {
                T = Tn;
                P = Pn;
                lnk = lk;
                return 0;
            }
            step = 2.0 * (qa - qn); // a step that converged may be doubled
            qb = qa, xb = xa, kb = ka;
            qa = qn, xa = given_t ? std::log(Pn) : Tn, ka = lk;
            have_prev = true;
            continue;
        }
        step = 0.5 * (qa - qn);
        if (std::abs(step) < 1e-6) return e;
    }
    return 1;
}

// Wilson's estimate of the point of vapour fraction q: sum z (K - 1)/(1 + q (K - 1)) = 0 solved
// for P (given_t) or T with Wilson's K-values, from the T and P given.
void wilson_estimate(const fluid& f, bool given_t, double q, const double* z, double& T,
                     double& P) {
    const int n = f.n;
    vec lnk{};
    auto rr = [&](const vec& lk, double& dfd) {
        double s = 0.0;
        dfd = 0.0;
        for (int i = 0; i < n; ++i) {
            const double k = std::exp(lk[i]);
            const double den = 1.0 + q * (k - 1.0);
            s += z[i] * (k - 1.0) / den;
            dfd += z[i] * k / (den * den); // d/d ln K_i of each term
        }
        return s;
    };
    for (int it = 0; it < 100; ++it) {
        wilson_k(f, T, P, lnk.data());
        double d;
        const double s = rr(lnk, d);
        double ds; // derivative of the sum by ln P or by T
        if (given_t) {
            ds = -d; // ln K = ... - ln P
            const double step = std::clamp(-s / ds, -2.0, 2.0);
            P *= std::exp(step);
            if (std::abs(step) < 1e-10) break;
        } else {
            double dd = 0.0;
            for (int i = 0; i < n; ++i) {
                const double k = std::exp(lnk[i]);
                const double den = 1.0 + q * (k - 1.0);
                dd += z[i] * k / (den * den) * 5.373 * (1.0 + f.comp[i].acentric) *
                      f.comp[i].tc / (T * T);
            }
            ds = dd;
            const double step = std::clamp(-s / ds, -0.2 * T, 0.2 * T);
            T += step;
            if (std::abs(step) < 1e-10 * T) break;
        }
    }
}
} // namespace

int saturation_q(const fluid& f, bool given_t, double& Tio, double& Pio, double q,
                 const double* z, flash_result& out) {
    const int n = f.n;
    const bool bubble_side = q < 0.5;
    const int base = given_t ? (bubble_side ? 400 : 410) : (bubble_side ? 420 : 430);
    double T = Tio, P = Pio;
    vec lnk{};
    wilson_estimate(f, given_t, q, z, T, P);
    if (!(P > 0.0) || !(T > 0.0) || !std::isfinite(P) || !std::isfinite(T)) return base + 1;
    // Near the critical point Wilson's estimate of a bubble pressure lies above the critical
    // pressure, where the two trial phases merge into one root of the cubic: the iteration
    // starts from the critical pressure instead.
    const double p_wilson = P;
    if (bubble_side && given_t && f.pcrit > 0.0 && P > f.pcrit) P = f.pcrit;
    wilson_k(f, T, P, lnk.data());
    const double t0 = T, p0 = P;
    // Far from the critical point Newton from Wilson's K-values converges at once; close to it
    // (above 0.93 Tc, or 0.8 Pc at given pressure) a few substitutions first bring the K-values
    // nearer the solution. The order that fails hands over to the other (Newton alone does well
    // where the substitutions fall onto the trivial solution, and the reverse). The dew side,
    // where a feed can have two dew points, keeps the substitutions first so that the usual
    // (upper) one is found.
    const bool near_critical = given_t ? T > 0.93 * f.tcrit : P > 0.8 * f.pcrit;
    const int first = bubble_side && !near_critical ? 0 : 4;
    int e = iterate(f, given_t, T, P, q, z, lnk, out, first);
    if (e != 0 && bubble_side) {
        T = t0;
        P = p0;
        wilson_k(f, T, P, lnk.data());
        e = iterate(f, given_t, T, P, q, z, lnk, out, 4 - first);
    }
    if (e != 0) {
        // near the critical point Wilson's start falls onto the trivial solution: start instead
        // from the tie line of a PT flash inside the two-phase region, found by moving the
        // pressure (or the temperature) from Wilson's estimate into the dome: down from a
        // bubble point, up from a dew point (the first tie line whose vapour fraction has passed
        // q). On the bubble side that tie line is followed in the vapour fraction to q.
        bool found = false;
        double tt = t0, pp = p_wilson, qf = q;
        for (int k = 0; k < 150 && !found; ++k) {
            if (given_t) pp *= bubble_side ? 0.7 : 1.4;
            else tt *= bubble_side ? 1.01 : 0.99;
            flash_result fr;
            if (flash_tp(f, tt, pp, z, fr) == 0 && fr.nphase == 2 &&
                (bubble_side ? fr.beta >= q : fr.beta <= q)) {
                for (int i = 0; i < n; ++i) lnk[i] = std::log(fr.y[i] / fr.x[i]);
                qf = fr.beta;
                found = true;
            }
        }
        if (found) {
            T = tt;
            P = pp;
            e = bubble_side ? follow_q(f, given_t, T, P, qf, q, z, lnk, out)
                            : iterate(f, given_t, T, P, q, z, lnk, out, 4);
        }
    }
    if (e != 0) return base + e;
    out.nphase = 2;
    out.beta = q;
    Tio = T;
    Pio = P;
    return 0;
}

int saturation_q_from(const fluid& f, bool given_t, double& Tio, double& Pio, double q,
                      const double* z, const double* lnk0, flash_result& out) {
    const bool bubble_side = q < 0.5;
    const int base = given_t ? (bubble_side ? 400 : 410) : (bubble_side ? 420 : 430);
    double T = Tio, P = Pio;
    if (!(q >= 0.0 && q <= 1.0) || !(P > 0.0) || !(T > 0.0) || !std::isfinite(P) ||
        !std::isfinite(T))
        return base + 1;
    vec lnk{};
    for (int i = 0; i < f.n; ++i) {
        if (!std::isfinite(lnk0[i])) return base + 1;
        lnk[i] = lnk0[i];
    }
    if (const int e = iterate(f, given_t, T, P, q, z, lnk, out, 0, true)) return base + e;
    // a Newton step across the critical point lands on the other side's curve, whose phases are
    // the exchanged ones: the K-values keep the sign of the start or the point is another one
    double same = 0.0;
    for (int i = 0; i < f.n; ++i) same += lnk[i] * lnk0[i];
    if (!(same > 0.0)) return base + 2;
    out.nphase = 2;
    out.beta = q;
    Tio = T;
    Pio = P;
    return 0;
}

int saturation_q_follow(const fluid& f, bool given_t, double& Tio, double& Pio, double qf,
                        double q, const double* z, const double* lnk0, flash_result& out) {
    const bool bubble_side = q < 0.5;
    const int base = given_t ? (bubble_side ? 400 : 410) : (bubble_side ? 420 : 430);
    double T = Tio, P = Pio;
    if (!(q >= 0.0 && q <= 1.0) || !(qf >= 0.0 && qf <= 1.0) || !(P > 0.0) || !(T > 0.0) ||
        !std::isfinite(P) || !std::isfinite(T))
        return base + 1;
    vec lnk{};
    for (int i = 0; i < f.n; ++i) {
        if (!std::isfinite(lnk0[i])) return base + 1;
        lnk[i] = lnk0[i];
    }
    if (const int e = follow_q(f, given_t, T, P, qf, q, z, lnk, out)) return base + e;
    out.nphase = 2;
    out.beta = q;
    Tio = T;
    Pio = P;
    return 0;
}

} // namespace varimol
