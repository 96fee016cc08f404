// The entry points: range checks, mode dispatch, assembly of the outputs, and the codes.
#include "varimol/varimol.hpp"

#include "equilibrium/critical.hpp"
#include "equilibrium/envelope.hpp"
#include "equilibrium/flash_ph_ps.hpp"
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/flash_uv.hpp"
#include "equilibrium/quality_points.hpp"
#include "equilibrium/root_1d.hpp"
#include "equilibrium/saturation.hpp"
#include "model/ideal_gas.hpp"
#include "model/properties.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

namespace {

constexpr double not_computed = -8888.8;

fluid configured;
bool is_configured = false;

int check_t(const fluid& f, double T) {
    if (!(T >= f.tmin)) return 3181; // also NaN
    if (!(T <= f.tmax)) return 3180;
    return 0;
}
int check_p(const fluid& f, double P) {
    if (!(P > 0.0)) return 3186; // also NaN
    if (!(P <= f.pmax)) return 3185;
    return 0;
}

struct outputs {
    double *T, *p, *v, *u, *h, *s, *q, *cv, *dpdt, *dpdv, *d2pdt2, *d2pdv2, *d2pdtdv, *dcvdt;
};

void preset(const outputs& o) {
    for (double* d :
         {o.v, o.u, o.h, o.s, o.cv, o.dpdt, o.dpdv, o.d2pdt2, o.d2pdv2, o.d2pdtdv, o.dcvdt})
        *d = not_computed;
    if (o.q) *o.q = not_computed;
}

void put_props(const state_props& sp, const outputs& o) {
    *o.v = sp.v;
    *o.u = sp.u;
    *o.h = sp.h;
    *o.s = sp.s;
    *o.cv = sp.cv;
    *o.dpdt = sp.dpdt;
    *o.dpdv = sp.dpdv;
    *o.d2pdt2 = sp.d2pdt2;
    *o.d2pdv2 = sp.d2pdv2;
    *o.d2pdtdv = sp.d2pdtdv;
    *o.dcvdt = sp.dcvdt;
}

bool all_finite(const outputs& o) {
    for (double* d : {o.T, o.p, o.v, o.u, o.h, o.s, o.cv, o.dpdt, o.dpdv, o.d2pdt2, o.d2pdv2,
                      o.d2pdtdv, o.dcvdt})
        if (!std::isfinite(*d)) return false;
    return !o.q || std::isfinite(*o.q);
}

// liquid-like (-1) or vapour-like (2) quality of a homogeneous phase
double single_phase_quality(const fluid& f, const phase& ph) {
    if (ph.nroots == 2) return ph.smaller ? -1.0 : 2.0;
    return ph.v < f.vcrit ? -1.0 : 2.0;
}

void spread(const fluid& f, const vec& a, composition& out) {
    out.fill(0.0);
    for (int i = 0; i < f.n; ++i) out[f.given_index[i]] = a[i];
}

// a homogeneous state at (T, P) on the chosen root
int homogeneous_tp(const fluid& f, double T, double P, root_choice r, phase& ph, state_props& sp) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    if (int e = eval_phase(f, t, P, f.z.data(), r, ph)) return e;
    homogeneous(f, T, ph.v, f.z.data(), sp);
    if (r == root_choice::stable) return 0;
    // the asked kind of root does not exist: the other one is returned, with a warning
    const bool liquid_like = single_phase_quality(f, ph) < 0.0;
    return (r == root_choice::liquid) == liquid_like ? 0 : 28;
}

// the outputs of a two-phase (or saturated) result at T, P
void two_phase_outputs(const fluid& f, double T, const flash_result& fr, double q, const outputs& o,
                       composition& x, composition& y, composition& lnphi) {
    state_props sl, sv;
    if (q == 0.0) {
        homogeneous(f, T, fr.liq.v, fr.x.data(), sl);
        put_props(sl, o);
    } else if (q == 1.0) {
        homogeneous(f, T, fr.vap.v, fr.y.data(), sv);
        put_props(sv, o);
    } else {
        // inside the dome only the caloric properties are formed
        caloric(f, T, fr.liq.v, fr.x.data(), sl);
        caloric(f, T, fr.vap.v, fr.y.data(), sv);
        *o.v = (1.0 - q) * sl.v + q * sv.v;
        *o.u = (1.0 - q) * sl.u + q * sv.u;
        *o.h = (1.0 - q) * sl.h + q * sv.h;
        *o.s = (1.0 - q) * sl.s + q * sv.s;
    }
    *o.q = q;
    spread(f, fr.x, x);
    spread(f, fr.y, y);
    spread(f, fr.liq.lnphi, lnphi);
}

