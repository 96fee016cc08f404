// The command line, the selection it makes and the helpers the commands share.
#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "cli.hpp"
#include "main/zentropia_main.hpp"
#include "units/unit_spelling.hpp"
#include "units/zentropia_units.hpp"
#include "zentropia/zentropia.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace cli {

namespace zm = zentropia_main;

namespace {

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t at = 0;;) {
        const auto end = text.find(separator, at);
        parts.emplace_back(zp_common::strip(text.substr(at, end - at)));
        if (end == std::string_view::npos) return parts;
        at = end + 1;
    }
}

// options that take no value
bool is_flag(std::string_view name) {
    return name == "--keep" || name == "--replace";
}

// A negative number, "-inf" and "-nan" among them, is an argument, not an option.
bool looks_numeric(std::string_view arg) {
    double value = 0.0;
    const auto [end, ec] = std::from_chars(arg.data(), arg.data() + arg.size(), value);
    return arg.size() > 1 && arg[0] == '-' && end == arg.data() + arg.size() &&
           ec != std::errc::invalid_argument;
}

// Applies a common option; false when name is not one.
bool common_option(selection& fluid, std::string_view name, std::string_view value) {
    if (name == "--model") {
        fluid.model = value;
        fluid.model_given = true;
    } else if (name == "--fluid") {
        fluid.components = split(value, ',');
        fluid.components_given = true;
    } else if (name == "--conc") {
        fluid.composition.clear();
        for (const auto& c : split(value, ',')) fluid.composition.push_back(number(c, "--conc"));
    } else if (name == "--units") {
        fluid.unitset = value;
    } else if (name == "--basis") {
        fluid.basis = value;
    } else if (name == "--unit") {
        const auto eq = value.find('=');
        if (eq == std::string_view::npos || eq == 0)
            throw usage_error("--unit wants SYMBOL=UNIT, such as P=MPa, not '" +
                              std::string(value) + "'");
        fluid.overrides.emplace_back(value.substr(0, eq), value.substr(eq + 1));
    } else {
        return false;
    }
    return true;
}

} // namespace

command_line parse(int argc, char** argv) {
    command_line cl;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            cl.help = true;
        } else if (arg == "--version") {
            cl.version = true;
        } else if (arg.starts_with("--")) {
            const auto eq = arg.find('=');
            const std::string name(arg.substr(0, eq));
            std::string value;
            if (eq != std::string_view::npos)
                value = arg.substr(eq + 1);
            else if (is_flag(name))
                value = "";
            else if (i + 1 < argc)
                value = argv[++i];
            else
                throw usage_error("option " + name + " wants a value");
            if (!common_option(cl.fluid, name, value)) cl.options[name] = value;
        } else if (arg.starts_with("-") && arg != "-" && !looks_numeric(arg)) {
            throw usage_error("unknown option " + std::string(arg));
        } else if (cl.command.empty()) {
            cl.command = arg;
        } else {
            cl.arguments.emplace_back(arg);
        }
    }
    return cl;
}

double number(std::string_view text, std::string_view what) {
    const auto t = zp_common::strip(text);
    double value = 0.0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), value);
    if (t.empty() || ec != std::errc() || end != t.data() + t.size())
        throw usage_error(std::string(what) + ": '" + std::string(text) + "' is not a number");
    return value;
}

std::string option(const command_line& cl, std::string_view name, std::string_view fallback) {
    const auto it = cl.options.find(std::string(name));
    return it == cl.options.end() ? std::string(fallback) : it->second;
}

void expect_arguments(const command_line& cl, std::size_t n, std::string_view usage) {
    if (cl.arguments.size() != n)
        throw usage_error(cl.command + " takes " + std::to_string(n) + " arguments (" +
                          std::string(usage) + "), " + std::to_string(cl.arguments.size()) +
                          " given");
}

void check(const std::string& errormsg) {
    if (!zp_common::is_success(errormsg)) throw library_error(errormsg);
}

