#include "model/components.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

namespace {
bool finite_all(const double* v, int n) {
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(v[i])) return false;
    return true;
}
} // namespace

int set_fluid(fluid& out, int model_code, const fluid_parameters& fp, const binary_parameters& bp,
              int n_comps) {
    if (n_comps < 1 || n_comps > mc) return 101;
    fluid f;
    f.model_code = model_code;
    f.n_given = n_comps;
    switch (model_code) {
    case model_prsv_vdw: f.eos = peng_robinson; f.alpha = alpha_kind::prsv; break;
    case model_pr_vdw: f.eos = peng_robinson; f.alpha = alpha_kind::pr1978; break;
    case model_srk_vdw: f.eos = soave_redlich_kwong; f.alpha = alpha_kind::srk; break;
    case model_prsv_ws: f.eos = peng_robinson; f.alpha = alpha_kind::prsv; break;
    case model_pr_ws: f.eos = peng_robinson; f.alpha = alpha_kind::pr1978; break;
    default: return 101;
    }
    f.wong_sandler = model_code >= 10;
    // Wong and Sandler, AIChE J. 38 (1992) 671: C = ln(sqrt2 - 1)/sqrt2 for Peng-Robinson
    f.ws_c = std::log(sqrt2 - 1.0) / sqrt2;

    // mole fractions: a pure fluid is pure whatever its row says
    double sum = 0.0;
    for (int i = 0; i < n_comps; ++i) {
        const double x = n_comps == 1 ? 1.0 : fp[parameter_index(row_mole_fraction, i)];
        if (!std::isfinite(x) || x < 0.0) return 100;
        sum += x;
    }
    if (!(std::abs(sum - 1.0) <= 1e-6)) return 100;

    for (int i = 0; i < n_comps; ++i) {
        const double* col = &fp[parameter_index(0, i)];
        if (!finite_all(col, component_rows)) return 101;
        const double x = n_comps == 1 ? 1.0 : col[row_mole_fraction];
        if (x == 0.0) continue; // absent: its parameters are not needed
        component c{};
        c.id = col[row_id];
        c.tc = col[row_tc];
        c.pc = col[row_pc];
        c.acentric = col[row_acentric];
        c.molar_mass = col[row_molar_mass];
        c.kappa1 = col[row_kappa1];
        for (int k = 0; k < 5; ++k) c.cp0[k] = col[row_cp0_a0 + k];
        c.cp0_tmin = col[row_cp0_tmin];
        c.cp0_tmax = col[row_cp0_tmax];
        c.ttriple = col[row_ttriple];
        c.vc = col[row_vc];
        if (!(c.tc > 0.0 && c.pc > 0.0 && c.molar_mass > 0.0 && c.acentric > -1.0 &&
              c.acentric < 3.0 && c.ttriple >= 0.0 && c.vc >= 0.0))
            return 101;
        const double rtc = gas_constant * c.tc;
        c.ac = f.eos.omega_a * rtc * rtc / c.pc;
        c.sqrt_ac = std::sqrt(c.ac);
        c.b = f.eos.omega_b * rtc / c.pc;
        c.kappa0 = alpha_kappa0(f.alpha, c.acentric);
        c.ln_pc = std::log(c.pc);
        if (f.alpha != alpha_kind::prsv) c.kappa1 = 0.0;
        f.given_index[f.n] = i;
        f.z[f.n] = x / sum;
        f.comp[f.n] = c;
        ++f.n;
    }
    for (int i = 0; i < f.n; ++i) {
        for (int j = 0; j < f.n; ++j) {
            const int gi = f.given_index[i], gj = f.given_index[j];
            auto at = [&](int kind) { return bp[binary_index(kind, gi, gj)]; };
            const double kij = i == j ? 0.0 : at(bin_kij);
            const double tau = i == j ? 0.0 : at(bin_nrtl_tau);
            const double alpha = i == j ? 0.0 : at(bin_nrtl_alpha);
            const double kws = i == j ? 0.0 : at(bin_ws_kij);
            if (!std::isfinite(kij) || !std::isfinite(tau) || !std::isfinite(alpha) ||
                !std::isfinite(kws))
                return 101;
            f.one_minus_k[i * mc + j] = 1.0 - kij;
            f.tau[i * mc + j] = tau;
            f.g[i * mc + j] = std::exp(-alpha * tau);
            f.one_minus_ws[i * mc + j] = 1.0 - kws;
        }
    }
    // kij and the Wong-Sandler kij are symmetric: use the mean of the two orders given
    for (int i = 0; i < f.n; ++i)
        for (int j = 0; j < i; ++j) {
            for (mat* m : {&f.one_minus_k, &f.one_minus_ws}) {
                const double v = 0.5 * ((*m)[i * mc + j] + (*m)[j * mc + i]);
                (*m)[i * mc + j] = (*m)[j * mc + i] = v;
            }
        }

    // limits: the lower one is the triple point (0.3 Tc where unknown), the upper 5 Tc; for a
    // mixture the mole-fraction average of the lower limits and 5 times the highest Tc.
    double tmin = 0.0, tcmax = 0.0, mm = 0.0, tpc = 0.0, ppc = 0.0;
    for (int i = 0; i < f.n; ++i) {
        const component& c = f.comp[i];
        tmin += f.z[i] * (c.ttriple > 0.0 ? c.ttriple : 0.3 * c.tc);
        tcmax = std::max(tcmax, c.tc);
        mm += f.z[i] * c.molar_mass;
        tpc += f.z[i] * c.tc;
        ppc += f.z[i] * c.pc;
    }
    f.tmin = tmin;
    f.tmax = 5.0 * tcmax;
    f.molar_mass = mm;
    // critical point: exact for a pure fluid (the cubic reproduces Tc and Pc); for a mixture
    // the pseudo-critical point of Kay's rule, an estimate until the true one is computed
    f.tcrit = tpc;
    f.pcrit = ppc;
    f.vcrit = f.eos.zc * gas_constant * tpc / ppc;
    out = f;
    return 0;
}

void pure_fluid(const fluid& f, int i, fluid& p) {
    p = f;
    p.n = 1;
    p.comp[0] = f.comp[i];
    p.given_index[0] = f.given_index[i];
    p.z[0] = 1.0;
    p.one_minus_k[0] = p.one_minus_ws[0] = 1.0;
    p.tau[0] = 0.0;
    p.g[0] = 1.0;
    const component& c = p.comp[0];
    p.tmin = c.ttriple > 0.0 ? c.ttriple : 0.3 * c.tc;
    p.tmax = 5.0 * c.tc;
    p.molar_mass = c.molar_mass;
    p.tcrit = c.tc;
    p.pcrit = c.pc;
    p.vcrit = f.eos.zc * gas_constant * c.tc / c.pc;
}

} // namespace varimol
