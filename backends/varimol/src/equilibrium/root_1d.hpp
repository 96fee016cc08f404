#pragma once
// One unknown, one monotone equation: the outer loops of the state-function flashes. A bracket
// is grown from a starting point by secant-guided steps, then closed by Brent's method (inverse
// quadratic interpolation safeguarded by bisection; Brent, Algorithms for Minimization without
// Derivatives, 1973, ch. 4).
#include <algorithm>
#include <cmath>

namespace varimol {

struct root_search {
    double x0;        // starting point
    double step;      // first step of the bracket search (> 0), in x
    double lo, hi;    // x stays within [lo, hi]
    double xtol;      // absolute tolerance in x
    bool increasing;  // the residual grows with x
    double rtol = 0.0;   // a residual this small is a root
};

// A code of g for a point where the residual does not exist (outside its domain): the bracket
// search steps back towards its last point.
inline constexpr int retry_closer = 2;

// g(x, r) evaluates the residual r at x and returns 0 or an error code (> 1). Returns 0 with the
// root in x, -1 when the residual keeps the sign of a root below lo, +1 when of a root above hi,
// or g's error code. Known residual r0 at x0 may be passed (has_r0) to save one evaluation.
template <class G>
int find_root(G&& g, const root_search& rs, double& x, bool has_r0 = false, double r0 = 0.0) {
    double a = std::clamp(rs.x0, rs.lo, rs.hi), ra = r0;
    if (!has_r0)
        if (int e = g(a, ra)) return e;
    if (std::abs(ra) <= rs.rtol) {
        x = a;
        return 0;
    }
    // direction of the root from a
    const double dir = (ra > 0.0) == rs.increasing ? -1.0 : 1.0;
    double step = rs.step;
    double b = a, rb = ra;
    bool bracketed = false;
    for (int it = 0; it < 120; ++it) {
        const double limit = dir < 0.0 ? rs.lo : rs.hi;
        double xn = a + dir * step;
        if ((dir < 0.0 && xn <= limit) || (dir > 0.0 && xn >= limit)) xn = limit;
        double rn;
        if (int e = g(xn, rn)) {
            // outside the domain where the residual exists: a shorter step
            if (e != retry_closer || step < 1e-12 * (1.0 + std::abs(a))) return e;
            step *= 0.25;
            continue;
        }
        if (std::abs(rn) <= rs.rtol) {
            x = xn;
            return 0;
        }
        if ((rn > 0.0) != (ra > 0.0)) {
            b = xn;
            rb = rn;
            bracketed = true;
            break;
        }
        if (xn == limit) return dir < 0.0 ? -1 : 1;
        // secant distance to the root, widened; at least doubling when the slope is unhelpful
        const double slope = (rn - ra) / (xn - a);
        double dist = std::abs(rn / slope);
        if (!std::isfinite(dist) || (slope > 0.0) != rs.increasing) dist = 2.0 * step;
        step = std::clamp(1.5 * dist + 0.1 * step, step, 8.0 * step);
        a = xn;
        ra = rn;
    }
    if (!bracketed) return 106;
    // Brent: b is the best estimate, a the previous one, c the other end of the bracket
    double c = a, rc = ra, d = b - a, e = d;
    for (int it = 0; it < 100; ++it) {
        if ((rb > 0.0) == (rc > 0.0)) {
            c = a;
            rc = ra;
            d = e = b - a;
        }
        if (std::abs(rc) < std::abs(rb)) {
            a = b;
            b = c;
            c = a;
            ra = rb;
            rb = rc;
            rc = ra;
        }
        const double tol1 = 4e-16 * std::abs(b) + 0.5 * rs.xtol;
        const double m = 0.5 * (c - b);
        if (std::abs(m) <= tol1 || std::abs(rb) <= rs.rtol) {
            x = b;
            return 0;
        }
        if (std::abs(e) >= tol1 && std::abs(ra) > std::abs(rb)) {
            double p, q, s = rb / ra;
            if (a == c) {
                p = 2.0 * m * s;
                q = 1.0 - s;
            } else {
                const double qq = ra / rc, r = rb / rc;
                p = s * (2.0 * m * qq * (qq - r) - (b - a) * (r - 1.0));
                q = (qq - 1.0) * (r - 1.0) * (s - 1.0);
            }
            if (p > 0.0) q = -q;
            else p = -p;
            if (2.0 * p < std::min(3.0 * m * q - std::abs(tol1 * q), std::abs(e * q))) {
                e = d;
                d = p / q;
            } else {
                d = m;
                e = m;
            }
        } else {
            d = m;
            e = m;
        }
        a = b;
        ra = rb;
        b += std::abs(d) > tol1 ? d : (m > 0.0 ? tol1 : -tol1);
        if (int err = g(b, rb)) return err;
    }
    return 106;
}

} // namespace varimol