namespace {

// setunits with the overrides of the command line; on a failure that a single override causes,
// the message names that override's unit
void select_units(const selection& fluid) {
    const std::string set = unit_spelling::unitset(fluid.unitset);
    const std::string basis = unit_spelling::basis(fluid.basis);
    std::string symbols, units, errormsg;
    for (const auto& [symbol, unit] : fluid.overrides) {
        if (!symbols.empty()) symbols += ',', units += ',';
        symbols += symbol;
        units += unit_spelling::unit(unit);
    }
    zentropia_units::setunits(set, basis, symbols, units, errormsg);
    if (zp_common::is_ok(errormsg)) return;
    for (const auto& [symbol, unit] : fluid.overrides) {
        std::string single;
        zentropia_units::setunits(set, basis, symbol, unit_spelling::unit(unit), single);
        if (!zp_common::is_ok(single)) {
            errormsg = single + " (unit \"" + unit + "\" of " + symbol + ")";
            break;
        }
    }
    throw library_error(errormsg);
}

} // namespace

void select(const selection& fluid) {
    std::vector<double> conc = fluid.composition;
    if (conc.empty() && fluid.components.size() == 1) conc.push_back(1.0);
    if (conc.empty())
        throw usage_error("--conc is needed for " + std::to_string(fluid.components.size()) +
                          " components");
    if (conc.size() != fluid.components.size())
        throw usage_error("--fluid names " + std::to_string(fluid.components.size()) +
                          " components but --conc gives " + std::to_string(conc.size()) +
                          " concentrations");
    try {
        zentropia::check_components(fluid.model, fluid.components);
    } catch (const zentropia::error& e) {
        throw library_error(e.what());
    }
    std::string errormsg;
    zentropia_base::setfluid(fluid.model, static_cast<int>(fluid.components.size()),
                             fluid.components, conc, errormsg);
    check(errormsg);
    select_units(fluid);
}

void check_inputspec(std::string_view inputspec) {
    constexpr std::string_view letters = "PTvdhsuq";
    if (inputspec.size() >= 2 && letters.find(inputspec[0]) != std::string_view::npos &&
        letters.find(inputspec[1]) != std::string_view::npos && inputspec[0] != inputspec[1])
        return;
    throw usage_error("inputspec '" + std::string(inputspec) +
                      "': its two letters name the inputs by the symbols P, T, v, d, h, s, u and "
                      "q (quality), in this case: PT, Ph, Ps, Td, Pq, Tq ...");
}

void check_keyword(std::string_view keyword) {
    // calcprop's keywords beyond the properties of a state
    constexpr std::array<std::string_view, 6> derivatives{"dpdt",   "dpdv",    "d2pdt2",
                                                          "d2pdv2", "d2pdtdv", "dcvdt"};
    const std::string key = zp_common::lower(zp_common::strip(keyword));
    if (zp_props::property_index(key) >= 0 ||
        std::find(derivatives.begin(), derivatives.end(), key) != derivatives.end())
        return;
    throw usage_error("unknown property '" + std::string(keyword) +
                      "'; zentropia calc --help lists the keywords");
}

std::string labelled(std::string_view keyword) {
    const int column = zp_props::property_index(keyword);
    const std::string unit =
        column < 0 ? std::string() : unit_of(zp_props::properties[column].unit_symbol);
    return unit.empty() ? std::string(keyword) : std::string(keyword) + " [" + unit + "]";
}

std::string latin1_to_utf8(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | (b >> 6));
            out += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return out;
}

std::string unit_of(std::string_view symbol) {
    if (symbol.empty()) return "";
    std::string errormsg;
    const std::string unit = zentropia_units::getunit(symbol, errormsg);
    check(errormsg);
    return latin1_to_utf8(unit);
}

std::string readable(double value) {
    if (zp_common::isinit(value)) return "not computed";
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

} // namespace cli
