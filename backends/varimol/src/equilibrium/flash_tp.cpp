#include "equilibrium/flash_tp.hpp"

#include "equilibrium/linear.hpp"
#include "equilibrium/rachford_rice.hpp"

#include <cmath>

namespace varimol {

namespace {
void homogeneous_result(const fluid& f, const double* z, const phase& ph, flash_result& out) {
    out.nphase = 1;
    for (int i = 0; i < f.n; ++i) out.x[i] = out.y[i] = z[i];
    out.liq = out.vap = ph;
    out.beta = ph.smaller ? 0.0 : 1.0;
}
} // namespace

int flash_split(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
                vec lnk, flash_result& out) {
    const int n = f.n;
    vec K{}, x{}, y{}, r{}, rold{};
    double beta = 0.5;
    phase L, V;
    bool have_old = false;
    bool converged = false;
    // successive substitution: K_i = phi_i^L / phi_i^V
    for (int it = 0; it < 60; ++it) {
        for (int i = 0; i < n; ++i) K[i] = std::exp(lnk[i]);
        const int side = rachford_rice(n, z, K.data(), beta, x.data(), y.data());
        if (side != 0) {
            // rough K-values: follow the root outside [0, 1] until they settle
            if (it > 30) return 1;
            beta = 0.5;
            rachford_rice_extended(n, z, K.data(), beta, x.data(), y.data());
        }
        double sx = 0.0, sy = 0.0;
        for (int i = 0; i < n; ++i) sx += x[i], sy += y[i];
        for (int i = 0; i < n; ++i) x[i] /= sx, y[i] /= sy;
        if (eval_phase(f, t, P, x.data(), root_choice::stable, L) ||
            eval_phase(f, t, P, y.data(), root_choice::stable, V))
            return 441;
        double rn = 0.0, triv = 0.0;
        for (int i = 0; i < n; ++i) {
            r[i] = L.lnphi[i] - V.lnphi[i] - lnk[i];
            rn += r[i] * r[i];
            triv += lnk[i] * lnk[i];
        }
        if (triv < 1e-8) return 1; // trivial solution
        if (rn < 1e-10) {          // close enough for the Newton steps
            if (side != 0) return 1; // converged outside: one phase
            break;
        }
        if (it % 5 == 4 && have_old) {
            double num = 0.0, den = 0.0;
            for (int i = 0; i < n; ++i) num += r[i] * rold[i], den += rold[i] * rold[i];
            const double lam = num / den;
            if (lam > 0.0 && lam < 0.95) {
                for (int i = 0; i < n; ++i) lnk[i] += r[i] / (1.0 - lam);
                rold = r;
                continue;
            }
        }
        for (int i = 0; i < n; ++i) lnk[i] += r[i];
        rold = r;
        have_old = true;
    }
    // Newton on the Gibbs energy with the amounts of the smaller phase as variables (so that
    // the other phase, z minus them, is formed without cancellation); gradient
    // ln f_i^V - ln f_i^L, Hessian of Michelsen and Mollerup, ch. 10
    const bool small_vapour = beta <= 0.5;
    vec vv{};
    for (int i = 0; i < n; ++i) vv[i] = small_vapour ? beta * y[i] : (1.0 - beta) * x[i];
    mat dl, dv;
    for (int it = 0; it < 40; ++it) {
        double s = 0.0;
        for (int i = 0; i < n; ++i) s += vv[i];
        if (!(s > 0.0 && s < 1.0)) return 441;
        vec& small = small_vapour ? y : x;
        vec& large = small_vapour ? x : y;
        for (int i = 0; i < n; ++i) {
            small[i] = vv[i] / s;
            large[i] = (z[i] - vv[i]) / (1.0 - s);
        }
        const double b = small_vapour ? s : 1.0 - s;
        if (eval_phase(f, t, P, x.data(), root_choice::stable, L, &dl) ||
            eval_phase(f, t, P, y.data(), root_choice::stable, V, &dv))
            return 441;
        vec g{};
        double gmax = 0.0, triv = 0.0;
        for (int i = 0; i < n; ++i) {
            g[i] = std::log(y[i]) + V.lnphi[i] - std::log(x[i]) - L.lnphi[i];
            if (!small_vapour) g[i] = -g[i];
            gmax = std::max(gmax, std::abs(g[i]));
            const double lk = std::log(y[i] / x[i]);
            triv += lk * lk;
        }
        beta = b;
        if (triv < 1e-8) return 1;
        if (gmax < 1e-12) {
            converged = true;
            break;
        }
        std::array<double, mc * mc> H{};
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                H[i * mc + j] = (dv[i * mc + j] - 1.0) / b + (dl[i * mc + j] - 1.0) / (1.0 - b) +
                                (i == j ? z[i] / (x[i] * y[i] * b * (1.0 - b)) : 0.0);
        vec step{};
        for (int i = 0; i < n; ++i) step[i] = -g[i];
        if (!solve_linear(n, H.data(), mc, step.data())) return 441;
        // stay inside 0 < amounts < z_i
        double fac = 1.0;
        for (int i = 0; i < n; ++i) {
            const double nv = vv[i] + step[i];
            if (nv <= 0.0) fac = std::min(fac, 0.9 * vv[i] / -step[i]);
            if (nv >= z[i]) fac = std::min(fac, 0.9 * (z[i] - vv[i]) / step[i]);
        }
        double smax = 0.0;
        for (int i = 0; i < n; ++i) {
            vv[i] += fac * step[i];
            smax = std::max(smax, std::abs(fac * step[i]) / z[i]);
        }
        if (smax < 1e-15 && gmax < 1e-9) {
            converged = true;
            break;
        }
    }
    if (!converged) return 441;
    out.nphase = 2;
    out.beta = beta;
    out.x = x;
    out.y = y;
    out.liq = L;
    out.vap = V;
    return 0;
}

int flash_tp(const fluid& f, double T, double P, const double* z, flash_result& out) {
    out = flash_result{};
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase zp;
    if (int e = eval_phase(f, t, P, z, root_choice::stable, zp)) return e;
    if (f.n == 1) {
        homogeneous_result(f, z, zp, out);
        return 0;
    }
    stability_result st;
    const int se = stability(f, t, P, z, zp, st);
    out.tpd = st.tpd;
    if (st.stable) {
        homogeneous_result(f, z, zp, out);
        return se;
    }
    // K from the fugacity coefficients of the feed and of the trial phase: with w/z alone the
    // Rachford-Rice root would sit exactly at 0 (or 1), on a side decided by rounding
    vec lnk{};
    for (int i = 0; i < f.n; ++i) {
        const double lk = zp.lnphi[i] - st.lnphi_w[i];
        lnk[i] = st.lighter ? lk : -lk;
    }
    const int e = flash_split(f, t, P, z, lnk, out);
    if (e == 1) {
        // the split fell back onto the feed: try the Wilson K-values once
        wilson_k(f, T, P, lnk.data());
        const int e2 = flash_split(f, t, P, z, lnk, out);
        if (e2 == 0) return 0;
        homogeneous_result(f, z, zp, out);
        return 441;
    }
    if (e != 0) {
        wilson_k(f, T, P, lnk.data());
        if (flash_split(f, t, P, z, lnk, out) == 0) return 0;
        homogeneous_result(f, z, zp, out);
        return e;
    }
    return 0;
}

} // namespace varimol