// pure-fluid saturation as a flash result
void pure_two_phase(const phase& l, const phase& v, flash_result& fr) {
    fr.nphase = 2;
    fr.liq = l;
    fr.vap = v;
    fr.x[0] = fr.y[0] = 1.0;
}

// the outputs of an equilibrium state from one of the state-function flashes
void state_outputs(const fluid& f, const eq_state& st, double& T, double& p, double& q,
                   const outputs& o, composition& x, composition& y, composition& lnphi) {
    T = st.T;
    p = st.P;
    if (st.fr.nphase == 2) {
        two_phase_outputs(f, st.T, st.fr, st.q, o, x, y, lnphi);
        return;
    }
    put_props(st.one, o);
    q = st.q;
    spread(f, f.z, x);
    spread(f, f.z, y);
    spread(f, st.fr.liq.lnphi, lnphi);
}

// covolume of the mixture at its pseudo-critical temperature (a first check of a given volume;
// the Wong-Sandler covolume varies with T, and the searches check it at every temperature)
double covolume(const fluid& f) {
    temperature_terms<double> t;
    at_temperature(f, std::clamp(f.tcrit, f.tmin, f.tmax), t);
    mixture_terms<double> m;
    mix(f, t, f.z.data(), m, nullptr);
    return m.B;
}

// the codes of the (v, x) pairs: base 3210 (vu), 3220 (vh), 3230 (vs); +0 v too large, +1 too
// small, +2 value below its value at Tmin, +3 above at Tmax, +4 the pressure above Pmax
int v_pair(const fluid& f, int base, given sp, double v, double value, eq_state& st) {
    if (std::isinf(v) && v > 0.0) return base;
    if (!(v > covolume(f))) return base + 1; // also NaN
    if (!std::isfinite(value)) return base + 2;
    const int e = flash_v(f, v, sp, value, st);
    if (e == out_below) return base + 2;
    if (e == out_above) return base + 3;
    if (e) return e;
    if (st.P > f.pmax) return base + 4;
    if (st.P < pmin) return base;
    return 0;
}

// the (p, x) pairs: below/above give the two codes
int p_pair(const fluid& f, int below, int above, given sp, double p, double value, eq_state& st) {
    if (int e = check_p(f, p)) return e;
    if (!std::isfinite(value) || (sp == given::v && !(value > 0.0))) return below;
    const int e = flash_p(f, p, sp, value, st);
    if (e == out_below) return below;
    if (e == out_above) return above;
    return e;
}

