#pragma once
// Mixing rules: the mixture's covolume B and attraction D = n^2 a of n moles, with their
// composition derivatives, in the notation of Michelsen and Mollerup (Thermodynamic Models,
// 2nd ed. 2007, ch. 3-5). Templates over the scalar type, so that temperature derivatives
// follow exactly (model/taylor.hpp).
//   van der Waals one-fluid: D = sum_ij n_i n_j sqrt(a_i a_j)(1 - k_ij), B = sum_i n_i b_i.
//   Wong and Sandler, AIChE J. 38 (1992) 671, with the NRTL excess Gibbs energy (Renon and
//   Prausnitz, AIChE J. 14 (1968) 135) at infinite pressure:
//     Q = sum_ij n_i n_j (b - a/RT)_ij, (b - a/RT)_ij = ((b_i - a_i/RT) + (b_j - a_j/RT))/2 (1 - k_ij)
//     Dt = sum_i n_i a_i/(b_i RT) + n gE/(C RT),   B = Q / (n - Dt),   D = RT Dt B.
#include "model/components.hpp"
#include "model/taylor.hpp"

#include <type_traits>

namespace varimol {

// Everything that depends on temperature alone, computed once per temperature.
template <class S>
struct temperature_terms {
    S T;                       // K
    std::array<S, mc> a;       // a_i(T), Pa m6/mol2
    std::array<S, mc> sa;      // sqrt(a_i)
    std::array<S, mc * mc> p;  // van der Waals: a_ij; Wong-Sandler: (b - a/RT)_ij
    std::array<S, mc> abrt;    // Wong-Sandler: a_i / (b_i R T)
};

template <class S>
struct mixture_terms {
    S B, D;                   // m3, Pa m6 (n moles)
    std::array<S, mc> Bi, Di; // dB/dn_i, dD/dn_i
};
// second composition derivatives (at one temperature, values only)
struct second_terms {
    mat Bij, Dij;
};

template <class S>
void at_temperature(const fluid& f, const S& T, temperature_terms<S>& t) {
    const int n = f.n;
    t.T = T;
    for (int i = 0; i < n; ++i) {
        const component& c = f.comp[i];
        const S m = sqrt_alpha(f.alpha, c.kappa0, c.kappa1, c.tc, T);
        t.sa[i] = c.sqrt_ac * m;
        t.a[i] = t.sa[i] * t.sa[i];
    }
    if (!f.wong_sandler) {
        for (int i = 0; i < n; ++i)
            for (int j = 0; j <= i; ++j)
                t.p[i * mc + j] = t.p[j * mc + i] = t.sa[i] * t.sa[j] * f.one_minus_k[i * mc + j];
        return;
    }
    const S rt = gas_constant * T;
    std::array<S, mc> bma;
    for (int i = 0; i < n; ++i) {
        t.abrt[i] = t.a[i] / (rt * f.comp[i].b);
        bma[i] = f.comp[i].b - t.a[i] / rt;
    }
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j)
            t.p[i * mc + j] = t.p[j * mc + i] =
                0.5 * (bma[i] + bma[j]) * f.one_minus_ws[i * mc + j];
}

// B, D and their derivatives for the amounts n (mol, any total); second derivatives when
// `second` is given (only for S = double).
template <class S>
void mix(const fluid& f, const temperature_terms<S>& t, const double* n, mixture_terms<S>& m,
         second_terms* second) {
    const int nc = f.n;
    if (!f.wong_sandler) {
        S D(0.0), B(0.0);
        for (int i = 0; i < nc; ++i) {
            S s(0.0);
            for (int j = 0; j < nc; ++j) s += n[j] * t.p[i * mc + j];
            m.Di[i] = 2.0 * s;
            D += n[i] * s;
            m.Bi[i] = S(f.comp[i].b);
            B += n[i] * f.comp[i].b;
        }
        m.B = B;
        m.D = D;
        if constexpr (std::is_same_v<S, double>) {
            if (second) {
                for (int i = 0; i < nc; ++i)
                    for (int j = 0; j < nc; ++j) {
                        second->Dij[i * mc + j] = 2.0 * t.p[i * mc + j];
                        second->Bij[i * mc + j] = 0.0;
                    }
            }
        }
        return;
    }
    // NRTL: s_i = sum_j n_j tau_ji G_ji, u_i = sum_k n_k G_ki, theta_i = s_i / u_i,
    // E = n gE/RT = sum_i n_i theta_i and its derivatives
    double ntot = 0.0;
    vec u{}, theta{}, Ei{};
    for (int i = 0; i < nc; ++i) {
        double s = 0.0, uu = 0.0;
        for (int j = 0; j < nc; ++j) {
            s += n[j] * f.tau[j * mc + i] * f.g[j * mc + i];
            uu += n[j] * f.g[j * mc + i];
        }
        u[i] = uu;
        theta[i] = s / uu;
        ntot += n[i];
    }
    double E = 0.0;
    for (int j = 0; j < nc; ++j) {
        E += n[j] * theta[j];
        double s = theta[j];
        for (int i = 0; i < nc; ++i)
            s += n[i] * f.g[j * mc + i] * (f.tau[j * mc + i] - theta[i]) / u[i];
        Ei[j] = s;
    }
    const double c = f.ws_c;
    S Dt = S(E / c), Q(0.0);
    std::array<S, mc> Dti, Qi;
    for (int i = 0; i < nc; ++i) {
        Dt += n[i] * t.abrt[i];
        Dti[i] = t.abrt[i] + Ei[i] / c;
        S s(0.0);
        for (int j = 0; j < nc; ++j) s += n[j] * t.p[i * mc + j];
        Qi[i] = 2.0 * s;
        Q += n[i] * s;
    }
    const S den = ntot - Dt;
    const S B = Q / den;
    const S rt = gas_constant * t.T;
    for (int i = 0; i < nc; ++i) {
        m.Bi[i] = (Qi[i] - B * (1.0 - Dti[i])) / den;
        m.Di[i] = rt * (Dti[i] * B + Dt * m.Bi[i]);
    }
    m.B = B;
    m.D = rt * Dt * B;
    if constexpr (std::is_same_v<S, double>) {
        if (!second) return;
        for (int j = 0; j < nc; ++j)
            for (int k = 0; k <= j; ++k) {
                double s = f.g[k * mc + j] * (f.tau[k * mc + j] - theta[j]) / u[j] +
                           f.g[j * mc + k] * (f.tau[j * mc + k] - theta[k]) / u[k];
                for (int i = 0; i < nc; ++i)
                    s -= n[i] * f.g[j * mc + i] * f.g[k * mc + i] *
                         (f.tau[j * mc + i] + f.tau[k * mc + i] - 2.0 * theta[i]) / (u[i] * u[i]);
                const double dtjk = s / c;
                const double bjk = (2.0 * t.p[j * mc + k] - m.Bi[j] * (1.0 - Dti[k]) -
                                    m.Bi[k] * (1.0 - Dti[j]) + B * dtjk) /
                                   den;
                const double djk =
                    rt * (dtjk * B + Dti[j] * m.Bi[k] + Dti[k] * m.Bi[j] + Dt * bjk);
                second->Bij[j * mc + k] = second->Bij[k * mc + j] = bjk;
                second->Dij[j * mc + k] = second->Dij[k * mc + j] = djk;
            }
    }
}

} // namespace varimol
