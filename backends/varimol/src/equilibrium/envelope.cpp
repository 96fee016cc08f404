#include "equilibrium/envelope.hpp"

#include "equilibrium/critical.hpp"
#include "equilibrium/linear.hpp"
#include "equilibrium/saturation.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

namespace {

constexpr int ld = mc + 2;
using xvec = std::array<double, ld>;
using jmat = std::array<double, ld * ld>;

// One point of the curve: the unknowns, the Jacobian of the n + 1 equilibrium equations, the
// phase compositions.
struct point {
    xvec X{};
    jmat J{};
    vec x{}, y{};
};

struct tracer {
    const fluid& f;
    const double* z;
    int n;
    bool dew = false; // false: x = z (bubble side); true: y = z (dew side)

    // residuals F (n + 1) and Jacobian rows at X; false where the model cannot be evaluated
    bool evaluate(point& p, xvec& F) const {
        const double T = std::exp(p.X[n]), P = std::exp(p.X[n + 1]);
        if (!std::isfinite(T) || !std::isfinite(P) || !(T > 0.0) || !(P > 0.0)) return false;
        vec x{}, y{};
        double sx = 0.0, sy = 0.0;
        for (int i = 0; i < n; ++i) {
            const double k = std::exp(p.X[i]);
            if (dew) {
                y[i] = z[i];
                x[i] = z[i] / k;
            } else {
                x[i] = z[i];
                y[i] = z[i] * k;
            }
            sx += x[i];
            sy += y[i];
        }
        if (!std::isfinite(sx) || !std::isfinite(sy)) return false;
        for (int i = 0; i < n; ++i) p.x[i] = x[i] / sx, p.y[i] = y[i] / sy;
        temperature_terms<taylor<1>> t;
        at_temperature(f, taylor<1>::variable(T), t);
        // the feed z is the stable phase at its bubble or dew point: its root of lower Gibbs
        // energy; the incipient phase on the root of its kind
        const root_choice root_x = dew ? root_choice::liquid : root_choice::stable;
        const root_choice root_y = dew ? root_choice::stable : root_choice::vapour;
        phase L, V;
        mat dl, dv;
        vec dpl{}, dpv{}, dtl{}, dtv{};
        if (eval_phase_t(f, t, P, p.x.data(), root_x, L, &dl, &dpl, &dtl) ||
            eval_phase_t(f, t, P, p.y.data(), root_y, V, &dv, &dpv, &dtv))
            return false;
        for (int i = 0; i < n; ++i) {
            F[i] = p.X[i] + V.lnphi[i] - L.lnphi[i];
            for (int j = 0; j < n; ++j) {
                // d ln phi/d ln K_j through the amounts of the phase that is not z
                const double d = dew ? dl[i * mc + j] * x[j] / sx : dv[i * mc + j] * y[j] / sy;
                p.J[i * ld + j] = (i == j ? 1.0 : 0.0) + d;
            }
            p.J[i * ld + n] = T * (dtv[i] - dtl[i]);
            p.J[i * ld + n + 1] = P * (dpv[i] - dpl[i]);
        }
        F[n] = sy - sx;
        for (int j = 0; j < n; ++j) p.J[n * ld + j] = dew ? x[j] : y[j];
        p.J[n * ld + n] = p.J[n * ld + n + 1] = 0.0;
        for (int i = 0; i <= n; ++i)
            if (!std::isfinite(F[i])) return false;
        return true;
    }

    // Newton iteration with X_s = S from the predicted p.X. Returns the number of iterations
    // (the last evaluation converged and its Jacobian kept in p.J), or -1.
    int solve(point& p, int s, double S) const {
        const int m = n + 2;
        p.X[s] = S;
        double last = 1e300;
        for (int it = 0; it < 20; ++it) {
            xvec F{};
            if (!evaluate(p, F)) return -1;
            double r = 0.0;
            for (int i = 0; i <= n; ++i) r = std::max(r, std::abs(F[i]));
            // converged: at rounding level, or below 2e-11 where rounding stops the decrease
            if (r < 1e-12 || (r < 2e-11 && r > 0.1 * last)) return it;
            if (it > 6 && r > 0.5 * last) return -1; // not converging
            last = r;
            jmat A = p.J;
            xvec b{};
            for (int i = 0; i <= n; ++i) b[i] = -F[i];
            for (int j = 0; j < m; ++j) A[(n + 1) * ld + j] = j == s ? 1.0 : 0.0;
            b[n + 1] = 0.0;
            if (!solve_linear(m, A.data(), ld, b.data())) return -1;
            double big = 0.0;
            for (int j = 0; j < n; ++j) big = std::max(big, std::abs(b[j]));
            double fac = 1.0;
            if (big > 1.0) fac = 1.0 / big;
            fac = std::min(fac, 0.1 / std::max(std::abs(b[n]), 1e-300));
            fac = std::min(fac, 0.5 / std::max(std::abs(b[n + 1]), 1e-300));
            for (int j = 0; j < m; ++j) p.X[j] += fac * b[j];
        }
        return -1;
    }

