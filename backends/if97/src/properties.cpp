#include "properties.hpp"

#include "backward.hpp"
#include "forward.hpp"
#include "roots.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace if97::properties {

namespace {

using forward::derivatives;
using forward::R;
using forward::rhoc;
using forward::Tc;

constexpr double R_si = R * 1e3; // J/(kg K)

// The Gibbs derivatives of region 1, 2 or 5 up to `order` (0: gamma_tau alone).
template <int order> derivatives gibbs(int reg, double p, double T) {
    switch (reg) {
    case r1:
        return forward::gamma1<order>(p, T);
    case r2:
        return forward::gamma2<order>(p, T);
    default:
        return forward::gamma5<order>(p, T);
    }
}

} // namespace

derivatives gibbs_derivatives(int reg, double p, double T) {
    return gibbs<2>(reg, p, T);
}

namespace {

// Properties of a Gibbs region from gamma(pi, tau) and its derivatives (R7-97 Tables 3, 12, 39),
// and the pressure derivatives at constant v or T from the Gibbs derivatives in SI units.
// Written into `st` in place, so that a state kept by the caller is not built and copied.
void fill_gibbs(state& st, int reg, double p, double T, int lvl, const derivatives& g) {
    double p_star = forward::p1_star, T_star = forward::T1_star;
    if (reg == r2) p_star = forward::p2_star, T_star = forward::T2_star;
    if (reg == r5) p_star = forward::p5_star, T_star = forward::T5_star;
    const double pi = p / p_star;
    const double tau = T_star / T;
    const double RT = R * T;
    const isobar_point hs = isobar_values(T, tau, g);

    st.region = reg;
    st.level = lvl;
    st.p = p;
    st.T = T;
    st.h = hs.h;
    st.x = not_set;
    if (lvl == enthalpy) { // h alone: g holds gamma_tau only
        st.v = st.u = st.s = not_set;
    } else {
        st.v = RT * g.f_x * 1e-3 / p_star; // (RT/p) pi gamma_pi
        st.u = RT * (tau * g.f_y - pi * g.f_x);
        st.s = hs.s;
    }
    if (lvl < caloric) {
        st.cv = st.cp = st.w = st.dp_dT = st.dp_dv = not_set;
        st.d2p_dT2 = st.d2p_dv2 = st.d2p_dTdv = st.dcv_dT = not_set;
        return;
    }

    const double a = g.f_x - tau * g.f_xy;
    st.cp = hs.cp;
    st.cv = st.cp + R * a * a / g.f_xx;
    st.w = std::sqrt(RT * 1e3 * g.f_x * g.f_x / (a * a / (tau * tau * g.f_yy) - g.f_xx));
    const double ps = p_star * 1e6; // Pa
    const double G_pp = R_si * T * g.f_xx / (ps * ps);
    const double G_pT = R_si * a / ps;
    st.dp_dT = -G_pT / G_pp;
    st.dp_dv = 1.0 / G_pp;
    if (lvl < full) {
        st.d2p_dT2 = st.d2p_dv2 = st.d2p_dTdv = st.dcv_dT = not_set;
        return;
    }

    const double G_TT = R_si * tau * tau * g.f_yy / T;
    const double G_ppp = R_si * T * g.f_xxx / (ps * ps * ps);
    const double G_ppT = R_si * (g.f_xx - tau * g.f_xxy) / (ps * ps);
    const double G_pTT = R_si * tau * tau * g.f_xyy / (ps * T);
    const double G_TTT = -R_si * tau * tau * (3.0 * g.f_yy + tau * g.f_yyy) / (T * T);
    const double P_T = st.dp_dT;
    const double G_pp3 = G_pp * G_pp * G_pp;
    st.d2p_dv2 = -G_ppp / G_pp3;
    st.d2p_dTdv = -(G_ppT * G_pp - G_pT * G_ppp) / G_pp3;
    const double P_TT =
        -((G_pTT + G_ppT * P_T) * G_pp - G_pT * (G_ppT + G_ppp * P_T)) / (G_pp * G_pp);
    st.d2p_dT2 = P_TT;
    const double c = G_TT + G_pT * P_T; // -cv/T
    st.dcv_dT = -c - T * ((G_TTT + G_pTT * P_T) + (G_pTT + G_ppT * P_T) * P_T + G_pT * P_TT);
}

state gibbs_properties(int reg, double p, double T, int lvl, const derivatives& g) {
    state st;
    fill_gibbs(st, reg, p, T, lvl, g);
    return st;
}

// Properties of region 3 from phi(delta, tau) (R7-97 Table 31); the pressure derivatives from
// p = rhoc R T A(delta, tau) with A = delta^2 phi_delta.
state helmholtz_properties(double rho, double T, int lvl, const derivatives& f) {
    const double delta = rho / rhoc;
    const double tau = Tc / T;
    const double RT = R * T;
    const double dfd = delta * f.f_x;

    state st;
    st.region = r3;
    st.level = lvl;
    st.T = T;
    st.v = 1.0 / rho;
    st.p = rho * RT * dfd * 1e-3;
    st.u = RT * tau * f.f_y;
    st.h = RT * (tau * f.f_y + dfd);
    st.s = R * (tau * f.f_y - f.f);
    if (lvl < caloric) return st;

    const double A_d = 2.0 * dfd + delta * delta * f.f_xx; // d(delta^2 phi_delta)/d delta
    const double b = dfd - delta * tau * f.f_xy;
    st.cv = -R * tau * tau * f.f_yy;
    st.cp = st.cv + R * b * b / A_d;
    st.w = std::sqrt(RT * 1e3 * (A_d - b * b / (tau * tau * f.f_yy)));
    const double P_rho = R_si * T * A_d;
    st.dp_dT = rho * R_si * b;
    st.dp_dv = -rho * rho * P_rho;
    if (lvl < full) return st;

    const double A_dd = 2.0 * f.f_x + 4.0 * delta * f.f_xx + delta * delta * f.f_xxx;
    const double A_dt = 2.0 * delta * f.f_xy + delta * delta * f.f_xxy;
    const double P_rhorho = R_si * T * A_dd / rhoc;
    const double P_rhoT = R_si * (A_d - tau * A_dt);
    st.d2p_dv2 = 2.0 * rho * rho * rho * P_rho + rho * rho * rho * rho * P_rhorho;
    st.d2p_dTdv = -rho * rho * P_rhoT;
    st.d2p_dT2 = R_si * rhoc * tau * tau * delta * delta * f.f_xyy / T;
    st.dcv_dT = R_si * tau * (2.0 * tau * f.f_yy + tau * tau * f.f_yyy) / T;
    return st;
}

// Region-3 pressure (MPa) and its density derivative (MPa m³/kg).
roots::value_slope p3(double rho, double T) {
    const derivatives f = forward::phi3<2>(rho, T);
    const double delta = rho / rhoc;
    const double RT = R * T;
    return {rho * RT * delta * f.f_x * 1e-3,
            RT * (2.0 * delta * f.f_x + delta * delta * f.f_xx) * 1e-3};
}

// The largest (liquid) or smallest (vapour) density with p3(rho, T) = p, below Tc. Newton from
// the outside of the van der Waals loop: p3 is convex above the liquid root and concave below
// the vapour root, so the iterates approach the wanted root from one side; a step that crosses
// it is halved back.
double saturated_density(double T, double p, bool liquid, double near) {
    const double sign = liquid ? 1.0 : -1.0;
    auto plausible = [&](double r) {
        return liquid ? r >= rhoc * 0.999 : (r > 0.0 && r <= rhoc * 1.001);
    };
    // From a density close to the root (that of a neighbouring temperature), plain Newton steps
    // from either side converge at once; the one-sided iteration below is for distant starts.
    for (int it = 0; it < 4 && near > 0.0; ++it) {
        const roots::value_slope v = p3(near, T);
        if (!(v.df > 0.0)) break;
        const double step = (v.f - p) / v.df;
        near -= step;
        if (std::fabs(step) <= 1e-11 * near) {
            if (plausible(near)) return near;
            break;
        }
    }
    auto attempt = [&](double rho) {
        // out of the loop by a step that starts small (the start is usually close) and grows
        roots::value_slope v = p3(rho, T);
        double widen = 1e-4;
        for (int grow = 0; grow < 60 && sign * (v.f - p) <= 0.0; ++grow) {
            rho = liquid ? rho * (1.0 + widen) : rho / (1.0 + widen);
            widen = std::fmin(4.0 * widen, 0.25);
            v = p3(rho, T);
        }
        // Residuals within a few units of the last place of p are rounding: the density is then
        // as close as the equation can tell (which near Tc, where p3 flattens into an inflection,
        // is far from the last bit of rho).
        const double noise = 1e-14 * p;
        for (int it = 0; it < 200; ++it) {
            const double f = v.f - p;
            if (std::fabs(f) <= noise) return rho;
            double step = f / v.df;
            if (!(sign * step > 0.0)) return -1.0; // slope of the wrong sign: not outside
            double next = rho - step;
            // a step this small leaves the next iterate at the rounding level (the residual
            // there may come out on either side, which is no reason to halve it)
            if (std::fabs(step) <= 1e-11 * rho) return next;
            roots::value_slope w = p3(next, T);
            for (int half = 0; half < 60 && sign * (w.f - p) < -noise; ++half) {
                step *= 0.5;
                next = rho - step;
                w = p3(next, T);
            }
            rho = next;
            v = w;
        }
        return rho;
    };
    const double start = 1.0 / backward::v_pt_3(liquid ? p * (1.0 + 1e-7) : p * (1.0 - 1e-7), T);
    double rho = attempt(start);
    if (!plausible(rho)) rho = attempt(liquid ? 1000.0 : 50.0);
    return plausible(rho) ? rho : -1.0;
}

// Liquid and vapour densities at (p, T) below Tc. Within some 1e-4 K of Tc, eq. 30 passes above
// the vapour-side maximum (or below the liquid-side minimum) of the region-3 isotherm, so that
// p3(rho, T) = ps has one root only: both phases then have that density.
std::pair<double, double> saturated_densities(double T, double p, double near_liquid = 0.0,
                                              double near_vapour = 0.0) {
    double liquid = saturated_density(T, p, true, near_liquid);
    double vapour = saturated_density(T, p, false, near_vapour);
    if (!(vapour > 0.0)) vapour = liquid;
    if (!(liquid > 0.0)) liquid = vapour;
    return {liquid, vapour};
}

// The saturated phases at (p, T), with densities near which to look for them above 623.15 K
// (0: none known).
void saturated_phases(double T, double p, int lvl, saturation& sat, double near_liquid = 0.0,
                      double near_vapour = 0.0) {
    if (T <= forward::T13) {
        sat.liquid = gibbs_state(r1, p, T, lvl);
        sat.vapour = gibbs_state(r2, p, T, lvl);
    } else if (T >= Tc) {
        sat.liquid = sat.vapour = helmholtz_state(rhoc, Tc, lvl);
    } else {
        const auto [liquid, vapour] = saturated_densities(T, p, near_liquid, near_vapour);
        sat.liquid = helmholtz_state(liquid, T, lvl);
        sat.vapour = helmholtz_state(vapour, T, lvl);
    }
    sat.liquid.p = sat.vapour.p = p;
}

// ps(T) at T_min + k K, k = 0..351: bounds that settle the region 1/2 question without eq. 30
// unless p lies between the values at the neighbouring whole kelvins.
const std::array<double, 352> psat_grid = [] {
    std::array<double, 352> grid{};
    for (std::size_t k = 0; k < grid.size(); ++k) grid[k] = forward::psat(T_min + double(k));
    return grid;
}();

bool liquid_side(double p, double T) {
    const auto k = static_cast<std::size_t>(T - T_min);
    if (p > psat_grid[k + 1] * (1.0 + 1e-12)) return true;
    if (p < psat_grid[k] * (1.0 - 1e-12)) return false;
    return p >= forward::psat(T);
}

} // namespace

