#include "solve.hpp"

#include "backward.hpp"
#include "forward.hpp"
#include "roots.hpp"
#include "saturation_grid.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace if97::solve {

namespace {

using forward::pc;
using forward::rhoc;
using forward::T13;
using forward::T25;
using forward::Tc;
using properties::caloric;
using properties::none;
using properties::p_max;
using properties::p_max5;
using properties::r1;
using properties::r2;
using properties::r3;
using properties::r5;
using properties::saturation;
using properties::state;
using properties::T_max;
using properties::T_min;
using properties::two_phase;

constexpr double tol = 1e-13;           // relative Newton step at which an iteration has converged
constexpr double p_low = 1e-8;          // MPa: lowest pressure the inverse iterations reach
constexpr double T_sat_top = Tc - 1e-7; // highest temperature of the two-phase iterations
constexpr double T_b23_top = 863.15;    // K: the B23 boundary reaches 100 MPa here (eq. 6)

// ---------------------------------------------------------------------------------------------
// Error texts: the quantities in the units of the library interface.

struct quantity {
    const char* name;
    const char* unit;
    double scale; // interface value = value * scale + offset
    double offset;
};

constexpr std::array<quantity, 7> quantities{{
    {"pressure", "bar", 10.0, 0.0},
    {"temperature", "°C", 1.0, -273.15},
    {"specific volume", "m³/kg", 1.0, 0.0},
    {"enthalpy", "kJ/kg", 1.0, 0.0},
    {"entropy", "kJ/(kg K)", 1.0, 0.0},
    {"internal energy", "kJ/kg", 1.0, 0.0},
    {"quality", "", 1.0, 0.0},
}};

std::string number(double value) {
    char text[32];
    const auto r = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return std::string(text, r.ptr);
}

std::string quoted(variable var, double value) {
    const quantity& q = quantities[var];
    std::string text = number(value * q.scale + q.offset);
    if (*q.unit) text += std::string(" ") + q.unit;
    return text;
}

state fail(std::string& errormsg, std::string text) {
    errormsg = std::string(error_prefix) + std::move(text);
    return {};
}

// "<quantity> <value> below|above the lower|upper limit of <limit>[ at <context>]"
state out_of_range(std::string& errormsg, variable var, double value, bool above, double limit,
                   const std::string& context = {}) {
    std::string text = std::string(quantities[var].name) + " " + quoted(var, value) +
                       (above ? " above the upper limit of " : " below the lower limit of ") +
                       quoted(var, limit);
    if (!context.empty()) text += " at " + context;
    return fail(errormsg, std::move(text));
}

// ---------------------------------------------------------------------------------------------
// Property values and their derivatives in the natural variables of each region.

double value_of(const state& st, variable var) {
    switch (var) {
    case P:
        return st.p;
    case T:
        return st.T;
    case v:
        return st.v;
    case h:
        return st.h;
    case s:
        return st.s;
    case u:
        return st.u;
    default:
        return st.x;
    }
}

// Derivatives of one property with respect to the natural variables of the state's region:
// (p in MPa, T) in regions 1, 2, 5 and (rho, T) in region 3. The state must hold `caloric`.
struct slope2 {
    double da;
    double dT;
};

slope2 slope_of(const state& st, variable var) {
    if (st.region == r3) {
        const double v2 = st.v * st.v;
        const double P_T = st.dp_dT, P_v = st.dp_dv; // Pa/K, Pa kg/m³
        switch (var) {
        case P:
            return {-v2 * P_v * 1e-6, P_T * 1e-6};
        case T:
            return {0.0, 1.0};
        case v:
            return {-v2, 0.0};
        case h:
            return {-v2 * (st.T * P_T + st.v * P_v) * 1e-3, st.cv + st.v * P_T * 1e-3};
        case s:
            return {-v2 * P_T * 1e-3, st.cv / st.T};
        default:
            return {-v2 * (st.T * P_T - st.p * 1e6) * 1e-3, st.cv};
        }
    }
    const double dv_dp = 1e6 / st.dp_dv;       // m³/kg per MPa
    const double dv_dT = -st.dp_dT / st.dp_dv; // m³/(kg K)
    switch (var) {
    case P:
        return {1.0, 0.0};
    case T:
        return {0.0, 1.0};
    case v:
        return {dv_dp, dv_dT};
    case h:
        return {(st.v - st.T * dv_dT) * 1e3, st.cp};
    case s:
        return {-dv_dT * 1e3, st.cp / st.T};
    default:
        return {(-st.T * dv_dT - st.p * dv_dp) * 1e3, st.cp - st.p * dv_dT * 1e3};
    }
}

// d/dT at constant p of a region-3 property.
double dT_at_p3(const state& st, variable var) {
    const slope2 d = slope_of(st, var);
    const double drho_dT = st.dp_dT / (st.v * st.v * st.dp_dv); // -P_T / P_rho
    return d.dT + d.da * drho_dT;
}

// d/dT at constant v of a property of a single-phase state or a mixture.
double dT_at_v(const state& st, variable var) {
    double dp_dT = st.dp_dT * 1e-3; // kJ/(m³ K)
    if (st.region == two_phase) dp_dT = forward::dpsat_dT(st.T) * 1e3;
    switch (var) {
    case h:
        return st.cv + st.v * dp_dT;
    case s:
        return st.cv / st.T;
    default:
        return st.cv;
    }
}

// The value of a solution agrees with the one asked for.
bool matches(double value, double wanted, double rel = 1e-9) {
    return std::fabs(value - wanted) <= rel * std::fmax(std::fabs(wanted), 1.0);
}

state finish(state st, int lvl) {
    if (st.level < lvl) st = properties::raise(st, lvl);
    return st;
}

// A single-phase state with `caloric` properties carried to first order by (da, dT) in the
// natural variables of its region (p in MPa, T in regions 1, 2, 5; rho, T in region 3): p, T,
// v, h, s, u, for the last small step of an iteration, which is then not evaluated.
state carried(state st, double da, double dT) {
    auto move = [&](variable var) {
        const slope2 d = slope_of(st, var);
        return d.da * da + d.dT * dT;
    };
    const double dp = st.region == r3 ? move(P) : da;
    const double dv = st.region == r3 ? 1.0 / (1.0 / st.v + da) - st.v : move(v);
    const double dh = move(h), ds = move(s), du = move(u);
    st.p += dp, st.v += dv, st.h += dh, st.s += ds, st.u += du;
    st.T += dT;
    // The caloric values stay those of the evaluated point (the level says they are not this
    // state's): the region checks look at the stability of that point.
    st.level = properties::basic;
    return st;
}

// true when (p, T) of a solution lies in region reg (with a margin of rounding) on the stable
// branch of its equation.
bool in_region(const state& st, int reg) {
    if (!(std::isfinite(st.p) && std::isfinite(st.T) && st.p > 0.0)) return false;
    const double e = 1e-9, eT = 1e-7;
    const double p = st.p, T = st.T;
    switch (reg) {
    case r1:
        return T >= T_min - eT && T <= T13 + eT && p <= p_max * (1 + e) &&
               p >= forward::psat(std::fmax(std::fmin(T, T13), T_min)) * (1 - e);
    case r2:
        if (!(T >= T_min - eT && T <= T25 + eT && p <= p_max * (1 + e))) return false;
        if (T <= T13) return p <= forward::psat(std::fmax(T, T_min)) * (1 + e);
        return T > T_b23_top || p <= forward::p_b23(T) * (1 + e);
    case r3: {
        if (!(T >= T13 - eT && p <= p_max * (1 + e) && p >= forward::p_b23(T) * (1 - e)))
            return false;
        if (!(st.dp_dv < 0.0)) return false;
        if (T >= Tc) return true;
        const double ps = forward::psat(T);
        return std::fabs(p - ps) <= e * ps || (p > ps) == (st.v < 1.0 / rhoc);
    }
    case r5:
        return T >= T25 - eT && T <= T_max + eT && p <= p_max5 * (1 + e);
    default:
        return false;
    }
}

// ---------------------------------------------------------------------------------------------
// Region-3 density near a guess.

// side: +1 liquid (rho above rhoc), -1 vapour, 0 either (above the critical temperature or
// pressure).
double rho3_near(double p, double T, double guess, int side) {
    double rho = guess;
    for (int it = 0; it < 12 && rho > 0.0 && std::isfinite(rho); ++it) {
        const state st = properties::helmholtz_state(rho, T, caloric);
        const double dp_drho = -st.v * st.v * st.dp_dv * 1e-6;
        if (!(dp_drho > 0.0)) break;
        const double step = (st.p - p) / dp_drho;
        rho -= step;
        if (std::fabs(step) <= 1e-14 * rho) {
            if (side == 0 || (side > 0) == (rho > rhoc)) return rho;
            break;
        }
    }
    return properties::rho3_pt(p, T);
}

// ---------------------------------------------------------------------------------------------
// Two-phase states.

// The saturated phases at T with the requested level (above 623.15 K, from densities near
// near_liquid and near_vapour when not 0).
saturation sat_T(double T, int lvl, double near_liquid = 0.0, double near_vapour = 0.0) {
    return properties::saturation_T(T, std::max(lvl, int(properties::basic)), near_liquid,
                                    near_vapour);
}

// Mixture whose quality follows from property A (s or v), with property B matching yb: one
// unknown, the temperature, on [T_min, T_sat_top]. B rises with T along such a path for the
// pairs used (h at constant s; u, h or s at constant v). Each step evaluates the saturated
// phases; the mixture itself is formed once, at the end.
state two_phase_pair(variable A, double ya, variable B, double yb, double T0, int lvl, bool& found,
                     double T_top = T_sat_top) {
    saturation last;
    properties::saturation_slope d1{}, d2{}; // of the liquid and the vapour of `last`
    double x_last = 0;
    auto pick = [](const properties::saturation_slope& d, variable var) {
        return var == v ? d.v : var == h ? d.h : var == s ? d.s : d.u;
    };
    // Above 623.15 K each step solves the saturated densities, from those of the interpolated
    // line at first, then from those of the step before carried along the line by their slopes.
    double near_liquid = 0.0, near_vapour = 0.0;
    if (T0 > T13 && T0 < Tc) {
        const saturation_grid::volumes near = saturation_grid::saturated_volumes(T0);
        near_liquid = 1.0 / near.liquid, near_vapour = 1.0 / near.vapour;
    }
    bool sloped = false; // d1, d2 belong to `last`
    auto fn = [&](double T) -> roots::value_slope {
        if (sloped) {
            const double dT = T - last.T;
            near_liquid = 1.0 / (last.liquid.v + d1.v * dT);
            near_vapour = 1.0 / (last.vapour.v + d2.v * dT);
        }
        last = sat_T(T, caloric, near_liquid, near_vapour);
        sloped = false;
        near_liquid = 1.0 / last.liquid.v, near_vapour = 1.0 / last.vapour.v;
        const state &l = last.liquid, &g = last.vapour;
        const double a1 = value_of(l, A), a2 = value_of(g, A);
        const double b1 = value_of(l, B), b2 = value_of(g, B);
        const double xq = (ya - a1) / (a2 - a1);
        x_last = xq;
        // Outside the dome at this T (s or v beyond s', s'' or v', v'', whose span narrows
        // as T rises): the temperature is too high.
        if (!(xq >= 0.0 && xq <= 1.0)) return {1.0, NAN};
        const double dps = forward::dpsat_dT(T);
        d1 = properties::slope(l, dps);
        d2 = properties::slope(g, dps);
        sloped = true;
        const double da1 = pick(d1, A), da2 = pick(d2, A);
        const double db1 = pick(d1, B), db2 = pick(d2, B);
        const double dx = -(da1 + xq * (da2 - da1)) / (a2 - a1);
        return {b1 + xq * (b2 - b1) - yb, db1 + xq * (db2 - db1) + (b2 - b1) * dx};
    };
    auto mixture_found = [&](int level) {
        // a state on the saturation line itself (to 1e-9 in x) is left to the single-phase
        // candidates, which give the saturated phase with all its properties
        found = x_last >= 1e-9 && x_last <= 1.0 - 1e-9;
        if (!found) return state{};
        const state st = properties::mixture(last, x_last, level);
        found = matches(value_of(st, B), yb, 1e-11);
        return st;
    };

    // When v, h, s, u are all that is asked for, the last Newton step is carried rather than
    // evaluated if it is small enough for its second-order remainder to stay of order 1e-14: v,
    // h, s, u of the phases move by their slopes along the saturation line (the heat capacities
    // and the rest would need the evaluation). Small enough is a microkelvin below 623.15 K,
    // where the saturated phases change smoothly, and a nanokelvin above, where they turn into
    // the critical point.
    auto carry_limit = [](double T) { return T <= T13 ? 1e-6 : 1e-9; };
    const bool may_carry = lvl <= properties::basic;
    const roots::last_step r = roots::newton_to_last_step(fn, T_min, T_top, T0, true,
                                                          may_carry ? carry_limit(T0) / Tc : tol,
                                                          false, T_top < T_sat_top, 60);
    if (!r.converged) return found = false, state{};
    if (r.step == 0.0) return mixture_found(lvl);
    if (may_carry && std::fabs(r.step) <= carry_limit(r.x)) {
        const double T1 = r.x - r.step;
        auto carry = [&](state& phase, const properties::saturation_slope& d) {
            phase.v -= d.v * r.step, phase.h -= d.h * r.step;
            phase.s -= d.s * r.step, phase.u -= d.u * r.step;
            phase.T = T1, phase.p = last.p, phase.level = properties::basic;
        };
        last.T = T1, last.p = forward::psat(T1);
        carry(last.liquid, d1), carry(last.vapour, d2);
        x_last =
            (ya - value_of(last.liquid, A)) / (value_of(last.vapour, A) - value_of(last.liquid, A));
        return mixture_found(lvl);
    }
    const roots::result polished = roots::newton_bracketed(fn, T_min, T_top, r.x - r.step, true,
                                                           tol, false, T_top < T_sat_top, 60);
    if (!polished.converged) return found = false, state{};
    return mixture_found(lvl);
}

// Start of a two-phase iteration from the interpolated saturation line (NaN: no mixture there).
double grid_mixture_T(variable A, double ya, variable B, double yb) {
    auto property = [](variable var) { return saturation_grid::property(var - v); };
    return saturation_grid::mixture_T(property(A), ya, property(B), yb);
}

// ---------------------------------------------------------------------------------------------
// Two unknowns: Newton steps in the natural variables of one region, then a check that the
// solution lies in that region.

// reg r1, r2, r5: a is p (iterated as ln p in the gas regions); reg r3: a is rho.
state newton2(int reg, variable A, double ya, variable B, double yb, double a, double T, int lvl,
              int max_iter = 16) {
    const bool log_a = reg == r2 || reg == r5;
    double last_rel_a = INFINITY;
    for (int it = 0; it < max_iter; ++it) {
        if (!(a > 0.0 && T > 200.0 && T < 2500.0)) return {};
        state st = reg == r3 ? properties::helmholtz_state(a, T, caloric)
                             : properties::gibbs_state(reg, a, T, caloric);
        const double ra = value_of(st, A) - ya, rb = value_of(st, B) - yb;
        slope2 ja = slope_of(st, A), jb = slope_of(st, B);
        if (log_a) ja.da *= a, jb.da *= a;
        const double det = ja.da * jb.dT - ja.dT * jb.da;
        double da = (ra * jb.dT - rb * ja.dT) / det;
        double dT = (ja.da * rb - jb.da * ra) / det;
        if (!(std::isfinite(da) && std::isfinite(dT))) return {};
        const double rel_a = std::fabs(log_a ? da : da / a);
        // Where the pair hardly fixes one variable (the pressure of cold liquid from h and s),
        // the steps keep jittering while both residuals are at the last bits: done as well.
        const bool at_rounding = std::fabs(ra) <= 1e-12 * std::fmax(std::fabs(ya), 1.0) &&
                                 std::fabs(rb) <= 1e-12 * std::fmax(std::fabs(yb), 1.0);
        if (at_rounding && rel_a > 0.5 * last_rel_a) // no longer shrinking
            return in_region(st, reg) ? finish(st, lvl) : state{};
        last_rel_a = rel_a;
        // For v, h, s, u alone, a last step below 1e-8 is carried rather than evaluated (its
        // second-order remainder is of order 1e-16).
        if (lvl <= properties::basic && std::fabs(dT) <= 1e-8 * T && rel_a <= 1e-8) {
            st = carried(st, log_a ? a * std::expm1(-da) : -da, -dT);
            return in_region(st, reg) ? st : state{};
        }
        if (std::fabs(dT) <= tol * T && rel_a <= tol) {
            if (std::fabs(dT) > 4e-16 * T || rel_a > 4e-16) { // the last step, unless negligible
                a = log_a ? a * std::exp(-da) : a - da;
                T -= dT;
                st = reg == r3 ? properties::helmholtz_state(a, T, caloric)
                               : properties::gibbs_state(reg, a, T, caloric);
            }
            return in_region(st, reg) ? finish(st, lvl) : state{};
        }
        // keep the steps moderate: a positive, T within a few hundred kelvin
        double damp = 1.0;
        if (log_a && std::fabs(da) > 1.0) damp = std::fmin(damp, 1.0 / std::fabs(da));
        if (!log_a && da > 0.5 * a) damp = std::fmin(damp, 0.5 * a / da);
        if (std::fabs(dT) > 150.0) damp = std::fmin(damp, 150.0 / std::fabs(dT));
        a = log_a ? a * std::exp(-damp * da) : a - damp * da;
        T -= damp * dT;
    }
    return {};
}

// ---------------------------------------------------------------------------------------------
// Along an isobar: pieces of one region (or the dome) in order of rising temperature; h, s, u
// (and v above the density maximum) rise with T along it.

struct piece {
    int reg;
    double a, b; // temperature (isobar) or pressure (isotherm) range
    int side;    // region 3: +1 liquid, -1 vapour, 0 supercritical
};

struct piece_list {
    std::array<piece, 7> item{};
    int count = 0;
    void add(int reg, double a, double b, int side = 0) { item[count++] = {reg, a, b, side}; }
};

// Result of a search along an isobar or isotherm: the state, or on which side of the line's
// range y lies (no text is built, so that searches inside other searches do not allocate).
struct search_result {
    state st;
    int outside = 0; // +1: y above the largest value on the line, -1: below the smallest
    double limit = 0;
};

// Start of a Gibbs-region iteration along an isobar (NaN when there is none).
double isobar_start(int reg, double p, variable Y, double y) {
    switch (Y) {
    case h:
        return reg == r1 ? backward::t_ph_1(p, y) : reg == r2 ? backward::t_ph_2(p, y) : NAN;
    case s:
        return reg == r1 ? backward::t_ps_1(p, y) : reg == r2 ? backward::t_ps_2(p, y) : NAN;
    case u: // h = u + p v with v about 1 dm³/kg in the liquid
        return reg == r1 ? backward::t_ph_1(p, y + p) : NAN;
    case v: // the ideal gas
        return reg == r1 ? NAN : p * y * 1e3 / forward::R;
    default:
        return NAN;
    }
}

// Typical boundary between liquid and vapour values of v, h, s, u (indexed by variable).
constexpr std::array<double, 6> likely_vapour = {0, 0, 0.005, 2000.0, 4.6, 1800.0};

// h and s have backward equations T(p, h), T(p, s) in regions 1 and 2 that are accurate to some
// 0.01 K: a start well inside one region is taken as the region, and the iteration, with both
// ends of the region unconfirmed, checks it.
bool isobar_by_backward(double p, variable Y, double y, int lvl, search_result& out) {
    if (!(p >= properties::p_sat_min() && (Y == h || Y == s))) return false;
    // region 1 up to the dome or 623.15 K; region 2 from the dome or the B23 line to 1073.15 K
    const double Ts = p <= properties::p_sat_13() ? forward::tsat(p) : 0.0;
    const bool vapour = y > likely_vapour[Y];
    const int reg = vapour ? r2 : r1;
    const double lo = vapour ? (Ts > 0.0 ? Ts : forward::t_b23(p)) : T_min;
    const double hi = vapour ? T25 : (Ts > 0.0 ? Ts : T13);
    const double T0 = isobar_start(reg, p, Y, y);
    if (!(T0 > lo + 0.5 && T0 < hi - 0.5)) {
        // region 3, between 623.15 K and the B23 line, from SR3-03 T and v: both at once
        if (Ts > 0.0 || p > p_max) return false;
        const double T3 = Y == h ? backward::t_ph_3(p, y) : backward::t_ps_3(p, y);
        const double v3 = Y == h ? backward::v_ph_3(p, y) : backward::v_ps_3(p, y);
        if (!(T3 > T13 + 0.5 && T3 < forward::t_b23(p) - 0.5 && v3 > 0.0)) return false;
        state st = newton2(r3, P, p, Y, y, 1.0 / v3, T3, lvl, 12);
        if (st.region == none) return false;
        st.p = p;
        out.st = st;
        return true;
    }
    forward::derivatives g; // at the last temperature tried, T_g: the state is built once, there
    double T_g = T0;
    const double T_star = reg == r1 ? forward::T1_star : forward::T2_star;
    auto fn = [&](double T) -> roots::value_slope {
        g = properties::gibbs_derivatives(reg, p, T), T_g = T;
        const properties::isobar_point pt = properties::isobar_values(T, T_star / T, g);
        return Y == h ? roots::value_slope{pt.h - y, pt.cp}
                      : roots::value_slope{pt.s - y, pt.cp / T};
    };
    // For v, h, s, u alone, the last Newton step (below a microkelvin) is not evaluated: the
    // state is carried over it, to a remainder of order 1e-13 kJ/kg in h and u.
    const bool may_carry = lvl <= properties::basic;
    const roots::last_step r =
        roots::newton_to_last_step(fn, lo, hi, T0, true, may_carry ? 1e-6 / hi : tol, false, false);
    if (!r.converged) return false;
    if (!may_carry && std::fabs(r.step) > 4e-16 * r.x) fn(r.x - r.step);
    out.st = properties::gibbs_state(reg, p, T_g, caloric, g);
    out.st = may_carry ? carried(out.st, 0.0, -r.step) : finish(out.st, lvl);
    return true;
}

search_result isobar(double p, variable Y, double y, int lvl) {
    search_result out;
    if (isobar_by_backward(p, Y, y, lvl, out)) return out;
    piece_list pieces;
    double Ts = 0;
    saturation sat3; // region-3 saturation between p(623.15 K) and pc, solved when needed
    auto saturation3 = [&]() -> const saturation& {
        if (sat3.liquid.region == none) sat3 = properties::saturation_p(p, properties::basic);
        return sat3;
    };
    if (p < properties::p_sat_min()) {
        pieces.add(r2, T_min, T25);
    } else if (p <= properties::p_sat_13()) {
        Ts = forward::tsat(p);
        pieces.add(r1, T_min, Ts);
        pieces.add(two_phase, Ts, Ts);
        pieces.add(r2, Ts, T25);
    } else if (p < pc) {
        Ts = forward::tsat(p);
        pieces.add(r1, T_min, T13);
        pieces.add(r3, T13, Ts, +1);
        pieces.add(two_phase, Ts, Ts);
        pieces.add(r3, Ts, forward::t_b23(p), -1);
        pieces.add(r2, forward::t_b23(p), T25);
    } else {
        pieces.add(r1, T_min, T13);
        pieces.add(r3, T13, forward::t_b23(p), 0);
        pieces.add(r2, forward::t_b23(p), T25);
    }
    if (p <= p_max5) pieces.add(r5, T25, T_max);

    // Region-3 state at the upper end of a piece.
    auto r3_end = [&](const piece& pk) -> state {
        if (pk.side > 0) return saturation3().liquid;
        state st =
            properties::helmholtz_state(properties::rho3_pt(p, pk.b), pk.b, properties::basic);
        st.p = p;
        return st;
    };

    // Which side of the dome: the saturated states, the vapour first where y is likely above it.
    int first = 0, last = pieces.count - 1;
    state prev_end; // upper end of the piece before `first`
    int dome = -1;
    bool last_end_above = false; // y is known to lie below the value at the end of `last`
    for (int k = 0; k < pieces.count; ++k)
        if (pieces.item[k].reg == two_phase) dome = k;
    if (dome > 1) { // region 1 up to 623.15 K first: no need for the saturation there
        prev_end = properties::gibbs_state(r1, p, T13, properties::basic);
        if (y <= value_of(prev_end, Y)) {
            last = 0;
            last_end_above = true;
            dome = -1;
        } else {
            first = 1;
        }
    }
    if (dome >= 0) {
        const bool above = dome + 1 < pieces.count && pieces.item[dome + 1].reg == r3;
        state liquid, vapour;
        auto saturated = [&](bool liquid_side) {
            if (above) return liquid_side ? saturation3().liquid : saturation3().vapour;
            return properties::gibbs_state(liquid_side ? r1 : r2, p, Ts, properties::basic);
        };
        bool vapour_known = false;
        if (y > likely_vapour[Y]) {
            vapour = saturated(false);
            vapour_known = true;
        }
        if (vapour_known && y >= value_of(vapour, Y)) {
            first = dome + 1;
            prev_end = vapour;
        } else {
            liquid = saturated(true);
            if (y <= value_of(liquid, Y)) {
                last = dome - 1;
                last_end_above = true;
            } else {
                if (!vapour_known) vapour = saturated(false);
                if (y < value_of(vapour, Y)) {
                    const double y1 = value_of(liquid, Y), y2 = value_of(vapour, Y);
                    saturation sat;
                    sat.T = Ts;
                    sat.p = p;
                    sat.liquid = properties::raise(liquid, std::max(lvl, int(properties::basic)));
                    sat.vapour = properties::raise(vapour, std::max(lvl, int(properties::basic)));
                    out.st = properties::mixture(sat, (y - y1) / (y2 - y1), lvl);
                    return out;
                }
                first = dome + 1;
                prev_end = vapour;
            }
        }
    }

    for (int k = first; k <= last; ++k) {
        const piece& pk = pieces.item[k];
        // The end of a piece that meets the dome is known to lie above y; any other end is
        // found out by the iteration itself when a step tries to cross it (Gibbs regions), or
        // evaluated first (region 3).
        const bool end_known = k == last && last_end_above;
        state end;
        if (pk.reg == r3) {
            end = r3_end(pk);
            if (y > value_of(end, Y)) {
                if (k == pieces.count - 1) {
                    out.outside = +1;
                    out.limit = value_of(end, Y);
                    return out;
                }
                prev_end = end;
                continue;
            }
        }
        state found;
        roots::result r{};
        const double ya = k > 0 && prev_end.region != none ? value_of(prev_end, Y) : NAN;
        const double yb = end.region != none ? value_of(end, Y) : NAN;
        const double interpolated = std::isfinite(ya) && std::isfinite(yb) && yb != ya
                                        ? pk.a + (pk.b - pk.a) * (y - ya) / (yb - ya)
                                        : 0.5 * (pk.a + pk.b);
        if (pk.reg != r3) {
            auto fn = [&](double T) -> roots::value_slope {
                found = properties::gibbs_state(pk.reg, p, T, caloric);
                return {value_of(found, Y) - y, slope_of(found, Y).dT};
            };
            double T0 = isobar_start(pk.reg, p, Y, y);
            if (!(T0 > pk.a && T0 < pk.b)) T0 = interpolated;
            const bool lo_known = k == first && first == dome + 1;
            r = roots::newton_bracketed(fn, pk.a, pk.b, T0, true, tol, lo_known, end_known);
            if (!r.converged && r.x == pk.b) { // y lies beyond this piece
                if (matches(value_of(found, Y), y)) {
                    out.st = finish(found, lvl); // on its upper edge, to rounding
                    return out;
                }
                if (k == pieces.count - 1) {
                    out.outside = +1;
                    out.limit = value_of(found, Y);
                    return out;
                }
                prev_end = found;
                continue;
            }
        } else {
            double T0 = NAN, rho = NAN;
            if (Y == h) T0 = backward::t_ph_3(p, y), rho = 1.0 / backward::v_ph_3(p, y);
            if (Y == s) T0 = backward::t_ps_3(p, y), rho = 1.0 / backward::v_ps_3(p, y);
            if (T0 > pk.a && T0 < pk.b && rho > 0.0) {
                // both unknowns at once from the backward start, checked
                state st = newton2(r3, P, p, Y, y, rho, T0, lvl, 12);
                if (st.region != none && st.T >= pk.a - 1e-7 && st.T <= pk.b + 1e-7) {
                    st.p = p;
                    out.st = st;
                    return out;
                }
            }
            if (!(T0 > pk.a && T0 < pk.b)) T0 = interpolated;
            if (!(rho > 0.0)) rho = properties::rho3_pt(p, T0);
            double T_prev = T0;
            auto fn = [&](double T) -> roots::value_slope {
                if (found.region == r3)
                    rho += found.dp_dT / (found.v * found.v * found.dp_dv) * (T - T_prev);
                rho = rho3_near(p, T, rho, pk.side);
                T_prev = T;
                found = properties::helmholtz_state(rho, T, caloric);
                found.p = p;
                return {value_of(found, Y) - y, dT_at_p3(found, Y)};
            };
            r = roots::newton_bracketed(fn, pk.a, pk.b, T0, true, tol, false, true);
        }
        // converged, in the gap between two equations, or on the lowest edge to rounding
        if (r.converged || (r.x == pk.a && (k > 0 || matches(value_of(found, Y), y)))) {
            out.st = finish(found, lvl);
        } else if (r.x == pk.a) {
            out.outside = -1;
            out.limit = value_of(found, Y);
        }
        return out;
    }
    return out;
}

state isobar_state(double p, variable Y, double y, int lvl, std::string& errormsg) {
    const search_result r = isobar(p, Y, y, lvl);
    if (r.outside != 0) return out_of_range(errormsg, Y, y, r.outside > 0, r.limit, quoted(P, p));
    if (r.st.region == none)
        return fail(errormsg, std::string("no convergence for ") + quantities[Y].name + " " +
                                  quoted(Y, y) + " at " + quoted(P, p));
    return r.st;
}

// ---------------------------------------------------------------------------------------------
// Along an isotherm: pieces in order of rising pressure; v and s fall with p along it (s rises
// slightly in cold liquid below the density maximum).

search_result isotherm(double T, variable Y, double y, int lvl) {
    piece_list pieces;
    saturation sat;
    if (T <= T13) {
        const double ps = forward::psat(T);
        pieces.add(r2, p_low, ps);
        pieces.add(two_phase, ps, ps);
        pieces.add(r1, ps, p_max);
    } else if (T < Tc) {
        sat = sat_T(T, properties::basic);
        pieces.add(r2, p_low, forward::p_b23(T));
        pieces.add(r3, forward::p_b23(T), sat.p, -1);
        pieces.add(two_phase, sat.p, sat.p);
        pieces.add(r3, sat.p, p_max, +1);
    } else if (T <= T_b23_top) {
        pieces.add(r2, p_low, forward::p_b23(T));
        pieces.add(r3, forward::p_b23(T), p_max, 0);
    } else if (T <= T25) {
        pieces.add(r2, p_low, p_max);
    } else {
        pieces.add(r5, p_low, p_max5);
    }

    auto end_state = [&](const piece& pk, int level) -> state {
        if (pk.reg != r3) return properties::gibbs_state(pk.reg, pk.b, T, level);
        if (pk.side < 0) return properties::raise(sat.vapour, level);
        state st = properties::helmholtz_state(properties::rho3_pt(pk.b, T), T, level);
        st.p = pk.b;
        return st;
    };

    search_result out;
    state prev_end;
    for (int k = 0; k < pieces.count; ++k) {
        const piece& pk = pieces.item[k];
        const bool last_piece = k + 1 == pieces.count;
        if (pk.reg == two_phase) {
            const state liquid = pieces.item[k + 1].reg == r3
                                     ? sat.liquid
                                     : properties::gibbs_state(r1, pk.a, T, properties::basic);
            const double y2 = value_of(prev_end, Y), y1 = value_of(liquid, Y);
            if (y > y1) {
                saturation mix;
                mix.T = T;
                mix.p = pk.a;
                mix.liquid = properties::raise(liquid, std::max(lvl, int(properties::basic)));
                mix.vapour = properties::raise(prev_end, std::max(lvl, int(properties::basic)));
                out.st = properties::mixture(mix, (y - y1) / (y2 - y1), lvl);
                return out;
            }
            prev_end = liquid;
            continue;
        }
        const state end = end_state(pk, properties::basic);
        const double y_end = value_of(end, Y);
        if (y < y_end) { // v and s fall with pressure: y lies beyond this piece
            if (last_piece && matches(y_end, y)) { // on the edge of the range, to rounding
                out.st = finish(properties::raise(end, caloric), lvl);
                return out;
            }
            if (last_piece) {
                out.outside = -1;
                out.limit = y_end;
                return out;
            }
            prev_end = end;
            continue;
        }
        state found;
        roots::result r{};
        if (pk.reg == r3) {
            // density as the unknown at fixed T
            const double rho_b = 1.0 / end.v;
            const double rho_a =
                k > 0 && prev_end.region == r3 ? 1.0 / prev_end.v : properties::rho3_pt(pk.a, T);
            if (Y == v) {
                const double rho = std::fmin(std::fmax(1.0 / y, rho_a), rho_b);
                found = properties::helmholtz_state(rho, T, std::max(lvl, int(properties::basic)));
                out.st = found;
                return out;
            }
            auto fn = [&](double rho) -> roots::value_slope {
                found = properties::helmholtz_state(rho, T, caloric);
                return {value_of(found, Y) - y, slope_of(found, Y).da};
            };
            const double ya = value_of(properties::helmholtz_state(rho_a, T, properties::basic), Y);
            const double rho0 = rho_a + (rho_b - rho_a) * (y - ya) / (y_end - ya);
            r = roots::newton_bracketed(fn, rho_a, rho_b, rho0, false, tol);
            if (r.converged || r.x == rho_a) {
                out.st = finish(found, lvl);
                return out;
            }
        } else {
            // ln p as the unknown: v and s of a gas are nearly linear in it
            const double log_y = std::log(y);
            auto fn = [&](double q) -> roots::value_slope {
                const double p = std::exp(q);
                found = properties::gibbs_state(pk.reg, p, T, caloric);
                const slope2 d = slope_of(found, Y);
                if (Y == v) return {log_y - std::log(found.v), -p * d.da / found.v};
                return {found.s - y, p * d.da};
            };
            double p0 = NAN;
            if (pk.reg != r1 && Y == v) p0 = forward::R * T / (y * 1e3);
            if (pk.reg != r1 && Y == s) p0 = pk.b * std::exp((y_end - y) / forward::R);
            if (k > 0 && !(p0 > pk.a && p0 < pk.b)) {
                const double ya = value_of(prev_end, Y);
                p0 = pk.a + (pk.b - pk.a) * (y - ya) / (y_end - ya);
            }
            const double q_lo = std::log(pk.a), q_hi = std::log(pk.b);
            const double q0 = p0 > 0.0 ? std::log(p0) : 0.5 * (q_lo + q_hi);
            r = roots::newton_bracketed(fn, q_lo, q_hi, q0, Y == v, tol * 0.1, false, true);
            if (r.converged || (r.x == q_lo && k > 0)) {
                out.st = finish(found, lvl);
                return out;
            }
            if (r.x == q_lo) {
                out.outside = +1;
                out.limit = value_of(found, Y);
                return out;
            }
        }
        return out; // no convergence: region none
    }
    return out;
}

state isotherm_state(double T, variable Y, double y, int lvl, std::string& errormsg) {
    const search_result r = isotherm(T, Y, y, lvl);
    if (r.outside != 0)
        return out_of_range(errormsg, Y, y, r.outside > 0, r.limit, quoted(solve::T, T));
    if (r.st.region == none)
        return fail(errormsg, std::string("no convergence for ") + quantities[Y].name + " " +
                                  quoted(Y, y) + " at " + quoted(solve::T, T));
    return r.st;
}

// ---------------------------------------------------------------------------------------------
// The pairs.

state from_pt(double p, double T, int lvl, std::string& errormsg) {
    state st = properties::state_pt(p, T, lvl); // (one object returned: no copy)
    if (st.region != none) return st;
    if (T > T25 && p > p_max5)
        out_of_range(errormsg, P, p, true, p_max5, "temperatures above 800 °C");
    else
        fail(errormsg, "no convergence at " + quoted(P, p) + " and " + quoted(solve::T, T));
    return st;
}

// A point of the saturation line with its quality and nothing else.
state saturation_point(double p, double T, double q) {
    state st;
    st.region = two_phase;
    st.level = properties::bare;
    st.p = p, st.T = T, st.x = q;
    return st;
}

state from_px(double p, double q, int lvl, std::string& errormsg) {
    if (p > pc)
        return fail(errormsg, "quality given at " + quoted(P, p) +
                                  ", above the critical pressure of " + quoted(P, pc));
    if (p < properties::p_sat_min())
        return out_of_range(errormsg, P, p, false, properties::p_sat_min(),
                            "saturation (the lowest saturation pressure)");
    if (lvl == properties::bare) return saturation_point(p, forward::tsat(p), q);
    return properties::mixture(properties::saturation_p(p, std::max(lvl, int(properties::basic))),
                               q, lvl);
}

state from_tx(double T, double q, int lvl, std::string& errormsg) {
    if (T > Tc)
        return fail(errormsg, "quality given at " + quoted(solve::T, T) +
                                  ", above the critical temperature of " + quoted(solve::T, Tc));
    if (lvl == properties::bare) return saturation_point(T < Tc ? forward::psat(T) : pc, T, q);
    return properties::mixture(sat_T(T, lvl), q, lvl);
}

// Rough temperature of a state with specific volume v and property y, for a first Newton step.
double rough_T(variable Y, double y, bool gas) {
    double T0 = 0;
    if (gas) {
        if (Y == u) T0 = 273.16 + (y - 2375.0) / 1.5;
        if (Y == h) T0 = 273.16 + (y - 2501.0) / 2.0;
        if (Y == s) T0 = 600.0;
        return std::fmin(std::fmax(T0, 300.0), 2200.0);
    }
    if (Y == s)
        T0 = T_min * std::exp(y / 4.19);
    else
        T0 = T_min + y / 4.19;
    return std::fmin(std::fmax(T0, T_min + 1.0), T13 - 1.0);
}

// Where the isochore v meets the saturation line: on the vapour line above vc, on the liquid line
// below (above the density maximum, where v' rises with T). T is NaN where it does not meet it
// below Tc; phase is the saturated state there.
struct dome_point {
    double T = NAN;
    state phase;
};

dome_point dome_of(double vv) {
    const bool vapour_side = vv > 1.0 / rhoc;
    dome_point d;
    auto fn = [&](double T) -> roots::value_slope {
        if (T <= T13) { // the one phase wanted
            d.phase = properties::gibbs_state(vapour_side ? r2 : r1, forward::psat(T), T, caloric);
        } else {
            const saturation sat = sat_T(T, caloric);
            d.phase = vapour_side ? sat.vapour : sat.liquid;
        }
        const properties::saturation_slope sl = properties::slope(d.phase, forward::dpsat_dT(T));
        return {std::log(d.phase.v / vv), sl.v / d.phase.v};
    };
    // start on the vapour line: the ideal gas, T = Ts(R T / v) by a few fixed-point steps
    double T0 = 0.5 * (T_min + Tc);
    if (vapour_side) {
        T0 = 400.0;
        for (int k = 0; k < 4; ++k) {
            const double p = forward::R * T0 / (vv * 1e3);
            if (!(p > properties::p_sat_min() && p < pc)) break;
            T0 = forward::tsat(p);
        }
    }
    const double low = vapour_side ? T_min : 277.2; // v' has its minimum at 277.13 K
    const roots::result r =
        roots::newton_bracketed(fn, low, T_sat_top, T0, !vapour_side, tol, false, false, 60);
    if (r.converged) d.T = r.x;
    return d;
}

// (v, Y) with Y one of h, s, u: Y rises with T along an isochore, in the dome as well.
state from_vy(double vv, variable Y, double y, int lvl, std::string& errormsg) {
    const bool gas = vv > 1.0 / rhoc;
    // Steam and compressed liquid first, from a rough start, checked; steam only where y is
    // above the largest u'', h'' or s'' of the saturated vapour, so that the state cannot be a
    // mixture (below that, the dome is looked at first).
    constexpr std::array<double, 6> above_dome = {0, 0, 0, 2803.3, 9.156, 2603.9};
    // Region 1 holds no v, h, s, u above those of the saturated liquid at 623.15 K.
    constexpr double v_r1_max = 1.740070552e-3 * (1 + 1e-9);
    constexpr std::array<double, 6> r1_max = {
        0, 0, 0, 1670.858218 + 1e-6, 3.77828134 + 1e-8, 1642.096306 + 1e-6};
    if (gas && y > above_dome[Y]) {
        const double T0 = rough_T(Y, y, true);
        const state st =
            newton2(T0 > T25 ? r5 : r2, v, vv, Y, y, forward::R * T0 / (vv * 1e3), T0, lvl, 8);
        if (st.region != none) return st;
    } else if (vv <= v_r1_max && y <= r1_max[Y]) {
        const state st = newton2(r1, v, vv, Y, y, 10.0, rough_T(Y, y, false), lvl, 8);
        if (st.region != none) return st;
    }
    if (!(gas && y > above_dome[Y])) { // a mixture, from its place on the interpolated dome
        const double T0 = grid_mixture_T(v, vv, Y, y);
        bool in_dome = false;
        const state st =
            std::isfinite(T0) ? two_phase_pair(v, vv, Y, y, T0, lvl, in_dome) : state{};
        if (in_dome) return st;
    }

    if (vv > 1.0 / 800.0 && vv < 1.0 / 80.0) {
        // region 3: the density is known, T follows from Y alone
        state found;
        auto fn = [&](double T) -> roots::value_slope {
            found = properties::helmholtz_state(1.0 / vv, T, caloric);
            return {value_of(found, Y) - y, dT_at_v(found, Y)};
        };
        // (for v, h, s, u alone the last step, below 1e-8, is carried)
        const bool may_carry = lvl <= properties::basic;
        const roots::last_step r =
            roots::newton_to_last_step(fn, T13, T_b23_top, 0.5 * (T13 + T_b23_top), true,
                                       may_carry ? 1e-8 : tol, false, false);
        if (r.converged) {
            if (!may_carry && std::fabs(r.step) > 4e-16 * r.x) fn(r.x - r.step);
            const state st = may_carry ? carried(found, 0.0, -r.step) : found;
            if (in_region(st, r3)) return finish(st, lvl);
        }
    }

    // Where the isochore meets the dome: below that temperature the state is a mixture, above
    // it a single phase, with a start extrapolated from the saturated state.
    const dome_point d = vv > 1.0003e-3 ? dome_of(vv) : dome_point{};
    if (std::isfinite(d.T)) {
        const double y_d = value_of(d.phase, Y);
        if (y < y_d) {
            bool in_dome = false;
            // Newton from the top of the dome, where x = 1
            const state st = two_phase_pair(v, vv, Y, y, d.T * (1 - 1e-12), lvl, in_dome, d.T);
            if (in_dome) return st;
        } else {
            const double T0 = std::fmin(d.T + (y - y_d) / dT_at_v(d.phase, Y), T_max);
            const double p0 = std::fmax(d.phase.p + d.phase.dp_dT * 1e-6 * (T0 - d.T), 1e-6);
            const int reg = properties::region_pt(std::fmin(p0, p_max), T0);
            if (reg == r1 || reg == r2 || reg == r5) {
                const state st = newton2(reg, v, vv, Y, y, p0, T0, lvl);
                if (st.region != none) return st;
            }
            if (reg == r2 || reg == r5) { // the other side of 1073.15 K
                const state st = newton2(reg == r2 ? r5 : r2, v, vv, Y, y, p0, T0, lvl);
                if (st.region != none) return st;
            }
        }
    } else if (gas) { // an isochore above the dome: the gas regions from a rough start
        const double T0 = rough_T(Y, y, true);
        const double p0 = forward::R * T0 / (vv * 1e3);
        for (const int reg : {T0 > T25 ? r5 : r2, T0 > T25 ? r2 : r5}) {
            const state st = newton2(reg, v, vv, Y, y, p0, T0, lvl);
            if (st.region != none) return st;
        }
    }
    // Robust path: the temperature as the one unknown, each step a state from (T, v).
    state found;
    auto fn = [&](double T) -> roots::value_slope {
        const search_result r = isotherm(T, v, vv, caloric);
        if (r.outside != 0 || r.st.region == none) {
            // v above the isotherm's range: the pressure would fall below the lowest one, the
            // temperature is too low; below it: the pressure would exceed the highest one.
            const bool too_low = r.outside > 0;
            return {too_low ? -1.0 : 1.0, NAN};
        }
        found = r.st;
        return {value_of(found, Y) - y, dT_at_v(found, Y)};
    };
    const roots::result r =
        roots::newton_bracketed(fn, T_min, T_max, 0.5 * (T_min + T13), true, tol, false, false);
    if (r.converged && found.region != none && matches(value_of(found, Y), y))
        return finish(found, lvl);
    return fail(errormsg, "no state with " + std::string(quantities[v].name) + " " + quoted(v, vv) +
                              " and " + quantities[Y].name + " " + quoted(Y, y) +
                              " within the range of IF97");
}

state from_vx(double vv, double q, int lvl, std::string& errormsg) {
    // v' + x (v'' - v') falls with T except near the critical point at small x, where it passes
    // a minimum on the way to vc: scan down from the top, on steps that widen geometrically
    // from 1 µK below Tc, for the first sign change, then polish.
    auto mix_v = [&](double T) {
        const saturation sat = sat_T(T, properties::basic);
        return sat.liquid.v + q * (sat.vapour.v - sat.liquid.v) - vv;
    };
    constexpr int steps = 64;
    const double ratio = std::pow((T_sat_top - T_min) / 1e-6, 1.0 / steps);
    double T_hi = T_sat_top, f_hi = mix_v(T_hi), below = 1e-6;
    for (int k = 1; k <= steps; ++k) {
        below *= ratio;
        const double T_lo = k == steps ? T_min : T_sat_top - below;
        const double f_lo = mix_v(T_lo);
        if ((f_lo < 0.0) != (f_hi < 0.0) || f_lo == 0.0) {
            // bisection-safeguarded secant on the bracket [T_lo, T_hi]
            double a = T_lo, b = T_hi, fa = f_lo, fb = f_hi;
            for (int it = 0; it < 200 && b - a > 1e-13 * b; ++it) {
                double m = b - fb * (b - a) / (fb - fa);
                if (!(m > a && m < b) || it % 3 == 2) m = 0.5 * (a + b);
                const double fm = mix_v(m);
                if (fm == 0.0)
                    a = b = m;
                else if ((fm < 0.0) == (fa < 0.0))
                    a = m, fa = fm;
                else
                    b = m, fb = fm;
            }
            return properties::mixture(sat_T(0.5 * (a + b), lvl), q, lvl);
        }
        T_hi = T_lo, f_hi = f_lo;
    }
    return fail(errormsg, "no saturated state with " + std::string(quantities[v].name) + " " +
                              quoted(v, vv) + " and " + quantities[x].name + " " + quoted(x, q));
}

// Start of a mixture from (h, s) below 623.15 K: a mixture has h - T s = g(T), the Gibbs energy
// of its saturated phases, taken here from the liquid (region 1) alone; d(g')/dT along the
// saturation line is v' dps/dT - s'. The wanted root has s' < s; from T_min the iteration
// climbs to it. NaN when it would leave that side or pass 623.15 K.
double dome_start_hs(double hh, double ss) {
    double T = T_min;
    for (int it = 0; it < 8; ++it) {
        const state l = properties::gibbs_state(r1, forward::psat(T), T, properties::basic);
        if (!(l.s < ss)) return NAN;
        const double f = hh - T * ss - (l.h - T * l.s);
        const double df = -ss + l.s - l.v * forward::dpsat_dT(T) * 1e3;
        const double next = T - f / df;
        if (!(next > T_min && next < T13)) return NAN;
        if (std::fabs(next - T) < 1e-3) return next;
        T = next;
    }
    return T;
}

// (h, s): the region from the boundary equations of SR4-04 (approximate, so the neighbours are
// tried as well), the start from the backward equations p(h, s).
state from_hs(double hh, double ss, int lvl, std::string& errormsg) {
    constexpr double s13 = 3.778281340;   // s' at 623.15 K
    constexpr double s_b13 = 3.397782955; // lowest s of the B13 line h_B13(s)
    constexpr double sc = 4.41202148223476;
    constexpr double s_2c3b = 5.85;
    constexpr double s_b23_lo = 5.048096828, s_b23_hi = 5.260578707;
    constexpr double s_max_sat = 9.155759395; // s'' at 273.15 K

    int primary = r2;
    if (ss < s13)
        primary = hh < backward::h1_s(ss)                      ? two_phase
                  : (ss < s_b13 || hh <= backward::hb13_s(ss)) ? r1
                                                               : r3;
    else if (ss < sc)
        primary = hh < backward::h3a_s(ss) ? two_phase : r3;
    else if (ss < s_2c3b) {
        if (hh < backward::h2c3b_s(ss))
            primary = two_phase;
        else if (ss < s_b23_lo)
            primary = r3;
        else if (ss > s_b23_hi)
            primary = r2;
        else {
            const double tb = backward::tb23_hs(hh, ss);
            const double pb = forward::p_b23(tb);
            primary = hh > properties::gibbs_state(r2, pb, tb, properties::basic).h ? r3 : r2;
        }
    } else if (ss <= s_max_sat)
        primary = hh < backward::h2ab_s(ss) ? two_phase : r2;

    auto attempt = [&](int reg) -> state {
        switch (reg) {
        case r1: {
            const double p0 = backward::p_hs_1(hh, ss);
            return newton2(r1, h, hh, s, ss, p0, backward::t_ph_1(p0, hh), lvl);
        }
        case r2: {
            const double p0 = backward::p_hs_2(hh, ss);
            return newton2(r2, h, hh, s, ss, p0, backward::t_ph_2(p0, hh), lvl);
        }
        case r3: {
            const double p0 = backward::p_hs_3(hh, ss);
            return newton2(r3, h, hh, s, ss, 1.0 / backward::v_ph_3(p0, hh),
                           backward::t_ph_3(p0, hh), lvl);
        }
        case r5: {
            const double p0 = std::fmin(backward::p_hs_2(hh, ss), p_max5);
            return newton2(r5, h, hh, s, ss, p0 > 0.0 ? p0 : 1.0, 1500.0, lvl);
        }
        default: {
            double T0 = grid_mixture_T(s, ss, h, hh);
            if (!std::isfinite(T0))
                T0 = ss >= 5.210887825 ? backward::tsat_hs(hh, ss) // eq. 9 range
                                       : dome_start_hs(hh, ss);
            bool found = false;
            const state st = two_phase_pair(s, ss, h, hh, T0, lvl, found);
            return found ? st : state{};
        }
        }
    };
    state st = attempt(primary);
    if (st.region != none) return st;
    for (const int reg : {r1, r2, r3, two_phase, r5}) {
        if (reg == primary) continue;
        st = attempt(reg);
        if (st.region != none) return st;
    }

    // Robust path: along the isentrope h rises with p (dh = v dp); ln p as the one unknown.
    state found;
    auto fn = [&](double q) -> roots::value_slope {
        const double p = std::exp(q);
        const search_result r = isobar(p, s, ss, caloric);
        const state& at = r.st;
        // s above the isobar's range: T would pass T_max, p is too high; below it: too low
        if (at.region == none) return {r.outside > 0 ? 1.0 : -1.0, NAN};
        found = at;
        return {at.h - hh, p * at.v * 1e3};
    };
    const roots::result r = roots::newton_bracketed(
        fn, std::log(p_low), std::log(p_max * (1 + 1e-9)), 0.0, true, tol, false, false);
    // (a bracket that closed on a jump at the edge of the range is no solution)
    if (r.converged && found.region != none && matches(found.h, hh)) return finish(found, lvl);
    return fail(errormsg, "no state with enthalpy " + quoted(h, hh) + " and entropy " +
                              quoted(s, ss) + " within the range of IF97");
}

// The limits that hold for every pair.
bool within_limits(variable var, double value, std::string& errormsg) {
    switch (var) {
    case P:
        if (!(value > 0.0)) return out_of_range(errormsg, P, value, false, 0.0), false;
        if (value > p_max) return out_of_range(errormsg, P, value, true, p_max), false;
        return true;
    case T:
        if (value < T_min) return out_of_range(errormsg, T, value, false, T_min), false;
        if (value > T_max) return out_of_range(errormsg, T, value, true, T_max), false;
        return true;
    case v:
        if (!(value > 0.0)) return out_of_range(errormsg, v, value, false, 0.0), false;
        return true;
    case x:
        if (value < 0.0 || value > 1.0)
            return fail(errormsg, "quality " + number(value) + " outside 0 to 1"), false;
        return true;
    default:
        return true;
    }
}

} // namespace

