#include "equilibrium/envelope.hpp"

#include "equilibrium/critical.hpp"
#include "equilibrium/linear.hpp"
#include "equilibrium/saturation.hpp"
#include "equilibrium/stability.hpp"

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
    // the root of the incipient phase: the vapour over a liquid feed, the liquid under a gas;
    // past a three-phase point the root on which the new phase appeared (a second liquid)
    root_choice incipient = root_choice::vapour;
    void set_side(bool dew_side) {
        dew = dew_side;
        incipient = dew ? root_choice::liquid : root_choice::vapour;
    }

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
        const root_choice root_x = dew ? incipient : root_choice::stable;
        const root_choice root_y = dew ? root_choice::stable : incipient;
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

// The feed at a traced point is stable against every phase but the incipient one; a trial phase
// with a clearly negative tangent-plane distance (a heavy liquid below a light gas with a trace
// of a heavy component) means that the curve has run past a three-phase point into states that
// are already split. The threshold lies well above the rounding of the tpd of the incipient
// phase itself, which is zero at a converged point.
constexpr double split_below = -1e-8;

bool feed_unstable(const fluid& f, const double* z, const point& p, int n, stability_result& sr,
                   double below = split_below) {
    const double T = std::exp(p.X[n]), P = std::exp(p.X[n + 1]);
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase ph;
    if (eval_phase(f, t, P, z, root_choice::stable, ph) != 0) return false;
    if (stability(f, t, P, z, ph, sr) != 0) return false;
    return sr.tpd < below;
}

// A quick screen for a second phase besides the incipient one, cheap enough for every point: a
// few successive substitutions of the modified tangent-plane distance
//   tm(W) = 1 + sum_i W_i (ln W_i + ln phi_i(w) - ln z_i - ln phi_i(z) - 1),
// which proves the feed unstable wherever it is negative, from the two trials from which a
// second liquid grows: the incipient phase's composition on the other root of the cubic, and
// the nearly pure component that the incipient phase lacks most (the heaviest below a vapour,
// the lightest above a liquid). A phase that the screen misses at its first appearance is
// found at the next point, and the three-phase point is then located with the full test.
bool split_suspected(const fluid& f, const double* z, const point& p, int n, bool dew,
                     root_choice incipient) {
    const double T = std::exp(p.X[n]), P = std::exp(p.X[n + 1]);
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase ph;
    if (eval_phase(f, t, P, z, root_choice::stable, ph) != 0) return false;
    vec d{};
    for (int i = 0; i < n; ++i) d[i] = std::log(z[i]) + ph.lnphi[i];
    const vec& inc = dew ? p.x : p.y;
    // the component the incipient phase lacks most relative to the feed
    int lack = 0;
    for (int i = 1; i < n; ++i)
        if (inc[i] / z[i] < inc[lack] / z[lack]) lack = i;
    const root_choice other =
        incipient == root_choice::vapour ? root_choice::liquid : root_choice::vapour;
    for (int trial = 0; trial < 2; ++trial) {
        vec W{};
        for (int i = 0; i < n; ++i) W[i] = trial == 0 ? inc[i] : (i == lack ? 1.0 : 1e-3 * z[i]);
        const root_choice r = trial == 0 ? other : root_choice::stable;
        for (int it = 0; it < 8; ++it) {
            double sw = 0.0;
            for (int i = 0; i < n; ++i) sw += W[i];
            vec w{};
            for (int i = 0; i < n; ++i) w[i] = W[i] / sw;
            if (eval_phase(f, t, P, w.data(), r, ph) != 0) break;
            double tm = 1.0;
            for (int i = 0; i < n; ++i)
                if (W[i] > 0.0) tm += W[i] * (std::log(W[i]) + ph.lnphi[i] - d[i] - 1.0);
            if (tm < split_below) return true;
            for (int i = 0; i < n; ++i) W[i] = std::exp(d[i] - ph.lnphi[i]);
        }
    }
    return false;
}

