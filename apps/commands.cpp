// The commands that answer one question: calc, props, info, fluids, units.
#include "base/zentropia_base.hpp"
#include "cli.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace cli {

namespace {

// a value exactly, in the fewest digits that read back to it
void print_exact(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    std::printf("%.*s\n", static_cast<int>(end - text), text);
}

void print_row(std::string_view name, std::string_view meaning, double value,
               std::string_view unit) {
    std::printf("  %-8.*s %-32.*s %16s  %.*s\n", static_cast<int>(name.size()), name.data(),
                static_cast<int>(meaning.size()), meaning.data(), readable(value).c_str(),
                static_cast<int>(unit.size()), unit.data());
}

// Models whose full state carries no pressure derivatives (IF97) leave the derivative properties
// of allprops uncomputed; their own entry points derive them from single properties instead.
using entry_point = double (*)(std::string_view, double, double, std::string&);
constexpr std::array<std::pair<std::string_view, entry_point>, 10> derived_entries{{
    {"alpha", &zentropia_main::alpha},
    {"beta", &zentropia_main::beta},
    {"chi", &zentropia_main::chi},
    {"fi", &zentropia_main::fi},
    {"ksi", &zentropia_main::ksi},
    {"psi", &zentropia_main::psi},
    {"zeta", &zentropia_main::zeta},
    {"theta", &zentropia_main::theta},
    {"kappa", &zentropia_main::kappa},
    {"gamma", &zentropia_main::gamma},
}};

double derived_value(std::string_view name, std::string_view inputspec, double v1, double v2) {
    for (const auto& [entry_name, entry] : derived_entries)
        if (entry_name == name) {
            std::string errormsg;
            const double value = entry(inputspec, v1, v2, errormsg);
            return zp_common::is_ok(errormsg) ? value : zp_common::not_set;
        }
    return zp_common::not_set;
}

std::string fluid_name(const selection& fluid) {
    std::string name = fluid.model + ":";
    for (std::size_t i = 0; i < fluid.components.size(); ++i)
        name += (i ? "," : " ") + fluid.components[i];
    return name;
}

} // namespace

int run_calc(const command_line& cl) {
    expect_arguments(cl, 4, "PROP INPUTSPEC V1 V2");
    const double v1 = number(cl.arguments[2], "V1"), v2 = number(cl.arguments[3], "V2");
    select(cl.fluid);
    std::string errormsg;
    const double value =
        zentropia_main::calcprop(cl.arguments[0], cl.arguments[1], v1, v2, errormsg);
    check(errormsg);
    print_exact(value);
    return exit_ok;
}

int run_props(const command_line& cl) {
    expect_arguments(cl, 3, "INPUTSPEC V1 V2");
    const std::string& inputspec = cl.arguments[0];
    const double v1 = number(cl.arguments[1], "V1"), v2 = number(cl.arguments[2], "V2");
    select(cl.fluid);
    std::array<double, n_allprops> values;
    zp_common::composition x{}, y{};
    std::string errormsg;
    allprops(inputspec, v1, v2, values, x, y, errormsg);
    check(errormsg);
    std::printf("%s, %s units %s, state %s = %s, %s\n\n", fluid_name(cl.fluid).c_str(),
                cl.fluid.unitset.c_str(), cl.fluid.basis.c_str(), inputspec.c_str(),
                cl.arguments[1].c_str(), cl.arguments[2].c_str());
    for (std::size_t i = 0; i < n_allprops; ++i) {
        const auto& row = zentropia::allprops_outputs[i];
        if (zp_common::isinit(values[i])) values[i] = derived_value(row.name, inputspec, v1, v2);
        print_row(row.name, row.description, values[i], unit_of(row.unit_symbol));
    }
    if (cl.fluid.components.size() > 1)
        for (std::size_t i = 0; i < cl.fluid.components.size(); ++i) {
            const std::string n = std::to_string(i + 1), &name = cl.fluid.components[i];
            print_row(std::string("x").append(n), std::string("liquid fraction of ").append(name),
                      x[i], "");
            print_row(std::string("y").append(n), std::string("vapour fraction of ").append(name),
                      y[i], "");
        }
    return exit_ok;
}

int run_info(const command_line& cl) {
    expect_arguments(cl, 0, "no arguments");
    select(cl.fluid);
    double m_mol, t_crit, p_crit, t_min, t_max;
    std::string errormsg;
    zentropia_main::allinfo(m_mol, t_crit, p_crit, t_min, t_max, errormsg);
    check(errormsg);
    std::printf("%s\n\n", fluid_name(cl.fluid).c_str());
    print_row("Mmol", "molar mass", m_mol, unit_of("Mmol"));
    print_row("Tcrit", "critical temperature", t_crit, unit_of("T"));
    print_row("Pcrit", "critical pressure", p_crit, unit_of("P"));
    print_row("Tmin", "lowest temperature", t_min, unit_of("T"));
    print_row("Tmax", "highest temperature", t_max, unit_of("T"));
    return exit_ok;
}

int run_fluids(const command_line& cl) {
    expect_arguments(cl, 0, "no arguments");
    const std::string by = option(cl, "--by", "long");
    const std::array<std::string_view, 3> kinds{"long", "short", "cas"};
    const auto kind = std::find(kinds.begin(), kinds.end(), by);
    if (kind == kinds.end()) throw usage_error("--by is long, short or cas, not '" + by + "'");
    int nfluid = 0;
    std::vector<std::string> names;
    std::string errormsg;
    zentropia_base::getfluidnames(static_cast<int>(kind - kinds.begin()),
                                  cl.fluid.model_given ? cl.fluid.model : "", nfluid, names,
                                  errormsg);
    check(errormsg);
    for (int i = 0; i < nfluid && i < static_cast<int>(names.size()); ++i)
        std::printf("%s\n", names[i].c_str());
    return exit_ok;
}

int run_units(const command_line& cl) {
    expect_arguments(cl, 0, "no arguments");
    select(cl.fluid);
    for (int i = 0; i < zentropia_units::nsymbols; ++i) {
        const auto symbol = zentropia_units::symbolset(static_cast<zentropia_units::unit_row>(i));
        std::printf("%-12.*s %s\n", static_cast<int>(symbol.size()), symbol.data(),
                    unit_of(symbol).c_str());
    }
    return exit_ok;
}

} // namespace cli