int tmdprop(int mode, double& T, double& p, double& q, const outputs& o, composition& x,
            composition& y, composition& lnphi) {
    if (!is_configured) return 101;
    const fluid& f = configured;
    switch (mode) {
    case 1:
    case -1:
    case -2: {
        if (int e = check_t(f, T)) return e;
        if (int e = check_p(f, p)) return e;
        if (mode != 1) {
            phase ph;
            state_props sp;
            const int e = homogeneous_tp(
                f, T, p, mode == -1 ? root_choice::liquid : root_choice::vapour, ph, sp);
            if (e != 0 && e != 28) return e;
            put_props(sp, o);
            q = single_phase_quality(f, ph);
            spread(f, f.z, x);
            spread(f, f.z, y);
            spread(f, ph.lnphi, lnphi);
            return e;
        }
        flash_result fr;
        const int e = flash_tp(f, T, p, f.z.data(), fr);
        if (e != 0) return e;
        if (fr.nphase == 2) {
            two_phase_outputs(f, T, fr, fr.beta, o, x, y, lnphi);
            return 0;
        }
        state_props sp;
        homogeneous(f, T, fr.liq.v, f.z.data(), sp);
        put_props(sp, o);
        q = single_phase_quality(f, fr.liq);
        spread(f, f.z, x);
        spread(f, f.z, y);
        spread(f, fr.liq.lnphi, lnphi);
        return 0;
    }
    case 11:
    case 12: {
        const bool given_t = mode == 12;
        if (!(q >= 0.0 && q <= 1.0)) return given_t ? 3275 : 3270;
        if (given_t) {
            if (int e = check_t(f, T)) return e == 3181 ? 3277 : e;
        } else {
            if (int e = check_p(f, p)) return e == 3186 ? 3272 : e;
        }
        flash_result fr;
        if (f.n == 1) {
            phase l, v;
            if (given_t) {
                const int e = pure_saturation_pressure(f, T, p, l, v);
                if (e == 102) return 3276;
                if (e) return e;
            } else {
                const int e = pure_saturation_temperature(f, p, T, l, v);
                if (e == 143) return 3271;
                if (e) return e;
                if (T < f.tmin) return 3272;
            }
            pure_two_phase(l, v, fr);
        } else {
            if (int e = mixture_quality_point(f, given_t, T, p, q, fr)) return e;
            if (!given_t && T < f.tmin) return 3272;
        }
        two_phase_outputs(f, T, fr, q, o, x, y, lnphi);
        return 0;
    }
    case 2: { // T, v
        if (int e = check_t(f, T)) return e;
        const double vin = *o.v;
        if (std::isinf(vin) && vin > 0.0) return 3190;
        if (!(vin > covolume(f))) return 3191; // also NaN
        eq_state st;
        if (int e = state_tv(f, T, vin, st)) return e;
        if (st.P > f.pmax) return 3191;
        if (st.P < pmin) return 3190;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        return 0;
    }
    case 3: { // T, s
        if (int e = check_t(f, T)) return e;
        const double sin = *o.s;
        if (!std::isfinite(sin)) return 3200;
        eq_state st;
        const int e = flash_t(f, T, given::s, sin, st);
        if (e == out_below || (e == 0 && st.P < pmin)) return 3201;
        if (e == out_above || (e == 0 && st.P > f.pmax)) return 3200;
        if (e) return e;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        return 0;
    }
    case 4:    // p, v
    case 8:    // p, u
    case 9:    // p, h
    case 10: { // p, s
        eq_state st;
        const int e = mode == 4   ? p_pair(f, 3206, 3205, given::v, p, *o.v, st)
                      : mode == 8 ? p_pair(f, 3240, 3241, given::u, p, *o.u, st)
                      : mode == 9 ? p_pair(f, 3245, 3246, given::h, p, *o.h, st)
                                  : p_pair(f, 3250, 3251, given::s, p, *o.s, st);
        if (e) return e;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        return 0;
    }
    case 5:   // v, u
    case 6:   // v, h
    case 7: { // v, s
        eq_state st;
        const int e = mode == 5   ? v_pair(f, 3210, given::u, *o.v, *o.u, st)
                      : mode == 6 ? v_pair(f, 3220, given::h, *o.v, *o.h, st)
                                  : v_pair(f, 3230, given::s, *o.v, *o.s, st);
        if (e) return e;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        return 0;
    }
    case 13: { // h, s
        const double hin = *o.h, sin = *o.s;
        if (!std::isfinite(hin)) return 3261;
        if (!std::isfinite(sin)) return 3263;
        eq_state st;
        if (int e = flash_hs(f, hin, sin, st)) return e;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        return 0;
    }
    case 15: { // v, q
        const double vin = *o.v;
        if (!(q >= 0.0 && q <= 1.0)) return 3280;
        if (!(vin > 0.0) || !std::isfinite(vin)) return vin > 0.0 ? 3281 : 3282;
        eq_state st;
        if (int e = flash_vq(f, vin, q, st)) return e;
        const double qin = q;
        state_outputs(f, st, T, p, q, o, x, y, lnphi);
        q = qin;
        return 0;
    }
    default:
        return 110;
    }
}

// covolume of the fluid at T (the Wong-Sandler one depends on T)
double covolume(const fluid& f, double T) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    mixture_terms<double> m;
    mix(f, t, f.z.data(), m, nullptr);
    return m.B;
}

