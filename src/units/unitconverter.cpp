#include "units/unitconverter.hpp"

#include "base/common.hpp"

#include <cmath>
#include <cstddef>

namespace unitconverter {
namespace {

struct prefix_record {
    std::string_view symbol;
    double conv_fact;
};

// SI prefixes, BIPM SI Brochure (9th ed., 2019), table 7; "mu" stands for the micro sign.
constexpr std::array<prefix_record, 21> prefix_table{{
    {"y", 1e-24}, {"z", 1e-21}, {"a", 1e-18}, {"f", 1e-15}, {"p", 1e-12}, {"n", 1e-9}, {"mu", 1e-6},
    {"m", 1e-3},  {"c", 1e-2},  {"d", 1e-1},  {"", 1.0},    {"da", 1e1},  {"h", 1e2},  {"k", 1e3},
    {"M", 1e6},   {"G", 1e9},   {"T", 1e12},  {"P", 1e15},  {"E", 1e18},  {"Z", 1e21}, {"Y", 1e24},
}};

struct unit_record {
    std::string_view symbol;
    double factor; // value in the first unit = value * factor + offset
    double offset;
};

struct dimension_record {
    std::string_view symbol;
    std::array<unit_record, 6> units; // unused slots have an empty symbol
};

// Units of each dimension, converted to the first unit of the row. The mass row counts the mole
// as 1000 g: a per-mole unit has been multiplied by the molar mass in kg/mol before it gets here.
// The degree sign is the Latin-1 byte 0xB0.
constexpr std::array<dimension_record, ndimensions> unit_table{{
    {"L",
     {{{"m", 1, 0}, {"in", 0.0254, 0}, {"ft", 0.3048, 0}, {"yd", 0.9144, 0}, {"mi", 1609.344, 0}}}},
    {"M", {{{"g", 1, 0}, {"mol", 1000, 0}, {"oz", 28.349523125, 0}, {"lb", 453.59237, 0}}}},
    {"t", {{{"s", 1, 0}, {"min", 60, 0}, {"h", 3600, 0}, {"d", 86400, 0}, {"y", 31536000, 0}}}},
    {"T",
     {{{"K", 1, 0},
       {"\xB0"
        "C",
        1, 273.15},
       {"\xB0"
        "F",
        5.0 / 9.0, 255.3722222222222},
       {"\xB0"
        "R",
        5.0 / 9.0, 0}}}},
    {"dT",
     {{{"K", 1, 0},
       {"\xB0"
        "C",
        1, 0},
       {"\xB0"
        "F",
        5.0 / 9.0, 0},
       {"\xB0"
        "R",
        5.0 / 9.0, 0}}}},
    {"A",
     {{{"m2", 1, 0},
       {"a", 100, 0},
       {"acre", 4046.8564224, 0},
       {"sq in", 0.00064516, 0},
       {"sq ft", 0.09290304, 0},
       {"sq yd", 0.83612736, 0}}}},
    {"V",
     {{{"m3", 1, 0},
       {"L", 0.001, 0},
       {"cc", 1e-6, 0},
       {"cu in", 1.6387064e-5, 0},
       {"cu ft", 0.028316846592, 0},
       {"cu yd", 0.764554857984, 0}}}},
    {"c", {{{"m/s", 1, 0}, {"ft/s", 0.3048, 0}, {"mph", 0.44704, 0}, {"kn", 0.514444, 0}}}},
    {"F", {{{"N", 1, 0}, {"gf", 0.00980665, 0}, {"lbf", 4.448222, 0}}}},
    {"P",
     {{{"Pa", 1, 0},
       {"bar", 100000, 0},
       {"atm", 101325, 0},
       {"mHg", 133322, 0},
       {"psia", 6894.757, 0}}}},
    {"E", {{{"J", 1, 0}, {"Wh", 3600, 0}, {"Btu", 1055.056, 0}, {"cal", 4.1868, 0}}}},
    {"Pwr", {{{"W", 1, 0}, {"Btu/h", 0.293071, 0}, {"hp", 735.499, 0}}}},
    {"N", {{{"mol", 1, 0}}}},
}};

// Exponents of each dimension in the base dimensions (L, M, t, T, dT, N), in table order.
constexpr int nbase = 6;
constexpr std::array<std::array<int, nbase>, ndimensions> conv_matrix{{
    {1, 0, 0, 0, 0, 0},   // L
    {0, 1, 0, 0, 0, 0},   // M
    {0, 0, 1, 0, 0, 0},   // t
    {0, 0, 0, 1, 0, 0},   // T
    {0, 0, 0, 0, 1, 0},   // dT
    {2, 0, 0, 0, 0, 0},   // A
    {3, 0, 0, 0, 0, 0},   // V
    {1, 0, -1, 0, 0, 0},  // c
    {1, 1, -2, 0, 0, 0},  // F
    {-1, 1, -2, 0, 0, 0}, // P
    {2, 1, -2, 0, 0, 0},  // E
    {2, 1, -3, 0, 0, 0},  // Pwr
    {0, 0, 0, 0, 0, 1},   // N
}};

// The first unit of each dimension in coherent SI units. The newton, pascal, joule and watt are
// built on the kilogram while the mass row starts at the gram, so a description that mixes an
// explicit mass with a derived unit ("lb/ft/s" against "Pa s") needs this to come out right.
constexpr std::array<double, ndimensions> coherent_si{1, 1e-3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

constexpr int temperature = 3; // position of "T"

// Equal when blanks are ignored on both sides ("cuft" is "cu ft").
bool same_symbol(std::string_view text, std::string_view symbol) {
    std::size_t i = 0, j = 0;
    while (true) {
        while (i < text.size() && text[i] == ' ') ++i;
        while (j < symbol.size() && symbol[j] == ' ') ++j;
        if (i == text.size() || j == symbol.size()) return i == text.size() && j == symbol.size();
        if (text[i++] != symbol[j++]) return false;
    }
}

bool valid_prop(int prop) {
    return prop >= 0 && prop < ndimensions;
}

// Position of a bare unit symbol in the row of prop, -1 when absent.
int unit_slot(int prop, std::string_view symbol) {
    if (!valid_prop(prop) || zp_common::strip(symbol).empty()) return -1;
    const auto& units = unit_table[static_cast<std::size_t>(prop)].units;
    for (std::size_t k = 0; k < units.size(); ++k)
        if (!units[k].symbol.empty() && same_symbol(symbol, units[k].symbol))
            return static_cast<int>(k);
    return -1;
}

constexpr std::size_t no_prefix = 10;
static_assert(prefix_table[no_prefix].symbol.empty() && prefix_table[no_prefix].conv_fact == 1.0);

struct reading {
    std::size_t prefix = no_prefix; // position in prefix_table
    int slot = -1;                  // position in the dimension's units, -1 when unknown
};

// Reads unit as a whole symbol of prop, else (unless whole_only) as a prefix and a symbol.
reading read_unit(int prop, std::string_view unit, bool whole_only = false) {
    reading r;
    unit = zp_common::strip(unit);
    r.slot = unit_slot(prop, unit);
    if (r.slot >= 0 || whole_only) return r;
    for (std::size_t length : {2u, 1u})
        for (std::size_t p = 0; p < prefix_table.size(); ++p) {
            const auto symbol = prefix_table[p].symbol;
            if (symbol.size() != length || !unit.starts_with(symbol)) continue;
            r.slot = unit_slot(prop, unit.substr(length));
            if (r.slot >= 0) {
                r.prefix = p;
                return r;
            }
        }
    return r;
}

const unit_record& record_of(int prop, const reading& r) {
    return unit_table[static_cast<std::size_t>(prop)].units[static_cast<std::size_t>(r.slot)];
}

// The prefix goes with the power of a metre written into the symbol ("m2", "m3").
double prefix_factor(const reading& r, std::string_view symbol) {
    const double f = prefix_table[r.prefix].conv_fact;
    const char last = symbol.empty() ? ' ' : symbol.back();
    return last >= '2' && last <= '9' ? std::pow(f, last - '0') : f;
}

// Factor, offset and dimension vector of one description.
struct side {
    double factor = 1.0;
    double offset = 0.0;
    std::array<double, nbase> dims{};
    bool unknown_unit = false;
};

bool describe(int n, std::span<const std::string_view> prop, std::span<const double> power,
              std::span<const std::string_view> unit, side& s) {
    if (n < 0 || n > max_factors || prop.size() < static_cast<std::size_t>(n) ||
        power.size() < static_cast<std::size_t>(n) || unit.size() < static_cast<std::size_t>(n))
        return false;
    for (std::size_t k = 0; k < static_cast<std::size_t>(n); ++k) {
        const int d = prop_index(prop[k]);
        if (d < 0) return false;
        for (int b = 0; b < nbase; ++b)
            s.dims[b] += power[k] * conv_matrix[static_cast<std::size_t>(d)][b];
        std::array<double, 2> cf{};
        if (!calc_unit_cf(d, unit[k], power[k], cf)) {
            s.unknown_unit = true;
            continue;
        }
        s.factor *= cf[0] * std::pow(coherent_si[static_cast<std::size_t>(d)], power[k]);
        if (n == 1 && d == temperature && power[k] == 1.0) s.offset = cf[1];
    }
    return true;
}

} // namespace

void unitconvert(int src_n, std::span<const std::string_view> src_prop,
                 std::span<const double> src_power, std::span<const std::string_view> src_unit,
                 int tgt_n, std::span<const std::string_view> tgt_prop,
                 std::span<const double> tgt_power, std::span<const std::string_view> tgt_unit,
                 std::array<double, 2>& tot_conv_fact, int& err_cod) {
    side src, tgt;
    if (!describe(src_n, src_prop, src_power, src_unit, src) ||
        !describe(tgt_n, tgt_prop, tgt_power, tgt_unit, tgt)) {
        err_cod = unknown_property;
        return;
    }
    if (src.unknown_unit || tgt.unknown_unit) {
        err_cod = src.unknown_unit && tgt.unknown_unit ? unknown_both_units
                  : src.unknown_unit                   ? unknown_source_unit
                                                       : unknown_target_unit;
        return;
    }
    for (int b = 0; b < nbase; ++b)
        if (std::fabs(src.dims[b] - tgt.dims[b]) > 1e-9) {
            err_cod = not_convertible;
            return;
        }
    const double ratio = src.factor / tgt.factor;
    const double factor = tot_conv_fact[0] * ratio;
    const double offset = tot_conv_fact[1] * ratio + (src.offset - tgt.offset) / tgt.factor;
    if (!std::isfinite(factor) || factor == 0.0 || !std::isfinite(offset)) {
        err_cod = not_convertible;
        return;
    }
    tot_conv_fact = {factor, offset};
    err_cod = ok;
}

std::string_view symbolset(int prop) {
    return valid_prop(prop) ? unit_table[static_cast<std::size_t>(prop)].symbol
                            : std::string_view{};
}

int prop_index(std::string_view prop) {
    prop = zp_common::strip(prop);
    for (int d = 0; d < ndimensions; ++d)
        if (prop == unit_table[static_cast<std::size_t>(d)].symbol) return d;
    return -1;
}

bool is_prop(std::string_view prop) {
    return prop_index(prop) >= 0;
}

bool is_unit(int prop, std::string_view unit) {
    return read_unit(prop, unit).slot >= 0;
}

std::string_view get_unit_symbol(int prop, std::string_view unit) {
    const reading r = read_unit(prop, unit);
    return r.slot >= 0 ? record_of(prop, r).symbol : std::string_view{};
}

bool get_unit_cf(int prop, std::string_view unit, std::array<double, 2>& cf) {
    const reading r = read_unit(prop, unit);
    if (r.slot < 0) return false;
    cf = {record_of(prop, r).factor, record_of(prop, r).offset};
    return true;
}

bool single_unit_cf(int prop, std::string_view symbol, std::array<double, 2>& cf) {
    const reading r = read_unit(prop, symbol, true);
    if (r.slot < 0) return false;
    cf = {record_of(prop, r).factor, record_of(prop, r).offset};
    return true;
}

bool calc_unit_cf(int prop, std::string_view unit, double power, std::array<double, 2>& cf) {
    const reading r = read_unit(prop, unit);
    if (r.slot < 0) return false;
    const unit_record& u = record_of(prop, r);
    cf = {std::pow(prefix_factor(r, u.symbol) * u.factor, power), u.offset};
    return true;
}

bool is_prefix(std::string_view symbol) {
    double cf = 0.0;
    return get_prefix_cf(symbol, cf);
}

std::string_view get_prefix_symbol(int prop, std::string_view unit) {
    const reading r = read_unit(prop, unit);
    return r.slot >= 0 ? prefix_table[r.prefix].symbol : std::string_view{};
}

bool get_prefix_cf(std::string_view symbol, double& cf) {
    symbol = zp_common::strip(symbol);
    for (const auto& p : prefix_table)
        if (symbol == p.symbol) {
            cf = p.conv_fact;
            return true;
        }
    return false;
}

bool calc_prefix_cf(int prop, std::string_view unit, double& cf) {
    const reading r = read_unit(prop, unit);
    if (r.slot < 0) return false;
    cf = prefix_factor(r, record_of(prop, r).symbol);
    return true;
}

int unit_prop_index(std::string_view unit, std::span<const std::string_view> preferred) {
    for (bool whole : {true, false}) {
        for (const auto p : preferred) {
            const int d = prop_index(p);
            if (d >= 0 && read_unit(d, unit, whole).slot >= 0) return d;
        }
        for (int d = 0; d < ndimensions; ++d)
            if (read_unit(d, unit, whole).slot >= 0) return d;
    }
    return -1;
}

} // namespace unitconverter
