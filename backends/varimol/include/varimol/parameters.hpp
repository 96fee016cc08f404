#pragma once
// The fluid parameters of the cubic back-end, as the fluid data layer writes them (fluid texts
// "<name>.vmx" in the fluid database or in a fluid file) and as vm3_setfluid reads them.
//
// fluidparameters(16 x 20): one column of 16 rows per component, column-major like the fixed
// arrays of the back-end's entry points; binaryparameters(5 x 20 x 20): 5 values per ordered pair
// (i, j). Rows, kinds and components are counted from 0 here; data/fluids/README.md counts the
// lines of a fluid text from 1.
#include <array>
#include <cstddef>

namespace varimol {

inline constexpr int max_components = 20;
inline constexpr int component_rows = 16;
inline constexpr int binary_kinds = 5;

// Rows of a component's column, each with its unit.
enum component_row : int {
    row_id = 0,        // identifying number: the CAS registry number without dashes
    row_mole_fraction, // -
    row_tc,            // critical temperature, K
    row_pc,            // critical pressure, Pa
    row_acentric,      // acentric factor, -
    row_molar_mass,    // kg/mol
    row_kappa1,        // Stryjek-Vera kappa1 of the PRSV alpha, - (0 where unknown)
    row_cp0_a0,        // ideal-gas heat capacity cp0/R = a0 + a1 T + a2 T^2 + a3 T^3 + a4 T^4,
    row_cp0_a1,        //   T in K: a0 (-), a1 (1/K), a2 (1/K^2), a3 (1/K^3), a4 (1/K^4)
    row_cp0_a2,
    row_cp0_a3,
    row_cp0_a4,
    row_cp0_tmin, // lower end of the cp0 polynomial's range, K
    row_cp0_tmax, // upper end of the cp0 polynomial's range, K
    row_ttriple,  // triple-point temperature, K (0 where unknown)
    row_vc,       // critical molar volume of the data, m^3/mol (0 where unknown)
};

// Kinds of binary parameter of the ordered pair (i, j).
enum binary_kind : int {
    bin_kij = 0,    // van der Waals one-fluid kij = kji, -
    bin_nrtl_tau,   // NRTL tau_ij (dimensionless, constant) for Wong-Sandler mixing
    bin_nrtl_alpha, // NRTL non-randomness alpha_ij = alpha_ji, -
    bin_ws_kij,     // Wong-Sandler k_ij = k_ji of the second virial cross term, -
    bin_reserved,   // written as 0
};

// model_code: the cubic equation of state plus 10 for Wong-Sandler mixing (van der Waals
// one-fluid mixing otherwise). Wong-Sandler mixing is offered for the Peng-Robinson family.
inline constexpr int model_prsv_vdw = 1; // Peng-Robinson with the Stryjek-Vera alpha (PRSV)
inline constexpr int model_pr_vdw = 2;   // Peng-Robinson with the 1978 alpha
inline constexpr int model_srk_vdw = 3;  // Soave-Redlich-Kwong
inline constexpr int model_prsv_ws = 11; // PRSV, Wong-Sandler with NRTL
inline constexpr int model_pr_ws = 12;   // Peng-Robinson 1978, Wong-Sandler with NRTL

using fluid_parameters = std::array<double, component_rows * max_components>;
using binary_parameters = std::array<double, binary_kinds * max_components * max_components>;

// position of fluidparameters(row, component)
constexpr std::size_t parameter_index(int row, int component) {
    return static_cast<std::size_t>(component * component_rows + row);
}
// position of binaryparameters(kind, i, j)
constexpr std::size_t binary_index(int kind, int i, int j) {
    return static_cast<std::size_t>((j * max_components + i) * binary_kinds + kind);
}

} // namespace varimol
