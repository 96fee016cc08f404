#include "saturation_grid.hpp"

#include "forward.hpp"
#include "properties.hpp"
#include "roots.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace if97::saturation_grid {

namespace {

using properties::T_min;

constexpr int node_count = 600;

// One saturated phase at a node: v, h, s, u and their derivatives along the saturation line,
// and ln v with its derivative, which is what is interpolated for the vapour volume: it grows
// exponentially as T falls, its logarithm hardly bends.
struct phase_values {
    std::array<double, 4> y;
    std::array<double, 4> dy;
    double ln_v, dln_v;
};

struct node {
    double T;
    phase_values liquid, vapour;
};

using grid_nodes = std::array<node, node_count>;

phase_values values_of(const properties::state& st, double dps_dT) {
    const properties::saturation_slope d = properties::slope(st, dps_dT);
    return {{st.v, st.h, st.s, st.u}, {d.v, d.h, d.s, d.u}, std::log(st.v), d.v / st.v};
}

// Node k at T = Tc - (Tc - T_min) (1 - k/n)^2: closer together towards Tc, where the two lines
// turn steeply into the critical point; the last one a millikelvin below Tc.
double node_temperature(int k) {
    const double r = 1.0 - double(k) / node_count;
    return k == 0 ? T_min : forward::Tc - (forward::Tc - T_min) * r * r;
}

// The saturated phases come from the equations of regions 1 and 2 up to 623.15 K and from that
// of region 3 above, which join with a small jump: the two nodes around 623.15 K are moved onto
// its two sides, so that no cubic piece straddles it.
const grid_nodes& grid() {
    static const grid_nodes nodes = [] {
        grid_nodes g{};
        for (int k = 0; k < node_count; ++k) {
            double T = node_temperature(k);
            if (T <= forward::T13 && node_temperature(k + 1) > forward::T13) T = forward::T13;
            if (T > forward::T13 && node_temperature(k - 1) <= forward::T13)
                T = forward::T13 + 1e-9;
            const properties::saturation sat = properties::saturation_T(T, properties::caloric);
            const double dps = forward::dpsat_dT(T);
            g[k] = {T, values_of(sat.liquid, dps), values_of(sat.vapour, dps)};
        }
        return g;
    }();
    return nodes;
}

// The cubic through two nodes with the slopes there (Hermite), at T in [T0, T1].
struct cubic {
    double T0, width;
    roots::value_slope at(double y0, double m0, double y1, double m1, double T) const {
        const double t = (T - T0) / width;
        const double t2 = t * t, t3 = t2 * t;
        const double y = (2 * t3 - 3 * t2 + 1) * y0 + (t3 - 2 * t2 + t) * width * m0 +
                         (3 * t2 - 2 * t3) * y1 + (t3 - t2) * width * m1;
        const double dy = ((6 * t2 - 6 * t) * (y0 - y1)) / width + (3 * t2 - 4 * t + 1) * m0 +
                          (3 * t2 - 2 * t) * m1;
        return {y, dy};
    }
};

// Property q of one phase at T between two neighbouring nodes, and its slope.
roots::value_slope interpolated(const node& n0, const node& n1, bool liquid, property q, double T) {
    const cubic c{n0.T, n1.T - n0.T};
    const phase_values& p0 = liquid ? n0.liquid : n0.vapour;
    const phase_values& p1 = liquid ? n1.liquid : n1.vapour;
    if (q != v || liquid) return c.at(p0.y[q], p0.dy[q], p1.y[q], p1.dy[q], T);
    const roots::value_slope ln = c.at(p0.ln_v, p0.dln_v, p1.ln_v, p1.dln_v, T);
    const double vol = std::exp(ln.f);
    return {vol, vol * ln.df};
}

// Quality of the mixture with property a = ya at a node; outside 0..1 beyond the dome.
double node_quality(const node& n, property a, double ya) {
    return (ya - n.liquid.y[a]) / (n.vapour.y[a] - n.liquid.y[a]);
}

// Property b of that mixture minus yb at a node, +inf where there is no such mixture: the
// span of a between liquid and vapour narrows as T rises, so that T is too high there.
double node_excess(const node& n, property a, double ya, property b, double yb) {
    const double x = node_quality(n, a, ya);
    if (!(x >= 0.0 && x <= 1.0)) return INFINITY;
    return n.liquid.y[b] + x * (n.vapour.y[b] - n.liquid.y[b]) - yb;
}

// true where the node's temperature is at or below that of the mixture: the mixture with a = ya
// exists there and its b is at most yb (the same test as node_excess <= 0, without a division,
// for the search over the nodes).
bool node_below(const node& n, property a, double ya, property b, double yb) {
    const double span = n.vapour.y[a] - n.liquid.y[a], part = ya - n.liquid.y[a];
    const double excess = (n.liquid.y[b] - yb) * span + part * (n.vapour.y[b] - n.liquid.y[b]);
    return (part >= 0.0) & (part <= span) & (excess <= 0.0);
}

// Relative step at which the iteration on the interpolated line stops: the next iterate is then
// within some 1e-13 K of its root, far below the interpolation's own error.
constexpr double tol = 1e-9;

} // namespace