// Close to the three-phase point the new phase's tpd is small: it is told from the incipient
// phase (whose tpd is zero to rounding) by its composition.
bool new_phase_appears(const fluid& f, const double* z, const point& p, int n, bool dew,
                       stability_result& sr) {
    if (!feed_unstable(f, z, p, n, sr, -1e-13)) return false;
    const vec& incipient = dew ? p.x : p.y;
    double d = 0.0;
    for (int i = 0; i < n; ++i) d += std::abs(sr.w[i] - incipient[i]);
    return d > 1e-4;
}

// sink that keeps nothing
class counting_sink final : public envelope_sink {
public:
    bool add(double, double, const vec&, const vec&) override { return true; }
    void reverse_order() override {}
};

} // namespace

namespace {
// The highest temperature and the highest pressure of the curve between two solved points a
// and b of one side (ln T or ln P with a zero derivative along the curve inside the step), with
// X_s specified: regula falsi (Illinois) on S for the zero of dX_q/dS, each solution started on
// the straight line between the two points that bracket it. The extreme value is quadratic in
// the error of S, so S to 1e-7 of the step is ample. The summary's cricondentherm and
// cricondenbar are raised where these exceed them; the points found (at most two) are written
// to out in the order of S from a to b, and their number returned.
int locate_extremes(const tracer& tr, const point& a, const point& b, int s,
                    envelope_summary& sum, std::array<point, 2>& out) {
    const int n = tr.n;
    xvec da, db;
    if (!tr.sensitivity(a, s, da) || !tr.sensitivity(b, s, db)) return 0;
    int found = 0;
    std::array<double, 2> where{};
    for (int q = n; q <= n + 1; ++q) {
        // a maximum of X_q along the direction from a to b: dX_q/dS changes sign from the
        // direction of travel to against it
        const double dir = b.X[s] > a.X[s] ? 1.0 : -1.0;
        if (!(da[q] * dir > 0.0 && db[q] * dir <= 0.0)) continue;
        double sa = a.X[s], sb = b.X[s], fa = da[q], fb = db[q];
        xvec ea = a.X, eb = b.X;
        point best = a.X[q] > b.X[q] ? a : b;
        point pm;
        int side = 0;
        const double tol = 1e-7 * std::abs(sb - sa);
        for (int it = 0; it < 16 && std::abs(sb - sa) > tol; ++it) {
            double sm = sa - fa * (sb - sa) / (fb - fa);
            if (!(std::min(sa, sb) < sm && sm < std::max(sa, sb))) sm = 0.5 * (sa + sb);
            const double w = (sm - ea[s]) / (eb[s] - ea[s]);
            for (int j = 0; j < n + 2; ++j) pm.X[j] = ea[j] + w * (eb[j] - ea[j]);
            xvec dm;
            if (tr.solve(pm, s, sm) < 0 || !tr.sensitivity(pm, s, dm)) break;
            if (pm.X[q] > best.X[q]) best = pm;
            if ((dm[q] > 0.0) == (fa > 0.0)) {
                sa = sm, fa = dm[q], ea = pm.X;
                if (side == -1) fb *= 0.5;
                side = -1;
            } else {
                sb = sm, fb = dm[q], eb = pm.X;
                if (side == 1) fa *= 0.5;
                side = 1;
            }
        }
        const double value = std::exp(best.X[q]), other = std::exp(best.X[q == n ? n + 1 : n]);
        if (q == n && value > sum.t_cricondentherm)
            sum.t_cricondentherm = value, sum.p_cricondentherm = other;
        if (q == n + 1 && value > sum.p_cricondenbar)
            sum.p_cricondenbar = value, sum.t_cricondenbar = other;
        // an extreme at an end of the step is that point itself
        if (best.X[s] == a.X[s] || best.X[s] == b.X[s]) continue;
        out[found] = best;
        where[found++] = std::abs(best.X[s] - a.X[s]);
    }
    if (found == 2 && where[1] < where[0]) std::swap(out[0], out[1]);
    return found;
}

int trace_curve(const fluid& f, double p_start, envelope_sink* sink, envelope_summary& s,
                bool& reversed) {
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

    // first point: the bubble point at p_start. Where the feed is already split there (a light
    // liquid that does not dissolve the heavy component), the bubble point is no boundary of
    // the single-phase region: the curve starts from the dew point at p_start instead, and is
    // handed over in reverse order at the end.
    const double lnp0 = std::log(p_start);
    int fixed = n + 1;
    point cur;
    stability_result first_split;
    for (const double q : {0.0, 1.0}) {
        double T0 = 0.7 * f.tcrit, P0 = p_start;
        flash_result fr;
        if (saturation_q(f, false, T0, P0, q, z, fr) != 0) return 451;
        tr.set_side(q == 1.0);
        for (int i = 0; i < n; ++i) cur.X[i] = std::log(fr.y[i] / fr.x[i]);
        cur.X[n] = std::log(T0);
        if (tr.solve(cur, fixed, lnp0) < 0) return 451;
        if (!feed_unstable(f, z, cur, n, first_split)) break;
        if (q == 1.0) return 451;
        reversed = true;
    }
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
    int switches = 0;   // three-phase points passed
    constexpr int max_switches = 4;
    std::array<point, 2> extremes; // the highest T and P found inside a step, in order
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
        const xvec predicted = nxt.X;
        int its = tr.solve(nxt, fixed, S);
        // a point far from the prediction belongs to another branch of solutions
        if (its >= 0) {
            double jump = std::max(std::abs(nxt.X[n] - predicted[n]) / max_lnt,
                                   std::abs(nxt.X[n + 1] - predicted[n + 1]) / max_lnp);
            for (int j = 0; j < n; ++j)
                jump = std::max(jump, std::abs(nxt.X[j] - predicted[j]) / max_lnk);
            // and one behind the current point has turned back along the curve
            double ahead = 0.0;
            for (int j = 0; j < n + 2; ++j) {
                const double w = j < n ? max_lnk : j == n ? max_lnt : max_lnp;
                ahead += (nxt.X[j] - cur.X[j]) * sens[j] * h / (w * w);
            }
            if (jump > 1.0 || !(ahead > 0.0)) its = -1;
        }
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

        // a three-phase point passed: the boundary of the single-phase region continues with
        // the phase that appeared as the incipient one
        stability_result split;
        if (switches < max_switches && split_suspected(f, z, nxt, n, tr.dew, tr.incipient) &&
            feed_unstable(f, z, nxt, n, split)) {
            ++switches;
            // bisection in the specified variable between the stable and the split point
            double sa = cur.X[fixed], sb = nxt.X[fixed];
            point pa = cur;
            for (int it = 0; it < 60 && std::abs(sb - sa) > 1e-13 * (1.0 + std::abs(sa)); ++it) {
                const double sm = 0.5 * (sa + sb);
                point pm = cur;
                for (int j = 0; j < n + 2; ++j) pm.X[j] = cur.X[j] + sens[j] * (sm - cur.X[fixed]);
                if (tr.solve(pm, fixed, sm) < 0) break;
                stability_result r;
                if (new_phase_appears(f, z, pm, n, tr.dew, r)) {
                    sb = sm;
                    split = r;
                } else {
                    sa = sm;
                    pa = pm;
                }
            }
            if (pa.X[fixed] != cur.X[fixed] &&
                !emit(std::exp(pa.X[n]), std::exp(pa.X[n + 1]), pa.x, pa.y))
                return 452;
            // the new branch: a trial phase richer in the volatile components (by Wilson's
            // K-values) is a vapour over the feed (bubble form, K = w/z), a poorer one a liquid
            // under it (dew form, K = z/w)
            vec lw{};
            wilson_k(f, std::exp(pa.X[n]), std::exp(pa.X[n + 1]), lw.data());
            double volatile_side = 0.0;
            for (int i = 0; i < n; ++i) volatile_side += (split.w[i] - z[i]) * lw[i];
            const bool vapour_appears = volatile_side > 0.0;
            point nb = pa;
            tr.set_side(!vapour_appears);
            {
                temperature_terms<double> t;
                at_temperature(f, std::exp(pa.X[n]), t);
                phase ph;
                if (eval_phase(f, t, std::exp(pa.X[n + 1]), split.w.data(), root_choice::stable,
                               ph) != 0)
                    return 450;
                tr.incipient = ph.smaller ? root_choice::liquid : root_choice::vapour;
            }
            for (int i = 0; i < n; ++i) {
                const double lk = std::log(split.w[i] / z[i]);
                nb.X[i] = vapour_appears ? lk : -lk;
            }
            fixed = n + 1;
            if (tr.solve(nb, fixed, pa.X[n + 1]) < 0) return 450;
            xvec d;
            if (!tr.sensitivity(nb, fixed, d)) return 450;
            // of the two directions along the new branch, the one where the feed stays stable
            bool found = false;
            for (const double h : {0.01, -0.01}) {
                point pt = nb;
                for (int j = 0; j < n + 2; ++j) pt.X[j] = nb.X[j] + d[j] * h;
                stability_result r;
                if (tr.solve(pt, fixed, nb.X[fixed] + h) >= 0 && !feed_unstable(f, z, pt, n, r)) {
                    ds = h;
                    found = true;
                    break;
                }
            }
            if (!found) return 450;
            if (!emit(std::exp(nb.X[n]), std::exp(nb.X[n + 1]), nb.x, nb.y)) return 452;
            cur = nb;
            sens = d;
            have_prev = false;
            continue;
        }

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
            // The highest temperature and pressure of the curve lie close to the critical
            // point, often inside the step that passes it: they are looked for between the
            // current point and the critical one on this side, and between the critical point
            // and the next one on the other, ln K_im specified (it runs to zero at the
            // critical point, where the equations become singular: the search ends just short
            // of it)
            point crit{};
            for (int i = 0; i < n; ++i) crit.X[i] = 0.0;
            crit.X[n] = std::log(c.T), crit.X[n + 1] = std::log(c.P);
            auto near_critical_end = [&](const point& from, point& end) {
                constexpr double short_of = 0.02;
                for (int j = 0; j < n + 2; ++j)
                    end.X[j] = crit.X[j] + short_of * (from.X[j] - crit.X[j]);
                return tr.solve(end, im, short_of * from.X[im]) >= 0;
            };
            point end{};
            int found = near_critical_end(cur, end) ? locate_extremes(tr, cur, end, im, s, extremes)
                                                    : 0;
            for (int k = 0; k < found; ++k)
                if (!emit(std::exp(extremes[k].X[n]), std::exp(extremes[k].X[n + 1]),
                          extremes[k].x, extremes[k].y))
                    return 452;
            vec zz{};
            for (int i = 0; i < n; ++i) zz[i] = z[i];
            if (!emit(c.T, c.P, zz, zz)) return 452;
            // continue on the other side: z becomes the vapour, K -> 1/K
            tr.set_side(!tr.dew);
            for (int i = 0; i < n; ++i) nxt.X[i] = -nxt.X[i];
            if (tr.solve(nxt, fixed, nxt.X[fixed]) < 0) return 450;
            if (!tr.sensitivity(nxt, fixed, nsens)) return 450;
            if (fixed < n) ds = -ds;
            found = near_critical_end(nxt, end) ? locate_extremes(tr, end, nxt, im, s, extremes)
                                                : 0;
            for (int k = 0; k < found; ++k)
                if (!emit(std::exp(extremes[k].X[n]), std::exp(extremes[k].X[n + 1]),
                          extremes[k].x, extremes[k].y))
                    return 452;
        }

