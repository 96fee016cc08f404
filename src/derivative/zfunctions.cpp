#include "derivative/zfunctions.hpp"

#include "base/common.hpp"

#include <algorithm>
#include <cmath>

namespace zfunctions {

namespace {

constexpr std::string_view invalid_order_zp_text =
    "Invalid order for function evaluation in ZFunction_ZP";
constexpr std::string_view invalid_order_xy_text =
    "Invalid order for function evaluation in ZFunction_xy";
constexpr std::string_view no_function_text =
    "Error in Zentropia: the root finder has no function to evaluate";
constexpr std::string_view not_bracketed_text =
    "Error Zentropia Brent solver: root not bracketed...";
constexpr std::string_view infinite_bracket_text =
    "Error Zentropia Brent solver: the bounds of the bracket must be finite numbers...";
constexpr std::string_view no_convergence_text = "Error Zentropia Brent solver: no convergence...";

// Absolute tolerance of zsolve, in the internal unit of the unknown.
constexpr double zsolve_tolerance = 1e-12;
// Relative resolution of the iterate: a little above the double-precision epsilon, so that
// the convergence test never asks for more digits than the arithmetic carries.
constexpr double machine_precision = 3e-14;
constexpr int max_iterations = 100;

// The state of the search under way.
struct zp_state {
    property_function func = nullptr;
    std::string inputspec; // at most 2 characters: the short-string buffer, no allocation
    int order = 1;
    double z = 0.0;
    double y = 0.0;
};
struct xy_state {
    xy_function func = nullptr;
    int order = 1;
    double z = 0.0;
    double y = 0.0;
};

zp_state zp;
xy_state xy;

// A residual's status that ends the search: anything but success and the tolerated warning.
bool is_fatal(int ierr) {
    return ierr != status_ok && ierr != status_warning;
}

// The residual z - f(x, y) (order 1) or z - f(y, x) (order 2) of the stored search state.
template <typename State, typename Function>
double residual(const State& state, double x, std::string_view invalid_order_text, int& ierr,
                std::string& errormsg, Function f) {
    ierr = status_ok;
    if (state.func == nullptr) {
        errormsg = no_function_text;
        ierr = status_invalid_order;
        return 0.0;
    }
    switch (state.order) {
    case 1:
        return state.z - f(x, state.y);
    case 2:
        return state.z - f(state.y, x);
    default:
        errormsg = invalid_order_text;
        ierr = status_invalid_order;
        return 0.0;
    }
}

} // namespace

double zsolve(property_function func, double z_, std::string_view inputspec_, double y_, int order_,
              double xa, double xb, std::string& errormsg) {
    setzfunction_zp(func, inputspec_, y_, z_, order_);
    int ierr = status_ok;
    return zbracket(zfunction_zp, xa, xb, zsolve_tolerance, ierr, errormsg);
}

void setzfunction_zp(property_function func, std::string_view inputspec_, double y_, double z_,
                     int order_) {
    zp.func = func;
    zp.inputspec.assign(zp_common::fit(inputspec_, 2));
    zp.y = y_;
    zp.z = z_;
    zp.order = order_;
}

double zfunction_zp(double x, int& ierr, std::string& errormsg) {
    // A failing evaluation keeps its text in errormsg; the search goes on with its value.
    return residual(zp, x, invalid_order_zp_text, ierr, errormsg, [&errormsg](double a, double b) {
        return zp.func(zp.inputspec, a, b, errormsg);
    });
}

void setzfunction_xy(xy_function func, double y_, double z_, int order_) {
    xy.func = func;
    xy.y = y_;
    xy.z = z_;
    xy.order = order_;
}

double zfunction_xy(double x, int& ierr, std::string& errormsg) {
    return residual(xy, x, invalid_order_xy_text, ierr, errormsg,
                    [](double a, double b) { return xy.func(a, b); });
}

// Brent's method: inverse quadratic interpolation or the secant through the last points while
// they shrink the bracket fast enough, bisection otherwise. b is the best iterate, a the
// previous one and c the far end of the bracket [b, c] that holds the sign change.
double zbracket(residual_function f, double a_, double b_, double tol, int& ierr,
                std::string& errormsg) {
    errormsg = zp_common::no_errors;
    ierr = status_ok;
    if (!std::isfinite(a_) || !std::isfinite(b_)) {
        ierr = status_not_bracketed;
        errormsg = infinite_bracket_text;
        return 0.0;
    }
    double a = a_;
    double b = b_;
    double fa = f(a, ierr, errormsg);
    if (is_fatal(ierr)) return 0.0;
    double fb = f(b, ierr, errormsg);
    if (is_fatal(ierr)) return 0.0;
    // A NaN at either end establishes no bracket either.
    if (!(fa * fb <= 0.0)) {
        ierr = status_not_bracketed;
        errormsg = not_bracketed_text;
        return 0.0;
    }

    double c = b;
    double fc = fb;
    double d = 0.0;
    double e = 0.0;
    for (int iteration = 0; iteration < max_iterations; ++iteration) {
        if (fb * fc > 0.0) {
            // b and c on the same side: the bracket is [a, b]
            c = a;
            fc = fa;
            d = b - a;
            e = d;
        }
        if (std::fabs(fc) < std::fabs(fb)) {
            // keep the smaller residual in b
            a = b;
            b = c;
            c = a;
            fa = fb;
            fb = fc;
            fc = fa;
        }
        const double tol1 = 2.0 * machine_precision * std::fabs(b) + 0.5 * tol;
        const double xm = 0.5 * (c - b);
        if (std::fabs(xm) <= tol1 || fb == 0.0) return b;

        if (std::fabs(e) >= tol1 && std::fabs(fa) > std::fabs(fb)) {
            const double s = fb / fa;
            double p;
            double q;
            if (a == c) {
                // two points: secant
                p = 2.0 * xm * s;
                q = 1.0 - s;
            } else {
                // three points: inverse quadratic interpolation
                q = fa / fc;
                const double r = fb / fc;
                p = s * (2.0 * xm * q * (q - r) - (b - a) * (r - 1.0));
                q = (q - 1.0) * (r - 1.0) * (s - 1.0);
            }
            if (p > 0.0) q = -q;
            p = std::fabs(p);
            if (2.0 * p < std::min(3.0 * xm * q - std::fabs(tol1 * q), std::fabs(e * q))) {
                e = d;
                d = p / q;
            } else {
                d = xm;
                e = d;
            }
        } else {
            d = xm;
            e = d;
        }

        a = b;
        fa = fb;
        if (std::fabs(d) > tol1) {
            b += d;
        } else {
            b += xm >= 0.0 ? tol1 : -tol1;
        }
        fb = f(b, ierr, errormsg);
        if (is_fatal(ierr)) return 0.0;
    }
    ierr = status_no_convergence;
    errormsg = no_convergence_text;
    return b;
}

} // namespace zfunctions
