#include "model/properties.hpp"

#include "model/ideal_gas.hpp"

#include <cmath>

namespace varimol {

namespace {

constexpr double R = gas_constant;

// The volume functions of F at (V, B) with their V and B derivatives (one mole).
template <class S>
struct volume_terms {
    S g, gV, gVV, gB;   // g = ln(1 - B/V)
    S f, fV, fVV, fB;   // f of the header
    double gVVV, fVVV;  // values only
};

// g_log = ln(1 - B/V) and f_log = ln((V + delta1 B)/(V + delta2 B)) are given by the caller
template <class S>
volume_terms<S> volume_functions(const cubic_family& e, const S& B, double V, const S& g_log,
                                 const S& f_log) {
    volume_terms<S> w;
    const S vmb = V - B;
    const S W = (V + e.delta1 * B) * (V + e.delta2 * B), dW = 2.0 * V + (e.delta1 + e.delta2) * B;
    w.g = g_log;
    w.gV = 1.0 / vmb - 1.0 / V;
    w.gVV = 1.0 / (V * V) - 1.0 / (vmb * vmb);
    w.gB = -1.0 / vmb;
    const double dd = e.delta1 - e.delta2;
    w.f = f_log / (R * dd * B);
    w.fV = -1.0 / (R * W);
    w.fVV = dW / (R * W * W);
    w.fB = -(w.f + V * w.fV) / B;
    const double vb = value(vmb), Wv = value(W), dWv = value(dW);
    w.gVVV = 2.0 / (vb * vb * vb) - 2.0 / (V * V * V);
    w.fVVV = (2.0 / (Wv * Wv) - 2.0 * dWv * dWv / (Wv * Wv * Wv)) / R;
    return w;
}

template <class S>
volume_terms<S> volume_functions(const cubic_family& e, const S& B, double V) {
    return volume_functions(e, B, V, log((V - B) / V),
                            log((V + e.delta1 * B) / (V + e.delta2 * B)));
}

template <class S>
temperature_terms<double> values_of(const fluid& f, const temperature_terms<S>& t) {
    if constexpr (std::is_same_v<S, double>) {
        return t;
    } else {
        temperature_terms<double> d;
        d.T = value(t.T);
        for (int i = 0; i < f.n; ++i) {
            d.a[i] = value(t.a[i]);
            d.sa[i] = value(t.sa[i]);
            d.abrt[i] = value(t.abrt[i]);
            for (int j = 0; j < f.n; ++j) d.p[i * mc + j] = value(t.p[i * mc + j]);
        }
        return d;
    }
}

// The two logarithms of a root Z of the cubic in A and B: ln(Z - B), which is ln(1 - B/V) + ln Z,
// and ln((Z + delta1 B)/(Z + delta2 B)), which is the same ratio in V. ln phi and G_r/(RT) need
// no other; ln Z itself cancels from them. The ratio is close to 1 in a gas: its logarithm is
// formed as ln(1 + (delta1 - delta2) B/(Z + delta2 B)), which keeps the digits that the
// attraction term multiplies by A/B.
struct root_logs {
    double zb, ratio;
};
root_logs logs_at(const cubic_family& e, double B, double Z) {
    return {std::log(Z - B), std::log1p((e.delta1 - e.delta2) * B / (Z + e.delta2 * B))};
}
// G_r/(RT) per mole on a root Z at (T, P), F + Z - 1 - ln Z, written with A and B of the cubic
// in Z: Z - 1 - ln(Z - B) - A/(B (delta1 - delta2)) ln((Z + delta1 B)/(Z + delta2 B))
double lng_at(const cubic_family& e, double A, double B, double Z, const root_logs& l) {
    return Z - 1.0 - l.zb - A / (B * (e.delta1 - e.delta2)) * l.ratio;
}

// The one-fluid rule's attraction D = sum_ij y_i y_j (1 - k_ij) with y_i = x_i sqrt(a_i(T)) and
// its covolume B = sum_i x_i b_i, for one mole, formed directly where no composition
// derivatives are needed.
template <class S>
S one_fluid_attraction(const fluid& f, const S& T, const double* x, double& B) {
    std::array<S, mc> y;
    B = 0.0;
    for (int i = 0; i < f.n; ++i) {
        const component& c = f.comp[i];
        y[i] = (x[i] * c.sqrt_ac) * sqrt_alpha(f.alpha, c.kappa0, c.kappa1, c.tc, T);
        B += x[i] * c.b;
    }
    S D(0.0);
    for (int i = 0; i < f.n; ++i) {
        S s(0.0);
        for (int j = 0; j < f.n; ++j) s += y[j] * f.one_minus_k[i * mc + j];
        D += y[i] * s;
    }
    return D;
}

template <class S>
int eval_phase_impl(const fluid& f, const temperature_terms<S>& t, double P, const double* x,
                    root_choice r, phase& out, mat* dn, vec* dp, vec* dt) {
    const int nc = f.n;
    mixture_terms<S> m;
    mix(f, t, x, m, nullptr);
    const double T = value(t.T);
    const double Bv = value(m.B), Dv = value(m.D);
    const double rt = R * T;
    const double A = Dv * P / (rt * rt), Bz = Bv * P / rt;
    double zmin, zmax;
    const int nr = z_roots(f.eos, A, Bz, zmin, zmax);
    if (nr == 0) return 109;
    double Z;
    bool smaller;
    root_logs lg;
    if (nr == 1 || r == root_choice::liquid) {
        Z = zmin;
        smaller = true;
        lg = logs_at(f.eos, Bz, Z);
    } else if (r == root_choice::vapour) {
        Z = zmax;
        smaller = false;
        lg = logs_at(f.eos, Bz, Z);
    } else {
        const root_logs ll = logs_at(f.eos, Bz, zmin), lv = logs_at(f.eos, Bz, zmax);
        smaller = lng_at(f.eos, A, Bz, zmin, ll) < lng_at(f.eos, A, Bz, zmax, lv);
        Z = smaller ? zmin : zmax;
        lg = smaller ? ll : lv;
    }
    const double V = Z * rt / P;
    out.Z = Z;
    out.v = V;
    out.nroots = nr;
    out.smaller = smaller;
    out.lng = lng_at(f.eos, A, Bz, Z, lg);
    const bool derivatives = dn || dp || dt;
    if constexpr (std::is_same_v<S, double>) {
        if (!derivatives) {
            // ln phi_i = F_i - ln Z with F_i = dF/dn_i at T, V; -g - ln Z is -ln(Z - B)
            const double vmb = V - Bv;
            const double fv = lg.ratio / (R * (f.eos.delta1 - f.eos.delta2) * Bv);
            const double fV = -1.0 / (R * (V + f.eos.delta1 * Bv) * (V + f.eos.delta2 * Bv));
            const double fB = -(fv + V * fV) / Bv;
            const double DTv = Dv / T;
            for (int i = 0; i < nc; ++i)
                out.lnphi[i] = -lg.zb + m.Bi[i] / vmb - (m.Di[i] / T) * fv - DTv * fB * m.Bi[i];
            return 0;
        }
    }
    // the logarithms of the volume functions are those of the root (ln(1 - B/V) is ln(Z - B)
    // - ln Z); only their temperature derivatives remain to be formed
    const double lnz = std::log(Z);
    const volume_terms<S> w =
        volume_functions(f.eos, m.B, V, log_given((V - m.B) / V, lg.zb - lnz),
                         log_given((V + f.eos.delta1 * m.B) / (V + f.eos.delta2 * m.B), lg.ratio));
    const S DT = m.D / t.T;
    std::array<S, mc> Fi;
    for (int i = 0; i < nc; ++i) {
        Fi[i] = -w.g - w.gB * m.Bi[i] - (m.Di[i] / t.T) * w.f - DT * w.fB * m.Bi[i];
        out.lnphi[i] = value(Fi[i]) - lnz;
    }
    if (!derivatives) return 0;

    // pressure derivatives at constant T, V: P_V and P_i = RT (1/V - F_iV)
    const double gVv = value(w.gV), fVv = value(w.fV), gBv = value(w.gB), fBv = value(w.fB);
    const double vmb = V - Bv;
    const double gBV = 1.0 / (vmb * vmb);
    const double fVV = value(w.fVV);
    const double fBV = -(2.0 * fVv + V * fVV) / Bv;
    const double DTv = Dv / T;
    const double FVV = -value(w.gVV) - DTv * fVV;
    const double PV = -rt * (FVV + 1.0 / (V * V));
    vec Pi{};
    for (int i = 0; i < nc; ++i) {
        const double bi = value(m.Bi[i]), di = value(m.Di[i]);
        const double FiV = -gVv - gBV * bi - di / T * fVv - DTv * fBV * bi;
        Pi[i] = rt * (1.0 / V - FiV);
    }
    if (dp)
        for (int i = 0; i < nc; ++i) (*dp)[i] = -Pi[i] / PV / rt - 1.0 / P;
    if constexpr (!std::is_same_v<S, double>) {
        if (dt) {
            // P_T at constant V, n: P/T - RT dF_V/dT
            const S FV = -w.gV - DT * w.fV;
            const double PT = P / T - rt * FV.c[1];
            for (int i = 0; i < nc; ++i)
                (*dt)[i] = Fi[i].c[1] + 1.0 / T + PT * Pi[i] / (rt * PV);
        }
    }
    if (dn) {
        const temperature_terms<double> td = values_of(f, t);
        mixture_terms<double> md;
        second_terms s2;
        mix(f, td, x, md, &s2);
        const double gBB = -gBV;
        const double fBB = -(2.0 * fBv + V * fBV) / Bv;
        for (int i = 0; i < nc; ++i)
            for (int j = 0; j <= i; ++j) {
                const double bi = md.Bi[i], bj = md.Bi[j], di = md.Di[i], dj = md.Di[j];
                const double bij = s2.Bij[i * mc + j], dij = s2.Dij[i * mc + j];
                const double Fij = -gBv * (bi + bj) - gBB * bi * bj - gBv * bij -
                                   (dij * value(w.f) + (di * bj + dj * bi) * fBv +
                                    Dv * (fBB * bi * bj + fBv * bij)) /
                                       T;
                const double v = Fij + 1.0 + Pi[i] * Pi[j] / (rt * PV);
                (*dn)[i * mc + j] = (*dn)[j * mc + i] = v;
            }
    }
    return 0;
}

} // namespace

int eval_phase(const fluid& f, const temperature_terms<double>& t, double P, const double* x,
               root_choice r, phase& out, mat* dn, vec* dp) {
    return eval_phase_impl(f, t, P, x, r, out, dn, dp, nullptr);
}

int eval_phase_t(const fluid& f, const temperature_terms<taylor<1>>& t, double P,
                 const double* x, root_choice r, phase& out, mat* dn, vec* dp, vec* dt) {
    return eval_phase_impl(f, t, P, x, r, out, dn, dp, dt);
}

void homogeneous(const fluid& f, double T, double v, const double* x, state_props& o) {
    using T3 = taylor<3>;
    const T3 tt = T3::variable(T);
    T3 F, FV, FVV;
    double FVVV;
    if (!f.wong_sandler) {
        // the covolume of the one-fluid rule does not depend on temperature: the volume
        // functions are plain numbers and D/T alone carries the temperature derivatives
        double B;
        const T3 DT = one_fluid_attraction(f, tt, x, B) / tt;
        const volume_terms<double> w = volume_functions(f.eos, B, v);
        F = -(DT * w.f) - w.g;
        FV = -(DT * w.fV) - w.gV;
        FVV = -(DT * w.fVV) - w.gVV;
        FVVV = -w.gVVV - value(DT) * w.fVVV;
    } else {
        temperature_terms<T3> t;
        at_temperature(f, tt, t);
        mixture_terms<T3> m;
        mix(f, t, x, m, nullptr);
        const T3 DT = m.D / tt;
        const volume_terms<T3> w = volume_functions(f.eos, m.B, v);
        F = -w.g - DT * w.f;
        FV = -w.gV - DT * w.fV;
        FVV = -w.gVV - DT * w.fVV;
        FVVV = -w.gVVV - value(DT) * w.fVVV;
    }
    // P = RT (1/v - F_V); dP/dv = -RT (1/v^2 + F_VV); d2P/dv2 = RT (2/v^3 - F_VVV)
    const T3 p = R * tt * (1.0 / v - FV);
    const T3 pv = R * tt * (-1.0 / (v * v) - FVV);
    // residual Helmholtz energy A_r = RT F; S_r = -dA_r/dT; U_r = A_r + T S_r;
    // cv_r = -T d2A_r/dT2; dcv_r/dT = -d2A_r/dT2 - T d3A_r/dT3
    const T3 ar = R * tt * F;
    const double sr = -ar.d(1);
    const double ur = ar.d(0) + T * sr;
    const double cvr = -T * ar.d(2);
    const double dcvr = -ar.d(2) - T * ar.d(3);
    double h0 = 0.0, s0 = 0.0, cp0 = 0.0, dcp0 = 0.0;
    const double ln_tr = std::log(T / reference_temperature);
    for (int i = 0; i < f.n; ++i) {
        if (x[i] <= 0.0) continue;
        const ideal_gas_terms ig = ideal_gas(f.comp[i], T, ln_tr);
        h0 += x[i] * ig.h;
        s0 += x[i] * (ig.s - R * std::log(x[i]));
        cp0 += x[i] * ig.cp;
        dcp0 += x[i] * ig.dcpdt;
    }
    // ideal gas at (T, v): its pressure is RT/v
    s0 -= R * std::log(R * T / (v * reference_pressure));
    o.T = T;
    o.v = v;
    o.P = p.d(0);
    o.dpdt = p.d(1);
    o.d2pdt2 = p.d(2);
    o.dpdv = pv.d(0);
    o.d2pdtdv = pv.d(1);
    o.d2pdv2 = R * T * (2.0 / (v * v * v) - FVVV);
    o.u = h0 - R * T + ur;
    o.h = o.u + o.P * v;
    o.s = s0 + sr;
    o.cv = cp0 - R + cvr;
    o.dcvdt = dcp0 + dcvr;
}

void caloric(const fluid& f, double T, double v, const double* x, state_props& o) {
    using T1 = taylor<1>;
    const T1 tt = T1::variable(T);
    T1 ar;
    double FV;
    if (!f.wong_sandler) {
        // as in homogeneous(): plain volume functions, D/T carries the temperature
        double B;
        const T1 DT = one_fluid_attraction(f, tt, x, B) / tt;
        const volume_terms<double> w = volume_functions(f.eos, B, v);
        ar = R * tt * (-(DT * w.f) - w.g);
        FV = -w.gV - value(DT) * w.fV;
    } else {
        temperature_terms<T1> t;
        at_temperature(f, tt, t);
        mixture_terms<T1> m;
        mix(f, t, x, m, nullptr);
        const volume_terms<T1> w = volume_functions(f.eos, m.B, v);
        const T1 DT = m.D / tt;
        ar = R * tt * (-w.g - DT * w.f);
        FV = value(-w.gV - DT * w.fV);
    }
    double h0 = 0.0, s0 = 0.0;
    const double ln_tr = std::log(T / reference_temperature);
    for (int i = 0; i < f.n; ++i) {
        if (x[i] <= 0.0) continue;
        const ideal_gas_terms ig = ideal_gas(f.comp[i], T, ln_tr);
        h0 += x[i] * ig.h;
        s0 += x[i] * (ig.s - R * std::log(x[i]));
    }
    s0 -= R * std::log(R * T / (v * reference_pressure));
    const double sr = -ar.c[1];
    o.T = T;
    o.v = v;
    o.P = R * T * (1.0 / v - FV);
    o.u = h0 - R * T + ar.c[0] + T * sr;
    o.h = o.u + o.P * v;
    o.s = s0 + sr;
}

void residual_helmholtz(const fluid& f, double T, double v, const double* x, double& F,
                        double& FT, double& FV, vec& Fn) {
    using T1 = taylor<1>;
    temperature_terms<T1> t;
    const T1 tt = T1::variable(T);
    at_temperature(f, tt, t);
    mixture_terms<T1> m;
    mix(f, t, x, m, nullptr);
    const volume_terms<T1> w = volume_functions(f.eos, m.B, v);
    const T1 DT = m.D / tt;
    const T1 Ft = -w.g - DT * w.f;
    F = Ft.c[0];
    FT = Ft.c[1];
    FV = value(-w.gV - DT * w.fV);
    for (int i = 0; i < f.n; ++i)
        Fn[i] = value(-w.g - w.gB * m.Bi[i] - (m.Di[i] / tt) * w.f - DT * w.fB * m.Bi[i]);
}

} // namespace varimol

