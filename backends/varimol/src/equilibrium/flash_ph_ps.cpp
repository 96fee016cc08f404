#include "equilibrium/flash_ph_ps.hpp"

#include "equilibrium/flash_newton.hpp"
#include "equilibrium/rachford_rice.hpp"
#include "equilibrium/root_1d.hpp"
#include "equilibrium/saturation.hpp"

#include <cmath>

namespace varimol {

namespace {
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double search_pmin = 1.0e-6, search_pmax = 1.0e10; // Pa

// Wilson's bubble-point (bubble) or dew-point temperature of the feed at P, by Newton's method
// in T on sum z K - 1 = 0 or sum z / K - 1 = 0 (the last iterate where it does not settle)
double wilson_saturation_t(const fluid& f, double P, bool bubble) {
    double T = 0.0;
    for (int i = 0; i < f.n; ++i) T += f.z[i] * f.comp[i].tc;
    T *= 0.7;
    for (int it = 0; it < 50; ++it) {
        double g = 0.0, dg = 0.0;
        for (int i = 0; i < f.n; ++i) {
            const component& c = f.comp[i];
            const double a = 5.373 * (1.0 + c.acentric);
            const double lk = std::log(c.pc / P) + a * (1.0 - c.tc / T);
            const double dlk = a * c.tc / (T * T);
            const double k = std::exp(bubble ? lk : -lk);
            g += f.z[i] * k;
            dg += f.z[i] * k * (bubble ? dlk : -dlk);
        }
        const double step = std::clamp(-(g - 1.0) / dg, -0.3 * T, 0.3 * T);
        if (!std::isfinite(step)) break;
        T += step;
        if (std::abs(step) < 1e-6 * T) break;
    }
    return T;
}

// Wilson's bubble-point and dew-point temperatures at P, averaged: where the two-phase region of
// the feed is expected, the start of a search in temperature
double wilson_temperature(const fluid& f, double P) {
    const double T = 0.5 * (wilson_saturation_t(f, P, true) + wilson_saturation_t(f, P, false));
    return std::isfinite(T) ? std::clamp(T, f.tmin, f.tmax) : std::clamp(f.tcrit, f.tmin, f.tmax);
}

// Wilson's bubble pressure at T, the start of a search in pressure
double wilson_pressure(const fluid& f, double T) {
    double P = 0.0;
    for (int i = 0; i < f.n; ++i) {
        const component& c = f.comp[i];
        P += f.z[i] * c.pc * std::exp(5.373 * (1.0 + c.acentric) * (1.0 - c.tc / T));
    }
    return std::isfinite(P) ? std::clamp(P, 1e3, f.pmax) : 1e5;
}

// residuals small enough to end a search in temperature: an energy within 2.5e-10 J/mol, a
// volume within 1e-14 (the temperature then within about 1e-12 of its own value); entropy
// residuals end by the step size alone
double residual_tolerance(given sp) {
    return sp == given::v ? 1e-14 : sp == given::s ? 0.0 : 1e-13;
}

// slopes of the specs of a homogeneous state by T at constant P
double slope_t(const state_props& sp, given s) {
    const double dvdt = -sp.dpdt / sp.dpdv;
    const double cp = sp.cv + sp.T * sp.dpdt * dvdt;
    switch (s) {
    case given::v:
        return dvdt / sp.v; // of ln v
    case given::u:
        return cp - sp.P * dvdt;
    case given::h:
        return cp;
    case given::s:
        return cp / sp.T;
    }
    return nan;
}
// slopes by ln P at constant T
double slope_lnp(const state_props& sp, given s) {
    const double dvdp = 1.0 / sp.dpdv;
    switch (s) {
    case given::v:
        return sp.P * dvdp / sp.v; // of ln v
    case given::s:
        return sp.P * sp.dpdt * dvdp; // (ds/dP)_T = -(dv/dT)_P
    default:
        return nan;
    }
}

// the residual of the given property, scaled so that the tolerance of the root is relative: volumes
// by their logarithm, energies by RT
double residual(const eq_state& st, given sp, double value) {
    if (sp == given::v) return std::log(st.v / value);
    return (given_value(st, sp) - value) / (gas_constant * 298.15);
}
} // namespace

double given_value(const eq_state& st, given sp) {
    switch (sp) {
    case given::v:
        return st.v;
    case given::u:
        return st.u;
    case given::h:
        return st.h;
    case given::s:
        return st.s;
    }
    return nan;
}

double phase_quality(const fluid& f, const phase& ph) {
    if (ph.nroots == 2) return ph.smaller ? -1.0 : 2.0;
    return ph.v < f.vcrit ? -1.0 : 2.0;
}

void state_from_flash(const fluid& f, double T, double P, const flash_result& fr, eq_state& st) {
    st.T = T;
    st.P = P;
    st.fr = fr;
    if (fr.nphase == 1) {
        homogeneous(f, T, fr.liq.v, f.z.data(), st.one);
        st.v = st.one.v;
        st.u = st.one.u;
        st.h = st.one.h;
        st.s = st.one.s;
        st.q = phase_quality(f, fr.liq);
        return;
    }
    // the overall v, u, h and s only: the phases' caloric properties suffice
    state_props sl, sv;
    caloric(f, T, fr.liq.v, fr.x.data(), sl);
    caloric(f, T, fr.vap.v, fr.y.data(), sv);
    const double b = fr.beta;
    st.v = (1.0 - b) * sl.v + b * sv.v;
    st.u = (1.0 - b) * sl.u + b * sv.u;
    st.h = (1.0 - b) * sl.h + b * sv.h;
    st.s = (1.0 - b) * sl.s + b * sv.s;
    st.q = b;
    st.slope = nan;
}

void pure_two_phase_state(const fluid& f, double T, double P, const phase& l, const phase& v,
                          double q, eq_state& st) {
    flash_result fr;
    fr.nphase = 2;
    fr.beta = q;
    fr.liq = l;
    fr.vap = v;
    fr.x[0] = fr.y[0] = 1.0;
    state_from_flash(f, T, P, fr, st);
}

int state_tp(const fluid& f, double T, double P, eq_state& st, const eq_state* warm, bool lenient) {
    flash_result fr;
    if (warm && warm->fr.nphase == 2 && f.n > 1) {
        vec lnk{};
        for (int i = 0; i < f.n; ++i) lnk[i] = std::log(warm->fr.y[i] / warm->fr.x[i]);
        temperature_terms<double> t;
        at_temperature(f, T, t);
        if (flash_split(f, t, P, f.z.data(), lnk, fr) == 0 && fr.nphase == 2 && fr.beta > 0.0 &&
            fr.beta < 1.0) {
            state_from_flash(f, T, P, fr, st);
            return 0;
        }
    }
    const int e = flash_tp(f, T, P, f.z.data(), fr);
    if (e != 0 && !(e == 446 && lenient)) return e;
    state_from_flash(f, T, P, fr, st);
    return 0;
}

namespace {

// the search in T at fixed P over a continuous range [lo, hi] of the stable state; `start`
// optionally a state already known at x0 = start->T
int search_t(const fluid& f, double P, given sp, double value, double lo, double hi, double t0,
             const eq_state* start, eq_state& st, bool lenient) {
    eq_state cur;
    bool have = false;
    bool warm_ok = f.n > 1;
    auto g = [&](double T, double& r) {
        eq_state next;
        if (int e = state_tp(f, T, P, next, warm_ok && have ? &cur : nullptr, true)) return e;
        cur = next;
        have = true;
        r = residual(cur, sp, value);
        return 0;
    };
    root_search rs{t0, 0.02 * t0, lo, hi, 1e-13 * t0, true};
    rs.rtol = residual_tolerance(sp);
    double r0 = 0.0;
    bool has_r0 = false;
    if (start) {
        cur = *start;
        have = true;
        r0 = residual(cur, sp, value);
        has_r0 = true;
        rs.x0 = start->T;
    } else {
        if (int e = g(rs.x0, r0)) return e;
        has_r0 = true;
    }
    if (cur.fr.nphase == 1) {
        const double sl = slope_t(cur.one, sp) / (sp == given::v ? 1.0 : gas_constant * 298.15);
        const double d = std::abs(r0 / sl);
        if (std::isfinite(d) && d > 0.0) rs.step = std::min(1.2 * d + 1e-6 * rs.x0, 0.5 * rs.x0);
    }
    double T = rs.x0;
    int e = find_root(g, rs, T, has_r0, r0);
    if (e) return e;
    // the answer from a full flash with its stability test
    if (int e2 = state_tp(f, T, P, st, nullptr, lenient)) return e2;
    if (have && std::abs(cur.T - T) <= 1e-8 * T && cur.fr.nphase == st.fr.nphase) return 0;
    if (!warm_ok) return 0;
    // the warm-started split and the full flash disagree: search again with full flashes only
    warm_ok = false;
    have = false;
    rs.x0 = T;
    rs.step = 1e-6 * T;
    if (int e3 = find_root(g, rs, T)) return e3;
    return state_tp(f, T, P, st, nullptr, lenient);
}

// the same in ln P at fixed T
int search_p(const fluid& f, double T, given sp, double value, double lnlo, double lnhi,
             double lnp0, const eq_state* start, eq_state& st, const eq_state* warm = nullptr,
             bool lenient = false) {
    eq_state cur;
    bool have = false;
    if (warm && warm->fr.nphase == 2 && f.n > 1) {
        cur = *warm; // the first split starts from its K-values
        have = true;
    }
    bool warm_ok = f.n > 1;
    auto g = [&](double lnp, double& r) {
        eq_state next;
        if (int e = state_tp(f, T, std::exp(lnp), next, warm_ok && have ? &cur : nullptr, true))
            return e;
        cur = next;
        have = true;
        r = residual(cur, sp, value);
        return 0;
    };
    root_search rs{lnp0, 0.5, lnlo, lnhi, 1e-13, false};
    double r0 = 0.0;
    if (start) {
        cur = *start;
        have = true;
        r0 = residual(cur, sp, value);
        rs.x0 = std::log(start->P);
    } else if (int e = g(rs.x0, r0)) {
        return e;
    }
    if (cur.fr.nphase == 1) {
        const double sl = slope_lnp(cur.one, sp) / (sp == given::v ? 1.0 : gas_constant * 298.15);
        const double d = std::abs(r0 / sl);
        if (std::isfinite(d) && d > 0.0) rs.step = std::min(1.2 * d + 1e-6, 3.0);
    }
    double x = rs.x0;
    if (int e = find_root(g, rs, x, true, r0)) return e;
    if (int e2 = state_tp(f, T, std::exp(x), st, nullptr, lenient)) return e2;
    if (have && std::abs(std::log(cur.P / st.P)) <= 1e-8 && cur.fr.nphase == st.fr.nphase) return 0;
    if (!warm_ok) return 0;
    warm_ok = false;
    have = false;
    rs.x0 = x;
    rs.step = 1e-6;
    if (int e3 = find_root(g, rs, x)) return e3;
    return state_tp(f, T, std::exp(x), st, nullptr, lenient);
}

// (result of homogeneous_first: not the answer, but a flash state to start from)
constexpr int start_found = -100;
// (result of homogeneous_first: the two-phase answer by the Newton iteration)
constexpr int newton_done = -101;

// The temperature at P where the homogeneous phase of the stable root has the given value,
// then the full flash there: st is that flash's state (one phase: the answer when it is the same
// root; two phases: a start inside the two-phase region).
int homogeneous_first(const fluid& f, double P, given sp, double value, double t0, eq_state& st,
                      bool lenient) {
    state_props props{};
    // the closest temperatures below and above the value seen so far, with their roots: where
    // the value falls in the jump between the liquid-like and the vapour-like root, the search
    // stops as soon as it has found the jump (the feed there is not stable)
    constexpr int jump_found = 9001;
    double t_neg = nan, t_pos = nan;
    bool small_neg = false, small_pos = false, first = true;
    auto g = [&](double T, double& r) {
        temperature_terms<double> t;
        at_temperature(f, T, t);
        phase ph;
        if (int e = eval_phase(f, t, P, f.z.data(), root_choice::stable, ph)) return e;
        // the caloric properties alone; the slope for the first step comes from the full set
        if (first)
            homogeneous(f, T, ph.v, f.z.data(), props);
        else
            caloric(f, T, ph.v, f.z.data(), props);
        first = false;
        r = sp == given::v ? std::log(props.v / value)
                           : ((sp == given::u   ? props.u
                               : sp == given::h ? props.h
                                                : props.s) -
                              value) /
                                 (gas_constant * 298.15);
        if (r < 0.0)
            t_neg = T, small_neg = ph.smaller;
        else
            t_pos = T, small_pos = ph.smaller;
        if (f.n > 1 && small_neg != small_pos && std::abs(t_pos - t_neg) <= 1e-3 * T)
            return jump_found;
        return 0;
    };
    double r0;
    if (int e = g(t0, r0)) return e;
    const double sl = slope_t(props, sp) / (sp == given::v ? 1.0 : gas_constant * 298.15);
    double step = std::abs(r0 / sl);
    step =
        std::isfinite(step) && step > 0.0 ? std::min(1.2 * step + 1e-6 * t0, 0.5 * t0) : 0.02 * t0;
    double T = t0;
    root_search rs{t0, step, f.tmin, f.tmax, 1e-13 * t0, true};
    rs.rtol = residual_tolerance(sp);
    if (int e = find_root(g, rs, T, true, r0)) {
        if (e != jump_found) return e;
        T = 0.5 * (t_neg + t_pos);
        // the feed is not stable at the jump: the Newton iteration starts from Wilson's split
        // there, which spares the flash
        vec lnk{}, K{};
        eq_state start;
        wilson_k(f, T, P, lnk.data());
        for (int i = 0; i < f.n; ++i) K[i] = std::exp(lnk[i]);
        start.T = T;
        start.P = P;
        start.fr.nphase = 2;
        if (rachford_rice(f.n, f.z.data(), K.data(), start.fr.beta, start.fr.x.data(),
                          start.fr.y.data()) == 0) {
            two_phase_target target;
            target.first = sp;
            target.first_value = value;
            if (two_phase_newton(f, target, start, st) == 0) return newton_done;
        }
    }
    if (int e = state_tp(f, T, P, st, nullptr, lenient)) return e;
    if (st.fr.nphase == 2) return start_found;
    // one phase: the answer when it is the root found (another root of lower Gibbs energy, or a
    // jump between the roots, leaves a residual)
    return std::abs(residual(st, sp, value)) <= 1e-10 ? 0 : start_found;
}

// The given property of the feed on the chosen root at (T, P), without a stability test; false
// where the model has no such phase
bool feed_value(const fluid& f, double T, double P, root_choice r, given sp, double& out) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase ph;
    if (eval_phase(f, t, P, f.z.data(), r, ph)) return false;
    state_props c;
    caloric(f, T, ph.v, f.z.data(), c);
    out = sp == given::v ? c.v : sp == given::u ? c.u : sp == given::h ? c.h : c.s;
    return std::isfinite(out);
}

// The two-phase state at P by the simultaneous Newton iteration, started from a balance of the
// given property: Wilson's bubble and dew temperatures at P bound the two-phase region of the
// feed, the liquid feed at the one and the vapour feed at the other carry the property at the
// ends of that range, and the temperature where the linear balance between them reaches the
// value starts the iteration with Wilson's split there. Returns 0 with the state in st, or 1;
// t_hint is then the better start of the homogeneous search (the bubble temperature below the
// range, the dew temperature above it).
int balance_newton(const fluid& f, double P, given sp, double value, eq_state& st, double& t_hint) {
    if (!std::isfinite(value)) return 1;
    const double tb = wilson_saturation_t(f, P, true), td = wilson_saturation_t(f, P, false);
    if (!(tb >= f.tmin && td <= f.tmax && tb < td)) return 1;
    double al, av;
    if (!feed_value(f, tb, P, root_choice::liquid, sp, al) ||
        !feed_value(f, td, P, root_choice::vapour, sp, av) || !(al < av))
        return 1;
    if (value <= al || value >= av) {
        t_hint = value <= al ? tb : td;
        return 1;
    }
    const double T = tb + (value - al) / (av - al) * (td - tb);
    t_hint = T;
    vec lnk{}, K{};
    wilson_k(f, T, P, lnk.data());
    for (int i = 0; i < f.n; ++i) K[i] = std::exp(lnk[i]);
    eq_state start;
    start.T = T;
    start.P = P;
    start.fr.nphase = 2;
    if (rachford_rice(f.n, f.z.data(), K.data(), start.fr.beta, start.fr.x.data(),
                      start.fr.y.data()) != 0)
        return 1;
    two_phase_target target;
    target.first = sp;
    target.first_value = value;
    return two_phase_newton(f, target, start, st);
}

} // namespace