bool supported(variable a, variable b) {
    if (a > b) std::swap(a, b);
    switch (a) {
    case P:
        return b != P;
    case T:
        return b == v || b == s || b == x;
    case v:
        return b == h || b == s || b == u || b == x;
    case h:
        return b == s;
    default:
        return false;
    }
}

void solve_pair(state& st, variable a, double value_a, variable b, double value_b, int lvl,
                std::string& errormsg) {
    if (b != x) lvl = std::max(lvl, int(properties::basic));
    if (!within_limits(a, value_a, errormsg) || !within_limits(b, value_b, errormsg)) {
        st = state{};
        return;
    }
    switch (a) {
    case P:
        if (b == T)
            st = from_pt(value_a, value_b, lvl, errormsg);
        else if (b == x)
            st = from_px(value_a, value_b, lvl, errormsg);
        else
            st = isobar_state(value_a, b, value_b, lvl, errormsg);
        return;
    case T:
        st = b == x ? from_tx(value_a, value_b, lvl, errormsg)
                    : isotherm_state(value_a, b, value_b, lvl, errormsg);
        return;
    case v:
        st = b == x ? from_vx(value_a, value_b, lvl, errormsg)
                    : from_vy(value_a, b, value_b, lvl, errormsg);
        return;
    default:
        st = from_hs(value_a, value_b, lvl, errormsg);
    }
}

} // namespace if97::solve
