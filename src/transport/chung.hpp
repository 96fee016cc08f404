#pragma once
// The corresponding-states transport model of Chung, Ajlan, Lee and Starling (1988) for pure
// fluids and mixtures: viscosity and thermal conductivity from the dilute gas to the dense liquid,
// with their temperature and density derivatives, and the surface tension of Brock and Bird.
// Sources: docs/references.md. Units are stated at each declaration; temperatures in K.
#include <array>
#include <span>
#include <string>

namespace chung {

inline constexpr int max_components = 20;
inline constexpr int max_planck_einstein_terms = 12;

// What the model needs to know of one component (one fluid text of the transport library).
struct component {
    double tc = 0.0;         // critical temperature, K
    double vc = 0.0;         // critical molar volume, m³/mol
    double acentric = 0.0;   // acentric factor, -
    double dipole = 0.0;     // dipole moment, debye
    double molar_mass = 0.0; // kg/mol
    double kappa = 0.0;      // association factor of strongly polar fluids, -
    double tb = 0.0;         // normal boiling temperature, K (0: unknown)
    double pc = 0.0;         // critical pressure, Pa (0: unknown)
    // ideal-gas heat capacity cp0/R = a0 + a1 T + a2 T² + a3 T³ + a4 T⁴ (all 0: no polynomial)
    std::array<double, 5> cp0_poly{};
    double cp0_tmin = 0.0, cp0_tmax = 0.0; // K, range of the polynomial
    // ideal-gas heat capacity cp0/R = c0 + Σ v_k (θ_k/T)² e^(θ_k/T) / (e^(θ_k/T) - 1)²
    // (c0 = 0: no such form)
    double pe_c0 = 0.0;
    int pe_terms = 0;
    std::array<double, max_planck_einstein_terms> pe_v{}, pe_theta{}; // -, K
};

// A fluid of up to 20 components as the model sees it: the components, their mole fractions and
// the Chung pseudo-pure fluid that the mixing rules make of them, fixed when the fluid is chosen.
struct mixture {
    int n = 0;
    std::array<component, max_components> comp{};
    std::array<double, max_components> x{}; // mole fractions, summing to 1
    double mean_molar_mass = 0.0;           // Σ x_i M_i, kg/mol: turns mass into moles
    // the pseudo-pure fluid
    double tc = 0.0;            // K
    double vc = 0.0;            // cm³/mol
    double vc23 = 0.0;          // Vc^(2/3), (cm³/mol)^(2/3)
    double omega = 0.0;         // -
    double molar_mass = 0.0;    // Chung's mixture molar mass, g/mol
    double mu_r = 0.0;          // reduced dipole moment, -
    double kappa = 0.0;         // -
    double fc = 0.0;            // shape and polarity factor F_c, -
    std::array<double, 10> e{}; // viscosity coefficients E_1..E_10
    std::array<double, 7> b{};  // conductivity coefficients B_1..B_7
    bool has_cp0 = false;       // every component has an ideal-gas heat capacity
    // surface tension: pseudo-critical temperature (K), whether every component has Pc, and per
    // component the factor of (1 - Tr)^(11/9) in N/m
    double tc_surface = 0.0;
    bool has_surface = false;
    std::array<double, max_components> surface_factor{};
};

// Results at one state; -8888.8 marks what the data does not allow.
struct properties {
    double eta = 0.0, eta_t = 0.0, eta_rho = 0.0;          // Pa s, Pa s/K, Pa s m³/kg
    double lambda = 0.0, lambda_t = 0.0, lambda_rho = 0.0; // W/(m K), W/(m K²), W m²/(kg K)
    double sigma = 0.0;                                    // N/m
};

// Applies Chung's mixing rules to the components and mole fractions (normalised here); false with
// a text when the data cannot describe a fluid.
bool make_mixture(std::span<const component> comps, std::span<const double> x, mixture& m,
                  std::string& errormsg);
// All properties at temperature t (K) and mass density rho (kg/m³); no allocation.
void evaluate(const mixture& m, double t, double rho, properties& out);

// The pieces, for checks against published worked examples:
// Neufeld's reduced collision integral Ω_v at T* = T k/ε
double collision_integral(double tstar);
// low-pressure viscosity at t (K), Pa s
double dilute_viscosity(const mixture& m, double t);
// viscosity at t (K) and molar density rho_molar (mol/m³) with the low-pressure value eta0 (Pa s)
double dense_viscosity(const mixture& m, double t, double rho_molar, double eta0);
// low-pressure conductivity from viscosity eta0 (Pa s) and ideal-gas cv (J/(mol K)), W/(m K)
double dilute_conductivity(const mixture& m, double t, double eta0, double cv);
// conductivity at t (K) and molar density rho_molar (mol/m³), W/(m K)
double dense_conductivity(const mixture& m, double t, double rho_molar, double eta0, double cv);
// ideal-gas isochoric heat capacity of a component at t (K), J/(mol K)
double ideal_gas_cv(const component& c, double t);
// surface tension at t (K), N/m; -8888.8 at or above the pseudo-critical temperature
double surface_tension(const mixture& m, double t);

} // namespace chung