// One homogeneous phase at fixed v from u (mode 5), h (6) or s (7): Newton on T, kept in a
// bracket. du/dT = cv, dh/dT = cv + v dP/dT, ds/dT = cv/T at constant v.
int solve_t_at_v(const fluid& f, int mode, double v, double target, state_props& sp) {
    double lo = f.tmin, hi = f.tmax;
    double t = 0.5 * (lo + hi);
    auto value_of = [&](const state_props& p, double& d) -> double {
        if (mode == 5) return d = p.cv, p.u;
        if (mode == 6) return d = p.cv + v * p.dpdt, p.h;
        return d = p.cv / p.T, p.s;
    };
    for (int end = 0; end < 2; ++end) { // the target must lie between the values at the limits
        const double te = end == 0 ? lo : hi;
        if (!(v > covolume(f, te))) return end == 0 ? 3211 : 3210;
        homogeneous(f, te, v, f.z.data(), sp);
        double d;
        const double fe = value_of(sp, d) - target;
        if (end == 0 && fe > 0.0) return mode == 5 ? 3212 : mode == 6 ? 3222 : 3232;
        if (end == 1 && fe < 0.0) return mode == 5 ? 3213 : mode == 6 ? 3223 : 3233;
    }
    for (int it = 0; it < 200; ++it) {
        homogeneous(f, t, v, f.z.data(), sp);
        double d;
        const double r = value_of(sp, d) - target;
        if (r > 0.0)
            hi = t;
        else
            lo = t;
        double tn = t - r / d;
        if (!(tn > lo && tn < hi)) tn = 0.5 * (lo + hi);
        const double dt = std::abs(tn - t);
        t = tn;
        if (dt <= 1e-14 * t || hi - lo <= 1e-14 * t) {
            homogeneous(f, t, v, f.z.data(), sp);
            return 0;
        }
    }
    return 106;
}

// One homogeneous phase at fixed T from s (mode 3): s grows with v (ds/dv = dP/dT > 0), Newton
// on ln(v - b) from the gas side.
int solve_v_at_t(const fluid& f, double T, double target, state_props& sp) {
    const double b = covolume(f, T);
    double lo = std::log(1e-12 * b), hi = std::log(1e6); // ln(v - b), m3/mol
    homogeneous(f, T, b + std::exp(hi), f.z.data(), sp);
    if (sp.s < target) return 3201;
    double w = std::log(gas_constant * T / 1e5);
    for (int it = 0; it < 300; ++it) {
        const double v = b + std::exp(w);
        homogeneous(f, T, v, f.z.data(), sp);
        if (!(sp.P <= f.pmax) && sp.s > target) hi = w; // keep below the pressure limit
        const double r = sp.s - target;
        if (r > 0.0)
            hi = w;
        else
            lo = w;
        double wn = w - r / (sp.dpdt * std::exp(w));
        if (!(wn > lo && wn < hi)) wn = 0.5 * (lo + hi);
        const double dw = std::abs(wn - w);
        w = wn;
        if (dw <= 1e-15 * std::max(1.0, std::abs(w)) || hi - lo <= 1e-15) {
            homogeneous(f, T, b + std::exp(w), f.z.data(), sp);
            if (!(sp.P <= f.pmax)) return 3200;
            return 0;
        }
    }
    return 106;
}

// One homogeneous phase at fixed P from u (mode 8), h (9) or s (10), on the root of lower Gibbs
// energy at each T: Newton on T with cp = cv - T (dP/dT)^2/(dP/dv). Where the target falls into
// the jump between the two roots (inside the dome) no homogeneous state has it: code 106.
int solve_t_at_p(const fluid& f, int mode, double P, double target, state_props& sp) {
    auto at = [&](double T, double& d) -> double {
        phase ph;
        temperature_terms<double> t;
        at_temperature(f, T, t);
        if (eval_phase(f, t, P, f.z.data(), root_choice::stable, ph)) return std::nan("");
        homogeneous(f, T, ph.v, f.z.data(), sp);
        const double cp = sp.cv - T * sp.dpdt * sp.dpdt / sp.dpdv;
        if (mode == 8) return d = cp + P * sp.dpdt / sp.dpdv, sp.u;
        if (mode == 9) return d = cp, sp.h;
        return d = cp / T, sp.s;
    };
    double lo = f.tmin, hi = f.tmax, d = 0.0;
    const double flo = at(lo, d) - target, fhi = at(hi, d) - target;
    if (!(flo <= 0.0)) return mode == 8 ? 3240 : mode == 9 ? 3245 : 3250;
    if (!(fhi >= 0.0)) return mode == 8 ? 3241 : mode == 9 ? 3246 : 3251;
    double t = 0.5 * (lo + hi);
    for (int it = 0; it < 300; ++it) {
        const double r = at(t, d) - target;
        if (!std::isfinite(r)) return 106;
        if (r > 0.0)
            hi = t;
        else
            lo = t;
        double tn = t - r / d;
        if (!(tn > lo && tn < hi)) tn = 0.5 * (lo + hi);
        const double dt = std::abs(tn - t);
        t = tn;
        if (dt <= 1e-14 * t) {
            const double rr = at(t, d) - target;
            return std::abs(rr) <= 1e-9 * (std::abs(target) + gas_constant * t) ? 0 : 106;
        }
        if (hi - lo <= 1e-14 * t) return 106; // a jump between the two roots
    }
    return 106;
}

