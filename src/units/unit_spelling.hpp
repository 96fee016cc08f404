#pragma once
// The spellings people write, turned into the texts setunits reads: unit-set and basis names in
// any case, and common ways of writing a unit ("psi", "degC", "cP", "kJ/(kg K)"). Used by the
// convenience layers (the command-line tool, Python's Fluid); setunits itself reads its texts as
// it always has.
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace unit_spelling {

inline char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool same_in_any_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

// "SI", "Zentropia" or "Anglo-Saxon" for a name of a unit set in any case ("si", "ZP",
// "anglo-saxon"); the text unchanged when it names none.
inline std::string unitset(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 5> names{{
        {"SI", "SI"},
        {"Zentropia", "Zentropia"},
        {"ZP", "Zentropia"},
        {"Anglo-Saxon", "Anglo-Saxon"},
        {"AngloSaxon", "Anglo-Saxon"},
    }};
    for (const auto& [name, canonical] : names)
        if (same_in_any_case(text, name)) return std::string(canonical);
    return std::string(text);
}

// "PerMass" or "PerMole" for the basis in any case ("permass", "mass", "mole", "molar").
inline std::string basis(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 6> names{{
        {"PerMass", "PerMass"},
        {"mass", "PerMass"},
        {"PerMole", "PerMole"},
        {"mole", "PerMole"},
        {"mol", "PerMole"},
        {"molar", "PerMole"},
    }};
    for (const auto& [name, canonical] : names)
        if (same_in_any_case(text, name)) return std::string(canonical);
    return std::string(text);
}

// A unit text in the grammar of setunits: whole-text aliases ("psi" -> "psia", "cP" ->
// "mPa.s", "degC" -> "C"), "*" and the middle dot as separators, and a parenthesised
// denominator spread over "/" ("kJ/(kg K)" -> "kJ/kg/K").
inline std::string unit(std::string_view text) {
    // factors written as people do -> as the unit tables hold them
    constexpr std::array<std::pair<std::string_view, std::string_view>, 12> factors{{
        {"degC", "C"},
        {"deg C", "C"},
        {"\xC2\xB0"
         "C",
         "C"},
        {"degF", "F"},
        {"\xC2\xB0"
         "F",
         "F"},
        {"degR", "R"},
        {"\xC2\xB0"
         "R",
         "R"},
        {"psi", "psia"},
        {"bara", "bar"},
        {"cP", "mPa.s"},
        {"sec", "s"},
        {"kelvin", "K"},
    }};
    std::string out;
    bool in_denominator_group = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '*') {
            out += '.';
        } else if (c == '\xC2' && i + 1 < text.size() && text[i + 1] == '\xB7') { // middle dot
            out += '.';
            ++i;
        } else if (c == '(' && !out.empty() && out.back() == '/') {
            in_denominator_group = true;
        } else if (c == ')' && in_denominator_group) {
            in_denominator_group = false;
        } else if (in_denominator_group && (c == ' ' || c == '.')) {
            if (!out.empty() && out.back() != '/') out += '/';
        } else {
            out += c;
        }
    }
    // whole factors between separators
    std::string result;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= out.size(); ++i) {
        if (i < out.size() && out[i] != '/' && out[i] != '.') continue;
        const std::string_view factor(out.data() + start, i - start);
        std::string_view replaced = factor;
        for (const auto& [from, to] : factors)
            if (factor == from) replaced = to;
        result.append(replaced);
        if (i < out.size()) result += out[i];
        start = i + 1;
    }
    return result;
}

} // namespace unit_spelling
