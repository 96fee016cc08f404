#include "Import/varimol_fluidfile.hpp"

#include "Import/cubic_adapter.hpp"
#include "Import/varimol_load.hpp"
#include "base/common.hpp"
#include "base/fluidstable.hpp"
#include "fluiddb/sqlite.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace varimol_fluidfile {
namespace {

using varimol::binary_index;
using varimol::max_components;
using varimol::parameter_index;
using zp_common::error_prefix;
using zp_common::no_errors;

constexpr std::string_view loader_prefix = "Error in Varimol: ";
constexpr std::string_view library_name = "Varimol";
// the fluid table's column of Varimol names, beside long name, short name and CAS number
constexpr int varimol_column = 4;
// the most names the database lists
constexpr int max_listed = 1000;

struct eos_row {
    std::string_view name;
    int vdw_code, ws_code; // 0: not offered
};
// Wong-Sandler mixing is built for the Peng-Robinson family only.
constexpr std::array<eos_row, 3> equations{{
    {"prsv", varimol::model_prsv_vdw, varimol::model_prsv_ws},
    {"pr", varimol::model_pr_vdw, varimol::model_pr_ws},
    {"srk", varimol::model_srk_vdw, 0},
}};

std::string shown(std::string_view text) {
    constexpr std::size_t most = 64;
    return text.size() <= most ? std::string(text) : std::string(text.substr(0, most)) + "...";
}

void fail(std::string& errormsg, std::string_view why) {
    errormsg.assign(error_prefix).append("fluid file: ").append(why);
}

std::string number_text(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return std::string(buffer.data(), end);
}

// A name the loader can find as a plain file: letters, digits and - _ + . ( ), not starting
// with a dot, so that it can never leave the fluids directory.
bool check_name(std::string_view name, std::string& errormsg) {
    if (name.empty()) {
        fail(errormsg, "the fluid needs a name");
        return false;
    }
    if (name.find_first_of("/\\") != std::string_view::npos) {
        fail(errormsg,
             "the name \"" + shown(name) + "\" holds a path separator; give a plain name");
        return false;
    }
    if (name.size() > max_name_length) {
        fail(errormsg, "the name \"" + shown(name) + "\" is longer than " +
                           std::to_string(max_name_length) + " characters");
        return false;
    }
    const bool plain = name.front() != '.' && std::all_of(name.begin(), name.end(), [](char c) {
                           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                  (c >= '0' && c <= '9') ||
                                  std::string_view("-_+.()").find(c) != std::string_view::npos;
                       });
    if (!plain) {
        fail(errormsg, "the name \"" + shown(name) +
                           "\" may hold letters, digits and - _ + . ( ) only, and not start "
                           "with a dot");
        return false;
    }
    return true;
}

// A name that the fluid table or the database already gives a fluid would select that fluid,
// never the file.
bool check_name_free(std::string_view fluidpath, std::string_view name, std::string& errormsg) {
    std::string e;
    if (fluidstable::nfluids() == 0) fluidstable::readfluidstable(e);
    const std::string key = fluidstable::tolower(name);
    for (int row = 0; row < fluidstable::nfluids(); ++row)
        for (int column : {0, 1, 2, varimol_column})
            if (fluidstable::tolower(fluidstable::cell(row, column)) == key) {
                fail(errormsg, "the name \"" + std::string(name) + "\" is the fluid " +
                                   std::string(fluidstable::cell(row, 1)) +
                                   " of the fluid table; choose another name");
                return false;
            }
    std::vector<std::string> listed(max_listed);
    const int n = sqlite::getfluidnames(fluidpath, library_name, listed);
    for (int i = 0; i < n; ++i)
        if (zp_common::lower(listed[i]) == zp_common::lower(name)) {
            fail(errormsg, "the name \"" + std::string(name) +
                               "\" is a fluid of the database; choose another name");
            return false;
        }
    return true;
}

bool check_composition(const mixture& m, std::string& errormsg) {
    const std::size_t n = m.components.size();
    if (n == 0 || n > static_cast<std::size_t>(max_components)) {
        fail(errormsg, std::to_string(n) + " components given; a fluid file holds 1 to " +
                           std::to_string(max_components));
        return false;
    }
    if (m.conc.size() != n) {
        fail(errormsg, std::to_string(n) + " components but " + std::to_string(m.conc.size()) +
                           " concentrations given");
        return false;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        if (!std::isfinite(m.conc[i]) || m.conc[i] <= 0.0) {
            fail(errormsg, "the concentration of " + shown(m.components[i]) + " is " +
                               number_text(m.conc[i]) + "; mole fractions are above 0");
            return false;
        }
        sum += m.conc[i];
    }
    // the back-end accepts a sum within 1e-6 of 1
    if (!(std::fabs(sum - 1.0) <= 1e-6)) {
        fail(errormsg, "the mole fractions add up to " + number_text(sum) + ", not 1");
        return false;
    }
    return true;
}

// a list of `per_pair` values for each of the n (n - 1) / 2 pairs, each finite
bool check_pair_values(std::string_view option, const std::vector<double>& values,
                       std::size_t per_pair, std::size_t n, std::string& errormsg) {
    if (values.empty()) return true;
    const std::size_t pairs = n * (n - 1) / 2;
    if (values.size() != per_pair * pairs) {
        fail(errormsg, std::string(option) + " wants " + std::to_string(per_pair * pairs) +
                           " values for " + std::to_string(n) + " components, " +
                           std::to_string(values.size()) + " given");
        return false;
    }
    for (double v : values)
        if (!std::isfinite(v)) {
            fail(errormsg,
                 std::string(option) + " holds " + number_text(v) + "; the values must be finite");
            return false;
        }
    return true;
}

void set_pair(varimol::binary_parameters& bp, int kind, int i, int j, double ij, double ji) {
    bp[binary_index(kind, i, j)] = ij;
    bp[binary_index(kind, j, i)] = ji;
}

std::string mixing_name(int code) {
    switch (code) {
    case varimol::model_prsv_vdw:
        return "PRSV with van der Waals mixing";
    case varimol::model_pr_vdw:
        return "Peng-Robinson (1978) with van der Waals mixing";
    case varimol::model_srk_vdw:
        return "Soave-Redlich-Kwong with van der Waals mixing";
    case varimol::model_prsv_ws:
        return "PRSV with Wong-Sandler mixing (NRTL)";
    default:
        return "Peng-Robinson (1978) with Wong-Sandler mixing (NRTL)";
    }
}

} // namespace