int tmdprop_1ph(int mode, double& T, double& p, const outputs& o) {
    if (!is_configured) return 101;
    const fluid& f = configured;
    switch (mode) {
    case 1:
    case -1:
    case -2: {
        if (int e = check_t(f, T)) return e;
        if (int e = check_p(f, p)) return e;
        const root_choice r = mode == 1    ? root_choice::stable
                              : mode == -1 ? root_choice::liquid
                                           : root_choice::vapour;
        phase ph;
        state_props sp;
        const int e = homogeneous_tp(f, T, p, r, ph, sp);
        if (e != 0 && e != 28) return e;
        put_props(sp, o);
        return e;
    }
    case 2: {
        if (int e = check_t(f, T)) return e;
        double b = 0.0;
        for (int i = 0; i < f.n; ++i) b += f.z[i] * f.comp[i].b;
        const double v = *o.v;
        if (!(v > b) || !std::isfinite(v)) return 3191;
        state_props sp;
        homogeneous(f, T, v, f.z.data(), sp);
        if (!(sp.P <= f.pmax)) return 3191;
        put_props(sp, o);
        p = sp.P;
        return 0;
    }
    case 4: {
        if (int e = check_p(f, p)) return e;
        double b = 0.0;
        for (int i = 0; i < f.n; ++i) b += f.z[i] * f.comp[i].b;
        const double v = *o.v;
        if (!(v > b) || !std::isfinite(v)) return 3206;
        // Newton on P(T, v) = p; P grows with T at fixed v
        double t = std::max(p * (v - b) / gas_constant, f.tmin);
        state_props sp;
        bool ok = false;
        for (int it = 0; it < 100; ++it) {
            homogeneous(f, t, v, f.z.data(), sp);
            const double r = sp.P - p;
            if (!(sp.dpdt > 0.0)) return 106;
            double tn = t - r / sp.dpdt;
            if (tn <= 0.5 * t) tn = 0.5 * t;
            const double dt = std::abs(tn - t);
            t = tn;
            if (dt <= 1e-14 * t) {
                ok = true;
                break;
            }
        }
        if (!ok) return 106;
        if (t > f.tmax) return 3205;
        if (t < f.tmin) return 3206;
        T = t;
        homogeneous(f, T, v, f.z.data(), sp);
        put_props(sp, o);
        return 0;
    }
    case 3: {
        if (int e = check_t(f, T)) return e;
        if (!std::isfinite(*o.s)) return 3200;
        state_props sp;
        if (int e = solve_v_at_t(f, T, *o.s, sp)) return e;
        put_props(sp, o);
        p = sp.P;
        return 0;
    }
    case 5:
    case 6:
    case 7: {
        const double v = *o.v;
        const double target = mode == 5 ? *o.u : mode == 6 ? *o.h : *o.s;
        if (!(v > 0.0) || !std::isfinite(v)) return 3211;
        if (!std::isfinite(target)) return mode == 5 ? 3212 : mode == 6 ? 3222 : 3232;
        state_props sp;
        if (int e = solve_t_at_v(f, mode, v, target, sp)) return e;
        if (!(sp.P <= f.pmax)) return mode == 5 ? 3214 : mode == 6 ? 3224 : 3234;
        put_props(sp, o);
        T = sp.T;
        p = sp.P;
        return 0;
    }
    case 8:
    case 9:
    case 10: {
        if (int e = check_p(f, p)) return e;
        const double target = mode == 8 ? *o.u : mode == 9 ? *o.h : *o.s;
        if (!std::isfinite(target)) return mode == 8 ? 3240 : mode == 9 ? 3245 : 3250;
        state_props sp;
        if (int e = solve_t_at_p(f, mode, p, target, sp)) return e;
        put_props(sp, o);
        T = sp.T;
        return 0;
    }
    default:
        return 110;
    }
}

} // namespace

