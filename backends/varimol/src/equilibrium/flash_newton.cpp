#include "equilibrium/flash_newton.hpp"

#include "equilibrium/linear.hpp"
#include "model/ideal_gas.hpp"

#include <cmath>

namespace varimol {

namespace {

constexpr int max_iterations = 40;
constexpr double energy_scale = 1.0 / (gas_constant * 298.15);

// One phase at the current iterate: ln phi with its T, P and n derivatives, and its properties.
struct phase_terms {
    phase ph;
    mat dn;
    vec dp, dt;
    double v = 0.0, u = 0.0, h = 0.0, s = 0.0;
    double cp = 0.0, dvdt = 0.0, dvdp = 0.0; // at constant P, T and composition
};

// The phase's v, h, s and u follow from ln phi and its T derivative, sum x_i ln phi_i = G_r/(RT)
// at (T, P): H_r = -RT^2 sum x_i d ln phi_i/dT, S_r = (H_r - G_r)/T. The second derivatives
// (cp and the slopes of v) come from the homogeneous state at (T, v) and are refreshed only while
// the steps are large: close to the solution they change too little to slow the iteration.
int evaluate_phase(const fluid& f, const temperature_terms<taylor<1>>& t, double P, const double* x,
                   const std::array<ideal_gas_terms, mc>& ig, bool refresh, phase_terms& out) {
    if (int e = eval_phase_t(f, t, P, x, root_choice::stable, out.ph, &out.dn, &out.dp, &out.dt))
        return e;
    const double T = value(t.T), R = gas_constant;
    double h = 0.0, s = -R * std::log(P / reference_pressure);
    for (int i = 0; i < f.n; ++i) {
        h += x[i] * (ig[i].h - R * T * T * out.dt[i]);
        s += x[i] * (ig[i].s - R * (std::log(x[i]) + out.ph.lnphi[i] + T * out.dt[i]));
    }
    out.v = out.ph.v;
    out.h = h;
    out.s = s;
    out.u = h - P * out.v;
    if (!refresh) return 0;
    state_props sp;
    homogeneous(f, T, out.ph.v, x, sp);
    if (!(sp.dpdv < 0.0)) return 1;
    out.dvdt = -sp.dpdt / sp.dpdv;
    out.dvdp = 1.0 / sp.dpdv;
    out.cp = sp.cv + T * sp.dpdt * out.dvdt;
    return 0;
}

// total of a given property over the two phases, its derivatives by ln T and ln P at constant
// amounts, and the partial molar difference (vapour - liquid) of component j, with the residual
// scaled as the root is wanted: volumes by their logarithm, energies by RT at 298.15 K,
// entropies by R
struct target_row {
    double r, dlnt, dlnp;
    vec dn;
};

void target_terms(const fluid& f, given sp, double value, double T, double P, double L, double V,
                  const phase_terms& pl, const phase_terms& pv, const vec& g, target_row& row) {
    const double R = gas_constant;
    const double vt = L * pl.v + V * pv.v;
    const double dvdt = L * pl.dvdt + V * pv.dvdt;
    const double dvdp = L * pl.dvdp + V * pv.dvdp;
    const double cpt = L * pl.cp + V * pv.cp;
    for (int j = 0; j < f.n; ++j) {
        const double dv = R * T * (pv.dp[j] - pl.dp[j]);
        const double dh = -R * T * T * (pv.dt[j] - pl.dt[j]);
        switch (sp) {
        case given::v:
            row.dn[j] = dv / vt;
            break;
        case given::h:
            row.dn[j] = dh * energy_scale;
            break;
        case given::u:
            row.dn[j] = (dh - P * dv) * energy_scale;
            break;
        case given::s:
            row.dn[j] = -g[j] - T * (pv.dt[j] - pl.dt[j]);
            break;
        }
    }
    switch (sp) {
    case given::v:
        row.r = std::log(vt / value);
        row.dlnt = T * dvdt / vt;
        row.dlnp = P * dvdp / vt;
        break;
    case given::h:
        row.r = (L * pl.h + V * pv.h - value) * energy_scale;
        row.dlnt = T * cpt * energy_scale;
        row.dlnp = P * (vt - T * dvdt) * energy_scale;
        break;
    case given::u:
        row.r = (L * pl.u + V * pv.u - value) * energy_scale;
        row.dlnt = T * (cpt - P * dvdt) * energy_scale;
        row.dlnp = -P * (T * dvdt + P * dvdp) * energy_scale;
        break;
    case given::s:
        row.r = (L * pl.s + V * pv.s - value) / R;
        row.dlnt = cpt / R;
        row.dlnp = -P * dvdt / R;
        break;
    }
}

} // namespace

int two_phase_newton(const fluid& f, const two_phase_target& target, const eq_state& start,
                     eq_state& st) {
    const int n = f.n;
    if (start.fr.nphase != 2 || n < 2 || !(target.free_t || target.free_p)) return 1;
    const int it_col = n, ip_col = n + (target.free_t ? 1 : 0);
    const int m = n + (target.free_t ? 1 : 0) + (target.free_p ? 1 : 0);
    constexpr int ld = mc + 2;
    double lnt = std::log(start.T), lnp = std::log(start.P);
    vec nv{}, nl{};
    for (int i = 0; i < n; ++i) {
        nv[i] = start.fr.beta * start.fr.y[i];
        nl[i] = (1.0 - start.fr.beta) * start.fr.x[i];
        if (!(nv[i] > 0.0 && nl[i] > 0.0)) return 1;
    }
    phase_terms pl, pv;
    vec x{}, y{}, g{};
    bool converged = false;
    double last_size = 1.0; // of the last step, scaled
    int blocked = 0;        // successive steps cut to a quarter by the positivity of the amounts
    for (int it = 0; it < max_iterations && !converged; ++it) {
        const double T = std::exp(lnt), P = std::exp(lnp);
        if (!(T >= f.tmin && T <= f.tmax && P >= pmin && P <= f.pmax)) return 1;
        double V = 0.0, L = 0.0;
        for (int i = 0; i < n; ++i) V += nv[i], L += nl[i];
        if (!(V > 0.0 && L > 0.0)) return 1;
        for (int i = 0; i < n; ++i) x[i] = nl[i] / L, y[i] = nv[i] / V;
        temperature_terms<taylor<1>> t;
        at_temperature(f, taylor<1>::variable(T), t);
        std::array<ideal_gas_terms, mc> ig;
        for (int i = 0; i < n; ++i) ig[i] = ideal_gas(f.comp[i], T);
        const bool refresh = last_size > 1e-2;
        if (evaluate_phase(f, t, P, x.data(), ig, refresh, pl) ||
            evaluate_phase(f, t, P, y.data(), ig, refresh, pv))
            return 1;
        std::array<double, ld * ld> a{};
        std::array<double, ld> b{};
        for (int i = 0; i < n; ++i) {
            g[i] = std::log(y[i] / x[i]) + pv.ph.lnphi[i] - pl.ph.lnphi[i];
            b[i] = -g[i];
            for (int j = 0; j < n; ++j)
                a[i * ld + j] = ((i == j ? 1.0 / y[i] : 0.0) - 1.0 + pv.dn[i * mc + j]) / V +
                                ((i == j ? 1.0 / x[i] : 0.0) - 1.0 + pl.dn[i * mc + j]) / L;
            if (target.free_t) a[i * ld + it_col] = T * (pv.dt[i] - pl.dt[i]);
            if (target.free_p) a[i * ld + ip_col] = P * (pv.dp[i] - pl.dp[i]);
        }
        // one row per free variable
        int row = n;
        for (int k = 0; k < 2; ++k) {
            if (k == 1 && !(target.free_t && target.free_p)) break;
            target_row sr{};
            target_terms(f, k == 0 ? target.first : target.second,
                         k == 0 ? target.first_value : target.second_value, T, P, L, V, pl, pv, g,
                         sr);
            for (int j = 0; j < n; ++j) a[row * ld + j] = sr.dn[j];
            if (target.free_t) a[row * ld + it_col] = sr.dlnt;
            if (target.free_p) a[row * ld + ip_col] = sr.dlnp;
            b[row] = -sr.r;
            ++row;
        }
        if (!solve_linear(m, a.data(), ld, b.data())) return 1;
        // the step keeps every amount positive in both phases and moves ln T by at most 0.1,
        // ln P by at most 0.5
        double scale = 1.0, size = 0.0;
        for (int i = 0; i < n; ++i) {
            if (!std::isfinite(b[i])) return 1;
            if (nv[i] + b[i] <= 0.0) scale = std::min(scale, -0.8 * nv[i] / b[i]);
            if (nl[i] - b[i] <= 0.0) scale = std::min(scale, 0.8 * nl[i] / b[i]);
            size = std::max(size, std::abs(b[i]) / std::min(nv[i], nl[i]));
        }
        // steps cut short by a vanishing phase again and again: the given state lies outside
        // the two-phase region, and the phase fraction only creeps towards zero
        blocked = scale < 0.25 ? blocked + 1 : 0;
        if (blocked == 3) return 1;
        if (target.free_t) {
            if (!std::isfinite(b[it_col])) return 1;
            scale = std::min(scale, 0.1 / std::max(std::abs(b[it_col]), 1e-300));
            size = std::max(size, std::abs(b[it_col]));
        }
        if (target.free_p) {
            if (!std::isfinite(b[ip_col])) return 1;
            scale = std::min(scale, 0.5 / std::max(std::abs(b[ip_col]), 1e-300));
            size = std::max(size, std::abs(b[ip_col]));
        }
        // the smaller phase's amounts are the ones updated: the other's follow by difference,
        // which keeps a phase of a fraction 1e-7 to full relative precision
        const bool vapour_smaller = V < L;
        for (int i = 0; i < n; ++i) {
            if (vapour_smaller) {
                nv[i] += scale * b[i];
                nl[i] = f.z[i] - nv[i];
            } else {
                nl[i] -= scale * b[i];
                nv[i] = f.z[i] - nl[i];
            }
        }
        if (target.free_t) lnt += scale * b[it_col];
        if (target.free_p) lnp += scale * b[ip_col];
        // a full step this small leaves an error of the order of its square (exact Jacobian)
        // or of a hundredth of it (second derivatives from a point within a step of 1e-2)
        converged = scale == 1.0 && size < 1e-8;
        last_size = scale * size;
    }
    if (!converged) return 1;

    // the converged split: two distinct phases, the liquid the denser, that lower the Gibbs
    // energy of the feed (which proves the homogeneous feed unstable at this T and P)
    const double T = std::exp(lnt), P = std::exp(lnp);
    if (!(T >= f.tmin && T <= f.tmax && P >= pmin && P <= f.pmax)) return 1;
    double V = 0.0, L = 0.0;
    for (int i = 0; i < n; ++i) V += nv[i], L += nl[i];
    if (!(V > 0.0 && L > 0.0)) return 1;
    flash_result fr;
    fr.nphase = 2;
    fr.beta = V / (V + L);
    double spread = 0.0;
    for (int i = 0; i < n; ++i) {
        fr.x[i] = nl[i] / L, fr.y[i] = nv[i] / V;
        spread = std::max(spread, std::abs(std::log(fr.y[i] / fr.x[i])));
    }
    if (!(spread > 1e-6)) return 1;
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase feed;
    if (eval_phase(f, t, P, fr.x.data(), root_choice::stable, fr.liq) ||
        eval_phase(f, t, P, fr.y.data(), root_choice::stable, fr.vap) ||
        eval_phase(f, t, P, f.z.data(), root_choice::stable, feed))
        return 1;
    double gsplit = 0.0, gfeed = 0.0;
    for (int i = 0; i < n; ++i) {
        gsplit += nl[i] * (std::log(fr.x[i]) + fr.liq.lnphi[i]) +
                  nv[i] * (std::log(fr.y[i]) + fr.vap.lnphi[i]);
        gfeed += f.z[i] * (std::log(f.z[i]) + feed.lnphi[i]);
    }
    if (!(gsplit < gfeed) || !(fr.liq.v < fr.vap.v)) return 1;
    fr.tpd = gsplit - gfeed;
    state_from_flash(f, T, P, fr, st);
    return 0;
}

} // namespace varimol
