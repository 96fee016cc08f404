#include "Import/tpsi_errors.hpp"

#include <algorithm>

namespace tpsi_zp {
namespace {

// The error codes of the TPSI back-end and their messages; a row may hold a range of codes.
struct codes_text {
    int first, last;
    std::string_view text;
};
// clang-format off
constexpr codes_text messages[] = {
    {1,  1,  "v < vmin"},
    {2,  2,  "T < Tmin"},
    {3,  3,  "T > Tmax"},
    {4,  4,  "No convergence."},
    {5,  5,  "Partial pressure of water greater than total pressure."},
    {6,  6,  "Vapor fraction greater than 1 and lower than 0."},
    {7,  7,  "P less than 0"},
    {8,  8,  "Relative humidity less than 0 or greater than 1."},
    {9,  9,  "P > Pc and saturation requested."},
    {10, 10, "P < Psat and saturation requested."},
    {21, 21, "Calculation type not supported (MEOS)."},
    {22, 23, "v outside limits."},
    {24, 26, "Second input variable not supported (supported h,s,u)."},
    {27, 27, "T = Tc and saturation requested."},
    {28, 28, "Calculation inside the vapor dome."},
    {50, 50, "Fluid not found."},
    {51, 51, "Fluid not included in the database (MEOS)."},
    {52, 52, "Fluid not included in the database (Ideal Gas)."},
    {53, 53, "Calculation type not supported (Moist. Air)"},
    {54, 54, "Critical point data not available for Moist. Air"},
    {60, 60, "Calculation type not supported (Air)."},
};
// clang-format on
constexpr std::string_view unknown = "Unknown error.";

} // namespace

void tpsi_errorstring(int ierr, std::string& errstr, std::size_t length) {
    const auto row =
        std::find_if(std::begin(messages), std::end(messages),
                     [ierr](const codes_text& r) { return r.first <= ierr && ierr <= r.last; });
    zp_errortext::put(row == std::end(messages) ? unknown : row->text, errstr, length);
}

} // namespace tpsi_zp