void varimol_sub() {}

// The version of the build, set once in the top-level CMakeLists.txt.
void vm3_getversion(std::array<int, 4>& version) {
    version = {ZP_VERSION_MAJOR, ZP_VERSION_MINOR, ZP_VERSION_PATCH, 0};
}

void vm3_setfluid(int model_code, const fluid_parameters& fp, const binary_parameters& bp,
                  int n_comps, int& ierr) {
    fluid f;
    ierr = set_fluid(f, model_code, fp, bp, n_comps);
    if (ierr == 0 && f.n > 1) {
        // The mixture's critical point replaces the pseudo-critical estimate of set_fluid. A
        // mixture without a critical point of positive pressure (a light gas with a trace of a
        // heavy one) keeps the estimate: it is still a fluid whose states can be computed.
        critical_state c;
        if (critical_point(f, f.z.data(), 0.0, 0.0, c) == 0) {
            f.tcrit = c.T;
            f.pcrit = c.P;
        }
    }
    if (ierr == 0) {
        configured = f;
        is_configured = true;
        forget_traced_envelope();
    }
}

void vm3_fluidinfo(double& mmol, double& tcrit, double& pcrit, double& tmin, double& tmax) {
    if (!is_configured) {
        mmol = tcrit = pcrit = tmin = tmax = 0.0;
        return;
    }
    mmol = configured.molar_mass;
    tcrit = configured.tcrit;
    pcrit = configured.pcrit;
    tmin = configured.tmin;
    tmax = configured.tmax;
}

void vm3_fluidsset(int& ncomps, std::span<std::string>) {
    ncomps = 0;
}

void vm3_tmdprop(int mode, double& T, double& p, double& v, double& u, double& h, double& s,
                 double& q, double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                 double& d2pdtdv, double& dcvdt, composition& x, composition& y, composition& lnphi,
                 int& ierr) {
    const outputs o{&T,  &p,    &v,    &u,      &h,      &s,       &q,
                    &cv, &dpdt, &dpdv, &d2pdt2, &d2pdv2, &d2pdtdv, &dcvdt};
    // the given state functions stay readable by the modes that use them
    const double qin = q, vin = v, uin = u, hin = h, sin = s;
    preset(o);
    q = qin;
    v = vin;
    u = uin;
    h = hin;
    s = sin;
    x.fill(0.0);
    y.fill(0.0);
    lnphi.fill(0.0);
    ierr = tmdprop(mode, T, p, q, o, x, y, lnphi);
    if ((ierr == 0 || ierr == 28) && !all_finite(o)) ierr = mode > 10 ? 441 : 441;
    if (ierr != 0 && ierr != 28) {
        preset(o);
        x.fill(0.0);
        y.fill(0.0);
        lnphi.fill(0.0);
    }
}

void vm3_tmdprop_1ph(int mode, double& T, double& p, double& v, double& u, double& h, double& s,
                     double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                     double& d2pdtdv, double& dcvdt, int& ierr) {
    const outputs o{&T,  &p,    &v,    &u,      &h,      &s,       nullptr,
                    &cv, &dpdt, &dpdv, &d2pdt2, &d2pdv2, &d2pdtdv, &dcvdt};
    const double vin = v, uin = u, hin = h, sin = s;
    preset(o);
    v = vin;
    u = uin;
    h = hin;
    s = sin;
    ierr = tmdprop_1ph(mode, T, p, o);
    if ((ierr == 0 || ierr == 28) && !all_finite(o)) ierr = 106;
    if (ierr != 0 && ierr != 28) preset(o);
}

void vm3_psat_k1(double k1, double T, double& psat, int& ierr) {
    psat = 0.0;
    if (!is_configured || configured.n != 1 || !std::isfinite(k1)) {
        ierr = 101;
        return;
    }
    fluid f = configured;
    component& c = f.comp[0];
    f.alpha = alpha_kind::prsv;
    c.kappa0 = alpha_kappa0(alpha_kind::prsv, c.acentric);
    c.kappa1 = k1;
    if (!(T >= f.tmin)) {
        ierr = 103;
        return;
    }
    phase l, v;
    ierr = pure_saturation_pressure(f, T, psat, l, v);
    if (ierr) psat = 0.0;
}

