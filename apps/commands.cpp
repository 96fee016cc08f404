// The commands that answer one question: calc, props, info, fluids, units.
#include "base/zentropia_base.hpp"
#include "cli.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"
#include "zentropia/zentropia.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>

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
    std::printf("  %-8.*s %-32.*s %22s  %.*s\n", static_cast<int>(name.size()), name.data(),
                static_cast<int>(meaning.size()), meaning.data(), readable(value).c_str(),
                static_cast<int>(unit.size()), unit.data());
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
    check_keyword(cl.arguments[0]);
    check_inputspec(cl.arguments[1]);
    const double v1 = number(cl.arguments[2], "V1"), v2 = number(cl.arguments[3], "V2");
    select(cl.fluid);
    std::string errormsg, reason;
    const auto& [keyword, inputspec] = std::pair(cl.arguments[0], cl.arguments[1]);
    const double value = zp_props::one_answer(
        zp_props::property_index(keyword), inputspec, v1, v2,
        zentropia_main::calcprop(keyword, inputspec, v1, v2, errormsg), reason);
    check(errormsg);
    if (zp_common::isinit(value))
        throw library_error(keyword + " is not computed for this state (" + reason + ")");
    print_exact(value);
    return exit_ok;
}

int run_props(const command_line& cl) {
    expect_arguments(cl, 3, "INPUTSPEC V1 V2");
    const std::string& inputspec = cl.arguments[0];
    check_inputspec(inputspec);
    const double v1 = number(cl.arguments[1], "V1"), v2 = number(cl.arguments[2], "V2");
    select(cl.fluid);
    double t_crit, p_crit;
    zp_props::critical_point(t_crit, p_crit);
    const auto components = zp_props::components_of_selection();
    zp_props::state state;
    std::string errormsg;
    zp_props::state_of(inputspec, v1, v2, t_crit, p_crit, components, state, errormsg);
    check(errormsg);
    std::printf("%s, %s units %s, state %s = %s, %s\n\n", fluid_name(cl.fluid).c_str(),
                cl.fluid.unitset.c_str(), cl.fluid.basis.c_str(), inputspec.c_str(),
                cl.arguments[1].c_str(), cl.arguments[2].c_str());
    const std::string_view phase = zp_props::phase_names[static_cast<int>(state.label)];
    std::printf("  %-8s %-32s %22.*s\n", "phase", "phase of the state",
                static_cast<int>(phase.size()), phase.data());
    std::map<std::string, std::string> reasons; // reason -> the properties it concerns
    for (std::size_t i = 0; i < zp_props::n_properties; ++i) {
        const auto& row = zp_props::properties[i];
        print_row(row.name, row.description, state.values[i], unit_of(row.unit_symbol));
        if (!state.reasons[i].empty()) {
            auto& names = reasons[state.reasons[i]];
            names += (names.empty() ? "" : ", ") + std::string(row.name);
        }
    }
    // a mixture selected by one name lists the pure fluids it is made of
    const bool resolved = components.one_name_mixture();
    const auto count = resolved ? static_cast<std::size_t>(components.n) : cl.fluid.components.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string n = std::to_string(i + 1),
                          &name = resolved ? components.names[i] : cl.fluid.components[i];
        print_row(std::string("x").append(n), std::string("liquid fraction of ").append(name),
                  state.x[i], "");
        print_row(std::string("y").append(n), std::string("vapour fraction of ").append(name),
                  state.y[i], "");
    }
    if (!reasons.empty()) std::printf("\nnot computed:\n");
    for (const auto& [reason, names] : reasons)
        std::printf("  %s: %s\n", names.c_str(), reason.c_str());
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
    const int k = static_cast<int>(kind - kinds.begin());
    std::string errormsg;
    std::vector<std::string> names;
    if (!cl.fluid.model_given) {
        names = zentropia::getfluidnames(k, "", errormsg);
        check(errormsg);
    } else {
        // The back-end's own list, by the names of the fluid table where the table has them.
        const auto offered = zentropia::getcompset(cl.fluid.model, errormsg);
        check(errormsg);
        const auto listed = zentropia::getfluidnames(k, cl.fluid.model, errormsg);
        if (zp_common::is_ok(errormsg) && !listed.empty()) {
            names = listed;
        } else {
            std::array<std::vector<std::string>, 3> table;
            for (int j = 0; j < 3; ++j) table[j] = zentropia::getfluidnames(j, "", errormsg);
            for (const auto& name : offered) {
                std::string shown = name;
                for (std::size_t row = 0; row < table[k].size(); ++row)
                    for (int j = 0; j < 3; ++j)
                        if (row < table[j].size() && table[j][row] == name) shown = table[k][row];
                names.push_back(shown);
            }
        }
    }
    for (const auto& name : names) std::printf("%s\n", name.c_str());
    return exit_ok;
}

int run_models(const command_line& cl) {
    expect_arguments(cl, 0, "no arguments");
    std::printf("%-12s %s\n", "model", "back-end");
    constexpr int last = static_cast<int>(zp_models::model_id::mesheq);
    for (int id = 1; id <= last; ++id) {
        const auto& model = zp_models::of(static_cast<zp_models::model_id>(id));
        std::string errormsg;
        const auto offered = zentropia::getcompset(model.name, errormsg);
        const bool installed =
            model.adapter != nullptr && errormsg.find("not installed") == std::string::npos;
        std::printf("%-12.*s %s\n", static_cast<int>(model.name.size()), model.name.data(),
                    installed ? "installed" : "back-end library not installed");
    }
    return exit_ok;
}

int run_envelope(const command_line& cl) {
    expect_arguments(cl, 0, "no arguments");
    select(cl.fluid);
    constexpr int room = 1000;
    std::vector<double> t(room), p(room);
    std::vector<zp_common::composition> x(room), y(room);
    int npnts = room;
    std::string errormsg;
    zentropia_base::zp_saturationline(npnts, t, p, x, y, errormsg);
    check(errormsg);
    // a mixture selected by one name has a column per pure fluid it is made of
    const auto ncmp = static_cast<std::size_t>(zp_props::components_of_selection().n);
    std::printf("T [K],P [Pa]");
    for (std::size_t i = 1; i <= ncmp; ++i) std::printf(",x%zu", i);
    for (std::size_t i = 1; i <= ncmp; ++i) std::printf(",y%zu", i);
    std::printf("\n");
    for (int k = 0; k < std::clamp(npnts, 0, room); ++k) {
        std::printf("%s,%s", readable(t[k]).c_str(), readable(p[k]).c_str());
        for (std::size_t i = 0; i < ncmp; ++i) std::printf(",%s", readable(x[k][i]).c_str());
        for (std::size_t i = 0; i < ncmp; ++i) std::printf(",%s", readable(y[k][i]).c_str());
        std::printf("\n");
    }
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
