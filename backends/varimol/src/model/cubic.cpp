#include "model/cubic.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace varimol {

namespace {
// Z^3 + c2 Z^2 + c1 Z + c0 and its derivative
inline double poly(double z, double c2, double c1, double c0, double& dp) {
    dp = (3.0 * z + 2.0 * c2) * z + c1;
    return ((z + c2) * z + c1) * z + c0;
}

// Cube root: the bits of a positive double read as an integer are close to a scaled and shifted
// log2 of it, so a third of them plus two thirds of the bits of 1.0 start within a few per cent
// of the cube root; two Halley steps, each tripling the correct digits, bring it to about 1e-12
// (the root of the cubic is polished afterwards). Far outside the range of the cubic's
// coefficients the library's cube root answers.
inline double cube_root(double x) {
    const double a = std::abs(x);
    if (!(a > 1e-200 && a < 1e200)) return std::cbrt(x);
    std::uint64_t bits;
    std::memcpy(&bits, &a, sizeof bits);
    constexpr std::uint64_t one = 0x3FF0000000000000ull; // the bits of 1.0
    bits = bits / 3 + one / 3 * 2;
    double y;
    std::memcpy(&y, &bits, sizeof y);
    for (int k = 0; k < 2; ++k) {
        const double y3 = y * y * y;
        y *= (y3 + 2.0 * a) / (2.0 * y3 + a);
    }
    return x < 0.0 ? -y : y;
}

// Newton polish of a root of the cubic; the analytic roots lose digits when two roots are close.
inline double polish(double z, double c2, double c1, double c0) {
    for (int it = 0; it < 4; ++it) {
        double dp;
        const double p = poly(z, c2, c1, c0, dp);
        if (dp == 0.0) break;
        const double dz = p / dp;
        if (!std::isfinite(dz)) break;
        z -= dz;
        // Newton converges quadratically: after a step below 1e-9 the error is at rounding
        if (std::abs(dz) <= 1e-9 * std::abs(z)) break;
    }
    return z;
}
} // namespace

int z_roots(const cubic_family& eos, double A, double B, double& zmin, double& zmax) {
    // (Z - B)(Z + d1 B)(Z + d2 B) - (Z + d1 B)(Z + d2 B) + A (Z - B) = 0
    const double u = eos.delta1 + eos.delta2, w = eos.delta1 * eos.delta2;
    const double c2 = (u - 1.0) * B - 1.0;
    const double c1 = A + w * B * B - u * B * (B + 1.0);
    const double c0 = -(A * B + w * B * B * (B + 1.0));
    // depressed cubic t^3 + p t + q, Z = t - c2/3 (Cardano; trigonometric form for three roots)
    const double s = c2 / 3.0;
    const double p = c1 - c2 * s;
    const double q = (2.0 * s * s - c1) * s + c0;
    const double disc = 0.25 * q * q + p * p * p / 27.0;
    // The pressure of the cubic falls from +infinity at v = b to 0 at infinite volume, so it takes
    // a positive P once or three times above the covolume: the largest real root is always the
    // physical one, and the smallest is physical only when all three are.
    double zl, zs = 0.0;
    bool three = false;
    if (disc > 0.0) {
        const double sq = std::sqrt(disc);
        const double h = -0.5 * q + (q <= 0.0 ? sq : -sq); // no cancellation
        const double m = cube_root(h);
        zl = polish(m - p / (3.0 * m) - s, c2, c1, c0);
    } else {
        const double r = std::sqrt(-p / 3.0);
        double arg = (r > 0.0) ? (-0.5 * q) / (r * r * r) : 0.0;
        arg = std::clamp(arg, -1.0, 1.0);
        // the largest root from the trigonometric form, the other two from the quadratic left
        // by dividing it out: Z^2 + e1 Z + e0
        zl = polish(2.0 * r * std::cos(std::acos(arg) / 3.0) - s, c2, c1, c0);
        const double e1 = c2 + zl, e0 = c1 + zl * e1;
        const double d2 = e1 * e1 - 4.0 * e0;
        if (d2 >= 0.0) {
            const double h = -0.5 * (e1 + (e1 >= 0.0 ? std::sqrt(d2) : -std::sqrt(d2)));
            const double r1 = h, r2 = h != 0.0 ? e0 / h : 0.0;
            zs = polish(std::min(r1, r2), c2, c1, c0);
            three = zs > B && zs < zl && std::isfinite(zs);
        }
    }
    if (!(zl > B) || !std::isfinite(zl)) {
        zmin = INFINITY;
        zmax = -INFINITY;
        return 0;
    }
    zmax = zl;
    zmin = three ? zs : zl;
    return three ? 2 : 1;
}

} // namespace varimol