void vm3_xy_a_alfa(double aij, double aji, double alfa, double p, double T,
                   std::array<double, 2>& x, std::array<double, 2>& y, int& ierr) {
    x = {0.0, 0.0};
    y = {0.0, 0.0};
    if (!is_configured || configured.n != 2 || !std::isfinite(aij) || !std::isfinite(aji) ||
        !std::isfinite(alfa)) {
        ierr = 101;
        return;
    }
    fluid f = configured;
    if ((ierr = check_t(f, T)) || (ierr = check_p(f, p))) return;
    if (f.eos.delta2 == 0.0) {
        // Wong-Sandler mixing is offered for Peng-Robinson: an SRK fluid takes the PR 1978 alpha
        f.eos = peng_robinson;
        f.alpha = alpha_kind::pr1978;
        for (int i = 0; i < 2; ++i) {
            component& c = f.comp[i];
            const double rtc = gas_constant * c.tc;
            c.ac = f.eos.omega_a * rtc * rtc / c.pc;
            c.sqrt_ac = std::sqrt(c.ac);
            c.b = f.eos.omega_b * rtc / c.pc;
            c.kappa0 = alpha_kappa0(f.alpha, c.acentric);
        }
    }
    f.wong_sandler = true;
    f.tau[0 * mc + 1] = aij;
    f.tau[1 * mc + 0] = aji;
    f.g[0 * mc + 1] = std::exp(-alfa * aij);
    f.g[1 * mc + 0] = std::exp(-alfa * aji);
    // at fixed (T, p) the coexisting compositions of a binary do not depend on the feed: flash a
    // feed between Wilson's estimates of them
    vec lnk{};
    wilson_k(f, T, p, lnk.data());
    const double k1 = std::exp(lnk[0]), k2 = std::exp(lnk[1]);
    double x1 = (1.0 - k2) / (k1 - k2);
    if (!(x1 > 0.0 && x1 < 1.0) || !(k1 * x1 > 0.0 && k1 * x1 < 1.0)) x1 = 0.5;
    const double z1 = 0.5 * (x1 + std::min(k1 * x1, 1.0));
    const double z[2] = {z1, 1.0 - z1};
    temperature_terms<double> t;
    at_temperature(f, T, t);
    flash_result fr;
    int e = flash_split(f, t, p, z, lnk, fr);
    if (e != 0) e = flash_tp(f, T, p, z, fr);
    if (e != 0 || fr.nphase != 2) {
        ierr = 441;
        return;
    }
    x = {fr.x[0], fr.x[1]};
    y = {fr.y[0], fr.y[1]};
    ierr = 0;
}

namespace {
// writes the envelope's points into the caller's arrays, compositions at the caller's positions
class span_sink final : public envelope_sink {
public:
    span_sink(const fluid& f, int room, std::span<double> T, std::span<double> p,
              std::span<composition> x, std::span<composition> y)
        : f_(f), room_(room), T_(T), p_(p), x_(x), y_(y) {}
    bool add(double T, double P, const vec& x, const vec& y) override {
        if (count_ >= room_) return false;
        T_[count_] = T;
        p_[count_] = P;
        spread(f_, x, x_[count_]);
        spread(f_, y, y_[count_]);
        ++count_;
        return true;
    }
    void reverse_order() override {
        for (int a = 0, b = count_ - 1; a < b; ++a, --b) {
            std::swap(T_[a], T_[b]);
            std::swap(p_[a], p_[b]);
            std::swap(x_[a], x_[b]);
            std::swap(y_[a], y_[b]);
        }
    }
    int count() const { return count_; }

private:
    const fluid& f_;
    int room_, count_ = 0;
    std::span<double> T_, p_;
    std::span<composition> x_, y_;
};
} // namespace

void vm3_phaseenvelope(int& npnts, std::span<double> T, std::span<double> p,
                       std::span<composition> x, std::span<composition> y, int& ierr) {
    const std::size_t room = std::min(
        {T.size(), p.size(), x.size(), y.size(), static_cast<std::size_t>(std::max(npnts, 0))});
    npnts = 0;
    if (!is_configured || configured.n < 2) {
        ierr = 101;
        return;
    }
    span_sink sink(configured, static_cast<int>(room), T, p, x, y);
    envelope_summary summary;
    ierr = trace_envelope(configured, 1.0e5, &sink, summary);
    npnts = sink.count();
}

void uninit_varimol() {
    configured = fluid{};
    is_configured = false;
    forget_traced_envelope();
}

} // namespace varimol