double p_sat_min() {
    static const double p = forward::psat(T_min);
    return p;
}

double p_sat_13() {
    static const double p = forward::psat(forward::T13);
    return p;
}

state gibbs_state(int reg, double p, double T, int lvl) {
    switch (lvl) {
    case enthalpy:
        return gibbs_properties(reg, p, T, lvl, gibbs<0>(reg, p, T));
    case basic:
        return gibbs_properties(reg, p, T, lvl, gibbs<1>(reg, p, T));
    case caloric:
        return gibbs_properties(reg, p, T, lvl, gibbs<2>(reg, p, T));
    default:
        return gibbs_properties(reg, p, T, full, gibbs<3>(reg, p, T));
    }
}

state gibbs_state(int reg, double p, double T, int lvl, const derivatives& g) {
    return gibbs_properties(reg, p, T, std::min(lvl, int(caloric)), g);
}

state helmholtz_state(double rho, double T, int lvl) {
    switch (lvl) {
    case enthalpy: // (region 3 gives h with the rest of the basic properties)
    case basic:
        return helmholtz_properties(rho, T, basic, forward::phi3<1>(rho, T));
    case caloric:
        return helmholtz_properties(rho, T, lvl, forward::phi3<2>(rho, T));
    default:
        return helmholtz_properties(rho, T, full, forward::phi3<3>(rho, T));
    }
}