int flash_p(const fluid& f, double P, given sp, double value, eq_state& st, double t_guess,
            bool lenient) {
    if (f.n == 1 && P < f.comp[0].pc) {
        double Ts;
        phase l, v;
        const int es = pure_saturation_temperature(f, P, Ts, l, v);
        // a failed saturation is an error only away from the critical point: within a per mille
        // of it the two phases differ by less than rounding, and the stable root is searched
        // alone
        if (es != 0 && P < 0.999 * f.comp[0].pc) return es;
        if (es == 0 && Ts > f.tmin && Ts < f.tmax) {
            eq_state sl, sv;
            pure_two_phase_state(f, Ts, P, l, v, 0.0, sl);
            pure_two_phase_state(f, Ts, P, l, v, 1.0, sv);
            // the saturated phases as homogeneous states (the starts of the one-phase searches)
            flash_result fl, fv;
            fl.liq = fl.vap = l;
            fv.liq = fv.vap = v;
            fl.x[0] = fl.y[0] = fv.x[0] = fv.y[0] = 1.0;
            const double al = given_value(sl, sp), av = given_value(sv, sp);
            if (value >= al && value <= av) {
                pure_two_phase_state(f, Ts, P, l, v, (value - al) / (av - al), st);
                return 0;
            }
            eq_state edge;
            if (value < al) {
                state_from_flash(f, Ts, P, fl, edge);
                return search_t(f, P, sp, value, f.tmin, Ts, Ts, &edge, st, lenient);
            }
            state_from_flash(f, Ts, P, fv, edge);
            return search_t(f, P, sp, value, Ts, f.tmax, Ts, &edge, st, lenient);
        }
    }
    double t0 = t_guess > 0.0 ? t_guess : wilson_temperature(f, P);
    t0 = std::clamp(t0, f.tmin, f.tmax);
    if (f.n > 1) {
        // a two-phase state straight from the balance of the given property; otherwise its
        // bounds tell the side where the homogeneous search starts
        double t_hint = t0;
        if (balance_newton(f, P, sp, value, st, t_hint) == 0) return 0;
        if (!(t_guess > 0.0)) t0 = std::clamp(t_hint, f.tmin, f.tmax);
        // the homogeneous state of the stable root first (no stability test, a fraction of the
        // cost of a flash): where the flash confirms it, it is the answer; otherwise the
        // two-phase search starts from it
        eq_state hom;
        const int e = homogeneous_first(f, P, sp, value, t0, hom, lenient);
        if (e == 0) {
            st = hom;
            return 0;
        }
        if (e == newton_done) {
            st = hom;
            return 0;
        }
        if (e == start_found) {
            // inside the two-phase region: the simultaneous Newton iteration in the vapour
            // amounts and ln T from that split; the nested search where it fails
            if (hom.fr.nphase == 2) {
                two_phase_target target;
                target.free_t = true;
                target.first = sp;
                target.first_value = value;
                if (two_phase_newton(f, target, hom, st) == 0) return 0;
            }
            return search_t(f, P, sp, value, f.tmin, f.tmax, hom.T, &hom, st, lenient);
        }
    }
    return search_t(f, P, sp, value, f.tmin, f.tmax, t0, nullptr, st, lenient);
}

