#pragma once
// The caller's units: a named unit set ("SI", "Zentropia" or "ZP", "Anglo-Saxon") on a mass or
// mole basis, with optional overrides of single properties, turned into one conversion pair per
// property symbol: internal value = caller value * factor + offset. The internal units are the
// "Zentropia" set on a mass basis (bar, °C, m3/kg, kJ/kg, kJ/(kg K), Pa s, W/(m K), kg/mol).
// Unit texts are single-byte; the degree sign is the Latin-1 byte 0xB0 (callers may also pass
// the UTF-8 sign).
#include <array>
#include <string>
#include <string_view>

namespace zentropia_units {

inline constexpr int nsymbols = 27;
// Each property's unit description has 4 factor slots.
inline constexpr int nslots = 4 * nsymbols;

// rows in the fixed symbol order P, T, v, d, h, s, u, cp, cv, c, alpha, beta, chi, fi, ksi, psi,
// zeta, theta, kappa, eta, deta_dT, deta_drho, lambda, dlambda_dT, dlambda_dr, sigma, Mmol
enum class unit_row : int {
    P,
    T,
    v,
    d,
    h,
    s,
    u,
    cp,
    cv,
    c,
    alpha,
    beta,
    chi,
    fi,
    ksi,
    psi,
    zeta,
    theta,
    kappa,
    eta,
    deta_dT,
    deta_drho,
    lambda,
    dlambda_dT,
    dlambda_dr,
    sigma,
    Mmol
};

struct conversion_pair {
    double factor;
    double offset;
}; // internal = caller value * factor + offset

// Unit description of a set: per property the number of factors, and per slot the dimension
// symbol, the power and the unit text. Unused slots hold the unit "xxxxx" and power 0.
using factor_counts = std::array<int, nsymbols>;
using slot_texts = std::array<std::string_view, nslots>;
using slot_powers = std::array<double, nslots>;

// the stored pairs (read-only view)
const std::array<conversion_pair, nsymbols>& convfact();
// multiplies a row's factor (used by the reference state)
void scale_factor(unit_row row, double scale);
// the symbol text of a row
std::string_view symbolset(unit_row row);

// Chooses the units with the molar mass of the selected fluid (1.0 kg/mol when none is).
// propsymbol and propunit are comma-separated lists of symbols and their units ("T,P", "C,MPa").
void setunits(std::string_view unitset, std::string_view massormole, std::string_view propsymbol,
              std::string_view propunit, std::string& errormsg);
// The same with a given molar mass mmol in kg/mol.
void setunits_mmol(std::string_view unitset, std::string_view massormole,
                   std::string_view propsymbol, std::string_view propunit, double mmol,
                   std::string& errormsg);
// Re-applies the stored settings with the molar mass mmol (kg/mol) of one phase.
void setunits_phase(double mmol, std::string& errormsg);
// Re-applies the stored settings with the molar mass of the selected fluid.
void updateunits(std::string& errormsg);
// The last accepted arguments of setunits.
void getunits(std::string& unitset, std::string& massormole, std::string& propsymbol,
              std::string& propunit);
// The caller's unit of one property symbol, e.g. "kJ/kg/K"; "" and an error for an unknown one.
std::string getunit(std::string_view symbol, std::string& errormsg);
// Unit descriptions of the three sets on the basis massormole ("PerMole", else per mass).
void getunits_si(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit);
void getunits_zp(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit);
void getunits_as(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit);
// cf = (factor, offset) of the symbol's row; (1.0, 0.0) for an unknown symbol.
void getunitconvfact(std::string_view symbol, std::array<double, 2>& cf);
// The step setunits_mmol ran last ("Check mass or mole" ... "Unit conv factors"): tells where a
// failure arose.
std::string_view setunits_state();

} // namespace zentropia_units