        // past p_start on the way down: this step is redone onto p_start
        if (!final_point && step > 0 && nxt.X[n + 1] < lnp0 && nsens[n + 1] * ds < 0.0) {
            final_point = true;
            continue;
        }
        // cricondentherm and cricondenbar of a step that did not pass the critical point
        if (!crossed) {
            const int found = locate_extremes(tr, cur, nxt, fixed, s, extremes);
            for (int k = 0; k < found; ++k)
                if (!emit(std::exp(extremes[k].X[n]), std::exp(extremes[k].X[n + 1]),
                          extremes[k].x, extremes[k].y))
                    return 452;
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

} // namespace

int trace_envelope(const fluid& f, double p_start, envelope_sink* sink, envelope_summary& s) {
    bool reversed = false;
    const int e = trace_curve(f, p_start, sink, s, reversed);
    if (reversed && sink) sink->reverse_order();
    return e;
}

int envelope_point(const fluid& f, bool dew, bool given_t, const double* a, const double* b,
                   double& T, double& P, flash_result& out) {
    const int n = f.n;
    const int g = given_t ? n : n + 1; // the given unknown
    const double target = std::log(given_t ? T : P);
    if (n < 2 || !std::isfinite(target) || !((target - a[g]) * (target - b[g]) <= 0.0)) return 1;
    tracer tr{f, f.z.data(), n};
    tr.set_side(dew);
    // the specified unknown: the one that changes most between the ends, in units of the
    // envelope's step limits
    int s = 0;
    double most = -1.0;
    for (int j = 0; j < n + 2; ++j) {
        if (j == g) continue;
        const double w = j < n ? 0.8 : j == n ? 0.1 : 0.5;
        const double d = std::abs(b[j] - a[j]) / w;
        if (d > most) most = d, s = j;
    }
    point p, best;
    double sa = a[s], sb = b[s], fa = a[g] - target, fb = b[g] - target;
    // the curve's points at the ends of the bracket, which narrows towards the given value: the
    // straight line between them starts each solution (close to the critical point, where the
    // solution at small ln K is near the trivial one, a start from the far end does not hold)
    xvec ea{}, eb{};
    for (int j = 0; j < n + 2; ++j) ea[j] = a[j], eb[j] = b[j];
    double fbest = INFINITY;
    int side = 0;
    double retry = NAN; // a value to try after a failed solution
    int failures = 0;
    for (int it = 0; it < 60; ++it) {
        double sm = fb == fa ? 0.5 * (sa + sb) : sb - fb * (sb - sa) / (fb - fa);
        if (!(sm > std::min(sa, sb) && sm < std::max(sa, sb))) sm = 0.5 * (sa + sb);
        if (std::isfinite(retry)) sm = retry, retry = NAN;
        const double w = (sm - ea[s]) / (eb[s] - ea[s]);
        for (int j = 0; j < n + 2; ++j) p.X[j] = ea[j] + w * (eb[j] - ea[j]);
        if (tr.solve(p, s, sm) < 0) {
            // a start too far from the curve, where the solution lies close to the trivial one
            // (small ln K by the critical point): the next try lies halfway to the end away
            // from it, whose solution then brings the start closer
            if (++failures > 12) break;
            const bool a_far = s < n ? std::abs(sa) > std::abs(sb)
                                     : std::abs(sa - sm) > std::abs(sb - sm);
            retry = 0.5 * (sm + (a_far ? sa : sb));
            continue;
        }
        const double fm = p.X[g] - target;
        if (std::abs(fm) < fbest) fbest = std::abs(fm), best = p;
        // close to the critical point the point at a given ln K is determined only to the
        // conditioning of the equations there: the regula falsi stops where rounding sets in
        if (fbest <= 1e-13 || std::abs(sb - sa) <= 1e-13 * std::max(1.0, std::abs(sm))) break;
        if ((fm > 0.0) == (fb > 0.0)) {
            sb = sm, fb = fm, eb = p.X;
            if (side == 1) fa *= 0.5;
            side = 1;
        } else {
            sa = sm, fa = fm, ea = p.X;
            if (side == -1) fb *= 0.5;
            side = -1;
        }
    }
    if (!(fbest <= 1e-5)) return 1;
    // the given value itself specified, from the closest point
    p = best;
    if (fbest > 0.0 && tr.solve(p, g, target) < 0) {
        if (!(fbest <= 1e-12)) return 1;
        p = best;
    }
    double big = 0.0; // not the trivial solution
    for (int i = 0; i < n; ++i) big = std::max(big, std::abs(p.X[i]));
    if (!(big > 1e-9)) return 1;
    T = given_t ? T : std::exp(p.X[n]);
    P = given_t ? std::exp(p.X[n + 1]) : P;
    temperature_terms<double> t;
    at_temperature(f, T, t);
    out.nphase = 2;
    out.beta = dew ? 1.0 : 0.0;
    out.x = p.x;
    out.y = p.y;
    if (eval_phase(f, t, P, p.x.data(), dew ? root_choice::liquid : root_choice::stable,
                   out.liq) ||
        eval_phase(f, t, P, p.y.data(), dew ? root_choice::stable : root_choice::vapour,
                   out.vap))
        return 1;
    return 0;
}

int envelope_limits(const fluid& f, envelope_summary& s) {
    return trace_envelope(f, 1.0e5, nullptr, s);
}

} // namespace varimol