int model_code(std::string_view eos, std::string_view mixing, std::string& errormsg) {
    const std::string e = zp_common::lower(zp_common::strip(eos));
    const std::string mix = zp_common::lower(zp_common::strip(mixing));
    const bool ws = mix == "ws";
    if (!ws && mix != "vdw") {
        fail(errormsg, "mixing rule \"" + shown(mixing) + "\" is not vdW or WS");
        return 0;
    }
    for (const auto& row : equations)
        if (row.name == e) {
            const int code = ws ? row.ws_code : row.vdw_code;
            if (code == 0)
                fail(errormsg,
                     "Wong-Sandler mixing is offered with PRSV and PR, not with " + shown(eos));
            return code;
        }
    fail(errormsg, "equation of state \"" + shown(eos) + "\" is not PRSV, PR or SRK");
    return 0;
}

void fluid_text(std::string_view fluidpath, const mixture& m, std::vector<std::string>& lines,
                std::string& errormsg) {
    errormsg = no_errors;
    lines.clear();
    if (!check_name(m.name, errormsg) || !check_composition(m, errormsg)) return;
    const int code = model_code(m.eos, m.mixing, errormsg);
    if (code == 0) return;
    const bool ws = code >= 10;
    const std::size_t n = m.components.size();
    if (ws && !m.kij.empty()) {
        fail(errormsg, "kij belongs to van der Waals mixing; Wong-Sandler mixing takes the NRTL "
                       "parameters and its own k_ij");
        return;
    }
    if (!ws && (!m.nrtl.empty() || !m.ws_kij.empty())) {
        fail(errormsg, "NRTL parameters and the Wong-Sandler k_ij belong to Wong-Sandler mixing");
        return;
    }
    if (!check_pair_values("kij", m.kij, 1, n, errormsg) ||
        !check_pair_values("NRTL", m.nrtl, 3, n, errormsg) ||
        !check_pair_values("Wong-Sandler k_ij", m.ws_kij, 1, n, errormsg) ||
        !check_name_free(fluidpath, m.name, errormsg))
        return;

    // the database's names of the components; names the fluid table does not know are tried as
    // they are
    std::vector<std::string> names(n);
    fluidstable::zp_to_libname(zp_models::model_id::varimol, static_cast<int>(n), m.components,
                               names, errormsg);
    if (errormsg != no_errors) return;
    varimol_load::fluid_data fluid;
    varimol_load::assemble_mixture(fluidpath, names, loader_prefix, fluid, errormsg);
    if (errormsg != no_errors) return;
    const auto at = [&](int row, std::size_t c) -> double& {
        return fluid.fluidparameters[parameter_index(row, static_cast<int>(c))];
    };
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (at(varimol::row_id, i) == at(varimol::row_id, j)) {
                fail(errormsg, "the component " + shown(m.components[i]) + " is given twice");
                return;
            }

    fluid.model_code = code;
    for (std::size_t i = 0; i < n; ++i) at(varimol::row_mole_fraction, i) = m.conc[i];
    std::size_t pair = 0;
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 1; j < n; ++j, ++pair) {
            const int a = static_cast<int>(i), b = static_cast<int>(j);
            auto& bp = fluid.binaryparameters;
            if (!m.kij.empty()) set_pair(bp, varimol::bin_kij, a, b, m.kij[pair], m.kij[pair]);
            if (!m.nrtl.empty()) {
                set_pair(bp, varimol::bin_nrtl_tau, a, b, m.nrtl[3 * pair], m.nrtl[3 * pair + 1]);
                set_pair(bp, varimol::bin_nrtl_alpha, a, b, m.nrtl[3 * pair + 2],
                         m.nrtl[3 * pair + 2]);
            }
            if (!m.ws_kij.empty())
                set_pair(bp, varimol::bin_ws_kij, a, b, m.ws_kij[pair], m.ws_kij[pair]);
        }

    lines.push_back(std::to_string(code) + " " + std::to_string(n));
    lines.push_back(m.name);
    std::string description = "mixture of ";
    for (std::size_t i = 0; i < n; ++i) description.append(i ? "/" : "").append(names[i]);
    description.append(" (mole fractions");
    for (double x : m.conc) description.append(" ").append(number_text(x));
    description.append("), ").append(mixing_name(code));
    lines.push_back(description);
    lines.push_back(std::string("constants: the fluid database; ") +
                    (ws              ? "NRTL and Wong-Sandler parameters as given"
                     : m.kij.empty() ? "kij: the database's binary pairs"
                                     : "kij as given"));
    for (std::size_t c = 0; c < n; ++c)
        for (int row = 0; row < varimol::component_rows; ++row)
            lines.push_back(number_text(at(row, c)));
    for (int kind = 0; kind < varimol::binary_kinds; ++kind)
        for (int i = 0; i < max_components; ++i) {
            std::string line;
            for (int j = 0; j < max_components; ++j)
                line.append(j ? " " : "")
                    .append(number_text(fluid.binaryparameters[binary_index(kind, i, j)]));
            lines.push_back(line);
        }
}