int flash_t(const fluid& f, double T, given sp, double value, eq_state& st, double p_guess,
            const eq_state* warm, bool lenient) {
    const double lnlo = std::log(search_pmin), lnhi = std::log(search_pmax);
    double Ps = 0.0;
    phase l, v;
    int es = 1;
    if (f.n == 1 && T < f.comp[0].tc) {
        es = pure_saturation_pressure(f, T, Ps, l, v);
        // a failed saturation is an error only away from the critical point (as in flash_p)
        if (es != 0 && T < 0.999 * f.comp[0].tc) return es;
    }
    if (es == 0) {
        eq_state sl, sv;
        pure_two_phase_state(f, T, Ps, l, v, 0.0, sl);
        pure_two_phase_state(f, T, Ps, l, v, 1.0, sv);
        const double al = given_value(sl, sp), av = given_value(sv, sp);
        if (value >= al && value <= av) {
            pure_two_phase_state(f, T, Ps, l, v, (value - al) / (av - al), st);
            return 0;
        }
        flash_result fl;
        eq_state edge;
        fl.x[0] = fl.y[0] = 1.0;
        if (value < al) { // compressed liquid, above the saturation pressure
            fl.liq = fl.vap = l;
            state_from_flash(f, T, Ps, fl, edge);
            return search_p(f, T, sp, value, std::log(Ps), lnhi, std::log(Ps), &edge, st);
        }
        fl.liq = fl.vap = v;
        state_from_flash(f, T, Ps, fl, edge);
        return search_p(f, T, sp, value, lnlo, std::log(Ps), std::log(Ps), &edge, st);
    }
    const double p0 = p_guess > 0.0 ? p_guess : wilson_pressure(f, T);
    return search_p(f, T, sp, value, lnlo, lnhi, std::log(std::clamp(p0, search_pmin, search_pmax)),
                    nullptr, st, warm, lenient);
}

