#include "Import/varimol_load.hpp"

#include "fluiddb/sqlite.hpp"

#include <charconv>
#include <cmath>
#include <vector>

namespace varimol_load {
namespace {

using varimol::binary_index;
using varimol::max_components;
using varimol::parameter_index;

// lines of a fluid text: line 1, the three header lines, 16 per component, 5 x 20 binary lines
constexpr int header_lines = 4;
constexpr int binary_lines = varimol::binary_kinds * max_components;
constexpr int max_lines = header_lines + varimol::component_rows * max_components + binary_lines;
// the text holding the kij of the database's binary pairs
constexpr std::string_view binaries_name = "binaries.vmb";

// Reads the next blank-separated number of `text` from `pos`; false when there is none or it is
// not finite.
bool next_number(std::string_view text, std::size_t& pos, double& value) {
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\r')) ++pos;
    if (pos >= text.size()) return false;
    const char* first = text.data() + pos;
    const char* last = text.data() + text.size();
    if (*first == '+') ++first; // from_chars takes no plus sign
    const auto [end, ec] = std::from_chars(first, last, value);
    if (ec != std::errc() || !std::isfinite(value)) return false;
    pos = static_cast<std::size_t>(end - text.data());
    return true;
}

bool only_blanks_after(std::string_view text, std::size_t pos) {
    return text.find_first_not_of(" \t\r", pos) == std::string_view::npos;
}

// one number alone on its line
bool single_number(std::string_view line, double& value) {
    std::size_t pos = 0;
    return next_number(line, pos, value) && only_blanks_after(line, pos);
}

// whole number in [lo, hi] written as such
bool whole_number(std::string_view text, std::size_t& pos, int lo, int hi, int& value) {
    double x = 0.0;
    if (!next_number(text, pos, x) || x != std::floor(x) || x < lo || x > hi) return false;
    value = static_cast<int>(x);
    return true;
}

// Reads the fluid text `name` ("<fluid>.vmx") into `lines`; returns the count.
int read_text(std::string_view fluidpath, std::string_view name, std::vector<std::string>& lines) {
    lines.assign(max_lines + 1, std::string()); // one more: a longer text is not a fluid text
    return sqlite::getfluid(fluidpath, name, lines);
}

// kij of every binary pair the database knows, as (id_i, id_j, kij) per line.
struct binary_pair {
    double id_i, id_j, kij;
};
std::vector<binary_pair> read_binary_pairs(std::string_view fluidpath) {
    std::vector<std::string> lines(4096);
    const int n = sqlite::getfluid(fluidpath, binaries_name, lines);
    std::vector<binary_pair> pairs;
    for (int i = 1; i < n; ++i) { // line 1 is a header
        std::size_t pos = 0;
        binary_pair pair{};
        if (next_number(lines[i], pos, pair.id_i) && next_number(lines[i], pos, pair.id_j) &&
            next_number(lines[i], pos, pair.kij))
            pairs.push_back(pair);
    }
    return pairs;
}

} // namespace

int parse_fluid_text(std::span<const std::string> lines, fluid_data& fluid) {
    fluid = fluid_data{};
    const int n = static_cast<int>(lines.size());
    if (n < min_lines) return n + 1;
    std::size_t pos = 0;
    if (!whole_number(lines[0], pos, 1, 99, fluid.model_code) ||
        !whole_number(lines[0], pos, 1, max_components, fluid.n_comps))
        return 1;
    const int component_lines = varimol::component_rows * fluid.n_comps;
    if (n != header_lines + component_lines + binary_lines) return n + 1;
    for (int c = 0; c < fluid.n_comps; ++c)
        for (int row = 0; row < varimol::component_rows; ++row) {
            const int line = header_lines + c * varimol::component_rows + row;
            if (!single_number(lines[line], fluid.fluidparameters[parameter_index(row, c)]))
                return line + 1;
        }
    for (int kind = 0; kind < varimol::binary_kinds; ++kind)
        for (int i = 0; i < max_components; ++i) {
            const int line = header_lines + component_lines + kind * max_components + i;
            const std::string_view text = lines[line];
            pos = 0;
            for (int j = 0; j < max_components; ++j)
                if (!next_number(text, pos, fluid.binaryparameters[binary_index(kind, i, j)]))
                    return line + 1;
            if (!only_blanks_after(text, pos)) return line + 1;
        }
    return 0;
}

void load_fluid(std::string_view fluidpath, std::string_view name, std::string_view prefix,
                fluid_data& fluid, std::string& errormsg) {
    std::vector<std::string> lines;
    const int n = read_text(fluidpath, std::string(name).append(".vmx"), lines);
    if (n < min_lines) {
        errormsg.assign(prefix).append("error opening fluid ").append(name);
        return;
    }
    if (const int bad = parse_fluid_text(std::span(lines).first(n), fluid); bad != 0) {
        errormsg.assign(prefix)
            .append("error reading fluid ")
            .append(name)
            .append(", line ")
            .append(std::to_string(bad));
        return;
    }
    errormsg = "No errors";
}

void assemble_mixture(std::string_view fluidpath, std::span<const std::string> names,
                      std::string_view prefix, fluid_data& fluid, std::string& errormsg) {
    const int n = static_cast<int>(names.size());
    fluid_data mixture;
    for (int c = 0; c < n; ++c) {
        fluid_data pure;
        load_fluid(fluidpath, names[c], prefix, pure, errormsg);
        if (errormsg != "No errors") return;
        if (pure.n_comps != 1) {
            errormsg.assign(prefix)
                .append("the mixture ")
                .append(names[c])
                .append(" cannot be combined with other components");
            return;
        }
        if (c == 0) mixture.model_code = pure.model_code;
        for (int row = 0; row < varimol::component_rows; ++row)
            mixture.fluidparameters[parameter_index(row, c)] =
                pure.fluidparameters[parameter_index(row, 0)];
    }
    mixture.n_comps = n;
    const auto id = [&](int c) {
        return mixture.fluidparameters[parameter_index(varimol::row_id, c)];
    };
    for (const auto& pair : read_binary_pairs(fluidpath))
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                if (i != j && id(i) == pair.id_i && id(j) == pair.id_j) {
                    mixture.binaryparameters[binary_index(varimol::bin_kij, i, j)] = pair.kij;
                    mixture.binaryparameters[binary_index(varimol::bin_kij, j, i)] = pair.kij;
                }
    fluid = mixture;
    errormsg = "No errors";
}

} // namespace varimol_load
