#pragma once
// Sums f(x, y) = sum_k n_k x^I_k y^J_k of the IAPWS-IF97 basic equations, with their partial
// derivatives up to third order. Everything that makes the evaluation fast is derived from the
// published coefficient table at compile time: a plan that builds each power the table needs
// once, with one multiplication from two smaller ones, and the coefficient columns n I, n J,
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

// How to build every power x^e a table needs with one multiplication each: slot k holds
// x^exponent[k] = slot[left[k]] * slot[right[k]]. Slots 0, 1 and 2 hold 1, x and 1/x. Each new
// power is the product of two earlier ones, chosen for the shortest chain of dependent
// multiplications; where no two earlier powers add up to it, the missing difference is built
// first.
template <std::size_t capacity> struct power_plan {
    std::array<int, capacity> exponent{};
    std::array<int, capacity> left{};
    std::array<int, capacity> right{};
    std::array<int, capacity> depth{};
    std::size_t count = 3;

    constexpr power_plan() {
        exponent[0] = 0, exponent[1] = 1, exponent[2] = -1;
        depth[2] = 1; // the division
    }
    constexpr int slot(int e) const {
        for (std::size_t k = 0; k < count; ++k)
            if (exponent[k] == e) return static_cast<int>(k);
        return -1;
    }
    constexpr void ensure(int e) {
        if (slot(e) >= 0) return;
        int best_a = -1, best_b = -1, best_depth = 1 << 20;
        for (std::size_t a = 1; a < count; ++a)
            for (std::size_t b = a; b < count; ++b)
                if (exponent[a] + exponent[b] == e && exponent[a] * e > 0 && exponent[b] * e > 0) {
                    const int d = (depth[a] > depth[b] ? depth[a] : depth[b]) + 1;
                    if (d < best_depth) best_a = int(a), best_b = int(b), best_depth = d;
                }
        if (best_a < 0) {
            // the largest power of the same sign below e, and the difference built first
            int largest = e > 0 ? 1 : -1;
            for (std::size_t a = 1; a < count; ++a)
                if (exponent[a] * e > 0 && (e > 0 ? exponent[a] < e && exponent[a] > largest
                                                  : exponent[a] > e && exponent[a] < largest))
                    largest = exponent[a];
            ensure(e - largest);
            best_a = slot(largest), best_b = slot(e - largest);
            best_depth = (depth[best_a] > depth[best_b] ? depth[best_a] : depth[best_b]) + 1;
        }
        exponent[count] = e, left[count] = best_a, right[count] = best_b;
        depth[count] = best_depth;
        ++count;
    }
};

template <std::size_t N> constexpr auto make_plan(const std::array<term, N>& table, bool of_x) {
    power_plan<4 * N + 16> plan;
    // the squares x^2, x^4, ... first, which keep the chains short, then the powers by rising
    // magnitude, so that small powers are there to build the large ones
    int high = 0, low = 0;
    for (const term& t : table) {
        const int e = of_x ? t.I : t.J;
        high = e > high ? e : high;
        low = e < low ? e : low;
    }
    for (int m = 2; m <= high; m *= 2) plan.ensure(m);
    for (int m = 2; m <= -low; m *= 2) plan.ensure(-m);
    for (int m = 1; m <= 128; ++m)
        for (const term& t : table)
            for (const int sign : {1, -1})
                if ((of_x ? t.I : t.J) == sign * m) plan.ensure(sign * m);
    return plan;
}

template <const auto& plan, std::size_t... k>
inline void powers(double x, double reciprocal, double* slot, std::index_sequence<k...>) {
    slot[0] = 1.0;
    slot[1] = x;
    slot[2] = reciprocal;
    ((slot[k + 3] = slot[plan.left[k + 3]] * slot[plan.right[k + 3]]), ...);
}

// Dot product in eight independent lanes, so that few additions wait on each other.
template <std::size_t N> inline double dot(const std::array<double, N>& c, const double* t) {
    double a[8] = {};
    std::size_t k = 0;
    for (; k + 8 <= N; k += 8)
        for (std::size_t l = 0; l < 8; ++l) a[l] += c[k + l] * t[k + l];
    for (std::size_t l = 0; k < N; ++k, ++l) a[l] += c[k] * t[k];
    return ((a[0] + a[1]) + (a[2] + a[3])) + ((a[4] + a[5]) + (a[6] + a[7]));
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
    static constexpr auto x_plan = make_plan(table, true);
    static constexpr auto y_plan = make_plan(table, false);
    static constexpr auto x_slot = [] {
        std::array<int, size> a{};
        for (std::size_t k = 0; k < size; ++k) a[k] = x_plan.slot(table[k].I);
        return a;
    }();
    static constexpr auto y_slot = [] {
        std::array<int, size> a{};
        for (std::size_t k = 0; k < size; ++k) a[k] = y_plan.slot(table[k].J);
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
    ((t[k] = X[tab::x_slot[k]] * Y[tab::y_slot[k]]), ...);
}

} // namespace detail

// f and its derivatives up to `order` (1 to 3) at (x, y), given also 1/x and 1/y (which a caller
// can often form without waiting for x and y); x and y must not be zero. Order 0 gives f_y alone
// (all an enthalpy needs).
template <const auto& table, int order>
[[gnu::always_inline]] inline derivatives evaluate(double x, double y, double x_reciprocal,
                                                   double y_reciprocal) {
    using tab = detail::compiled<table>;
    double X[tab::x_plan.count];
    double Y[tab::y_plan.count];
    double t[tab::size];
    detail::powers<tab::x_plan>(x, x_reciprocal, X,
                                std::make_index_sequence<tab::x_plan.count - 3>{});
    detail::powers<tab::y_plan>(y, y_reciprocal, Y,
                                std::make_index_sequence<tab::y_plan.count - 3>{});
    detail::products<table>(X, Y, t, std::make_index_sequence<tab::size>{});

    derivatives d;
    const double rx = X[2];
    const double ry = Y[2];
    if constexpr (order == 0) {
        d.f_y = detail::dot(tab::c_y, t) * ry;
        return d;
    }
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

template <const auto& table, int order>
[[gnu::always_inline]] inline derivatives evaluate(double x, double y) {
    return evaluate<table, order>(x, y, 1.0 / x, 1.0 / y);
}

} // namespace if97::power_sum
