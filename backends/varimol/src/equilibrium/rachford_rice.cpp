#include "equilibrium/rachford_rice.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

namespace {
// root in (0, 1/2] of sum z (k - 1)/(1 + b (k - 1)), which is positive at b = 0
double solve_lower_half(int n, const double* z, const double* k) {
    double lo = 0.0, hi = 0.5;
    for (int i = 0; i < n; ++i) {
        // x_i <= 1 and y_i <= 1 bound the root (window of positive phase amounts)
        if (k[i] > 1.0) lo = std::max(lo, (k[i] * z[i] - 1.0) / (k[i] - 1.0));
        else if (k[i] < 1.0) hi = std::min(hi, (1.0 - z[i]) / (1.0 - k[i]));
    }
    double b = 0.5 * (lo + hi);
    for (int it = 0; it < 200; ++it) {
        double f = 0.0, df = 0.0;
        for (int i = 0; i < n; ++i) {
            const double km1 = k[i] - 1.0;
            const double t = km1 / (1.0 + b * km1);
            f += z[i] * t;
            df -= z[i] * t * t;
        }
        if (f == 0.0) return b;
        if (f > 0.0) lo = b; else hi = b;
        double bn = b - f / df;
        if (!(bn > lo && bn < hi)) bn = 0.5 * (lo + hi);
        const double step = std::abs(bn - b);
        b = bn;
        if (step <= 1e-16 * b || hi - lo <= 1e-16 * b) break;
    }
    return b;
}
} // namespace

int rachford_rice(int n, const double* z, const double* K, double& beta, double* x, double* y) {
    double f0 = 0.0, f1 = 0.0;
    for (int i = 0; i < n; ++i) {
        f0 += z[i] * (K[i] - 1.0);
        f1 += z[i] * (1.0 - 1.0 / K[i]);
    }
    if (!(f0 > 0.0) || !(f1 < 0.0)) {
        for (int i = 0; i < n; ++i) x[i] = y[i] = z[i];
        beta = f0 > 0.0 ? 1.0 : 0.0;
        return f0 > 0.0 ? 1 : -1;
    }
    double fh = 0.0; // value at beta = 1/2
    for (int i = 0; i < n; ++i) fh += z[i] * (K[i] - 1.0) / (1.0 + 0.5 * (K[i] - 1.0));
    if (fh >= 0.0) {
        double kinv[32];
        for (int i = 0; i < n; ++i) kinv[i] = 1.0 / K[i];
        // 1 + beta (K - 1) = K (1 + gamma (1/K - 1)) with gamma = 1 - beta
        const double g = solve_lower_half(n, z, kinv);
        beta = 1.0 - g;
        for (int i = 0; i < n; ++i) {
            y[i] = z[i] / (1.0 + g * (kinv[i] - 1.0));
            x[i] = kinv[i] * y[i];
        }
    } else {
        beta = solve_lower_half(n, z, K);
        for (int i = 0; i < n; ++i) {
            x[i] = z[i] / (1.0 + beta * (K[i] - 1.0));
            y[i] = K[i] * x[i];
        }
    }
    return 0;
}

void rachford_rice_extended(int n, const double* z, const double* K, double& beta, double* x,
                            double* y) {
    double kmax = K[0], kmin = K[0];
    for (int i = 1; i < n; ++i) kmax = std::max(kmax, K[i]), kmin = std::min(kmin, K[i]);
    double lo = kmax > 1.0 ? 1.0 / (1.0 - kmax) : -1e300;
    double hi = kmin < 1.0 ? 1.0 / (1.0 - kmin) : 1e300;
    lo = std::max(lo, -1e6);
    hi = std::min(hi, 1e6);
    double b = std::clamp(beta, lo + 1e-12 * (hi - lo), hi - 1e-12 * (hi - lo));
    for (int it = 0; it < 200; ++it) {
        double f = 0.0, df = 0.0;
        for (int i = 0; i < n; ++i) {
            const double km1 = K[i] - 1.0;
            const double t = km1 / (1.0 + b * km1);
            f += z[i] * t;
            df -= z[i] * t * t;
        }
        if (f > 0.0) lo = b; else hi = b;
        double bn = b - f / df;
        if (!(bn > lo && bn < hi)) bn = 0.5 * (lo + hi);
        const double step = std::abs(bn - b);
        b = bn;
        if (f == 0.0 || step <= 1e-15 * std::max(1.0, std::abs(b))) break;
    }
    beta = b;
    for (int i = 0; i < n; ++i) {
        x[i] = z[i] / (1.0 + b * (K[i] - 1.0));
        y[i] = K[i] * x[i];
    }
}

} // namespace varimol