namespace varimol {

int fugacity_derivatives_tv(const fluid& f, const temperature_terms<double>& t, double V,
                            const double* x, double& P, mat& Q) {
    const int nc = f.n;
    mixture_terms<double> m;
    second_terms s2;
    mix(f, t, x, m, &s2);
    const double T = t.T, B = m.B, D = m.D;
    if (!(V > B) || !std::isfinite(V)) return 109;
    const volume_terms<double> w = volume_functions(f.eos, B, V);
    // F = -n g - D/T f; at constant V the amounts enter through n, B and D
    const double gBB = -1.0 / ((V - B) * (V - B));
    const double fBV = -(2.0 * w.fV + V * w.fVV) / B;
    const double fBB = -(2.0 * w.fB + V * fBV) / B;
    P = R * T * (1.0 / V + w.gV + D / T * w.fV);
    for (int i = 0; i < nc; ++i)
        for (int j = 0; j <= i; ++j) {
            const double bi = m.Bi[i], bj = m.Bi[j], di = m.Di[i], dj = m.Di[j];
            const double bij = s2.Bij[i * mc + j], dij = s2.Dij[i * mc + j];
            const double Fij = -w.gB * (bi + bj) - gBB * bi * bj - w.gB * bij -
                               (dij * w.f + (di * bj + dj * bi) * w.fB +
                                D * (fBB * bi * bj + w.fB * bij)) /
                                   T;
            Q[i * mc + j] = Q[j * mc + i] = Fij + (i == j ? 1.0 / x[i] : 0.0);
        }
    return 0;
}

} // namespace varimol