double mixture_T(property a, double ya, property b, double yb) {
    const grid_nodes& g = grid();
    if (!node_below(g[0], a, ya, b, yb)) return NAN; // no mixture down to T_min
    int below = 0, above = node_count - 1;
    if (node_below(g[above], a, ya, b, yb)) return NAN; // within a millikelvin of Tc
    while (above - below > 1) { // (without branches, which would mostly be mispredicted)
        const int mid = (below + above) / 2;
        const bool at_or_below = node_below(g[mid], a, ya, b, yb);
        below = at_or_below ? mid : below;
        above = at_or_below ? above : mid;
    }
    const node& n0 = g[below];
    const node& n1 = g[above];
    auto phase = [&](bool liquid, property q, double T) {
        return interpolated(n0, n1, liquid, q, T);
    };

    // Where the interval holds the edge of the dome for ya (x reaching 0 or 1), the root lies
    // below that edge, if the mixture there has b above yb.
    double T_top = n1.T;
    const double x1 = node_quality(n1, a, ya);
    if (!(x1 >= 0.0 && x1 <= 1.0)) {
        const bool vapour_edge = x1 > 1.0;
        auto edge = [&](double T) {
            roots::value_slope e = phase(!vapour_edge, a, T);
            e.f -= ya;
            return e;
        };
        // a' rises through ya, a'' falls through it
        const double e0 = edge(n0.T).f, e1 = edge(n1.T).f;
        const roots::last_step r = roots::newton_to_last_step(
            edge, n0.T, n1.T, n0.T + (n1.T - n0.T) * e0 / (e0 - e1), !vapour_edge, tol);
        if (!r.converged) return NAN;
        T_top = r.x - r.step;
        if (!(phase(!vapour_edge, b, T_top).f > yb)) return NAN; // a single phase
    }

    auto excess = [&](double T) -> roots::value_slope {
        const roots::value_slope a1 = phase(true, a, T), a2 = phase(false, a, T);
        const roots::value_slope b1 = phase(true, b, T), b2 = phase(false, b, T);
        const double x = (ya - a1.f) / (a2.f - a1.f);
        const double dx = -(a1.df + x * (a2.df - a1.df)) / (a2.f - a1.f);
        return {b1.f + x * (b2.f - b1.f) - yb, b1.df + x * (b2.df - b1.df) + dx * (b2.f - b1.f)};
    };
    // Newton from where the straight line between the ends crosses zero; the step below the
    // tolerance is taken without evaluating the interpolation at its end.
    const double f0 = node_excess(n0, a, ya, b, yb);
    const double f1 = T_top == n1.T ? node_excess(n1, a, ya, b, yb) : excess(T_top).f;
    const double T0 = n0.T + (T_top - n0.T) * f0 / (f0 - f1);
    const roots::last_step r = roots::newton_to_last_step(excess, n0.T, T_top, T0, true, tol);
    return r.converged ? r.x - r.step : NAN;
}

volumes saturated_volumes(double T) {
    const grid_nodes& g = grid();
    // the node below T, from the inverse of the node placement (and a step for the two moved)
    const double r = std::sqrt(std::fmax(forward::Tc - T, 0.0) / (forward::Tc - T_min));
    int k = std::clamp(int((1.0 - r) * node_count), 0, node_count - 2);
    if (k > 0 && g[k].T > T) --k;
    if (k < node_count - 2 && g[k + 1].T <= T) ++k;
    return {interpolated(g[k], g[k + 1], true, v, T).f,
            interpolated(g[k], g[k + 1], false, v, T).f};
}

} // namespace if97::saturation_grid