int region_pt(double p, double T) {
    if (!(p > 0.0 && T >= T_min && T <= T_max)) return none;
    if (T > forward::T25) return p <= p_max5 ? r5 : none;
    if (p > p_max) return none;
    if (T <= forward::T13) return liquid_side(p, T) ? r1 : r2;
    return p > forward::p_b23(T) ? r3 : r2;
}

double rho3_pt(double p, double T) {
    const bool below_critical = T < Tc;
    const bool liquid = below_critical && p > forward::psat(T);
    // SR5-05 start, Newton on the region-3 pressure
    double rho = 1.0 / backward::v_pt_3(p, T);
    bool converged = false;
    roots::value_slope v{};
    for (int it = 0; it < 30 && rho > 0.0; ++it) {
        v = p3(rho, T);
        if (!(v.df > 0.0)) break;
        const double step = (v.f - p) / v.df;
        rho -= step;
        if (std::fabs(step) <= 1e-14 * rho) {
            converged = true;
            break;
        }
    }
    const bool right_branch = !below_critical || (liquid ? rho > rhoc : rho < rhoc);
    if (converged && right_branch) return rho;

    // Bracket the stable root: between the saturated density and the outside, or around the
    // start above Tc, where p3 rises with density.
    auto fn = [&](double r) {
        roots::value_slope w = p3(r, T);
        w.f -= p;
        return w;
    };
    double lo = 0, hi = 0;
    if (below_critical) {
        const double ps = forward::psat(T);
        const auto [rho_liquid, rho_vapour] = saturated_densities(T, ps);
        if (liquid) {
            lo = rho_liquid;
            hi = lo;
            for (int k = 0; k < 60 && fn(hi).f <= 0.0; ++k) hi *= 1.1;
        } else {
            hi = rho_vapour;
            lo = hi;
            for (int k = 0; k < 60 && fn(lo).f >= 0.0; ++k) lo *= 0.8;
        }
    } else {
        lo = hi = 1.0 / backward::v_pt_3(p, T);
        for (int k = 0; k < 60 && fn(lo).f >= 0.0; ++k) lo *= 0.9;
        for (int k = 0; k < 60 && fn(hi).f <= 0.0; ++k) hi *= 1.1;
    }
    const roots::result r = roots::newton_bracketed(fn, lo, hi, 0.5 * (lo + hi), true, 1e-14);
    return r.converged ? r.x : -1.0;
}