    // dX/dS at a converged point for the specified variable X_s
    bool sensitivity(const point& p, int s, xvec& d) const {
        const int m = n + 2;
        jmat A = p.J;
        d.fill(0.0);
        for (int j = 0; j < m; ++j) A[(n + 1) * ld + j] = j == s ? 1.0 : 0.0;
        d[n + 1] = 1.0;
        return solve_linear(m, A.data(), ld, d.data());
    }
};

// sink that keeps nothing
class counting_sink final : public envelope_sink {
public:
    bool add(double, double, const vec&, const vec&) override { return true; }
};

} // namespace

int trace_envelope(const fluid& f, double p_start, envelope_sink* sink, envelope_summary& s) {
    s = envelope_summary{};
    const int n = f.n;
    if (n < 2 || !(p_start > 0.0) || !std::isfinite(p_start)) return 451;
    const double* z = f.z.data();
    tracer tr{f, z, n};
    counting_sink none;
    envelope_sink& out = sink ? *sink : none;
    auto emit = [&](double T, double P, const vec& x, const vec& y) {
        if (!out.add(T, P, x, y)) return false;
        ++s.npoints;
        if (T > s.t_cricondentherm) s.t_cricondentherm = T, s.p_cricondentherm = P;
        if (P > s.p_cricondenbar) s.p_cricondenbar = P, s.t_cricondenbar = T;
        return true;
    };

    // first point: the bubble point at p_start
    double T0 = 0.7 * f.tcrit, P0 = p_start;
    flash_result fr;
    if (saturation_q(f, false, T0, P0, 0.0, z, fr) != 0) return 451;
    point cur;
    for (int i = 0; i < n; ++i) cur.X[i] = std::log(fr.y[i] / fr.x[i]);
    cur.X[n] = std::log(T0);
    const double lnp0 = std::log(p_start);
    int fixed = n + 1;
    if (tr.solve(cur, fixed, lnp0) < 0) return 451;
    if (!emit(std::exp(cur.X[n]), std::exp(cur.X[n + 1]), cur.x, cur.y)) return 452;

    xvec sens;
    if (!tr.sensitivity(cur, fixed, sens)) return 450;
    // largest changes along a step: of ln K, of ln T, of ln P
    constexpr double max_lnk = 0.8, max_lnt = 0.1, max_lnp = 0.5;
    double ds = 0.05;                 // step in the specified variable
    bool final_point = false;
    bool retry = false; // the last step failed
    xvec prev{};        // the point before the current one
    bool have_prev = false;
    for (int step = 0; step < 2000; ++step) {
        // the new specified variable: the unknown that changes most
        int k = 0;
        for (int j = 1; j < n + 2; ++j)
            if (std::abs(sens[j]) > std::abs(sens[k])) k = j;
        if (k != fixed) {
            ds *= sens[k];
            const double sk = sens[k];
            for (int j = 0; j < n + 2; ++j) sens[j] /= sk;
            fixed = k;
        }
        double big = 0.0;
        for (int j = 0; j < n; ++j) big = std::max(big, std::abs(sens[j] * ds) / max_lnk);
        big = std::max(big, std::abs(sens[n] * ds) / max_lnt);
        big = std::max(big, std::abs(sens[n + 1] * ds) / max_lnp);
        if (big > 1.0) ds /= big;
        double S = cur.X[fixed] + ds;
        // a specified ln K about to reach zero is stepped across it (the critical point)
        if (fixed < n && !final_point) {
            const double u = cur.X[fixed];
            if ((S > 0.0) != (u > 0.0) || std::abs(S) < 0.3 * std::abs(u)) {
                // after a failed jump, halfway to zero first
                if (retry) S = 0.5 * u;
                else S = std::abs(u) <= 0.15 ? -u : (u > 0.0 ? 0.1 : -0.1);
                ds = S - u;
            }
        }
        // the last point lies on p_start on the dew side
        if (final_point) {
            fixed = n + 1;
            S = lnp0;
            ds = S - cur.X[n + 1];
            xvec d;
            if (!tr.sensitivity(cur, fixed, d)) return 450;
            sens = d;
        }
        // predictor: the tangent, bent by the quadratic through the previous point
        point nxt = cur;
        const double h = S - cur.X[fixed], hp = prev[fixed] - cur.X[fixed];
        const bool bend = have_prev && std::abs(hp) > 1e-10 && (hp > 0.0) != (h > 0.0);
        for (int j = 0; j < n + 2; ++j) {
            nxt.X[j] = cur.X[j] + sens[j] * h;
            if (bend) nxt.X[j] += (prev[j] - cur.X[j] - sens[j] * hp) / (hp * hp) * h * h;
        }
        const int its = tr.solve(nxt, fixed, S);
        if (its < 0) {
            if (std::abs(ds) < 1e-8) return 450;
            ds *= 0.4;
            final_point = false;
            retry = true;
            continue;
        }
        retry = false;
        xvec nsens;
        if (!tr.sensitivity(nxt, fixed, nsens)) return 450;
        const double T = std::exp(nxt.X[n]), P = std::exp(nxt.X[n + 1]);
        if (!(T <= f.tmax) || !(P <= 2.0 * f.pmax)) return 450;

        // critical point passed: the ln K changed sign
        bool crossed = false;
        int im = 0;
        for (int i = 1; i < n; ++i)
            if (std::abs(cur.X[i]) > std::abs(cur.X[im])) im = i;
        if ((cur.X[im] > 0.0) != (nxt.X[im] > 0.0) && !s.has_critical) {
            const double w = cur.X[im] / (cur.X[im] - nxt.X[im]);
            const double tc = std::exp(cur.X[n] + w * (nxt.X[n] - cur.X[n]));
            const double pc = std::exp(cur.X[n + 1] + w * (nxt.X[n + 1] - cur.X[n + 1]));
            critical_state c{f.tcrit, f.pcrit, 0.0};
            const bool near = std::abs(c.T / tc - 1.0) < 0.01 && std::abs(c.P / pc - 1.0) < 0.03;
            if (!near) {
                // another critical point than the one of the configured fluid: solve from here
                temperature_terms<double> t;
                at_temperature(f, tc, t);
                phase ph;
                if (eval_phase(f, t, pc, z, root_choice::stable, ph) != 0) return 453;
                if (critical_point(f, z, tc, ph.v, c) != 0) return 453;
                if (std::abs(c.T / tc - 1.0) > 0.05 || std::abs(c.P / pc - 1.0) > 0.1) return 453;
            }
            s.has_critical = true;
            crossed = true;
            s.t_crit = c.T;
            s.p_crit = c.P;
            vec zz{};
            for (int i = 0; i < n; ++i) zz[i] = z[i];
            if (!emit(c.T, c.P, zz, zz)) return 452;
            // continue on the other side: z becomes the vapour, K -> 1/K
            tr.dew = !tr.dew;
            for (int i = 0; i < n; ++i) nxt.X[i] = -nxt.X[i];
            if (tr.solve(nxt, fixed, nxt.X[fixed]) < 0) return 450;
            if (!tr.sensitivity(nxt, fixed, nsens)) return 450;
            if (fixed < n) ds = -ds;
        }

        // cricondentherm and cricondenbar: d ln T/dS or d ln P/dS changes sign along the path
        for (int q = n; q <= n + 1 && !crossed; ++q) {
            const double ga = sens[q] * ds, gb = nsens[q] * ds;
            if (!(ga > 0.0 && gb <= 0.0)) continue;
            // regula falsi (Illinois) on S for the zero of the derivative between the two
            // points; the extreme value is quadratic in the error of S, so S to 1e-7 suffices
            double sa = cur.X[fixed], sb = nxt.X[fixed], fa = sens[q], fb = nsens[q];
            point pm = nxt;
            double best = std::exp(nxt.X[q]), other = std::exp(nxt.X[q == n ? n + 1 : n]);
            int side = 0;
            for (int it = 0; it < 12 && std::abs(sb - sa) > 1e-7 * (1.0 + std::abs(sa)); ++it) {
                const double sm = sa - fa * (sb - sa) / (fb - fa);
                if (!(std::min(sa, sb) < sm && sm < std::max(sa, sb))) break;
                for (int j = 0; j < n + 2; ++j) pm.X[j] = cur.X[j] + sens[j] * (sm - cur.X[fixed]);
                if (tr.solve(pm, fixed, sm) < 0) break;
                xvec dm;
                if (!tr.sensitivity(pm, fixed, dm)) break;
                if (std::exp(pm.X[q]) > best) {
                    best = std::exp(pm.X[q]);
                    other = std::exp(pm.X[q == n ? n + 1 : n]);
                }
                const double step = std::min(std::abs(sm - sa), std::abs(sm - sb));
                if ((dm[q] > 0.0) == (fa > 0.0)) {
                    sa = sm, fa = dm[q];
                    if (side == -1) fb *= 0.5;
                    side = -1;
                } else {
                    sb = sm, fb = dm[q];
                    if (side == 1) fa *= 0.5;
                    side = 1;
                }
                if (step < 1e-7 * (1.0 + std::abs(sm))) break;
            }
            if (q == n && best > s.t_cricondentherm) s.t_cricondentherm = best, s.p_cricondentherm = other;
            if (q == n + 1 && best > s.p_cricondenbar) s.p_cricondenbar = best, s.t_cricondenbar = other;
        }

        // past p_start on the way down: this step is redone onto p_start
        if (!final_point && step > 0 && nxt.X[n + 1] < lnp0 && nsens[n + 1] * ds < 0.0) {
            final_point = true;
            continue;
        }
        prev = cur.X;
        have_prev = !crossed;
        cur = nxt;
        sens = nsens;
        if (!emit(T, P, cur.x, cur.y)) return 452;
        if (final_point) return 0;
        if (its <= 3) ds *= 1.5;
        else if (its > 5) ds *= 0.6;
    }
    return 450;
}

int envelope_limits(const fluid& f, envelope_summary& s) {
    return trace_envelope(f, 1.0e5, nullptr, s);
}

} // namespace varimol
