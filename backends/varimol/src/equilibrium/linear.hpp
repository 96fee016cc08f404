#pragma once
// Dense linear solve for the small systems of the Newton iterations (n <= 21): Gaussian
// elimination with partial pivoting, in place. Returns false when the matrix is singular.
#include <cmath>
#include <utility>

namespace varimol {

// a: n x n, row-major with leading dimension ld; b: right-hand side, overwritten by the solution
inline bool solve_linear(int n, double* a, int ld, double* b) {
    for (int k = 0; k < n; ++k) {
        int p = k;
        double best = std::abs(a[k * ld + k]);
        for (int i = k + 1; i < n; ++i)
            if (std::abs(a[i * ld + k]) > best) best = std::abs(a[i * ld + k]), p = i;
        if (!(best > 0.0) || !std::isfinite(best)) return false;
        if (p != k) {
            for (int j = 0; j < n; ++j) std::swap(a[k * ld + j], a[p * ld + j]);
            std::swap(b[k], b[p]);
        }
        const double inv = 1.0 / a[k * ld + k];
        for (int i = k + 1; i < n; ++i) {
            const double m = a[i * ld + k] * inv;
            if (m == 0.0) continue;
            for (int j = k + 1; j < n; ++j) a[i * ld + j] -= m * a[k * ld + j];
            b[i] -= m * b[k];
        }
    }
    for (int i = n - 1; i >= 0; --i) {
        double s = b[i];
        for (int j = i + 1; j < n; ++j) s -= a[i * ld + j] * b[j];
        b[i] = s / a[i * ld + i];
    }
    return true;
}

// Cholesky solve of a symmetric matrix; false when it is not positive definite (a and b are
// then left partly overwritten).
inline bool solve_cholesky(int n, double* a, int ld, double* b) {
    for (int j = 0; j < n; ++j) {
        double d = a[j * ld + j];
        for (int k = 0; k < j; ++k) d -= a[j * ld + k] * a[j * ld + k];
        if (!(d > 0.0)) return false;
        d = std::sqrt(d);
        a[j * ld + j] = d;
        for (int i = j + 1; i < n; ++i) {
            double s = a[i * ld + j];
            for (int k = 0; k < j; ++k) s -= a[i * ld + k] * a[j * ld + k];
            a[i * ld + j] = s / d;
        }
    }
    for (int i = 0; i < n; ++i) {
        double s = b[i];
        for (int k = 0; k < i; ++k) s -= a[i * ld + k] * b[k];
        b[i] = s / a[i * ld + i];
    }
    for (int i = n - 1; i >= 0; --i) {
        double s = b[i];
        for (int k = i + 1; k < n; ++k) s -= a[k * ld + i] * b[k];
        b[i] = s / a[i * ld + i];
    }
    return true;
}

} // namespace varimol
