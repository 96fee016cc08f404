// Points of given vapour fraction of a mixture, bounded and started by its traced envelope.
#include "equilibrium/quality_points.hpp"

#include "equilibrium/envelope.hpp"
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/saturation.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace varimol {
namespace {

// The envelope of the configured mixture, traced once per fluid when a point of given vapour
// fraction first needs it: its cricondenbar and cricondentherm bound those points, and its
// points start the iteration where the one from Wilson's K-values fails (close to the critical
// point, where the K-values approach 1).
struct stored_point {
    double T, P; // K, Pa
    vec lnk;     // ln(y_i/x_i)
    bool dew;    // the feed is the vapour (y = z)
    bool critical;
};
constexpr int max_stored = 500;

struct envelope_store final : envelope_sink {
    std::array<stored_point, max_stored> pts;
    int count = 0;
    const fluid* f = nullptr;
    bool add(double T, double P, const vec& x, const vec& y) override {
        if (count >= max_stored) return false;
        stored_point& s = pts[count++];
        s.T = T, s.P = P;
        bool bubble = true, dew = true;
        for (int i = 0; i < f->n; ++i) {
            s.lnk[i] = std::log(y[i] / x[i]);
            // the feed's side holds z up to the rounding of its normalisation
            bubble = bubble && std::abs(x[i] - f->z[i]) <= 1e-14;
            dew = dew && std::abs(y[i] - f->z[i]) <= 1e-14;
        }
        s.dew = dew && !bubble;
        s.critical = dew && bubble;
        return true;
    }
    void reverse_order() override { std::reverse(pts.begin(), pts.begin() + count); }
};

struct envelope_limits_cache {
    bool traced = false;
    bool known = false; // the envelope closed and its extremes are known
    envelope_summary s;
    envelope_store store;
};
envelope_limits_cache limits_cache;

const envelope_limits_cache& configured_limits(const fluid& f) {
    if (!limits_cache.traced) {
        limits_cache.traced = true;
        limits_cache.store.count = 0;
        limits_cache.store.f = &f;
        limits_cache.known = trace_envelope(f, 1.0e5, &limits_cache.store, limits_cache.s) == 0;
    }
    return limits_cache;
}

// A bubble (q = 0) or dew (q = 1) point at given T or P from the traced envelope: between two
// traced points of that side (the critical point belongs to both) around the given value.
int quality_end_from_envelope(const fluid& f, const envelope_store& st, bool dew, bool given_t,
                              double& T, double& P, flash_result& fr) {
    const int n = f.n;
    for (int k = 0; k + 1 < st.count; ++k) {
        const stored_point &a = st.pts[k], &b = st.pts[k + 1];
        const bool side_a = a.critical || a.dew == dew, side_b = b.critical || b.dew == dew;
        if (!side_a || !side_b || (a.critical && b.critical)) continue;
        std::array<double, mc + 2> xa{}, xb{};
        for (int i = 0; i < n; ++i) xa[i] = a.lnk[i], xb[i] = b.lnk[i];
        xa[n] = std::log(a.T), xb[n] = std::log(b.T);
        xa[n + 1] = std::log(a.P), xb[n + 1] = std::log(b.P);
        double t = T, p = P;
        if (envelope_point(f, dew, given_t, xa.data(), xb.data(), t, p, fr) == 0) {
            T = t, P = p;
            return 0;
        }
    }
    return 1;
}

// The start of a bubble (q = 0) or dew (q = 1) iteration at given T or P from the traced
// envelope: ln K and the unknown ln P (or ln T) interpolated in ln T (or ln P) through up to
// four stored points of that side around the given value (cubic where the neighbours lie on
// the same side and keep the given variable monotonic, else down to the straight line between
// the two that bracket it). The critical point ends either side (ln K = 0 there). Bubble points
// are looked for from the low-pressure end of the curve on, dew points from its other end
// back: the branch of the usual, upper dew temperature and the lower dew pressure.
bool envelope_start(const fluid& f, const envelope_store& st, bool dew, bool given_t, double T,
                    double P, vec& lnk, double& T0, double& P0) {
    const int n = f.n;
    const double v = std::log(given_t ? T : P);
    if (!std::isfinite(v) || st.count < 2) return false;
    auto given = [&](int k) { return std::log(given_t ? st.pts[k].T : st.pts[k].P); };
    auto on_side = [&](int k) {
        return k >= 0 && k < st.count && (st.pts[k].critical || st.pts[k].dew == dew);
    };
    for (int m = 0; m + 1 < st.count; ++m) {
        const int k = dew ? st.count - 2 - m : m;
        if (!on_side(k) || !on_side(k + 1) || (st.pts[k].critical && st.pts[k + 1].critical))
            continue;
        const double va = given(k), vb = given(k + 1);
        if (!((v - va) * (v - vb) <= 0.0) || va == vb) continue;
        // the points of the interpolation: k-1 .. k+2 where they belong, monotonic in v
        int lo = k, hi = k + 1;
        const double dir = vb > va ? 1.0 : -1.0;
        if (on_side(k - 1) && !st.pts[k].critical && (va - given(k - 1)) * dir > 0.0) lo = k - 1;
        if (on_side(k + 2) && !st.pts[k + 1].critical && (given(k + 2) - vb) * dir > 0.0)
            hi = k + 2;
        std::array<double, 4> w{};
        for (int a = lo; a <= hi; ++a) {
            double l = 1.0;
            for (int b = lo; b <= hi; ++b)
                if (b != a) l *= (v - given(b)) / (given(a) - given(b));
            w[a - lo] = l;
        }
        double other = 0.0;
        for (int i = 0; i < n; ++i) lnk[i] = 0.0;
        for (int a = lo; a <= hi; ++a) {
            const stored_point& sp = st.pts[a];
            other += w[a - lo] * std::log(given_t ? sp.P : sp.T);
            for (int i = 0; i < n; ++i) lnk[i] += w[a - lo] * sp.lnk[i];
        }
        T0 = given_t ? T : std::exp(other);
        P0 = given_t ? std::exp(other) : P;
        return std::isfinite(T0) && std::isfinite(P0);
    }
    return false;
}

// largest |ln K| of an interpolated start below which a bubble or dew point is solved along the
// traced curve rather than by Newton from the start
constexpr double near_critical_lnk = 0.05;

// A bubble (dew = false) or dew point at given T or P from the traced curve. Newton from the
// interpolated start converges in two or three steps, also where Wilson's K-values fall onto
// the trivial solution. Within a few hundredths of ln K of the critical point the Newton
// iteration on (ln K, P or T) is close to singular (the trivial solution lies next to it) and
// its steps overshoot across the critical point: there the point is found along the traced
// curve, with a ln K specified as the tracer holds it. Returns 0 or 1.
int quality_end(const fluid& f, const envelope_store& st, bool dew, bool given_t, double& T,
                double& P, flash_result& fr) {
    vec lnk{};
    double t0, p0;
    if (!envelope_start(f, st, dew, given_t, T, P, lnk, t0, p0)) return 1;
    double spread = 0.0;
    for (int i = 0; i < f.n; ++i) spread = std::max(spread, std::abs(lnk[i]));
    const double q = dew ? 1.0 : 0.0;
    if (spread > near_critical_lnk) {
        if (saturation_q_from(f, given_t, t0, p0, q, f.z.data(), lnk.data(), fr) != 0) return 1;
        T = t0, P = p0;
        return 0;
    }
    return quality_end_from_envelope(f, st, dew, given_t, T, P, fr);
}

// vapour fraction of the PT flash at (T, P): 0 or 1 for a homogeneous liquid- or vapour-like
// feed; -1 when the flash fails
double flash_beta(const fluid& f, double T, double P, flash_result& fr) {
    if (flash_tp(f, T, P, f.z.data(), fr) != 0) return -1.0;
    if (fr.nphase == 2) return fr.beta;
    return fr.liq.v < f.vcrit ? 0.0 : 1.0;
}

// An interior q between the bubble and the dew point at given T or P (a and b: the value of the
// unknown, T or ln P, at q = 0 and q = 1): regula falsi (Illinois) on beta - q of PT flashes.
int quality_inside(const fluid& f, bool given_t, double a, double b, double q, double& T, double& P,
                   flash_result& fr) {
    auto at = [&](double u) {
        return given_t ? flash_beta(f, T, std::exp(u), fr) : flash_beta(f, u, P, fr);
    };
    double fa = -q, fb = 1.0 - q;
    int side = 0;
    for (int it = 0; it < 100; ++it) {
        double u = b - fb * (b - a) / (fb - fa);
        if (!(u > std::min(a, b) && u < std::max(a, b))) u = 0.5 * (a + b);
        const double beta = at(u);
        if (beta < 0.0) return 1;
        const double fu = beta - q;
        // the flash's vapour fraction carries the rounding of its iteration (about 1e-12): a
        // bracket closed to rounding accepts it within 1e-10
        const bool closed = std::abs(b - a) <= 1e-14 * std::max(1.0, std::abs(u));
        if (fr.nphase == 2 && (std::abs(fu) <= 1e-13 || (closed && std::abs(fu) <= 1e-10))) {
            (given_t ? P : T) = given_t ? std::exp(u) : u;
            return 0;
        }
        if ((fu > 0.0) == (fb > 0.0)) {
            b = u, fb = fu;
            if (side == 1) fa *= 0.5;
            side = 1;
        } else {
            a = u, fa = fu;
            if (side == -1) fb *= 0.5;
            side = -1;
        }
        if (closed) break;
    }
    return 1;
}

} // namespace

void forget_traced_envelope() {
    limits_cache = envelope_limits_cache{};
}

// A mixture's point of vapour fraction q at given P (mode 11) or T (mode 12). No two-phase
// state lies above the cricondenbar or the cricondentherm: such a request is answered at once.
// Every line of constant q runs from low pressure up to the critical point, so below the
// critical pressure (temperature) a point of every q exists and a failure is one of the
// iteration; above it the line of the asked q may end before the given pressure (temperature),
// and a point the iteration does not find is reported as lying beyond its line.
int mixture_quality_point(const fluid& f, bool given_t, double& T, double& P, double q,
                          flash_result& fr) {
    const int beyond = given_t ? 3276 : 3271;
    const envelope_limits_cache& lim = configured_limits(f);
    if (lim.known) {
        if (given_t && T > lim.s.t_cricondentherm) return beyond;
        if (!given_t && P > lim.s.p_cricondenbar) return beyond;
    }
    const double t_in = T, p_in = P;
    // a bubble or dew point from the traced curve; the iteration from Wilson's K-values below
    // serves a curve that did not close or a point it misses
    if ((q == 0.0 || q == 1.0) && lim.known) {
        if (quality_end(f, lim.store, q == 1.0, given_t, T, P, fr) == 0) return 0;
        T = t_in, P = p_in;
    }
    if (given_t)
        P = 1.0e5; // starting values of the iteration
    else
        T = 0.7 * f.tcrit;
    int e = saturation_q(f, given_t, T, P, q, f.z.data(), fr);
    if (e == 0) return 0;
    T = t_in, P = p_in;
    if (q == 0.0 || q == 1.0) {
        if (quality_end_from_envelope(f, lim.store, q == 1.0, given_t, T, P, fr) == 0) return 0;
    } else {
        // close to the critical point, where the lines of constant q crowd together: from the
        // bubble or the dew point of the traced curve (the nearer in q first), along the tie
        // lines of the given T or P in the vapour fraction
        for (const bool dew : {q >= 0.5, q < 0.5}) {
            if (!lim.known) break;
            double te = t_in, pe = p_in;
            flash_result end;
            if (quality_end(f, lim.store, dew, given_t, te, pe, end) != 0) continue;
            vec lnk{};
            for (int i = 0; i < f.n; ++i) lnk[i] = std::log(end.y[i] / end.x[i]);
            if (saturation_q_follow(f, given_t, te, pe, dew ? 1.0 : 0.0, q, f.z.data(), lnk.data(),
                                    fr) == 0) {
                T = te, P = pe;
                return 0;
            }
        }
        // between the bubble and the dew point of the given T or P
        double tb = given_t ? T : 0.7 * f.tcrit, pb = given_t ? 1.0e5 : P;
        double td = tb, pd = pb;
        flash_result end;
        const bool have_ends =
            (saturation_q(f, given_t, tb, pb, 0.0, f.z.data(), end) == 0 ||
             quality_end_from_envelope(f, lim.store, false, given_t, tb, pb, end) == 0) &&
            (saturation_q(f, given_t, td, pd, 1.0, f.z.data(), end) == 0 ||
             quality_end_from_envelope(f, lim.store, true, given_t, td, pd, end) == 0);
        if (have_ends) {
            const double a = given_t ? std::log(pb) : tb, b = given_t ? std::log(pd) : td;
            if (quality_inside(f, given_t, a, b, q, T, P, fr) == 0) {
                // the PT flash's vapour fraction matches q only to the rounding of its
                // iteration: Newton on the tie line of q itself, from the flash's K-values,
                // puts the overall composition on it to rounding
                vec lnk{};
                for (int i = 0; i < f.n; ++i) lnk[i] = std::log(fr.y[i] / fr.x[i]);
                double tp = T, pp = P;
                flash_result polished;
                if (saturation_q_from(f, given_t, tp, pp, q, f.z.data(), lnk.data(), polished) ==
                    0) {
                    T = tp, P = pp, fr = polished;
                }
                fr.beta = q;
                return 0;
            }
        }
        T = t_in, P = p_in;
    }
    const bool above_critical =
        lim.known && lim.s.has_critical && (given_t ? T > lim.s.t_crit : P > lim.s.p_crit);
    return above_critical ? beyond : e;
}

} // namespace varimol
