#pragma once
// The zentropia command-line tool: its command line, the selection it makes, and its commands.
#include "main/property_table.hpp"

#include <array>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {

// Exit codes.
inline constexpr int exit_ok = 0;
inline constexpr int exit_failure = 1;     // the library reported a failure
inline constexpr int exit_usage = 2;       // the command line is wrong
inline constexpr int exit_failed_rows = 3; // batch ran to its end, some rows failed

// A wrong command line: the message goes to standard error with a hint, exit_usage follows.
struct usage_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// A failure the library reported: its message goes to standard error, exit_failure follows.
struct library_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The fluid and units every command works with (the common options).
struct selection {
    std::string model = "IF97";
    bool model_given = false;
    std::vector<std::string> components{"water"};
    bool components_given = false;
    std::vector<double> composition; // empty: 1.0 for a single component
    std::string unitset = "SI";
    std::string basis = "PerMass";
    std::vector<std::pair<std::string, std::string>> overrides; // (symbol, unit) of --unit
};

struct command_line {
    std::string command;
    std::vector<std::string> arguments;         // positional arguments after the command
    std::map<std::string, std::string> options; // the command's own options, by name ("" for a
                                                // flag)
    selection fluid;
    bool help = false;
    bool version = false;
};

// The command's own options (beyond the common ones) and whether it takes positional arguments.
struct command_spec {
    std::string_view name;
    std::vector<std::string_view> options; // "--inputspec" ...
    int (*run)(const command_line&);
    std::string_view help;
};
const std::vector<command_spec>& commands();

// Reads argv; throws usage_error.
command_line parse(int argc, char** argv);
// Makes the fluid and units of the command line the library's selection; throws library_error.
void select(const selection& fluid);
// A number of the command line; throws usage_error naming what.
double number(std::string_view text, std::string_view what);
// The option's value, or fallback.
std::string option(const command_line& cl, std::string_view name, std::string_view fallback);
// Throws usage_error unless the command has exactly n positional arguments.
void expect_arguments(const command_line& cl, std::size_t n, std::string_view usage);
// Throws library_error unless errormsg reports success.
void check(const std::string& errormsg);

// The caller's unit of a property symbol as UTF-8 ("" for an empty symbol).
std::string unit_of(std::string_view symbol);
// A Latin-1 library text (unit texts carry the degree sign as byte 0xB0) as UTF-8.
std::string latin1_to_utf8(std::string_view text);
// A value exactly, in the fewest digits that read back to it, or "not computed" for the sentinel.
std::string readable(double value);

// Throws usage_error unless the first two letters of inputspec are input symbols of the unit sets
// (P, T, v, d, h, s, u) or the quality q; their case matters ("PT", not "pt").
void check_inputspec(std::string_view inputspec);
// "h [J/kg]": a property keyword with its unit in the chosen units ("q" alone where it has none)
std::string labelled(std::string_view keyword);
// Throws usage_error unless keyword is a property keyword of calcprop.
void check_keyword(std::string_view keyword);

int run_calc(const command_line& cl);
int run_props(const command_line& cl);
int run_batch(const command_line& cl);
int run_info(const command_line& cl);
int run_fluids(const command_line& cl);
int run_units(const command_line& cl);
int run_models(const command_line& cl);
int run_envelope(const command_line& cl);
int run_fluidfile(const command_line& cl);

} // namespace cli
