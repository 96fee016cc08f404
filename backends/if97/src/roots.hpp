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

// Root of fn in [lo, hi]; `increasing` tells the sign pattern fn(lo) < 0 < fn(hi). An end that
// is not known to bracket the root (lo_known, hi_known false) is evaluated only when a step
// would cross it; when the root lies beyond it, the result is that end, not converged. Starts
// at x0 (the middle when outside), stops when a Newton step is below tol |x|.
template <class F>
result newton_bracketed(F&& fn, double lo, double hi, double x0, bool increasing, double tol,
                        bool lo_known = true, bool hi_known = true, int max_iter = 100) {
    double x = (x0 > lo && x0 < hi) ? x0 : 0.5 * (lo + hi);
    auto below_root = [&](double f) { return (f < 0.0) == increasing; };
    for (int it = 0; it < max_iter; ++it) {
        const value_slope v = fn(x);
        if (v.f == 0.0) return {x, true};
        if (std::isnan(v.f)) return {x, false};
        if (below_root(v.f))
            lo = x, lo_known = true;
        else
            hi = x, hi_known = true;
        const double step = v.f / v.df;
        if (std::fabs(step) <= tol * std::fabs(x)) {
            // one more step unless it is down at the last bits: the function may be steep
            if (std::fabs(step) > 4e-16 * std::fabs(x) && x - step > lo && x - step < hi) {
                x -= step;
                fn(x);
            }
            return {x, true};
        }
        double next = x - step;
        if (!(next > lo && next < hi)) {
            // Bisection, once an end not yet known to bracket the root is known to do so
            // (one end at most: the other is a point already evaluated).
            if (!lo_known) {
                const value_slope e = fn(lo);
                if (!below_root(e.f) || e.f == 0.0) return {lo, e.f == 0.0};
                lo_known = true;
            }
            if (!hi_known) {
                const value_slope e = fn(hi);
                if (below_root(e.f) || e.f == 0.0) return {hi, e.f == 0.0};
                hi_known = true;
            }
            next = 0.5 * (lo + hi);
        }
        if (hi - lo <= tol * std::fabs(x)) return {x, true};
        x = next;
    }
    return {x, false};
}

} // namespace if97::roots
