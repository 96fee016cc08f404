#pragma once
// Sums f(x, y) = sum_k n_k x^I_k y^J_k of the IAPWS-IF97 basic equations, with their partial
// derivatives up to third order. Everything that makes the evaluation fast is derived from the
// published coefficient table at compile time: the distinct exponents (so each power is built
// once, by squaring, from a ladder x, x^2, x^4, ...), and the coefficient columns n I, n J,
// n I (I - 1), ... of the derivatives. A derivative is then a dot product of a coefficient column
// with the term values x^I y^J, divided by the matching power of x and y.
#include <array>
#include <cstddef>
#include <utility>

namespace if97::power_sum {

// One row of a published table: term number i, exponents I and J, coefficient n.
struct term {
    int i;
    int I;
    int J;
    double n;
};

// f and its partial derivatives; f_xy = d2f/(dx dy) and so on.
struct derivatives {
    double f = 0, f_x = 0, f_y = 0;
    double f_xx = 0, f_xy = 0, f_yy = 0;
    double f_xxx = 0, f_xxy = 0, f_xyy = 0, f_yyy = 0;
};

namespace detail {

template <std::size_t N> struct exponent_set {
    std::array<int, N> value{};
    std::size_t count = 0;
};

// Distinct values of I (of_x) or J, in ascending order.
template <std::size_t N>
constexpr exponent_set<N> distinct(const std::array<term, N>& table, bool of_x) {
    exponent_set<N> set;
    for (const term& t : table) {
        const int e = of_x ? t.I : t.J;
        std::size_t k = 0;
        while (k < set.count && set.value[k] < e) ++k;
        if (k < set.count && set.value[k] == e) continue;
        for (std::size_t m = set.count; m > k; --m) set.value[m] = set.value[m - 1];
        set.value[k] = e;
        ++set.count;
    }
    return set;
}

template <std::size_t N> constexpr std::size_t position(const exponent_set<N>& set, int e) {
    std::size_t k = 0;
    while (set.value[k] != e) ++k;
    return k;
}

constexpr int ladder_length(int largest) {
    int length = 0;
    while ((1 << length) <= largest) ++length;
    return length;
}

// Product of ladder[b] over the set bits b of m: x^m when ladder[b] = x^(2^b).
template <unsigned m, int b = 0> inline double bit_product(const double* ladder) {
    if constexpr ((m >> 1) == 0)
        return ladder[b];
    else if constexpr ((m & 1u) != 0)
        return ladder[b] * bit_product<(m >> 1), b + 1>(ladder);
    else
        return bit_product<(m >> 1), b + 1>(ladder);
}

template <int e> inline double power(const double* up, const double* down) {
    if constexpr (e == 0)
        return 1.0;
    else if constexpr (e > 0)
        return bit_product<static_cast<unsigned>(e)>(up);
    else
        return bit_product<static_cast<unsigned>(-e)>(down);
}

// All powers x^e, e in the set, from one ladder of squares and, for negative exponents, one
// division.
template <const auto& set, std::size_t... k>
inline void powers(double x, double* out, std::index_sequence<k...>) {
    constexpr int low = set.value[0];
    constexpr int high = set.value[set.count - 1];
    constexpr int up_length = ladder_length(high > 0 ? high : 0);
    constexpr int down_length = ladder_length(low < 0 ? -low : 0);
    double up[up_length > 0 ? up_length : 1];
    double down[down_length > 0 ? down_length : 1];
    if constexpr (up_length > 0) {
        up[0] = x;
        for (int b = 1; b < up_length; ++b) up[b] = up[b - 1] * up[b - 1];
    }
    if constexpr (down_length > 0) {
        down[0] = 1.0 / x;
        for (int b = 1; b < down_length; ++b) down[b] = down[b - 1] * down[b - 1];
    }
    ((out[k] = power<set.value[k]>(up, down)), ...);
}

// Dot product in four independent lanes, so the additions overlap.
template <std::size_t N> inline double dot(const std::array<double, N>& c, const double* t) {
    double a0 = 0, a1 = 0, a2 = 0, a3 = 0;
    std::size_t k = 0;
    for (; k + 4 <= N; k += 4) {
        a0 += c[k] * t[k];
        a1 += c[k + 1] * t[k + 1];
        a2 += c[k + 2] * t[k + 2];
        a3 += c[k + 3] * t[k + 3];
    }
    for (; k < N; ++k) a0 += c[k] * t[k];
    return (a0 + a1) + (a2 + a3);
}

// Coefficient column n * a(I) * b(J) for the derivative with a x-order and b y-order.
template <std::size_t N>
constexpr std::array<double, N> column(const std::array<term, N>& table, int x_order, int y_order) {
    std::array<double, N> c{};
    for (std::size_t k = 0; k < N; ++k) {
        double f = table[k].n;
        for (int m = 0; m < x_order; ++m) f *= table[k].I - m;
        for (int m = 0; m < y_order; ++m) f *= table[k].J - m;
        c[k] = f;
    }
    return c;
}

template <const auto& table> struct compiled {
    static constexpr std::size_t size = table.size();
    static constexpr auto xs = distinct(table, true);
    static constexpr auto ys = distinct(table, false);
    static constexpr auto x_index = [] {
        std::array<std::size_t, size> a{};
        for (std::size_t k = 0; k < size; ++k) a[k] = position(xs, table[k].I);
        return a;
    }();
    static constexpr auto y_index = [] {
        std::array<std::size_t, size> a{};
        for (std::size_t k = 0; k < size; ++k) a[k] = position(ys, table[k].J);
        return a;
    }();
    static constexpr auto c = column(table, 0, 0);
    static constexpr auto c_x = column(table, 1, 0);
    static constexpr auto c_y = column(table, 0, 1);
    static constexpr auto c_xx = column(table, 2, 0);
    static constexpr auto c_xy = column(table, 1, 1);
    static constexpr auto c_yy = column(table, 0, 2);
    static constexpr auto c_xxx = column(table, 3, 0);
    static constexpr auto c_xxy = column(table, 2, 1);
    static constexpr auto c_xyy = column(table, 1, 2);
    static constexpr auto c_yyy = column(table, 0, 3);
};

template <const auto& table, std::size_t... k>
inline void products(const double* X, const double* Y, double* t, std::index_sequence<k...>) {
    using tab = compiled<table>;
    ((t[k] = X[tab::x_index[k]] * Y[tab::y_index[k]]), ...);
}

} // namespace detail

// f and its derivatives up to `order` (1 to 3) at (x, y); x and y must not be zero when the
// table has negative exponents or derivatives are asked for.
template <const auto& table, int order> inline derivatives evaluate(double x, double y) {
    using tab = detail::compiled<table>;
    double X[tab::xs.count];
    double Y[tab::ys.count];
    double t[tab::size];
    detail::powers<tab::xs>(x, X, std::make_index_sequence<tab::xs.count>{});
    detail::powers<tab::ys>(y, Y, std::make_index_sequence<tab::ys.count>{});
    detail::products<table>(X, Y, t, std::make_index_sequence<tab::size>{});

    derivatives d;
    const double rx = 1.0 / x;
    const double ry = 1.0 / y;
    d.f = detail::dot(tab::c, t);
    d.f_x = detail::dot(tab::c_x, t) * rx;
    d.f_y = detail::dot(tab::c_y, t) * ry;
    if constexpr (order >= 2) {
        d.f_xx = detail::dot(tab::c_xx, t) * (rx * rx);
        d.f_xy = detail::dot(tab::c_xy, t) * (rx * ry);
        d.f_yy = detail::dot(tab::c_yy, t) * (ry * ry);
    }
    if constexpr (order >= 3) {
        d.f_xxx = detail::dot(tab::c_xxx, t) * (rx * rx * rx);
        d.f_xxy = detail::dot(tab::c_xxy, t) * (rx * rx * ry);
        d.f_xyy = detail::dot(tab::c_xyy, t) * (rx * ry * ry);
        d.f_yyy = detail::dot(tab::c_yyy, t) * (ry * ry * ry);
    }
    return d;
}

} // namespace if97::power_sum