int flash_hs(const fluid& f, double h, double s, eq_state& st) {
    double t_last = 0.0;
    int inner = 0;
    auto g = [&](double lnp, double& r) {
        eq_state cur;
        const int e = flash_p(f, std::exp(lnp), given::h, h, cur, t_last, true);
        if (e == out_below) return (inner = 3261), retry_closer;
        if (e == out_above) return (inner = 3260), retry_closer;
        if (e) return e;
        t_last = cur.T;
        r = (cur.s - s) / gas_constant;
        return 0;
    };
    // a start where the enthalpy lies within the temperature range: below the lowest
    // temperature's enthalpy the state lies at higher pressure (a liquid below the triple-point
    // pressure is out of range), above the highest temperature's at lower pressure
    double p0 = 1e5;
    for (int k = 0;; ++k) {
        eq_state probe;
        const int e = flash_p(f, p0, given::h, h, probe, 0.0, true);
        if (e == 0) {
            t_last = probe.T;
            break;
        }
        if (k == 12 || (e != out_below && e != out_above))
            return e == out_below ? 3261 : e == out_above ? 3260 : e;
        p0 = std::clamp(e == out_below ? 10.0 * p0 : 0.1 * p0, pmin, f.pmax);
    }
    const root_search rs{std::log(p0), 1.0, std::log(pmin), std::log(f.pmax), 1e-13, false};
    double x = rs.x0;
    const int e = find_root(g, rs, x);
    if (e == out_below) return 3262; // s above its value at the lowest pressure
    if (e == out_above) return 3263;
    if (e == retry_closer) return inner;
    if (e) return e;
    return flash_p(f, std::exp(x), given::h, h, st, t_last);
}

} // namespace varimol
