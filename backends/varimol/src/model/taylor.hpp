#pragma once
// Truncated Taylor series in temperature: value and the first N derivatives with respect to T,
// carried exactly through the arithmetic of the model (no differences are taken). Coefficients
// are normalised, c[k] = f^(k)(T) / k!, so that products are plain convolutions. The model
// functions are templates over the scalar type: double where only values are needed (the
// iterations of the phase equilibrium), taylor<1> for d/dT of ln phi, taylor<3> for the caloric
// properties and dcv/dT.
#include <array>
#include <cmath>

namespace varimol {

template <int N>
struct taylor {
    // left unset by the default constructor, as a double is: the tables of temperature terms
    // hold mc x mc of them and are filled only for the components present
    std::array<double, N + 1> c;
    taylor() = default;
    taylor(double v) : c{} { c[0] = v; } // a constant
    static taylor variable(double v) {
        taylor t(v);
        if constexpr (N >= 1) t.c[1] = 1.0;
        return t;
    }
    // k-th derivative with respect to T
    double d(int k) const {
        double f = 1.0;
        for (int i = 2; i <= k; ++i) f *= i;
        return c[k] * f;
    }
};

inline double value(double x) { return x; }
template <int N>
double value(const taylor<N>& x) { return x.c[0]; }

template <int N>
taylor<N> operator+(taylor<N> a, const taylor<N>& b) {
    for (int k = 0; k <= N; ++k) a.c[k] += b.c[k];
    return a;
}
template <int N>
taylor<N> operator-(taylor<N> a, const taylor<N>& b) {
    for (int k = 0; k <= N; ++k) a.c[k] -= b.c[k];
    return a;
}
template <int N>
taylor<N> operator-(taylor<N> a) {
    for (int k = 0; k <= N; ++k) a.c[k] = -a.c[k];
    return a;
}
template <int N>
taylor<N> operator+(taylor<N> a, double b) { a.c[0] += b; return a; }
template <int N>
taylor<N> operator+(double b, taylor<N> a) { a.c[0] += b; return a; }
template <int N>
taylor<N> operator-(taylor<N> a, double b) { a.c[0] -= b; return a; }
template <int N>
taylor<N> operator-(double b, const taylor<N>& a) { return -a + b; }
template <int N>
taylor<N> operator*(taylor<N> a, double b) {
    for (int k = 0; k <= N; ++k) a.c[k] *= b;
    return a;
}
template <int N>
taylor<N> operator*(double b, taylor<N> a) { return a * b; }
template <int N>
taylor<N> operator/(taylor<N> a, double b) { return a * (1.0 / b); }
template <int N>
taylor<N> operator*(const taylor<N>& a, const taylor<N>& b) {
    taylor<N> r;
    for (int k = 0; k <= N; ++k) {
        double s = 0.0;
        for (int j = 0; j <= k; ++j) s += a.c[j] * b.c[k - j];
        r.c[k] = s;
    }
    return r;
}
template <int N>
taylor<N> operator/(const taylor<N>& a, const taylor<N>& b) {
    taylor<N> r;
    for (int k = 0; k <= N; ++k) {
        double s = a.c[k];
        for (int j = 1; j <= k; ++j) s -= b.c[j] * r.c[k - j];
        r.c[k] = s / b.c[0];
    }
    return r;
}
template <int N>
taylor<N> operator/(double a, const taylor<N>& b) { return taylor<N>(a) / b; }
template <int N>
taylor<N>& operator+=(taylor<N>& a, const taylor<N>& b) { return a = a + b; }
template <int N>
taylor<N>& operator-=(taylor<N>& a, const taylor<N>& b) { return a = a - b; }
template <int N>
taylor<N>& operator*=(taylor<N>& a, const taylor<N>& b) { return a = a * b; }
template <int N>
taylor<N>& operator+=(taylor<N>& a, double b) { a.c[0] += b; return a; }
template <int N>
taylor<N>& operator-=(taylor<N>& a, double b) { a.c[0] -= b; return a; }

template <int N>
taylor<N> sqrt(const taylor<N>& a) {
    taylor<N> r;
    r.c[0] = std::sqrt(a.c[0]);
    for (int k = 1; k <= N; ++k) {
        double s = a.c[k];
        for (int j = 1; j < k; ++j) s -= r.c[j] * r.c[k - j];
        r.c[k] = s / (2.0 * r.c[0]);
    }
    return r;
}
template <int N>
taylor<N> log(const taylor<N>& a) {
    taylor<N> r;
    r.c[0] = std::log(a.c[0]);
    for (int k = 1; k <= N; ++k) {
        double s = a.c[k];
        for (int j = 1; j < k; ++j) s -= (double(j) / k) * r.c[j] * a.c[k - j];
        r.c[k] = s / a.c[0];
    }
    return r;
}
// log(a) where the logarithm of its value, ln a.c[0], is already known (the series recurrence
// of log needs only that value)
template <int N>
taylor<N> log_given(const taylor<N>& a, double log_value) {
    taylor<N> r;
    r.c[0] = log_value;
    for (int k = 1; k <= N; ++k) {
        double s = a.c[k];
        for (int j = 1; j < k; ++j) s -= (double(j) / k) * r.c[j] * a.c[k - j];
        r.c[k] = s / a.c[0];
    }
    return r;
}
inline double log_given(double, double log_value) { return log_value; }
using std::log;
using std::sqrt;

} // namespace varimol
