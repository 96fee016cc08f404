#include "refstate/dimnondim.hpp"

#include "base/common.hpp"
#include "base/zenvir.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

// LAPACK: solves A X = B for a general square A by LU decomposition with partial pivoting.
extern "C" void dgesv_(int* n, int* nrhs, double* a, int* lda, int* ipiv, double* b, int* ldb,
                       int* info);

namespace dimnondim {
namespace {

constexpr std::string_view module_name = "adim";
constexpr int n_base = 4; // mass, length, time, temperature
constexpr int n_rows = 10;

// Quantity symbols and the row of the exponent table that holds each one's dimension.
constexpr std::array<std::string_view, 12> variables = {"M", "L", "t", "T", "w", "e",
                                                        "h", "s", "R", "P", "d", "v"};
constexpr std::array<int, 12> vars2exps = {0, 1, 2, 3, 4, 5, 5, 6, 6, 7, 8, 9};

// Dimension of each row as exponents of mass, length, time and temperature.
constexpr double exponents[n_rows][n_base] = {
    // M   L   t   T
    {1, 0, 0, 0},   // M
    {0, 1, 0, 0},   // L
    {0, 0, 1, 0},   // t
    {0, 0, 0, 1},   // T
    {0, 1, -1, 0},  // w
    {0, 2, -2, 0},  // e, h
    {0, 2, -2, -1}, // s, R
    {1, -1, -2, 0}, // P
    {1, -3, 0, 0},  // d
    {-1, 3, 0, 0},  // v
};

bool table_set = false;
std::array<double, n_rows> scaling{};

// Row of the exponent table of symbol var; none for an unknown symbol or before the table is set.
std::optional<int> row_of(std::string_view var) {
    if (!table_set) return std::nullopt;
    const std::string_view symbol = zp_common::trim(var);
    for (std::size_t i = 0; i < variables.size(); ++i)
        if (variables[i] == symbol) return vars2exps[i];
    return std::nullopt;
}

// Records a failure of procedure sub: what, followed by its subject.
void report(std::string_view sub, std::string_view what, std::string_view subject) {
    zenvir::set_error(module_name, sub, std::string(what).append(zp_common::trim(subject)));
}

} // namespace

void setup_table() {
    table_set = true;
}

void setup_reference(std::span<const std::string_view, 4> ref_var,
                     std::span<const double, 4> ref_val) {
    setup_table();
    constexpr std::string_view sub = "setup_reference";

    // Column k of a: the dimension of reference quantity k (column-major, as LAPACK expects).
    std::array<double, n_base * n_base> a{};
    for (int k = 0; k < n_base; ++k) {
        const auto row = row_of(ref_var[k]);
        if (!row) return report(sub, "Unknown reference var ", ref_var[k]);
        for (int i = 0; i < n_base; ++i) a[k * n_base + i] = exponents[*row][i];
    }
    // Fractional powers of the reference values are taken below: only positive values have them.
    for (int k = 0; k < n_base; ++k) {
        if (!(std::isfinite(ref_val[k]) && ref_val[k] > 0.0)) {
            char value[32];
            std::snprintf(value, sizeof value, "%g for ", ref_val[k]);
            return report(sub, std::string("Reference value not positive: ") + value, ref_var[k]);
        }
    }

    // Column j of x: the powers of the four reference values whose product has the dimension of
    // row j.
    std::array<double, n_base * n_rows> x{};
    for (int j = 0; j < n_rows; ++j)
        for (int i = 0; i < n_base; ++i) x[j * n_base + i] = exponents[j][i];
    int n = n_base, nrhs = n_rows, lda = n_base, ldb = n_base, info = 0;
    std::array<int, n_base> ipiv{};
    dgesv_(&n, &nrhs, a.data(), &lda, ipiv.data(), x.data(), &ldb, &info);
    if (info != 0) return report(sub, "singular matrix for reference ", std::to_string(info));

    for (int j = 0; j < n_rows; ++j) {
        double scale = 1.0;
        for (int k = 0; k < n_base; ++k) scale *= std::pow(ref_val[k], x[j * n_base + k]);
        scaling[j] = scale;
    }
}

double scaling_value(std::string_view var) {
    const auto row = row_of(var);
    if (!row) {
        report("scaling_value", "Unknown variable ", var);
        return 0.0;
    }
    return scaling[*row];
}

double dim_value(std::string_view var, double nondim_val) {
    const auto row = row_of(var);
    if (!row) {
        report("dim_value", "Unknown variable ", var);
        return 0.0;
    }
    return nondim_val * scaling[*row];
}

double nondim_value(std::string_view var, double dim_val) {
    const auto row = row_of(var);
    if (!row) {
        report("nondim_value", "Unknown variable ", var);
        return 0.0;
    }
    // Tables set but no reference yet: there is no scale to divide by.
    if (scaling[*row] == 0.0) {
        report("nondim_value", "No reference scale for ", var);
        return 0.0;
    }
    return dim_val / scaling[*row];
}

} // namespace dimnondim
