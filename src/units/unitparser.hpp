#pragma once
// Namespace unitparser: the text routines that check and split the property-symbol and unit
// override lists of zentropia_units::setunits, and the grammar of one unit text.
//
// Characters are single bytes; the degree sign is the Latin-1 byte 0xB0 (latin1_degrees turns
// the UTF-8 degree sign of a caller into it).
//
// Grammar of a unit text ("kJ/kg/K", "kJ.kg^-1.K^-1", "g/cm^3", "lb/cu ft", "F"):
//   factors are separated by ".", by blanks, or by "/", which inverts the factor after it;
//   a power follows "^" and is read by strtoint ("m^-3"); without one the power is 1;
//   a unit symbol holding a blank or "/" ("cu ft", "Btu/h", "m/s") stays one factor when the
//   text reads it so: its first word is not inverted and its last carries no power, so "kg/m/s"
//   is kg m^-1 s^-1 and "ft/s^2" is ft s^-2, while "Btu/h.ft^2" keeps Btu/h whole;
//   a factor written "C", "F" or "R" is the temperature unit "°C", "°F" or "°R".
#include <array>
#include <string>
#include <string_view>

namespace unitparser {

// Longest list strtoarr accepts.
inline constexpr int max_entries = 27;

// true for "A".."Z", "a".."z", the blank and the degree sign
bool isalfa(char c);
// true for "0".."9"
bool isdigit(char c);
// true for isalfa, isdigit and "-", "+", "^", ".", "/"
bool isvalid(char c);
// false for an all-blank text, else whether the first character is a digit ("1a" counts)
bool isdigitstr(std::string_view string);
// Splits a comma-separated list with its blanks removed into array and its count nelmts; a final
// "," leaves an empty last entry. errormsg "No errors" or the failure.
void strtoarr(std::string_view string, std::array<std::string, max_entries>& array, int& nelmts,
              std::string& errormsg);
// Reads a signed decimal integer; msg "string-ok" or "string-noint". Consumes string. A
// non-digit after the first digit adds its code difference to "0" ("1a" gives 59).
void strtoint(std::string& string, int& number, std::string& msg);

// The text with every UTF-8 degree sign (0xC2 0xB0) replaced by the Latin-1 one (0xB0).
std::string latin1_degrees(std::string_view text);

// One factor of a unit text: the unit (a view into the text, or a static "°C"/"°F"/"°R") and its
// integer power.
struct unit_factor {
    std::string_view unit;
    int power = 0;
};
inline constexpr int max_factors = 4;
using unit_factors = std::array<unit_factor, max_factors>;

// Splits a unit text into at most 4 factors by the grammar above; false (and n = 0) when a power
// does not read, a factor is empty or there are more than 4 factors.
bool split_unit(std::string_view text, unit_factors& factors, int& n);

} // namespace unitparser