void state_pt(state& st, double p, double T, int lvl) {
    const int reg = region_pt(p, T);
    switch (reg == r3 || reg == none ? full + 1 : lvl) {
    case enthalpy:
        return fill_gibbs(st, reg, p, T, lvl, gibbs<0>(reg, p, T));
    case basic:
        return fill_gibbs(st, reg, p, T, lvl, gibbs<1>(reg, p, T));
    case caloric:
        return fill_gibbs(st, reg, p, T, lvl, gibbs<2>(reg, p, T));
    case full:
        return fill_gibbs(st, reg, p, T, lvl, gibbs<3>(reg, p, T));
    default:
        st = state_pt(p, T, lvl);
    }
}

state state_pt(double p, double T, int lvl) {
    const int reg = region_pt(p, T);
    if (reg == none) return {};
    if (reg != r3) return gibbs_state(reg, p, T, lvl);
    const double rho = rho3_pt(p, T);
    if (!(rho > 0.0)) return {};
    state st = helmholtz_state(rho, T, std::max(lvl, int(basic)));
    st.p = p; // the iteration's residual is below the last bit; report the input exactly
    return st;
}

saturation saturation_T(double T, int lvl, double near_liquid, double near_vapour) {
    saturation sat;
    sat.T = T;
    sat.p = T >= Tc ? forward::pc : forward::psat(T);
    saturated_phases(T, sat.p, lvl, sat, near_liquid, near_vapour);
    return sat;
}