void write_fluidfile(std::string_view fluidpath, const mixture& m, bool replace, std::string& path,
                     std::string& errormsg) {
    path.clear();
    std::vector<std::string> lines;
    fluid_text(fluidpath, m, lines, errormsg);
    if (errormsg != no_errors) return;
    const std::string target = std::string(fluidpath).append(m.name).append(".vmx");
    std::error_code ec;
    if (!replace && std::filesystem::exists(target, ec)) {
        fail(errormsg, "the file " + target + " exists; replace it explicitly");
        return;
    }
    // written under a temporary name and renamed, so that a reader never sees half a file
    const std::string temporary = target + ".part";
    {
        std::ofstream out(temporary, std::ios::trunc);
        for (const auto& line : lines) out << line << '\n';
        out.close();
        if (!out) {
            std::filesystem::remove(temporary, ec);
            fail(errormsg, "cannot write " + temporary);
            return;
        }
    }
    std::filesystem::rename(temporary, target, ec);
    if (ec) {
        std::filesystem::remove(temporary, ec);
        fail(errormsg, "cannot write " + target);
        return;
    }
    path = target;
}

void write_fluidfile(const mixture& m, bool replace, std::string& path, std::string& errormsg) {
    write_fluidfile(cubic_adapter::fluid_directory(), m, replace, path, errormsg);
}

} // namespace varimol_fluidfile
