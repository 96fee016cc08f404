#pragma once
// One-dimensional root finding for the inverse problems: Newton steps kept inside a bracket,
// with bisection wherever a step would leave it (a safeguarded Newton iteration).
#include <cmath>

namespace if97::roots {

// Value and derivative of a function at one point.
struct value_slope {
    double f;
    double df;
};

// x is the last point evaluated: when converged, one Newton step after a step below tol |x|.
struct result {
    double x;
    bool converged;
};

// The iteration stopped at its last Newton step, not taken: x is the last point evaluated and
// x - step the root (step 0 when x itself is taken as the root).
struct last_step {
    double x;
    double step;
    bool converged;
};

// Root of fn in [lo, hi]; `increasing` tells the sign pattern fn(lo) < 0 < fn(hi). An end that
// is not known to bracket the root (lo_known, hi_known false) is evaluated only when a step
// would cross it; when the root lies beyond it, the result is that end, not converged. Starts
// at x0 (the middle when outside), stops when a Newton step is below tol |x|, without taking it:
// a caller that can carry its state over that small step saves an evaluation.
template <class F>
last_step newton_to_last_step(F&& fn, double lo, double hi, double x0, bool increasing, double tol,
                              bool lo_known = true, bool hi_known = true, int max_iter = 100) {
    double x = (x0 > lo && x0 < hi) ? x0 : 0.5 * (lo + hi);
    auto below_root = [&](double f) { return (f < 0.0) == increasing; };
    for (int it = 0; it < max_iter; ++it) {
        const value_slope v = fn(x);
        if (v.f == 0.0) return {x, 0.0, true};
        if (std::isnan(v.f)) return {x, 0.0, false};
        if (below_root(v.f))
            lo = x, lo_known = true;
        else
            hi = x, hi_known = true;
        const double step = v.f / v.df;
        const bool inside = x - step > lo && x - step < hi;
        if (std::fabs(step) <= tol * std::fabs(x)) return {x, inside ? step : 0.0, true};
        double next = x - step;
        if (!inside) {
            // Bisection, once an end not yet known to bracket the root is known to do so
            // (one end at most: the other is a point already evaluated).
            if (!lo_known) {
                const value_slope e = fn(lo);
                if (!below_root(e.f) || e.f == 0.0) return {lo, 0.0, e.f == 0.0};
                lo_known = true;
            }
            if (!hi_known) {
                const value_slope e = fn(hi);
                if (below_root(e.f) || e.f == 0.0) return {hi, 0.0, e.f == 0.0};
                hi_known = true;
            }
            next = 0.5 * (lo + hi);
        }
        if (hi - lo <= tol * std::fabs(x)) return {x, inside ? step : 0.0, true};
        x = next;
    }
    return {x, 0.0, false};
}

// The same, with the last step taken and fn evaluated there, unless the step is down at the
// last bits (the function may be steep, so a step below tol can still matter).
template <class F>
result newton_bracketed(F&& fn, double lo, double hi, double x0, bool increasing, double tol,
                        bool lo_known = true, bool hi_known = true, int max_iter = 100) {
    last_step r =
        newton_to_last_step(fn, lo, hi, x0, increasing, tol, lo_known, hi_known, max_iter);
    if (r.converged && std::fabs(r.step) > 4e-16 * std::fabs(r.x)) {
        r.x -= r.step;
        fn(r.x);
    }
    return {r.x, r.converged};
}

} // namespace if97::roots