saturation saturation_p(double p, int lvl) {
    saturation sat;
    sat.p = p;
    sat.T = p >= forward::pc ? Tc : forward::tsat(p);
    saturated_phases(sat.T, p, lvl, sat);
    return sat;
}

saturation_slope slope(const state& phase, double dps_dT) {
    const double dps = dps_dT * 1e6; // Pa/K
    const double p = phase.p * 1e6;
    const double dv = (dps - phase.dp_dT) / phase.dp_dv;
    const double du = phase.cv + (phase.T * phase.dp_dT - p) * dv * 1e-3;
    const double ds = phase.cv / phase.T + phase.dp_dT * dv * 1e-3;
    const double dh = du + (p * dv + phase.v * dps) * 1e-3;
    return {dv, dh, ds, du};
}

state mixture(const saturation& sat, double x, int lvl) {
    const state& l = sat.liquid;
    const state& g = sat.vapour;
    if (x == 0.0 || x == 1.0) {
        state st = x == 0.0 ? l : g;
        st.x = x;
        return st;
    }
    state st;
    st.region = two_phase;
    st.level = lvl;
    st.p = sat.p;
    st.T = sat.T;
    st.x = x;
    st.v = l.v + x * (g.v - l.v);
    st.h = l.h + x * (g.h - l.h);
    st.s = l.s + x * (g.s - l.s);
    st.u = l.u + x * (g.u - l.u);
    if (lvl >= caloric && sat.T < Tc) {
        // cv of the mixture at constant overall v: d/dT of u' + x (u'' - u') with
        // x = (v - v')/(v'' - v') held by the fixed overall volume.
        const double dps = forward::dpsat_dT(sat.T);
        const saturation_slope a = slope(l, dps);
        const saturation_slope b = slope(g, dps);
        const double dx = -(a.v + x * (b.v - a.v)) / (g.v - l.v);
        st.cv = a.u + x * (b.u - a.u) + (g.u - l.u) * dx;
    }
    return st;
}

double quality(const state& st) {
    if (st.x != not_set) return st.x;
    if (st.p >= forward::pc) return st.T < Tc ? -1.0 : 2.0;
    // h' and h'' of the last pressure asked about: states along one isobar pay once
    static double last_p = -1.0, h_liquid = 0.0, h_vapour = 0.0;
    if (st.p != last_p) {
        const saturation sat = saturation_p(st.p, basic);
        last_p = st.p, h_liquid = sat.liquid.h, h_vapour = sat.vapour.h;
    }
    const double x = (st.h - h_liquid) / (h_vapour - h_liquid);
    return x < 0.5 ? std::fmin(x, 0.0) : std::fmax(x, 1.0);
}

state raise(const state& st, int lvl) {
    if (st.level >= lvl) return st;
    state out;
    if (st.region == two_phase) {
        out = mixture(saturation_T(st.T, lvl), st.x, lvl);
        out.p = st.p;
        out.v = st.v, out.h = st.h, out.s = st.s, out.u = st.u;
        return out;
    }
    out = st.region == r3 ? helmholtz_state(1.0 / st.v, st.T, lvl)
                          : gibbs_state(st.region, st.p, st.T, lvl);
    out.p = st.p;
    out.x = st.x;
    return out;
}

} // namespace if97::properties
