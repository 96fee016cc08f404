#pragma once
// Conversion between two unit descriptions of one physical quantity.
//
// A description is a list of up to 4 factors, each a dimension symbol ("L", "M", "t", "T", "dT",
// "A", "V", "c", "F", "P", "E", "Pwr", "N"), a real power and a unit text: a unit symbol of that
// dimension, optionally preceded by an SI prefix ("kJ", "MPa", "mum" for the micrometre).
//
// Reading a unit text: the text is first matched as a whole unit symbol, so "m" is the metre,
// "min" the minute, "Pa" the pascal and "m/s", "Btu/h", "cu ft" are single units; only then as a
// prefix followed by a unit symbol, two-letter prefixes ("mu", "da") tried before one-letter ones.
// Blanks inside a text are ignored ("cuft" reads as "cu ft"). A prefix in front of "m2" or "m3"
// is squared or cubed with the metre ("cm3" is 1e-6 m3).
//
// Composition rule. Every unit converts to the first unit of its dimension as
// first = value * f_u + o_u, and that first unit is c_d coherent SI units (c_d = 1e-3 for the
// gram, 1 for every other first unit: the newton, pascal, joule and watt are built on the
// kilogram). A description converts to coherent SI units as x * F + O with
//   F = product over its factors of (prefix factor * f_u * c_d) ^ power,
//   O = o_u when the description is a single temperature factor ("T") of power 1, else 0
// (a temperature inside a compound unit is a temperature difference, so offsets drop out).
// Source s and target t then give target = source * F_s / F_t + (O_s - O_t) / F_t.
// The incoming pair (a, b) of tot_conv_fact is applied to the value first (it carries the
// molar-mass factor of a per-mole unit), so the result is (a * F_s / F_t, b * F_s / F_t + the
// offset above): the incoming factor multiplies the computed factor.
// The two descriptions agree in dimension when their dimension vectors (the dimension matrix
// rows times the powers, summed over the factors) are equal.
#include <array>
#include <span>
#include <string_view>

namespace unitconverter {

// Number of dimensions and the largest number of factors in one description.
inline constexpr int ndimensions = 13;
inline constexpr int max_factors = 4;

// Result codes of unitconvert.
enum err_code : int {
    ok = 0,
    unknown_property = 1,   // a dimension symbol is unknown (or a factor count outside 0..4)
    unknown_both_units = 2, // a unit of the source and one of the target are unknown
    unknown_source_unit = 3,
    unknown_target_unit = 4,
    not_convertible = 5 // the dimensions differ, or the factor is not a finite non-zero number
};

// Pair (factor, offset) that converts value in source units to target units, composed with the
// incoming tot_conv_fact as the header comment states; err_cod one of err_code. On failure
// tot_conv_fact is left unchanged.
void unitconvert(int src_n, std::span<const std::string_view> src_prop,
                 std::span<const double> src_power, std::span<const std::string_view> src_unit,
                 int tgt_n, std::span<const std::string_view> tgt_prop,
                 std::span<const double> tgt_power, std::span<const std::string_view> tgt_unit,
                 std::array<double, 2>& tot_conv_fact, int& err_cod);

// The dimension symbols in table order.
std::string_view symbolset(int prop);
// 0-based position of a dimension symbol, -1 when unknown
int prop_index(std::string_view prop);
// prop is a dimension symbol
bool is_prop(std::string_view prop);
// unit (optionally prefixed) is a unit of dimension prop
bool is_unit(int prop, std::string_view unit);
// the unit symbol inside unit, as stored in the table ("" when unit is not a unit of prop)
std::string_view get_unit_symbol(int prop, std::string_view unit);
// (factor, offset) to the first unit of prop of the unit symbol inside unit; false when unknown
bool get_unit_cf(int prop, std::string_view unit, std::array<double, 2>& cf);
// (factor, offset) of a bare unit symbol of prop, no prefix read; false when unknown
bool single_unit_cf(int prop, std::string_view symbol, std::array<double, 2>& cf);
// (prefix factor * unit factor) ^ power and the unit offset of one factor; false when unknown
bool calc_unit_cf(int prop, std::string_view unit, double power, std::array<double, 2>& cf);
// symbol is one of the 21 SI prefixes (the empty text counting as "no prefix")
bool is_prefix(std::string_view symbol);
// the prefix inside unit ("" when there is none or unit is not a unit of prop)
std::string_view get_prefix_symbol(int prop, std::string_view unit);
// factor of a prefix symbol; false when it is not a prefix
bool get_prefix_cf(std::string_view symbol, double& cf);
// factor the prefix of unit contributes (1.0 without a prefix); false when unit is unknown
bool calc_prefix_cf(int prop, std::string_view unit, double& cf);
// Dimension of a unit text: the first of the preferred dimensions that reads it as a whole unit
// symbol, else the first in table order that does, then the same for prefixed readings; -1 when
// no dimension reads it.
int unit_prop_index(std::string_view unit, std::span<const std::string_view> preferred = {});

} // namespace unitconverter
