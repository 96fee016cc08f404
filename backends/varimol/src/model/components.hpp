#pragma once
// The configured fluid: the parameter rows of every component, the binary parameters, the cubic
// and its mixing rule, and the limits of the model. Filled once, by set_fluid, from the
// parameter arrays of the fluid data layer (varimol/parameters.hpp).
#include "model/alpha.hpp"
#include "model/cubic.hpp"
#include "varimol/parameters.hpp"

#include <array>

namespace varimol {

inline constexpr int mc = max_components;
using vec = std::array<double, mc>;
using mat = std::array<double, mc * mc>; // (i, j) at i * mc + j

struct component {
    double id;         // CAS number without dashes
    double tc, pc;     // K, Pa
    double acentric;   // -
    double molar_mass; // kg/mol
    double kappa1;     // -
    std::array<double, 5> cp0; // cp0/R polynomial coefficients, T in K
    double cp0_tmin, cp0_tmax; // K
    double ttriple, vc;        // K, m3/mol (0 where unknown)
    double ac;                 // a at Tc: Omega_a R^2 Tc^2 / Pc, Pa m6/mol2
    double sqrt_ac;            // sqrt(ac)
    double b;                  // covolume Omega_b R Tc / Pc, m3/mol
    double kappa0;             // constant part of the alpha function's kappa
    double ln_pc;              // ln(pc / Pa)
};

struct fluid {
    int model_code = 0;
    int n = 0;       // active components (mole fraction > 0)
    int n_given = 0; // components of the parameter arrays
    std::array<int, mc> given_index{}; // position of active component i in the caller's list
    cubic_family eos{};
    alpha_kind alpha = alpha_kind::prsv;
    bool wong_sandler = false;
    std::array<component, mc> comp{};
    vec z{};          // overall mole fractions, normalised
    mat one_minus_k{}; // van der Waals: 1 - kij
    mat tau{}, g{};    // NRTL tau_ij and G_ij = exp(-alpha_ij tau_ij)
    mat one_minus_ws{}; // Wong-Sandler: 1 - k_ij of the cross second virial term
    double ws_c = 0.0;  // C of the Wong-Sandler rule, ln(sqrt2 - 1)/sqrt2 for Peng-Robinson
    // limits and estimates
    double molar_mass = 0.0;        // kg/mol
    double tmin = 0.0, tmax = 0.0;  // K
    double pmax = 1.0e8;            // Pa
    double tcrit = 0.0, pcrit = 0.0, vcrit = 0.0; // K, Pa, m3/mol (pure: exact; mixture: pseudo)
};

// Configures `f` from the parameter arrays. Returns 0, 100 (mole fractions negative or not
// adding up to 1 within 1e-6) or 101 (unknown model code, component count outside 1..20, or a
// parameter row that is not finite or not physical). `f` is left unchanged on failure.
int set_fluid(fluid& f, int model_code, const fluid_parameters& fp, const binary_parameters& bp,
              int n_comps);

// The same fluid reduced to its active component i alone (for pure-fluid saturation).
void pure_fluid(const fluid& f, int i, fluid& pure);

} // namespace varimol
