#include "units/zentropia_units.hpp"

#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "units/unitconverter.hpp"
#include "units/unitparser.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <span>

namespace zentropia_units {
namespace {

using zp_common::error_prefix;
using zp_common::trim;

constexpr std::array<std::string_view, nsymbols> symbols{
    "P",         "T",      "v",          "d",          "h",     "s",   "u",
    "cp",        "cv",     "c",          "alpha",      "beta",  "chi", "fi",
    "ksi",       "psi",    "zeta",       "theta",      "kappa", "eta", "deta_dT",
    "deta_drho", "lambda", "dlambda_dT", "dlambda_dr", "sigma", "Mmol"};

constexpr std::string_view per_mass = "PerMass";
constexpr std::string_view per_mole = "PerMole";
constexpr std::string_view unused_unit = "xxxxx";

// The degree sign is the Latin-1 byte 0xB0.
constexpr std::string_view deg_f = "\xB0"
                                   "F";
constexpr std::string_view deg_c = "\xB0"
                                   "C";
constexpr std::string_view deg_r = "\xB0"
                                   "R";

struct unit_slot {
    std::string_view prop;
    double power;
    std::string_view unit;
};
struct row_units {
    int n;
    std::array<unit_slot, 4> slots;
};
using set_table = std::array<row_units, nsymbols>;

// The SI set. Temperature factors are "T", except the temperature difference "dT" of zeta.
constexpr set_table si_set{{
    {1, {{{"P", 1, "Pa"}}}},                                                  // P
    {1, {{{"T", 1, "K"}}}},                                                   // T
    {2, {{{"L", 3, "m"}, {"M", -1, "kg"}}}},                                  // v
    {2, {{{"M", 1, "kg"}, {"L", -3, "m"}}}},                                  // d
    {2, {{{"E", 1, "J"}, {"M", -1, "kg"}}}},                                  // h
    {3, {{{"E", 1, "J"}, {"M", -1, "kg"}, {"T", -1, "K"}}}},                  // s
    {2, {{{"E", 1, "J"}, {"M", -1, "kg"}}}},                                  // u
    {3, {{{"E", 1, "J"}, {"M", -1, "kg"}, {"T", -1, "K"}}}},                  // cp
    {3, {{{"E", 1, "J"}, {"M", -1, "kg"}, {"T", -1, "K"}}}},                  // cv
    {1, {{{"c", 1, "m/s"}}}},                                                 // c
    {2, {{{"L", 2, "m"}, {"t", -2, "s"}}}},                                   // alpha
    {2, {{{"M", 1, "kg"}, {"L", -3, "m"}}}},                                  // beta
    {4, {{{"F", 1, "N"}, {"L", 4, "m"}, {"M", -2, "kg"}, {"T", -1, "K"}}}},   // chi
    {1, {{{"T", -1, "K"}}}},                                                  // fi
    {3, {{{"M", 2, "kg"}, {"F", -1, "N"}, {"L", -4, "m"}}}},                  // ksi
    {2, {{{"t", 2, "s"}, {"L", -2, "m"}}}},                                   // psi
    {3, {{{"M", 1, "kg"}, {"dT", 1, "K"}, {"L", -3, "m"}}}},                  // zeta
    {1, {{{"T", -1, "K"}}}},                                                  // theta
    {1, {{{"P", -1, "Pa"}}}},                                                 // kappa
    {2, {{{"P", 1, "Pa"}, {"t", 1, "s"}}}},                                   // eta
    {3, {{{"P", 1, "Pa"}, {"t", 1, "s"}, {"T", -1, "K"}}}},                   // deta_dT
    {4, {{{"P", 1, "Pa"}, {"t", 1, "s"}, {"L", 3, "m"}, {"M", -1, "kg"}}}},   // deta_drho
    {3, {{{"Pwr", 1, "W"}, {"L", -1, "m"}, {"T", -1, "K"}}}},                 // lambda
    {3, {{{"Pwr", 1, "W"}, {"L", -1, "m"}, {"T", -2, "K"}}}},                 // dlambda_dT
    {4, {{{"Pwr", 1, "W"}, {"L", 2, "m"}, {"M", -1, "kg"}, {"T", -1, "K"}}}}, // dlambda_dr
    {2, {{{"F", 1, "N"}, {"L", -1, "m"}}}},                                   // sigma
    {2, {{{"M", 1, "kg"}, {"N", -1, "mol"}}}},                                // Mmol
}};

// The "Zentropia" set, the internal units on a mass basis: the SI set with the pressure in bar
// (and kappa in 1/bar), the temperature in °C and energies in kJ. Temperature differences stay in
// K and the viscosity rows in Pa s.
constexpr set_table internal_units(set_table set) {
    const auto first_unit = [&set](unit_row row) -> std::string_view& {
        return set[static_cast<std::size_t>(row)].slots[0].unit;
    };
    first_unit(unit_row::P) = "bar";
    first_unit(unit_row::kappa) = "bar";
    first_unit(unit_row::T) = deg_c;
    for (row_units& row : set)
        for (unit_slot& slot : row.slots)
            if (slot.unit == "J") slot.unit = "kJ";
    return set;
}
constexpr set_table zp_set = internal_units(si_set);

// The Anglo-Saxon set. Its viscosity rows are written in lb, ft and s; entropy, heat capacities,
// chi, fi, theta and zeta use °R, the viscosity and conductivity rows °F (same degree size).
constexpr set_table as_set{{
    {1, {{{"P", 1, "psia"}}}},                                                       // P
    {1, {{{"T", 1, deg_f}}}},                                                        // T
    {2, {{{"L", 3, "ft"}, {"M", -1, "lb"}}}},                                        // v
    {2, {{{"M", 1, "lb"}, {"L", -3, "ft"}}}},                                        // d
    {2, {{{"E", 1, "Btu"}, {"M", -1, "lb"}}}},                                       // h
    {3, {{{"E", 1, "Btu"}, {"M", -1, "lb"}, {"T", -1, deg_r}}}},                     // s
    {2, {{{"E", 1, "Btu"}, {"M", -1, "lb"}}}},                                       // u
    {3, {{{"E", 1, "Btu"}, {"M", -1, "lb"}, {"T", -1, deg_r}}}},                     // cp
    {3, {{{"E", 1, "Btu"}, {"M", -1, "lb"}, {"T", -1, deg_r}}}},                     // cv
    {1, {{{"c", 1, "ft/s"}}}},                                                       // c
    {2, {{{"L", 2, "ft"}, {"t", -2, "s"}}}},                                         // alpha
    {2, {{{"M", 1, "lb"}, {"L", -3, "ft"}}}},                                        // beta
    {4, {{{"F", 1, "lbf"}, {"L", 4, "ft"}, {"M", -2, "lb"}, {"T", -1, deg_r}}}},     // chi
    {1, {{{"T", -1, deg_r}}}},                                                       // fi
    {3, {{{"M", 2, "lb"}, {"F", -1, "lbf"}, {"L", -4, "ft"}}}},                      // ksi
    {2, {{{"t", 2, "s"}, {"L", -2, "ft"}}}},                                         // psi
    {3, {{{"M", 1, "lb"}, {"dT", 1, deg_r}, {"L", -3, "ft"}}}},                      // zeta
    {1, {{{"T", -1, deg_r}}}},                                                       // theta
    {1, {{{"P", -1, "psia"}}}},                                                      // kappa
    {3, {{{"M", 1, "lb"}, {"L", -1, "ft"}, {"t", -1, "s"}}}},                        // eta
    {4, {{{"M", 1, "lb"}, {"L", -1, "ft"}, {"t", -1, "s"}, {"T", -1, deg_f}}}},      // deta_dT
    {2, {{{"L", 2, "ft"}, {"t", -1, "s"}}}},                                         // deta_drho
    {3, {{{"Pwr", 1, "Btu/h"}, {"L", -1, "ft"}, {"T", -1, deg_f}}}},                 // lambda
    {3, {{{"Pwr", 1, "Btu/h"}, {"L", -1, "ft"}, {"T", -2, deg_f}}}},                 // dlambda_dT
    {4, {{{"Pwr", 1, "Btu/h"}, {"L", 2, "ft"}, {"M", -1, "lb"}, {"T", -1, deg_f}}}}, // dlambda_dr
    {2, {{{"F", 1, "lbf"}, {"L", -1, "ft"}}}},                                       // sigma
    {2, {{{"M", 1, "lb"}, {"N", -1, "mol"}}}},                                       // Mmol
}};

// One full unit description.
struct description {
    factor_counts n_prop{};
    slot_texts prop{};
    slot_powers power{};
    slot_texts unit{};
};

// The override lists of setunits, split; descriptions built from them point into these texts.
struct override_lists {
    std::array<std::string, unitparser::max_entries> symbols;
    std::array<std::string, unitparser::max_entries> units;
    int n = 0;
};

constexpr std::size_t max_text = 256;
constexpr conversion_pair unit_pair{1.0, 0.0};

std::array<conversion_pair, nsymbols> factors = [] {
    std::array<conversion_pair, nsymbols> rows;
    rows.fill(unit_pair);
    return rows;
}();
std::string zp_unitset = "Zentropia";
std::string zp_massormole = std::string(per_mass);
std::string zp_propsymbol = " ";
std::string zp_propunit = " ";
// The stored settings compiled: per row the pair for a molar mass of 1 kg/mol and the power of
// the molar mass in the caller's unit, so that a phase's molar mass re-bases them without
// reading any text again.
std::array<conversion_pair, nsymbols> molar_base = factors;
std::array<double, nsymbols> molar_power{};
std::string_view state;

std::string error(std::string_view text) {
    return std::string(error_prefix) + std::string(text);
}

std::string quoted(std::string_view text) {
    std::string q;
    q.reserve(text.size() + 2);
    q += '"';
    q += trim(text);
    q += '"';
    return q;
}

// Row of a property symbol (trimmed comparison), -1 when unknown.
int symbol_index(std::string_view symbol) {
    symbol = trim(symbol);
    for (int i = 0; i < nsymbols; ++i)
        if (symbols[static_cast<std::size_t>(i)] == symbol) return i;
    return -1;
}

std::size_t slot_of(int row, int k) {
    return static_cast<std::size_t>(4 * row + k);
}

// Writes a set's description on a basis; per mole, every mass unit "kg" or "lb" becomes "mol".
void fill(const set_table& set, std::string_view massormole, factor_counts& n_prop,
          slot_texts& prop, slot_powers& power, slot_texts& unit) {
    const bool molar = trim(massormole) == per_mole;
    for (int i = 0; i < nsymbols; ++i) {
        const row_units& row = set[static_cast<std::size_t>(i)];
        n_prop[static_cast<std::size_t>(i)] = row.n;
        for (int k = 0; k < 4; ++k) {
            const std::size_t s = slot_of(i, k);
            const unit_slot& u = row.slots[static_cast<std::size_t>(k)];
            const bool used = k < row.n;
            prop[s] = used ? u.prop : std::string_view{};
            power[s] = used ? u.power : 0.0;
            unit[s] = !used                                         ? unused_unit
                      : molar && (u.unit == "kg" || u.unit == "lb") ? "mol"
                                                                    : u.unit;
        }
    }
}

void fill(const set_table& set, std::string_view massormole, description& d) {
    fill(set, massormole, d.n_prop, d.prop, d.power, d.unit);
}

// The caller's description of a named set; false and the error for an unknown name.
bool named_set(std::string_view unitset, std::string_view massormole, description& d,
               std::string& errormsg) {
    const auto name = trim(unitset);
    if (name == "SI")
        fill(si_set, massormole, d);
    else if (name == "ZP" || name == "Zentropia")
        fill(zp_set, massormole, d);
    else if (name == "Anglo-Saxon")
        fill(as_set, massormole, d);
    else {
        errormsg = error("Unit set " + quoted(unitset) + " unknown");
        return false;
    }
    return true;
}

// Splits the two override lists; the unit list may carry UTF-8 degree signs.
bool split_lists(std::string_view propsymbol, std::string_view propunit, override_lists& lists,
                 std::string& errormsg) {
    int nunits = 0;
    unitparser::strtoarr(propsymbol, lists.symbols, lists.n, errormsg);
    if (zp_common::is_ok(errormsg))
        unitparser::strtoarr(unitparser::latin1_degrees(propunit), lists.units, nunits, errormsg);
    if (!zp_common::is_ok(errormsg)) return false;
    if (lists.n != nunits) {
        errormsg = error("number of properties does not equal number units.");
        return false;
    }
    return true;
}

// Replaces the caller's description of each overridden property by its unit text. The dimension
// of each factor is the one the internal description of the property uses in that slot when it
// reads the unit, else another of the property's dimensions, else any that reads it.
bool apply_overrides(const override_lists& lists, const description& target, description& src,
                     std::string& errormsg) {
    for (std::size_t e = 0; e < static_cast<std::size_t>(lists.n); ++e) {
        const int i = symbol_index(lists.symbols[e]);
        if (i < 0) {
            errormsg = error("property symbol " + quoted(lists.symbols[e]) + " unknown.");
            return false;
        }
        unitparser::unit_factors parsed;
        int n = 0;
        if (!unitparser::split_unit(lists.units[e], parsed, n)) {
            errormsg = error("unable to convert unit: " + lists.units[e]);
            return false;
        }
        const int ntarget = target.n_prop[static_cast<std::size_t>(i)];
        src.n_prop[static_cast<std::size_t>(i)] = n;
        for (int k = 0; k < 4; ++k) {
            const std::size_t s = slot_of(i, k);
            if (k >= n) {
                src.prop[s] = {};
                src.power[s] = 0.0;
                src.unit[s] = unused_unit;
                continue;
            }
            std::array<std::string_view, 5> preferred{};
            preferred[0] = target.prop[slot_of(i, std::min(k, ntarget - 1))];
            for (int j = 0; j < ntarget; ++j)
                preferred[static_cast<std::size_t>(j + 1)] = target.prop[slot_of(i, j)];
            const auto unit = parsed[static_cast<std::size_t>(k)].unit;
            const int d = unitconverter::unit_prop_index(unit, preferred);
            // An unreadable unit keeps the slot's dimension, so that it is reported as unknown.
            src.prop[s] = d >= 0 ? unitconverter::symbolset(d) : preferred[0];
            src.power[s] = parsed[static_cast<std::size_t>(k)].power;
            src.unit[s] = unit;
        }
    }
    return true;
}

const description& internal_description() {
    static const description target = [] {
        description d;
        fill(zp_set, per_mass, d);
        return d;
    }();
    return target;
}

// A mole of the fluid written as a mass ("mol", "kmol" in the mass dimension), whatever the slot
// or the target unit: it is worth the molar mass in kg.
bool is_mole_factor(std::string_view prop, std::string_view unit) {
    const int mass = unitconverter::prop_index("M");
    return unitconverter::prop_index(prop) == mass &&
           unitconverter::get_unit_symbol(mass, unit) == "mol";
}

std::string molar_mass_error(double mmol) {
    char value[32];
    std::snprintf(value, sizeof value, "%g", mmol);
    return error("molar mass " + std::string(value) + " kg/mol unusable for a per-mole unit");
}

// mmol^p; the small integer powers of units by products, as this runs for every phase.
double molar_factor(double mmol, double p) {
    const double n = std::fabs(p);
    if (n != std::floor(n) || n > 8.0) return std::pow(mmol, p);
    double f = 1.0;
    for (int k = 0; k < static_cast<int>(n); ++k) f *= mmol;
    return p < 0.0 ? 1.0 / f : f;
}

// Sets the pairs for the molar mass mmol (kg/mol): a mole of the fluid weighs mmol kg, so a unit
// holding mol^p takes the factor mmol^p. A molar mass that is needed and not positive and finite
// leaves every pair (1, 0).
bool rebase(const std::array<conversion_pair, nsymbols>& base,
            const std::array<double, nsymbols>& power, double mmol, std::string& errormsg) {
    for (const double p : power)
        if (p != 0.0 && !(std::isfinite(mmol) && mmol > 0.0)) {
            factors.fill(unit_pair);
            errormsg = molar_mass_error(mmol);
            return false;
        }
    for (std::size_t i = 0; i < factors.size(); ++i)
        factors[i] = {molar_factor(mmol, power[i]) * base[i].factor, base[i].offset};
    return true;
}

// The one call into the fluid selection: the molar mass of the selected fluid in kg/mol, 1.0 when
// none is selected.
double selected_molar_mass() {
    std::string msg;
    const double mmol = zentropia_base::zp_mmol(msg);
    return zp_common::is_ok(msg) ? mmol : 1.0;
}

// "kJ/kg/K", "m^3/kg", "N.m^4/kg^2/K", "K^-1": factors with a positive power joined by ".", then
// each one with a negative power after "/".
std::string unit_text(const description& d, int row) {
    std::string text;
    const int n = d.n_prop[static_cast<std::size_t>(row)];
    for (bool positive : {true, false})
        for (int k = 0; k < n; ++k) {
            const double p = d.power[slot_of(row, k)];
            if (p == 0.0 || (p > 0.0) != positive) continue;
            // A unit with no factor of positive power starts with its power written out: "K^-1".
            const bool leading = text.empty();
            if (!leading) text += positive ? "." : "/";
            text += d.unit[slot_of(row, k)];
            const long written = static_cast<long>(leading || positive ? p : -p);
            if (written != 1) text.append("^").append(std::to_string(written));
        }
    return text.empty() ? "1" : text;
}

} // namespace

const std::array<conversion_pair, nsymbols>& convfact() {
    return factors;
}

void scale_factor(unit_row row, double scale) {
    factors[static_cast<std::size_t>(row)].factor *= scale;
}

std::string_view symbolset(unit_row row) {
    return symbols[static_cast<std::size_t>(row)];
}

void setunits(std::string_view unitset, std::string_view massormole, std::string_view propsymbol,
              std::string_view propunit, std::string& errormsg) {
    setunits_mmol(unitset, massormole, propsymbol, propunit, selected_molar_mass(), errormsg);
}

void setunits_mmol(std::string_view unitset, std::string_view massormole,
                   std::string_view propsymbol, std::string_view propunit, double mmol,
                   std::string& errormsg) {
    factors.fill(unit_pair);
    errormsg = zp_common::no_errors;
    for (const auto text : {unitset, massormole, propsymbol, propunit})
        if (trim(text).size() > max_text) {
            errormsg = error("unit settings text longer than 256 characters");
            return;
        }

    state = "Check mass or mole";
    const auto basis = trim(massormole);
    if (basis != per_mass && basis != per_mole) {
        errormsg = error("units not specified as \"PerMass\" or \"PerMole\".");
        return;
    }

    state = "General unit settings";
    const description& target = internal_description();
    description src;
    if (!named_set(unitset, massormole, src, errormsg)) return;

    state = "Check specific unit settings";
    override_lists lists;
    if (!split_lists(propsymbol, propunit, lists, errormsg)) return;

    state = "Store specific unit settings";
    if (!apply_overrides(lists, target, src, errormsg)) return;

    // The pairs are kept aside until every row converts: a failure leaves all rows (1, 0).
    std::array<conversion_pair, nsymbols> base;
    std::array<double, nsymbols> power{};
    for (int i = 0; i < nsymbols; ++i) {
        const std::size_t row = static_cast<std::size_t>(i);
        const int src_n = src.n_prop[row];

        state = "Mass mole conversion";
        for (int k = 0; k < src_n; ++k) {
            const std::size_t s = slot_of(i, k);
            if (is_mole_factor(src.prop[s], src.unit[s])) power[row] += src.power[s];
        }

        state = "Unit conv factors";
        std::array<double, 2> cf{1.0, 0.0};
        int err_cod = 0;
        const auto slots = [first = slot_of(i, 0)](const auto& all) {
            return std::span(all).subspan(first, 4);
        };
        unitconverter::unitconvert(src_n, slots(src.prop), slots(src.power), slots(src.unit),
                                   target.n_prop[row], slots(target.prop), slots(target.power),
                                   slots(target.unit), cf, err_cod);
        switch (err_cod) {
        case unitconverter::ok:
            break;
        case unitconverter::unknown_property:
            errormsg = error("unknown property");
            return;
        case unitconverter::unknown_both_units:
            errormsg = error("unknown source and target unit");
            return;
        case unitconverter::unknown_source_unit:
            errormsg = error("unknown source unit");
            return;
        case unitconverter::unknown_target_unit:
            errormsg = error("unknown target unit");
            return;
        default:
            errormsg = error("unable to convert unit");
            return;
        }
        base[row] = {cf[0], cf[1]};
    }
    if (!rebase(base, power, mmol, errormsg)) return;

    molar_base = base;
    molar_power = power;
    zp_unitset = std::string(unitset);
    zp_massormole = std::string(massormole);
    zp_propsymbol = std::string(propsymbol);
    zp_propunit = std::string(propunit);
}

void setunits_phase(double mmol, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    rebase(molar_base, molar_power, mmol, errormsg);
}

void updateunits(std::string& errormsg) {
    const std::string unitset = zp_unitset, massormole = zp_massormole;
    const std::string propsymbol = zp_propsymbol, propunit = zp_propunit;
    setunits(unitset, massormole, propsymbol, propunit, errormsg);
}

void getunits(std::string& unitset, std::string& massormole, std::string& propsymbol,
              std::string& propunit) {
    unitset = zp_unitset;
    massormole = zp_massormole;
    propsymbol = zp_propsymbol;
    propunit = zp_propunit;
}

std::string getunit(std::string_view symbol, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    const int row = symbol_index(symbol);
    if (row < 0) {
        errormsg = error("property symbol " + quoted(symbol) + " unknown.");
        return {};
    }
    // The stored settings were accepted once, so they describe the caller's units again.
    description src;
    override_lists lists;
    if (!named_set(zp_unitset, zp_massormole, src, errormsg) ||
        !split_lists(zp_propsymbol, zp_propunit, lists, errormsg) ||
        !apply_overrides(lists, internal_description(), src, errormsg))
        return {};
    return unit_text(src, row);
}

void getunits_si(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit) {
    fill(si_set, massormole, n_prop, prop, power, unit);
}

void getunits_zp(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit) {
    fill(zp_set, massormole, n_prop, prop, power, unit);
}

void getunits_as(std::string_view massormole, factor_counts& n_prop, slot_texts& prop,
                 slot_powers& power, slot_texts& unit) {
    fill(as_set, massormole, n_prop, prop, power, unit);
}

void getunitconvfact(std::string_view symbol, std::array<double, 2>& cf) {
    const int row = symbol_index(symbol);
    cf = row < 0 ? std::array<double, 2>{1.0, 0.0}
                 : std::array<double, 2>{factors[static_cast<std::size_t>(row)].factor,
                                         factors[static_cast<std::size_t>(row)].offset};
}

std::string_view setunits_state() {
    return state;
}

} // namespace zentropia_units
