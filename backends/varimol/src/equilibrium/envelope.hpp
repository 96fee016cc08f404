#pragma once
// The phase envelope of a mixture of fixed composition z: the bubble and dew curves joined at
// the critical point, traced by Michelsen's continuation (Fluid Phase Equilib. 4 (1980) 1;
// Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 12). Unknowns
// X = (ln K_1..ln K_n, ln T, ln P); equations
//   ln K_i + ln phi_i(y) - ln phi_i(x) = 0,   sum_i (y_i - x_i) = 0,   X_s = S,
// with x = z, y_i = K_i z_i on the bubble side and y = z, x_i = z_i/K_i on the dew side. The
// specified variable X_s is the one that changes most along the curve (largest dX/dS), the
// next point is predicted from the sensitivities dX/dS and the step follows the Newton
// iteration count. Near the critical point the specified ln K is stepped across zero; the
// critical point is inserted between the two points where the ln K change sign.
#include "equilibrium/flash_tp.hpp"
#include "model/properties.hpp"

namespace varimol {

struct envelope_summary {
    int npoints = 0;                 // points traced (the critical point included)
    bool has_critical = false;       // the curve passed a critical point
    double t_crit = 0.0, p_crit = 0.0;                   // K, Pa
    double t_cricondentherm = 0.0, p_cricondentherm = 0.0; // highest temperature and its P
    double t_cricondenbar = 0.0, p_cricondenbar = 0.0;     // highest pressure and its T
};

// Receives the points in order along the curve: liquid composition x, vapour composition y
// (both z at the critical point). Returns false when it can take no more.
class envelope_sink {
public:
    virtual bool add(double T, double P, const vec& x, const vec& y) = 0;
    // reverses the order of the points received so far
    virtual void reverse_order() = 0;

protected:
    ~envelope_sink() = default;
};

// Traces the envelope of the configured mixture from the bubble point at p_start (Pa) round to
// the dew point at p_start, along the boundary of the single-phase region: past a three-phase
// point the phase that appeared there is traced as the incipient one. A feed that is split at
// its bubble point at p_start is traced from its dew point instead, and the sink's points are
// reversed at the end. `sink` may be null (only the summary is wanted). The cricondenbar
// and cricondentherm are the extremes of the traced curve, located where dP/dS or dT/dS
// vanishes. Codes: 0; 450 no convergence (the step became too small, or the curve left the
// model's range); 451 no bubble point at p_start (or not a mixture); 452 the sink is full;
// 453 the critical point between two points could not be located.
int trace_envelope(const fluid& f, double p_start, envelope_sink* sink, envelope_summary& s);

// A point of the envelope between two traced points of one side of it (or one of them the
// critical point, ln K = 0): ends a and b hold (ln K_1..ln K_n, ln T, ln P), lnk = ln(y_i/x_i).
// The point of given T (given_t) or P between them is found along the curve: the envelope's
// Newton iteration specifies the unknown that changes most between the ends, and the regula
// falsi moves it until ln T or ln P reaches the given value; this stays well conditioned where
// the given P lies close to the curve's highest pressure. dew: the feed is the vapour. T (K) or
// P (Pa) carries the given value in and both come out; out gets the two phases. Returns 0, or 1
// when the given value does not lie between the ends or the iteration fails.
int envelope_point(const fluid& f, bool dew, bool given_t, const double* a, const double* b,
                   double& T, double& P, flash_result& out);

// The cricondenbar and cricondentherm of the configured mixture (the envelope traced from
// 1 bar, nothing stored); for the limits of the points of given vapour fraction.
int envelope_limits(const fluid& f, envelope_summary& s);

} // namespace varimol
